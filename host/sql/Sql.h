#pragma once

// How the host executes every statement it runs for the component: one
// statement per text (prepare() then exec(), so a second statement after a ';'
// is refused on every engine), failures raised as Error with the driver's
// text, and each statement appended to the trace file when tracing is on.

#include "host/sql/Motor.h"
#include "runtime/Recordset.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QVariantList>

namespace zuvi::anfitrion {

// Runs a statement text as the component handed it over.
QSqlQuery ejecuta(const QSqlDatabase &db, const QString &sql);

// Runs a statement with '?' placeholders and bound values. textoTraza is what
// the trace records; when it is empty the trace gets the statement with its
// values written in (built only while a trace is kept).
QSqlQuery ejecutaConValores(const QSqlDatabase &db, const QString &sql, const QVariantList &valores,
                            const QString &textoTraza = {});

// The paths for statements that run once per row or per movement. The
// prepared statement is kept per connection and normalized text (see
// normalizaSentencia) and re-executed with new values; the least recently
// used goes when too many are kept. Since no query object is handed out, a
// kept statement is never in use twice. consulta() reads every row;
// ejecutaAccion() returns the rows affected and the id of an inserted row.
// The trace and the errors show the text as it was handed over.
RecordsetPtr consulta(const QSqlDatabase &db, const QString &sql, const QVariantList &valores = {},
                      const QString &textoTraza = {});
struct ResultadoAccion
{
    int filas = 0;
    QVariant ultimoId;
};
ResultadoAccion ejecutaAccion(const QSqlDatabase &db, const QString &sql,
                              const QVariantList &valores = {}, const QString &textoTraza = {});

// Drops the statements kept for a connection. Call it before the connection
// is closed or removed.
void olvidaSentencias(const QSqlDatabase &db);

// A transaction of its own around a few statements, rolled back unless
// confirmed. When the connection is already inside a transaction it joins it
// (begins and confirms nothing). On SQLite the BEGIN and COMMIT statements are
// kept prepared like any other.
class Transaccion
{
public:
    explicit Transaccion(const QSqlDatabase &db);
    ~Transaccion();
    Transaccion(const Transaccion &) = delete;
    Transaccion &operator=(const Transaccion &) = delete;
    void confirma();

private:
    QSqlDatabase m_db;
    bool m_propia = false;
    bool m_sqlite = false;
};

// The statement trace: empty turns it off.
void ponTraza(const QString &archivo);
QString archivoTraza();
bool hayTraza();
void traza(const QString &sentencia);

// The engine behind a connection.
Motor motorDe(const QSqlDatabase &db);

// A value written as an SQL literal the way the engine reads it back: texts,
// dates and times quoted (a quote doubled; a backslash is itself on both),
// numbers as they are, booleans as 1 and 0, null as NULL.
QString literalSql(const QVariant &valor, Motor motor);

// The statement with each '?' outside a quoted text replaced by the literal of
// its value, in order: what the trace shows for a statement with bound values.
QString textoConValores(const QString &sql, const QVariantList &valores, Motor motor);

// A statement text written with its values in, as the component hands it
// over, turned into one text with '?' in place of its literals and the values
// apart: numbers and quoted texts in a condition (WHERE), an assignment (SET)
// or a row of VALUES; never in the select list, in ORDER BY, GROUP BY or
// LIMIT, in a LIKE pattern or in a type's size. Blanks outside quotes become
// one. Texts that differ only in those values share one normalized text and
// so one kept statement. Not entendida: the text runs as it is (a comment, a
// second statement, a placeholder, anything the scanner does not follow).
struct SentenciaNormalizada
{
    QString texto;
    QVariantList valores;
    bool entendida = false;
};
SentenciaNormalizada normalizaSentencia(const QString &sql, Motor motor);

} // namespace zuvi::anfitrion
