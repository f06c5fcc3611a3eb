#pragma once

#include "host/procesos/Procesos.h"

namespace zuvi::anfitrion {

// The handlers of the product labels of an order ("OP007").
QList<ProcesoAnfitrion> procesosEtiquetas();

} // namespace zuvi::anfitrion
