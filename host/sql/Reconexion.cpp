#include "host/sql/Reconexion.h"

#include "host/sql/CausaError.h"
#include "runtime/Error.h"

#include <QMutex>
#include <QSet>
#include <QSqlError>
#include <QSqlQuery>

#include <atomic>

namespace zuvi::anfitrion {

namespace {

QMutex candado;
QSet<QString> perdidas;              // connection names
std::atomic<int> cuantasPerdidas{0}; // so that a statement asks without locking
std::atomic<TrasReconectar> trasReconectar{nullptr};

bool dice(const QString &texto, const char *fragmento)
{
    return texto.contains(QLatin1String(fragmento), Qt::CaseInsensitive);
}

} // namespace

bool esConexionPerdida(const QString &texto, int codigo)
{
    return codigo == 2006 || codigo == 2013 || codigo == 1927 || dice(texto, "gone away") ||
           dice(texto, "Lost connection") || dice(texto, "Connection was killed");
}

QString textoConexionPerdida()
{
    return QStringLiteral("Se perdió la conexión con el servidor MariaDB: lo último que hizo no "
                          "se guardó. La siguiente acción volverá a conectarse; revise después "
                          "si hace falta repetirla.");
}

void marcaPerdida(const QSqlDatabase &db)
{
    QMutexLocker l(&candado);
    perdidas.insert(db.connectionName());
    cuantasPerdidas = int(perdidas.size());
}

bool estaPerdida(const QSqlDatabase &db)
{
    if (cuantasPerdidas.load(std::memory_order_relaxed) == 0)
        return false;
    QMutexLocker l(&candado);
    return perdidas.contains(db.connectionName());
}

void ponTrasReconectar(TrasReconectar tras)
{
    trasReconectar.store(tras);
}

void reconectaSiHaceFalta(const QSqlDatabase &db, void (*olvida)(const QSqlDatabase &))
{
    if (!estaPerdida(db))
        return;
    olvida(db);
    QSqlDatabase conexion = db; // the same connection, reopened in place
    conexion.close();
    if (!conexion.open())
        throw Error(QStringLiteral("No hay conexión con el servidor MariaDB: %1. Vuelva a "
                                   "intentarlo cuando el servidor esté en marcha.")
                        .arg(causaDeFallo(conexion.lastError().databaseText(),
                                          conexion.lastError().nativeErrorCode().toInt())));
    QSqlQuery modo(conexion);
    if (!modo.exec(kModoSesionMariaDB)) {
        conexion.close();
        throw Error(QStringLiteral("No se pudo preparar otra vez la sesión de MariaDB: %1")
                        .arg(causaDeFallo(modo.lastError().databaseText(),
                                          modo.lastError().nativeErrorCode().toInt())));
    }
    {
        QMutexLocker l(&candado);
        perdidas.remove(db.connectionName());
        cuantasPerdidas = int(perdidas.size());
    }
    if (const TrasReconectar tras = trasReconectar.load())
        tras(conexion);
}

} // namespace zuvi::anfitrion
