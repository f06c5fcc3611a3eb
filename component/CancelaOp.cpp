#include "component/Produccion.h"

namespace zuvi {

VBool Produccion::CancelaOp(qint32) { return VFalse; }

} // namespace zuvi
