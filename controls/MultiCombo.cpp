#include "controls/MultiCombo.h"

#include "runtime/Error.h"

#include <QBoxLayout>
#include <QFocusEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QTableWidget>
#include <QToolButton>

namespace zuvi {

namespace {

// Case and accents aside: "Tornillo", "TORNILLO" and "tornillo" are one.
QString pliega(const QString &texto)
{
    const QString descompuesto = texto.normalized(QString::NormalizationForm_D);
    QString resultado;
    resultado.reserve(descompuesto.size());
    for (const QChar c : descompuesto)
        if (c.category() != QChar::Mark_NonSpacing)
            resultado.append(c);
    return resultado.toCaseFolded();
}

bool esTeclaDeLista(int tecla)
{
    return tecla == Qt::Key_Down || tecla == Qt::Key_Up || tecla == Qt::Key_Return ||
           tecla == Qt::Key_Enter || tecla == Qt::Key_Escape;
}

} // namespace

MultiCombo::MultiCombo(QWidget *parent) : QWidget(parent) {}

MultiCombo::~MultiCombo()
{
    // The box goes after this part of the container; the list lives in the
    // window, above the other controls.
    if (m_caja)
        m_caja->removeEventFilter(this);
    delete m_lista.data();
}

void MultiCombo::PonCaja(QLineEdit *caja)
{
    if (m_caja)
        m_caja->removeEventFilter(this);
    m_caja = caja;
    if (!caja)
        return;
    caja->installEventFilter(this);
    connect(caja, &QLineEdit::textChanged, this, [this] {
        if (listaVisible())
            filtra();
    });
    if (!m_boton) {
        m_boton = new QToolButton(this);
        m_boton->setObjectName(objectName() + QStringLiteral("_Boton"));
        m_boton->setArrowType(Qt::DownArrow);
        m_boton->setFocusPolicy(Qt::NoFocus);
        m_boton->setToolTip(QStringLiteral("Lista de artículos"));
        connect(m_boton, &QToolButton::clicked, this, [this] {
            reportErrors(window()->objectName(), objectName() + QStringLiteral("_ShowData"),
                         [this] {
                             if (listaVisible())
                                 cierraLista();
                             else
                                 ShowData();
                         });
            if (m_caja)
                m_caja->setFocus(Qt::OtherFocusReason);
        });
        if (auto *disposicion = qobject_cast<QBoxLayout *>(layout()))
            disposicion->addWidget(m_boton);
    }
}

void MultiCombo::PonOrigen(const QString &sql, const QStringList &titulos)
{
    m_origen = sql;
    m_titulos = titulos;
}

bool MultiCombo::listaVisible() const
{
    return m_lista && m_lista->isVisible();
}

void MultiCombo::ShowData()
{
    if (!m_caja)
        return;
    if (!m_consulta || m_origen.isEmpty())
        throw Error(QStringLiteral("La lista de %1 no tiene origen de datos.").arg(objectName()));
    RecordsetPtr rs = m_consulta(m_origen, m_conexion);
    m_filas.clear();
    m_claves.clear();
    for (; rs && !rs->atEnd(); rs->moveNext()) {
        QStringList fila;
        for (int c = 0; c < rs->fieldCount(); ++c)
            fila << rs->text(c).trimmed();
        m_claves << pliega(fila.join(QChar(0x1F)));
        m_filas << fila;
    }
    if (!m_lista) {
        m_lista = new QTableWidget(window());
        m_lista->setObjectName(objectName() + QStringLiteral("_Lista"));
        m_lista->setFocusPolicy(Qt::NoFocus); // the box keeps the keyboard
        m_lista->setEditTriggers(QAbstractItemView::NoEditTriggers);
        m_lista->setSelectionBehavior(QAbstractItemView::SelectRows);
        m_lista->setSelectionMode(QAbstractItemView::SingleSelection);
        m_lista->verticalHeader()->setVisible(false);
        m_lista->horizontalHeader()->setStretchLastSection(true);
        connect(m_lista, &QTableWidget::cellClicked, this, [this](int fila) { elige(fila); });
    }
    m_lista->setColumnCount(
        qMax(int(m_titulos.size()), m_filas.isEmpty() ? 1 : int(m_filas.first().size())));
    m_lista->setHorizontalHeaderLabels(m_titulos);
    filtra();
    coloca();
    m_lista->show();
    m_lista->raise();
}

void MultiCombo::filtra()
{
    if (!m_lista || !m_caja)
        return;
    const QString buscado = pliega(m_caja->text().trimmed());
    m_lista->setRowCount(0);
    int n = 0;
    for (int i = 0; i < m_filas.size() && n < MaximoFilas; ++i) {
        if (!buscado.isEmpty() && !m_claves.at(i).contains(buscado))
            continue;
        m_lista->insertRow(n);
        const QStringList &fila = m_filas.at(i);
        for (int c = 0; c < fila.size() && c < m_lista->columnCount(); ++c)
            m_lista->setItem(n, c, new QTableWidgetItem(fila.at(c)));
        ++n;
    }
    if (n > 0)
        m_lista->setCurrentCell(0, 0);
}

void MultiCombo::coloca()
{
    QWidget *ventana = window();
    const QPoint abajo = m_caja->mapTo(ventana, QPoint(0, m_caja->height()));
    const int ancho = qMin(qMax(m_caja->width() * 2, 520), ventana->width() - abajo.x());
    const int alto = qMin(m_lista->horizontalHeader()->sizeHint().height() +
                              10 * m_lista->verticalHeader()->defaultSectionSize() + 4,
                          qMax(60, ventana->height() - abajo.y()));
    m_lista->setGeometry(abajo.x(), abajo.y(), qMax(ancho, 120), alto);
    m_lista->setColumnWidth(0, ancho / 4);
    if (m_lista->columnCount() > 2)
        m_lista->setColumnWidth(1, ancho / 2);
}

void MultiCombo::cierraLista()
{
    if (m_lista)
        m_lista->hide();
}

void MultiCombo::elige(int fila)
{
    if (!m_lista || fila < 0 || fila >= m_lista->rowCount())
        return;
    const QString clave = m_lista->item(fila, 0) ? m_lista->item(fila, 0)->text() : QString();
    cierraLista();
    if (m_caja) {
        m_caja->setText(clave);
        m_caja->setFocus(Qt::OtherFocusReason);
    }
}

bool MultiCombo::teclaDeLista(QKeyEvent *evento)
{
    if (!listaVisible() || !esTeclaDeLista(evento->key()))
        return false;
    if (evento->type() != QEvent::KeyPress)
        return true; // its release belongs to the list as well
    const int actual = m_lista->currentRow();
    switch (evento->key()) {
    case Qt::Key_Down:
        if (actual + 1 < m_lista->rowCount())
            m_lista->setCurrentCell(actual + 1, 0);
        break;
    case Qt::Key_Up:
        if (actual > 0)
            m_lista->setCurrentCell(actual - 1, 0);
        break;
    case Qt::Key_Escape:
        cierraLista();
        break;
    default: // Enter
        if (actual >= 0)
            elige(actual);
        else
            cierraLista();
        break;
    }
    return true;
}

bool MultiCombo::eventFilter(QObject *objeto, QEvent *evento)
{
    if (objeto == m_caja && evento->type() == QEvent::FocusOut &&
        static_cast<QFocusEvent *>(evento)->reason() != Qt::ActiveWindowFocusReason)
        cierraLista();
    return QWidget::eventFilter(objeto, evento);
}

} // namespace zuvi
