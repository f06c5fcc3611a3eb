#pragma once

// Who holds an order. The busy mark of an order is only a flag, read and then
// set; two stations can both read it clear. The host keeps beside it a claim
// (table reclamos, one row per order, the order as key) that only one
// connection can take: the insert of the row decides. The claim names the
// person, the station and the machine, and when it was taken, so every
// refusal and the main window name who really holds the order.
//
// A claim does not outlive its holder: on MariaDB the holder's session also
// holds a server lock named after the order, which the server drops with the
// session; on SQLite the holder is a process on this machine. A claim whose
// holder is gone is released by the next one who wants the order.

#include <QDateTime>
#include <QSqlDatabase>
#include <QString>

#include <optional>

namespace zuvi::anfitrion {

// The person and station a connection works for. Set by the environment
// object when a session opens; claims made on that connection carry them.
void ponIdentidad(const QSqlDatabase &db, const QString &usuario, const QString &estacion);
void quitaIdentidad(const QSqlDatabase &db);

// What a claim is for.
inline const QString kReclamoEdicion = QStringLiteral("edicion");
inline const QString kReclamoEntrega = QStringLiteral("entrega");
inline const QString kReclamoLote = QStringLiteral("lote");

struct Titular
{
    qint32 op = 0;
    QString usuario, estacion, equipo, motivo;
    qint64 proceso = 0, conexion = 0;
    QDateTime desde;
    bool propio = false; // held by this very connection
    bool vivo = true;    // its holder is still there (or cannot be told from here)

    // "LAURA en la estación 2 (equipo taller-3)".
    QString quien() const;
    // "desde las 10:15 del 25/11/2026 (hace 1 h 5 min)".
    QString cuanto(const QDateTime &ahora = QDateTime::currentDateTime()) const;
    // The refusal of another who wants the order.
    QString rechazo() const;
};

// The claim on an order, if any; throws Error when it cannot be read.
std::optional<Titular> titular(const QSqlDatabase &db, qint32 op);

struct Reclamo
{
    bool nuevo = false; // taken now; false when this connection held it already
    QString aviso;      // a claim whose holder was gone and was released, said so
};

// Takes the order for this connection. Throws Rechazo naming the holder when
// another live holder has it, Error when the database fails.
Reclamo reclama(const QSqlDatabase &db, qint32 op, const QString &motivo);

// Gives up this connection's claim. False when another holds the order (its
// claim stays); true when the claim was ours or there was none.
bool suelta(const QSqlDatabase &db, qint32 op);

// Releases whoever's claim this is (the supervisor's release, or a claim
// whose holder is gone). False when it changed meanwhile.
bool liberaAjeno(const QSqlDatabase &db, const Titular &t);

// Whether the person on this connection may release another's live claim:
// on SQLite the owner of the file; on MariaDB an account with the
// supervisor's or the administrator's role, or with the server's own rights
// (or on a server that checks no rights at all).
bool esSupervisor(const QSqlDatabase &db);

// Before an order is opened to change it: a claim whose holder is gone is
// released with the busy mark (and said so), so the editor can take it; a
// live holder's is named to the person, beside what the editor says.
void preparaApertura(const QSqlDatabase &db, qint32 op);

// The main window's release of a busy order, with its questions: a claim
// whose holder is gone goes at once (and says so); a live one only for a
// supervisor who confirms after reading who holds it and for how long; a
// mark with no claim after a question. Returns what was done, for the status
// line; empty when nothing was.
QString liberaOrden(const QSqlDatabase &db, qint32 op);

// Holds a claim while it lives (a delivery or another batch operation on an
// order); a claim the connection had before stays.
class ReclamoTemporal
{
public:
    ReclamoTemporal(const QSqlDatabase &db, qint32 op, const QString &motivo);
    ~ReclamoTemporal();
    ReclamoTemporal(const ReclamoTemporal &) = delete;
    ReclamoTemporal &operator=(const ReclamoTemporal &) = delete;
    const QString &aviso() const { return m_reclamo.aviso; }

private:
    QSqlDatabase m_db;
    qint32 m_op;
    Reclamo m_reclamo;
};

} // namespace zuvi::anfitrion
