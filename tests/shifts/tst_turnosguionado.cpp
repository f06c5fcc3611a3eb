// The shift windows against the scripted host: every host call in order,
// with its arguments, and what the lists show.

#include "apoyoturnos.h"

#include "core/Modulo.h"
#include "host/servicios/AccesoDatosAnfitrion.h"
#include "runtime/ClassRegistry.h"
#include "shifts/SentenciasTurnos.h"
#include "tests/support/AnfitrionGuionado.h"

#include <QCalendarWidget>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>

using namespace zuvi;
using namespace pruebasturnos;
using pruebas::AnfitrionGuionado;

namespace {

QString valor(const QVariant &v)
{
    return QString::fromLatin1(v.typeName()) + QLatin1Char(':') + v.toString();
}

struct ConstructorGrabado : ConstructorSql
{
    explicit ConstructorGrabado(AnfitrionGuionado *a) : m(a) {}
    void PonConexion(const QSqlDatabase &) override { m->anota("PonConexion"); }
    void PonRutas(const QVariant &) override { m->anota("PonRutas"); }
    void Limpia() override { m->anota("Limpia"); }
    void Tipo(const QString &t) override { m->anota("Tipo", {t}); }
    void AgregaCampo(const QString &t, const QString &c, const QVariant &v) override
    {
        m->anota("AgregaCampo", {t, c, valor(v)});
    }
    void Condicion(const QString &c) override { m->anota("Condicion", {c}); }
    QString Genera(const QString &t) override
    {
        m->anota("Genera", {t});
        return QString();
    }
    void Ejecuta() override { m->anota("Ejecuta"); }
    AnfitrionGuionado *m;
};

// Answers SELECTs from the script and records every call the windows make.
struct AccesoDatosGrabado : anfitrion::AccesoDatosAnfitrion
{
    explicit AccesoDatosGrabado(AnfitrionGuionado *a) : m(a) {}
    RecordsetPtr Consulta(const QString &sql, const QSqlDatabase &, VBool) override
    {
        m->anota("Consulta", {sql});
        auto falla = m->fallas.find(sql);
        if (falla != m->fallas.end() && falla->first-- <= 0)
            throw Error(falla->second);
        return std::make_shared<Recordset>(m->respuestas.value(sql));
    }
    QString TraeMensaje(qint32 n, zuvi::Ambiente *) override
    {
        m->anota("TraeMensaje", {QString::number(n)});
        return QStringLiteral("Mensaje %1").arg(n);
    }
    void Mensaje(const QString &t, qint32 estilo, zuvi::Ambiente *) override
    {
        m->anota("Mensaje", {t, QString::number(estilo)});
    }
    VBool Pregunta(const QString &t, qint32 v) override
    {
        m->anota("Pregunta", {t, QString::number(v)});
        const bool si = m->si.startsWith('s');
        m->si.remove(0, 1);
        return toVBool(si);
    }
    void PreparaVentana(QWidget *w, zuvi::Ambiente *a, const QString &t) override
    {
        m->anota("PreparaVentana",
                 {w->objectName(), a ? a->objectName() : "nada", t.isEmpty() ? "''" : t});
        AccesoDatosAnfitrion::PreparaVentana(w, a, t);
    }
    void LiberaVentana(QWidget *w, zuvi::Ambiente *a, const QString &t) override
    {
        m->anota("LiberaVentana", {w->objectName(), a ? a->objectName() : "nada", t});
    }
    QString FechaSQL(const QSqlDatabase &c, const QDate &f) override
    {
        m->anota("FechaSQL", {f.toString(Qt::ISODate)});
        return AccesoDatosAnfitrion::FechaSQL(c, f);
    }
    ConstructorSql *NuevoConstructorSql() override
    {
        m->anota("NuevoConstructorSql");
        return new ConstructorGrabado(m);
    }
    AnfitrionGuionado *m;
};

Recordset filas(const QStringList &columnas, const QList<QVariantList> &valores)
{
    return Recordset(columnas, valores);
}

Recordset cuenta(int n)
{
    return filas({"COUNT( * )"}, {{n}});
}

const QStringList kColumnasTurnos{"turno", "entrada", "comida", "salida", "descanso", "regcomida"};

} // namespace

class TstTurnosGuionado : public QObject
{
    Q_OBJECT

    std::unique_ptr<AnfitrionGuionado> g;

