#pragma once

// Where a --base value points: a MariaDB URL or the path of a SQLite file.

#include "host/sql/Motor.h"

#include <QString>

namespace zuvi::anfitrion {

class DestinoBase
{
public:
    Motor motor = Motor::SQLite;
    QString ruta; // SQLite
    QString usuario, clave, servidor, nombre;
    QString opciones; // MariaDB: a client option file (?opciones=/ruta/zuvi.cnf)
    int puerto = 3306;

    // Throws Error with a Spanish description for a malformed URL.
    static DestinoBase lee(const QString &base);
};

// The SQLite file used when no --base is given: in the user's data folder.
QString basePorOmision();

// A --base value as a message may show it: the password hidden, control
// characters and bytes that are not UTF-8 visible, not too long.
QString muestraBase(const QString &base);

} // namespace zuvi::anfitrion
