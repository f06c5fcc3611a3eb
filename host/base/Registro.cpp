#include "host/base/Anfitrion.h"

#include "runtime/ClassRegistry.h"

#include <QHash>
#include <QList>
#include <QMutex>
#include <QMutexLocker>

namespace zuvi::anfitrion {

namespace {

// Function-local statics: the RegistroClase and RegistroProceso objects of
// other source files run during static initialisation, in no fixed order.
struct ClaseRegistrada
{
    QString nombre;
    std::function<QObject *()> fabrica;
};

QList<ClaseRegistrada> &clases()
{
    static QList<ClaseRegistrada> lista;
    return lista;
}

struct Procesos
{
    QMutex mutex;
    QHash<QString, ManejadorProceso> manejadores;
};

Procesos &procesos()
{
    static Procesos p;
    return p;
}

} // namespace

RegistroClase::RegistroClase(const char *nombre, std::function<QObject *()> fabrica)
{
    clases().append({QString::fromUtf8(nombre), std::move(fabrica)});
}

void registraClasesAnfitrion()
{
    ClassRegistry &registro = ClassRegistry::instance();
    for (const ClaseRegistrada &c : clases())
        registro.add(c.nombre, c.fabrica);
}

RegistroProceso::RegistroProceso(const char *clave, ManejadorProceso manejador)
{
    ponManejadorProceso(QString::fromUtf8(clave), std::move(manejador));
}

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
