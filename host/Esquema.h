#pragma once

// The database the host owns: every table the module reads and writes, the
// host's own tables, the base rows and the demo data, for SQLite and MariaDB.
// Everything here is idempotent: tables are created when missing and rows
// are inserted only when their key is not there yet.

#include "host/Anfitrion.h"

#include <QList>
#include <QPair>
#include <QSqlDatabase>
#include <QStringList>

namespace zuvi::anfitrion {

// The CREATE TABLE / CREATE INDEX statements for one engine, in order.
QStringList sentenciasEsquema(Motor motor);

// The names of every table the schema creates.
QStringList tablasEsquema();

void creaEsquema(const QSqlDatabase &db, Motor motor);

// Message catalogue and the default station.
void insertaFilasBase(const QSqlDatabase &db, Motor motor);

// The shop the demo database shows (described in host/Demo.cpp).
void insertaDemo(const QSqlDatabase &db, Motor motor);

// The text of the message catalogue: number and Spanish text.
const QList<QPair<int, QString>> &catalogoMensajes();

// "INSERT OR IGNORE INTO" or "INSERT IGNORE INTO": an insert that keeps a row
// already there with the same key.
QString insertaSiFalta(Motor motor);

} // namespace zuvi::anfitrion
