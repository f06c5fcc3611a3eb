// The shift windows over a real database, driven with keys and the mouse:
// the rows that creation, modification, deletion, membership changes and
// schedule generation leave; the checks before a shift is saved. Runs on
// SQLite and again on MariaDB.

#include "apoyoturnos.h"

#include "core/Modulo.h"
#include "shifts/SentenciasTurnos.h"
#include "tests/support/InteraccionGuionada.h"

#include <QCalendarWidget>
#include <QComboBox>
#include <QLineEdit>
#include <QPointer>

using namespace zuvi;
using namespace pruebasturnos;

class TstFrmTurnos : public QObject
{
    Q_OBJECT

    std::unique_ptr<BaseDePrueba> m_base;
    std::shared_ptr<pruebas::InteraccionGuionada> m_guion;

    // The rows of a query, one text per row, columns joined by '|'.
    QStringList filas(const QString &sql) { return m_base->filas(sql, u'|'); }
    QStringList turnos()
    {
        return filas("SELECT turno, entrada, comida, salida, descanso, "
                     "regcomida FROM turnos ORDER BY turno");
    }
    int cuenta(const QString &sql) { return m_base->escalar(sql).toInt(); }

    // Types into the fields of the editor with the keyboard, moving with Tab in the order
    // of the window: key, start, end, meal, return, rest day.
    static void tecleaCampos(frmTurno *e, const QStringList &valores)
    {
        const int orden[] = {0, 1, 3, 2, 5, 4};
        for (int i = 0; i < 6; ++i) {
            QComboBox *campo = e->cmbFields(orden[i]);
            if (QApplication::focusWidget() != campo)
                return; // the test sees the wrong field through the values saved
            campo->lineEdit()->selectAll();
            QTest::keyClicks(campo, valores[orden[i]]);
            QTest::keyClick(e->windowHandle(), Qt::Key_Tab);
        }
    }

    // Selects the employees by key in the left list with the mouse and moves each with the
    // "Agregar" button.
    static void agrega(frmTurno *e, const QStringList &claves)
    {
        for (const QString &c : claves) {
            QTreeWidgetItem *el = e->lv(0)->buscaClave("P" + c);
            if (!el)
                return;
            clicEnElemento(e->lv(0), el);
            clic(e->cmdButton(3));
        }
    }

private Q_SLOTS:
    void init()
    {
        pruebas::preparaRegistro();
        m_guion = pruebas::InteraccionGuionada::instala();
        m_base = std::make_unique<BaseDePrueba>();
    }
    void cleanup()
    {
        cierraTodo();
        modulo::reinicia();
        m_base.reset();
    }

    // Alt+N, the fields typed with Tab between them, two employees moved in, Alt+A: one
    // turnos row as typed, two members; the catalogue lists the new shift.
    void creaUnTurnoConDosEmpleados()
    {
        auto f = abreCatalogo(m_base->ambiente());
        QVERIFY(f);
        QStringList libres;
        enEditor([&](frmTurno *e) {
            libres = textos(e->lv(0), 1);
            tecleaCampos(e, {"NOCTURNO", "22:00", "02:00", "06:00", "Miercoles", "02:30"});
            agrega(e, {"E006", "E007"});
            atajo(e, Qt::Key_A);
        });
        atajo(f, Qt::Key_N);
        QVERIFY(m_guion->reportes().isEmpty());
        QVERIFY(m_guion->mensajes().isEmpty());
        // Only employees of no shift were offered.
        QVERIFY(!libres.isEmpty() && !libres.join(',').contains("E001"));
        QVERIFY(turnos().contains("NOCTURNO|22:00|02:00|06:00|Miercoles|02:30"));
        QCOMPARE(filas("SELECT empleado FROM turnoempleado WHERE turno = 'NOCTURNO' ORDER BY "
                       "empleado"),
                 (QStringList{"E006", "E007"}));
        QVERIFY(f->lv(0)->buscaClave("PNOCTURNO"));
    }

