#pragma once

// A MariaDB connection the server dropped (the server restarted, the network
// went, the session was killed) is not the end of the program. The statement
// that found it lost fails with a Spanish text saying that what was being
// done was not saved; the connection is marked, and the next statement opens
// it again first, with the session settings it had. A read that finds the
// connection lost is run once more on the new connection; a write never is,
// so nothing is written twice without the person knowing.

#include "runtime/Error.h"

#include <QSqlDatabase>
#include <QString>

namespace zuvi::anfitrion {

// The session settings every MariaDB connection of the host runs with.
inline const QString kModoSesionMariaDB =
    QStringLiteral("SET SESSION sql_mode = 'NO_ENGINE_SUBSTITUTION,NO_BACKSLASH_ESCAPES'");

// A statement that found its connection lost; its text is textoConexionPerdida().
class ConexionPerdida : public Error
{
public:
    using Error::Error;
};

// Whether an engine's error (its text and native code) means the connection is gone.
bool esConexionPerdida(const QString &texto, int codigo);

// What the person reads when a write found the connection lost.
QString textoConexionPerdida();

// Marks the connection lost; the next statement on it reconnects.
void marcaPerdida(const QSqlDatabase &db);
bool estaPerdida(const QSqlDatabase &db);

// Called on a connection just opened again, before the statement that needed
// it runs; it must not throw. One for the whole program.
using TrasReconectar = void (*)(const QSqlDatabase &db);
void ponTrasReconectar(TrasReconectar tras);

// Before a statement: a connection marked lost is opened again. Throws Error
// (in Spanish) while the server cannot be reached; the mark stays then.
// olvida is called first to drop what was prepared on the old connection.
void reconectaSiHaceFalta(const QSqlDatabase &db, void (*olvida)(const QSqlDatabase &));

} // namespace zuvi::anfitrion
