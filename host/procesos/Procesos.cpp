#include "host/procesos/Procesos.h"

#include "host/procesos/Etiquetas.h"
#include "host/procesos/Fracciones.h"
#include "host/procesos/Ordenes.h"
#include "host/procesos/Turnos.h"

#include <QHash>
#include <QMutex>
#include <QMutexLocker>

namespace zuvi::anfitrion {

namespace {

struct Procesos
{
    QMutex mutex;
    QHash<QString, ManejadorProceso> manejadores;

    // Every process key the host answers, by the room that handles it.
    Procesos()
    {
        for (const QList<ProcesoAnfitrion> &lista :
             {procesosOrdenes(), procesosReglasOrden(), procesosEtiquetas(), procesosFracciones(),
              procesosTurnos()}) {
            for (const ProcesoAnfitrion &p : lista)
                manejadores.insert(p.clave, p.manejador);
        }
    }
};

// Made on first use, so the table is complete whoever asks first.
Procesos &procesos()
{
    static Procesos p;
    return p;
}

} // namespace

void ponManejadorProceso(const QString &clave, ManejadorProceso manejador)
{
    Procesos &p = procesos();
    QMutexLocker lock(&p.mutex);
    if (manejador)
        p.manejadores.insert(clave, std::move(manejador));
    else
        p.manejadores.remove(clave);
}

ManejadorProceso manejadorProceso(const QString &clave)
{
    Procesos &p = procesos();
    QMutexLocker lock(&p.mutex);
    return p.manejadores.value(clave);
}

} // namespace zuvi::anfitrion
