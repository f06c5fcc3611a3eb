#include "component/Lote.h"
#include "component/Produccion.h"
#include "core/Modulo.h"

#include "runtime/Error.h"

#include <limits>
#include <memory>

namespace zuvi {

void Produccion::EntregaProductoTerminado(qint32 nOp)
{
    // Errors end the delivery silently; Ensamble reports its own.
    swallowErrors([&] {
        zuvi::Ambiente *ambiente = modulo::requiere(Ambiente());
        const QSqlDatabase conexion = ambiente->Conexion();
        AccesoDatos *datos = modulo::accesoDatos();
        const QString orden = QString::number(nOp);

        // The count only sizes the progress bar.
        RecordsetPtr cuenta = lote::consulta(
            datos, QStringLiteral("SELECT COUNT( * ) FROM oppart WHERE op = ") + orden, conexion);
        const qint32 lineas = lote::entero32(datos->ValorNumerico(cuenta->value(0)));
        RecordsetPtr partes = lote::consulta(
            datos,
            QStringLiteral("SELECT oppart.articulo, oppart.cantidad, op.almacen FROM oppart "
                           "INNER JOIN op USING(op) WHERE op.op = ") +
                orden,
            conexion);

        std::unique_ptr<VentanaProgreso> progreso;
        if (lineas > 0) {
            progreso.reset(modulo::crea<VentanaProgreso>(QStringLiteral("VentanaProgreso")));
            progreso->Inicia(QVariant::fromValue<qint32>(lineas),
                             QStringLiteral("Entregando producto terminado"),
                             ambiente->RutaAplicacion() + QStringLiteral("\\Images\\Gears.Avi"));
        }

        qint32 contador = 0;
        while (!partes->atEnd()) {
            if (contador == std::numeric_limits<qint32>::max())
                throw Error(QStringLiteral("Desbordamiento del contador de líneas."));
            ++contador;
            if (!progreso) // the count said no lines but the join found some
                throw Error(QStringLiteral("No se ha creado la ventana de progreso."));
            progreso->Avanza(QVariant::fromValue<qint32>(contador),
                             QStringLiteral("Procesando: ") +
                                 partes->text(QStringLiteral("Articulo")),
                             QString(""));
            const QString articulo = partes->text(QStringLiteral("Articulo"));
            // Whole quantities only: a fractional line is delivered rounded.
            const qint32 almacen =
                lote::entero32(lote::numero(partes->value(QStringLiteral("Almacen"))));
            const qint32 cantidad =
                lote::entero32(lote::numero(partes->value(QStringLiteral("Cantidad"))));
            static_cast<InterfazProduccion *>(this)->Ensamble(articulo, almacen, cantidad, nOp);
            partes->moveNext();
        }

        ambiente->EjecutaSQL(QStringLiteral("UPDATE oppart SET terminado = cantidad WHERE op = ") +
                             orden);
        if (!progreso)
            progreso.reset(modulo::crea<VentanaProgreso>(QStringLiteral("VentanaProgreso")));
        progreso->Cierra();
    });
}

} // namespace zuvi