    // The catalogue with two shifts, one of them with blanks around its key.
    void dosTurnos()
    {
        g->respuestas[turnos::cuentaTurnos()] = cuenta(2);
        g->respuestas[turnos::selectTurnos()] =
            filas(kColumnasTurnos, {{" A ", " 07:00", "11:00 ", "15:00", "Lunes", "11:30"},
                                    {"NOCHE", "22:00", "02:00", "06:00", "Dimingo", "02:30"}});
    }

    // Both shifts and the employees, the catalogue open with the second shift selected and
    // the record of calls emptied.
    QPointer<frmTurnos> catalogoEnElSegundoTurno()
    {
        dosTurnos();
        empleados();
        auto f = abreCatalogo(g->ambiente());
        if (f)
            clicEnElemento(f->lv(0), f->lv(0)->elemento(1));
        g->registro.clear();
        return f;
    }

    // Employees E1..E3, E2 a member of the shift " A ", E3 of another one.
    void empleados()
    {
        g->respuestas[turnos::cuentaEmpleados()] = cuenta(3);
        g->respuestas[turnos::selectEmpleados()] =
            filas({"empleado", "nombre"}, {{"E1 ", "Uno"}, {"E2", " Dos "}, {"E3", "Tres"}});
        g->respuestas[turnos::cuentaMiembros(" A ")] = cuenta(1);
        g->respuestas[turnos::selectMiembros(" A ")] =
            filas({"empleado", "nombre"}, {{"E2", "Dos"}});
        g->respuestas[turnos::selectTodosLosMiembros()] =
            filas({"turno", "empleado"}, {{" A ", "E2"}, {"B", "E3"}});
        g->respuestas[turnos::selectTurno(" A ")] =
            filas(kColumnasTurnos, {{" A ", "07:00", "11:00", "15:00", "Lunes", "11:30"}});
    }

private Q_SLOTS:
    void init()
    {
        g = std::make_unique<AnfitrionGuionado>();
        ClassRegistry::instance().add("AccesoDatos",
                                      [this] { return new AccesoDatosGrabado(g.get()); });
    }
    void cleanup()
    {
        cierraTodo();
        g.reset();
    }

    // Load: period list on "Día", today in the calendar, the shift list filled with the count
    // first, trimmed hours, both lists' headers, then PreparaVentana; the shift list has the focus.
    void laCargaLlenaLaListaDeTurnos()
    {
        dosTurnos();
        auto f = abreCatalogo(g->ambiente());
        QVERIFY(f);
        QCOMPARE(g->registro, (QStringList{"Consulta: SELECT COUNT( * ) FROM turnos",
                                           "Consulta: SELECT * FROM turnos ORDER BY turno",
                                           "PreparaVentana: frmTurnos | Ambiente | ''"}));
        QCOMPARE(f->windowTitle(), QStringLiteral("Turnos"));
        QCOMPARE(f->Combo1->currentText(), QStringLiteral("Día"));
        QCOMPARE(f->Combo1->count(), 3);
        QCOMPARE(f->Combo1->itemText(2), QStringLiteral("Mes"));
        QCOMPARE(f->MonthView1->selectedDate(), QDate::currentDate());
        QCOMPARE(textos(f->lv(0), 5), (QStringList{"P A | A |07:00|11:00|11:30|15:00",
                                                   "PNOCHE|NOCHE|22:00|02:00|02:30|06:00"}));
        QStringList columnas;
        for (int l = 0; l < 2; ++l)
            for (int c = 1; c <= f->lv(l)->cuentaColumnas(); ++c)
                columnas << f->lv(l)->claveColumna(c) + '=' + f->lv(l)->tituloColumna(c);
        QCOMPARE(columnas.join(','),
                 QStringLiteral(
                     "Turno=Turno,Entrada=Entrada,Comida=Comida,RegComida=Regreso de "
                     "Comida,Salida=Salida,"
                     "id=id,Empleado=Empleado,Fecha=Fecha,HoraEntrada=Hora Entrada,Comida=Comnida,"
                     "HoraSalida=Hora Salida"));
        QCOMPARE(f->ProgressBar1->maximum(), 2);
        QCOMPARE(f->ProgressBar1->value(), 0);
        QCOMPARE(QApplication::focusWidget(), f->lv(0));
        QVERIFY(g->reportes().isEmpty());
    }

