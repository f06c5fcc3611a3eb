#include "host/base/Folios.h"

#include "host/sql/Motor.h"
#include "host/sql/Sql.h"
#include "runtime/Error.h"

#include <QDeadlineTimer>
#include <QRandomGenerator>
#include <QSqlDriver>
#include <QSqlQuery>
#include <QThread>
#include <QVariantList>

#include <limits>

namespace zuvi::anfitrion {

namespace {

// How long a station waits for another one's numbering before giving up.
constexpr int kEsperaMaximaMs = 60000;

// The last number a key hands out; one below the column's maximum so the
// increment itself never overflows.
constexpr qint32 kUltimoPosible = std::numeric_limits<qint32>::max() - 1;

QSqlQuery corre(const QSqlDatabase &db, const QString &sql, const QVariantList &valores)
{
    return ejecutaConValores(db, sql, valores);
}

// SQLITE_BUSY and SQLITE_LOCKED, with their extended codes.
bool estaOcupada(const Error &e)
{
    const int base = e.number() & 0xff;
    return base == 5 || base == 6;
}

qint64 ultimoEnUso(const QSqlDatabase &db, const QString &clave)
{
    QString sql;
    if (clave.compare(QLatin1String("Op"), Qt::CaseInsensitive) == 0)
        sql = QStringLiteral("SELECT MAX(op) FROM op");
    else if (clave.compare(QLatin1String("oppart"), Qt::CaseInsensitive) == 0)
        sql = QStringLiteral("SELECT MAX(id_entrada) FROM oppart");
    else
        return 0;
    QSqlQuery q = ejecuta(db, sql);
    return q.next() ? q.value(0).toLongLong() : 0;
}

qint32 compruebaLimite(qint64 numero, const QString &clave)
{
    if (numero <= 0 || numero > kUltimoPosible)
        throw Error(QStringLiteral("La numeración \"%1\" llegó a su límite (%2); no se pueden "
                                   "asignar más números con esa clave.")
                        .arg(clave)
                        .arg(numero));
    return qint32(numero);
}

qint32 folioMariaDB(const QSqlDatabase &db, const QString &clave)
{
    // The counter never moves past the last number that can be handed out,
    // so a key at its limit keeps refusing without changing.
    QSqlQuery u = corre(db,
                        QStringLiteral("UPDATE folios SET ultimo = LAST_INSERT_ID(ultimo + 1)"
                                       " WHERE clave = ? AND ultimo < ?"),
                        {clave, qint64(kUltimoPosible)});
    if (u.numRowsAffected() < 1) {
        QSqlQuery existe =
            corre(db, QStringLiteral("SELECT ultimo FROM folios WHERE clave = ?"), {clave});
        if (existe.next())
            compruebaLimite(existe.value(0).toLongLong() + 1, clave);
        existe.finish();
        // Two stations may both find the key missing: the second one's
        // insert turns into the increment.
        const qint64 inicial = ultimoEnUso(db, clave) + 1;
        compruebaLimite(inicial, clave);
        corre(db,
              QStringLiteral("INSERT INTO folios (clave, ultimo) VALUES (?, LAST_INSERT_ID(?))"
                             " ON DUPLICATE KEY UPDATE ultimo = LAST_INSERT_ID(ultimo + 1)"),
              {clave, inicial});
    }
    QSqlQuery q = ejecuta(db, QStringLiteral("SELECT LAST_INSERT_ID()"));
    const qint64 numero = q.next() ? q.value(0).toLongLong() : 0;
    return compruebaLimite(numero, clave);
}

qint64 incrementaSQLite(const QSqlDatabase &db, const QString &clave)
{
    {
        QSqlQuery q =
            corre(db, QStringLiteral("SELECT ultimo FROM folios WHERE clave = ?"), {clave});
        if (q.next()) {
            const qint64 numero = q.value(0).toLongLong() + 1;
            q.finish();
            compruebaLimite(numero, clave);
            corre(db, QStringLiteral("UPDATE folios SET ultimo = ? WHERE clave = ?"),
                  {numero, clave});
            return numero;
        }
    }
    const qint64 numero = ultimoEnUso(db, clave) + 1;
    compruebaLimite(numero, clave);
    corre(db, QStringLiteral("INSERT INTO folios (clave, ultimo) VALUES (?, ?)"), {clave, numero});
    return numero;
}

qint32 folioSQLite(const QSqlDatabase &db, const QString &clave)
{
    // The connection's busy timeout already waits inside each statement;
    // this loop covers a lock that outlasts it.
    QDeadlineTimer limite(kEsperaMaximaMs);
    for (;;) {
        try {
            ejecuta(db, QStringLiteral("BEGIN IMMEDIATE"));
        } catch (const Error &e) {
            if (!estaOcupada(e) || limite.hasExpired())
                throw;
            QThread::msleep(2 + QRandomGenerator::global()->bounded(20));
            continue;
        }
        try {
            const qint64 numero = incrementaSQLite(db, clave);
            ejecuta(db, QStringLiteral("COMMIT"));
            return qint32(numero);
        } catch (const Error &e) {
            QSqlQuery(db).exec(QStringLiteral("ROLLBACK"));
            if (!estaOcupada(e) || limite.hasExpired())
                throw;
        }
    }
}

} // namespace

qint32 siguienteFolio(const QSqlDatabase &db, const QString &clave)
{
    if (clave.trimmed().isEmpty())
        throw Error(QStringLiteral("No se indicó la clave de la numeración."));
    if (!db.isOpen())
        throw Error(QStringLiteral("No hay conexión abierta con la base de datos."));
    return motorDe(db) == Motor::MariaDB ? folioMariaDB(db, clave) : folioSQLite(db, clave);
}

} // namespace zuvi::anfitrion
