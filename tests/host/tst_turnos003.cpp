// The host's schedule generation "TURNOS003": periods, rest days, the rows it
// writes, the question and the messages, progress on long runs, and a
// failure that leaves nothing. Runs on SQLite and again on MariaDB.

#include "host/procesos/Procesos.h"
#include "host/procesos/Turnos.h"
#include "host/reportes/RolMes.h"
#include "host/sql/Sql.h"
#include "runtime/Error.h"
#include "tests/support/BaseDePrueba.h"
#include "tests/support/InteraccionGuionada.h"
#include "tests/support/Ventanas.h"

#include <QApplication>
#include <QCalendarWidget>
#include <QComboBox>
#include <QSqlRecord>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeWidget>
#include <QVBoxLayout>

using namespace zuvi;
using namespace zuvi::anfitrion;
using pruebas::BaseDePrueba;
using pruebas::fallaAl;

namespace {

// A window with the three controls the process reads, as the catalogue names them.
struct VentanaDePrueba : QWidget
{
    VentanaDePrueba(const QString &periodo, const QDate &fecha, const QString &clave)
    {
        auto *d = new QVBoxLayout(this);
        auto *combo = new QComboBox;
        combo->setObjectName("Combo1");
        combo->addItems({"Día", "Semana", "Mes"});
        combo->setCurrentText(periodo);
        auto *calendario = new QCalendarWidget;
        calendario->setObjectName("MonthView1");
        calendario->setSelectedDate(fecha);
        auto *lista = new QTreeWidget;
        lista->setObjectName("lv_0");
        lista->setProperty("ClaveSeleccionada", clave);
        d->addWidget(combo);
        d->addWidget(calendario);
        d->addWidget(lista);
    }
};

} // namespace

class TstTurnos003 : public QObject
{
    Q_OBJECT

    std::unique_ptr<BaseDePrueba> m_base;
    std::shared_ptr<pruebas::InteraccionGuionada> m_guion;

    int cuenta(const QString &desde) { return m_base->cuenta(desde); }

    void corre(VentanaDePrueba &v)
    {
        ArgumentosProceso a;
        a.proceso = "TURNOS003";
        a.objeto = &v;
        a.ambiente = m_base->ambiente();
        manejadorProceso("TURNOS003")(a);
    }

    // n employees P0001.. in the shift MASIVO (rest "Dimingo").
    void muchos(int n)
    {
        m_base->ejecuta("INSERT INTO turnos (turno, entrada, comida, salida, descanso, regcomida) "
                        "VALUES ('MASIVO', '08:00', '12:00', '16:00', 'Dimingo', '12:30')");
        Transaccion t(m_base->conexion());
        for (int i = 1; i <= n; ++i) {
            const QString e = QString("P%1").arg(i, 4, 10, QChar('0'));
            ejecutaAccion(m_base->conexion(),
                          "INSERT INTO empleados (empleado, nombre) VALUES (?, ?)", {e, "N" + e});
            ejecutaAccion(m_base->conexion(),
                          "INSERT INTO turnoempleado (turno, empleado) VALUES ('MASIVO', ?)", {e});
        }
        t.confirma();
    }

private Q_SLOTS:
    void init()
    {
        pruebas::preparaRegistro();
        m_guion = pruebas::InteraccionGuionada::instala();
        m_base = std::make_unique<BaseDePrueba>();
    }
    void cleanup() { m_base.reset(); }

