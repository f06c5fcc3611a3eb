#pragma once

// What a database engine's error means, said in Spanish for the person who
// reads it: the engines answer in English and in their own words, and the
// same fault (a full disk, a lost server) reads differently on each.

#include <QString>

namespace zuvi::anfitrion {

// The Spanish cause of an error, from the engine's text and its native code
// (SQLite's extended code or MariaDB's error number). A cause the host does
// not know keeps the engine's text, introduced in Spanish.
QString causaDeFallo(const QString &texto, int codigo);

// What a refusal by one of the schema's named checks (a key with a quote, a
// text too long for its column) means, in Spanish; empty when the text is
// not one. The checks are the schema's (host/base/Esquema.h): a session hands
// in their explanation when it opens, and causaDeFallo asks it first.
// The cause alone of a failure the statement path described, without the
// statement it ran: what a person reads where a list could not be read.
QString causaLegible(const QString &descripcion);

using ExplicaRestriccion = QString (*)(const QString &texto);
void ponExplicaRestriccion(ExplicaRestriccion explica);

} // namespace zuvi::anfitrion
