#pragma once

// An order's material needs: for each component of the order's kits, what
// the delivery takes out, the stock in its warehouse and what is short,
// shortages first. The same list the stock check names when it refuses.

#include "host/servicios/Existencias.h"

#include <QSqlDatabase>
#include <QString>

class QWidget;

namespace zuvi::app {

// Aligned columns for the terminal, or comma-separated values with a header
// row (quantities as plain numbers). Throw Error when the order does not
// exist or the database cannot be read.
QString materialesTexto(const QSqlDatabase &db, qint32 op);
QString materialesCsv(const QSqlDatabase &db, qint32 op);

// The list in a window over padre.
void muestraMateriales(QWidget *padre, const QSqlDatabase &db, qint32 op);

} // namespace zuvi::app
