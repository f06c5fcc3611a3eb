#include "controls/Lista.h"

#include "runtime/Error.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QHeaderView>
#include <QProgressBar>

namespace zuvi {

Lista::Lista(QWidget *parent) : QTreeWidget(parent)
{
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setColumnCount(0);
    header()->setStretchLastSection(true);
    // Items stay in the order they were added, as the statements sorted them.
    setSortingEnabled(false);
}

void Lista::SetView(qint16 vista)
{
    m_vista = vista;
    setHeaderHidden(vista != lvwReport);
}

void Lista::limpiaColumnas()
{
    m_clavesColumna.clear();
    setColumnCount(0);
    setHeaderLabels({});
}

void Lista::ponColumnas(const QList<QPair<QString, QString>> &columnas)
{
    if (View() != lvwReport)
        return;
    limpiaColumnas();
    for (const auto &[clave, titulo] : columnas)
        agregaColumna(clave, titulo);
}

void Lista::agregaColumna(const QString &clave, const QString &titulo)
{
    m_clavesColumna << clave;
    const int n = int(m_clavesColumna.size());
    setColumnCount(n);
    QTreeWidgetItem *cabecera = headerItem();
    cabecera->setText(n - 1, titulo);
    cabecera->setData(n - 1, Qt::UserRole, clave);
}

QString Lista::claveColumna(int indice) const
{
    if (indice < 1 || indice > cuentaColumnas())
        throw Error(QStringLiteral("Índice de columna fuera del intervalo: %1.").arg(indice));
    return m_clavesColumna.at(indice - 1);
}

QString Lista::tituloColumna(int indice) const
{
    claveColumna(indice); // the same range check
    return headerItem()->text(indice - 1);
}

QTreeWidgetItem *Lista::agrega(const QString &clave, const QString &texto)
{
    return agrega(clave, texto, {});
}

QTreeWidgetItem *Lista::agrega(const QString &clave, const QString &texto,
                               const QStringList &subElementos)
{
    QTreeWidgetItem *&lugar = m_porClave[clave];
    if (lugar)
        throw Error(QStringLiteral("La clave \"%1\" no es única en la colección.").arg(clave),
                    35602);
    QStringList textos;
    textos.reserve(subElementos.size() + 1);
    textos << texto << subElementos;
    auto *elemento = new QTreeWidgetItem(textos);
    elemento->setData(0, Qt::UserRole, clave);
    lugar = elemento;
    addTopLevelItem(elemento);
    return elemento;
}

void Lista::ponSubElemento(QTreeWidgetItem *elemento, int indice, const QString &texto)
{
    if (!elemento)
        throw Error(QStringLiteral("No hay elemento de la lista."));
    if (indice < 1)
        throw Error(QStringLiteral("Índice de subelemento fuera del intervalo: %1.").arg(indice));
    elemento->setText(indice, texto);
}

QString Lista::subElemento(const QTreeWidgetItem *elemento, int indice)
{
    if (!elemento)
        throw Error(QStringLiteral("No hay elemento de la lista."));
    return elemento->text(indice);
}

QString Lista::clave(const QTreeWidgetItem *elemento)
{
    return elemento ? elemento->data(0, Qt::UserRole).toString() : QString();
}

QTreeWidgetItem *Lista::elemento(int indice) const
{
    if (indice < 1 || indice > cuenta())
        throw Error(QStringLiteral("Índice fuera de los límites: %1.").arg(indice), 35600);
    return topLevelItem(indice - 1);
}

QTreeWidgetItem *Lista::seleccionado() const
{
    const QList<QTreeWidgetItem *> lista = selectedItems();
    return lista.isEmpty() ? nullptr : lista.first();
}

QString Lista::claveSeleccionada() const
{
    return clave(seleccionado());
}

void Lista::selecciona(QTreeWidgetItem *elemento)
{
    clearSelection();
    if (!elemento)
        return;
    setCurrentItem(elemento);
    elemento->setSelected(true);
}

void Lista::dejaCorrerEventos()
{
    // Often enough for input and painting to feel immediate.
    constexpr qint64 kIntervaloMs = 15;
    static QElapsedTimer reloj;
    if (reloj.isValid() && reloj.elapsed() < kIntervaloMs)
        return;
    QCoreApplication::processEvents();
    reloj.start();
}

void Lista::avanzaBarra(QProgressBar *barra, int valor)
{
    if (!barra)
        return;
    const qint64 pasos = qint64(barra->maximum()) - barra->minimum();
    const qint64 pixeles = qMax(1, barra->width());
    const qint64 cada = qMax<qint64>(1, pasos / pixeles);
    if (valor >= barra->maximum() || (valor - barra->minimum()) % cada == 0)
        barra->setValue(valor);
}

bool Lista::quita(const QString &clave)
{
    QTreeWidgetItem *elemento = m_porClave.take(clave);
    if (!elemento)
        return false;
    delete elemento;
    return true;
}

void Lista::limpia()
{
    m_porClave.clear();
    clear();
}

} // namespace zuvi
