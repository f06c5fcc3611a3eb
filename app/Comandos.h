#pragma once

#include "app/LineaComandos.h"

#include <memory>

namespace zuvi::app {

// Exit codes of the program.
enum CodigoSalida { Exito = 0, Fallo = 1, MalUso = 2 };

// Runs a sub-command headless and returns the exit code; nothing escapes.
int ejecutaOrden(const LineaComandos &lc);

// Opens the main window on the database and runs the event loop.
int ejecutaVentanaPrincipal(const LineaComandos &lc);

// Opens the session the command line asks for: the given --base, or the
// default file (created with demo data on first use). Also fills the class
// registry with the host's implementations. Throws Error.
std::unique_ptr<anfitrion::Sesion> abreSesion(const LineaComandos &lc);

// Writes a message to standard error with the program's prefix.
void avisa(const QString &texto);

} // namespace zuvi::app
