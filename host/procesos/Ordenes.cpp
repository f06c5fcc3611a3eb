// The order editor's closing ("Op006"): the reference host has no rule of
// its own for it and lets the editor go ahead; a shop that needs one replaces
// the handler (ponManejadorProceso), as the tests do to refuse a step. The
// load ("Op001") and each new line ("Op005") have the host's rules
// (procesos/ReglasOrden.cpp).

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
    return {{"Op006", sigue}};
}

} // namespace zuvi::anfitrion
