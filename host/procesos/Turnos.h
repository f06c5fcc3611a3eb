#pragma once

// The host's schedule generation, run under the process key "TURNOS003" from
// the shift catalogue window: for a shift (or every shift) and a period that
// starts on the calendar's date, one horarios row per member and working day.

#include "host/procesos/Procesos.h"

#include <QDate>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>

#include <functional>

namespace zuvi::anfitrion {

struct Periodo
{
    QDate desde, hasta; // both included
};

// "Día": the date; "Semana": seven days from it; "Mes": up to the day before
// the same date of the next month. Error for any other period.
Periodo periodoHorarios(const QString &periodo, const QDate &fecha);

// The weekday (1 Monday .. 7 Sunday) of a stored rest day: "Lunes" ..
// "Sabado", "Dimingo", accented spellings and "Domingo" too, in any case.
// 0 when the text names no weekday (the shift then rests no day).
int diaDescanso(const QString &nombre);

struct ResultadoHorarios
{
    int filas = 0;
    int empleados = 0;
    QStringList sinEmpleados; // shifts that had no members
};

// Writes the schedules of the shifts for the period in one transaction. An
// employee keeps one schedule per date: the rows the employee had in the
// period are replaced, so running it twice leaves the same rows. avance, when
// given, is called after each date of each shift with the count so far, the
// total and the rows the run writes.
// Throws Error and leaves nothing written when any statement fails.
ResultadoHorarios
generaHorarios(const QSqlDatabase &db, const QStringList &turnos, const Periodo &periodo,
               const std::function<void(int hecho, int total, int filas)> &avance = {});

// The handler of "TURNOS003".
QList<ProcesoAnfitrion> procesosTurnos();

} // namespace zuvi::anfitrion
