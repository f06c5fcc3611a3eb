#pragma once

// The host's catalogue of numbered messages the module asks for.

#include <QList>
#include <QPair>
#include <QString>

namespace zuvi::anfitrion {

// The text of the message catalogue: number and Spanish text.
const QList<QPair<int, QString>> &catalogoMensajes();

} // namespace zuvi::anfitrion
