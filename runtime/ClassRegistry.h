#pragma once

#include "runtime/Error.h"
#include "runtime/Export.h"

#include <QHash>
#include <QObject>
#include <QString>

#include <functional>

namespace zuvi {

// Creatable classes by name. The host fills it at start-up with its
// implementations of the services the component creates ("AccesoDatos",
// "ControlProcesos", "ConstructorSql", "VentanaProgreso",
// "DocumentoInventario", "BuscaCatalogo", "CapturaNumerica"); tests fill it
// with scripted ones. The component never names an implementation.
class ZUVI_RUNTIME_EXPORT ClassRegistry
{
public:
    using Factory = std::function<QObject *()>;

    static ClassRegistry &instance();

    void add(const QString &name, Factory factory); // replaces an earlier one
    void remove(const QString &name);
    void clear();
    bool contains(const QString &name) const;

    // A new object the caller owns. Throws Error when no class has that name.
    QObject *create(const QString &name) const;

    // As create(), checked against the interface the caller expects.
    template <typename T> T *create(const QString &name) const
    {
        QObject *object = create(name);
        if (T *typed = qobject_cast<T *>(object))
            return typed;
        delete object;
        throw Error(
            QStringLiteral("La clase \"%1\" no ofrece la interfaz que se esperaba.").arg(name));
    }

private:
    ClassRegistry() = default;
    QHash<QString, Factory> m_factories; // keyed by lower-case name
};

} // namespace zuvi
