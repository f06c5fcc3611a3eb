#pragma once

#include "contract/Servicios.h"
#include "core/Exporta.h"

namespace zuvi::modulo {

// The module-wide AccesoDatos and ControlProcesos: created by name through the
// class registry on first use and kept for the component's life. Throw Error
// when the host has not registered the class.
ZUVI_PRODUCCION_EXPORT AccesoDatos *accesoDatos();
ZUVI_PRODUCCION_EXPORT ControlProcesos *controlProcesos();

// Creates a host object by name and checks its interface. The caller owns it.
template <typename T> T *crea(const QString &clase);

// Forgets both shared objects, so that tests can start each case afresh.
ZUVI_PRODUCCION_EXPORT void reinicia();

// The environment a procedure works with, or Error when it was never set or
// the host has released it.
ZUVI_PRODUCCION_EXPORT Ambiente *requiere(const QPointer<Ambiente> &ambiente);

} // namespace zuvi::modulo

#include "runtime/ClassRegistry.h"

template <typename T> T *zuvi::modulo::crea(const QString &clase)
{
    return ClassRegistry::instance().create<T>(clase);
}
