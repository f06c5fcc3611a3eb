#pragma once

// The month roster: one month of horarios, employees down and days across,
// each cell the shift the employee works that day, rest days marked. Read
// once, painted on any paged device: the shell's print preview or a PDF.

#include <QDate>
#include <QHash>
#include <QList>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>

class QPagedPaintDevice;

namespace zuvi::anfitrion {

struct RolMes
{
    int anio = 0;
    int mes = 0;
    QString turno; // only this shift when not empty

    struct Fila
    {
        QString empleado, nombre;
        QStringList dias; // one cell per day: shift code, "D" for rest, or empty
    };
    QList<Fila> filas;
    // Shift code -> "TURNO  entrada-salida, descansa Dia".
    QList<QPair<QString, QString>> leyenda;

    int diasDelMes() const { return QDate(anio, mes, 1).daysInMonth(); }
};

// "2024-05" -> 2024, 5; Error with a Spanish description otherwise.
void leeMes(const QString &texto, int &anio, int &mes);

// Reads the roster. Employees are those with a schedule that month (of the
// shift, when given) and the members of the shift (of every shift when none
// is given); a day without a schedule that falls on the rest day of the
// employee's shift is marked "D". Error when the shift does not exist.
RolMes leeRolMes(const QSqlDatabase &db, int anio, int mes, const QString &turno = {});

// Paints the roster, as many pages as the employees need.
void pintaRolMes(QPagedPaintDevice *dispositivo, const RolMes &rol);

// Writes the roster as a PDF file. Error when the file cannot be written.
void escribeRolMesPdf(const RolMes &rol, const QString &archivo);

// The file name the roster goes to inside the reports folder.
QString nombreArchivoRol(const RolMes &rol);

} // namespace zuvi::anfitrion
