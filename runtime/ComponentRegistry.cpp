#include "runtime/ComponentRegistry.h"

#include "runtime/Error.h"

#include <QDir>
#include <QFileInfo>
#include <QPluginLoader>
#include <QSettings>
#include <QStandardPaths>

namespace zuvi::components {

namespace {

// Class ids are kept in braces and upper case; names as given. Both are keys
// of their own group so either finds the library.
QString classKey(const QString &classId)
{
    QString id = classId.trimmed().toUpper();
    if (!id.startsWith(QLatin1Char('{')))
        id = QLatin1Char('{') + id + QLatin1Char('}');
    return QStringLiteral("CLSID/") + id;
}

// Names are found without regard to case, as class ids are.
QString nameKey(const QString &progId)
{
    return QStringLiteral("ProgID/") + progId.trimmed().toLower();
}

bool looksLikeClassId(const QString &s)
{
    const QString t = s.trimmed();
    return t.startsWith(QLatin1Char('{')) || (t.count(QLatin1Char('-')) == 4 && t.size() >= 36);
}

} // namespace

QString registryFile()
{
    const QByteArray env = qgetenv("ZUVI_REGISTRO");
    if (!env.isEmpty())
        return QString::fromLocal8Bit(env);
    QString base = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    if (base.isEmpty())
        base = QDir::homePath() + QStringLiteral("/.config");
    return base + QStringLiteral("/ZuviProduccion/componentes.ini");
}

bool registerClass(const QString &progId, const QString &classId, const QString &libraryPath,
                   const QString &file)
{
    QDir().mkpath(QFileInfo(file).absolutePath());
    QSettings settings(file, QSettings::IniFormat);
    const QString path = QFileInfo(libraryPath).absoluteFilePath();
    settings.setValue(nameKey(progId) + QStringLiteral("/CLSID"), classKey(classId).mid(6));
    settings.setValue(classKey(classId) + QStringLiteral("/ProgID"), progId);
    settings.setValue(classKey(classId) + QStringLiteral("/InprocServer"), path);
    settings.sync();
    return settings.status() == QSettings::NoError;
}

bool unregisterClass(const QString &progId, const QString &classId, const QString &file)
{
    QSettings settings(file, QSettings::IniFormat);
    settings.remove(nameKey(progId));
    settings.remove(classKey(classId));
    settings.sync();
    return settings.status() == QSettings::NoError;
}

QString libraryFor(const QString &progIdOrClassId, const QString &file)
{
    if (!QFileInfo::exists(file))
        return QString();
    QSettings settings(file, QSettings::IniFormat);
    QString clsid;
    if (looksLikeClassId(progIdOrClassId))
        clsid = classKey(progIdOrClassId);
    else {
        const QString id =
            settings.value(nameKey(progIdOrClassId) + QStringLiteral("/CLSID")).toString();
        if (id.isEmpty())
            return QString();
        clsid = classKey(id);
    }
    return settings.value(clsid + QStringLiteral("/InprocServer")).toString();
}

QObject *createObject(const QString &progIdOrClassId, const QString &file)
{
    const QString library = libraryFor(progIdOrClassId, file);
    if (library.isEmpty())
        throw Error(QStringLiteral("El componente \"%1\" no está registrado (registro: %2).")
                        .arg(progIdOrClassId, file));
    QPluginLoader loader(library);
    QObject *root = loader.instance();
    if (!root)
        throw Error(QStringLiteral("No se pudo cargar la biblioteca del componente \"%1\": %2")
                        .arg(library, loader.errorString()));
    auto *factory = qobject_cast<ComponentFactory *>(root);
    if (!factory)
        throw Error(QStringLiteral("La biblioteca \"%1\" no es un componente de ZuviProduccion.")
                        .arg(library));
    QObject *object = factory->createInstance(progIdOrClassId);
    if (!object)
        throw Error(QStringLiteral("La biblioteca \"%1\" no crea la clase \"%2\".")
                        .arg(library, progIdOrClassId));
    return object;
}

} // namespace zuvi::components
