// The order editor's guarded steps: its load ("Op001"), each new line
// ("Op005") and its closing ("Op006"). The reference host has no rule of its
// own for them and lets the editor go ahead; a shop that needs one replaces
// the handler (ponManejadorProceso), as the tests do to refuse a step.

#include "host/base/Anfitrion.h"

namespace zuvi::anfitrion {

namespace {

void sigue(ArgumentosProceso &argumentos)
{
    argumentos.bandera = VFalse;
}

const RegistroProceso carga("Op001", sigue);
const RegistroProceso partida("Op005", sigue);
const RegistroProceso cierre("Op006", sigue);

} // namespace

} // namespace zuvi::anfitrion
