#pragma once

// Handlers of process keys (IniciaProceso). A key with no handler clears the
// veto flag so the caller goes ahead. The table starts with the host's own
// handlers, from the explicit list in Procesos.cpp; a shop or a test may
// replace one at run time.

#include "contract/Servicios.h"

#include <QList>
#include <QString>

#include <functional>

namespace zuvi::anfitrion {

using ManejadorProceso = std::function<void(zuvi::ArgumentosProceso &)>;

struct ProcesoAnfitrion
{
    QString clave;
    ManejadorProceso manejador;
};

void ponManejadorProceso(const QString &clave, ManejadorProceso manejador); // at run time
ManejadorProceso manejadorProceso(const QString &clave);                    // empty when none

} // namespace zuvi::anfitrion
