// The main window's commands: the order commands it hands to the component,
// the batch operations, the shell's own windows and reports.

#include "app/VentanaPrincipal.h"

#include "app/Comandos.h"
#include "app/Componente.h"
#include "app/DialogoKit.h"
#include "app/Lotes.h"
#include "contract/Identidad.h"
#include "host/base/Reclamos.h"
#include "host/base/Sesion.h"
#include "host/interaccion/Interaccion.h"
#include "host/reportes/Impresion.h"
#include "host/reportes/RolMes.h"
#include "host/servicios/Comprobaciones.h"
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

template <typename... A> bool VentanaPrincipal::llama(const char *metodo, A... argumentos)
{
    bool ok = false;
    try {
        if (!m_produccion)
            throw Error(QStringLiteral("El componente de producción no está disponible."));
        ok =
            QMetaObject::invokeMethod(m_produccion.data(), metodo,
                                      QArgument<A>(QMetaType::fromType<A>().name(), argumentos)...);
        if (!ok)
            throw Error(QStringLiteral("El componente no acepta la llamada %1.")
                            .arg(QString::fromLatin1(metodo)));
    } catch (...) {
        muestraError(describeCurrentException());
    }
    refresca();
    return ok;
}

void VentanaPrincipal::nueva()
{
    llama("NuevaOp");
}

void VentanaPrincipal::modifica()
{
    const qint32 op = ordenSeleccionada();
    if (!op)
        return;
    try {
        anfitrion::preparaApertura(m_sesion.conexion(), op);
    } catch (...) {
        muestraError(describeCurrentException());
        return;
    }
    llama("ModificaOp", op);
}

void VentanaPrincipal::consulta()
{
    if (const qint32 op = ordenSeleccionada())
        llama("ConsultaOp", op);
}

Desenlace VentanaPrincipal::lote(const QString &metodo, const QVariantList &valores)
{
    Desenlace d;
    try {
        if (!m_produccion)
            throw Error(QStringLiteral("El componente de producción no está disponible."));
        d = llamaMiembro(m_produccion.data(), m_sesion.conexion(), metodo, valores);
    } catch (const anfitrion::Rechazo &e) {
        anfitrion::interaccion().mensaje(e.description(), 48);
    } catch (...) {
        muestraError(describeCurrentException());
    }
    if (!d.resumen.isEmpty())
        anfitrion::interaccion().mensaje(d.resumen, d.completo ? 64 : 16);
    refresca();
    return d;
}

void VentanaPrincipal::entrega()
{
    const qint32 op = ordenSeleccionada();
    if (!op)
        return;
    if (!anfitrion::interaccion().pregunta(
            QStringLiteral("¿Entregar el producto terminado de la orden %1?").arg(op)))
        return;
    const Desenlace d = lote(QStringLiteral("EntregaProductoTerminado"), {op});
    if (d.llamado && d.completo)
        statusBar()->showMessage(
            QStringLiteral("Producto terminado de la orden %1 entregado. %2").arg(op).arg(d.hecho),
            8000);
}

void VentanaPrincipal::cancela()
{
    const qint32 op = ordenSeleccionada();
    if (!op)
        return;
    // CancelaOp asks its own questions and says whether it changed anything.
    const Desenlace d = lote(QStringLiteral("CancelaOp"), {op});
    statusBar()->showMessage(d.completo ? QStringLiteral("Orden %1 cancelada.").arg(op)
                                        : QStringLiteral("La orden %1 no se canceló.").arg(op),
                             8000);
}

void VentanaPrincipal::kits(bool desensamble)
{
    DialogoKit dialogo(
        m_sesion.conexion(),
        desensamble ? DialogoKit::Operacion::Desensamble : DialogoKit::Operacion::Ensamble, this);
    if (dialogo.exec() != QDialog::Accepted)
        return;
    // The dialog checked the values; the same checks run again at the call,
    // since the catalogue may have changed while it was open.
    if (dialogo.operacion() == DialogoKit::Operacion::Ensamble)
        lote(QStringLiteral("Ensamble"), {dialogo.articulo(), dialogo.almacen(),
                                          qint32(qRound(dialogo.cantidad())), dialogo.orden()});
    else
        lote(QStringLiteral("Desensamble"),
             {dialogo.articulo(), dialogo.cantidad(), dialogo.almacen(), dialogo.orden()});
}

