#pragma once

// A throw-away database for one test: a fresh SQLite file in a temporary
// folder, or, when ZUVI_PRUEBA_MARIADB_URL_FILE names the URL file of the
// test server, a freshly created database with a unique name on that server,
// dropped again by the destructor. Either way it carries the host's schema
// and base rows, and the demo data when asked.

#include "host/Anfitrion.h"

#include <QSqlDatabase>
#include <QString>
#include <QVariant>

#include <memory>

class QTemporaryDir;

namespace zuvi::pruebas {

class BaseDePrueba
{
public:
    explicit BaseDePrueba(bool demo = true);
    ~BaseDePrueba();
    BaseDePrueba(const BaseDePrueba &) = delete;
    BaseDePrueba &operator=(const BaseDePrueba &) = delete;

    anfitrion::Sesion &sesion();
    QSqlDatabase conexion();
    zuvi::Ambiente *ambiente();
    // The database as the executable's --base option takes it.
    QString url() const;
    anfitrion::Motor motor() const;

    // First field of the first row; an invalid QVariant when there is no
    // row. Throws Error when the statement fails.
    QVariant escalar(const QString &sql);
    // Runs one statement; throws Error when it fails.
    void ejecuta(const QString &sql);

    // True when the tests of this process run against the MariaDB server.
    static bool enMariaDB();
    // The server URL of the test MariaDB ("mariadb://root@127.0.0.1:PORT/"),
    // empty when the tests run on SQLite.
    static QString urlServidorMariaDB();

private:
    std::unique_ptr<QTemporaryDir> m_dir;
    QString m_url;
    QString m_nombreMariaDB; // the database to drop, on MariaDB
    std::unique_ptr<anfitrion::Sesion> m_sesion;
};

// Puts the host's implementations into the class registry.
void preparaRegistro();

} // namespace zuvi::pruebas