    // A time outside the half-hour list is kept as typed; a key or a time longer than its
    // column cannot be typed past the column's length.
    void losCamposRespetanSuLargo()
    {
        auto f = abreCatalogo(m_base->ambiente());
        QVERIFY(f);
        enEditor([&](frmTurno *e) {
            tecleaCampos(e, {QString(45, 'K'), "7:15", "25:00", "abcdefg", "Domingo", "x"});
            atajo(e, Qt::Key_A);
        });
        atajo(f, Qt::Key_N);
        QVERIFY(m_guion->reportes().isEmpty());
        QVERIFY(turnos().contains(QString(40, 'K') + "|7:15|25:00|abcde|Domingo|x"));
    }

    // Modify with a changed key: the row found by the old key carries the new one and the
    // new hours; the members are written under the new key and those under the old key stay.
    void modificaConClaveCambiada()
    {
        auto f = abreCatalogo(m_base->ambiente());
        QVERIFY(f);
        clicEnElemento(f->lv(0), f->lv(0)->buscaClave("PMATUTINO"));
        QStringList cargados;
        enEditor([&](frmTurno *e) {
            cargados << e->texto(0) << e->texto(1) << e->texto(4) << textos(e->lv(1), 1);
            e->cmbFields(0)->lineEdit()->selectAll();
            QTest::keyClicks(e->cmbFields(0), "PRIMERO");
            e->cmbFields(1)->setFocus();
            e->cmbFields(1)->lineEdit()->selectAll();
            QTest::keyClicks(e->cmbFields(1), "06:30");
            // E002 back to the free list.
            clicEnElemento(e->lv(1), e->lv(1)->buscaClave("PE002"));
            clic(e->cmdButton(4));
            atajo(e, Qt::Key_A);
        });
        atajo(f, Qt::Key_M);
        QVERIFY(m_guion->reportes().isEmpty());
        QCOMPARE(cargados, (QStringList{"MATUTINO", "07:00", "Dimingo", "PE001|E001", "PE002|E002",
                                        "PE003|E003"}));
        QVERIFY(turnos().contains("PRIMERO|06:30|11:00|15:00|Dimingo|11:30"));
        QCOMPARE(cuenta("SELECT COUNT(*) FROM turnos WHERE turno = 'MATUTINO'"), 0);
        QCOMPARE(filas("SELECT turno, empleado FROM turnoempleado WHERE turno IN ('MATUTINO', "
                       "'PRIMERO') ORDER BY turno, empleado"),
                 (QStringList{"MATUTINO|E001", "MATUTINO|E002", "MATUTINO|E003", "PRIMERO|E001",
                              "PRIMERO|E003"}));
    }

    // Delete: "no" keeps everything; "yes" removes the shift, its members and all of its
    // schedules, and the list no longer shows it.
    void eliminaUnTurno()
    {
        auto f = abreCatalogo(m_base->ambiente());
        QVERIFY(f);
        const QStringList antes = turnos();
        // With nothing selected, neither delete nor modify does anything.
        bool editor = false;
        atajo(f, Qt::Key_E);
        QTimer *vigia = enEditor([](frmTurno *) {}, &editor);
        atajo(f, Qt::Key_M);
        delete vigia;
        QVERIFY(!editor && m_guion->preguntas().isEmpty());
        clicEnElemento(f->lv(0), f->lv(0)->buscaClave("PMATUTINO"));
        m_guion->respuestas({false});
        atajo(f, Qt::Key_E);
        QCOMPARE(turnos(), antes);
        QCOMPARE(m_guion->preguntas().size(), 1);
        m_guion->respuestas({true});
        atajo(f, Qt::Key_E);
        QCOMPARE(cuenta("SELECT COUNT(*) FROM turnos WHERE turno = 'MATUTINO'"), 0);
        QCOMPARE(cuenta("SELECT COUNT(*) FROM turnoempleado WHERE turno = 'MATUTINO'"), 0);
        QCOMPARE(cuenta("SELECT COUNT(*) FROM horarios WHERE turno = 'MATUTINO'"), 0);
        QCOMPARE(turnos().size(), antes.size() - 1);
        QVERIFY(!f->lv(0)->buscaClave("PMATUTINO"));
    }

