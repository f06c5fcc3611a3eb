#pragma once

#include "host/procesos/Procesos.h"

namespace zuvi::anfitrion {

// The handlers of the order editor's guarded steps ("Op001", "Op005", "Op006").
QList<ProcesoAnfitrion> procesosOrdenes();

} // namespace zuvi::anfitrion
