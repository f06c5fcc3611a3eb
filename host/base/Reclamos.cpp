#include "host/base/Reclamos.h"

#include "host/interaccion/Interaccion.h"
#include "host/servicios/Comprobaciones.h"
#include "host/sql/CausaError.h"
#include "host/sql/Reconexion.h"
#include "host/sql/Sql.h"
#include "runtime/Error.h"

#include <QElapsedTimer>
#include <QHash>
#include <QMutex>
#include <QSet>
#include <QSqlError>
#include <QSqlQuery>
#include <QSysInfo>
#include <QThread>

#include <cerrno>
#include <csignal>
#include <memory>
#include <unistd.h>

namespace zuvi::anfitrion {

namespace {

const QString kFormatoDesde = QStringLiteral("yyyy-MM-dd hh:mm:ss");

struct Identidad
{
    QString usuario, estacion;
    qint64 ficha = 0;     // tells this process's connections apart on SQLite
    qint64 sesion = 0;    // the MariaDB session its claims were taken on
    QSet<qint32> ordenes; // the orders it claimed and holds
};

// Another program holds SQLite's write lock.
class BaseOcupada : public Error
{
public:
    using Error::Error;
};

constexpr int kEsperaMaximaMs = 10000;

QMutex candado;
QHash<QString, Identidad> identidades; // by connection name
qint64 ultimaFicha = 0;

Identidad identidadDe(const QSqlDatabase &db)
{
    QMutexLocker l(&candado);
    return identidades.value(db.connectionName());
}

// Notes an order this connection took (sesion > 0) or gave up (sesion 0).
void anota(const QSqlDatabase &db, qint32 op, qint64 sesion)
{
    QMutexLocker l(&candado);
    const auto it = identidades.find(db.connectionName());
    if (it == identidades.end())
        return;
    if (sesion) {
        it->sesion = sesion;
        it->ordenes.insert(op);
    } else {
        it->ordenes.remove(op);
    }
}

bool fichaVigente(qint64 ficha)
{
    QMutexLocker l(&candado);
    for (const Identidad &i : std::as_const(identidades))
        if (i.ficha == ficha)
            return true;
    return false;
}

// The host's own bookkeeping: it stays out of the statement trace. A lost
// MariaDB connection is marked and opened again first, as on the host's
// statement path.
QSqlQuery corre(const QSqlDatabase &db, const QString &sql, const QVariantList &valores, qint32 op)
{
    reconectaSiHaceFalta(db, olvidaSentencias);
    QSqlQuery q(db);
    const auto falla = [&] {
        const QString texto = q.lastError().databaseText();
        const int codigo = q.lastError().nativeErrorCode().toInt();
        if (motorDe(db) == Motor::MariaDB && esConexionPerdida(texto, codigo)) {
            marcaPerdida(db);
            throw ConexionPerdida(textoConexionPerdida(), codigo);
        }
        const QString dicho = QStringLiteral("No se pudo revisar ni apartar la orden de "
                                             "producción %1 para esta estación: %2")
                                  .arg(op)
                                  .arg(causaDeFallo(texto, codigo));
        if (motorDe(db) == Motor::SQLite && (codigo & 0xff) == 5)
            throw BaseOcupada(dicho, codigo);
        throw Error(dicho, codigo);
    };
    if (!q.prepare(sql))
        falla();
    for (const QVariant &v : valores)
        q.addBindValue(v);
    if (!q.exec())
        falla();
    return q;
}

QVariant uno(const QSqlDatabase &db, const QString &sql, const QVariantList &valores, qint32 op)
{
    QSqlQuery q = corre(db, sql, valores, op);
    return q.next() ? q.value(0) : QVariant();
}

bool esMariaDB(const QSqlDatabase &db)
{
    return motorDe(db) == Motor::MariaDB;
}

// The claim's insert. On SQLite another program may hold the write lock for
// a while: the wait is shown, and after the limit said so, instead of the
// station freezing without a word.
QSqlQuery insertaReclamo(const QSqlDatabase &db, const QString &sql, const QVariantList &valores,
                         qint32 op)
{
    if (motorDe(db) != Motor::SQLite)
        return corre(db, sql, valores, op);
    QElapsedTimer reloj;
    reloj.start();
    std::unique_ptr<IndicadorProgreso> espera;
    corre(db, QStringLiteral("PRAGMA busy_timeout = 0"), {}, op);
    const auto restaura = [&] {
        try {
            corre(db, QStringLiteral("PRAGMA busy_timeout = %1").arg(kEsperaMaximaMs), {}, op);
        } catch (...) {
            // The next statement waits without a word, as before.
        }
        if (espera)
            espera->cierra();
    };
    for (;;) {
        try {
            QSqlQuery q = corre(db, sql, valores, op);
            restaura();
            return q;
        } catch (const BaseOcupada &) {
            if (reloj.elapsed() >= kEsperaMaximaMs) {
                restaura();
                throw Error(QStringLiteral("La orden de producción %1 no se pudo apartar: otro "
                                           "programa lleva más de %2 segundos escribiendo en la "
                                           "base de datos. Inténtelo de nuevo cuando termine.")
                                .arg(op)
                                .arg(kEsperaMaximaMs / 1000));
            }
        } catch (...) {
            restaura();
            throw;
        }
        if (!espera) {
            espera = interaccion().progreso();
            espera->inicia(kEsperaMaximaMs / 100, QStringLiteral("Esperando la base de datos"),
                           QString());
        }
        espera->avanza(int(reloj.elapsed() / 100),
                       QStringLiteral("Otro programa está escribiendo en la base de datos."),
                       QStringLiteral("Se espera hasta %1 segundos.").arg(kEsperaMaximaMs / 1000));
        QThread::msleep(100);
    }
}

// The server lock of one claim: taken by the claiming session before its row
// exists, so a row whose lock is free has no live holder. Lock names are the
// server's, so the database is part of it.
QString nombreCerrojo(const QSqlDatabase &db, qint32 op, qint64 conexion)
{
    return QStringLiteral("zuvi.%1.op.%2.%3").arg(db.databaseName().left(30)).arg(op).arg(conexion);
}

// This connection as a claim names it: the server's session on MariaDB, the
// connection's own number on SQLite.
qint64 miConexion(const QSqlDatabase &db, qint32 op)
{
    if (esMariaDB(db))
        return uno(db, QStringLiteral("SELECT CONNECTION_ID()"), {}, op).toLongLong();
    return identidadDe(db).ficha;
}

QString miEquipo()
{
    return QSysInfo::machineHostName().left(60);
}

bool procesoVivo(qint64 pid)
{
    if (pid <= 0)
        return false;
    return ::kill(pid_t(pid), 0) == 0 || errno == EPERM;
}

QString duracion(qint64 segundos)
{
    if (segundos < 60)
        return QStringLiteral("menos de un minuto");
    const qint64 minutos = segundos / 60;
    if (minutos < 60)
        return QStringLiteral("%1 min").arg(minutos);
    if (minutos < 48 * 60)
        return QStringLiteral("%1 h %2 min").arg(minutos / 60).arg(minutos % 60);
    return QStringLiteral("%1 días").arg(minutos / (24 * 60));
}

void quitaMarca(const QSqlDatabase &db, qint32 op)
{
    ejecutaConValores(db, QStringLiteral("UPDATE op SET ocupado = 0 WHERE op = ?"), {op});
}

QString seLiberoSola(const Titular &t)
{
    return QStringLiteral("La orden de producción %1 la tenía %2, %3, pero esa estación ya no "
                          "está conectada: se liberó sola.")
        .arg(t.op)
        .arg(t.quien(), t.cuanto());
}

// A MariaDB connection opened again is a new session: the claims of the old
// one move to it, with locks of their own, unless another station took the
// order meanwhile (its holder's session was gone), which the person is told.
void sigueReclamos(const QSqlDatabase &db)
{
    const Identidad yo = identidadDe(db);
    if (!yo.sesion || yo.ordenes.isEmpty())
        return;
    try {
        const qint64 nueva = miConexion(db, 0);
        for (const qint32 op : yo.ordenes) {
            uno(db, QStringLiteral("SELECT GET_LOCK(?, 0)"), {nombreCerrojo(db, op, nueva)}, op);
            QSqlQuery q = corre(db,
                                QStringLiteral("UPDATE reclamos SET conexion = ? WHERE op = ? AND "
                                               "conexion = ? AND proceso = ?"),
                                {nueva, op, yo.sesion, qint64(::getpid())}, op);
            if (q.numRowsAffected() == 1)
                continue;
            uno(db, QStringLiteral("SELECT RELEASE_LOCK(?)"), {nombreCerrojo(db, op, nueva)}, op);
            anota(db, op, 0);
            interaccion().mensaje(
                QStringLiteral("Mientras no había conexión con el servidor, la orden de "
                               "producción %1 dejó de estar apartada para esta estación y otra "
                               "pudo tomarla. Lo que guarde de ella no la marca como suya: "
                               "ciérrela y vuelva a abrirla.")
                    .arg(op),
                48);
        }
        QMutexLocker l(&candado);
        if (const auto it = identidades.find(db.connectionName()); it != identidades.end())
            it->sesion = nueva;
    } catch (...) {
        // Found out again at the next claim or release.
    }
}

} // namespace

void ponIdentidad(const QSqlDatabase &db, const QString &usuario, const QString &estacion)
{
    ponTrasReconectar(sigueReclamos);
    QMutexLocker l(&candado);
    identidades.insert(db.connectionName(),
                       {usuario.trimmed(), estacion.trimmed(), ++ultimaFicha, 0, {}});
}

void quitaIdentidad(const QSqlDatabase &db)
{
    QMutexLocker l(&candado);
    identidades.remove(db.connectionName());
}

QString Titular::quien() const
{
    QString texto = usuario.isEmpty() ? QStringLiteral("(sin usuario)") : usuario;
    if (!estacion.isEmpty())
        texto += QStringLiteral(" en la estación ") + estacion;
    if (!equipo.isEmpty())
        texto += QStringLiteral(" (equipo %1)").arg(equipo);
    return texto;
}

QString Titular::cuanto(const QDateTime &ahora) const
{
    if (!desde.isValid())
        return QString();
    return QStringLiteral("desde las %1 del %2 (hace %3)")
        .arg(desde.toString(QStringLiteral("hh:mm")), desde.toString(QStringLiteral("dd/MM/yyyy")),
             duracion(qMax<qint64>(0, desde.secsTo(ahora))));
}

QString Titular::rechazo() const
{
    const QString que = motivo == kReclamoEdicion ? QStringLiteral("la tiene abierta para cambios")
                        : motivo == kReclamoEntrega ? QStringLiteral("la está entregando")
                                                    : QStringLiteral("la está procesando");
    return QStringLiteral("La orden de producción %1 está ocupada: %2 %3, %4. Espere a que "
                          "termine o pida a un supervisor que la libere.")
        .arg(op)
        .arg(quien(), que, cuanto());
}

std::optional<Titular> titular(const QSqlDatabase &db, qint32 op)
{
    QSqlQuery q = corre(db,
                        QStringLiteral("SELECT usuario, estacion, equipo, proceso, conexion, "
                                       "desde, motivo FROM reclamos WHERE op = ?"),
                        {op}, op);
    if (!q.next())
        return std::nullopt;
    Titular t;
    t.op = op;
    t.usuario = q.value(0).toString().trimmed();
    t.estacion = q.value(1).toString().trimmed();
    t.equipo = q.value(2).toString().trimmed();
    t.proceso = q.value(3).toLongLong();
    t.conexion = q.value(4).toLongLong();
    t.desde = QDateTime::fromString(q.value(5).toString(), kFormatoDesde);
    t.motivo = q.value(6).toString().trimmed();
    q.finish();
    if (esMariaDB(db)) {
        t.propio = t.conexion == miConexion(db, op);
        const QVariant usado = uno(db, QStringLiteral("SELECT IS_USED_LOCK(?)"),
                                   {nombreCerrojo(db, op, t.conexion)}, op);
        t.vivo = t.propio || (!usado.isNull() && usado.toLongLong() == t.conexion);
    } else if (t.equipo == miEquipo()) {
        const bool esteProceso = t.proceso == qint64(::getpid());
        t.propio = esteProceso && t.conexion == identidadDe(db).ficha;
        t.vivo = esteProceso ? fichaVigente(t.conexion) : procesoVivo(t.proceso);
    }
    return t;
}

Reclamo reclama(const QSqlDatabase &db, qint32 op, const QString &motivo)
{
    const Identidad yo = identidadDe(db);
    const bool maria = esMariaDB(db);
    Reclamo r;
    // A few rounds: a gone holder's claim is released and the order tried again.
    for (int intento = 0; intento < 4; ++intento) {
        const qint64 conexion = miConexion(db, op);
        const QString cerrojo = nombreCerrojo(db, op, conexion);
        if (maria)
            uno(db, QStringLiteral("SELECT GET_LOCK(?, 0)"), {cerrojo}, op);
        QSqlQuery q = insertaReclamo(
            db,
            (maria ? QStringLiteral("INSERT IGNORE") : QStringLiteral("INSERT OR IGNORE")) +
                QStringLiteral(" INTO reclamos (op, usuario, estacion, equipo, proceso, conexion, "
                               "desde, motivo) VALUES (?, ?, ?, ?, ?, ?, ?, ?)"),
            {op, yo.usuario.left(30), yo.estacion.left(20), miEquipo(), qint64(::getpid()),
             conexion, QDateTime::currentDateTime().toString(kFormatoDesde), motivo},
            op);
        if (q.numRowsAffected() == 1) {
            anota(db, op, conexion ? conexion : 1);
            r.nuevo = true;
            return r;
        }
        if (maria) // the lock counts each taking: this one is given back
            uno(db, QStringLiteral("SELECT RELEASE_LOCK(?)"), {cerrojo}, op);
        const std::optional<Titular> t = titular(db, op);
        if (!t)
            continue; // released meanwhile
        if (t->propio)
            return r;
        if (t->vivo)
            throw Rechazo(t->rechazo());
        if (liberaAjeno(db, *t)) {
            r.aviso = seLiberoSola(*t);
            if (t->motivo == kReclamoEdicion)
                quitaMarca(db, op); // its editor is gone with it
        }
    }
    throw Rechazo(QStringLiteral("La orden de producción %1 cambia de manos sin parar; inténtelo "
                                 "de nuevo en un momento.")
                      .arg(op));
}

bool suelta(const QSqlDatabase &db, qint32 op)
{
    const std::optional<Titular> t = titular(db, op);
    if (t && t->propio)
        corre(db,
              QStringLiteral("DELETE FROM reclamos WHERE op = ? AND conexion = ? AND proceso = ?"),
              {op, t->conexion, t->proceso}, op);
    anota(db, op, 0);
    // Also the lock of a claim a supervisor released under this session.
    if (esMariaDB(db))
        uno(db, QStringLiteral("SELECT RELEASE_LOCK(?)"),
            {nombreCerrojo(db, op, miConexion(db, op))}, op);
    return !t || t->propio;
}

bool liberaAjeno(const QSqlDatabase &db, const Titular &t)
{
    QSqlQuery q =
        corre(db,
              QStringLiteral("DELETE FROM reclamos WHERE op = ? AND conexion = ? AND "
                             "proceso = ? AND equipo = ? AND desde = ?"),
              {t.op, t.conexion, t.proceso, t.equipo, t.desde.toString(kFormatoDesde)}, t.op);
    return q.numRowsAffected() > 0;
}

bool esSupervisor(const QSqlDatabase &db)
{
    if (!esMariaDB(db))
        return true;
    return uno(db,
               QStringLiteral("SELECT (SELECT COUNT(*) FROM information_schema.APPLICABLE_ROLES "
                              "WHERE ROLE_NAME IN ('zuvi_supervisor', 'zuvi_admin')) + (SELECT "
                              "COUNT(*) FROM information_schema.USER_PRIVILEGES WHERE "
                              "PRIVILEGE_TYPE = 'SUPER') + (SELECT COUNT(*) = 0 FROM "
                              "information_schema.USER_PRIVILEGES)"),
               {}, 0)
               .toLongLong() > 0;
}

void preparaApertura(const QSqlDatabase &db, qint32 op)
{
    const std::optional<Titular> t = titular(db, op);
    if (!t || t->propio)
        return;
    if (t->vivo) {
        interaccion().mensaje(t->rechazo(), 48);
    } else if (liberaAjeno(db, *t)) {
        quitaMarca(db, op);
        interaccion().mensaje(seLiberoSola(*t), 64);
    }
}

QString liberaOrden(const QSqlDatabase &db, qint32 op)
{
    const QString hecho = QStringLiteral("Orden %1 liberada.").arg(op);
    const std::optional<Titular> t = titular(db, op);
    if (!t) {
        const QString guardo =
            uno(db, QStringLiteral("SELECT usuario FROM op WHERE op = ?"), {op}, op)
                .toString()
                .trimmed();
        if (!interaccion().pregunta(
                QStringLiteral("La orden %1 está marcada como ocupada (la guardó por última vez "
                               "%2), pero ninguna estación la tiene abierta ahora. ¿Quitar la "
                               "marca de la orden %1?")
                    .arg(op)
                    .arg(guardo.isEmpty() ? QStringLiteral("(sin usuario)") : guardo)))
            return QString();
        quitaMarca(db, op);
        return hecho;
    }
    if (t->propio) {
        interaccion().mensaje(QStringLiteral("La orden %1 la tiene abierta este mismo programa: "
                                             "cierre su ventana para liberarla.")
                                  .arg(op),
                              64);
        return QString();
    }
    if (!t->vivo) {
        if (liberaAjeno(db, *t))
            interaccion().mensaje(seLiberoSola(*t), 64);
        quitaMarca(db, op);
        return hecho;
    }
    if (!esSupervisor(db)) {
        interaccion().mensaje(QStringLiteral("La orden %1 la tiene %2, %3, y esa estación sigue "
                                             "conectada. Solo un supervisor puede liberarla.")
                                  .arg(op)
                                  .arg(t->quien(), t->cuanto()),
                              48);
        return QString();
    }
    if (!interaccion().pregunta(
            QStringLiteral("La orden %1 la tiene %2, %3, y esa estación sigue conectada.\n"
                           "Libérela solo si esa persona ya no la está usando: lo que guarde "
                           "después puede pisar otros cambios. ¿Liberar la orden %1?")
                .arg(op)
                .arg(t->quien(), t->cuanto())))
        return QString();
    if (!liberaAjeno(db, *t))
        throw Rechazo(QStringLiteral("La orden %1 cambió de manos mientras se preguntaba; vuelva "
                                     "a intentarlo.")
                          .arg(op));
    quitaMarca(db, op);
    return hecho;
}

ReclamoTemporal::ReclamoTemporal(const QSqlDatabase &db, qint32 op, const QString &motivo)
    : m_db(db), m_op(op), m_reclamo(reclama(db, op, motivo))
{
}

ReclamoTemporal::~ReclamoTemporal()
{
    if (!m_reclamo.nuevo)
        return;
    try {
        suelta(m_db, m_op);
    } catch (...) {
        // A claim that cannot be given back is released by the next who
        // wants the order once this connection is gone.
    }
}

} // namespace zuvi::anfitrion
