#include "component/Produccion.h"

namespace zuvi {

void Produccion::EntregaProductoTerminado(qint32) {}

} // namespace zuvi
