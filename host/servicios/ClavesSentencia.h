#pragma once

// The keys the component writes into its statements, checked before the
// statement runs. The component puts a key between single quotes as it
// stands ("... WHERE articulo = '" + key + "'"), so a key with a quote would
// break the statement and the person would read the engine's words; and a
// new row whose key is already taken would only fail on the engine's
// constraint. Both are refused here first, in Spanish, naming the key.

#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <QVariantList>

namespace zuvi::anfitrion {

// Throws Rechazo when the statement ends comparing a column with a quoted
// key that holds a quote or a backslash.
void compruebaClaveEnSentencia(const QString &sentencia);

// Throws Rechazo when an INSERT into tabla would repeat the primary key of a
// row already there; columnas and valores are what the INSERT writes. A table
// without a primary key, or an INSERT that leaves part of it out, passes.
void compruebaClaveNueva(const QSqlDatabase &db, const QString &tabla, const QStringList &columnas,
                         const QVariantList &valores);

} // namespace zuvi::anfitrion