    // The dates a period covers from the chosen one (an invalid end: refused), and the
    // weekday of a rest day's name (0: none).
    void periodosYDescansos()
    {
        const struct
        {
            const char *periodo;
            QDate fecha, hasta;
        } periodos[] = {
            {"Día", {2024, 5, 6}, {2024, 5, 6}},
            {"Semana", {2024, 12, 28}, {2025, 1, 3}},
            {"Mes", {2024, 5, 6}, {2024, 6, 5}},
            {"Mes", {2024, 1, 31}, {2024, 2, 28}},
            {"dia", {2024, 5, 6}, {2024, 5, 6}},
            {"Quincena", {2024, 5, 6}, {}},
            {"Día", {}, {}},
        };
        for (const auto &c : periodos) {
            try {
                const Periodo p = periodoHorarios(QString::fromUtf8(c.periodo), c.fecha);
                QCOMPARE(p.desde, c.fecha);
                QCOMPARE(p.hasta, c.hasta);
            } catch (const Error &) {
                QVERIFY2(!c.hasta.isValid(), c.periodo);
            }
        }
        const std::pair<const char *, int> dias[] = {
            {"Dimingo", 7},   {"domingo", 7}, {"Sábado", 6}, {"Sabado", 6},
            {"MIÉRCOLES", 3}, {" Lunes ", 1}, {"", 0},       {"Feriado", 0}};
        for (const auto &[nombre, dia] : dias)
            QCOMPARE(diaDescanso(QString::fromUtf8(nombre)), dia);
    }

    // The night shift over May 2024: every day but the five Fridays, hours stored as they
    // stand (the end after midnight), one row per member and date.
    void turnoNocturnoDeUnMes()
    {
        VentanaDePrueba v("Mes", QDate(2024, 5, 1), "PNOCHE");
        corre(v);
        QCOMPARE(cuenta("horarios WHERE turno = 'NOCHE'"), 26 * 3);
        QCOMPARE(cuenta("horarios WHERE turno = 'NOCHE' AND HoraEntrada = '22:00' AND comida = "
                        "'02:00' AND HoraSalida = '06:00'"),
                 78);
        for (const char *viernes : {"2024-05-03", "2024-05-10", "2024-05-31"})
            QCOMPARE(cuenta(QString("horarios WHERE fecha = '%1'").arg(viernes)), 0);
        QCOMPARE(cuenta("horarios WHERE Empleado = 'E008' AND fecha = '2024-05-30'"), 1);
        QCOMPARE(m_guion->mensajes().size(), 1);
        QCOMPARE(m_guion->mensajes().first().texto,
                 QStringLiteral("Se generaron 78 horarios para 3 empleados, del 01/05/2024 al "
                                "31/05/2024."));
        QCOMPARE(m_guion->mensajes().first().estilo, 64);
        QVERIFY(m_guion->llamadasProgreso().isEmpty());
    }

    // No shift selected: the question; "no" writes nothing, "yes" generates every shift and
    // names the shifts without members. A shift without members chosen alone writes nothing.
    void todosLosTurnosTrasPreguntar()
    {
        m_base->ejecuta("INSERT INTO turnos (turno, entrada, comida, salida, descanso, "
                        "regcomida) VALUES ('VACIO', '08:00', '12:00', '16:00', 'Lunes', '12:30')");
        const int antes = cuenta("horarios");
        VentanaDePrueba v("Día", QDate(2024, 5, 7), QString());
        m_guion->respuestas({false, true});
        corre(v);
        QCOMPARE(m_guion->preguntas().size(), 1);
        QCOMPARE(cuenta("horarios"), antes);
        corre(v);
        // MATUTINO 3, VESPERTINO 2, NOCHE 3 on a Tuesday.
        QCOMPARE(cuenta("horarios WHERE fecha = '2024-05-07'"), 8);
        QCOMPARE(m_guion->mensajes().last().texto,
                 QStringLiteral("Se generaron 8 horarios para 8 empleados, del 07/05/2024 al "
                                "07/05/2024.\nSin empleados, sin horarios: VACIO."));
        const int todos = cuenta("horarios");
        VentanaDePrueba vacio("Semana", QDate(2024, 5, 6), "PVACIO");
        corre(vacio);
        QCOMPARE(cuenta("horarios"), todos);
        QCOMPARE(m_guion->mensajes().last().texto,
                 QStringLiteral("El turno «VACIO» no tiene empleados: no se generó ningún "
                                "horario."));
    }

