#include "controls/Rejilla.h"
#include "controls/Teclas.h"
#include "controls/Ventana.h"
#include "runtime/Error.h"
#include "tests/support/CapturaReportes.h"

#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QDialog>
#include <QIntValidator>
#include <QKeySequence>
#include <QLineEdit>
#include <QMimeData>
#include <QRegularExpression>
#include <QScreen>
#include <QScrollBar>
#include <QShortcut>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

using namespace zuvi;

namespace {

// Records what the runtime hands its procedures.
class VentanaPrueba : public Ventana
{
    Q_OBJECT
public:
    explicit VentanaPrueba(bool conPreview) : Ventana(QStringLiteral("frmPrueba"))
    {
        KeyPreview = conPreview;
        auto *panel = new QWidget(this); // members need not be direct children
        for (const char *nombre : {"txtFields_0", "txtFieldsB_1", "txtFields_3"})
            (new QLineEdit(panel))->setObjectName(QLatin1String(nombre));
        conectaTeclas(QStringLiteral("txtFields"),
                      {[this](int i, qint16 &k, qint16 s) {
                           anota(QStringLiteral("txtFields_KeyDown %1 %2 %3").arg(i).arg(k).arg(s));
                           if (k == teclas::F8)
                               campo(1); // txtFieldsB_1 is not txtFields(1): an error
                       },
                       [this](int i, qint16 &c) {
                           anota(QStringLiteral("txtFields_KeyPress %1 %2").arg(i).arg(c));
                           c = c == '1' ? 0 : c; // refuses the digit one
                       },
                       {}});
        const auto evento = [this](const char *nombre) {
            return [this, nombre](int i) { anota(QStringLiteral("%1 %2").arg(nombre).arg(i)); };
        };
        conectaEventos(QStringLiteral("txtFields"), {evento("Change"), evento("GotFocus"),
                                                     evento("LostFocus"), evento("DblClick")});
    }
    QLineEdit *campo(int i) { return arreglo<QLineEdit>(QStringLiteral("txtFields"))(i); }
    qint16 anota(const QString &linea, qint16 devuelve = 0)
    {
        registro << linea;
        return devuelve;
    }

    QStringList registro;
    qint16 cancelaConsulta = 0, cancelaDescarga = 0;
    bool visibleAlCargar = true;

protected:
    void Form_Load() override { visibleAlCargar = isVisible(); }
    void Form_QueryUnload(qint16 &Cancel, qint16 Modo) override
    {
        Cancel = anota(QStringLiteral("Form_QueryUnload %1").arg(Modo), cancelaConsulta);
    }
    void Form_Unload(qint16 &Cancel) override { Cancel = anota("Form_Unload", cancelaDescarga); }
    void Form_KeyDown(qint16 &KeyCode, qint16 Shift) override
    {
        anota(QStringLiteral("Form_KeyDown %1 %2").arg(KeyCode).arg(Shift));
        KeyCode = KeyCode == 'X' ? 0 : KeyCode;
    }
};

} // namespace

class TstVentana : public QObject
{
    Q_OBJECT

    // Null unless the load ran before the window became visible.
    QPointer<VentanaPrueba> abre(bool preview = false)
    {
        auto *v = new VentanaPrueba(preview);
        v->muestra();
        if (v->visibleAlCargar || !QTest::qWaitForWindowActive(v))
            return nullptr;
        v->campo(3)->setFocus();
        return v;
    }
    // The KeyDown lines the key made, without those of the modifier keys themselves (16-18).
    static QStringList pulsa(VentanaPrueba *v, QKeyCombination tecla)
    {
        v->registro.clear();
        QTest::keyClick(v->windowHandle(), tecla.key(), tecla.keyboardModifiers());
        return v->registro.filter(
            QRegularExpression(QStringLiteral("KeyDown.* (?!1[678] )\\d+ \\d+$")));
    }

