#pragma once

// The one way every door of the host (sub-commands, calls by name, the main
// window, the kit dialog) hands a member to the component: the host's checks
// first, for a batch operation its reports grouped, and afterwards what it
// really did.

#include <QMetaMethod>
#include <QSqlDatabase>
#include <QString>
#include <QVariant>

class QObject;

namespace zuvi::app {

struct Desenlace
{
    bool llamado = false;  // the member ran
    bool rehusado = false; // a repeated delivery the person did not confirm
    bool completo = false; // ran with no error report and, for a delivery, every line delivered
    QVariant valor;        // what the member returned, when it returns something
    QString resumen;       // what went wrong or was left undone, for the person; may be empty
    QString hecho;         // for a delivery, the lines it posted, named
};

// Calls a member with values of its parameter types. For the batch members:
// the checks of host/servicios/Comprobaciones.h and the stock of host/servicios/Existencias.h
// (they throw anfitrion::Rechazo, or Faltante for a shortage, and nothing
// runs; a shortage the station allows is shown as a warning); before delivering an order that
// already has finished-kit entries, a question (a no runs nothing); repeated identical reports
// counted; after a delivery, the lines that got no entry, with the first
// error. Throws Error when the call itself cannot be made.
Desenlace llamaMiembro(QObject *produccion, const QSqlDatabase &db, const QMetaMethod &miembro,
                       const QVariantList &valores);
Desenlace llamaMiembro(QObject *produccion, const QSqlDatabase &db, const QString &metodo,
                       const QVariantList &valores);

// Delivers only the lines of order op that have no finished-kit entry yet (a
// delivery cut off halfway), each through the component's own assembly, and
// marks just those finished; an order with nothing missing posts nothing.
// The same checks, claim and summary as a delivery; no question, since
// nothing is posted twice.
Desenlace entregaResto(QObject *produccion, const QSqlDatabase &db, qint32 op);

} // namespace zuvi::app
