#include "app/Lotes.h"

#include "app/Componente.h"
#include "contract/Servicios.h"
#include "host/base/Cuentas.h"
#include "host/base/Reclamos.h"
#include "host/interaccion/Interaccion.h"
#include "host/servicios/Comprobaciones.h"
#include "host/servicios/DocumentoInventarioAnfitrion.h"
#include "host/servicios/Existencias.h"
#include "host/sql/Sql.h"
#include "runtime/Text.h"

#include <QObject>
#include <QSqlQuery>
#include <QVariant>

#include <algorithm>
#include <optional>

namespace zuvi::app {

namespace {

constexpr int kLineasNombradas = 20;

// "Se entregaron 3 de 5 partidas: SOPORTE, REPISA, ...".
QString nombraEntregadas(const QList<anfitrion::ControlEntrega::Linea> &entregadas, int de,
                         bool resto)
{
    QStringList nombres;
    for (const auto &l : entregadas.mid(0, kLineasNombradas))
        nombres << eco(l.articulo);
    if (entregadas.size() > kLineasNombradas)
        nombres << QStringLiteral("…");
    const QString texto =
        (resto ? QStringLiteral("Se entregaron %1 de las %2 partidas que faltaban")
               : QStringLiteral("Se entregaron %1 de %2 partidas"))
            .arg(entregadas.size())
            .arg(de);
    return nombres.isEmpty() ? texto + u'.'
                             : texto + QStringLiteral(": ") + nombres.join(", ") + u'.';
}

// faltaban: for a delivery of what was missing, how many lines were.
void resumeEntrega(qint32 op, const anfitrion::ControlEntrega &control, std::optional<int> faltaban,
                   const anfitrion::LoteDeReportes &reportes, Desenlace &d)
{
    QStringList texto;
    QList<anfitrion::ControlEntrega::Linea> pendientes;
    bool comprobada = true;
    try {
        const auto estaVez = control.reparte();
        // After a delivery of what was missing, a line is left only when no run posted it.
        pendientes = faltaban ? control.reparteTodas().pendientes : estaVez.pendientes;
        d.hecho = nombraEntregadas(estaVez.entregadas, faltaban.value_or(control.totalLineas()),
                                   faltaban.has_value());
    } catch (...) {
        comprobada = false;
        texto << QStringLiteral("La entrega de la orden %1 terminó, pero no se pudo comprobar "
                                "qué líneas se entregaron: %2")
                     .arg(op)
                     .arg(describeCurrentException());
    }
    d.completo = comprobada && pendientes.isEmpty() && reportes.mostrados() == 0;
    if (d.completo)
        return;
    if (comprobada)
        texto << d.hecho;
    if (comprobada && pendientes.isEmpty())
        texto << QStringLiteral("La orden %1 se entregó completa, pero hubo errores.").arg(op);
    if (!pendientes.isEmpty()) {
        texto << QStringLiteral("La entrega de la orden %1 no se completó: %2 de %3 líneas no se "
                                "entregaron.")
                     .arg(op)
                     .arg(pendientes.size())
                     .arg(faltaban.value_or(control.totalLineas()));
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
        texto << QStringLiteral("Lo registrado queda registrado. Revise la orden; «entrega %1 "
                                "--resto» entrega solo las líneas que faltan.")
                     .arg(op);
    d.resumen = texto.join(u'\n');
}

// The order is this station's while the operation runs: another station
// that holds it (an editor, a delivery) refuses it, and two deliveries of one
// order never both run.
void tomaOrden(std::optional<anfitrion::ReclamoTemporal> &reclamo, const QSqlDatabase &db,
               qint32 orden, const QString &motivo)
{
    reclamo.emplace(db, orden, motivo);
    if (!reclamo->aviso().isEmpty())
        anfitrion::interaccion().mensaje(reclamo->aviso(), 64);
}

// A kit line the component left halfway is undone, never left half posted.
void descartaTandas(QObject *produccion)
{
    for (auto *doc : produccion->findChildren<anfitrion::DocumentoInventarioAnfitrion *>())
        doc->descartaTanda();
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
    const bool entrega = metodo == QLatin1String("EntregaProductoTerminado");
    const bool deOrden = entrega || metodo == QLatin1String("CancelaOp");
    const qint32 orden = valores.value(deOrden ? 0 : 3).toInt();
    std::optional<anfitrion::ReclamoTemporal> reclamo;
    if (orden > 0 && (deOrden || valores.size() > 3))
        tomaOrden(reclamo, db, orden,
                  entrega ? anfitrion::kReclamoEntrega : anfitrion::kReclamoLote);
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
    descartaTandas(produccion);
    d.llamado = true;
    d.valor = r.valor;
    if (entrega) {
        resumeEntrega(op, *control, std::nullopt, reportes, d);
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

Desenlace entregaResto(QObject *produccion, const QSqlDatabase &db, qint32 op)
{
    anfitrion::compruebaOrden(db, op);
    std::optional<anfitrion::ReclamoTemporal> reclamo;
    tomaOrden(reclamo, db, op, anfitrion::kReclamoEntrega);
    const anfitrion::ControlEntrega control(db, op);
    QList<anfitrion::ControlEntrega::Linea> faltan = control.reparteTodas().pendientes;
    Desenlace d;
    if (faltan.isEmpty()) {
        d.completo = true;
        d.hecho = QStringLiteral("La orden %1 no tiene líneas sin entregar: no se registró nada.")
                      .arg(op);
        return d;
    }
    // Each missing line is what the delivery would have assembled for it: the
    // order's warehouse and its rounded quantity. A line whose quantity is
    // not a number stays missing and is named in the summary.
    QSqlQuery q = anfitrion::ejecutaConValores(
        db, QStringLiteral("SELECT almacen FROM op WHERE op = ?"), {op});
    const qint32 almacen = q.next() ? q.value(0).toInt() : 0;
    const int cuantas = int(faltan.size());
    faltan.removeIf([](const auto &l) { return !l.numerica; });
    auto *ambiente =
        qobject_cast<zuvi::Ambiente *>(produccion->property("Ambiente").value<QObject *>());
    QStringList avisos;
    for (const auto &l : faltan) {
        const QString aviso = anfitrion::compruebaExistencias(
            db, anfitrion::ajustesEstacion(ambiente), QStringLiteral("Ensamble"),
            {l.articulo, almacen, l.kits, op});
        if (!aviso.isEmpty())
            avisos << aviso;
    }
    if (!avisos.isEmpty())
        anfitrion::interaccion().mensaje(avisos.join(u'\n'), 48);

    const QMetaMethod ensamble = miembroPorNombre(produccion, QStringLiteral("Ensamble"), 4);
    anfitrion::LoteDeReportes reportes;
    anfitrion::olvidaNegativa();
    {
        const auto progreso = anfitrion::interaccion().progreso();
        if (progreso)
            progreso->inicia(int(faltan.size()),
                             QStringLiteral("Entregando lo que faltaba de la orden %1").arg(op),
                             QString());
        int n = 0;
        for (const auto &l : faltan) {
            if (progreso)
                progreso->avanza(++n, QStringLiteral("Procesando: ") + l.articulo, QString());
            invocaMiembro(produccion, ensamble, {l.articulo, almacen, l.kits, op});
            descartaTandas(produccion);
        }
        if (progreso)
            progreso->cierra();
    }
    d.llamado = true;
    resumeEntrega(op, control, cuantas, reportes, d);
    // Only the lines posted now are marked finished.
    try {
        for (const auto &l : control.reparte().entregadas)
            anfitrion::ejecutaAccion(
                db, QStringLiteral("UPDATE oppart SET terminado = cantidad WHERE id_entrada = ?"),
                {l.id});
    } catch (...) {
        d.completo = false;
        if (!d.resumen.isEmpty())
            d.resumen += u'\n';
        d.resumen += QStringLiteral("No se pudieron marcar como terminadas las líneas "
                                    "entregadas de la orden %1: %2")
                         .arg(op)
                         .arg(describeCurrentException());
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
