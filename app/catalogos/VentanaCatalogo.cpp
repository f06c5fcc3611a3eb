#include "app/catalogos/VentanaCatalogo.h"

#include "app/catalogos/Listados.h"
#include "app/catalogos/ModeloTabla.h"
#include "host/datos/Reglas.h"
#include "host/interaccion/Interaccion.h"
#include "host/servicios/BuscaCatalogoAnfitrion.h"
#include "host/sql/CausaError.h"
#include "host/sql/Sql.h"
#include "runtime/Error.h"

#include <QApplication>
#include <QCloseEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QShortcut>
#include <QSqlError>
#include <QSqlRecord>
#include <QTableView>
#include <QToolBar>
#include <QVBoxLayout>

namespace zuvi::app {

using namespace anfitrion::datos;

namespace {

const Catalogo &maestroDe(const QString &nombre)
{
    return nombre == QLatin1String("kits") ? cabeceraKits() : *catalogo(nombre);
}

// QSqlTableModel marks a row not yet written with "*" in its vertical header.
bool esNueva(const ModeloTabla *m, int fila)
{
    return m->headerData(fila, Qt::Vertical).toString() == QLatin1String("*");
}

} // namespace

VentanaCatalogo::VentanaCatalogo(const QString &nombre, const QSqlDatabase &db, QWidget *padre)
    : QWidget(padre, Qt::Window), m_db(db), m_catalogo(*catalogo(nombre))
{
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(m_catalogo.titulo);
    resize(900, 600);
    auto *capas = new QVBoxLayout(this);
    m_buscador = new QLineEdit(this);
    m_buscador->setPlaceholderText(
        QStringLiteral("Buscar (Ctrl+F): palabras de la clave o la descripción"));
    m_buscador->setClearButtonEnabled(true);
    m_buscador->installEventFilter(this);
    capas->addWidget(m_buscador);
    m_maestro = new ModeloTabla(maestroDe(nombre), db, this);
    m_vista = creaVista(m_maestro);
    capas->addWidget(m_vista, 3);
    if (nombre == QLatin1String("kits") || nombre == QLatin1String("articulos")) {
        const bool kits = nombre == QLatin1String("kits");
        m_catDetalle = catalogo(kits ? QStringLiteral("kits") : QStringLiteral("claves"));
        m_enlace = kits ? QStringLiteral("articulo") : QStringLiteral("Articulo");
        capas->addWidget(new QLabel(kits ? QStringLiteral("Componentes del kit (por lote):")
                                         : QStringLiteral("Claves adicionales del artículo:"),
                                    this));
        m_detalle = new ModeloTabla(*m_catDetalle, db, this);
        m_vistaDetalle = creaVista(m_detalle);
        capas->addWidget(m_vistaDetalle, 2);
        if (kits) {
            m_costo = new QLabel(this);
            capas->addWidget(m_costo);
        }
        connect(m_vista->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
                &VentanaCatalogo::muestraDetalle);
    }
    m_estado = new QLabel(this);
    capas->addWidget(m_estado);
    creaAcciones();
    connect(m_buscador, &QLineEdit::textChanged, this, &VentanaCatalogo::busca);
    busca({});
}

QTableView *VentanaCatalogo::creaVista(ModeloTabla *modelo)
{
    auto *v = new QTableView(this);
    v->setModel(modelo);
    v->setSelectionBehavior(QAbstractItemView::SelectRows);
    v->setSelectionMode(QAbstractItemView::SingleSelection);
    v->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::AnyKeyPressed |
                       QAbstractItemView::EditKeyPressed);
    v->horizontalHeader()->setStretchLastSection(true);
    v->verticalHeader()->setDefaultSectionSize(v->fontMetrics().height() + 8);
    v->installEventFilter(this);
    modelo->select();
    // The key of a detail row and the id of a component line are not typed.
    for (const QString &oculta : {QStringLiteral("id"), m_enlace})
        if (!oculta.isEmpty() && modelo != m_maestro && modelo->indice(oculta) >= 0)
            v->hideColumn(modelo->indice(oculta));
    return v;
}

