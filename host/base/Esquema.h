#pragma once

// The database the host owns: every table the module reads and writes, the
// host's own tables and the base rows, for SQLite and MariaDB.
// Everything here is idempotent: tables are created when missing and rows
// are inserted only when their key is not there yet.

#include "host/sql/Motor.h"

#include <QList>
#include <QSqlDatabase>
#include <QStringList>

#include <optional>

namespace zuvi::anfitrion {

// The version of the schema this program creates. A database without a
// version row is of version 1. Each version up adds one step to the upgrade
// (host/base/Actualizacion.h).
constexpr int kVersionEsquema = 3;

// A named check of a text column: its length, or (for a key the module
// writes between quotes) that it holds no quote.
struct Restriccion
{
    QString nombre; // "tabla_columna_largo" or "tabla_columna_comilla"
    QString tabla, columna;
    int largo = 0;     // the column's length in characters
    QString condicion; // what every row satisfies, in the engine's SQL
    bool comilla = false;
};

// The checks of one table, as the engine writes them.
QList<Restriccion> restriccionesDe(const QString &tabla, Motor motor);

// The check of that name, whichever its table; none when it is not ours.
std::optional<Restriccion> restriccionLlamada(const QString &nombre);

// The message of one of the schema's named checks (a key with a quote, a text
// too long for its column) when the text is its refusal; empty otherwise.
QString causaDeRestriccion(const QString &texto);

// The length of a text column of the schema; 0 when it is not one.
int largoColumna(const QString &tabla, const QString &columna);

// The CREATE TABLE of one table of the schema, under another name when given.
QString sentenciaTabla(const QString &tabla, Motor motor, const QString &nombreNuevo = {});
QStringList sentenciasIndices();

// The CREATE TABLE / CREATE INDEX statements for one engine, in order.
QStringList sentenciasEsquema(Motor motor);

// The names of every table the schema creates.
QStringList tablasEsquema();

void creaEsquema(const QSqlDatabase &db, Motor motor);

// --- Searching the articles in the database ---------------------------------
// On SQLite an index of the three-letter pieces of each article's code and
// description (case and accents folded), so that any part of a word is found
// without reading the table, is kept beside prods by triggers, its entries
// numbered as the rows of prods. MariaDB searches the columns themselves.
inline constexpr const char *kBusquedaArticulos = "prods_busqueda";

// Whether the database searches the articles through that index (SQLite,
// the index made).
bool hayBusquedaArticulos(const QSqlDatabase &db);

// A search's words with the accents the index folds taken off.
QString sinAcentosDeBusqueda(QString texto);

// Makes the index and its triggers when they are missing (a new database, an
// older one, or prods rebuilt by an upgrade) and fills it from prods. Does
// nothing on MariaDB or when they are in place.
void aseguraBusquedaArticulos(const QSqlDatabase &db, Motor motor);

// Message catalogue and the default station.
void insertaFilasBase(const QSqlDatabase &db, Motor motor);

// "INSERT OR IGNORE INTO" or "INSERT IGNORE INTO": an insert that keeps a row
// already there with the same key.
QString insertaSiFalta(Motor motor);

} // namespace zuvi::anfitrion
