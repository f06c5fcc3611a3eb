#include "app/Lotes.h"

#include "app/Componente.h"
#include "contract/Servicios.h"
#include "host/base/Cuentas.h"
#include "host/base/Reclamos.h"
#include "host/interaccion/Interaccion.h"
#include "host/servicios/Comprobaciones.h"
#include "host/servicios/DocumentoInventarioAnfitrion.h"
#include "host/servicios/Existencias.h"
#include "runtime/Text.h"

#include <QObject>
#include <QVariant>

#include <algorithm>
#include <optional>

namespace zuvi::app {

namespace {

constexpr int kLineasNombradas = 20;

QString resumenEntrega(qint32 op, const anfitrion::ControlEntrega &control,
                       const anfitrion::LoteDeReportes &reportes, bool &completo)
{
    QStringList texto;
    QList<anfitrion::ControlEntrega::Linea> pendientes;
    bool comprobada = true;
    try {
        pendientes = control.lineasSinEntregar();
    } catch (...) {
        comprobada = false;
        texto << QStringLiteral("La entrega de la orden %1 terminó, pero no se pudo comprobar "
                                "qué líneas se entregaron: %2")
                     .arg(op)
                     .arg(describeCurrentException());
    }
    completo = comprobada && pendientes.isEmpty() && reportes.mostrados() == 0;
    if (completo)
        return QString();
    if (comprobada && pendientes.isEmpty())
        texto << QStringLiteral("La orden %1 se entregó completa, pero hubo errores.").arg(op);
    if (!pendientes.isEmpty()) {
        texto << QStringLiteral("La entrega de la orden %1 no se completó: %2 de %3 líneas no se "
                                "entregaron.")
                     .arg(op)
                     .arg(pendientes.size())
                     .arg(control.totalLineas());
        for (const auto &l : pendientes.mid(0, kLineasNombradas))
            texto << QStringLiteral("  Línea %1: %2, cantidad %3")
                         .arg(l.numero)
                         .arg(eco(l.articulo), l.cantidad);
        if (pendientes.size() > kLineasNombradas)
            texto << QStringLiteral("  ... y %1 líneas más.")
                         .arg(pendientes.size() - kLineasNombradas);
    }
    const auto sinNumero = std::find_if(pendientes.cbegin(), pendientes.cend(),
                                        [](const auto &l) { return !l.numerica; });
    if (!reportes.primero().isEmpty())
        texto << QStringLiteral("Primer error: ") + reportes.primero();
    else if (sinNumero != pendientes.cend())
        texto << QStringLiteral("Primer error: la cantidad de la línea %1 (%2) no es un número; "
                                "la entrega se detuvo ahí.")
                     .arg(sinNumero->numero)
                     .arg(eco(sinNumero->articulo));
    else if (!pendientes.isEmpty())
        texto << QStringLiteral("Primer error: ninguno informado; el componente terminó sin "
                                "entregar esas líneas.");
    if (!reportes.avisoRepetidos().isEmpty())
        texto << reportes.avisoRepetidos();
    if (!pendientes.isEmpty() || !comprobada)
        texto << QStringLiteral("Lo registrado queda registrado. Revise la orden; una nueva "
                                "entrega preguntará antes de registrar otra vez.");
    return texto.join(u'\n');
}

} // namespace

Desenlace llamaMiembro(QObject *produccion, const QSqlDatabase &db, const QMetaMethod &miembro,
                       const QVariantList &valores)
{
    const QString metodo = QString::fromLatin1(miembro.name());
    Desenlace d;
    if (metodo == QLatin1String("ModificaOp") && !valores.isEmpty())
        anfitrion::preparaApertura(db, valores.first().toInt());
    if (!anfitrion::esOperacionDeLote(metodo)) {
        const Resultado r = invocaMiembro(produccion, miembro, valores);
        d.llamado = d.completo = true;
        d.valor = r.valor;
        return d;
    }
    anfitrion::compruebaLlamada(db, metodo, valores);
    // The order is this station's while the operation runs: another station
    // that holds it (an editor, a delivery) refuses it, and two deliveries
    // of one order never both run.
    const bool entrega = metodo == QLatin1String("EntregaProductoTerminado");
    const bool deOrden = entrega || metodo == QLatin1String("CancelaOp");
    const qint32 orden = valores.value(deOrden ? 0 : 3).toInt();
    std::optional<anfitrion::ReclamoTemporal> reclamo;
    if (orden > 0 && (deOrden || valores.size() > 3)) {
        reclamo.emplace(db, orden, entrega ? anfitrion::kReclamoEntrega : anfitrion::kReclamoLote);
        if (!reclamo->aviso().isEmpty())
            anfitrion::interaccion().mensaje(reclamo->aviso(), 64);
    }
    // The station's settings are the environment's the component was given.
    auto *ambiente =
        qobject_cast<zuvi::Ambiente *>(produccion->property("Ambiente").value<QObject *>());
    const QString aviso =
        anfitrion::compruebaExistencias(db, anfitrion::ajustesEstacion(ambiente), metodo, valores);
    const qint32 op = entrega ? orden : 0;
    std::optional<anfitrion::ControlEntrega> control;
    if (entrega) {
        control.emplace(db, op);
        if (control->entradasPrevias() > 0 &&
            !anfitrion::interaccion().pregunta(
                QStringLiteral("La orden %1 ya tiene %2 entrada(s) de producto terminado de una "
                               "entrega anterior. Entregarla otra vez registra el producto "
                               "terminado de nuevo. ¿Entregar otra vez la orden %1?")
                    .arg(op)
                    .arg(control->entradasPrevias()))) {
            d.rehusado = true;
            return d;
        }
    }
    if (!aviso.isEmpty())
        anfitrion::interaccion().mensaje(aviso, 48);
    anfitrion::LoteDeReportes reportes;
    anfitrion::olvidaNegativa();
    const Resultado r = invocaMiembro(produccion, miembro, valores);
    // A kit line the component left halfway is undone, never left half posted.
    for (auto *doc : produccion->findChildren<anfitrion::DocumentoInventarioAnfitrion *>())
        doc->descartaTanda();
    d.llamado = true;
    d.valor = r.valor;
    if (entrega) {
        d.resumen = resumenEntrega(op, *control, reportes, d.completo);
    } else {
        // CancelaOp says whether it changed anything.
        d.completo = reportes.mostrados() == 0 && (!r.hayValor || r.valor.toInt() != 0);
        d.resumen = reportes.avisoRepetidos();
    }
    // A member that ends quietly on an error (CancelaOp) still says when
    // the server refused it a right.
    const QString negativa = anfitrion::ultimaNegativa();
    if (!negativa.isEmpty() && d.resumen.isEmpty()) {
        d.completo = false;
        d.resumen = QStringLiteral("No se hizo: %1.").arg(negativa);
    }
    return d;
}

Desenlace llamaMiembro(QObject *produccion, const QSqlDatabase &db, const QString &metodo,
                       const QVariantList &valores)
{
    return llamaMiembro(produccion, db, miembroPorNombre(produccion, metodo, int(valores.size())),
                        valores);
}

} // namespace zuvi::app
