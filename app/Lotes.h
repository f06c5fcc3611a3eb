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

} // namespace zuvi::app
