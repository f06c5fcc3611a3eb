#include "controls/Teclas.h"
#include "controls/Ventana.h"
#include "runtime/Error.h"

#include <QApplication>
#include <QCloseEvent>
#include <QLineEdit>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QVBoxLayout>
#include <QWindow>

using namespace zuvi;

namespace {

// A window that records what the runtime hands its procedures.
class VentanaPrueba : public Ventana
{
    Q_OBJECT
public:
    explicit VentanaPrueba(bool conPreview = false) : Ventana(QStringLiteral("frmPrueba"))
    {
        KeyPreview = conPreview;
        auto *d = new QVBoxLayout(this);
        for (int i : {0, 3}) {
            auto *campo = new QLineEdit(this);
            campo->setObjectName(QStringLiteral("txtFields_%1").arg(i));
            d->addWidget(campo);
        }
        conectaTeclas(QStringLiteral("txtFields"),
                      {[this](int i, qint16 &k, qint16 s) {
                           registro
                               << QStringLiteral("txtFields_KeyDown %1 %2 %3").arg(i).arg(k).arg(s);
                           if (k == falloEn)
                               throw Error(QStringLiteral("Fallo de prueba\r\nsegunda línea"));
                           if (k == tragaEnControl)
                               k = 0;
                       },
                       [this](int i, qint16 &c) {
                           registro << QStringLiteral("txtFields_KeyPress %1 %2").arg(i).arg(c);
                           if (c >= 'a' && c <= 'z')
                               c = qint16(c - 'a' + 'A');
                           else if (c == '#')
                               c = 0;
                       },
                       [this](int i, qint16 &k, qint16 s) {
                           registro
                               << QStringLiteral("txtFields_KeyUp %1 %2 %3").arg(i).arg(k).arg(s);
                       }});
    }

    QLineEdit *campo(int i) { return arreglo<QLineEdit>(QStringLiteral("txtFields"))(i); }

    QStringList registro;
    qint16 falloEn = -1, tragaEnControl = -1, tragaEnVentana = -1;
    qint16 cancelaConsulta = 0, cancelaDescarga = 0;
    bool visibleAlCargar = true;
    bool fallaAlCargar = false;

protected:
    void Form_Load() override
    {
        visibleAlCargar = isVisible();
        registro << QStringLiteral("Form_Load");
        if (fallaAlCargar)
            throw Error(QStringLiteral("sin conexión"));
    }
    void Form_QueryUnload(qint16 &Cancel, qint16 UnloadMode) override
    {
        registro << QStringLiteral("Form_QueryUnload %1").arg(UnloadMode);
        Cancel = cancelaConsulta;
    }
    void Form_Unload(qint16 &Cancel) override
    {
        registro << QStringLiteral("Form_Unload");
        Cancel = cancelaDescarga;
    }
    void Form_KeyDown(qint16 &KeyCode, qint16 Shift) override
    {
        registro << QStringLiteral("Form_KeyDown %1 %2").arg(KeyCode).arg(Shift);
        if (KeyCode == tragaEnVentana)
            KeyCode = 0;
    }
};

// Types text at the window handle, so the keys reach the focused control.
void teclea(QWindow *ventana, const QString &texto)
{
    for (QChar c : texto)
        QTest::keyClick(ventana, c.toLatin1());
}

// The KeyDown lines of the record, without those of the modifier keys
// themselves (16, 17, 18), which arrive before the key they modify, unless
// the modifier is the key looked at.
QStringList soloKeyDown(const QStringList &registro, int tecla = 0)
{
    QStringList lineas;
    for (const QString &l : registro.filter(QStringLiteral("KeyDown"))) {
        const int codigo = l.section(QLatin1Char(' '), -2, -2).toInt();
        if (codigo == tecla || codigo < 16 || codigo > 18)
            lineas << l;
    }
    return lineas;
}

} // namespace

class TstVentana : public QObject
{
    Q_OBJECT

    QPointer<VentanaPrueba> abre(bool preview = false)
    {
        auto *v = new VentanaPrueba(preview);
        v->muestra();
        if (!QTest::qWaitForWindowActive(v))
            return nullptr;
        v->campo(3)->setFocus();
        return v;
    }

private Q_SLOTS:
    void cleanup()
    {
        setReportSink({});
        for (QWidget *w : QApplication::topLevelWidgets())
            delete w;
    }

