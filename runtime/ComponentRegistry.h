#pragma once

#include "runtime/Export.h"

#include <QObject>
#include <QString>
#include <QtPlugin>

namespace zuvi {

// What a component library's plugin object offers: creating its public
// classes by programmatic name ("ZuviProduccion.Produccion") or class id.
class ComponentFactory
{
public:
    virtual ~ComponentFactory() = default;
    // A new object the caller owns, or nullptr when the name is not one of
    // this library's classes.
    virtual QObject *createInstance(const QString &nameOrClassId) = 0;
};

// The registration file: a settings file that maps each registered class's
// programmatic name and class id to the library that implements it. Component
// libraries write their own entries through their self-registration entry
// points; hosts create objects by name through it.
namespace components {

// ZUVI_REGISTRO when set, otherwise "componentes.ini" in the user's
// configuration folder for ZuviProduccion.
ZUVI_RUNTIME_EXPORT QString registryFile();

ZUVI_RUNTIME_EXPORT bool registerClass(const QString &progId, const QString &classId,
                                       const QString &libraryPath,
                                       const QString &file = registryFile());
ZUVI_RUNTIME_EXPORT bool unregisterClass(const QString &progId, const QString &classId,
                                         const QString &file = registryFile());

// The library registered for a programmatic name or class id; empty if none.
ZUVI_RUNTIME_EXPORT QString libraryFor(const QString &progIdOrClassId,
                                       const QString &file = registryFile());

// Loads the registered library and creates the object. Throws Error with a
// Spanish description when the name is not registered, the library cannot be
// loaded or does not create that class. The caller owns the object.
ZUVI_RUNTIME_EXPORT QObject *createObject(const QString &progIdOrClassId,
                                          const QString &file = registryFile());

} // namespace components
} // namespace zuvi

#define ZuviComponentFactory_iid "mx.zuvi.ComponentFactory/1.0"
Q_DECLARE_INTERFACE(zuvi::ComponentFactory, ZuviComponentFactory_iid)
