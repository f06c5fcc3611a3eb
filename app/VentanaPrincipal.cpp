#include "app/VentanaPrincipal.h"

#include "app/catalogos/Menus.h"

#include "app/Comandos.h"
#include "app/Componente.h"
#include "app/DialogoEntrada.h"
#include "app/DialogoEstacion.h"
#include "app/DialogoKit.h"
#include "app/Lotes.h"
#include "app/Materiales.h"
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
#include <QMenuBar>
#include <QMessageBox>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QSqlQuery>
#include <QStatusBar>
#include <QTableWidget>

namespace zuvi::app {

namespace {

enum Columna {
    ColOp,
    ColEstado,
    ColEmision,
    ColAlmacen,
    ColObserv,
    ColCerrado,
    ColPartidas,
    ColOcupada
};

QString textoFecha(const QVariant &v)
{
    const QDate d = v.toDate();
    return d.isValid() ? d.toString(QStringLiteral("dd/MM/yyyy")) : v.toString();
}

QTableWidgetItem *celda(const QString &texto, bool numero = false)
{
    auto *item = new QTableWidgetItem(texto);
    item->setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled);
    if (numero)
        item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
    return item;
}

} // namespace

VentanaPrincipal::VentanaPrincipal(anfitrion::Sesion &sesion, QObject *produccion, QWidget *padre)
    : QMainWindow(padre), m_sesion(sesion), m_produccion(produccion)
{
    // The component's windows give the focus back to the window of this name.
    setObjectName(QStringLiteral("frmMaster"));
    setWindowTitle(QStringLiteral("ZuviProduccion - Órdenes de producción"));

    m_lista = new QTableWidget(0, 8, this);
    m_lista->setObjectName(QStringLiteral("lstOrdenes"));
    m_lista->setHorizontalHeaderLabels({QStringLiteral("Orden"), QStringLiteral("Estado"),
                                        QStringLiteral("Emisión"), QStringLiteral("Almacén"),
                                        QStringLiteral("Observaciones"), QStringLiteral("Cerrada"),
                                        QStringLiteral("Partidas"), QStringLiteral("Ocupada por")});
    m_lista->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_lista->setSelectionMode(QAbstractItemView::SingleSelection);
    m_lista->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_lista->verticalHeader()->hide();
    m_lista->horizontalHeader()->setSectionResizeMode(ColObserv, QHeaderView::Stretch);
    setCentralWidget(m_lista);
    connect(m_lista, &QTableWidget::itemSelectionChanged, this, [this] { ajustaAcciones(); });
    connect(m_lista, &QTableWidget::cellDoubleClicked, this, [this] {
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
        const QList<QTableWidgetItem *> items = m_lista->selectedItems();
        const QTableWidgetItem *ocupada =
            items.isEmpty() ? nullptr : m_lista->item(items.first()->row(), ColOcupada);
        m_libera->setEnabled(ocupada && !ocupada->text().isEmpty());
    }
    ajustaPorRol();
}

void VentanaPrincipal::actualiza()
{
    if (m_actualizando)
        return;
    m_actualizando = true;
    const qint32 elegida = ordenSeleccionada();
    QString causa;
    try {
        QSqlQuery q = anfitrion::ejecuta(
            m_sesion.conexion(),
            QStringLiteral("SELECT op.op, op.estado, op.f_emision, op.almacen, op.observ, "
                           "op.cerrado, COUNT(oppart.op), op.ocupado, op.usuario, (SELECT "
                           "usuario FROM reclamos WHERE reclamos.op = op.op), (SELECT estacion "
                           "FROM reclamos WHERE reclamos.op = op.op) FROM op LEFT JOIN "
                           "oppart ON oppart.op = op.op GROUP BY op.op, op.estado, op.f_emision, "
                           "op.almacen, op.observ, op.cerrado, op.ocupado, op.usuario ORDER BY "
                           "op.op"));
        m_lista->setRowCount(0);
        while (q.next()) {
            const int fila = m_lista->rowCount();
            m_lista->insertRow(fila);
            m_lista->setItem(fila, ColOp, celda(q.value(0).toString(), true));
            m_lista->setItem(fila, ColEstado, celda(q.value(1).toString().trimmed()));
            m_lista->setItem(fila, ColEmision, celda(textoFecha(q.value(2))));
            m_lista->setItem(fila, ColAlmacen, celda(q.value(3).toString(), true));
            m_lista->setItem(fila, ColObserv, celda(q.value(4).toString().trimmed()));
            m_lista->setItem(fila, ColCerrado,
                             celda(q.value(5).toInt() != 0 ? QStringLiteral("Sí") : QString()));
            m_lista->setItem(fila, ColPartidas, celda(q.value(6).toString(), true));
            // Whoever holds the order's claim; a mark with no claim names who last saved it.
            const QString guardo = q.value(8).toString().trimmed();
            const QString titular =
                !q.value(9).isNull()
                    ? QStringLiteral("%1 (estación %2)")
                          .arg(q.value(9).toString().trimmed(), q.value(10).toString().trimmed())
                : q.value(7).toInt() == 0 ? QString()
                : guardo.isEmpty()        ? QStringLiteral("(sin usuario)")
                                          : guardo;
            m_lista->setItem(fila, ColOcupada, celda(titular));
        }
    } catch (...) {
        causa = anfitrion::causaLegible(describeCurrentException());
    }
    if (!causa.isEmpty())
        statusBar()->showMessage(
            QStringLiteral("No se pudo leer la lista de órdenes: %1").arg(causa));
    if (elegida)
        seleccionaOrden(elegida);
    ajustaAcciones();
    m_actualizando = false;
}

qint32 VentanaPrincipal::ordenSeleccionada() const
{
    const QList<QTableWidgetItem *> items = m_lista->selectedItems();
    if (items.isEmpty())
        return 0;
    const QTableWidgetItem *op = m_lista->item(items.first()->row(), ColOp);
    return op ? op->text().toInt() : 0;
}

bool VentanaPrincipal::seleccionaOrden(qint32 op)
{
    for (int fila = 0; fila < m_lista->rowCount(); ++fila) {
        if (m_lista->item(fila, ColOp)->text().toInt() == op) {
            m_lista->selectRow(fila);
            return true;
        }
    }
    return false;
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
    actualiza();
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
        actualiza();
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
