#pragma once

// An order line's quantity is a number above zero wherever it is written. The
// editor's quantity field checks it before a line is added; the lines grid
// writes what was typed in a cell straight through the statement builder, so
// the builder keeps the rule: it refuses the statement with the quantity
// field's own message, and the grid's cell goes back to the stored value.

#include <QSqlDatabase>
#include <QString>
#include <QVariant>

namespace zuvi::anfitrion {

// For a statement about to run on oppart with this value for cantidad.
// Nothing to refuse: false. A change of a stored line (UPDATE, condition
// "id_entrada = N"): tells the person, puts the stored quantity back into the
// grid showing that line and returns true (nothing is to be written). A new
// line (INSERT): throws Rechazo.
bool rechazaCantidadPartida(const QSqlDatabase &db, const QString &tipo, const QVariant &cantidad,
                            const QString &condicion);

} // namespace zuvi::anfitrion
