#pragma once

#include "host/procesos/Procesos.h"

namespace zuvi::anfitrion {

// The handlers of the fraction capture window's welcome ("FRACCIONES001") and its capture
// ("FRACCIONES").
QList<ProcesoAnfitrion> procesosFracciones();

} // namespace zuvi::anfitrion
