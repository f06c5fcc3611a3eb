#pragma once

// The shell's sign-in: the account and its password on a MariaDB server.

#include <QString>

namespace zuvi::app {

// Asks in a dialog; cuenta comes filled and may be changed. False: cancelled.
bool pideEntradaVentana(QString &cuenta, QString &clave, const QString &motivo);

} // namespace zuvi::app
