#include "runtime/ClassRegistry.h"

namespace zuvi {

ClassRegistry &ClassRegistry::instance()
{
    static ClassRegistry registry;
    return registry;
}

void ClassRegistry::add(const QString &name, Factory factory)
{
    m_factories.insert(name.toLower(), std::move(factory));
}

void ClassRegistry::remove(const QString &name)
{
    m_factories.remove(name.toLower());
}

void ClassRegistry::clear()
{
    m_factories.clear();
}

bool ClassRegistry::contains(const QString &name) const
{
    return m_factories.contains(name.toLower());
}

QObject *ClassRegistry::create(const QString &name) const
{
    const auto it = m_factories.constFind(name.toLower());
    if (it == m_factories.constEnd() || !*it)
        throw Error(
            QStringLiteral("No se puede crear el objeto: la clase \"%1\" no está registrada.")
                .arg(name));
    QObject *object = (*it)();
    if (!object)
        throw Error(QStringLiteral("No se pudo crear un objeto de la clase \"%1\".").arg(name));
    return object;
}

} // namespace zuvi
