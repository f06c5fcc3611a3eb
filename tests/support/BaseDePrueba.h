#pragma once

// A throw-away database for one test: a fresh SQLite file in a temporary
// folder or, when ZUVI_PRUEBA_MARIADB_URL_FILE names the URL file of the test
// server, a database with a unique name there, dropped by the destructor.
// It carries the host's schema and base rows, and the demo data when asked.

#include "host/base/Sesion.h"
#include "host/procesos/Procesos.h"
#include "host/servicios/Registro.h"
#include "runtime/Error.h"

#include <QDateTime>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <memory>

class QTemporaryDir;

namespace zuvi::pruebas {

// Every row a query returns, each as its values separated by the separator
// (numbers in their shortest form, dates as yyyy-MM-dd): the one way tests
// read rows.
QStringList filas(const QSqlDatabase &conexion, const QString &sql, QChar separador = u' ');

class BaseDePrueba
{
public:
    explicit BaseDePrueba(bool demo = true);
    ~BaseDePrueba();
    BaseDePrueba(const BaseDePrueba &) = delete;
    BaseDePrueba &operator=(const BaseDePrueba &) = delete;

    anfitrion::Sesion &sesion() { return *m_sesion; }
    QSqlDatabase conexion() { return m_sesion->conexion(); }
    zuvi::Ambiente *ambiente() { return m_sesion->ambiente(); }
    QString url() const { return m_url; } // as the executable's --base option takes it
    anfitrion::Motor motor() const { return m_sesion->motor(); }

    // First field of the first row, invalid when there is none; throws Error on failure.
    QVariant escalar(const QString &sql);
    QStringList filas(const QString &sql, QChar separador = u' ')
    {
        return pruebas::filas(conexion(), sql, separador);
    }
    // Rows of "table [WHERE ...]".
    int cuenta(const QString &desde) { return escalar("SELECT COUNT(*) FROM " + desde).toInt(); }
    // Text of the catalogue message with this number.
    QString mensaje(int numero)
    {
        return escalar(QStringLiteral("SELECT texto FROM mensajes WHERE numero = %1").arg(numero))
            .toString();
    }
    // Stops the host's clock at this instant: dates, times and the movement
    // folio no longer depend on when the test runs.
    void fijaReloj(const QDateTime &ahora);
    void ejecuta(const QString &sql); // throws Error on failure

    // The options a second person runs the executable with: on MariaDB an
    // account of the server with that role (made when missing, without a
    // password); on SQLite the same file, --usuario naming them.
    QStringList otraCuenta(const QString &cuenta, const QString &rol);

    // True when the tests of this process run against the MariaDB server.
    static bool enMariaDB();
    // "mariadb://root@127.0.0.1:PORT/" of that server; empty on SQLite.
    static QString urlServidorMariaDB();

private:
    std::unique_ptr<QTemporaryDir> m_dir;
    QString m_url;
    QString m_nombreMariaDB; // the database to drop, on MariaDB
    std::unique_ptr<anfitrion::Sesion> m_sesion;
};

// The description of the Error the call throws; empty when it throws none.
template <typename F> QString errorDe(F &&llamada)
{
    try {
        llamada();
    } catch (const Error &e) {
        return e.description();
    }
    return {};
}

// Puts the host's implementations into the class registry.
inline void preparaRegistro()
{
    anfitrion::registraClasesAnfitrion();
}

} // namespace zuvi::pruebas
