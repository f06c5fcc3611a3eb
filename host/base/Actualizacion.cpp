// Upgrading a database of an older version in place: each step brings it up
// one version inside a transaction of its own, and writes the new version
// with it. MariaDB commits each change of a table's structure by itself, so
// there a step is made safe to run again instead: a table is rebuilt beside
// the old one and swapped in under its name in one RENAME.

#include "host/base/Actualizacion.h"

#include "host/base/Esquema.h"
#include "host/sql/CausaError.h"
#include "host/sql/Sql.h"
#include "runtime/Error.h"
#include "runtime/Text.h"

#include <QRegularExpression>
#include <QSqlError>
#include <QSqlRecord>

namespace zuvi::anfitrion {

namespace {

bool tieneTabla(const QSqlDatabase &db, const QString &tabla)
{
    return db.tables().contains(tabla, Qt::CaseInsensitive);
}

// The rows that would break a check of the table's new definition, named so
// the person can fix them before the upgrade is tried again.
QStringList filasQueNoCaben(const QSqlDatabase &db, Motor motor, const QString &tabla)
{
    QStringList filas;
    for (const Restriccion &r : restriccionesDe(tabla, motor)) {
        QSqlQuery q = ejecuta(
            db,
            QStringLiteral("SELECT %1 FROM %2 WHERE NOT (%3)").arg(r.columna, tabla, r.condicion));
        for (int n = 0; q.next() && n < 5; ++n)
            filas << QStringLiteral("%1.%2 = \"%3\" (%4)")
                         .arg(tabla, r.columna, eco(q.value(0).toString()),
                              r.comilla ? QStringLiteral("lleva comillas o barra invertida")
                                        : QStringLiteral("más de %1 caracteres").arg(r.largo));
    }
    return filas;
}

// The table with its current definition: built beside the old one, the rows
// of the columns both have copied, and put in its place.
void reconstruye(const QSqlDatabase &db, Motor motor, const QString &tabla)
{
    const QStringList malas = filasQueNoCaben(db, motor, tabla);
    if (!malas.isEmpty())
        throw Error(QStringLiteral("La base de datos no se puede poner al día: estas claves o "
                                   "textos ya no se admiten; corríjalos y vuelva a abrirla: %1.")
                        .arg(malas.join(QStringLiteral("; "))));
    const QString nueva = QStringLiteral("zuvi_nueva_") + tabla;
    const QString vieja = QStringLiteral("zuvi_vieja_") + tabla;
    ejecuta(db, QStringLiteral("DROP TABLE IF EXISTS ") + nueva);
    ejecuta(db, sentenciaTabla(tabla, motor, nueva));
    const QSqlRecord antes = db.record(tabla);
    const QSqlRecord despues = db.record(nueva);
    QStringList columnas;
    for (int i = 0; i < despues.count(); ++i)
        if (antes.indexOf(despues.fieldName(i)) >= 0)
            columnas << despues.fieldName(i);
    const QString lista = columnas.join(QStringLiteral(", "));
    try {
        ejecuta(db,
                QStringLiteral("INSERT INTO %1 (%2) SELECT %2 FROM %3").arg(nueva, lista, tabla));
    } catch (...) {
        if (motor == Motor::MariaDB)
            ejecuta(db, QStringLiteral("DROP TABLE IF EXISTS ") + nueva);
        throw;
    }
    if (motor == Motor::SQLite) {
        ejecuta(db, QStringLiteral("DROP TABLE ") + tabla);
        ejecuta(db, QStringLiteral("ALTER TABLE %1 RENAME TO %2").arg(nueva, tabla));
    } else {
        ejecuta(db, QStringLiteral("DROP TABLE IF EXISTS ") + vieja);
        ejecuta(db, QStringLiteral("RENAME TABLE %1 TO %2, %3 TO %1").arg(tabla, vieja, nueva));
        ejecuta(db, QStringLiteral("DROP TABLE ") + vieja);
    }
}

void creaLasQueFaltan(const QSqlDatabase &db, Motor motor)
{
    const QStringList hay = db.tables();
    for (const QString &t : tablasEsquema())
        if (!hay.contains(t, Qt::CaseInsensitive))
            ejecuta(db, sentenciaTabla(t, motor));
    for (const QString &indice : sentenciasIndices())
        ejecuta(db, indice);
}

// Version 2: every text column checks its length and every key the module
// quotes refuses a quote; the version row comes in.
void aVersion2(const QSqlDatabase &db, Motor motor)
{
    for (const QString &t : tablasEsquema())
        if (tieneTabla(db, t))
            reconstruye(db, motor, t);
}

// Version 3: the station's settings for negative stock and for order lines
// that are not kits (both off).
void aVersion3(const QSqlDatabase &db, Motor motor)
{
    if (tieneTabla(db, QStringLiteral("estaciones")))
        reconstruye(db, motor, QStringLiteral("estaciones"));
}

// The schema's CREATE INDEX statements whose index the database lacks. The
// host's own reading: it stays out of the statement trace.
QStringList indicesQueFaltan(const QSqlDatabase &db, Motor motor)
{
    QSqlQuery q(db);
    const bool leido =
        q.exec(motor == Motor::SQLite
                   ? QStringLiteral("SELECT name FROM sqlite_master WHERE type = 'index'")
                   : QStringLiteral("SELECT DISTINCT INDEX_NAME FROM information_schema.STATISTICS "
                                    "WHERE TABLE_SCHEMA = DATABASE()"));
    QStringList hay;
    while (leido && q.next())
        hay << q.value(0).toString().toLower();
    static const QRegularExpression nombre(QStringLiteral("EXISTS (\\w+) ON"));
    QStringList faltan;
    for (const QString &sql : sentenciasIndices())
        if (!hay.contains(nombre.match(sql).captured(1).toLower()))
            faltan << sql;
    return faltan;
}

struct Paso
{
    int version; // the version the step leaves
    void (*aplica)(const QSqlDatabase &, Motor);
};

const Paso kPasos[] = {{2, aVersion2}, {3, aVersion3}};

} // namespace

int versionDe(const QSqlDatabase &db)
{
    if (!tieneTabla(db, QStringLiteral("mensajes")))
        return 0;
    if (!tieneTabla(db, QStringLiteral("versionbase")))
        return 1;
    // The host's own reading: it stays out of the statement trace.
    QSqlQuery q(db);
    if (!q.exec(QStringLiteral("SELECT version FROM versionbase WHERE clave = 1")))
        throw Error(QStringLiteral("No se pudo leer la versión de la base de datos: %1")
                        .arg(causaDeFallo(q.lastError().databaseText(),
                                          q.lastError().nativeErrorCode().toInt())));
    return q.next() ? q.value(0).toInt() : 1;
}

void actualizaEsquema(const QSqlDatabase &db, Motor motor)
{
    const int version = versionDe(db);
    if (version > kVersionEsquema)
        throw Error(QStringLiteral("La base de datos es de la versión %1 del esquema y este "
                                   "programa sólo conoce hasta la %2: use una versión más nueva "
                                   "de ZuviProduccion.")
                        .arg(version)
                        .arg(kVersionEsquema));
    for (const Paso &paso : kPasos) {
        if (paso.version <= version)
            continue;
        Transaccion t(db);
        paso.aplica(db, motor);
        creaLasQueFaltan(db, motor);
        ejecutaConValores(db, QStringLiteral("DELETE FROM versionbase WHERE clave = ?"), {1});
        ejecutaConValores(db,
                          QStringLiteral("INSERT INTO versionbase (clave, version) VALUES (1, ?)"),
                          {paso.version});
        t.confirma();
    }
    // Tables added to the schema since the database was made come along.
    const QStringList hay = db.tables();
    for (const QString &t : tablasEsquema())
        if (!hay.contains(t, Qt::CaseInsensitive)) {
            creaLasQueFaltan(db, motor);
            break;
        }
    // So do the indexes any version lacks. An account that may not make them
    // still works, only slower over years of data: the next opening with the
    // rights makes them.
    for (const QString &indice : indicesQueFaltan(db, motor))
        swallowErrors([&] { ejecuta(db, indice); });
    // The same for the articles' search index: without it F2 searches slower.
    swallowErrors([&] { aseguraBusquedaArticulos(db, motor); });
}

} // namespace zuvi::anfitrion