    // "&Generar horarios" hands the window to "TURNOS003" with the eleven arguments, and
    // refreshes nothing; closing the window hands the focus back with "frmMaster".
    void generarEntregaLaVentanaAlProceso()
    {
        dosTurnos();
        auto f = abreCatalogo(g->ambiente());
        QVERIFY(f);
        g->registro.clear();
        atajo(f, Qt::Key_G);
        QCOMPARE(g->registro, QStringList{"IniciaProceso: TURNOS003 | frmTurnos | Ambiente | "
                                          "QString:'' | nada | -1 | 0 | '' | nulo | '' | nada"});
        QVERIFY(f->descarga());
        QCOMPARE(g->registro.last(),
                 QStringLiteral("LiberaVentana: frmTurnos | Ambiente | frmMaster"));
    }

    // Deleting asks message 1 (second argument 1); only a yes deletes, with the trimmed key,
    // in the order shifts, members, schedules, then both lists are read again. With nothing
    // selected "&Eliminar turno" and "&Modifica turno" do nothing at all.
    void eliminarPreguntaPrimero_data()
    {
        QTest::addColumn<QString>("respuesta");
        QTest::addColumn<QStringList>("despues");
        const QStringList pregunta{"TraeMensaje: 1", "Pregunta: Mensaje 1 | 1"};
        QTest::newRow("no") << "n" << pregunta;
        QTest::newRow("sí") << "s"
                            << pregunta +
                                   QStringList{
                                       "EjecutaSQL: DELETE FROM turnos WHERE turno = 'A'",
                                       "EjecutaSQL: DELETE FROM turnoempleado WHERE turno = 'A'",
                                       "EjecutaSQL: DELETE FROM horarios WHERE turno = 'A'",
                                       "Consulta: SELECT COUNT( * ) FROM turnos",
                                       "Consulta: SELECT * FROM turnos ORDER BY turno"};
    }
    void eliminarPreguntaPrimero()
    {
        QFETCH(QString, respuesta);
        QFETCH(QStringList, despues);
        dosTurnos();
        g->si = respuesta;
        auto f = abreCatalogo(g->ambiente());
        QVERIFY(f);
        g->registro.clear();
        atajo(f, Qt::Key_E);
        atajo(f, Qt::Key_M);
        QVERIFY(g->registro.isEmpty());
        clicEnElemento(f->lv(0), f->lv(0)->elemento(1));
        g->registro.clear();
        atajo(f, Qt::Key_E);
        // The refilled list has no selection, so the schedule list reads nothing.
        QCOMPARE(g->registro, despues);
    }

    // A date chosen with Enter reads the selected shift's schedule (untrimmed key, the host's
    // date literal); the employee goes through the date format, the date stays as it came.
    void elCalendarioMuestraLosHorarios()
    {
        dosTurnos();
        const QString literal = "'2024-05-06'";
        g->respuestas[turnos::cuentaHorarios(literal, " A ")] = cuenta(3);
        g->respuestas[turnos::selectHorarios(literal, " A ")] =
            filas({"id", "turno", "fecha", "Empleado", "HoraEntrada", "comida", "HoraSalida"},
                  {{7, " A ", "2024-05-06", " E001 ", "07:00", "11:00", "15:00 "},
                   {8, " A ", "2024-05-06", "45414", "07:00", "11:00", "15:00"},
                   {9, " A ", QDate(2024, 5, 6), "2024-01-31", "07:00", "11:00", "15:00"}});
        auto f = abreCatalogo(g->ambiente());
        QVERIFY(f);
        // No shift selected: the headers are rebuilt and nothing is read.
        f->MonthView1->setSelectedDate(QDate(2024, 5, 6));
        f->MonthView1->setFocus();
        g->registro.clear();
        QTest::keyClick(f->windowHandle(), Qt::Key_Return);
        QVERIFY(g->registro.isEmpty());
        f->lv(0)->setFocus();
        QTest::keyClick(f->windowHandle(), Qt::Key_Space);
        QCOMPARE(f->lv(0)->claveSeleccionada(), QStringLiteral("P A "));
        f->MonthView1->setFocus();
        QTest::keyClick(f->windowHandle(), Qt::Key_Return);
        QCOMPARE(g->registro,
                 (QStringList{"FechaSQL: 2024-05-06",
                              "Consulta: SELECT COUNT( * ) FROM horarios WHERE fecha = "
                              "'2024-05-06' AND turno = ' A '",
                              "Consulta: SELECT * FROM horarios WHERE fecha = '2024-05-06' AND "
                              "turno = ' A '"}));
        QCOMPARE(textos(f->lv(1), 6),
                 (QStringList{"P7|7|E001|2024-05-06|07:00|11:00|15:00",
                              "P8|8|02-05-2024|2024-05-06|07:00|11:00|15:00",
                              "P9|9|31-01-2024|2024-05-06|07:00|11:00|15:00"}));
        QCOMPARE(f->ProgressBar1->maximum(), 3);
        QCOMPARE(f->ProgressBar1->value(), 0);
    }