    // Real key events through the window reach the focused member of the
    // array with its index, the key code and the shift state.
    void keyCodesAndShiftState_data()
    {
        QTest::addColumn<int>("tecla");
        QTest::addColumn<Qt::KeyboardModifiers>("modificadores");
        QTest::addColumn<int>("codigo");
        QTest::addColumn<int>("shift");
        const Qt::KeyboardModifiers sin = Qt::NoModifier;
        QTest::newRow("F1") << int(Qt::Key_F1) << sin << 112 << 0;
        QTest::newRow("F5") << int(Qt::Key_F5) << sin << 116 << 0;
        QTest::newRow("F12") << int(Qt::Key_F12) << sin << 123 << 0;
        QTest::newRow("Enter") << int(Qt::Key_Return) << sin << 13 << 0;
        QTest::newRow("Enter del teclado numérico")
            << int(Qt::Key_Enter) << Qt::KeyboardModifiers(Qt::KeypadModifier) << 13 << 0;
        QTest::newRow("Escape") << int(Qt::Key_Escape) << sin << 27 << 0;
        QTest::newRow("Suprimir") << int(Qt::Key_Delete) << sin << 46 << 0;
        QTest::newRow("Insertar") << int(Qt::Key_Insert) << sin << 45 << 0;
        QTest::newRow("Izquierda") << int(Qt::Key_Left) << sin << 37 << 0;
        QTest::newRow("Abajo") << int(Qt::Key_Down) << sin << 40 << 0;
        QTest::newRow("Retroceso") << int(Qt::Key_Backspace) << sin << 8 << 0;
        QTest::newRow("letra") << int(Qt::Key_A) << sin << 65 << 0;
        QTest::newRow("dígito") << int(Qt::Key_7) << sin << 55 << 0;
        QTest::newRow("dígito del teclado numérico")
            << int(Qt::Key_7) << Qt::KeyboardModifiers(Qt::KeypadModifier) << 103 << 0;
        QTest::newRow("Mayús+F2") << int(Qt::Key_F2) << Qt::KeyboardModifiers(Qt::ShiftModifier)
                                  << 113 << 1;
        QTest::newRow("Ctrl+Suprimir")
            << int(Qt::Key_Delete) << Qt::KeyboardModifiers(Qt::ControlModifier) << 46 << 2;
        QTest::newRow("Alt+Mayús+F3")
            << int(Qt::Key_F3) << (Qt::AltModifier | Qt::ShiftModifier) << 114 << 5;
        QTest::newRow("Ctrl+Alt+Mayús+Abajo")
            << int(Qt::Key_Down) << (Qt::AltModifier | Qt::ShiftModifier | Qt::ControlModifier)
            << 40 << 7;
    }
    void keyCodesAndShiftState()
    {
        QFETCH(int, tecla);
        QFETCH(Qt::KeyboardModifiers, modificadores);
        QFETCH(int, codigo);
        QFETCH(int, shift);
        auto v = abre();
        QVERIFY(v);
        QTest::keyClick(v->windowHandle(), Qt::Key(tecla), modificadores);
        // Exactly one KeyDown, at the focused member, even though an unused
        // key travels on to the window.
        QCOMPARE(soloKeyDown(v->registro, codigo),
                 QStringList{QStringLiteral("txtFields_KeyDown 3 %1 %2").arg(codigo).arg(shift)});
        QVERIFY(
            v->registro.contains(QStringLiteral("txtFields_KeyUp 3 %1 %2").arg(codigo).arg(shift)));
    }

    // The character a KeyPress handler leaves is what the field receives.
    void keyPressCanReplaceOrDropCharacters()
    {
        auto v = abre();
        QVERIFY(v);
        teclea(v->windowHandle(), QStringLiteral("ab#1"));
        QCOMPARE(v->campo(3)->text(), QStringLiteral("AB1"));
        QVERIFY(v->registro.contains(QStringLiteral("txtFields_KeyPress 3 97")));
        QVERIFY(v->registro.contains(QStringLiteral("txtFields_KeyPress 3 35")));
    }

