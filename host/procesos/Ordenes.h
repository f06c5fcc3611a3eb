#pragma once

#include "host/procesos/Procesos.h"

namespace zuvi::anfitrion {

// The handler of the order editor's closing ("Op006").
QList<ProcesoAnfitrion> procesosOrdenes();

// The host's rules at the editor's load ("Op001") and at each new line
// ("Op005"), in procesos/ReglasOrden.cpp.
QList<ProcesoAnfitrion> procesosReglasOrden();

} // namespace zuvi::anfitrion
