#pragma once

// The "Inventario" windows: the stock per article and warehouse, valued at
// the article's cost, and the stock card of one article.

#include <QSqlDatabase>
#include <QWidget>

class QCheckBox;
class QComboBox;
class QDateEdit;
class QLabel;
class QLineEdit;
class QSqlQueryModel;
class QTableView;

namespace zuvi::app {

class ModeloFilas;

class VentanaExistencias : public QWidget
{
    Q_OBJECT
public:
    explicit VentanaExistencias(const QSqlDatabase &db, QWidget *padre = nullptr);
    void actualiza();
    QString totales() const;
    int almacen() const;
    QLineEdit *buscador() const { return m_buscador; }
    QComboBox *almacenes() const { return m_almacen; }

private:
    QSqlDatabase m_db;
    QSqlQueryModel *m_modelo = nullptr;
    QLineEdit *m_buscador = nullptr;
    QComboBox *m_almacen = nullptr;
    QLabel *m_totales = nullptr;
};

class VentanaMovimientos : public QWidget
{
    Q_OBJECT
public:
    explicit VentanaMovimientos(const QSqlDatabase &db, QWidget *padre = nullptr);
    void actualiza();
    QLineEdit *articulo() const { return m_articulo; }
    const ModeloFilas *modelo() const { return m_modelo; }

protected:
    bool eventFilter(QObject *objeto, QEvent *evento) override;

private:
    QSqlDatabase m_db;
    ModeloFilas *m_modelo = nullptr;
    QLineEdit *m_articulo = nullptr;
    QComboBox *m_almacen = nullptr;
    QCheckBox *m_conDesde = nullptr, *m_conHasta = nullptr;
    QDateEdit *m_desde = nullptr, *m_hasta = nullptr;
    QLabel *m_estado = nullptr;
};

// A list of the warehouses to choose from, "Todos" first (value 0).
void llenaAlmacenes(QComboBox *combo, const QSqlDatabase &db);

} // namespace zuvi::app
