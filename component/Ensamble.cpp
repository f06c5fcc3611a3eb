#include "component/Produccion.h"

namespace zuvi {

void Produccion::Ensamble(const QString &, qint32, qint32, qint32) {}

} // namespace zuvi
