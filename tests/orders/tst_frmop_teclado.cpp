// The order editor used from the keyboard: the header fields' navigation,
// filters, lookups and secondary keys, the window's function keys, pasting,
// the article list, and editing the grid in place. Lookups and the numeric
// pad are scripted: they record what they were asked for.

#include "BancoEditor.h"

#include "controls/MultiCombo.h"
#include "runtime/ClassRegistry.h"

#include <QCalendarWidget>
#include <QClipboard>
#include <QDateEdit>
#include <QMimeData>
#include <QTextEdit>

using namespace zuvi;
using namespace zuvi::pruebas;

namespace {

// "Clase: caption | target | filter | field with the focus" per lookup shown.
QStringList consultas;
QString eleccion; // what the lookup writes into its target, when not empty

// The host's lookup or pad, scripted: bound to an environment and a target box.
template <typename Servicio> class Guionado : public Servicio
{
public:
    void PonAmbiente(Ambiente *a) override { m_ambiente = a; }
    void PonDestino(QLineEdit *d) override { m_destino = d; }

protected:
    void anota(const QString &linea)
    {
        QVERIFY(m_ambiente && m_destino);
        consultas << linea;
    }
    Ambiente *m_ambiente = nullptr;
    QLineEdit *m_destino = nullptr;
};

class BuscaGuionada : public Guionado<BuscaCatalogo>
{
public:
    void Muestra(const QString &titulo, const QString &filtro, const QString &, const QString &,
                 const QVariant &) override
    {
        anota("BuscaCatalogo: " + titulo + " | " + m_destino->objectName() + " | " + filtro +
              " | " + BancoEditor::foco(m_destino));
        if (!eleccion.isEmpty())
            m_destino->setText(eleccion);
    }
};

class TecladoGuionado : public Guionado<CapturaNumerica>
{
public:
    void Muestra() override { anota("CapturaNumerica: " + m_destino->objectName()); }
};

void pega(const QByteArray &bytes)
{
    auto *datos = new QMimeData;
    datos->setData(QStringLiteral("text/plain"), bytes);
    QGuiApplication::clipboard()->setMimeData(datos);
}

} // namespace

class TstFrmOpTeclado : public QObject, public BancoEditor
{
    Q_OBJECT

    static void pulsa(frmOp *f, int campo, Qt::Key tecla, Qt::KeyboardModifiers mod = {})
    {
        f->txtFields(campo)->setFocus();
        QTest::keyClick(f->windowHandle(), tecla, mod);
    }
    QString cantidad(const QString &id)
    {
        return base->escalar("SELECT cantidad FROM oppart WHERE id_entrada = " + id).toString();
    }

private Q_SLOTS:
    void initTestCase()
    {
        preparaClase();
        QVERIFY(etiquetasReales);
    }
    void init()
    {
        prepara();
        ClassRegistry::instance().add(QStringLiteral("BuscaCatalogo"),
                                      [] { return new BuscaGuionada; });
        ClassRegistry::instance().add(QStringLiteral("CapturaNumerica"),
                                      [] { return new TecladoGuionado; });
        consultas.clear();
        eleccion.clear();
    }
    void cleanup() { limpia(); }