    void keyPreviewRunsTheWindowFirst()
    {
        auto v = abre(true);
        QVERIFY(v);
        QTest::keyClick(v->windowHandle(), Qt::Key_F5);
        QCOMPARE(soloKeyDown(v->registro),
                 (QStringList{QStringLiteral("Form_KeyDown 116 0"),
                              QStringLiteral("txtFields_KeyDown 3 116 0")}));

        // A key the window swallows never reaches the control.
        v->registro.clear();
        v->tragaEnVentana = 'X';
        QTest::keyClick(v->windowHandle(), Qt::Key_X);
        QCOMPARE(soloKeyDown(v->registro), QStringList{QStringLiteral("Form_KeyDown 88 0")});
        QCOMPARE(v->campo(3)->text(), QString());

        // Without preview the window does not see its controls' keys.
        auto sinPreview = abre(false);
        QVERIFY(sinPreview);
        QTest::keyClick(sinPreview->windowHandle(), Qt::Key_F5);
        QCOMPARE(soloKeyDown(sinPreview->registro),
                 QStringList{QStringLiteral("txtFields_KeyDown 3 116 0")});
    }

    void keyCodeZeroSwallowsTheKey()
    {
        auto v = abre();
        QVERIFY(v);
        v->tragaEnControl = 'Q';
        teclea(v->windowHandle(), QStringLiteral("wqe"));
        QCOMPARE(v->campo(3)->text(), QStringLiteral("WE"));
    }

    // Keys sent to a window that is not the active one reach its own focused
    // control, not the active window's.
    void keysReachAWindowThatIsNotActive()
    {
        auto atras = abre();
        auto delante = abre();
        QVERIFY(atras && delante);
        QCOMPARE(QApplication::activeWindow(), delante.data());
        QTest::keyClick(atras->windowHandle(), Qt::Key_F2);
        QCOMPARE(soloKeyDown(atras->registro),
                 QStringList{QStringLiteral("txtFields_KeyDown 3 113 0")});
        QVERIFY(soloKeyDown(delante->registro).isEmpty());
    }

    void handlerErrorIsReportedWithModuleAndProcedure()
    {
        QStringList informes;
        setReportSink([&](const QString &titulo, const QString &texto) {
            informes << titulo + QLatin1Char('|') + texto;
        });
        auto v = abre();
        QVERIFY(v);
        v->falloEn = teclas::F8;
        QTest::keyClick(v->windowHandle(), Qt::Key_F8);
        QCOMPARE(informes,
                 QStringList{QStringLiteral("ZuviProduccion|Error occured:\r\nModule: "
                                            "frmPrueba\r\nFunction: txtFields_KeyDown\r\n"
                                            "Description: Fallo de prueba\r\nsegunda línea")});
        // The window keeps working after the report.
        teclea(v->windowHandle(), QStringLiteral("z"));
        QCOMPARE(v->campo(3)->text(), QStringLiteral("Z"));
    }

    void loadRunsBeforeTheWindowIsVisible()
    {
        auto *v = new VentanaPrueba;
        QVERIFY(!v->cargada());
        v->muestra();
        QVERIFY(v->cargada());
        QVERIFY(!v->visibleAlCargar);
        QVERIFY(v->isVisible());
        QCOMPARE(v->registro, QStringList{QStringLiteral("Form_Load")});
        QVERIFY(v->testAttribute(Qt::WA_DeleteOnClose));
    }

    void failingLoadReachesTheOpenerAndDiscardsTheWindow()
    {
        QPointer<VentanaPrueba> v = new VentanaPrueba;
        v->fallaAlCargar = true;
        QVERIFY_THROWS_EXCEPTION(Error, v->muestra());
        QVERIFY(!v->isVisible());
        QTRY_VERIFY(v.isNull());
    }

