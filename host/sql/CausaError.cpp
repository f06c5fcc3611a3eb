#include "host/sql/CausaError.h"

#include "runtime/Text.h"

#include <QRegularExpression>

#include <atomic>

namespace zuvi::anfitrion {

namespace {

bool dice(const QString &texto, const char *fragmento)
{
    return texto.contains(QLatin1String(fragmento), Qt::CaseInsensitive);
}

// The first capture of a pattern in the text, or empty.
QString extrae(const QString &texto, const char *patron)
{
    const QRegularExpression r(QLatin1String(patron), QRegularExpression::CaseInsensitiveOption);
    return r.match(texto).captured(1);
}

} // namespace

namespace {

std::atomic<ExplicaRestriccion> explicaRestriccion{nullptr};

} // namespace

void ponExplicaRestriccion(ExplicaRestriccion explica)
{
    explicaRestriccion.store(explica);
}

QString causaDeFallo(const QString &texto, int codigo)
{
    if (const ExplicaRestriccion explica = explicaRestriccion.load()) {
        const QString restriccion = explica(texto);
        if (!restriccion.isEmpty())
            return restriccion;
    }
    // SQLite's primary code is the low byte of its extended one; MariaDB's
    // numbers start at 1000, so the texts tell the engines apart first.
    const int sqlite = codigo & 0xff;
    if (dice(texto, "database or disk is full") || dice(texto, "Disk full") ||
        dice(texto, "is full") || codigo == 1021 || codigo == 1114)
        return QStringLiteral("el disco está lleno (o la base de datos llegó a su tamaño "
                              "máximo); libere espacio y vuelva a intentarlo");
    if (dice(texto, "readonly database") || dice(texto, "read only") || dice(texto, "read-only") ||
        codigo == 1036 || codigo == 1290)
        return QStringLiteral("la base de datos es de sólo lectura: el archivo o su carpeta no "
                              "admiten escritura");
    if (dice(texto, "database is locked") || dice(texto, "table is locked") ||
        dice(texto, "Lock wait timeout") || dice(texto, "Deadlock"))
        return QStringLiteral("la base de datos está bloqueada por otro programa que escribe en "
                              "ella; intente de nuevo en un momento");
    if (dice(texto, "gone away") || dice(texto, "Lost connection") || codigo == 2006 ||
        codigo == 2013)
        return QStringLiteral("se perdió la conexión con el servidor MariaDB");
    if (dice(texto, "Can't connect") || codigo == 2002 || codigo == 2003)
        return QStringLiteral("el servidor MariaDB no acepta la conexión: no está en marcha o "
                              "el servidor o el puerto no son esos");
    if (dice(texto, "Unknown server host") || dice(texto, "Unknown MySQL server host") ||
        codigo == 2005)
        return QStringLiteral("no se encuentra el servidor MariaDB con ese nombre");
    if (dice(texto, "Access denied") || codigo == 1045)
        return QStringLiteral("el servidor MariaDB rechazó el usuario o la clave");
    if (dice(texto, "Unknown database") || codigo == 1049)
        return QStringLiteral("la base de datos no existe en el servidor");
    if (dice(texto, "unable to open database file"))
        return QStringLiteral("no se puede abrir el archivo de la base de datos (revise que la "
                              "carpeta exista y admita escritura)");
    if (dice(texto, "file is not a database"))
        return QStringLiteral("el archivo no es una base de datos SQLite");
    if (dice(texto, "malformed"))
        return QStringLiteral("el archivo de la base de datos está dañado");
    if (dice(texto, "disk I/O error"))
        return QStringLiteral("falló la lectura o la escritura en el disco");
    if (dice(texto, "carácter nulo"))
        return QStringLiteral("el texto de la sentencia lleva un carácter nulo; se rechaza "
                              "entero para que no corra sólo una parte");
    if (dice(texto, "multiple statements") || (sqlite == 21 && dice(texto, "not an error")))
        return QStringLiteral("el texto lleva más de una sentencia SQL; se ejecuta una sola a "
                              "la vez");
    // Faults that name what they refer to: SQLite's wording, then MariaDB's.
    struct ConNombre
    {
        const char *sqlite, *mariadb, *mensaje;
    };
    static const ConNombre kConNombre[] = {
        {"UNIQUE constraint failed: *([\\w.]+)", "Duplicate entry '.*' for key '([^']*)'",
         "ya existe un registro con esa clave (%1)"},
        {"NOT NULL constraint failed: *([\\w.]+)", "Column '([^']*)' cannot be null",
         "falta el valor de la columna %1, que es obligatorio"},
        {"$^", "Data too long for column '([^']*)'",
         "el texto es demasiado largo para la columna %1"},
        {"no such table: *(\\S+)", "Table '([^']*)' doesn't exist", "no existe la tabla %1"},
        {"no such column: *(\\S+)", "Unknown column '([^']*)'", "no existe la columna %1"},
        {"near \"([^\"]*)\": syntax error", "SQL syntax.*near '(.*)' at line",
         "la sentencia está mal escrita, cerca de \"%1\""},
    };
    for (const ConNombre &c : kConNombre) {
        QString que = extrae(texto, c.sqlite);
        if (que.isEmpty())
            que = extrae(texto, c.mariadb);
        if (!que.isEmpty())
            return QString::fromUtf8(c.mensaje).arg(eco(que));
    }
    if (texto.trimmed().isEmpty())
        return QStringLiteral("error desconocido");
    return QStringLiteral("el motor de base de datos respondió: %1").arg(eco(texto, 200));
}

QString causaLegible(const QString &descripcion)
{
    static const QRegularExpression sentencia(
        QStringLiteral("^Error de base de datos: (.*) \\[.*\\]$"),
        QRegularExpression::DotMatchesEverythingOption);
    const QRegularExpressionMatch m = sentencia.match(descripcion);
    return m.hasMatch() ? m.captured(1) : descripcion;
}

} // namespace zuvi::anfitrion
