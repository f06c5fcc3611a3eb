#pragma once

// The keyed list (lv): a QTreeWidget spoken to in the list view's own terms.
// Columns carry a caption and a key; items carry a key ("P" + the row's key),
// a text and sub-items 1..n. A duplicate item key is refused with an error,
// which the procedure that added it reports. Items are numbered from 1.
//
// The key of each item is also kept in the data of its first column under
// Qt::UserRole, and the key of the selected item is readable by name through
// the property "ClaveSeleccionada", so that a host process handed the window
// reads the list without knowing this class.

#include "core/Exporta.h"

#include <QHash>
#include <QStringList>
#include <QTreeWidget>

class QProgressBar;

namespace zuvi {

class ZUVI_PRODUCCION_EXPORT Lista : public QTreeWidget
{
    Q_OBJECT
    Q_PROPERTY(QString ClaveSeleccionada READ claveSeleccionada)

public:
    static constexpr qint16 lvwIcon = 0;
    static constexpr qint16 lvwSmallIcon = 1;
    static constexpr qint16 lvwList = 2;
    static constexpr qint16 lvwReport = 3;

    explicit Lista(QWidget *parent = nullptr);

    // The view; only the report view shows headers.
    qint16 View() const { return m_vista; }
    void SetView(qint16 vista);

    // Column headers.
    void limpiaColumnas();
    void agregaColumna(const QString &clave, const QString &titulo);
    // In report view, the headers become these (key, caption) pairs; in any
    // other view nothing changes, as the fills expect.
    void ponColumnas(const QList<QPair<QString, QString>> &columnas);
    int cuentaColumnas() const { return int(m_clavesColumna.size()); }
    QString claveColumna(int indice) const; // 1-based, as the list numbers them
    QString tituloColumna(int indice) const;

    // Items. agrega() throws Error for a key already in the list.
    QTreeWidgetItem *agrega(const QString &clave, const QString &texto);
    // The same with sub-items 1..n set before the item shows: a long fill
    // then costs the list no repaint per sub-item.
    QTreeWidgetItem *agrega(const QString &clave, const QString &texto,
                            const QStringList &subElementos);
    static void ponSubElemento(QTreeWidgetItem *elemento, int indice, const QString &texto);
    static QString subElemento(const QTreeWidgetItem *elemento, int indice);
    static QString clave(const QTreeWidgetItem *elemento);

    int cuenta() const { return topLevelItemCount(); }
    // Item i, 1-based; an error outside 1..cuenta().
    QTreeWidgetItem *elemento(int indice) const;
    QTreeWidgetItem *buscaClave(const QString &clave) const { return m_porClave.value(clave); }
    // The selected item, or nullptr.
    QTreeWidgetItem *seleccionado() const;
    QString claveSeleccionada() const;
    void selecciona(QTreeWidgetItem *elemento);

    // Lets pending events run between the rows of a long fill, so the
    // program answers meanwhile: a row costs no more than the row itself,
    // since the event loop is visited at most every few milliseconds.
    static void dejaCorrerEventos();
    // Puts a fill's row counter into its progress bar when the bar would show
    // it: every row of a short fill, on each new pixel of a long one, and the
    // last row always.
    static void avanzaBarra(QProgressBar *barra, int valor);

    // Removes the item with that key; false when there is none.
    bool quita(const QString &clave);
    void limpia();

private:
    qint16 m_vista = lvwReport;
    QStringList m_clavesColumna;
    QHash<QString, QTreeWidgetItem *> m_porClave;
};

} // namespace zuvi
