// "TURNOS003": the schedule generation the shift catalogue starts. It reads
// the period (Combo1), the first date (MonthView1) and the selected shift
// (lv_0, through its property "ClaveSeleccionada") from the window it is
// handed, asks before generating every shift, and tells the user what it
// wrote.

#include "host/procesos/Turnos.h"

#include "host/interaccion/Interaccion.h"
#include "host/procesos/Procesos.h"
#include "host/sql/Sql.h"
#include "runtime/Error.h"

#include <QCalendarWidget>
#include <QComboBox>
#include <QPointer>
#include <QTreeWidget>
#include <QWidget>

#include <memory>

namespace zuvi::anfitrion {

namespace {

// Rows above which the progress window shows.
constexpr int kFilasConProgreso = 500;

QString sinAcentos(const QString &texto)
{
    QString plano;
    for (const QChar c : texto.normalized(QString::NormalizationForm_D))
        if (c.category() != QChar::Mark_NonSpacing)
            plano += c;
    return plano;
}

QString trazaDe(const QString &sql, const QVariantList &valores)
{
    if (archivoTraza().isEmpty())
        return QString();
    QString texto;
    qsizetype desde = 0;
    for (const QVariant &v : valores) {
        const qsizetype marca = sql.indexOf(QLatin1Char('?'), desde);
        if (marca < 0)
            break;
        const QString valor =
            v.typeId() == QMetaType::QDate ? v.toDate().toString(Qt::ISODate) : v.toString();
        texto += sql.mid(desde, marca - desde) + QLatin1Char('\'') + valor + QLatin1Char('\'');
        desde = marca + 1;
    }
    return texto + sql.mid(desde);
}

ResultadoAccion accion(const QSqlDatabase &db, const QString &sql, const QVariantList &valores)
{
    return ejecutaAccion(db, sql, valores, trazaDe(sql, valores));
}

RecordsetPtr lee(const QSqlDatabase &db, const QString &sql, const QVariantList &valores = {})
{
    return consulta(db, sql, valores, trazaDe(sql, valores));
}

struct Turno
{
    QString turno, entrada, comida, salida;
    int descanso = 0;
    QStringList miembros;
};

QString fecha(const QDate &d)
{
    return d.toString(QStringLiteral("dd/MM/yyyy"));
}

// Keeps the window from starting anything else while the rows are written.
class VentanaOcupada
{
public:
    explicit VentanaOcupada(QWidget *ventana) : m_ventana(ventana)
    {
        if (m_ventana)
            m_ventana->setEnabled(false);
    }
    ~VentanaOcupada()
    {
        if (m_ventana)
            m_ventana->setEnabled(true);
    }

private:
    QPointer<QWidget> m_ventana;
};

void generaDesdeVentana(ArgumentosProceso &a)
{
    a.bandera = VFalse;
    QObject *ventana = a.objeto.data();
    if (!ventana)
        throw Error(QStringLiteral("El proceso \"TURNOS003\" no recibió la ventana de turnos."));
    if (!a.ambiente)
        throw Error(QStringLiteral("No se ha establecido el objeto Ambiente."));
    auto *combo = ventana->findChild<QComboBox *>(QStringLiteral("Combo1"));
    auto *calendario = ventana->findChild<QCalendarWidget *>(QStringLiteral("MonthView1"));
    auto *lista = ventana->findChild<QTreeWidget *>(QStringLiteral("lv_0"));
    if (!combo || !calendario || !lista)
        throw Error(QStringLiteral("La ventana de turnos no tiene Combo1, MonthView1 o lv(0)."));

    const Periodo periodo = periodoHorarios(combo->currentText(), calendario->selectedDate());
    const QSqlDatabase db = a.ambiente->Conexion();
    const QString clave = lista->property("ClaveSeleccionada").toString();
    QStringList turnos;
    if (!clave.isEmpty()) {
        turnos << clave.mid(1);
    } else {
        if (!interaccion().pregunta(
                QStringLiteral("No hay un turno seleccionado. ¿Desea generar los horarios de "
                               "todos los turnos del %1 al %2?")
                    .arg(fecha(periodo.desde), fecha(periodo.hasta))))
            return;
        RecordsetPtr rs = lee(db, QStringLiteral("SELECT turno FROM turnos ORDER BY turno"));
        for (; !rs->atEnd(); rs->moveNext())
            turnos << rs->text(0);
        if (turnos.isEmpty()) {
            interaccion().mensaje(QStringLiteral("No hay turnos: no se generó ningún horario."),
                                  64);
            return;
        }
    }

    std::unique_ptr<IndicadorProgreso> progreso;
    const auto avance = [&](int hecho, int total, int filas) {
        if (!progreso && filas >= kFilasConProgreso) {
            progreso = interaccion().progreso();
            progreso->inicia(total, QStringLiteral("Generando horarios"), QString());
        }
        if (progreso)
            progreso->avanza(
                hecho,
                QStringLiteral("Del %1 al %2").arg(fecha(periodo.desde), fecha(periodo.hasta)),
                QStringLiteral("Empleado %1 de %2").arg(hecho).arg(total));
    };
    ResultadoHorarios r;
    {
        VentanaOcupada ocupada(qobject_cast<QWidget *>(ventana));
        r = generaHorarios(db, turnos, periodo, avance);
    }
    if (progreso)
        progreso->cierra();

    QString texto;
    if (r.filas == 0 && r.sinEmpleados.size() == turnos.size()) {
        texto = turnos.size() == 1
                    ? QStringLiteral("El turno «%1» no tiene empleados: no se generó ningún "
                                     "horario.")
                          .arg(turnos.first())
                    : QStringLiteral("Ningún turno tiene empleados: no se generó ningún horario.");
    } else {
        texto = QStringLiteral("Se generaron %1 horarios para %2 empleados, del %3 al %4.")
                    .arg(r.filas)
                    .arg(r.empleados)
                    .arg(fecha(periodo.desde), fecha(periodo.hasta));
        if (!r.sinEmpleados.isEmpty())
            texto += QStringLiteral("\nSin empleados, sin horarios: %1.")
                         .arg(r.sinEmpleados.join(QStringLiteral(", ")));
    }
    interaccion().mensaje(texto, 64);
}

} // namespace

Periodo periodoHorarios(const QString &periodo, const QDate &fecha)
{
    if (!fecha.isValid())
        throw Error(QStringLiteral("No hay una fecha de inicio válida en el calendario."));
    const QString p = sinAcentos(periodo.trimmed()).toLower();
    if (p == u"dia")
        return {fecha, fecha};
    if (p == u"semana")
        return {fecha, fecha.addDays(6)};
    if (p == u"mes")
        return {fecha, fecha.addMonths(1).addDays(-1)};
    throw Error(QStringLiteral("El periodo \"%1\" no es Día, Semana ni Mes.").arg(periodo));
}

int diaDescanso(const QString &nombre)
{
    static const char *const dias[] = {"lunes",   "martes", "miercoles", "jueves",
                                       "viernes", "sabado", "dimingo"};
    const QString n = sinAcentos(nombre.trimmed()).toLower();
    for (int i = 0; i < 7; ++i)
        if (n == QLatin1String(dias[i]))
            return i + 1;
    return n == u"domingo" ? 7 : 0;
}

ResultadoHorarios generaHorarios(const QSqlDatabase &db, const QStringList &turnos,
                                 const Periodo &periodo,
                                 const std::function<void(int, int, int)> &avance)
{
    if (!periodo.desde.isValid() || !periodo.hasta.isValid() || periodo.hasta < periodo.desde)
        throw Error(QStringLiteral("El periodo de los horarios no es válido."));

    ResultadoHorarios r;
    QList<Turno> leidos;
    for (const QString &clave : turnos) {
        RecordsetPtr rs = lee(db,
                              QStringLiteral("SELECT turno, entrada, comida, salida, descanso "
                                             "FROM turnos WHERE turno = ?"),
                              {clave});
        if (rs->atEnd())
            throw Error(QStringLiteral("El turno «%1» no existe.").arg(clave));
        Turno t{rs->text(0), rs->text(1), rs->text(2), rs->text(3), diaDescanso(rs->text(4)), {}};
        RecordsetPtr m = lee(
            db,
            QStringLiteral("SELECT empleado FROM turnoempleado WHERE turno = ? ORDER BY empleado"),
            {clave});
        for (; !m->atEnd(); m->moveNext())
            t.miembros << m->text(0);
        if (t.miembros.isEmpty())
            r.sinEmpleados << t.turno;
        leidos << t;
    }

    QList<QDate> laborables[8]; // by rest day: the dates worked
    for (int descanso = 0; descanso <= 7; ++descanso)
        for (QDate d = periodo.desde; d <= periodo.hasta; d = d.addDays(1))
            if (d.dayOfWeek() != descanso)
                laborables[descanso] << d;

    // The members' rows in the period go first; then each working date is
    // one statement that writes the row of every member, so a month of
    // thousands of employees is a few dozen statements.
    const QString borra = QStringLiteral(
        "DELETE FROM horarios WHERE fecha >= ? AND fecha <= ? AND Empleado IN (SELECT empleado "
        "FROM turnoempleado WHERE turno = ?)");
    const QString inserta = QStringLiteral(
        "INSERT INTO horarios (turno, fecha, Empleado, HoraEntrada, comida, HoraSalida) SELECT "
        "turnos.turno, ?, turnoempleado.empleado, turnos.entrada, turnos.comida, turnos.salida "
        "FROM turnoempleado INNER JOIN turnos ON turnos.turno = turnoempleado.turno WHERE "
        "turnoempleado.turno = ?");
    int totalDias = 0;
    int previstas = 0;
    for (const Turno &t : std::as_const(leidos)) {
        totalDias += t.miembros.isEmpty() ? 0 : int(laborables[t.descanso].size());
        previstas += int(t.miembros.size() * laborables[t.descanso].size());
    }
    Transaccion transaccion(db);
    int hecho = 0;
    for (const Turno &t : std::as_const(leidos)) {
        if (t.miembros.isEmpty())
            continue;
        accion(db, borra, {periodo.desde, periodo.hasta, t.turno});
        for (const QDate &d : laborables[t.descanso]) {
            r.filas += accion(db, inserta, {d, t.turno}).filas;
            if (avance)
                avance(++hecho, totalDias, previstas);
        }
        r.empleados += int(t.miembros.size());
    }
    transaccion.confirma();
    return r;
}

QList<ProcesoAnfitrion> procesosTurnos()
{
    return {{"TURNOS003", generaDesdeVentana}};
}

} // namespace zuvi::anfitrion