    // Each row of the field keys: where the focus goes and which lookup opens (F2 opens the
    // lookup of the field it was pressed in, after the focus moved to the article field).
    void teclasDeLosCampos()
    {
        const struct
        {
            int campo;
            Qt::Key tecla;
            int apagado; // the field disabled, -1 none
            int foco;
            const char *consulta = "";
            Qt::KeyboardModifiers mod = {};
        } casos[] = {
            {0, Qt::Key_Return, -1, 14},
            {0, Qt::Key_Tab, -1, 14},
            {0, Qt::Key_Return, 14, 0},
            {4, Qt::Key_Return, -1, 5},
            {4, Qt::Key_Return, 5, 4},
            {11, Qt::Key_Return, -1, 11}, // nothing
            {14, Qt::Key_Return, -1, 4},
            {14, Qt::Key_Return, -1, 4, "", Qt::ShiftModifier}, // as Enter
            {16, Qt::Key_Tab, -1, 15, "", Qt::ShiftModifier},   // back
            {16, Qt::Key_Tab, -1, 4},
            {15, Qt::Key_Return, -1, 16},
            {15, Qt::Key_Return, 16, 4},
            {28, Qt::Key_Return, -1, 29},
            {29, Qt::Key_Return, -1, 6},
            {4, Qt::Key_F8, -1, 24},
            {5, Qt::Key_F8, -1, 24},
            {6, Qt::Key_F8, 24, 6},
            {24, Qt::Key_F8, -1, 28},
            {28, Qt::Key_F8, -1, 29},
            {29, Qt::Key_F8, -1, 6},
            {14, Qt::Key_F8, -1, 14}, // nothing
            {0, Qt::Key_F2, -1, 4,
             "BuscaCatalogo: Conceptos de Op al inventario | txtFields_0 |  | txtFields_4"},
            {4, Qt::Key_F2, -1, 4, "BuscaCatalogo: Articulos | txtFields_4 |  | txtFields_4"},
            {14, Qt::Key_F2, -1, 4, "BuscaCatalogo: Almacenes | txtFields_14 |  | txtFields_4"},
            {14, Qt::Key_F2, 4, 14, "BuscaCatalogo: Almacenes | txtFields_14 |  | txtFields_14"},
            {11, Qt::Key_F2, -1, 4},                                  // no catalogue
            {16, Qt::Key_F2, -1, 4, "CapturaNumerica: txtFields_16"}, // "N": the pad
            {15, Qt::Key_F2, -1, 4},                                  // "U": nothing
            {24, Qt::Key_F2, -1, 4},                                  // "U": nothing
            {4, Qt::Key_Down, -1, 4,
             "BuscaCatalogo: Articulos | txtFields_4 | kit <> 0 | txtFields_4"}, // the kits
        };
        auto f = abre();
        QVERIFY(f);
        const int lineas = cuenta("oppart");
        for (const auto &c : casos) {
            for (int i : {0, 4, 5, 14, 16, 24, 28, 29})
                f->txtFields(i)->setEnabled(i != c.apagado);
            consultas.clear();
            pulsa(f, c.campo, c.tecla, c.mod);
            QCOMPARE(foco(f), "txtFields_" + QString::number(c.foco));
            QCOMPARE(consultas.join('\n'), QString::fromUtf8(c.consulta));
        }
        QVERIFY2(ui->reportes().isEmpty(), qPrintable(ui->reportes().join('\n')));
        QCOMPARE(cuenta("oppart"), lineas); // no line added by any of them
    }

    // A double-click opens the same lookups; F5 in any field finishes the order.
    void dobleClicYF5()
    {
        auto f = abre();
        QVERIFY(f);
        eleccion = QStringLiteral("3");
        QTest::mouseDClick(f->txtFields(14), Qt::LeftButton);
        QTest::mouseDClick(f->txtFields(11), Qt::LeftButton);
        QTest::mouseDClick(f->txtFields(16), Qt::LeftButton);
        QCOMPARE(consultas,
                 (QStringList{"BuscaCatalogo: Almacenes | txtFields_14 |  | txtFields_14",
                              "CapturaNumerica: txtFields_16"}));
        QCOMPARE(f->txtFields(14)->text(), QStringLiteral("3"));
        ui->respuestas({false});
        pulsa(f, 16, Qt::Key_F5);
        QCOMPARE(ui->preguntas(), QStringList{mensaje(759)});
    }

    // Without the host's lookup class the report names the handler; the field keeps its text.
    void sinClaseDeCatalogo()
    {
        ClassRegistry::instance().remove(QStringLiteral("BuscaCatalogo"));
        auto f = abre();
        QVERIFY(f);
        f->txtFields(4)->setText("TORN-01");
        pulsa(f, 4, Qt::Key_F2);
        QCOMPARE(ui->reportes().size(), 1);
        QVERIFY2(ui->reportes().first().contains("Function: txtFields_KeyDown\r\n"),
                 qPrintable(ui->reportes().first()));
        QCOMPARE(f->txtFields(4)->text(), QStringLiteral("TORN-01"));
    }

