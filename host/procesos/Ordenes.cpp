// The order editor's guarded steps: its load ("Op001"), each new line
// ("Op005") and its closing ("Op006"). The reference host has no rule of its
// own for them and lets the editor go ahead; a shop that needs one replaces
// the handler (ponManejadorProceso), as the tests do to refuse a step.

#include "host/procesos/Ordenes.h"

namespace zuvi::anfitrion {

namespace {

void sigue(ArgumentosProceso &argumentos)
{
    argumentos.bandera = VFalse;
}

} // namespace

QList<ProcesoAnfitrion> procesosOrdenes()
{
    return {{"Op001", sigue}, {"Op005", sigue}, {"Op006", sigue}};
}

} // namespace zuvi::anfitrion