void VentanaCatalogo::creaAcciones()
{
    auto *barra = new QToolBar(this);
    static_cast<QVBoxLayout *>(layout())->insertWidget(0, barra);
    barra->addAction(QStringLiteral("Nuevo (Ctrl+N)"), this, &VentanaCatalogo::nuevo);
    barra->addAction(QStringLiteral("Guardar (Ctrl+S)"), this, &VentanaCatalogo::guarda);
    barra->addAction(QStringLiteral("Borrar (Supr)"), this, &VentanaCatalogo::borra);
    barra->addSeparator();
    barra->addAction(QStringLiteral("Importar..."), this, &VentanaCatalogo::importa);
    barra->addAction(QStringLiteral("Exportar..."), this, &VentanaCatalogo::exporta);
    auto atajo = [this](QKeySequence teclas, auto accion) {
        auto *s = new QShortcut(teclas, this);
        s->setContext(Qt::WindowShortcut);
        connect(s, &QShortcut::activated, this, accion);
    };
    atajo(QKeySequence(Qt::CTRL | Qt::Key_N), &VentanaCatalogo::nuevo);
    atajo(QKeySequence(Qt::CTRL | Qt::Key_S), &VentanaCatalogo::guarda);
    // F6 goes between the list and the one that belongs to its row.
    atajo(QKeySequence(Qt::Key_F6), [this] {
        if (m_vistaDetalle)
            (m_vistaDetalle->hasFocus() ? m_vista : m_vistaDetalle)->setFocus();
    });
    atajo(QKeySequence(Qt::CTRL | Qt::Key_F), [this] {
        m_buscador->setFocus();
        m_buscador->selectAll();
    });
}

ModeloTabla *VentanaCatalogo::activo() const
{
    return m_vistaDetalle && m_vistaDetalle->hasFocus() ? m_detalle : m_maestro;
}

QTableView *VentanaCatalogo::vistaDe(ModeloTabla *m) const
{
    return m == m_detalle ? m_vistaDetalle : m_vista;
}

void VentanaCatalogo::busca(const QString &texto)
{
    m_maestro->filtra(texto);
    m_estado->setText(m_maestro->rowCount() == 0
                          ? QStringLiteral("Ningún renglón con \"%1\".").arg(texto)
                          : QString());
    if (m_maestro->rowCount() > 0)
        m_vista->setCurrentIndex(m_maestro->index(0, 0));
    muestraDetalle();
}

void VentanaCatalogo::muestraDetalle()
{
    if (!m_detalle)
        return;
    const int fila = m_vista->currentIndex().row();
    const QVariant clave =
        fila >= 0 ? m_maestro->valores(fila).value(m_maestro->catalogo().columnas.first().nombre)
                  : QVariant(QString());
    m_detalle->filtra({}, m_enlace, clave.isNull() ? QVariant(QString()) : clave);
    if (m_costo)
        m_costo->setText(
            fila < 0 ? QString()
                     : QStringLiteral("Costo de un kit (componentes y subkits): %1")
                           .arg(QLocale().toString(costoKit(m_db, clave.toString()), 'f', 2)));
}

QString VentanaCatalogo::costoMostrado() const
{
    return m_costo ? m_costo->text() : QString();
}

void VentanaCatalogo::nuevo()
{
    ModeloTabla *m = activo();
    if (m == m_detalle && m_vista->currentIndex().row() < 0)
        return avisa(QStringLiteral("Elija primero %1.").arg(m_maestro->catalogo().singular));
    m->insertRow(0);
    for (const Columna &c : m->catalogo().columnas) {
        const int i = m->indice(c.nombre);
        if (c.nombre == m_enlace && m == m_detalle)
            m->setData(m->index(0, i), m_maestro->valores(m_vista->currentIndex().row())
                                           .value(m_maestro->catalogo().columnas.first().nombre));
        else if (c.tipo == Tipo::Real || c.tipo == Tipo::Bandera)
            m->setData(m->index(0, i), c.nombre == QLatin1String("Minimo") ? 1 : 0);
        else if (c.tipo == Tipo::Entero && !c.clave)
            m->setData(m->index(0, i), 1);
    }
    QTableView *v = vistaDe(m);
    int primera = 0;
    while (v->isColumnHidden(primera))
        ++primera;
    v->setFocus();
    v->setCurrentIndex(m->index(0, primera));
    v->edit(m->index(0, primera));
}

