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

QString enfocado(const QWidget *w)
{
    const QWidget *f = w->window()->focusWidget();
    return f ? f->objectName() : QString();
}

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
              " | " + enfocado(m_destino));
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

    QPointer<frmOp> abre(qint32 op = 0)
    {
        if (op == 0)
            p->NuevaOp();
        else
            p->ModificaOp(op);
        return editor();
    }
    static void pulsa(frmOp *f, int campo, Qt::Key tecla, Qt::KeyboardModifiers mod = {})
    {
        f->txtFields(campo)->setFocus();
        QTest::keyClick(f->windowHandle(), tecla, mod);
    }
    // Types into whichever control has the focus at each character.
    static void escribe(frmOp *f, const char *texto)
    {
        for (const char *c = texto; *c; ++c)
            QTest::keyClick(f->windowHandle(), *c);
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
    void teclasDeLosCampos_data()
    {
        QTest::addColumn<int>("campo");
        QTest::addColumn<int>("tecla");
        QTest::addColumn<QList<int>>("apagados");
        QTest::addColumn<QString>("foco");
        QTest::addColumn<QString>("consulta");
        const QList<int> no;
        const auto fila = [&](const char *nombre, int campo, int tecla, QList<int> apagados,
                              int foco, const QString &consulta = QString()) {
            QTest::newRow(nombre) << campo << tecla << apagados
                                  << "txtFields_" + QString::number(foco) << consulta;
        };
        fila("0 Enter", 0, Qt::Key_Return, no, 14);
        fila("0 Tab", 0, Qt::Key_Tab, no, 14);
        fila("0 Enter, 14 apagado", 0, Qt::Key_Return, {14}, 0);
        fila("4 Enter", 4, Qt::Key_Return, no, 5);
        fila("4 Enter, 5 apagado", 4, Qt::Key_Return, {5}, 4);
        fila("11 Enter: nada", 11, Qt::Key_Return, no, 11);
        fila("14 Enter", 14, Qt::Key_Return, no, 4);
        fila("14 Mayús+Enter, como Enter", 14, (Qt::ShiftModifier | Qt::Key_Return).toCombined(),
             no, 4);
        fila("16 Mayús+Tab: atrás", 16, (Qt::ShiftModifier | Qt::Key_Tab).toCombined(), no, 15);
        fila("16 Tab", 16, Qt::Key_Tab, no, 4);
        fila("15 Enter", 15, Qt::Key_Return, no, 16);
        fila("15 Enter, 16 apagado", 15, Qt::Key_Return, {16}, 4);
        fila("28 Enter", 28, Qt::Key_Return, no, 29);
        fila("29 Enter", 29, Qt::Key_Return, no, 6);
        fila("4 F8", 4, Qt::Key_F8, no, 24);
        fila("5 F8", 5, Qt::Key_F8, no, 24);
        fila("6 F8, 24 apagado", 6, Qt::Key_F8, {24}, 6);
        fila("24 F8", 24, Qt::Key_F8, no, 28);
        fila("28 F8", 28, Qt::Key_F8, no, 29);
        fila("29 F8", 29, Qt::Key_F8, no, 6);
        fila("14 F8: nada", 14, Qt::Key_F8, no, 14);
        fila("0 F2", 0, Qt::Key_F2, no, 4,
             "BuscaCatalogo: Conceptos de Op al inventario | txtFields_0 |  | txtFields_4");
        fila("4 F2", 4, Qt::Key_F2, no, 4,
             "BuscaCatalogo: Articulos | txtFields_4 |  | txtFields_4");
        fila("14 F2", 14, Qt::Key_F2, no, 4,
             "BuscaCatalogo: Almacenes | txtFields_14 |  | txtFields_4");
        fila("14 F2, 4 apagado", 14, Qt::Key_F2, {4}, 14,
             "BuscaCatalogo: Almacenes | txtFields_14 |  | txtFields_14");
        fila("11 F2: sin catálogo", 11, Qt::Key_F2, no, 4);
        fila("16 F2: N abre el teclado", 16, Qt::Key_F2, no, 4, "CapturaNumerica: txtFields_16");
        fila("15 F2: U, nada", 15, Qt::Key_F2, no, 4);
        fila("24 F2: U, nada", 24, Qt::Key_F2, no, 4);
        fila("4 Abajo: kits", 4, Qt::Key_Down, no, 4,
             "BuscaCatalogo: Articulos | txtFields_4 | kit <> 0 | txtFields_4");
    }
    void teclasDeLosCampos()
    {
        QFETCH(int, campo);
        QFETCH(int, tecla);
        QFETCH(QList<int>, apagados);
        QFETCH(QString, foco);
        QFETCH(QString, consulta);
        auto f = abre();
        QVERIFY(f);
        const int lineas = cuenta("oppart");
        for (int i : apagados)
            f->txtFields(i)->setEnabled(false);
        const QKeyCombination combinacion = QKeyCombination::fromCombined(tecla);
        pulsa(f, campo, combinacion.key(), combinacion.keyboardModifiers());
        QCOMPARE(enfocado(f), foco);
        QCOMPARE(consultas.join('\n'), consulta);
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
    void traeSegundaClave_data()
    {
        QTest::addColumn<QString>("clave");
        QTest::addColumn<bool>("apaga28");
        QTest::addColumn<QString>("campos"); // 4|1|25|26|28|29 afterwards
        QTest::addColumn<bool>("reporte");
        QTest::newRow("conocida") << "REP-NEGRA" << false << "REPISA|Repisa flotante|a|b|c|d"
                                  << false;
        QTest::newRow("conocida, 28 apagado")
            << "REP-NEGRA" << true << "REPISA|Repisa flotante|a|b|c|d" << false;
        QTest::newRow("desconocida") << "NOEXISTE" << false << "TORN-01|algo||||" << false;
        QTest::newRow("vacía") << "" << false << "TORN-01|algo||||" << false;
        QTest::newRow("comilla") << "O'BRIEN" << false << "TORN-01|algo|a|b|c|d" << true;
        QTest::newRow("sentencia apilada")
            << "X'; DELETE FROM OP; --" << false << "TORN-01|algo|a|b|c|d" << true;
    }
    void traeSegundaClave()
    {
        QFETCH(QString, clave);
        QFETCH(bool, apaga28);
        QFETCH(QString, campos);
        QFETCH(bool, reporte);
        auto f = abre();
        QVERIFY(f);
        const int ops = cuenta("op"), lineas = cuenta("oppart");
        const QList<int> indices{4, 1, 25, 26, 28, 29};
        const QStringList antes{"TORN-01", "algo", "a", "b", "c", "d"};
        f->txtFields(24)->setFocus(); // leaving field 4 first would fill field 1
        for (int i = 0; i < indices.size(); ++i)
            f->txtFields(indices[i])->setText(antes[i]);
        f->txtFields(28)->setEnabled(!apaga28);
        QTest::keyClicks(f->txtFields(24), clave);
        QTest::keyClick(f->windowHandle(), Qt::Key_F8);
        QStringList despues;
        for (int i : indices)
            despues << f->txtFields(i)->text();
        QCOMPARE(despues.join('|'), campos);
        QCOMPARE(ui->reportes().size(), reporte ? 1 : 0);
        if (reporte)
            QVERIFY2(ui->reportes().first().contains("Function: TraeSegundaClave\r\n"),
                     qPrintable(ui->reportes().first()));
        QCOMPARE(cuenta("op") * 1000 + cuenta("oppart"), ops * 1000 + lineas);
        QCOMPARE(enfocado(f), apaga28 ? QStringLiteral("txtFields_24") : "txtFields_28");
    }

    // Typed characters go through the filter of the field's tag, compared exactly.
    void filtrosPorEtiqueta_data()
    {
        QTest::addColumn<QString>("tag");
        QTest::addColumn<QString>("tecleado");
        QTest::addColumn<QString>("queda");
        QTest::newRow("U") << "U"
                           << "abc(-"
                           << "ABC(-";
        QTest::newRow("N") << "N"
                           << "-1a2.3.4"
                           << "-12.34";
        QTest::newRow("SN") << "SN"
                            << "12.5x"
                            << "125";
        QTest::newRow("D") << "D"
                           << "17/05/2024x"
                           << "17/05/2024";
        QTest::newRow("u minúscula: sin filtro") << "u"
                                                 << "ab1"
                                                 << "ab1";
    }
    void filtrosPorEtiqueta()
    {
        QFETCH(QString, tag);
        QFETCH(QString, tecleado);
        QFETCH(QString, queda);
        auto f = abre();
        QVERIFY(f);
        QLineEdit *campo = f->txtFields(25);
        campo->setProperty("Tag", tag);
        campo->setFocus();
        QTest::keyClicks(campo, tecleado);
        QCOMPARE(campo->text(), queda);
    }

    // A field that fills up moves on as Enter would, typed or pasted; a paste is cut to the
    // field's length and filtered like typing: 10 kB, control characters, undecodable bytes.
    void llenoYPegado_data()
    {
        QTest::addColumn<int>("campo");
        QTest::addColumn<QByteArray>("pegado"); // empty: typed instead
        QTest::addColumn<QString>("texto");
        QTest::addColumn<QString>("foco");
        QTest::newRow("14 tecleado lleno") << 14 << QByteArray() << "1234"
                                           << "txtFields_4";
        QTest::newRow("14 pegado lleno") << 14 << QByteArray("0003") << "3"
                                         << "txtFields_4";
        QTest::newRow("14 pegado largo") << 14 << QByteArray("98765") << "9876"
                                         << "txtFields_4";
        QTest::newRow("14 pegado corto") << 14 << QByteArray("12") << "12"
                                         << "txtFields_14";
        QTest::newRow("4 pegado de 10 kB")
            << 4 << QByteArray(10240, 'a') << QString(30, 'A') << "txtFields_5";
        QTest::newRow("5 con letras") << 5 << QByteArray("1a2.5b") << "12.5"
                                      << "txtFields_5";
        QTest::newRow("1 caracteres de control") << 1
                                                 << QByteArray("A\tB\x01"
                                                               "C\r\nD\x7f")
                                                 << "ABCD"
                                                 << "txtFields_1";
        QTest::newRow("1 bytes que no son UTF-8") << 1
                                                  << QByteArray("\xff\xfe"
                                                                "AB\xc3")
                                                  << "AB"
                                                  << "txtFields_1";
    }
    void llenoYPegado()
    {
        QFETCH(int, campo);
        QFETCH(QByteArray, pegado);
        QFETCH(QString, texto);
        QFETCH(QString, foco);
        auto f = abre();
        QVERIFY(f);
        f->txtFields(campo)->clear();
        f->txtFields(campo)->setFocus();
        if (pegado.isEmpty()) {
            QTest::keyClicks(f->txtFields(campo), texto);
        } else {
            pega(pegado);
            QTest::keyClick(f->windowHandle(), Qt::Key_V, Qt::ControlModifier);
        }
        QCOMPARE(f->txtFields(campo)->text(), texto);
        QCOMPARE(enfocado(f), foco);
        QVERIFY2(ui->reportes().isEmpty(), qPrintable(ui->reportes().join('\n')));
    }

    // F3 toggles the barcode reader and puts the focus on the article field; with it a code
    // and Enter add a line of one. F9 adds the typed line; F6 runs the code generation, and
    // F3 toggles the reader, in every mode, whatever their controls' state.
    void teclasDeLaVentana()
    {
        auto f = abre();
        QVERIFY(f && !f->Check4->isChecked());
        pulsa(f, 14, Qt::Key_F3);
        QVERIFY(f->Check4->isChecked());
        QCOMPARE(enfocado(f), QStringLiteral("txtFields_4"));
        teclea(f, "7501000000011");
        teclea(f, "tuer-01");
        QCOMPARE(partidas(f->Op).size(), 2);
        QCOMPARE(f->fg2->TextMatrix(2, 0) + ' ' + f->fg2->TextMatrix(2, 1),
                 QStringLiteral("TUER-01 1"));
        pulsa(f, 14, Qt::Key_F3);
        QVERIFY(!f->Check4->isChecked());
        QCOMPARE(enfocado(f), QStringLiteral("txtFields_14"));
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
        QVERIFY(f);
        QTest::keyClick(f->windowHandle(), Qt::Key_F6);
        QTest::keyClick(f->windowHandle(), Qt::Key_F3);
        QVERIFY(procesos.contains("OP007 -1") && f->Check4->isChecked());
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
        QCOMPARE(enfocado(f), QStringLiteral("txtFields_4"));
        QCOMPARE(consultas.size(), 1);
        QVERIFY(ui->reportes().isEmpty());
    }

    // The cell editor over a quantity: it covers the cell exactly; Enter and the arrows write
    // the edit back and save it, Escape discards it; Up in the first row stays there.
    void editorDeCelda_data()
    {
        QTest::addColumn<int>("fila");
        QTest::addColumn<int>("tecla");
        QTest::addColumn<QString>("celda");
        QTest::addColumn<int>("filaDespues");
        QTest::newRow("Enter") << 1 << int(Qt::Key_Return) << "75" << 1;
        QTest::newRow("Escape") << 1 << int(Qt::Key_Escape) << "10" << 1;
        QTest::newRow("Arriba en la primera") << 1 << int(Qt::Key_Up) << "75" << 1;
        QTest::newRow("Abajo") << 1 << int(Qt::Key_Down) << "75" << 2;
        QTest::newRow("Arriba") << 2 << int(Qt::Key_Up) << "75" << 1;
    }
    void editorDeCelda()
    {
        QFETCH(int, fila);
        QFETCH(int, tecla);
        QFETCH(QString, celda);
        QFETCH(int, filaDespues);
        auto f = abre(1);
        QVERIFY(f);
        const QString antes = f->fg2->TextMatrix(fila, 1);
        const QString id = f->fg2->TextMatrix(fila, 5);
        f->fg2->setFocus();
        f->fg2->SetRow(fila);
        f->fg2->SetCol(1);
        escribe(f, "7x5");
        QVERIFY(f->txtEdit->isVisible());
        const QModelIndex i = f->fg2->model()->index(fila - 1, 1);
        const QRect r = f->fg2->visualRect(i);
        QCOMPARE(f->txtEdit->geometry(),
                 QRect(f->fg2->viewport()->mapTo(f, r.topLeft()), r.size()));
        QCOMPARE(f->txtEdit->text(), QStringLiteral("75"));
        QTest::keyClick(f->windowHandle(), Qt::Key(tecla));
        QVERIFY(!f->txtEdit->isVisible());
        QCOMPARE(enfocado(f), QStringLiteral("fg2"));
        QCOMPARE(f->fg2->TextMatrix(fila, 1), celda == "10" ? antes : celda);
        QCOMPARE(cantidad(id), celda == "10" ? antes : celda);
        QCOMPARE(f->fg2->Row(), filaDespues);
        QCOMPARE(f->fg2->CellAlignment(), 3); // a visited cell is centred
        QVERIFY2(ui->reportes().isEmpty(), qPrintable(ui->reportes().join('\n')));
    }

    // No editor on a line without an article, in column 0, beyond column 2, or in a
    // view-only order; but the typed character still went through the key filter ('x'
    // refused, '5' taken) except on an empty line.
    void sinEditor_data()
    {
        QTest::addColumn<bool>("consulta");
        QTest::addColumn<int>("fila");
        QTest::addColumn<int>("columna");
        QTest::addColumn<QString>("filtrado");
        QTest::newRow("línea sin artículo") << false << 3 << 1 << "";
        QTest::newRow("columna 0") << false << 1 << 0 << "5";
        QTest::newRow("columna 3") << false << 1 << 3 << "5";
        QTest::newRow("CONSULTA") << true << 1 << 1 << "5";
    }
    void sinEditor()
    {
        QFETCH(bool, consulta);
        QFETCH(int, fila);
        QFETCH(int, columna);
        QFETCH(QString, filtrado);
        if (consulta)
            p->ConsultaOp(1);
        else
            p->ModificaOp(1);
        auto f = editor();
        QVERIFY(f);
        f->fg2->setEnabled(true);
        f->fg2->setFocus();
        f->fg2->SetRow(fila);
        f->fg2->SetCol(columna);
        escribe(f, "x5");
        QVERIFY(!f->txtEdit->isVisible());
        QCOMPARE(f->txtEdit->text(), filtrado);
        QCOMPARE(f->fg2->Row() * 10 + f->fg2->Col(), fila * 10 + columna); // no search moved it
        // A double-click opens it only where typing would.
        const QRect r = f->fg2->visualRect(f->fg2->model()->index(fila - 1, columna));
        QTest::mouseDClick(f->fg2->viewport(), Qt::LeftButton, {}, r.center());
        QVERIFY(!f->txtEdit->isVisible());
        QVERIFY(ui->reportes().isEmpty());
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
        escribe(f, "5");
        QTest::keyClick(f->windowHandle(), Qt::Key_Return);
        QCOMPARE(cantidad(f->fg2->TextMatrix(2, 5)), QStringLiteral("25"));
    }

    // F8 in the observations box goes to the article field; other keys are the box's.
    void observaciones()
    {
        auto f = abre();
        QVERIFY(f);
        f->RichTextBox2->setFocus();
        escribe(f, "Urgente");
        QTest::keyClick(f->windowHandle(), Qt::Key_F8);
        QCOMPARE(f->RichTextBox2->toPlainText(), QStringLiteral("Urgente"));
        QCOMPARE(enfocado(f), QStringLiteral("txtFields_4"));
    }
};

QTEST_MAIN(TstFrmOpTeclado)
#include "tst_frmop_teclado.moc"