    // Title bar and code reach the same protocol with their unload modes; a
    // cancel in either step keeps the window open.
    void unloadProtocol_data()
    {
        QTest::addColumn<bool>("desdeBarra");
        QTest::addColumn<int>("cancelaConsulta");
        QTest::addColumn<int>("cancelaDescarga");
        QTest::addColumn<QStringList>("esperado");
        QTest::addColumn<bool>("cierra");
        const QString unload = QStringLiteral("Form_Unload");
        QTest::newRow("barra de título")
            << true << 0 << 0 << QStringList{QStringLiteral("Form_QueryUnload 0"), unload} << true;
        QTest::newRow("desde código")
            << false << 0 << 0 << QStringList{QStringLiteral("Form_QueryUnload 1"), unload} << true;
        QTest::newRow("consulta cancela (barra)")
            << true << -1 << 0 << QStringList{QStringLiteral("Form_QueryUnload 0")} << false;
        QTest::newRow("consulta cancela con 1 (código)")
            << false << 1 << 0 << QStringList{QStringLiteral("Form_QueryUnload 1")} << false;
        QTest::newRow("descarga cancela")
            << false << 0 << -1 << QStringList{QStringLiteral("Form_QueryUnload 1"), unload}
            << false;
    }
    void unloadProtocol()
    {
        QFETCH(bool, desdeBarra);
        QFETCH(int, cancelaConsulta);
        QFETCH(int, cancelaDescarga);
        QFETCH(QStringList, esperado);
        QFETCH(bool, cierra);
        auto v = abre();
        QVERIFY(v);
        v->registro.clear();
        v->cancelaConsulta = qint16(cancelaConsulta);
        v->cancelaDescarga = qint16(cancelaDescarga);
        QSignalSpy descargada(v.data(), &Ventana::seDescargo);
        bool resultado = false;
        if (desdeBarra) {
            // What the window system sends when the user closes the window.
            QCloseEvent cierre;
            QCoreApplication::sendEvent(v->windowHandle(), &cierre);
            resultado = cierre.isAccepted();
        } else
            resultado = v->descarga();
        QCOMPARE(resultado, cierra);
        QCOMPARE(v->registro, esperado);
        QCOMPARE(descargada.count(), cierra ? 1 : 0);
        if (cierra) {
            QTRY_VERIFY(v.isNull());
            return;
        }
        QVERIFY(v->isVisible());
        // Once nothing objects, the same window closes.
        v->cancelaConsulta = v->cancelaDescarga = 0;
        QVERIFY(v->descarga());
        QTRY_VERIFY(v.isNull());
    }

    void modalShowReturnsAfterTheUnload()
    {
        QPointer<VentanaPrueba> v = new VentanaPrueba;
        bool visibleDentro = false;
        QTimer::singleShot(50, v, [&] {
            visibleDentro = v->isVisible() && v->isModal();
            v->descarga();
        });
        v->muestra(true);
        QVERIFY(visibleDentro);
        QVERIFY(v.isNull() || v->descargada());
    }

    void controlArraysByIndex()
    {
        VentanaPrueba v;
        auto *suelto = new QLineEdit(&v);
        suelto->setObjectName(QStringLiteral("txtFields_x"));
        auto *otro = new QLineEdit(&v);
        otro->setObjectName(QStringLiteral("txtFieldsB_1"));
        auto *hondo = new QLineEdit(new QWidget(&v));
        hondo->setObjectName(QStringLiteral("txtFields_14"));

        const auto a = v.arreglo<QLineEdit>(QStringLiteral("txtFields"));
        QCOMPARE(a.indices(), (QList<int>{0, 3, 14}));
        QCOMPARE(a.Count(), 3);
        QCOMPARE(a.LBound(), 0);
        QCOMPARE(a.UBound(), 14);
        QCOMPARE(a(14), hondo);
        QCOMPARE(a.indiceDe(hondo), 14);
        QCOMPARE(a.indiceDe(otro), -1);
        QVERIFY(!a.existe(1));
        try {
            a(1);
            QFAIL("a missing member must be an error");
        } catch (const Error &e) {
            QCOMPARE(e.description(),
                     QStringLiteral("El elemento 1 del arreglo de controles txtFields no existe."));
        }
        delete hondo;
        QVERIFY_THROWS_EXCEPTION(Error, a(14));
    }
};

QTEST_MAIN(TstVentana)
#include "tst_ventana.moc"