    // F8 from field 24 fetches the article of a secondary key (even with field 28 off). An
    // unknown or empty key clears the details and leaves fields 4 and 1; a quote or a stacked
    // statement fails, is reported under TraeSegundaClave and changes nothing.
    void traeSegundaClave()
    {
        const struct
        {
            const char *clave;
            bool apaga28;
            const char *campos; // 4|1|25|26|28|29 afterwards
            bool reporte;
        } casos[] = {
            {"REP-NEGRA", false, "REPISA|Repisa flotante|a|b|c|d", false},
            {"REP-NEGRA", true, "REPISA|Repisa flotante|a|b|c|d", false},
            {"NOEXISTE", false, "TORN-01|algo||||", false},
            {"", false, "TORN-01|algo||||", false},
            {"O'BRIEN", false, "TORN-01|algo|a|b|c|d", true},
        };
        auto f = abre();
        QVERIFY(f);
        const int ops = cuenta("op"), lineas = cuenta("oppart");
        const QList<int> indices{4, 1, 25, 26, 28, 29};
        const QStringList antes{"TORN-01", "algo", "a", "b", "c", "d"};
        for (const auto &c : casos) {
            ui->olvida();
            f->txtFields(24)->setFocus(); // leaving field 4 first would fill field 1
            f->txtFields(24)->clear();
            for (int i = 0; i < indices.size(); ++i)
                f->txtFields(indices[i])->setText(antes[i]);
            f->txtFields(28)->setEnabled(!c.apaga28);
            teclea(f, QString::fromUtf8(c.clave) + "{F8}");
            QStringList despues;
            for (int i : indices)
                despues << f->txtFields(i)->text();
            QCOMPARE(despues.join('|'), QString::fromUtf8(c.campos));
            QCOMPARE(ui->reportes().size(), c.reporte ? 1 : 0);
            if (c.reporte)
                QVERIFY2(ui->reportes().first().contains("Function: TraeSegundaClave\r\n"),
                         qPrintable(ui->reportes().first()));
            QCOMPARE(foco(f), c.apaga28 ? QStringLiteral("txtFields_24") : "txtFields_28");
        }
        QCOMPARE(cuenta("op") * 1000 + cuenta("oppart"), ops * 1000 + lineas);
    }

    // A field that fills up moves on as Enter would, typed or pasted; a paste is cut to the
    // field's length and filtered by the field's tag. (Control characters and undecodable
    // bytes in a paste are the window's to drop.)
    void llenoYPegado()
    {
        const struct
        {
            int campo;
            QByteArray pegado; // empty: typed instead
            QString texto;
            int foco;
        } casos[] = {
            {14, {}, "1234", 4},
            {14, "0003", "3", 4},
            {14, "98765", "9876", 4},
            {14, "12", "12", 14},
            {4, QByteArray(10240, 'a'), QString(30, 'A'), 5},
            {5, "1a2.5b", "12.5", 5},
        };
        auto f = abre();
        QVERIFY(f);
        for (const auto &c : casos) {
            f->txtFields(c.campo)->clear();
            f->txtFields(c.campo)->setFocus();
            if (c.pegado.isEmpty()) {
                QTest::keyClicks(f->txtFields(c.campo), c.texto);
            } else {
                pega(c.pegado);
                QTest::keyClick(f->windowHandle(), Qt::Key_V, Qt::ControlModifier);
            }
            QCOMPARE(f->txtFields(c.campo)->text(), c.texto);
            QCOMPARE(foco(f), "txtFields_" + QString::number(c.foco));
        }
        QVERIFY2(ui->reportes().isEmpty(), qPrintable(ui->reportes().join('\n')));
    }

