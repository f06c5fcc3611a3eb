#include "component/Produccion.h"

namespace zuvi {

void Produccion::Desensamble(const QString &, double, qint32, qint32) {}

} // namespace zuvi