void VentanaPrincipal::fracciones()
{
    llama("MuestraCapturaDeFracciones");
}

void VentanaPrincipal::turnos()
{
    llama("MuestraTurnos");
}

void VentanaPrincipal::rolDelMes()
{
    try {
        QDialog dialogo(this);
        dialogo.setWindowTitle(QStringLiteral("Rol del mes"));
        auto *mes = new QDateEdit(QDate::currentDate(), &dialogo);
        mes->setDisplayFormat(QStringLiteral("MM/yyyy"));
        mes->setObjectName(QStringLiteral("mes"));
        auto *turno = new QComboBox(&dialogo);
        turno->setObjectName(QStringLiteral("turno"));
        turno->addItem(QStringLiteral("(todos los turnos)"), QString());
        QSqlQuery q = anfitrion::ejecuta(m_sesion.conexion(),
                                         QStringLiteral("SELECT turno FROM turnos ORDER BY turno"));
        while (q.next())
            turno->addItem(q.value(0).toString(), q.value(0).toString());
        auto *botones =
            new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, &dialogo);
        connect(botones, &QDialogButtonBox::accepted, &dialogo, &QDialog::accept);
        connect(botones, &QDialogButtonBox::rejected, &dialogo, &QDialog::reject);
        auto *forma = new QFormLayout(&dialogo);
        forma->addRow(QStringLiteral("&Mes:"), mes);
        forma->addRow(QStringLiteral("&Turno:"), turno);
        forma->addRow(botones);
        if (dialogo.exec() != QDialog::Accepted)
            return;
        const anfitrion::RolMes rol =
            anfitrion::leeRolMes(m_sesion.conexion(), mes->date().year(), mes->date().month(),
                                 turno->currentData().toString());
        QPrinter impresora(QPrinter::HighResolution);
        impresora.setDocName(anfitrion::nombreArchivoRol(rol));
        QPrintPreviewDialog vista(&impresora, this);
        vista.setWindowTitle(QStringLiteral("Rol del mes"));
        vista.resize(1100, 760);
        connect(&vista, &QPrintPreviewDialog::paintRequested, this, [&rol, this](QPrinter *p) {
            try {
                anfitrion::pintaRolMes(p, rol);
            } catch (...) {
                muestraError(describeCurrentException());
            }
        });
        vista.exec();
    } catch (...) {
        muestraError(describeCurrentException());
    }
}

void VentanaPrincipal::acercaDe()
{
    QMessageBox::about(
        this, QStringLiteral("Acerca de ZuviProduccion"),
        QStringLiteral("<b>ZuviProduccion %1</b><p>Módulo de producción: órdenes de producción, "
                       "entrega de producto terminado, kits, fracciones y turnos.</p>"
                       "<p>Componente: %2 %3<br>Registro: %4<br>Base: %5</p>")
            .arg(QCoreApplication::applicationVersion(), QStringLiteral(ZUVI_PROG_ID),
                 QStringLiteral(ZUVI_CLASS_ID), components::registryFile().toHtmlEscaped(),
                 m_sesion.opciones().base.section(QLatin1Char('@'), -1).toHtmlEscaped()));
}

void VentanaPrincipal::ajustaPorRol()
{
    // An entry whose work the server would refuse to the account's role is
    // not offered. The server still decides: this only spares the refusal.
    using anfitrion::Rol;
    static const struct
    {
        const char *accion;
        Rol rol;
    } kPide[] = {
        {"actNueva", Rol::Captura},        {"actModificar", Rol::Captura},
        {"actFracciones", Rol::Captura},   {"actEntregar", Rol::Produccion},
        {"actEnsamblar", Rol::Produccion}, {"actDesensamblar", Rol::Produccion},
        {"actCancelar", Rol::Supervisor},  {"actLiberar", Rol::Supervisor},
        {"actTurnos", Rol::Supervisor},    {"actEstacion", Rol::Admin},
    };
    for (const auto &p : kPide)
        if (auto *a = findChild<QAction *>(QLatin1String(p.accion));
            a && !anfitrion::tieneRol(m_sesion.rol(), p.rol))
            a->setEnabled(false);
}

void VentanaPrincipal::SetFocus()
{
    raise();
    activateWindow();
    m_lista->setFocus(Qt::OtherFocusReason);
    refresca();
}

} // namespace zuvi::app