    // The second deletion fails (the table is gone): the report names the procedure, the
    // shift row deleted before the failure stays deleted, the window stays usable.
    void eliminaConFallaAMedias()
    {
        auto f = abreCatalogo(m_base->ambiente());
        QVERIFY(f);
        clicEnElemento(f->lv(0), f->lv(0)->buscaClave("PMATUTINO"));
        m_base->ejecuta("DROP TABLE turnoempleado");
        m_guion->respuestas({true});
        atajo(f, Qt::Key_E);
        QCOMPARE(m_guion->reportes().size(), 1);
        QVERIFY(m_guion->reportes().first().startsWith(
            "Error occured:\r\nModule: frmTurnos\r\nFunction: cmdEliminar_Click\r\n"));
        QCOMPARE(cuenta("SELECT COUNT(*) FROM turnos WHERE turno = 'MATUTINO'"), 0);
        QVERIFY(cuenta("SELECT COUNT(*) FROM horarios WHERE turno = 'MATUTINO'") > 0);
        QVERIFY(f->isVisible() && f->isEnabled());
    }

    // A key with a quote (the host refuses every spelling of it: see the schema's checks), or
    // the key of a shift that exists, is refused by the host before its statement runs: reported by
    // SalvaCambios in frmTurno in Spanish, naming the key, nothing written, the editor still open.
    void claveConComilla()
    {
        const std::pair<const char *, const char *> casos[] = {
            {"O'Brien", "\"O'Brien\" no es una clave válida de turno"},
            {"MATUTINO", "Ya existe un turno con la clave \"MATUTINO\"."}};
        for (const auto &caso : casos) {
            const QString clave = caso.first, causa = caso.second;
            auto f = abreCatalogo(m_base->ambiente());
            QVERIFY(f);
            const int empleados = cuenta("SELECT COUNT(*) FROM empleados");
            const QStringList antes = turnos();
            bool abierta = false;
            m_guion->olvida();
            enEditor([&](frmTurno *e) {
                tecleaCampos(e, {clave, "07:00", "11:00", "15:00", "Lunes", "11:30"});
                agrega(e, {"E006"});
                atajo(e, Qt::Key_A);
                abierta = e->isVisible() && !e->descargada();
            });
            atajo(f, Qt::Key_N);
            QVERIFY2(abierta, caso.first);
            QCOMPARE(m_guion->reportes().size(), 1);
            QVERIFY2(m_guion->reportes().first().startsWith(
                         "Error occured:\r\nModule: frmTurno\r\nFunction: SalvaCambios\r\n"
                         "Description: " +
                         causa),
                     qPrintable(m_guion->reportes().first()));
            QCOMPARE(turnos(), antes);
            QCOMPARE(cuenta("SELECT COUNT(*) FROM turnoempleado WHERE empleado = 'E006'"), 0);
            QCOMPARE(cuenta("SELECT COUNT(*) FROM empleados"), empleados);
            cierraTodo();
        }
    }