    // A failing statement is reported with the window and the procedure; the window stays.
    void unErrorSeReportaConElProcedimiento()
    {
        dosTurnos();
        g->fallas[turnos::selectTurnos()] = {1, "Se perdió la conexión"};
        auto f = abreCatalogo(g->ambiente());
        QVERIFY(f);
        atajo(f, Qt::Key_E); // nothing selected
        clicEnElemento(f->lv(0), f->lv(0)->elemento(1));
        g->si = "s";
        atajo(f, Qt::Key_E);
        QCOMPARE(g->reportes(), QStringList{"Error occured:\r\nModule: frmTurnos\r\nFunction: "
                                            "LLenaTurnos\r\nDescription: Se perdió la conexión"});
        QVERIFY(f->isVisible());
    }

    // The editor: key field focused, weekday and half-hour lists, the members of the shift on
    // the right and the employees of no shift on the left, then PreparaVentana.
    void elEditorCargaLosEmpleados()
    {
        auto f = catalogoEnElSegundoTurno();
        QVERIFY(f);
        bool visto = false;
        QStringList libres, miembros, horas, dias, etiquetas;
        QWidget *foco = nullptr;
        enEditor(
            [&](frmTurno *e) {
                foco = QApplication::focusWidget();
                if (foco != e->cmbFields(0))
                    return;
                libres = textos(e->lv(0), 2);
                miembros = textos(e->lv(1), 2);
                for (int i = 0; i < e->cmbFields(1)->count(); ++i)
                    horas << e->cmbFields(1)->itemText(i);
                for (int i = 0; i < e->cmbFields(4)->count(); ++i)
                    dias << e->cmbFields(4)->itemText(i);
                for (int i = 0; i <= 7; ++i)
                    etiquetas << e->lblTurno(i)->text();
                QCOMPARE(e->texto(4), QStringLiteral("Lunes"));
                QStringList consejos;
                for (int i = 2; i <= 5; ++i) {
                    QVERIFY(!e->cmdButton(i)->icon().isNull() && e->cmdButton(i)->text().isEmpty());
                    consejos << e->cmdButton(i)->toolTip();
                }
                QCOMPARE(consejos.join(','),
                         QStringLiteral("Agregar todos,Agregar,Quitar,Quitar todos"));
            },
            &visto);
        atajo(f, Qt::Key_M);
        QVERIFY(visto);
        QCOMPARE(libres, QStringList{"PE1|E1|Uno"});
        QCOMPARE(miembros, QStringList{"PE2|E2|Dos"});
        QCOMPARE(horas.size(), 48);
        QCOMPARE(horas.first(), QStringLiteral("01:00"));
        QCOMPARE(horas.last(), QStringLiteral("24:30"));
        QCOMPARE(dias.join(','),
                 QStringLiteral("Lunes,Martes,Miercoles,Jueves,Viernes,Sabado,Dimingo"));
        QCOMPARE(etiquetas.join(','),
                 QStringLiteral("Turno:,Hora de entrada,Hora de salida,Hora de comida,Regreso de "
                                "comida,Día de descanso,Empleado,Empleados dentro del turno"));
        QCOMPARE(g->registroDe({"Consulta", "PreparaVentana", "LiberaVentana"}),
                 (QStringList{"Consulta: SELECT * FROM turnos WHERE turno = ' A '",
                              "Consulta: SELECT COUNT( * ) FROM empleados",
                              "Consulta: SELECT * FROM empleados ORDER BY empleado",
                              "Consulta: SELECT COUNT( * ) FROM turnoempleado WHERE turno = ' A '",
                              "Consulta: SELECT turnoempleado.empleado, empleados.nombre FROM "
                              "turnoempleado LEFT JOIN empleados USING( empleado ) WHERE turno = "
                              "' A ' ORDER BY empleado",
                              "Consulta: SELECT * FROM turnoempleado",
                              "PreparaVentana: frmTurno | Ambiente | ''",
                              "LiberaVentana: frmTurno | Ambiente | frmMaster",
                              // the lists are read again after the editor
                              "Consulta: SELECT COUNT( * ) FROM turnos",
                              "Consulta: SELECT * FROM turnos ORDER BY turno"}));
    }