    // Types into a box of the active window and describes the box after it and after an
    // undo: text, cursor, selection, edits signalled and a one-letter shortcut's firings.
    struct Caja
    {
        const char *inicial;
        int cursor; // -1 selects everything
        const char *mascara;
        int largo;
        bool soloLectura, validador;
        QByteArray teclas;
        const char *esperado;
    };
    static QStringList tecleaEn(QWidget *ventana, QLineEdit *caja, const Caja &c)
    {
        ventana->show();
        ventana->activateWindow();
        if (!QTest::qWaitForWindowActive(ventana))
            return {QStringLiteral("la ventana no se activó")};
        caja->setFocus();
        caja->setInputMask(QString::fromLatin1(c.mascara));
        caja->setMaxLength(c.largo);
        caja->setText(QString::fromLatin1(c.inicial));
        caja->setReadOnly(c.soloLectura);
        if (c.validador)
            caja->setValidator(new QIntValidator(0, 99, caja));
        if (c.cursor < 0)
            caja->selectAll();
        else
            caja->setCursorPosition(c.cursor);
        int ediciones = 0, atajos = 0;
        QObject::connect(caja, &QLineEdit::textEdited, caja, [&] { ++ediciones; });
        QShortcut atajo(QKeySequence(QStringLiteral("Z")), ventana);
        QObject::connect(&atajo, &QShortcut::activated, caja, [&] { ++atajos; });
        const auto describe = [&] {
            return QStringLiteral("%1|%2|%3|%4|%5")
                .arg(caja->text())
                .arg(caja->cursorPosition())
                .arg(caja->selectedText())
                .arg(ediciones)
                .arg(atajos);
        };
        for (const char tecla : c.teclas)
            QTest::keyClick(ventana->windowHandle(), tecla);
        QStringList estados{describe()};
        QTest::keyClick(ventana->windowHandle(), Qt::Key_Z, Qt::ControlModifier);
        return estados << describe();
    }

private Q_SLOTS:
    void cleanup() { qDeleteAll(QApplication::topLevelWidgets()); }

    // A box of the window takes a typed character as a box of no window does: in place of
    // the selection, within its mask, validator and length, not at all when read-only (where
    // a one-letter shortcut fires instead), and all of it undone at once.
    void escribeComoUnaCajaSinVentana()
    {
        const int sinLimite = 32767;
        const Caja casos[] = {
            {"az", 1, "", sinLimite, false, false, "b-c .Z", "ab-c .Zz"}, // in the middle
            {"abc", -1, "", sinLimite, false, false, "zy", "zy"},         // over the selection
            {"ab", 2, "", 3, false, false, "cde", "abc"},
            {"", 0, "999", sinLimite, false, false, "2a3", "23"},
            {"", 0, "", sinLimite, false, true, "2a34", "23"},
            {"ab", 2, "", sinLimite, true, false, "cz", "ab"},
        };
        for (const Caja &caso : casos) {
            QStringList sola;
            {
                QWidget ventana;
                sola = tecleaEn(&ventana, new QLineEdit(&ventana), caso);
            }
            QCOMPARE(sola.value(0).section('|', 0, 0), QString::fromLatin1(caso.esperado));
            auto v = abre();
            QVERIFY(v);
            QCOMPARE(tecleaEn(v, v->campo(3), caso), sola);
            delete v;
        }
    }

    // With key preview a key reaches the window first, then the focused member with its index,
    // as key code and shift state (1 shift, 2 ctrl, 4 alt); the window may swallow it. Keys sent
    // to a window that is not the active one still reach its own controls.
    void traduccionDeTeclasYVistaPrevia()
    {
        auto v = abre(true);
        QVERIFY(v && abre()); // the second window is the active one
        for (const QString caso :
             {"F1=112 0", "F12=123 0", "Return=13 0", "Num+Enter=13 0", "Shift+F2=113 1",
              "Ctrl+Del=46 2", "Alt+Shift+F3=114 5", "Y=89 0", "Shift+(=57 1", "Shift+!=49 1",
              "Ñ=192 0", "Shift+:=186 1", "'=222 0"}) {
            const QString esperado = caso.section('=', 1);
            QCOMPARE(pulsa(v, QKeySequence(caso.section('=', 0, 0))[0]),
                     (QStringList{"Form_KeyDown " + esperado, "txtFields_KeyDown 3 " + esperado}));
        }
        QCOMPARE(pulsa(v, Qt::Key_X), QStringList{"Form_KeyDown 88 0"});
        QCOMPARE(v->campo(3)->text(), QStringLiteral("y(!Ñ:'"));
        pulsa(v, QKeyCombination(Qt::ShiftModifier, Qt::Key_ParenLeft));
        QVERIFY(v->registro.contains("txtFields_KeyPress 3 40"));
    }

