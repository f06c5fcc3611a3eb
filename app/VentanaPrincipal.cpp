#include "app/VentanaPrincipal.h"

#include "app/catalogos/Menus.h"

#include "app/Comandos.h"
#include "app/Componente.h"
#include "app/DialogoEntrada.h"
#include "app/DialogoEstacion.h"
#include "app/DialogoKit.h"
#include "app/Lotes.h"
#include "app/Materiales.h"
#include "app/ModeloOrdenes.h"
#include "contract/Identidad.h"
#include "host/base/Reclamos.h"
#include "host/base/Sesion.h"
#include "host/interaccion/Interaccion.h"
#include "host/reportes/Impresion.h"
#include "host/reportes/RolMes.h"
#include "host/servicios/Comprobaciones.h"
#include "host/sql/CausaError.h"
#include "host/sql/Sql.h"
#include "runtime/ComponentRegistry.h"
#include "runtime/Error.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QDate>
#include <QDateEdit>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QMessageBox>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QStatusBar>
#include <QTableView>
#include <QTimer>
#include <QVBoxLayout>

namespace zuvi::app {

namespace {

using Col = ModeloOrdenes::Columna;

// The first day a date filter offers; there it means "no bound".
const QDate kSinLimite(1900, 1, 1);

QDateEdit *campoFecha(const char *nombre, QWidget *padre)
{
    auto *d = new QDateEdit(padre);
    d->setObjectName(QLatin1String(nombre));
    d->setCalendarPopup(true);
    d->setDisplayFormat(QStringLiteral("dd/MM/yyyy"));
    d->setMinimumDate(kSinLimite);
    d->setSpecialValueText(QStringLiteral("(sin límite)"));
    d->setDate(kSinLimite);
    return d;
}

} // namespace

VentanaPrincipal::VentanaPrincipal(anfitrion::Sesion &sesion, QObject *produccion, QWidget *padre)
    : QMainWindow(padre), m_sesion(sesion), m_produccion(produccion)
{
    // The component's windows give the focus back to the window of this name.
    setObjectName(QStringLiteral("frmMaster"));
    setWindowTitle(QStringLiteral("ZuviProduccion - Órdenes de producción"));

    m_modelo = new ModeloOrdenes(sesion.conexion(), this);
    connect(m_modelo, &ModeloOrdenes::falloLectura, this, [this](const QString &texto) {
        statusBar()->showMessage(QStringLiteral("No se pudieron leer más órdenes: %1").arg(texto));
    });
    m_lista = new QTableView(this);
    m_lista->setObjectName(QStringLiteral("lstOrdenes"));
    m_lista->setModel(m_modelo);
    m_lista->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_lista->setSelectionMode(QAbstractItemView::SingleSelection);
    m_lista->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_lista->setWordWrap(false);
    m_lista->verticalHeader()->hide();
    m_lista->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    m_lista->horizontalHeader()->setSectionResizeMode(Col::ColObserv, QHeaderView::Stretch);
    // The list orders by the order number or by the date of issue, newest
    // first; a click on either caption orders by it, a second one turns it.
    m_lista->horizontalHeader()->setSortIndicatorShown(true);
    m_lista->horizontalHeader()->setSortIndicator(Col::ColOp, Qt::DescendingOrder);
    m_lista->horizontalHeader()->setSectionsClickable(true);
    connect(m_lista->horizontalHeader(), &QHeaderView::sectionClicked, this, [this](int seccion) {
        if (seccion == Col::ColOp || seccion == Col::ColEmision)
            aplicaFiltro(seccion);
        const FiltroOrdenes &f = m_modelo->filtro();
        m_lista->horizontalHeader()->setSortIndicator(f.porEmision ? Col::ColEmision : Col::ColOp,
                                                      f.ascendente ? Qt::AscendingOrder
                                                                   : Qt::DescendingOrder);
    });

    auto *centro = new QWidget(this);
    auto *capa = new QVBoxLayout(centro);
    capa->setContentsMargins(0, 0, 0, 0);
    capa->addWidget(creaFiltros());
    capa->addWidget(m_lista, 1);
    setCentralWidget(centro);
    connect(m_lista->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            [this] { ajustaAcciones(); });
    connect(m_lista, &QTableView::doubleClicked, this, [this] {
        if (m_modifica->isEnabled())
            modifica();
        else if (m_consulta->isEnabled())
            consulta();
    });

    if (m_produccion)
        m_produccion->setProperty("Parent", QVariant::fromValue<QObject *>(this));
    creaMenus();
    statusBar()->showMessage(
        QStringLiteral("Base: %1   Usuario: %2")
            .arg(sesion.opciones().base.section(QLatin1Char('@'), -1), sesion.opciones().usuario));
    resize(900, 520);
    actualiza();
}

QWidget *VentanaPrincipal::creaFiltros()
{
    auto *barra = new QWidget(this);
    auto *capa = new QHBoxLayout(barra);
    m_estado = new QComboBox(barra);
    m_estado->setObjectName(QStringLiteral("cmbEstado"));
    m_estado->addItems(
        {QStringLiteral("Sin cerrar"), QStringLiteral("Cerradas"), QStringLiteral("Todas")});
    m_desde = campoFecha("dtpDesde", barra);
    m_hasta = campoFecha("dtpHasta", barra);
    m_texto = new QLineEdit(barra);
    m_texto->setObjectName(QStringLiteral("txtBuscar"));
    m_texto->setClearButtonEnabled(true);
    m_texto->setPlaceholderText(QStringLiteral("Número de orden o palabras de las observaciones"));
    const auto etiqueta = [barra](const QString &texto, QWidget *campo) {
        auto *l = new QLabel(texto, barra);
        l->setBuddy(campo);
        return l;
    };
    capa->addWidget(etiqueta(QStringLiteral("Ó&rdenes:"), m_estado));
    capa->addWidget(m_estado);
    capa->addWidget(etiqueta(QStringLiteral("E&mitidas desde:"), m_desde));
    capa->addWidget(m_desde);
    capa->addWidget(etiqueta(QStringLiteral("&hasta:"), m_hasta));
    capa->addWidget(m_hasta);
    capa->addWidget(etiqueta(QStringLiteral("&Buscar:"), m_texto));
    capa->addWidget(m_texto, 1);
    // Typing waits for a pause before the list is read again.
    auto *pausa = new QTimer(this);
    pausa->setSingleShot(true);
    pausa->setInterval(250);
    const auto aplica = [this] { aplicaFiltro(); };
    connect(pausa, &QTimer::timeout, this, aplica);
    connect(m_texto, &QLineEdit::textChanged, pausa, qOverload<>(&QTimer::start));
    connect(m_estado, &QComboBox::currentIndexChanged, this, aplica);
    connect(m_desde, &QDateEdit::dateChanged, this, aplica);
    connect(m_hasta, &QDateEdit::dateChanged, this, aplica);
    return barra;
}

void VentanaPrincipal::aplicaFiltro(int columna)
{
    FiltroOrdenes f = m_modelo->filtro();
    f.estado = FiltroOrdenes::Estado(qBound(0, m_estado->currentIndex(), 2));
    f.desde = m_desde->date() == kSinLimite ? QDate() : m_desde->date();
    f.hasta = m_hasta->date() == kSinLimite ? QDate() : m_hasta->date();
    f.texto = m_texto->text();
    if (columna >= 0) {
        const bool porEmision = columna == Col::ColEmision;
        f.ascendente = porEmision == f.porEmision && !f.ascendente;
        f.porEmision = porEmision;
    }
    const qint32 elegida = ordenSeleccionada();
    if (!swallowErrors([&] { m_modelo->ponFiltro(f); }))
        statusBar()->showMessage(QStringLiteral("No se pudo leer la lista de órdenes."));
    if (elegida && !seleccionaOrden(elegida))
        m_lista->clearSelection(); // it left the list: nothing is chosen in its place
    ajustaAcciones();
}

void VentanaPrincipal::creaMenus()
{
    auto agrega = [this](QMenu *menu, const QString &texto, auto funcion,
                         const QKeySequence &atajo = {}) {
        QAction *a = menu->addAction(texto);
        a->setShortcut(atajo);
        connect(a, &QAction::triggered, this, funcion);
        return a;
    };

    QMenu *ordenes = menuBar()->addMenu(QStringLiteral("Ó&rdenes"));
    m_nueva =
        agrega(ordenes, QStringLiteral("&Nueva"), &VentanaPrincipal::nueva, QKeySequence::New);
    m_nueva->setText(QStringLiteral("&Nueva orden"));
    m_modifica = agrega(ordenes, QStringLiteral("&Modificar orden"), &VentanaPrincipal::modifica);
    m_modifica->setShortcuts({QKeySequence(Qt::Key_Return), QKeySequence(Qt::Key_Enter)});
    m_consulta = agrega(ordenes, QStringLiteral("&Consultar orden"), &VentanaPrincipal::consulta);
    m_libera =
        agrega(ordenes, QStringLiteral("&Liberar orden ocupada"), &VentanaPrincipal::liberaOcupada);
    m_libera->setObjectName(QStringLiteral("actLiberar"));
    ordenes->addSeparator();
    m_entrega =
        agrega(ordenes, QStringLiteral("&Entregar producto terminado"), &VentanaPrincipal::entrega);
    m_cancela = agrega(ordenes, QStringLiteral("C&ancelar orden"), &VentanaPrincipal::cancela);
    agrega(ordenes, QStringLiteral("Mate&riales de la orden"), [this] {
        if (const qint32 op = ordenSeleccionada()) {
            try {
                muestraMateriales(this, m_sesion.conexion(), op);
            } catch (...) {
                muestraError(describeCurrentException());
            }
        }
    })->setObjectName(QStringLiteral("actMateriales"));
    ordenes->addSeparator();
    agrega(ordenes, QStringLiteral("Ac&tualizar"), &VentanaPrincipal::actualiza,
           QKeySequence(Qt::Key_F5));
    agrega(ordenes, QStringLiteral("Con&figuración de la estación..."), [this] {
        try {
            DialogoEstacion(m_sesion.conexion(), m_sesion.opciones().estacion, this).exec();
        } catch (...) {
            muestraError(describeCurrentException());
        }
    })->setObjectName(QStringLiteral("actEstacion"));
    ordenes->addSeparator();
    agrega(ordenes, QStringLiteral("&Salir"), &QWidget::close, QKeySequence::Quit);

    QMenu *kit = menuBar()->addMenu(QStringLiteral("&Kits"));
    agrega(kit, QStringLiteral("&Ensamblar..."), [this] {
        kits(false);
    })->setObjectName(QStringLiteral("actEnsamblar"));
    agrega(kit, QStringLiteral("&Desensamblar..."), [this] {
        kits(true);
    })->setObjectName(QStringLiteral("actDesensamblar"));

    QMenu *fraccion = menuBar()->addMenu(QStringLiteral("&Fracciones"));
    agrega(fraccion, QStringLiteral("&Captura de fracciones"), &VentanaPrincipal::fracciones)
        ->setObjectName(QStringLiteral("actFracciones"));

    QMenu *turno = menuBar()->addMenu(QStringLiteral("&Turnos"));
    m_turnos = agrega(turno, QStringLiteral("&Turnos y horarios"), &VentanaPrincipal::turnos);
    agrega(turno, QStringLiteral("&Rol del mes"), &VentanaPrincipal::rolDelMes)
        ->setObjectName(QStringLiteral("actRolMes"));

    agregaMenusDeDatos(this, m_sesion.conexion());

    QMenu *ayuda = menuBar()->addMenu(QStringLiteral("Ay&uda"));
    agrega(ayuda, QStringLiteral("&Acerca de"), &VentanaPrincipal::acercaDe);

    m_nueva->setObjectName(QStringLiteral("actNueva"));
    m_modifica->setObjectName(QStringLiteral("actModificar"));
    m_consulta->setObjectName(QStringLiteral("actConsultar"));
    m_entrega->setObjectName(QStringLiteral("actEntregar"));
    m_cancela->setObjectName(QStringLiteral("actCancelar"));
    m_turnos->setObjectName(QStringLiteral("actTurnos"));
    ajustaAcciones();
}

void VentanaPrincipal::ajustaAcciones()
{
    // An entry is offered when the component answers to its member by name.
    const auto responde = [this](const char *firma) {
        return m_produccion && m_produccion->metaObject()->indexOfMethod(
                                   QMetaObject::normalizedSignature(firma)) >= 0;
    };
    const bool hay = ordenSeleccionada() != 0;
    m_nueva->setEnabled(responde("NuevaOp()"));
    m_modifica->setEnabled(hay && responde("ModificaOp(int)"));
    m_consulta->setEnabled(hay && responde("ConsultaOp(int)"));
    m_entrega->setEnabled(hay && responde("EntregaProductoTerminado(int)"));
    m_cancela->setEnabled(hay && responde("CancelaOp(int)"));
    m_turnos->setEnabled(responde("MuestraTurnos()"));
    if (m_libera) {
        const QModelIndexList filas = m_lista->selectionModel()->selectedRows();
        m_libera->setEnabled(!filas.isEmpty() &&
                             !m_modelo->ocupadaPor(filas.first().row()).isEmpty());
    }
    ajustaPorRol();
}

void VentanaPrincipal::actualiza()
{
    if (m_actualizando)
        return;
    m_actualizando = true;
    const qint32 elegida = ordenSeleccionada();
    leeLista([&] { m_modelo->recarga(); });
    if (elegida && !seleccionaOrden(elegida))
        m_lista->clearSelection(); // it left the list: nothing is chosen in its place
    ajustaAcciones();
    m_actualizando = false;
}

void VentanaPrincipal::refresca()
{
    if (m_actualizando)
        return;
    m_actualizando = true;
    const qint32 elegida = ordenSeleccionada();
    if (elegida && !m_tocadas.contains(elegida)) {
        m_tocadas.append(elegida);
        if (m_tocadas.size() > 20) // an editor stays open for a few of them at most
            m_tocadas.removeFirst();
    }
    leeLista([&] {
        for (const qint32 op : std::as_const(m_tocadas))
            m_modelo->refrescaOrden(op);
        m_modelo->refrescaNuevas();
    });
    if (elegida && !seleccionaOrden(elegida))
        m_lista->clearSelection(); // it left the list: nothing is chosen in its place
    ajustaAcciones();
    m_actualizando = false;
}

// Reads the list or a part of it; a failure says why in the status bar, and
// the next reading, once the database answers again, brings the list back.
void VentanaPrincipal::leeLista(const std::function<void()> &lectura)
{
    try {
        lectura();
    } catch (...) {
        statusBar()->showMessage(QStringLiteral("No se pudo leer la lista de órdenes: %1")
                                     .arg(anfitrion::causaLegible(describeCurrentException())));
    }
}

qint32 VentanaPrincipal::ordenSeleccionada() const
{
    const QModelIndexList filas = m_lista->selectionModel()->selectedRows();
    return filas.isEmpty() ? 0 : m_modelo->orden(filas.first().row());
}

bool VentanaPrincipal::seleccionaOrden(qint32 op)
{
    const int fila = m_modelo->filaDe(op);
    if (fila < 0)
        return false;
    m_lista->selectRow(fila);
    return true;
}

void VentanaPrincipal::liberaOcupada()
{
    if (const qint32 op = ordenSeleccionada()) {
        try {
            const QString hecho = anfitrion::liberaOrden(m_sesion.conexion(), op);
            if (!hecho.isEmpty())
                statusBar()->showMessage(hecho, 8000);
        } catch (...) {
            muestraError(describeCurrentException());
        }
    }
    refresca();
}

void VentanaPrincipal::muestraError(const QString &texto)
{
    anfitrion::interaccion().mensaje(texto, 16);
}

void VentanaPrincipal::closeEvent(QCloseEvent *evento)
{
    // The component's windows close with the shell; any of them may refuse.
    for (QWidget *w : QApplication::topLevelWidgets())
        if (w != this && w->isVisible() && !w->close()) {
            evento->ignore();
            return;
        }
    evento->accept();
}

void VentanaPrincipal::changeEvent(QEvent *evento)
{
    // Back from one of the component's windows: what it saved shows at once.
    if (evento->type() == QEvent::ActivationChange && isActiveWindow())
        refresca();
    QMainWindow::changeEvent(evento);
}

int ejecutaVentanaPrincipal(const LineaComandos &lc)
{
    anfitrion::ponInteraccion(anfitrion::interaccionVentanas(lc.opciones.si));
    anfitrion::ponVistaPrevia(true); // printed documents open in the print preview
    std::unique_ptr<anfitrion::Sesion> sesion;
    std::unique_ptr<QObject> produccion;
    try {
        LineaComandos conEntrada = lc;
        conEntrada.opciones.pideEntrada = pideEntradaVentana;
        sesion = abreSesion(conEntrada);
        produccion = creaProduccion(sesion->ambiente());
    } catch (...) {
        avisa(describeCurrentException());
        return Fallo;
    }
    int codigo = 0;
    {
        VentanaPrincipal ventana(*sesion, produccion.get());
        ventana.show();
        codigo = QApplication::exec();
    }
    QApplication::closeAllWindows();
    return codigo;
}

} // namespace zuvi::app