    // Escape with a time list open closes only the list; Escape in the editor then asks
    // before losing what was typed: "no" keeps the editor, "yes" closes it.
    void escapeCierraLaListaYPreguntaAntesDeDescartar()
    {
        auto f = abreCatalogo(m_base->ambiente());
        QVERIFY(f);
        m_guion->respuestas({false, true});
        QStringList vistos;
        enEditor([&](frmTurno *editor) {
            QPointer<frmTurno> e(editor);
            QTest::keyClicks(e->cmbFields(0), "MIXTO");
            QTest::keyClick(e->windowHandle(), Qt::Key_Tab);
            QTest::keyClick(e->windowHandle(), Qt::Key_Down, Qt::AltModifier);
            QWidget *lista = QApplication::activePopupWidget();
            if (!lista)
                return;
            QTest::keyClick(lista, Qt::Key_Escape);
            const auto estado = [&] {
                return QStringLiteral("%1 %2 %3")
                    .arg(e && !e->descargada())
                    .arg(QApplication::activePopupWidget() != nullptr)
                    .arg(e ? e->texto(0) : QString());
            };
            vistos << estado();
            QTest::keyClick(e->windowHandle(), Qt::Key_Escape);
            vistos << estado();
            QTest::keyClick(e->windowHandle(), Qt::Key_Escape);
            vistos << QString::number(e.isNull() || e->descargada());
        });
        atajo(f, Qt::Key_N);
        QCOMPARE(vistos, (QStringList{"1 0 MIXTO", "1 0 MIXTO", "1"}));
        QCOMPARE(m_guion->preguntas().size(), 2);
        QVERIFY(m_guion->preguntas().first().contains("MIXTO"));
    }

    // A new shift is checked before anything is written: a key that exists (looked for with
    // a blank after the quote, so " X" is found for "X") with 832, then the empty fields in
    // the order 0, 1, 2, 5, 3, 4 with 833..838, only the first one reported, the focus on
    // it; the editor stays open.
    void altaRevisaLosCampos()
    {
        m_base->ejecuta("INSERT INTO turnos (turno) VALUES (' X')");
        const struct
        {
            int campo; // left blank, with every field after it in the order empty
            int mensaje;
        } casos[] = {{-1, 832}, {0, 833}, {1, 834}, {2, 835}, {5, 836}, {3, 837}, {4, 838}};
        auto f = abreCatalogo(m_base->ambiente());
        QVERIFY(f);
        const QStringList antes = turnos();
        QStringList vistos, esperados;
        enEditor([&](frmTurno *editor) {
            QPointer<frmTurno> e(editor); // a save that gets through closes it
            for (size_t n = 0; n < std::size(casos) && e; ++n) {
                const auto &c = casos[n];
                QStringList v{"NUEVO", "07:00", "11:00", "15:00", "Lunes", "11:30"};
                if (c.campo < 0)
                    v[0] = "X";
                else
                    v[c.campo] = "  ";
                for (size_t m = n + 1; m < std::size(casos) && c.campo >= 0; ++m)
                    v[casos[m].campo].clear();
                for (int i = 0; i < 6; ++i)
                    e->cmbFields(i)->setEditText(v[i]);
                m_guion->olvida();
                atajo(e, Qt::Key_A);
                const int foco = c.campo < 0 ? 0 : c.campo;
                if (!e || e->descargada()) {
                    vistos << "guardado";
                    break;
                }
                vistos << m_guion->textosMensajes().join('|') +
                              (QApplication::focusWidget() == e->cmbFields(foco) ? ""
                                                                                 : " sin foco") +
                              (e->isVisible() ? "" : " cerrada");
                esperados << m_base->mensaje(c.mensaje);
            }
        });
        atajo(f, Qt::Key_N);
        QCOMPARE(vistos, esperados);
        QCOMPARE(turnos(), antes);
    }

    // A member with no employees row is listed with an empty name and blocks moving one
    // employee in (839); saving without touching it keeps it.
    void miembroSinEmpleado()
    {
        m_base->ejecuta("INSERT INTO turnoempleado (turno, empleado) VALUES ('MATUTINO', 'X99')");
        auto f = abreCatalogo(m_base->ambiente());
        QVERIFY(f);
        clicEnElemento(f->lv(0), f->lv(0)->buscaClave("PMATUTINO"));
        QStringList lista, todos;
        int todosDespues = 0;
        enEditor([&](frmTurno *e) {
            lista = textos(e->lv(1), 2);
            agrega(e, {"E006"});
            atajo(e, Qt::Key_A);
        });
        atajo(f, Qt::Key_M);
        clicEnElemento(f->lv(0), f->lv(0)->buscaClave("PMATUTINO"));
        enEditor([&](frmTurno *e) { // moving all of them is not refused; closed unsaved
            todos = textos(e->lv(1), 1);
            clic(e->cmdButton(2));
            todosDespues = e->lv(1)->cuenta();
        });
        atajo(f, Qt::Key_M);
        QVERIFY(lista.contains("PX99|X99|"));
        QVERIFY(!todos.contains("PE006|E006"));
        QVERIFY(todosDespues > todos.size());
        QCOMPARE(m_guion->mensajes().size(), 1);
        QCOMPARE(m_guion->mensajes().first().estilo, 64);
        QVERIFY(m_guion->mensajes().first().texto.contains("catálogo de empleados"));
        QCOMPARE(filas("SELECT empleado FROM turnoempleado WHERE turno = 'MATUTINO' ORDER BY "
                       "empleado"),
                 (QStringList{"E001", "E002", "E003", "X99"}));
    }