bool VentanaCatalogo::guardaModelo(ModeloTabla *m)
{
    if (!m->isDirty())
        return true;
    QStringList nuevosKits;
    for (int fila = 0; fila < m->rowCount(); ++fila) {
        bool sucia = false;
        for (int c = 0; c < m->columnCount(); ++c)
            sucia = sucia || m->isDirty(m->index(fila, c));
        if (!sucia)
            continue;
        const QString motivo = revisaFila(m_db, m->catalogo(), m->valores(fila), esNueva(m, fila));
        if (!motivo.isEmpty()) {
            vistaDe(m)->setCurrentIndex(m->index(fila, 0));
            avisa(QStringLiteral("No se guardó %1: %2").arg(m->catalogo().singular, motivo));
            return false;
        }
        if (m->catalogo().tabla == QLatin1String("componen"))
            nuevosKits << m->valores(fila).value(QStringLiteral("articulo")).toString();
    }
    if (!m->submitAll()) {
        const QSqlError e = m->lastError();
        avisa(QStringLiteral("No se guardó %1: %2")
                  .arg(m->catalogo().singular,
                       anfitrion::causaDeFallo(e.databaseText(), e.nativeErrorCode().toInt())));
        return false;
    }
    // An article with a recipe is a kit for the editor's lookups.
    for (const QString &k : nuevosKits)
        anfitrion::ejecutaAccion(
            m_db, QStringLiteral("UPDATE prods SET kit = 1 WHERE articulo = ?"), {k});
    return true;
}

bool VentanaCatalogo::guarda()
{
    // The row saved stays chosen, wherever its key puts it once read again.
    const QString campo = m_maestro->catalogo().columnas.first().nombre;
    const int fila = m_vista->currentIndex().row();
    const QVariant clave = fila >= 0 ? m_maestro->valores(fila).value(campo) : QVariant();
    if (!guardaModelo(m_maestro) || (m_detalle && !guardaModelo(m_detalle)))
        return false;
    m_estado->setText(QStringLiteral("Guardado."));
    for (int r = 0; r < m_maestro->rowCount() && clave.isValid(); ++r)
        if (m_maestro->valores(r).value(campo) == clave) {
            m_vista->setCurrentIndex(m_maestro->index(r, 0));
            break;
        }
    muestraDetalle();
    return true;
}

void VentanaCatalogo::borra()
{
    ModeloTabla *m = activo();
    const int fila = vistaDe(m)->currentIndex().row();
    if (fila < 0)
        return;
    if (esNueva(m, fila)) {
        m->revertRow(fila);
        return;
    }
    const Catalogo &c = m->catalogo();
    const QVariant clave = m->valores(fila).value(c.columnas.first().nombre);
    const QString que =
        m == m_detalle && m_catDetalle->nombre == QLatin1String("kits")
            ? QStringLiteral("el componente %1")
                  .arg(m->valores(fila).value(QStringLiteral("Componente")).toString())
            : QStringLiteral("%1 %2").arg(c.singular, clave.toString());
    const QStringList usado = usos(m_db, c.nombre, clave);
    if (!usado.isEmpty())
        return avisa(QStringLiteral("No se puede borrar %1: se usa %2.")
                         .arg(que, usado.join(QStringLiteral("; "))));
    if (!anfitrion::interaccion().pregunta(QStringLiteral("¿Borrar %1?").arg(que)))
        return;
    try {
        anfitrion::Transaccion t(m_db);
        if (c.tabla == QLatin1String("componen")) { // a recipe goes with its components
            anfitrion::ejecutaAccion(
                m_db, QStringLiteral("DELETE FROM comppart WHERE articulo = ?"), {clave});
            anfitrion::ejecutaAccion(
                m_db, QStringLiteral("UPDATE prods SET kit = 0 WHERE articulo = ?"), {clave});
        }
        m->removeRow(fila);
        if (!m->submitAll())
            throw Error(anfitrion::causaDeFallo(m->lastError().databaseText(),
                                                m->lastError().nativeErrorCode().toInt()));
        t.confirma();
    } catch (const Error &e) {
        m->revertAll();
        avisa(QStringLiteral("No se borró %1: %2").arg(que, e.description()));
    }
    muestraDetalle();
}

