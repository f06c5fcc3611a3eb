#pragma once

// How the host executes every statement it runs for the component: one
// statement per text (prepare() then exec(), so a second statement after a ';'
// is refused on every engine), failures raised as Error with the driver's
// text, and each statement appended to the trace file when tracing is on.

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QVariantList>

namespace zuvi::anfitrion {

// Runs a statement text as the component handed it over.
QSqlQuery ejecuta(const QSqlDatabase &db, const QString &sql);

// Runs a statement with '?' placeholders and bound values. textoTraza is what
// the trace records (the statement with its values written in).
QSqlQuery ejecutaConValores(const QSqlDatabase &db, const QString &sql, const QVariantList &valores,
                            const QString &textoTraza);

// The statement trace: empty turns it off.
void ponTraza(const QString &archivo);
QString archivoTraza();
void traza(const QString &sentencia);

} // namespace zuvi::anfitrion
