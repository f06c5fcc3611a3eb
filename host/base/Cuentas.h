#pragma once

// Who may do what on a MariaDB server: the people are the server's own
// accounts and their rights are the server's roles, so the server checks
// both, whichever program connects. On SQLite the one person at the machine
// may do everything; the file's permissions are the protection there.

#include <QSqlDatabase>
#include <QString>
#include <QStringList>

namespace zuvi::anfitrion {

// The roles, each including every one before it: consulta reads, captura
// writes orders and their lines, produccion posts movements and stock,
// supervisor cancels orders and keeps shifts and schedules, admin keeps the
// catalogues, the stations and the accounts.
enum class Rol { Ninguno = -1, Consulta, Captura, Produccion, Supervisor, Admin };

QString nombreRol(Rol rol);             // "zuvi_captura"
Rol rolDeNombre(const QString &nombre); // "captura" or "zuvi_captura"; Ninguno otherwise
QStringList nombresRoles();             // from zuvi_consulta to zuvi_admin

// Creates the roles when missing and grants them their rights on the
// database the connection uses. Throws Error when the account may not.
void creaRoles(const QSqlDatabase &db);

// After signing in: the account's name as the server knows it, and the
// highest of our roles granted to it is made active (a server has one active
// role per session; each of ours holds the ones below it). An account with
// every right of its own (the server's administrator) counts as admin.
struct Identidad
{
    QString cuenta;
    Rol rol = Rol::Ninguno;
};
Identidad activaRol(const QSqlDatabase &db);

// Whether the signed-in person holds a role (or one above it).
bool tieneRol(Rol tiene, Rol pedido);

// What a server's refusal of a right means, in Spanish, naming what was
// refused and the role it takes; empty when the text is no such refusal. It
// keeps the last one it explained, for the doors of the host that call code
// which ends quietly on an error.
QString causaDePermiso(const QString &texto);
QString ultimaNegativa();
void olvidaNegativa();

// The accounts, kept through the server by an account with zuvi_admin. The
// passwords go to the server in statements that are never traced.
struct Cuenta
{
    QString nombre;
    QStringList roles;
};
void altaCuenta(const QSqlDatabase &db, const QString &nombre, Rol rol, const QString &clave);
void bajaCuenta(const QSqlDatabase &db, const QString &nombre);
void cambiaRol(const QSqlDatabase &db, const QString &nombre, Rol rol);
void cambiaClave(const QSqlDatabase &db, const QString &nombre, const QString &clave);
QList<Cuenta> listaCuentas(const QSqlDatabase &db);

// The account and password of the groups [client], [client-server],
// [client-mariadb] and [zuvi-produccion] of a client option file: the one the
// address names (?opciones=), or else ~/.my.cnf when there is one. A file
// that others may read is refused, naming it (the one of ~/.my.cnf only when
// it holds a password); so is a named file that cannot be read.
struct OpcionesCliente
{
    QString usuario, clave;
    bool hayClave = false;
};
OpcionesCliente leeOpcionesCliente(const QString &archivo);

} // namespace zuvi::anfitrion