    // Saving a modified shift whose key was changed: UPDATE by the old key, the new key
    // written, the members deleted and inserted under the new key (untrimmed).
    void guardarConClaveCambiada()
    {
        auto f = catalogoEnElSegundoTurno();
        QVERIFY(f);
        enEditor([&](frmTurno *e) {
            e->cmbFields(0)->lineEdit()->selectAll();
            QTest::keyClicks(e->cmbFields(0), "B2 ");
            clicEnElemento(e->lv(0), e->lv(0)->elemento(1));
            clic(e->cmdButton(3));
            atajo(e, Qt::Key_A);
        });
        atajo(f, Qt::Key_M);
        QCOMPARE(
            g->registroDe({"NuevoConstructorSql", "PonConexion", "Limpia", "Tipo", "AgregaCampo",
                           "Condicion", "Genera", "Ejecuta", "EjecutaSQL", "Mensaje"}),
            (QStringList{"NuevoConstructorSql",
                         "PonConexion",
                         "Tipo: UPDATE",
                         "Condicion: turno = ' A '",
                         "AgregaCampo: turnos | turno | QString:B2 ",
                         "AgregaCampo: turnos | entrada | QString:07:00",
                         "AgregaCampo: turnos | comida | QString:11:00",
                         "AgregaCampo: turnos | salida | QString:15:00",
                         "AgregaCampo: turnos | descanso | QString:Lunes",
                         "AgregaCampo: turnos | regcomida | QString:11:30",
                         "Genera: turnos",
                         "Ejecuta",
                         "EjecutaSQL: DELETE FROM turnoempleado WHERE turno = 'B2 '",
                         "Limpia",
                         "Tipo: INSERT",
                         "AgregaCampo: turnoempleado | turno | QString:B2 ",
                         "AgregaCampo: turnoempleado | empleado | QString:E2",
                         "Genera: turnoempleado",
                         "Ejecuta",
                         "Limpia",
                         "Tipo: INSERT",
                         "AgregaCampo: turnoempleado | turno | QString:B2 ",
                         "AgregaCampo: turnoempleado | empleado | QString:E1",
                         "Genera: turnoempleado",
                         "Ejecuta"}));
        QVERIFY(g->reportes().isEmpty());
    }

    // A new shift: the existence test with the blank after the quote (832 when found), then
    // the fields in the order 0, 1, 2, 5, 3, 4, each empty one refused with its message and
    // the focus on it; nothing is built before all pass.
    void altaRevisaLosCampos_data()
    {
        QTest::addColumn<QStringList>("valores"); // fields 0..5
        QTest::addColumn<bool>("existe");
        QTest::addColumn<int>("mensaje");
        QTest::addColumn<int>("campo");
        const QStringList llenos{" X ", "07:00", "11:00", "15:00", "Lunes", "11:30"};
        QTest::newRow("existe") << llenos << true << 832 << 0;
        const int orden[][2] = {{0, 833}, {1, 834}, {2, 835}, {5, 836}, {3, 837}, {4, 838}};
        for (const auto &[campo, mensaje] : orden) {
            QStringList v = llenos;
            v[campo] = "  ";
            // Every later field empty too: only the first in the order is reported.
            for (const auto &[despues, m] : orden)
                if (m > mensaje)
                    v[despues].clear();
            QTest::addRow("vacío %d", campo) << v << false << mensaje << campo;
        }
    }
    void altaRevisaLosCampos()
    {
        QFETCH(QStringList, valores);
        QFETCH(bool, existe);
        QFETCH(int, mensaje);
        QFETCH(int, campo);
        dosTurnos();
        if (existe)
            g->respuestas[turnos::existeTurno("X")] = filas({"turno"}, {{" X"}});
        auto f = abreCatalogo(g->ambiente());
        QVERIFY(f);
        QWidget *foco = nullptr;
        bool abierta = false;
        enEditor([&](frmTurno *e) {
            for (int i = 0; i < 6; ++i)
                e->cmbFields(i)->setEditText(valores[i]);
            g->registro.clear();
            atajo(e, Qt::Key_A);
            foco = QApplication::focusWidget();
            abierta = e->isVisible();
            if (foco == e->cmbFields(campo))
                foco = nullptr;
        });
        atajo(f, Qt::Key_N);
        QVERIFY(abierta);
        QVERIFY(foco == nullptr);
        QStringList esperado{"Consulta: SELECT * FROM turnos WHERE turno = ' " +
                                 (valores[0].trimmed().isEmpty() ? QString() : "X") + "'",
                             "TraeMensaje: " + QString::number(mensaje),
                             "Mensaje: Mensaje " + QString::number(mensaje) + " | 64",
                             // nothing built or run; the test closes the editor
                             "LiberaVentana: frmTurno | Ambiente | frmMaster",
                             "Consulta: SELECT COUNT( * ) FROM turnos",
                             "Consulta: SELECT * FROM turnos ORDER BY turno"};
        QCOMPARE(g->registro, esperado);
    }