    // The reader starts as the station says; F3 toggles it and, turning it on, puts the focus
    // on the article field; with it a code and Enter add a line of one. F9 adds the typed line;
    // F6 runs the code generation, and F3 toggles the reader, in every mode, whatever their
    // controls' state.
    void teclasDeLaVentana()
    {
        base->ejecuta("UPDATE estaciones SET lector = 1"); // the station's reader starts on
        auto f = abre();
        QVERIFY(f && f->Check4->isChecked());
        for (const bool lector : {false, true}) {
            pulsa(f, 14, Qt::Key_F3);
            QCOMPARE(f->Check4->isChecked(), lector);
            QCOMPARE(foco(f), lector ? "txtFields_4" : "txtFields_14");
        }
        teclea(f, "7501000000011⏎tuer-01⏎");
        QCOMPARE(partidas(f->Op).size(), 2);
        QCOMPARE(f->fg2->TextMatrix(2, 0) + ' ' + f->fg2->TextMatrix(2, 1),
                 QStringLiteral("TUER-01 1"));
        pulsa(f, 14, Qt::Key_F3);
        QVERIFY(!f->Check4->isChecked());
        f->txtFields(4)->setText("TAB-01");
        f->txtFields(5)->setText("4");
        pulsa(f, 14, Qt::Key_F9);
        QCOMPARE(partidas(f->Op).size(), 3);
        QCOMPARE(f->fg2->TextMatrix(3, 0) + ' ' + f->fg2->TextMatrix(3, 1),
                 QStringLiteral("TAB-01 4"));
        pulsa(f, 14, Qt::Key_F6);
        QVERIFY(procesos.contains("OP007 -1"));
        f->descarga();
        procesos.clear();
        p->ConsultaOp(1);
        f = editor();
        QVERIFY(f && f->Check4->isChecked()); // as the station says, in this mode too
        QTest::keyClick(f->windowHandle(), Qt::Key_F6);
        QTest::keyClick(f->windowHandle(), Qt::Key_F3);
        QVERIFY(procesos.contains("OP007 -1") && !f->Check4->isChecked());
        QVERIFY2(ui->reportes().isEmpty(), qPrintable(ui->reportes().join('\n')));
    }

    // Alt+Down and F4 drop the date picker's calendar instead of stepping the year.
    void calendarioConAltAbajoYF4()
    {
        auto f = abre();
        QVERIFY(f);
        const QDate antes = f->DTPicker2->date();
        for (const QKeyCombination tecla :
             {Qt::AltModifier | Qt::Key_Down, QKeyCombination(Qt::Key_F4)}) {
            f->DTPicker2->setFocus();
            QTest::keyClick(f->windowHandle(), tecla.key(), tecla.keyboardModifiers());
            QWidget *calendario = QApplication::activePopupWidget();
            QVERIFY(calendario && calendario->findChild<QCalendarWidget *>());
            calendario->close();
            QCOMPARE(f->DTPicker2->date(), antes);
        }
        delete f.data(); // with its calendar, which is a window of its own
    }

    // A typed date that is not in the calendar is refused with a message naming it, even
    // where the spin box had lowered the day to fit; the picker keeps its date and the focus.
    void fechasTecleadas()
    {
        const struct
        {
            const char *tecleado, *aviso;
            QDate queda;
        } casos[] = {{"31022024", "La fecha \"31/02/2024\" no existe", {}},
                     {"29022023", "La fecha \"29/02/2023\" no existe", {}},
                     {"29022024", "", {2024, 2, 29}}};
        auto f = abre();
        QVERIFY(f);
        for (const auto &c : casos) {
            ui->olvida();
            const QDate antes = f->DTPicker1->date();
            f->DTPicker1->setFocus();
            f->DTPicker1->setSelectedSection(QDateTimeEdit::DaySection);
            teclea(f, QString::fromLatin1(c.tecleado) + "⇥");
            const QString aviso = ui->textosMensajes().join('|');
            QVERIFY2(*c.aviso ? aviso.startsWith(QString::fromUtf8(c.aviso)) : aviso.isEmpty(),
                     qPrintable(aviso));
            QCOMPARE(f->DTPicker1->date(), c.queda.isValid() ? c.queda : antes);
            QCOMPARE(foco(f), c.queda.isValid() ? "DTPicker2" : "DTPicker1");
        }
    }

