#include "host/base/Cuentas.h"

#include "host/base/Rutas.h"
#include "host/sql/CausaError.h"
#include "host/sql/Sql.h"
#include "runtime/Error.h"
#include "runtime/Text.h"

#include <QDir>
#include <QFile>
#include <QMutex>
#include <QRegularExpression>
#include <QSqlError>
#include <QSqlQuery>

#include <sys/stat.h>

namespace zuvi::anfitrion {

namespace {

const char *const kRoles[] = {"zuvi_consulta", "zuvi_captura", "zuvi_produccion", "zuvi_supervisor",
                              "zuvi_admin"};

// What each role adds to the one below it. "*" is every table of the
// database; columnas, when given, the only columns an UPDATE may touch.
struct Derecho
{
    Rol rol;
    const char *tabla;
    const char *privilegios;
    const char *columnas = nullptr;
};

const Derecho kDerechos[] = {
    {Rol::Consulta, "*", "SELECT"},
    // Closing an order (cerrado) is cancelling it: the supervisor's.
    {Rol::Captura, "op", "INSERT"},
    {Rol::Captura, "op", "UPDATE",
     "op, estado, ocupado, usuario, usufecha, usuhora, f_emision, fechaEntrega, importe, costo, "
     "almacen, observ, automatico, ordencompra, Tipo_doc"},
    {Rol::Captura, "oppart", "INSERT, UPDATE, DELETE"},
    {Rol::Captura, "folios", "INSERT, UPDATE"},
    {Rol::Captura, "fracciones", "INSERT, UPDATE, DELETE"},
    // Whoever opens an order for change claims it and lets it go.
    {Rol::Captura, "reclamos", "INSERT, UPDATE, DELETE"},
    {Rol::Produccion, "movimientos", "INSERT"},
    {Rol::Produccion, "existencias", "INSERT, UPDATE"},
    {Rol::Supervisor, "op", "UPDATE, DELETE"},
    {Rol::Supervisor, "turnos", "INSERT, UPDATE, DELETE"},
    {Rol::Supervisor, "turnoempleado", "INSERT, UPDATE, DELETE"},
    {Rol::Supervisor, "horarios", "INSERT, UPDATE, DELETE"},
    {Rol::Supervisor, "empleados", "INSERT, UPDATE, DELETE"},
    {Rol::Admin, "*", "ALL PRIVILEGES"},
};

// The tables as the person knows them.
const std::pair<const char *, const char *> kNombresTablas[] = {
    {"op", "las órdenes de producción"},
    {"oppart", "las partidas de las órdenes de producción"},
    {"prods", "los artículos"},
    {"clavesadd", "las claves adicionales de los artículos"},
    {"monedas", "las monedas"},
    {"vends", "los vendedores"},
    {"almacen", "los almacenes"},
    {"componen", "los kits"},
    {"comppart", "los componentes de los kits"},
    {"turnos", "los turnos"},
    {"turnoempleado", "los empleados de los turnos"},
    {"horarios", "los horarios"},
    {"empleados", "los empleados"},
    {"mensajes", "los mensajes"},
    {"folios", "los folios"},
    {"estaciones", "las estaciones"},
    {"movimientos", "los movimientos de inventario"},
    {"existencias", "las existencias"},
    {"fracciones", "las fracciones"},
    {"conceptos", "los conceptos de inventario"},
    {"impuestos", "los impuestos"},
    {"versionbase", "la versión de la base de datos"},
    {"reclamos", "las órdenes ocupadas"},
};

QString nombreTabla(const QString &tabla)
{
    for (const auto &[nombre, texto] : kNombresTablas)
        if (tabla.compare(QLatin1String(nombre), Qt::CaseInsensitive) == 0)
            return QString::fromUtf8(texto);
    return QStringLiteral("los datos de ZuviProduccion");
}

QString verbo(const QString &privilegio)
{
    const QString p = privilegio.toUpper();
    if (p == QLatin1String("SELECT"))
        return QStringLiteral("consultar");
    if (p == QLatin1String("INSERT"))
        return QStringLiteral("agregar a");
    if (p == QLatin1String("UPDATE"))
        return QStringLiteral("cambiar");
    if (p == QLatin1String("DELETE"))
        return QStringLiteral("borrar de");
    return QStringLiteral("modificar");
}

bool lista(const char *texto, const QString &elemento)
{
    const QStringList partes = QString::fromLatin1(texto).split(QStringLiteral(", "));
    return partes.contains(elemento, Qt::CaseInsensitive);
}

// The lowest role that may do it.
Rol rolQuePermite(const QString &privilegio, const QString &tabla, const QString &columna)
{
    for (const Derecho &d : kDerechos) {
        const bool tablaSirve = qstrcmp(d.tabla, "*") == 0 ||
                                tabla.compare(QLatin1String(d.tabla), Qt::CaseInsensitive) == 0;
        const bool privilegioSirve =
            lista(d.privilegios, privilegio) || qstrcmp(d.privilegios, "ALL PRIVILEGES") == 0;
        const bool columnaSirve = !d.columnas || (!columna.isEmpty() && lista(d.columnas, columna));
        if (tablaSirve && privilegioSirve && columnaSirve)
            return d.rol;
    }
    return Rol::Admin;
}

QString textoError(const QSqlError &e)
{
    QString t = e.databaseText().trimmed();
    if (t.isEmpty())
        t = e.driverText().trimmed();
    return causaDeFallo(t, e.nativeErrorCode().toInt());
}

QMutex &candado()
{
    static QMutex m;
    return m;
}

QString &negativa()
{
    static QString n;
    return n;
}

QString recuerda(const QString &texto)
{
    const QMutexLocker bloqueo(&candado());
    negativa() = texto;
    return texto;
}

// A statement about accounts: never traced, since it may carry a password.
// The refusal says what was being done.
void corre(const QSqlDatabase &db, const QString &sql, const QString &queHace,
           const QString &siYaExiste = {}, const QString &siNoExiste = {})
{
    QSqlQuery q(db);
    if (q.exec(sql))
        return;
    const QSqlError e = q.lastError();
    QString causa;
    // 1396: the server's answer to creating an account that exists or
    // dropping one that does not.
    if (e.nativeErrorCode().toInt() == 1396)
        causa = siYaExiste.isEmpty() ? siNoExiste : siYaExiste;
    if (causa.isEmpty())
        causa = textoError(e);
    throw Error(QStringLiteral("No se pudo %1: %2.").arg(queHace, causa));
}

QString cuentaEnSentencia(const QString &nombre)
{
    static const QRegularExpression valido(QStringLiteral("^[A-Za-z0-9_.-]{1,30}$"));
    if (!valido.match(nombre).hasMatch() ||
        nombre.startsWith(QLatin1String("zuvi_"), Qt::CaseInsensitive))
        throw Error(QStringLiteral("El nombre de cuenta \"%1\" no es válido: use de 1 a 30 letras "
                                   "sin acentos, números, \".\", \"-\" o \"_\", sin empezar con "
                                   "\"zuvi_\" como los roles.")
                        .arg(eco(nombre)));
    return QStringLiteral("'%1'@'%'").arg(nombre);
}

// The session runs with NO_BACKSLASH_ESCAPES: doubling the quote is enough.
QString literal(const QString &texto)
{
    QString t = texto;
    t.replace(QLatin1Char('\''), QStringLiteral("''"));
    return QLatin1Char('\'') + t + QLatin1Char('\'');
}

QStringList rolesDe(const QSqlDatabase &db, const QString &nombre)
{
    for (const Cuenta &c : listaCuentas(db))
        if (c.nombre == nombre)
            return c.roles;
    return {};
}

} // namespace

QString nombreRol(Rol rol)
{
    return rol == Rol::Ninguno ? QString() : QLatin1String(kRoles[int(rol)]);
}

Rol rolDeNombre(const QString &nombre)
{
    const QString n = nombre.trimmed().toLower();
    for (int i = 0; i < int(std::size(kRoles)); ++i) {
        const QString r = QLatin1String(kRoles[i]);
        if (n == r || QStringLiteral("zuvi_") + n == r)
            return Rol(i);
    }
    return Rol::Ninguno;
}

QStringList nombresRoles()
{
    QStringList r;
    for (const char *n : kRoles)
        r << QLatin1String(n);
    return r;
}

bool tieneRol(Rol tiene, Rol pedido)
{
    return int(tiene) >= int(pedido);
}

void creaRoles(const QSqlDatabase &db)
{
    const QString base = db.databaseName();
    const auto haz = [&](const QString &sql) {
        corre(db, sql, QStringLiteral("crear los roles de las cuentas en el servidor"));
    };
    for (const char *r : kRoles)
        haz(QStringLiteral("CREATE ROLE IF NOT EXISTS %1").arg(QLatin1String(r)));
    for (int i = 1; i < int(std::size(kRoles)); ++i)
        haz(QStringLiteral("GRANT %1 TO %2")
                .arg(QLatin1String(kRoles[i - 1]), QLatin1String(kRoles[i])));
    for (const Derecho &d : kDerechos) {
        QString privilegios = QLatin1String(d.privilegios);
        if (d.columnas)
            privilegios += QStringLiteral(" (%1)").arg(QLatin1String(d.columnas));
        const QString objeto = qstrcmp(d.tabla, "*") == 0
                                   ? QStringLiteral("`%1`.*").arg(base)
                                   : QStringLiteral("`%1`.`%2`").arg(base, QLatin1String(d.tabla));
        haz(QStringLiteral("GRANT %1 ON %2 TO %3").arg(privilegios, objeto, nombreRol(d.rol)));
    }
    // The administrator keeps the accounts: creates them, hands out the
    // roles and reads who holds which.
    const QString admin = nombreRol(Rol::Admin);
    haz(QStringLiteral("GRANT CREATE USER ON *.* TO %1").arg(admin));
    haz(QStringLiteral("GRANT SELECT ON mysql.roles_mapping TO %1").arg(admin));
    for (const char *r : kRoles)
        if (QLatin1String(r) != admin)
            haz(QStringLiteral("GRANT %1 TO %2 WITH ADMIN OPTION").arg(QLatin1String(r), admin));
}

Identidad activaRol(const QSqlDatabase &db)
{
    Identidad id;
    QSqlQuery q(db);
    const auto consulta = [&](const QString &sql) {
        if (!q.exec(sql))
            throw Error(QStringLiteral("No se pudo saber qué cuenta entró al servidor MariaDB: %1.")
                            .arg(textoError(q.lastError())));
    };
    consulta(QStringLiteral("SELECT CURRENT_USER()"));
    if (q.next()) {
        const QString u = q.value(0).toString();
        id.cuenta = u.left(u.lastIndexOf(QLatin1Char('@')));
    }
    consulta(QStringLiteral("SELECT COUNT(*) FROM information_schema.USER_PRIVILEGES WHERE "
                            "PRIVILEGE_TYPE = 'CREATE USER'"));
    if (q.next() && q.value(0).toInt() > 0) {
        id.rol = Rol::Admin;
        return id;
    }
    consulta(QStringLiteral("SELECT ROLE_NAME FROM information_schema.APPLICABLE_ROLES WHERE "
                            "GRANTEE = CURRENT_USER()"));
    while (q.next()) {
        const Rol r = rolDeNombre(q.value(0).toString());
        if (r != Rol::Ninguno && q.value(0).toString().startsWith(QLatin1String("zuvi_")) &&
            int(r) > int(id.rol))
            id.rol = r;
    }
    if (id.rol != Rol::Ninguno) {
        consulta(QStringLiteral("SET ROLE %1").arg(nombreRol(id.rol)));
        // A connection made again (or by another program) starts with it too.
        QSqlQuery(db).exec(QStringLiteral("SET DEFAULT ROLE %1").arg(nombreRol(id.rol)));
    }
    return id;
}

QString causaDePermiso(const QString &texto)
{
    static const QRegularExpression tabla(
        QStringLiteral("(\\w+) command denied to user '([^']*)'@'[^']*' for "
                       "(?:column '([^']*)' in )?table [`']?(?:[^`'.]*[`']?\\.[`']?)?([^`']+)"),
        QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression base(
        QStringLiteral("Access denied for user '([^']*)'@'[^']*' to database '([^']*)'"),
        QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression global(QStringLiteral("you need \\(at least one of\\) the "),
                                           QRegularExpression::CaseInsensitiveOption);
    if (const auto m = tabla.match(texto); m.hasMatch()) {
        const Rol rol = rolQuePermite(m.captured(1), m.captured(4), m.captured(3));
        return recuerda(QStringLiteral("el servidor MariaDB no permite a la cuenta \"%1\" %2 %3: "
                                       "hace falta el rol %4")
                            .arg(eco(m.captured(2)), verbo(m.captured(1)),
                                 nombreTabla(m.captured(4)), nombreRol(rol)));
    }
    if (const auto m = base.match(texto); m.hasMatch())
        return recuerda(QStringLiteral("el servidor MariaDB no permite a la cuenta \"%1\" usar la "
                                       "base de datos \"%2\": hace falta al menos el rol %3")
                            .arg(eco(m.captured(1)), eco(m.captured(2)), nombreRol(Rol::Consulta)));
    if (global.match(texto).hasMatch())
        return recuerda(QStringLiteral("el servidor MariaDB no permite a esta cuenta administrar "
                                       "las cuentas: hace falta el rol %1")
                            .arg(nombreRol(Rol::Admin)));
    return {};
}

QString ultimaNegativa()
{
    const QMutexLocker bloqueo(&candado());
    return negativa();
}

void olvidaNegativa()
{
    recuerda(QString());
}

void altaCuenta(const QSqlDatabase &db, const QString &nombre, Rol rol, const QString &clave)
{
    const QString cuenta = cuentaEnSentencia(nombre);
    const QString que = QStringLiteral("dar de alta la cuenta \"%1\"").arg(nombre);
    corre(db, QStringLiteral("CREATE USER %1 IDENTIFIED BY %2").arg(cuenta, literal(clave)), que,
          QStringLiteral("ya existe una cuenta con ese nombre"));
    try {
        corre(db, QStringLiteral("GRANT %1 TO %2").arg(nombreRol(rol), cuenta), que);
    } catch (...) {
        // An account without its role would be left half made.
        QSqlQuery(db).exec(QStringLiteral("DROP USER %1").arg(cuenta));
        throw;
    }
}

void bajaCuenta(const QSqlDatabase &db, const QString &nombre)
{
    corre(db, QStringLiteral("DROP USER %1").arg(cuentaEnSentencia(nombre)),
          QStringLiteral("dar de baja la cuenta \"%1\"").arg(nombre), {},
          QStringLiteral("no existe esa cuenta"));
}

void cambiaRol(const QSqlDatabase &db, const QString &nombre, Rol rol)
{
    const QString cuenta = cuentaEnSentencia(nombre);
    const QString que = QStringLiteral("cambiar el rol de la cuenta \"%1\"").arg(nombre);
    // The new role first: a refusal leaves the account as it was.
    corre(db, QStringLiteral("GRANT %1 TO %2").arg(nombreRol(rol), cuenta), que, {},
          QStringLiteral("no existe esa cuenta"));
    for (const QString &r : rolesDe(db, nombre))
        if (r != nombreRol(rol))
            corre(db, QStringLiteral("REVOKE %1 FROM %2").arg(r, cuenta), que);
}

void cambiaClave(const QSqlDatabase &db, const QString &nombre, const QString &clave)
{
    const QString cuenta = cuentaEnSentencia(nombre);
    corre(db, QStringLiteral("SET PASSWORD FOR %1 = PASSWORD(%2)").arg(cuenta, literal(clave)),
          QStringLiteral("cambiar la clave de la cuenta \"%1\"").arg(nombre), {},
          QStringLiteral("no existe esa cuenta"));
}

QList<Cuenta> listaCuentas(const QSqlDatabase &db)
{
    QSqlQuery q(db);
    if (!q.exec(QStringLiteral("SELECT User, Role FROM mysql.roles_mapping WHERE Host = '%' AND "
                               "LEFT(Role, 5) = 'zuvi_' ORDER BY User, Role")))
        throw Error(QStringLiteral("No se pudo leer la lista de cuentas: %1.")
                        .arg(textoError(q.lastError())));
    QList<Cuenta> cuentas;
    while (q.next()) {
        const QString usuario = q.value(0).toString();
        if (cuentas.isEmpty() || cuentas.last().nombre != usuario)
            cuentas.append({usuario, {}});
        cuentas.last().roles << q.value(1).toString();
    }
    return cuentas;
}

OpcionesCliente leeOpcionesCliente(const QString &archivo)
{
    const bool nombrado = !archivo.isEmpty();
    const QString ruta = nombrado ? archivo : QDir::homePath() + QStringLiteral("/.my.cnf");
    OpcionesCliente o;
    QFile f(ruta);
    if (!nombrado && !f.exists())
        return o;
    if (!f.open(QIODevice::ReadOnly | QIODevice::Text))
        throw Error(QStringLiteral("No se puede leer el archivo de opciones \"%1\": %2.")
                        .arg(muestraRuta(ruta), f.errorString()));
    static const QStringList grupos = {QStringLiteral("client"), QStringLiteral("client-server"),
                                       QStringLiteral("client-mariadb"),
                                       QStringLiteral("zuvi-produccion")};
    bool enGrupo = false;
    while (!f.atEnd()) {
        const QString linea = QString::fromUtf8(f.readLine()).trimmed();
        if (linea.isEmpty() || linea.startsWith(QLatin1Char('#')) ||
            linea.startsWith(QLatin1Char(';')))
            continue;
        if (linea.startsWith(QLatin1Char('['))) {
            enGrupo = grupos.contains(linea.mid(1).section(QLatin1Char(']'), 0, 0).trimmed(),
                                      Qt::CaseInsensitive);
            continue;
        }
        if (!enGrupo)
            continue;
        QString clave = linea.section(QLatin1Char('='), 0, 0).trimmed().toLower();
        clave.replace(QLatin1Char('_'), QLatin1Char('-'));
        QString valor = linea.section(QLatin1Char('='), 1).trimmed();
        if (valor.size() >= 2 &&
            (valor.startsWith(QLatin1Char('"')) || valor.startsWith(QLatin1Char('\''))) &&
            valor.endsWith(valor.front()))
            valor = valor.mid(1, valor.size() - 2);
        if (clave == QLatin1String("user")) {
            o.usuario = valor;
        } else if (clave == QLatin1String("password")) {
            o.clave = valor;
            o.hayClave = true;
        }
    }
    struct stat datos;
    if ((nombrado || o.hayClave) && ::stat(bytesDeTexto(ruta).constData(), &datos) == 0 &&
        (datos.st_mode & (S_IRWXG | S_IRWXO)))
        throw Error(QStringLiteral("El archivo de opciones \"%1\" lo pueden leer otros usuarios y "
                                   "puede llevar una clave: déjelo sólo para su dueño (chmod 600) "
                                   "y vuelva a intentarlo.")
                        .arg(muestraRuta(ruta)));
    return o;
}

} // namespace zuvi::anfitrion
