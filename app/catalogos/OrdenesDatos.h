#pragma once

// The sub-commands over a workshop's own data: importa, exporta, existencias
// and movimientos.

#include "app/LineaComandos.h"

namespace zuvi::app {

bool esOrdenDeDatos(const QString &orden);

// Runs one of them and returns the exit code: 0 done, 1 rows refused (or a
// failure, thrown as Error to the caller), 2 a bad argument.
int ordenDeDatos(const LineaComandos &lc);

} // namespace zuvi::app