    // Down under field 4 (after the kit lookup) drops the article list, narrowed by what the
    // field holds; Down/Up move, Enter writes the code, Escape closes it.
    void listaDeArticulos()
    {
        auto f = abre();
        QVERIFY(f);
        f->txtFields(4)->setFocus();
        QTest::keyClicks(f->txtFields(4), "torn");
        QTest::keyClick(f->windowHandle(), Qt::Key_Down);
        QCOMPARE(consultas.size(), 1);
        QTableWidget *lista = f->MultiCombo1->lista();
        QVERIFY(lista && lista->isVisible());
        const auto filasDeLista = [&] {
            QStringList r;
            for (int i = 0; i < lista->rowCount(); ++i)
                r << lista->item(i, 0)->text() + '/' + lista->item(i, 2)->text();
            return r.join(' ');
        };
        QCOMPARE(filasDeLista(), QStringLiteral("PAQ-TORN/PAQ TORN-01/PZA"));
        QCOMPARE(f->txtFields(4)->cursorPosition(), 0); // the list put the caret first
        QTest::keyClick(f->windowHandle(), Qt::Key_End);
        for (int i = 0; i < 4; ++i)
            QTest::keyClick(f->windowHandle(), Qt::Key_Backspace);
        QCOMPARE(lista->rowCount(), cuenta("prods"));
        QTest::keyClicks(f->txtFields(4), "TORNILLER");
        QCOMPARE(filasDeLista(), QStringLiteral("PAQ-TORN/PAQ")); // tornillería, no accent typed
        QTest::keyClick(f->windowHandle(), Qt::Key_Escape);
        QVERIFY(!lista->isVisible());
        f->txtFields(4)->setText("T");
        QTest::keyRelease(f->windowHandle(), Qt::Key_Down); // the list, without the kit lookup
        QVERIFY(lista->isVisible());
        QTest::keyClick(f->windowHandle(), Qt::Key_Down);
        QTest::keyClick(f->windowHandle(), Qt::Key_Down);
        QTest::keyClick(f->windowHandle(), Qt::Key_Up);
        QTest::keyClick(f->windowHandle(), Qt::Key_Return);
        QVERIFY(!lista->isVisible());
        QCOMPARE(f->txtFields(4)->text(), lista->item(1, 0)->text());
        QCOMPARE(foco(f), QStringLiteral("txtFields_4"));
        QCOMPARE(consultas.size(), 1);
        QVERIFY(ui->reportes().isEmpty());
    }

    // The cell editor over a quantity: it covers the cell exactly; Enter and the arrows write
    // the edit back and save it, Escape discards it; Up in the first row stays there.
    void editorDeCelda()
    {
        const struct
        {
            int fila;
            const char *tecla;
            bool guarda; // the edit, "75", written back and saved
            int filaDespues;
        } casos[] = {{1, "⏎", true, 1},
                     {1, "⎋", false, 1},
                     {1, "↑", true, 1},
                     {1, "↓", true, 2},
                     {2, "↑", true, 1}};
        for (const auto &c : casos) {
            deNuevo();
            auto f = abre(1);
            QVERIFY(f);
            const QString antes = f->fg2->TextMatrix(c.fila, 1);
            const QString id = f->fg2->TextMatrix(c.fila, 5);
            f->fg2->setFocus();
            f->fg2->SetRow(c.fila);
            f->fg2->SetCol(1);
            teclea(f, "7x5");
            QVERIFY(f->txtEdit->isVisible());
            const QRect r = f->fg2->visualRect(f->fg2->model()->index(c.fila - 1, 1));
            QCOMPARE(f->txtEdit->geometry(),
                     QRect(f->fg2->viewport()->mapTo(f, r.topLeft()), r.size()));
            QCOMPARE(f->txtEdit->text(), QStringLiteral("75"));
            teclea(f, QString::fromUtf8(c.tecla));
            QVERIFY(!f->txtEdit->isVisible());
            QCOMPARE(foco(f), QStringLiteral("fg2"));
            QCOMPARE(f->fg2->TextMatrix(c.fila, 1), c.guarda ? "75" : antes);
            QCOMPARE(cantidad(id), c.guarda ? "75" : antes);
            QCOMPARE(f->fg2->Row(), c.filaDespues);
            QCOMPARE(f->fg2->CellAlignment(), 3); // a visited cell is centred
            QVERIFY2(ui->reportes().isEmpty(), qPrintable(ui->reportes().join('\n')));
        }
    }