    // Change, GotFocus, LostFocus and DblClick reach each member with its index; activating
    // another window moves no focus in this one's eyes, but coming back from a message box
    // of the window enters its field again (a refused scan is then selected).
    void eventosPorMiembro()
    {
        auto v = abre();
        QVERIFY(v);
        v->registro.clear();
        v->campo(0)->setFocus();
        v->campo(0)->setText(QStringLiteral("a"));
        QTest::mouseDClick(v->campo(3), Qt::LeftButton);
        auto otra = abre();
        QVERIFY(otra);
        QCOMPARE(v->registro, (QStringList{"LostFocus 3", "GotFocus 0", "Change 0", "LostFocus 0",
                                           "GotFocus 3", "DblClick 3"}));
        v->registro.clear();
        v->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(v));
        QDialog mensaje(v);
        QTimer::singleShot(50, &mensaje, &QDialog::accept);
        mensaje.exec();
        v->activateWindow(); // as the window manager gives it back
        QVERIFY(QTest::qWaitForWindowActive(v));
        QTRY_COMPARE(v->registro, QStringList{"GotFocus 3"});
    }

    // A window larger than its screen, and placed by nobody, is shrunk and centred there.
    void cabeEnSuPantalla()
    {
        auto *v = new VentanaPrueba(false);
        v->resize(5000, 5000);
        v->muestra();
        QVERIFY(v->screen()->availableGeometry().contains(v->geometry()));
    }

    // A paste is typed character by character through KeyPress: refused and untypeable
    // characters (control codes, undecodable bytes) are dropped, and it stops when the box
    // is full.
    void pegadoFiltrado()
    {
        auto v = abre();
        QVERIFY(v);
        QLineEdit *campo = v->campo(3);
        campo->setMaxLength(4);
        auto *datos = new QMimeData; // bytes that are not UTF-8, control characters
        datos->setData(QStringLiteral("text/plain"), QByteArray("\xff\xfe"
                                                                "a1\x01\tb\xc3\r\n\x7f c d e"));
        QGuiApplication::clipboard()->setMimeData(datos);
        QTest::keyClick(v->windowHandle(), Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(campo->text(), QStringLiteral("ab c"));
        QCOMPARE(v->registro.filter("KeyPress").size(), 5); // a 1 b blank c
    }

    // The grid follows a current row set from code: many rows set in a row scroll it once, when
    // the events in hand are done, and the current cell's place is read where it is shown even
    // before then.
    void rejillaSigueSuFilaActual()
    {
        QWidget marco;
        auto *rejilla = new Rejilla(&marco);
        rejilla->SetRows(101);
        rejilla->SetCols(2);
        rejilla->setGeometry(0, 0, 300, 200);
        marco.show();
        QVERIFY(QTest::qWaitForWindowExposed(&marco));
        QSignalSpy desplazamientos(rejilla->verticalScrollBar(), &QScrollBar::valueChanged);
        for (int fila = 1; fila <= 80; ++fila)
            rejilla->SetRow(fila);
        QCoreApplication::processEvents();
        QCOMPARE(desplazamientos.size(), 1);
        const auto enVista = [&] {
            const QRect lugar = rejilla->rectanguloCelda();
            const QRect celda = rejilla->visualRect(rejilla->currentIndex());
            return rejilla->viewport()->rect().contains(celda) &&
                   lugar == celda.translated(rejilla->viewport()->mapTo(&marco, QPoint()));
        };
        QVERIFY(enVista());
        rejilla->SetRow(3);
        QVERIFY(enVista());
    }

    void errorDeManejadorSeReportaConModuloYProcedimiento()
    {
        pruebas::CapturaReportes informes;
        auto v = abre();
        QVERIFY(v);
        QCOMPARE(pulsa(v, Qt::Key_F8), QStringList{"txtFields_KeyDown 3 119 0"}); // no preview
        QCOMPARE(informes.titulos, QStringList{"ZuviProduccion"});
        QCOMPARE(informes.textos.join(""),
                 QStringLiteral("Error occured:\r\nModule: frmPrueba\r\n"
                                "Function: txtFields_KeyDown\r\nDescription: El elemento 1 "
                                "del arreglo de controles txtFields no existe."));
    }

    // Title bar (mode 0) and code (mode 1) go through one protocol; a cancel
    // (any non-zero value) at either step keeps the window open.
    void protocoloDeDescarga()
    {
        const std::tuple<bool, qint16, qint16> casos[] = {{true, 0, 0},  {false, 0, 0},
                                                          {true, -1, 0}, {false, 1, 0},
                                                          {true, 0, -1}, {false, 0, 1}};
        for (auto [barra, consulta, descarga] : casos) {
            auto v = abre();
            QVERIFY(v);
            v->cancelaConsulta = consulta;
            v->cancelaDescarga = descarga;
            QCloseEvent cierre; // what the window system sends for the title bar
            if (barra)
                QCoreApplication::sendEvent(v->windowHandle(), &cierre);
            const bool cierra = consulta == 0 && descarga == 0;
            QCOMPARE(barra ? cierre.isAccepted() : v->descarga(), cierra);
            QStringList esperado{QStringLiteral("Form_QueryUnload %1").arg(barra ? 0 : 1)};
            QCOMPARE(v->registro.filter("Form_"), consulta ? esperado : esperado << "Form_Unload");
            QTRY_VERIFY(cierra ? v.isNull() : v->isVisible() && !v->descargada());
        }
    }
};

QTEST_MAIN(TstVentana)
#include "tst_ventana.moc"