    // Moving one employee in is refused with 839 while a member without a name is listed;
    // moving all of them is not; a duplicate key stops the move-all with a report and the
    // items moved before it stay moved.
    void moverEmpleados()
    {
        dosTurnos();
        empleados();
        g->respuestas[turnos::selectMiembros(" A ")] =
            filas({"empleado", "nombre"}, {{"E9", QVariant()}});
        // E1 is in this shift too, but the table of members does not say so: it stays free.
        g->respuestas[turnos::cuentaMiembros(" A ")] = cuenta(2);
        auto f = abreCatalogo(g->ambiente());
        QVERIFY(f);
        clicEnElemento(f->lv(0), f->lv(0)->elemento(1));
        QStringList antes, despues, todos;
        enEditor([&](frmTurno *e) {
            antes = textos(e->lv(1), 2);
            g->registro.clear();
            clicEnElemento(e->lv(0), e->lv(0)->elemento(1));
            clic(e->cmdButton(3));
            despues = textos(e->lv(1), 2);
            clic(e->cmdButton(2));
            todos = textos(e->lv(1), 2);
            clic(e->cmdButton(5));
        });
        atajo(f, Qt::Key_M);
        QCOMPARE(antes, QStringList{"PE9|E9|"});
        QCOMPARE(despues, antes);
        QCOMPARE(g->registroDe({"TraeMensaje", "Mensaje"}),
                 (QStringList{"TraeMensaje: 839", "Mensaje: Mensaje 839 | 64"}));
        QCOMPARE(todos, (QStringList{"PE9|E9|", "PE1|E1|Uno"}));
        QCOMPARE(g->reportes().size(), 0);
    }

    void unaClaveRepetidaDetieneElMovimiento()
    {
        dosTurnos();
        empleados();
        g->respuestas[turnos::selectMiembros(" A ")] =
            filas({"empleado", "nombre"}, {{"E9", "Nueve"}, {"E1", "Uno"}});
        g->respuestas[turnos::selectTodosLosMiembros()] = filas({"turno", "empleado"}, {});
        auto f = abreCatalogo(g->ambiente());
        QVERIFY(f);
        clicEnElemento(f->lv(0), f->lv(0)->elemento(1));
        QStringList libres, miembros;
        enEditor([&](frmTurno *e) {
            clic(e->cmdButton(5)); // E1 is already on the left
            libres = textos(e->lv(0), 1);
            miembros = textos(e->lv(1), 1);
        });
        atajo(f, Qt::Key_M);
        QCOMPARE(g->reportes().size(), 1);
        QVERIFY(g->reportes().first().startsWith(
            "Error occured:\r\nModule: frmTurno\r\nFunction: QuitaTodosLosUsuarios\r\n"));
        // E9 went over before E1 stopped the move; nothing is cleared.
        QCOMPARE(libres, (QStringList{"PE1|E1", "PE2|E2", "PE3|E3", "PE9|E9"}));
        QCOMPARE(miembros, (QStringList{"PE9|E9", "PE1|E1"}));
    }

    // The date format applied to the employee value.
    void formatoDeFecha_data()
    {
        QTest::addColumn<QVariant>("valor");
        QTest::addColumn<QString>("texto");
        QTest::newRow("clave") << QVariant("E001") << "E001";
        QTest::newRow("número") << QVariant("45414") << "02-05-2024";
        QTest::newRow("cero") << QVariant(0) << "30-12-1899";
        QTest::newRow("fecha") << QVariant(QDate(2024, 2, 29)) << "29-02-2024";
        QTest::newRow("texto ISO") << QVariant("2024-05-06") << "06-05-2024";
        QTest::newRow("enorme") << QVariant("99999999999") << "99999999999";
        QTest::newRow("nulo") << QVariant() << "";
    }
    void formatoDeFecha()
    {
        QFETCH(QVariant, valor);
        QFETCH(QString, texto);
        QCOMPARE(turnos::formatoFecha(valor), texto);
    }
};

QTEST_MAIN(TstTurnosGuionado)
#include "tst_turnosguionado.moc"