    // No editor on a line without an article, in column 0, beyond column 2, or in a
    // view-only order; but the typed character still went through the key filter ('x'
    // refused, '5' taken) except on an empty line.
    void sinEditor()
    {
        const struct
        {
            bool consulta;
            int fila, columna;
            const char *filtrado;
        } casos[] = {{false, 3, 1, ""}, {false, 1, 0, "5"}, {false, 1, 3, "5"}, {true, 1, 1, "5"}};
        for (const auto &c : casos) {
            deNuevo();
            c.consulta ? p->ConsultaOp(1) : p->ModificaOp(1);
            auto f = editor();
            QVERIFY(f);
            f->fg2->setEnabled(true);
            f->fg2->setFocus();
            f->fg2->SetRow(c.fila);
            f->fg2->SetCol(c.columna);
            teclea(f, "x5");
            QVERIFY(!f->txtEdit->isVisible());
            QCOMPARE(f->txtEdit->text(), QString::fromUtf8(c.filtrado));
            QCOMPARE(f->fg2->Row() * 10 + f->fg2->Col(), c.fila * 10 + c.columna); // not moved
            // A double-click opens it only where typing would.
            const QRect r = f->fg2->visualRect(f->fg2->model()->index(c.fila - 1, c.columna));
            QTest::mouseDClick(f->fg2->viewport(), Qt::LeftButton, {}, r.center());
            QVERIFY(!f->txtEdit->isVisible());
            QVERIFY(ui->reportes().isEmpty());
        }
    }

    // A double-click on a quantity opens the editor with the cell's text, caret at the end.
    void dobleClicEnCantidad()
    {
        auto f = abre(1);
        QVERIFY(f);
        f->fg2->setFocus();
        f->fg2->SetCol(1);
        const QRect r = f->fg2->visualRect(f->fg2->model()->index(1, 1));
        QTest::mouseClick(f->fg2->viewport(), Qt::LeftButton, {}, r.center());
        QTest::mouseDClick(f->fg2->viewport(), Qt::LeftButton, {}, r.center());
        QVERIFY(f->txtEdit->isVisible());
        QCOMPARE(f->txtEdit->text(), QStringLiteral("2"));
        QCOMPARE(f->txtEdit->cursorPosition(), 1);
        teclea(f, "5");
        QTest::keyClick(f->windowHandle(), Qt::Key_Return);
        QCOMPARE(cantidad(f->fg2->TextMatrix(2, 5)), QStringLiteral("25"));
    }

    // Tab and Shift+Tab leave the grid for its neighbours, not for its next cell. F8 in the
    // observations box goes to the article field; other keys are the box's.
    void rejillaYObservacionesEnLaCadenaDeFoco()
    {
        auto f = abre(1);
        QVERIFY(f);
        for (const auto &[tecla, destino] : {std::pair{Qt::NoModifier, "RichTextBox2"},
                                             std::pair{Qt::ShiftModifier, "txtFields_29"}}) {
            f->fg2->setFocus();
            QTest::keyClick(f->windowHandle(), Qt::Key_Tab, tecla);
            QCOMPARE(foco(f), QString::fromLatin1(destino));
        }
        f->RichTextBox2->clear();
        f->RichTextBox2->setFocus();
        teclea(f, "Urgente");
        QTest::keyClick(f->windowHandle(), Qt::Key_F8);
        QCOMPARE(f->RichTextBox2->toPlainText(), QStringLiteral("Urgente"));
        QCOMPARE(foco(f), QStringLiteral("txtFields_4"));
    }
};

QTEST_MAIN(TstFrmOpTeclado)
#include "tst_frmop_teclado.moc"
