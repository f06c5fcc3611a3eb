#include "component/Lote.h"
#include "component/Produccion.h"
#include "core/Modulo.h"

namespace zuvi {

VBool Produccion::CancelaOp(qint32 nOp)
{
    // Errors end silently with whatever result was set so far.
    VBool resultado = VFalse;
    swallowErrors([&] {
        zuvi::Ambiente *ambiente = modulo::requiere(Ambiente());
        const QSqlDatabase conexion = ambiente->Conexion();
        AccesoDatos *datos = modulo::accesoDatos();
        const QString orden = QString::number(nOp);

        if (!fromVBool(datos->Pregunta(datos->TraeMensaje(757, ambiente), 2)))
            return;
        RecordsetPtr op =
            lote::consulta(datos, QStringLiteral("SELECT * FROM op WHERE op = ") + orden, conexion);
        // The lines are opened, never read.
        lote::consulta(datos, QStringLiteral("SELECT * FROM oppart WHERE op = ") + orden, conexion);
        if (op->atEnd())
            return;

        if (op->text(QStringLiteral("Estado")) == QLatin1String("CO")) {
            // A confirmed order is closed, not deleted, and only on a second yes.
            if (!fromVBool(datos->Pregunta(
                    QStringLiteral("Esta orden de producción ya fue confirmada, Desea cerrar esta "
                                   "order de producción"),
                    2)))
                return;
            ambiente->EjecutaSQL(QStringLiteral("UPDATE op SET cerrado = 1 WHERE op = ") + orden);
            resultado = VTrue;
            return;
        }
        ambiente->EjecutaSQL(QStringLiteral("DELETE FROM op WHERE op = ") + orden);
        ambiente->EjecutaSQL(QStringLiteral("DELETE FROM oppart WHERE op = ") + orden);
        resultado = VTrue;
    });
    return resultado;
}

} // namespace zuvi