    // "&Generar horarios" for the week of the selected shift and date (18 rows: 3 members,
    // 6 days), the employee's older rows in the week replaced, the same rows when run again;
    // Enter on a date in the calendar shows them. What a run writes and says is the host's.
    void generaUnaSemana()
    {
        m_base->ejecuta("INSERT INTO horarios (turno, fecha, Empleado, HoraEntrada, comida, "
                        "HoraSalida) VALUES ('VESPERTINO', '2024-05-08', 'E001', '15:00', "
                        "'19:00', '23:00')");
        auto f = abreCatalogo(m_base->ambiente());
        QVERIFY(f);
        clicEnElemento(f->lv(0), f->lv(0)->buscaClave("PMATUTINO"));
        f->MonthView1->setSelectedDate(QDate(2024, 5, 6)); // a Monday
        f->Combo1->setFocus();
        QTest::keyClick(f->windowHandle(), Qt::Key_Down); // "Semana"
        QCOMPARE(f->Combo1->currentText(), QStringLiteral("Semana"));
        const QString semana = "SELECT Empleado, fecha, turno, HoraEntrada, comida, HoraSalida "
                               "FROM horarios WHERE fecha >= '2024-05-06' AND fecha <= "
                               "'2024-05-12' ORDER BY Empleado, fecha";
        QStringList primera;
        for (int vez = 0; vez < 2; ++vez) {
            atajo(f, Qt::Key_G);
            QVERIFY(m_guion->reportes().isEmpty());
            QCOMPARE(m_guion->mensajes().size(), vez + 1);
            const QStringList r = filas(semana);
            if (vez == 0)
                primera = r;
            QCOMPARE(r, primera);
        }
        QCOMPARE(primera.size(), 18);
        QVERIFY(primera.contains("E001|2024-05-08|MATUTINO|07:00|11:00|15:00"));
        QVERIFY(!primera.join(',').contains("VESPERTINO"));
        // The list still shows the old rows until a date is chosen.
        f->MonthView1->setSelectedDate(QDate(2024, 5, 7));
        f->MonthView1->setFocus();
        QTest::keyClick(f->windowHandle(), Qt::Key_Return);
        QCOMPARE(f->lv(1)->cuenta(), 3);
        QCOMPARE(f->lv(1)->elemento(1)->text(2).left(10), QStringLiteral("2024-05-07"));
    }

    // The employee column read as a date when it is one, or a day number.
    void formatoDeFecha()
    {
        const struct
        {
            QVariant valor;
            const char *texto;
        } casos[] = {{"E001", "E001"},
                     {"45414", "02-05-2024"},
                     {0, "30-12-1899"},
                     {QDate(2024, 2, 29), "29-02-2024"},
                     {"2024-05-06", "06-05-2024"},
                     {"99999999999", "99999999999"},
                     {QVariant(), ""}};
        for (const auto &c : casos)
            QCOMPARE(zuvi::turnos::formatoFecha(c.valor), QString::fromUtf8(c.texto));
    }
};

QTEST_MAIN(TstFrmTurnos)
#include "tst_frmturnos.moc"
