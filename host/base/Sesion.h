#pragma once

// The host's hold on one database: it opens it, makes it when it is missing
// and keeps the connection and the environment handed to the component.

#include "contract/Servicios.h"
#include "host/base/Cuentas.h"
#include "host/base/Direccion.h" // Opciones::base is read as a DestinoBase
#include "host/sql/Motor.h"

#include <QSqlDatabase>
#include <QString>

#include <functional>
#include <memory>

namespace zuvi::anfitrion {

struct Opciones
{
    QString base; // SQLite file path or mariadb://user@127.0.0.1:port/name[?opciones=file]
    // SQLite: who saves. MariaDB: after signing in, the account's name as the
    // server knows it; before, when usuarioDado, the account to sign in with
    // if the address names none.
    QString usuario = QStringLiteral("ADMIN");
    bool usuarioDado = false;
    // MariaDB: asked when the server refuses the account or the password
    // (motivo says so); it may change the account and gives the password.
    // False: the person gave up. Without it a refusal ends the sign-in.
    std::function<bool(QString &cuenta, QString &clave, const QString &motivo)> pideEntrada{};
    QString estacion = QStringLiteral("1");
    QString trazaSql{}; // file that receives every statement executed, one a line
    bool si = false;    // yes to every question
    // A database that does not exist is made: a SQLite file (and its folders)
    // or a MariaDB database. Off, opening one refuses it.
    bool creaSiFalta = true;
};

// The host's running state for one database: the connection and the
// environment object handed to the component.
class Sesion
{
public:
    // Opens the database. A SQLite file that does not exist is created with
    // the schema (and the demo data when demo is true). A MariaDB server with
    // lower_case_table_names other than 1 is refused. Throws Error with a
    // clear Spanish description on any failure.
    static std::unique_ptr<Sesion> abre(const Opciones &opciones, bool demo);
    ~Sesion();

    QSqlDatabase conexion() const;
    zuvi::Ambiente *ambiente() const;
    Motor motor() const;
    const Opciones &opciones() const;
    // The role the signed-in account works with (every right on SQLite).
    Rol rol() const;

    // Creates the schema and the host's base rows (message catalogue,
    // numbering); with demo, the demo data too. Idempotent.
    void creaBase(bool demo);
    // True when opening found the database empty and created it (creaBase
    // has run already, with the demo flag given to abre).
    bool creadaAlAbrir() const;

private:
    Sesion();
    struct Datos;
    std::unique_ptr<Datos> d;
};

} // namespace zuvi::anfitrion
