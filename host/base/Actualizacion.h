#pragma once

// Bringing a database made by an older version of this program up to the
// schema it creates now (kVersionEsquema, host/base/Esquema.h).

#include "host/sql/Motor.h"

#include <QSqlDatabase>

namespace zuvi::anfitrion {

// The version of the schema the database holds: 0 when it holds none of the
// host's tables, 1 when it has them but no version row.
int versionDe(const QSqlDatabase &db);

// Brings a database of an older version up to kVersionEsquema, one step at a
// time, each in a transaction of its own, then creates any table of the
// schema it lacks. Throws Error (nothing of the failed step kept) when a row
// does not fit the new schema, naming the rows to fix.
void actualizaEsquema(const QSqlDatabase &db, Motor motor);

} // namespace zuvi::anfitrion
