#pragma once

// The accounts of a MariaDB server from the command line, and the password
// asked on the terminal.

#include "app/LineaComandos.h"

#include <optional>

namespace zuvi::app {

// One line typed on the terminal without echo (the question on standard
// error); when standard input is no terminal, its next line. None at its end.
std::optional<QString> leeClave(const QString &pregunta);

// Sign-in on the terminal: the password of the account, asked without echo.
bool pideEntradaTerminal(QString &cuenta, QString &clave, const QString &motivo);

// usuario alta|baja|roles|clave|lista. Returns the exit code; throws Error
// for a failure and ErrorDeUso's base Error for bad arguments (mal is set).
int ordenUsuario(const LineaComandos &lc, bool &malUso);

} // namespace zuvi::app
