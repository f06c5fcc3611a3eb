#include "host/sql/CausaError.h"

#include "runtime/Text.h"

#include <QRegularExpression>

#include <algorithm>
#include <atomic>
#include <vector>

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

namespace {

// Faults known by a fragment of the engine's text or by its code.
struct Conocido
{
    std::vector<const char *> fragmentos;
    std::vector<int> codigos;
    const char *mensaje;
};
const Conocido kConocidos[] = {
    {{"database or disk is full", "Disk full", "is full"},
     {1021, 1114},
     "el disco está lleno (o la base de datos llegó a su tamaño máximo); libere espacio y "
     "vuelva a intentarlo"},
    {{"readonly database", "read only", "read-only"},
     {1036, 1290},
     "la base de datos es de sólo lectura: el archivo o su carpeta no admiten escritura"},
    {{"database is locked", "table is locked", "Lock wait timeout", "Deadlock"},
     {},
     "la base de datos está bloqueada por otro programa que escribe en ella; intente de nuevo "
     "en un momento"},
    {{"gone away", "Lost connection"},
     {2006, 2013},
     "se perdió la conexión con el servidor MariaDB"},
    {{"Can't connect"},
     {2002, 2003},
     "el servidor MariaDB no acepta la conexión: no está en marcha o el servidor o el puerto no "
     "son esos"},
    {{"Unknown server host", "Unknown MySQL server host"},
     {2005},
     "no se encuentra el servidor MariaDB con ese nombre"},
    {{"Access denied"}, {1045}, "el servidor MariaDB rechazó el usuario o la clave"},
    {{"Unknown database"}, {1049}, "la base de datos no existe en el servidor"},
    {{"unable to open database file"},
     {},
     "no se puede abrir el archivo de la base de datos (revise que la carpeta exista y admita "
     "escritura)"},
    {{"file is not a database"}, {}, "el archivo no es una base de datos SQLite"},
    {{"malformed"}, {}, "el archivo de la base de datos está dañado"},
    {{"disk I/O error"}, {}, "falló la lectura o la escritura en el disco"},
    {{"carácter nulo"},
     {},
     "el texto de la sentencia lleva un carácter nulo; se rechaza entero para que no corra sólo "
     "una parte"},
    {{"multiple statements"},
     {},
     "el texto lleva más de una sentencia SQL; se ejecuta una sola a la vez"},
};

// Faults that name what they refer to: SQLite's wording, then MariaDB's.
struct ConNombre
{
    const char *sqlite, *mariadb, *mensaje;
};
const ConNombre kConNombre[] = {
    {"UNIQUE constraint failed: *([\\w.]+)", "Duplicate entry '.*' for key '([^']*)'",
     "ya existe un registro con esa clave (%1)"},
    {"NOT NULL constraint failed: *([\\w.]+)", "Column '([^']*)' cannot be null",
     "falta el valor de la columna %1, que es obligatorio"},
    {"$^", "Data too long for column '([^']*)'", "el texto es demasiado largo para la columna %1"},
    {"no such table: *(\\S+)", "Table '([^']*)' doesn't exist", "no existe la tabla %1"},
    {"no such column: *(\\S+)", "Unknown column '([^']*)'", "no existe la columna %1"},
    {"near \"([^\"]*)\": syntax error", "SQL syntax.*near '(.*)' at line",
     "la sentencia está mal escrita, cerca de \"%1\""},
};

} // namespace

QString causaDeFallo(const QString &texto, int codigo)
{
    if (const ExplicaRestriccion explica = explicaRestriccion.load()) {
        const QString restriccion = explica(texto);
        if (!restriccion.isEmpty())
            return restriccion;
    }
    // SQLite says "not an error" (primary code 21, the low byte of the
    // extended one) when it stops after the first of several statements.
    const QString dicho = (codigo & 0xff) == 21 && dice(texto, "not an error")
                              ? QStringLiteral("multiple statements")
                              : texto;
    for (const Conocido &c : kConocidos) {
        const bool porTexto = std::any_of(c.fragmentos.begin(), c.fragmentos.end(),
                                          [&](const char *f) { return dice(dicho, f); });
        if (porTexto || std::find(c.codigos.begin(), c.codigos.end(), codigo) != c.codigos.end())
            return QString::fromUtf8(c.mensaje);
    }
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
