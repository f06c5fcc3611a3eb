#include "component/Lote.h"
#include "component/Produccion.h"
#include "core/Modulo.h"

namespace zuvi {

void Produccion::Desensamble(const QString &Articulo, double nCantidad, qint32 nAlmacen, qint32 nOp)
{
    reportErrors(QStringLiteral("Produccion"), QStringLiteral("Desensamble"), [&] {
        zuvi::Ambiente *ambiente = modulo::requiere(Ambiente());
        const QSqlDatabase conexion = ambiente->Conexion();
        AccesoDatos *datos = modulo::accesoDatos();

        // The gate comes before any query here, and runs on behalf of this object.
        QPointer<QObject> objeto = this;
        if (!lote::consultaProceso(
                lote::iniciaProceso(QStringLiteral("DESEM007"), objeto, ambiente)))
            return;

        RecordsetPtr receta = lote::consulta(
            datos, QStringLiteral("SELECT * FROM componen WHERE articulo =  '") + Articulo + "'",
            conexion);
        RecordsetPtr partes = lote::consulta(
            datos, QStringLiteral("SELECT * FROM comppart WHERE articulo =  '") + Articulo + "'",
            conexion);
        if (partes->atEnd())
            return;

        DocumentoInventario *doc = lote::EstadoLote::de(this)->documento();
        lote::preparaDocumento(doc, ambiente, datos, conexion, QStringLiteral("E"), nOp,
                               QStringLiteral("COP"), QStringLiteral("DES"),
                               QStringLiteral("DESENSAMB"));

        double total = 0.0;
        while (!partes->atEnd()) {
            const QString componente = partes->text(QStringLiteral("Componente"));
            RecordsetPtr prod = lote::consulta(
                datos,
                QStringLiteral("SELECT articulo, kit, costo FROM prods WHERE articulo = '") +
                    componente + "'",
                conexion);
            // Multiplication first, then the division by the batch yield.
            const auto cantidad = [&] {
                return lote::divide(lote::numero(partes->value(QStringLiteral("Cantidad"))) *
                                        nCantidad,
                                    lote::numero(receta->value(QStringLiteral("Minimo"))));
            };
            if (lote::verdadero(prod->value(QStringLiteral("kit")))) {
                // A component that is a kit is taken apart in turn. The line is not
                // advanced afterwards, so the same line comes up again.
                const double parte = cantidad();
                static_cast<InterfazProduccion *>(this)->Desensamble(
                    prod->text(QStringLiteral("articulo")), parte, nAlmacen, nOp);
                continue;
            }
            doc->PonAlmacen(lote::numero(partes->value(QStringLiteral("Almacen"))));
            doc->PonArticulo(componente);
            doc->PonCantidad(cantidad());
            doc->PonCosto(lote::numero(prod->value(QStringLiteral("costo"))));
            qint32 numero = 0;
            total += doc->AplicaMovimiento(numero);
            partes->moveNext();
        }

        lote::aplicaKit(doc, nOp != 0 ? QStringLiteral("COP") : QStringLiteral("DEN"),
                        QStringLiteral("S"), nAlmacen, Articulo, nCantidad, total);
    });
}

} // namespace zuvi
