// The statement path: the scanner that hoists a statement's literals into
// bound values, and the SQLite preparation that refuses a second statement.
// Whatever the text, the scanner either gives up or hands back one statement
// with exactly one '?' per value, and a key written between quotes comes back
// as that one value, never as more statement.

#include "Entrada.h"
#include "Exige.h"
#include "host/sql/Motor.h"
#include "host/sql/SqlInterno.h"

#include <sqlite3.h>

using namespace zuvi::anfitrion;
using zuvi::fuzz::exige;

namespace {

// The '?' of a normalized text outside its quoted texts and names (SQLite
// also quotes a name between brackets).
qsizetype marcas(const QString &sql, Motor motor)
{
    qsizetype n = 0;
    QChar cierre; // the quote that ends the quoted part the scan is in
    for (const QChar c : sql) {
        if (!cierre.isNull()) {
            if (c == cierre)
                cierre = QChar();
        } else if (c == QLatin1Char('\'') || c == QLatin1Char('"') || c == QLatin1Char('`')) {
            cierre = c;
        } else if (c == QLatin1Char('[') && motor == Motor::SQLite) {
            cierre = QLatin1Char(']');
        } else if (c == QLatin1Char('?')) {
            ++n;
        } else {
            exige(c != QLatin1Char(';'), "un texto entendido no lleva una segunda sentencia");
        }
    }
    return n;
}

sqlite3 *conexion()
{
    static sqlite3 *db = [] {
        sqlite3 *d = nullptr;
        sqlite3_open(":memory:", &d);
        sqlite3_exec(d, "CREATE TABLE turnos (turno TEXT, entrada TEXT)", nullptr, nullptr,
                     nullptr);
        return d;
    }();
    return db;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *datos, size_t largo)
{
    zuvi::fuzz::Entrada e(datos, largo);
    const Motor motor = e.byte() & 1 ? Motor::MariaDB : Motor::SQLite;
    QString clave = e.texto(24);
    if (clave.isNull())
        clave = QLatin1String(""); // a null text is NULL, not
    const QString sql = e.resto();

    const SentenciaNormalizada n = normalizaSentencia(sql, motor);
    if (n.entendida)
        exige(marcas(n.texto, motor) == n.valores.size(), "una marca por valor");

    // A key between quotes, its quotes doubled as the statements write them.
    QString doblada = clave;
    doblada.replace(QLatin1Char('\''), QStringLiteral("''"));
    const QString conClave = QStringLiteral("DELETE FROM turnos WHERE turno = '%1'").arg(doblada);
    const SentenciaNormalizada k = normalizaSentencia(conClave, motor);
    if (k.entendida) {
        exige(k.texto == QLatin1String("DELETE FROM turnos WHERE turno = ?"),
              "la sentencia es la misma");
        exige(k.valores.size() == 1 && k.valores.at(0).toString() == clave, "la clave es el valor");
    }
    exige(textoConValores(QStringLiteral("DELETE FROM turnos WHERE turno = ?"), {clave}, motor) ==
              conClave,
          "el texto con valores escribe la clave entre comillas");

    // SQLite: a text prepares as one statement or is refused.
    zuvi::anfitrion::interno::FalloSql fallo;
    zuvi::anfitrion::interno::preparaEnSQLite(conexion(), sql, fallo);
    auto dos = zuvi::anfitrion::interno::preparaEnSQLite(conexion(),
                                                         QStringLiteral("SELECT 1; ") + sql, fallo);
    exige(!dos || sql.trimmed().isEmpty(), "una segunda sentencia se rechaza");
    return 0;
}
