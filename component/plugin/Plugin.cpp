#include "component/plugin/Plugin.h"

#include "component/Produccion.h"
#include "contract/Identidad.h"

#include <dlfcn.h>

namespace zuvi {

QObject *FabricaProduccion::createInstance(const QString &nombreOClase)
{
    const QString nombre = nombreOClase.trimmed();
    const bool porNombre = nombre.compare(QLatin1String(ZUVI_PROG_ID), Qt::CaseInsensitive) == 0 ||
                           nombre.compare(QLatin1String(ZUVI_CLASS_NAME), Qt::CaseInsensitive) == 0;
    QString clase = nombre;
    clase.remove(QLatin1Char('{')).remove(QLatin1Char('}'));
    const bool porClase =
        clase.compare(QString::fromLatin1(ZUVI_CLASS_ID).mid(1, 36), Qt::CaseInsensitive) == 0;
    if (porNombre || porClase)
        return new Produccion;
    return nullptr;
}

} // namespace zuvi

namespace {

QString rutaDeEstaBiblioteca()
{
    Dl_info datos{};
    if (dladdr(reinterpret_cast<void *>(&ZuviRegistraServidor), &datos) && datos.dli_fname)
        return QString::fromLocal8Bit(datos.dli_fname);
    return QString();
}

QString archivoOPorOmision(const char *archivoRegistro)
{
    return archivoRegistro && *archivoRegistro ? QString::fromLocal8Bit(archivoRegistro)
                                               : zuvi::components::registryFile();
}

} // namespace

int ZuviRegistraServidor(const char *archivoRegistro)
{
    const QString ruta = rutaDeEstaBiblioteca();
    if (ruta.isEmpty())
        return 1;
    return zuvi::components::registerClass(QStringLiteral(ZUVI_PROG_ID),
                                           QStringLiteral(ZUVI_CLASS_ID), ruta,
                                           archivoOPorOmision(archivoRegistro))
               ? 0
               : 1;
}

int ZuviDesregistraServidor(const char *archivoRegistro)
{
    return zuvi::components::unregisterClass(QStringLiteral(ZUVI_PROG_ID),
                                             QStringLiteral(ZUVI_CLASS_ID),
                                             archivoOPorOmision(archivoRegistro))
               ? 0
               : 1;
}
