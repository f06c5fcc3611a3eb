#pragma once

// What the stock windows share: a table model over rows already computed
// (the stock card of one article), and the print preview and PDF of a
// listing.

#include <QAbstractTableModel>
#include <QList>
#include <QStringList>

class QWidget;

namespace zuvi::app {

class ModeloFilas : public QAbstractTableModel
{
    Q_OBJECT
public:
    ModeloFilas(QStringList encabezado, QList<int> numericas, QObject *padre = nullptr);
    void pon(QList<QStringList> filas);
    const QList<QStringList> &filas() const { return m_filas; }

    int rowCount(const QModelIndex &padre = {}) const override;
    int columnCount(const QModelIndex &padre = {}) const override;
    QVariant data(const QModelIndex &i, int rol) const override;
    QVariant headerData(int seccion, Qt::Orientation o, int rol) const override;

private:
    QStringList m_encabezado;
    QList<int> m_numericas;
    QList<QStringList> m_filas;
};

// A listing as an HTML table: title, header, rows and a foot line.
QString htmlListado(const QString &titulo, const QStringList &encabezado,
                    const QList<QStringList> &filas, const QList<int> &numericas,
                    const QString &pie);

// A warning box with its button in Spanish; detalle, when given, is shown
// whole in a scrollable list under the text (every refused row of a file).
void aviso(QWidget *padre, const QString &titulo, const QString &texto,
           const QStringList &detalle = {});

// Print preview of that HTML; pdf: asks for a file and writes it there.
void imprime(QWidget *padre, const QString &html, bool pdf);

} // namespace zuvi::app
