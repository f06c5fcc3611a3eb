#include "shifts/SentenciasTurnos.h"

#include <QDate>
#include <QDateTime>

#include <cmath>

namespace zuvi::turnos {

namespace {
QString entreComillas(const QString &valor)
{
    return QLatin1Char('\'') + valor + QLatin1Char('\'');
}
} // namespace

QString cuentaTurnos()
{
    return QStringLiteral("SELECT COUNT( * ) FROM turnos");
}

QString selectTurnos()
{
    return QStringLiteral("SELECT * FROM turnos ORDER BY turno");
}

QString selectTurno(const QString &turno)
{
    return QStringLiteral("SELECT * FROM turnos WHERE turno = ") + entreComillas(turno);
}

QString existeTurno(const QString &turnoRecortado)
{
    return QStringLiteral("SELECT * FROM turnos WHERE turno = ' ") + turnoRecortado +
           QLatin1Char('\'');
}

QString condicionTurno(const QString &turno)
{
    return QStringLiteral("turno = ") + entreComillas(turno);
}

QString borraTurno(const QString &turno)
{
    return QStringLiteral("DELETE FROM turnos WHERE turno = ") + entreComillas(turno);
}

QString borraMiembros(const QString &turno)
{
    return QStringLiteral("DELETE FROM turnoempleado WHERE turno = ") + entreComillas(turno);
}

QString borraHorarios(const QString &turno)
{
    return QStringLiteral("DELETE FROM horarios WHERE turno = ") + entreComillas(turno);
}

QString cuentaHorarios(const QString &fecha, const QString &turno)
{
    return QStringLiteral("SELECT COUNT( * ) FROM horarios WHERE fecha = ") + fecha +
           QStringLiteral(" AND turno = ") + entreComillas(turno);
}

QString selectHorarios(const QString &fecha, const QString &turno)
{
    return QStringLiteral("SELECT * FROM horarios WHERE fecha = ") + fecha +
           QStringLiteral(" AND turno = ") + entreComillas(turno);
}

QString cuentaEmpleados()
{
    return QStringLiteral("SELECT COUNT( * ) FROM empleados");
}

QString selectEmpleados()
{
    return QStringLiteral("SELECT * FROM empleados ORDER BY empleado");
}

QString cuentaMiembros(const QString &turno)
{
    return QStringLiteral("SELECT COUNT( * ) FROM turnoempleado WHERE turno = ") +
           entreComillas(turno);
}

QString selectMiembros(const QString &turno)
{
    return QStringLiteral("SELECT turnoempleado.empleado, empleados.nombre FROM turnoempleado "
                          "LEFT JOIN empleados USING( empleado ) WHERE turno = ") +
           entreComillas(turno) + QStringLiteral(" ORDER BY empleado");
}

QString selectTodosLosMiembros()
{
    return QStringLiteral("SELECT * FROM turnoempleado");
}

QString formatoFecha(const QVariant &valor)
{
    static const QString formato = QStringLiteral("dd-MM-yyyy");
    if (valor.isNull() || !valor.isValid())
        return QString();
    switch (valor.typeId()) {
    case QMetaType::QDate:
        return valor.toDate().toString(formato);
    case QMetaType::QDateTime:
        return valor.toDateTime().date().toString(formato);
    default:
        break;
    }
    const QString texto = valor.toString();
    bool numero = false;
    const double dias = texto.trimmed().toDouble(&numero);
    if (numero && std::isfinite(dias) && std::fabs(dias) < 3.0e6) {
        const QDate fecha = QDate(1899, 12, 30).addDays(qint64(std::trunc(dias)));
        if (fecha.isValid() && fecha.year() >= 100 && fecha.year() <= 9999)
            return fecha.toString(formato);
        return texto;
    }
    for (const char *forma : {"yyyy-MM-dd", "dd-MM-yyyy", "dd/MM/yyyy"}) {
        const QDate fecha = QDate::fromString(texto.trimmed(), QLatin1String(forma));
        if (fecha.isValid())
            return fecha.toString(formato);
    }
    return texto;
}

} // namespace zuvi::turnos