    // The month roster: employees down, days across; the shift's code on worked days, "D" on
    // the rest days of the employee's shift, nothing on the other days; the legend explains
    // the codes. The PDF is written.
    void rolDelMes()
    {
        generaHorarios(m_base->conexion(), {"NOCHE"}, {QDate(2024, 5, 1), QDate(2024, 5, 31)});
        const RolMes noche = leeRolMes(m_base->conexion(), 2024, 5, "NOCHE");
        QStringList filas;
        for (const RolMes::Fila &f : noche.filas)
            filas << f.empleado + ' ' + f.nombre + ' ' + f.dias.mid(0, 4).join(',');
        QCOMPARE(filas,
                 (QStringList{"E008 Hugo Medina NOC,NOC,D,NOC", "E009 Irene Castro NOC,NOC,D,NOC",
                              "E010 Jorge Núñez NOC,NOC,D,NOC"}));
        QCOMPARE(noche.leyenda.size(), 1);
        QCOMPARE(noche.leyenda.first().second,
                 QStringLiteral("NOCHE  22:00-06:00, descansa Viernes"));
        // Every shift: the demo's two MATUTINO rows on Monday the 6th, Sundays marked for the
        // members of MATUTINO, nothing for the days no schedule was generated.
        const RolMes todos = leeRolMes(m_base->conexion(), 2024, 5);
        const auto fila = [&](const QString &e) {
            for (const RolMes::Fila &f : todos.filas)
                if (f.empleado == e)
                    return f.dias.mid(3, 4).join(',');
            return QString("falta");
        };
        QCOMPARE(fila("E001"), QStringLiteral(",D,MAT,"));
        QCOMPARE(fila("E003"), QStringLiteral(",D,,"));
        QCOMPARE(fila("E008"), QStringLiteral("NOC,NOC,NOC,NOC"));
        QCOMPARE(fila("E006"), QStringLiteral("falta")); // no shift, no schedule
        QVERIFY_THROWS_EXCEPTION(Error, leeRolMes(m_base->conexion(), 2024, 5, "NADA"));

        QTemporaryDir dir;
        const QString archivo = dir.filePath(nombreArchivoRol(noche));
        escribeRolMesPdf(noche, archivo);
        QFile pdf(archivo);
        QVERIFY(pdf.open(QIODevice::ReadOnly));
        QVERIFY(pdf.read(5) == "%PDF-" && pdf.size() > 1000);
        QCOMPARE(QFileInfo(archivo).fileName(), QStringLiteral("RolMes-2024-05-NOCHE.pdf"));
    }

    void mesesDelRol()
    {
        const std::pair<const char *, int> casos[] = {
            {"2024-05", 5}, {"2024-5", 5}, {"2024-13", 0}, {"24-05", 0}, {"mayo", 0}}; // 0: refused
        for (const auto &[texto, mes] : casos) {
            int a = 0, m = 0;
            try {
                leeMes(texto, a, m);
                QCOMPARE(m, mes);
                QCOMPARE(a, 2024);
            } catch (const Error &) {
                QVERIFY2(mes == 0, texto);
            }
        }
    }

    // A month for many employees shows the progress window; a failure in the middle (the
    // database refuses a row) leaves no row of the run, and the next run writes them all.
    void muchosEmpleadosYFallaAMedias()
    {
        muchos(300);
        QVERIFY(fallaAl(*m_base, "INSERT", "horarios", "NEW.Empleado = 'P0250'"));
        VentanaDePrueba v("Mes", QDate(2024, 2, 1), "PMASIVO");
        const QString falla = pruebas::errorDe([&] { corre(v); });
        QVERIFY2(falla.contains("La base se perdio"), qPrintable(falla));
        QCOMPARE(cuenta("horarios WHERE turno = 'MASIVO'"), 0);
        QVERIFY(v.isEnabled());
        m_base->ejecuta("DROP TRIGGER falla");
        m_guion->olvida();
        corre(v);
        // February 2024 has 29 days, four of them Sundays.
        QCOMPARE(cuenta("horarios WHERE turno = 'MASIVO'"), 300 * 25);
        const auto &progreso = m_guion->llamadasProgreso();
        QVERIFY(progreso.size() >= 3);
        QCOMPARE(progreso.first().operacion, QStringLiteral("inicia"));
        QCOMPARE(progreso.first().numero, 25); // a step per working date
        QCOMPARE(progreso.last().operacion, QStringLiteral("cierra"));
    }
};

QTEST_MAIN(TstTurnos003)
#include "tst_turnos003.moc"