void VentanaCatalogo::busquedaF2(QTableView *vista)
{
    auto *m = static_cast<ModeloTabla *>(vista->model());
    const QModelIndex i = vista->currentIndex();
    const Columna *c =
        i.isValid() ? m->catalogo().columna(m->record().fieldName(i.column())) : nullptr;
    if (!c || c->referencia.isEmpty())
        return;
    const QString titulo = c->referencia == QLatin1String("almacenes")
                               ? QStringLiteral("Almacenes")
                               : QStringLiteral("Articulos");
    const anfitrion::DefinicionCatalogo *def = anfitrion::definicionCatalogo(titulo);
    try {
        anfitrion::DialogoCatalogo dialogo(*def, anfitrion::FilasCatalogo::lee(*def, {}, m_db), {},
                                           this);
        if (dialogo.exec() == QDialog::Accepted || !dialogo.claveElegida().isEmpty())
            if (!dialogo.claveElegida().isEmpty())
                m->setData(i, dialogo.claveElegida());
    } catch (const Error &e) {
        avisa(e.description());
    }
}

bool VentanaCatalogo::eventFilter(QObject *objeto, QEvent *evento)
{
    if (evento->type() != QEvent::KeyPress)
        return QWidget::eventFilter(objeto, evento);
    auto *tecla = static_cast<QKeyEvent *>(evento);
    auto *vista = qobject_cast<QTableView *>(objeto);
    if (objeto == m_buscador && (tecla->key() == Qt::Key_Down || tecla->key() == Qt::Key_Return)) {
        m_vista->setFocus();
        return true;
    }
    // A key an open editor let through (Return, which the delegate commits
    // afterwards) reaches the view too: only the view's own keys count.
    if (!vista || QApplication::focusWidget() != vista)
        return QWidget::eventFilter(objeto, evento);
    switch (tecla->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        guarda();
        return true;
    case Qt::Key_Delete:
        borra();
        return true;
    case Qt::Key_F2:
        busquedaF2(vista);
        return true;
    default:
        return QWidget::eventFilter(objeto, evento);
    }
}

void VentanaCatalogo::keyPressEvent(QKeyEvent *evento)
{
    if (evento->key() != Qt::Key_Escape)
        return QWidget::keyPressEvent(evento);
    const bool sucio = m_maestro->isDirty() || (m_detalle && m_detalle->isDirty());
    if (!sucio)
        return (void)close();
    m_maestro->revertAll();
    if (m_detalle)
        m_detalle->revertAll();
    m_estado->setText(QStringLiteral("Cambios descartados."));
}

void VentanaCatalogo::closeEvent(QCloseEvent *evento)
{
    const bool sucio = m_maestro->isDirty() || (m_detalle && m_detalle->isDirty());
    if (sucio && !anfitrion::interaccion().pregunta(
                     QStringLiteral("Hay cambios sin guardar en %1. ¿Descartarlos y cerrar?")
                         .arg(windowTitle()))) {
        evento->ignore();
        return;
    }
    evento->accept();
}

void VentanaCatalogo::avisa(const QString &texto)
{
    m_estado->setText(texto);
    aviso(this, windowTitle(), texto);
}

} // namespace zuvi::app
