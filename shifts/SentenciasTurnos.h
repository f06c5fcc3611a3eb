#pragma once

// The statement texts of the shift windows, built by concatenation as the
// windows run them: keys between single quotes and nothing escaped.

#include "core/Exporta.h"

#include <QString>
#include <QVariant>

namespace zuvi::turnos {

// The shift catalogue.
ZUVI_PRODUCCION_EXPORT QString cuentaTurnos();
ZUVI_PRODUCCION_EXPORT QString selectTurnos();
ZUVI_PRODUCCION_EXPORT QString selectTurno(const QString &turno);
// The new-shift existence test; the blank after the opening quote is part of it.
ZUVI_PRODUCCION_EXPORT QString existeTurno(const QString &turnoRecortado);
ZUVI_PRODUCCION_EXPORT QString condicionTurno(const QString &turno);
ZUVI_PRODUCCION_EXPORT QString borraTurno(const QString &turno);
ZUVI_PRODUCCION_EXPORT QString borraMiembros(const QString &turno);
ZUVI_PRODUCCION_EXPORT QString borraHorarios(const QString &turno);

// The schedule of one shift on one date; fecha is the SQL date literal.
ZUVI_PRODUCCION_EXPORT QString cuentaHorarios(const QString &fecha, const QString &turno);
ZUVI_PRODUCCION_EXPORT QString selectHorarios(const QString &fecha, const QString &turno);

// Employees and membership.
ZUVI_PRODUCCION_EXPORT QString cuentaEmpleados();
ZUVI_PRODUCCION_EXPORT QString selectEmpleados();
ZUVI_PRODUCCION_EXPORT QString cuentaMiembros(const QString &turno);
ZUVI_PRODUCCION_EXPORT QString selectMiembros(const QString &turno);
ZUVI_PRODUCCION_EXPORT QString selectTodosLosMiembros();

// A value written with the date format "dd-MM-yyyy": a date as itself, a
// number as the date that many days after 30-12-1899, a text that reads as a
// date (yyyy-MM-dd, dd-MM-yyyy, dd/MM/yyyy) as that date; anything else
// unchanged.
ZUVI_PRODUCCION_EXPORT QString formatoFecha(const QVariant &valor);

} // namespace zuvi::turnos
