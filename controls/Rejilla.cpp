#include "controls/Rejilla.h"

#include "runtime/Error.h"

#include <QHeaderView>

namespace zuvi {

namespace {
Error fueraDeRango(int fila, int columna)
{
    return Error(QStringLiteral("Subscript out of range: celda (%1, %2) de la rejilla.")
                     .arg(fila)
                     .arg(columna),
                 9);
}
} // namespace

Rejilla::Rejilla(QWidget *parent) : QTableWidget(parent)
{
    verticalHeader()->setVisible(false);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setSelectionBehavior(QAbstractItemView::SelectItems);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    // Tab leaves the grid for the next control, as on every other control of a
    // window; the arrows move between cells.
    setTabKeyNavigation(false);
    connect(this, &QTableWidget::currentCellChanged, this, [this](int fila, int columna) {
        if (m_moviendo || fila < 0 || columna < 0)
            return;
        if (fila + m_fijas == m_fila && columna == m_columna)
            return;
        Q_EMIT saleDeCelda();
        m_fila = fila + m_fijas;
        m_columna = columna;
        Q_EMIT cambiaCelda();
    });
}

int Rejilla::Rows() const
{
    return rowCount() + m_fijas;
}

void Rejilla::SetRows(int filas)
{
    if (filas < m_fijas)
        throw Error(QStringLiteral("Invalid Row value: %1").arg(filas), 30009);
    setRowCount(filas - m_fijas);
    if (m_fila >= filas)
        m_fila = filas - 1;
}

void Rejilla::SetCols(int columnas)
{
    if (columnas < 0)
        throw Error(QStringLiteral("Invalid Col value: %1").arg(columnas), 30010);
    setColumnCount(columnas);
    for (int c = 0; c < columnas; ++c)
        if (!horizontalHeaderItem(c))
            setHorizontalHeaderItem(c, new QTableWidgetItem);
    if (m_columna >= columnas)
        m_columna = qMax(0, columnas - 1);
}

void Rejilla::SetFixedRows(int fijas)
{
    if (fijas != 0 && fijas != 1)
        throw Error(QStringLiteral("FixedRows admite 0 o 1, no %1.").arg(fijas));
    const int filas = Rows();
    m_fijas = fijas;
    horizontalHeader()->setVisible(fijas == 1);
    setRowCount(filas - fijas);
}

void Rejilla::SetFixedCols(int fijas)
{
    if (fijas != 0)
        throw Error(QStringLiteral("FixedCols admite solo 0, no %1.").arg(fijas));
}

void Rejilla::SetRow(int fila)
{
    if (fila < 0 || fila >= Rows())
        throw fueraDeRango(fila, m_columna);
    Q_EMIT saleDeCelda();
    m_fila = fila;
    if (fila >= m_fijas && m_columna < columnCount())
        mueveActual(fila - m_fijas, m_columna);
    Q_EMIT cambiaCelda();
}

void Rejilla::SetCol(int columna)
{
    if (columna < 0 || columna >= columnCount())
        throw fueraDeRango(m_fila, columna);
    Q_EMIT saleDeCelda();
    m_columna = columna;
    if (m_fila >= m_fijas)
        mueveActual(m_fila - m_fijas, columna);
    Q_EMIT cambiaCelda();
}

void Rejilla::mueveActual(int fila, int columna)
{
    m_moviendo = true;
    // Shown, the view catches up with the current cell once the events in
    // hand are done, before it is painted: lines added one after another
    // faster than the screen refreshes scroll it once, not once each.
    const bool sigue = hasAutoScroll() && isVisible();
    if (sigue)
        setAutoScroll(false);
    setCurrentCell(fila, columna);
    if (sigue) {
        setAutoScroll(true);
        if (!m_desplazamientoPendiente) {
            m_desplazamientoPendiente = true;
            QMetaObject::invokeMethod(this, &Rejilla::muestraActual, Qt::QueuedConnection);
        }
    }
    m_moviendo = false;
}

void Rejilla::muestraActual()
{
    if (!m_desplazamientoPendiente)
        return;
    m_desplazamientoPendiente = false;
    if (currentIndex().isValid())
        scrollTo(currentIndex());
}

void Rejilla::exigeCelda(int fila, int columna) const
{
    if (fila < 0 || fila >= Rows() || columna < 0 || columna >= columnCount())
        throw fueraDeRango(fila, columna);
}

QString Rejilla::TextMatrix(int fila, int columna) const
{
    exigeCelda(fila, columna);
    const QTableWidgetItem *celda =
        fila < m_fijas ? horizontalHeaderItem(columna) : item(fila - m_fijas, columna);
    return celda ? celda->text() : QString();
}

void Rejilla::SetTextMatrix(int fila, int columna, const QString &texto)
{
    exigeCelda(fila, columna);
    if (fila < m_fijas) {
        QTableWidgetItem *celda = horizontalHeaderItem(columna);
        if (!celda)
            setHorizontalHeaderItem(columna, celda = new QTableWidgetItem);
        celda->setText(texto);
        return;
    }
    if (QTableWidgetItem *celda = item(fila - m_fijas, columna))
        celda->setText(texto);
    else if (!texto.isEmpty()) // an empty cell needs no item
        setItem(fila - m_fijas, columna, new QTableWidgetItem(texto));
}

int Rejilla::ColWidth(int columna) const
{
    if (columna < 0 || columna >= columnCount())
        return 0;
    return isColumnHidden(columna) ? 0 : columnWidth(columna) * TwipsPorPixel;
}

void Rejilla::SetColWidth(int columna, int twips)
{
    if (columna < 0 || columna >= columnCount())
        return;
    if (twips <= 0) {
        setColumnHidden(columna, true);
        return;
    }
    setColumnHidden(columna, false);
    setColumnWidth(columna, twips / TwipsPorPixel);
}

QRect Rejilla::rectanguloPropio() const
{
    // Where the current cell is on screen, after the view has caught up with it.
    const_cast<Rejilla *>(this)->muestraActual();
    if (m_columna >= columnCount())
        return QRect();
    if (m_fila < m_fijas) {
        const QHeaderView *h = horizontalHeader();
        return QRect(h->sectionViewportPosition(m_columna), 0, h->sectionSize(m_columna),
                     h->height());
    }
    QRect r = visualRect(model()->index(m_fila - m_fijas, m_columna));
    const QPoint origen = viewport()->mapTo(this, QPoint(0, 0));
    return r.translated(origen);
}

int Rejilla::CellLeft() const
{
    return rectanguloPropio().left() * TwipsPorPixel;
}

int Rejilla::CellTop() const
{
    return rectanguloPropio().top() * TwipsPorPixel;
}

int Rejilla::CellWidth() const
{
    return rectanguloPropio().width() * TwipsPorPixel;
}

int Rejilla::CellHeight() const
{
    return rectanguloPropio().height() * TwipsPorPixel;
}

QRect Rejilla::rectanguloCelda() const
{
    return rectanguloPropio().translated(pos());
}

void Rejilla::RemoveItem(int fila)
{
    if (fila < m_fijas || fila >= Rows())
        throw fueraDeRango(fila, m_columna);
    removeRow(fila - m_fijas);
    if (m_fila >= Rows())
        m_fila = Rows() - 1;
}

namespace {
constexpr Qt::Alignment kHorizontal[] = {Qt::AlignLeft, Qt::AlignHCenter, Qt::AlignRight};
constexpr Qt::Alignment kVertical[] = {Qt::AlignVCenter, Qt::AlignTop, Qt::AlignBottom};
} // namespace

int Rejilla::CellAlignment() const
{
    exigeCelda(m_fila, m_columna);
    const QTableWidgetItem *celda =
        m_fila < m_fijas ? horizontalHeaderItem(m_columna) : item(m_fila - m_fijas, m_columna);
    const Qt::Alignment a =
        celda ? Qt::Alignment(celda->textAlignment()) : Qt::AlignLeft | Qt::AlignVCenter;
    int h = 0, v = 0;
    for (int i = 0; i < 3; ++i) {
        if (a & kHorizontal[i])
            h = i;
        if (a & kVertical[i])
            v = i;
    }
    return h * 3 + v;
}

void Rejilla::SetCellAlignment(int alineacion)
{
    exigeCelda(m_fila, m_columna);
    if (alineacion < 0 || alineacion > 8)
        throw Error(QStringLiteral("Invalid property value: CellAlignment %1").arg(alineacion),
                    380);
    const Qt::Alignment a = kHorizontal[alineacion / 3] | kVertical[alineacion % 3];
    if (m_fila < m_fijas) {
        if (QTableWidgetItem *celda = horizontalHeaderItem(m_columna))
            celda->setTextAlignment(a);
        return;
    }
    QTableWidgetItem *celda = item(m_fila - m_fijas, m_columna);
    if (!celda)
        setItem(m_fila - m_fijas, m_columna, celda = new QTableWidgetItem);
    celda->setTextAlignment(a);
}

} // namespace zuvi
