#include "component/Lote.h"
#include "component/Produccion.h"
#include "core/Modulo.h"

namespace zuvi {

void Produccion::Ensamble(const QString &Articulo, qint32 nAlmacen, qint32 nCantidad, qint32 nOp)
{
    reportErrors(QStringLiteral("Produccion"), QStringLiteral("Ensamble"), [&] {
        zuvi::Ambiente *ambiente = modulo::requiere(Ambiente());
        const QSqlDatabase conexion = ambiente->Conexion();
        AccesoDatos *datos = modulo::accesoDatos();

        // Two blanks before the quote: the text is the one the host has always seen.
        RecordsetPtr partes = lote::consulta(
            datos, QStringLiteral("SELECT * FROM comppart WHERE articulo =  '") + Articulo + "'",
            conexion);
        RecordsetPtr receta = lote::consulta(
            datos, QStringLiteral("SELECT * FROM componen WHERE articulo =  '") + Articulo + "'",
            conexion);
        if (partes->atEnd())
            return;

        lote::EstadoLote *estado = lote::EstadoLote::de(this);
        QPointer<QObject> objeto = estado->documento();
        const VBool bandera = lote::iniciaProceso(QStringLiteral("OPAUTO002"), objeto, ambiente);
        if (!lote::consultaProceso(bandera))
            return;
        // What the host left in argument (2) matters only from its first use:
        // a vetoed run never reaches it.
        estado->adopta(objeto);
        DocumentoInventario *doc = estado->documento();

        lote::preparaDocumento(doc, ambiente, datos, conexion, QStringLiteral("S"), nOp,
                               QStringLiteral("OP"), QStringLiteral("EN"),
                               QStringLiteral("ENSAMBLE"));

        double total = 0.0;
        while (!partes->atEnd()) {
            const QString componente = partes->text(QStringLiteral("Componente"));
            RecordsetPtr prod =
                lote::consulta(datos,
                               QStringLiteral("SELECT kit, costo FROM prods WHERE articulo = '") +
                                   componente + "'",
                               conexion);
            doc->PonAlmacen(lote::numero(partes->value(QStringLiteral("Almacen"))));
            doc->PonArticulo(componente);
            // Per batch, divided by what one batch yields, times the kits wanted.
            doc->PonCantidad(lote::divide(lote::numero(partes->value(QStringLiteral("Cantidad"))),
                                          lote::numero(receta->value(QStringLiteral("Minimo")))) *
                             double(nCantidad));
            doc->PonCosto(lote::numero(prod->value(QStringLiteral("costo"))));
            qint32 numero = 0;
            total += doc->AplicaMovimiento(numero);
            partes->moveNext();
        }

        lote::aplicaKit(doc, nOp != 0 ? QStringLiteral("OP") : QStringLiteral("DE"),
                        QStringLiteral("E"), nAlmacen, Articulo, double(nCantidad), total);
    });
}

} // namespace zuvi
