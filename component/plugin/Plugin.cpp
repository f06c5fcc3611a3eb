#include "component/plugin/Plugin.h"

#include "component/Produccion.h"
#include "contract/Identidad.h"

#include <dlfcn.h>

namespace zuvi {

QObject *ProduccionPlugin::createInstance(const QString &nameOrClassId)
{
    const QString name = nameOrClassId.trimmed();
    const bool byName = name.compare(QLatin1String(ZUVI_PROG_ID), Qt::CaseInsensitive) == 0 ||
                        name.compare(QLatin1String(ZUVI_CLASS_NAME), Qt::CaseInsensitive) == 0;
    QString id = name;
    id.remove(QLatin1Char('{')).remove(QLatin1Char('}'));
    const bool byId =
        id.compare(QString::fromLatin1(ZUVI_CLASS_ID).mid(1, 36), Qt::CaseInsensitive) == 0;
    if (byName || byId)
        return new Produccion;
    return nullptr;
}

} // namespace zuvi

namespace {

QString thisLibraryPath()
{
    Dl_info info{};
    if (dladdr(reinterpret_cast<void *>(&ZuviRegistraServidor), &info) && info.dli_fname)
        return QString::fromLocal8Bit(info.dli_fname);
    return QString();
}

QString fileOrDefault(const char *registryFile)
{
    return registryFile && *registryFile ? QString::fromLocal8Bit(registryFile)
                                         : zuvi::components::registryFile();
}

} // namespace

int ZuviRegistraServidor(const char *registryFile)
{
    const QString path = thisLibraryPath();
    if (path.isEmpty())
        return 1;
    return zuvi::components::registerClass(QStringLiteral(ZUVI_PROG_ID),
                                           QStringLiteral(ZUVI_CLASS_ID), path,
                                           fileOrDefault(registryFile))
               ? 0
               : 1;
}

int ZuviDesregistraServidor(const char *registryFile)
{
    return zuvi::components::unregisterClass(QStringLiteral(ZUVI_PROG_ID),
                                             QStringLiteral(ZUVI_CLASS_ID),
                                             fileOrDefault(registryFile))
               ? 0
               : 1;
}
