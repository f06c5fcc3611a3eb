#pragma once

// Checks the host makes itself before handing work to the component.

#include <QSqlDatabase>
#include <QString>

namespace zuvi::app {

// Why the kit cannot be disassembled, or an empty text when it can. A kit
// with a component that is itself a kit is refused: disassembling it would
// take the same component line over and over without end.
QString motivoParaNoDesensamblar(const QSqlDatabase &db, const QString &articulo);

// True when the article has component lines (a recipe to assemble from).
bool existeReceta(const QSqlDatabase &db, const QString &articulo);

// True when the production order exists.
bool existeOrden(const QSqlDatabase &db, qint32 op);

} // namespace zuvi::app
