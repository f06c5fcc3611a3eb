#include "host/servicios/ControlProcesosAnfitrion.h"

#include "host/interaccion/Interaccion.h"
#include "host/procesos/Procesos.h"
#include "host/reportes/Reportes.h"
#include "runtime/Error.h"

#include <QDir>

namespace zuvi::anfitrion {

void ControlProcesosAnfitrion::IniciaProceso(ArgumentosProceso &argumentos)
{
    const ManejadorProceso manejador = manejadorProceso(argumentos.proceso);
    if (!manejador) {
        argumentos.bandera = VFalse;
        m_bandera = VFalse;
        return;
    }
    // A handler that fails leaves the veto standing: nothing goes ahead on a
    // half-run process.
    m_bandera = VTrue;
    manejador(argumentos);
    m_bandera = argumentos.bandera;
}

void ControlProcesosAnfitrion::ConsultaProceso(VBool &bandera)
{
    if (m_bandera)
        bandera = *m_bandera;
}

void ControlProcesosAnfitrion::ImprimeReporte(const QString &reporte, qint32 numero,
                                              Ambiente *ambiente, QObject *)
{
    if (reporte != QLatin1String("ORDENP"))
        throw Error(QStringLiteral("El reporte \"%1\" no existe.").arg(reporte));
    if (!ambiente)
        throw Error(
            QStringLiteral("No hay ambiente para imprimir el reporte \"%1\".").arg(reporte));
    const QString archivo =
        QDir(carpetaReportes()).filePath(QStringLiteral("OrdenProduccion-%1.pdf").arg(numero));
    const QString escrito = publicaOrdenProduccion(ambiente->Conexion(), numero, archivo);
    if (escrito.isEmpty())
        return; // shown in the preview
    m_reporte = escrito;
    interaccion().mensaje(
        QStringLiteral("La orden de producción %1 se guardó en %2").arg(numero).arg(m_reporte), 64);
}

void ControlProcesosAnfitrion::CierraProceso(qint32 valor)
{
    m_cierre = valor;
}

} // namespace zuvi::anfitrion
