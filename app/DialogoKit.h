#pragma once

// One dialog for both kit operations: article, warehouse, quantity and an
// optional production order.

#include <QDialog>
#include <QSqlDatabase>

class QComboBox;
class QDoubleSpinBox;
class QRadioButton;
class QSpinBox;

namespace zuvi::app {

class DialogoKit : public QDialog
{
    Q_OBJECT
public:
    enum class Operacion { Ensamble, Desensamble };

    DialogoKit(const QSqlDatabase &db, Operacion operacion, QWidget *padre = nullptr);

    Operacion operacion() const;
    QString articulo() const;
    qint32 almacen() const;
    double cantidad() const; // whole for assembly
    qint32 orden() const;    // 0 for none

    // Refuses, with a message, what the host's checks refuse.
    void accept() override;

private:
    void cambiaOperacion();
    void llenaListas(const QSqlDatabase &db);

    QSqlDatabase m_db;
    QRadioButton *m_ensamble = nullptr;
    QRadioButton *m_desensamble = nullptr;
    QComboBox *m_articulo = nullptr;
    QComboBox *m_almacen = nullptr;
    QDoubleSpinBox *m_cantidad = nullptr;
    QSpinBox *m_orden = nullptr;
};

} // namespace zuvi::app
