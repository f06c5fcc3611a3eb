#include "component/Produccion.h"

namespace zuvi {

void Produccion::MuestraCapturaDeFracciones() {}

} // namespace zuvi
