#pragma once

// What the host checks before it hands a batch operation to the component,
// whatever the door (command line, a call by name, the main window, the kit
// dialog), and what it checks afterwards about a delivery. The component
// takes what it is given at face value: a kit inside a kit makes a
// disassembly loop forever, a key with a quote changes its statements, an
// order that does not exist is a silent no-op. So nothing reaches it that
// the host can tell is wrong.

#include "runtime/Error.h"

#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <QVariantList>

namespace zuvi::anfitrion {

// A value given to a batch operation that the host refuses before calling it.
class Rechazo : public Error
{
public:
    using Error::Error;
};

// The most kits (or of anything) one operation may move.
constexpr double kCantidadMaxima = 1e9;

// Each throws Rechazo with a Spanish text naming the value, or Error when the
// database cannot be read.
void compruebaCantidad(double cantidad);
void compruebaAlmacen(const QSqlDatabase &db, qint32 almacen);
// op 0 means "no order" and passes when opcional.
void compruebaOrden(const QSqlDatabase &db, qint32 op, bool opcional = false);
// The article exists, is marked as a kit and has a recipe (header with a
// yield and at least one component line). For a disassembly none of its
// components may be a kit.
void compruebaKit(const QSqlDatabase &db, const QString &articulo, bool paraDesensamblar);

void compruebaEnsamble(const QSqlDatabase &db, const QString &articulo, qint32 almacen,
                       double cantidad, qint32 op);
void compruebaDesensamble(const QSqlDatabase &db, const QString &articulo, double cantidad,
                          qint32 almacen, qint32 op);

// True for the members that run a batch operation on the database.
bool esOperacionDeLote(const QString &metodo);
// The checks of a batch member on the arguments of a call by name, in the
// member's own order (the optional order may be missing). Other members pass.
void compruebaLlamada(const QSqlDatabase &db, const QString &metodo,
                      const QVariantList &argumentos);

// Watches one delivery of an order: built before the call, it notes where
// the movements stand; afterwards it tells which lines got their
// finished-kit entry in this run and which did not. Every line assembled
// posts exactly one entry of its kit (type "E", concept "OP", the order as
// reference) with the line's rounded quantity, and that entry is the last
// movement of its assembly, posted together with its components. A movement
// carries no line number, so an entry is matched to a line by article and
// rounded quantity, each entry to one line.
class ControlEntrega
{
public:
    ControlEntrega(const QSqlDatabase &db, qint32 op); // throws Error
    // Finished-kit entries the order already had before this run.
    qint64 entradasPrevias() const { return m_previas; }

    struct Linea
    {
        int numero = 0; // partida, or the position when the order has none
        QString articulo;
        QString cantidad; // as stored, echoed safely
        bool numerica = true;
        qint32 kits = 0; // the quantity rounded as assembly takes it
        qint64 id = 0;   // id_entrada
    };
    struct Reparto
    {
        QList<Linea> entregadas, pendientes;
    };
    // The lines with and without their entry of this run; throws Error when
    // the database cannot be read.
    Reparto reparte() const { return reparteDesde(m_ultimoMovimiento); }
    // Likewise with the entries of every run of the order.
    Reparto reparteTodas() const { return reparteDesde(0); }
    int totalLineas() const { return m_total; }

private:
    Reparto reparteDesde(qint64 movimiento) const;

    QSqlDatabase m_db;
    qint32 m_op = 0;
    qint64 m_ultimoMovimiento = 0;
    qint64 m_previas = 0;
    mutable int m_total = 0;
};

} // namespace zuvi::anfitrion
