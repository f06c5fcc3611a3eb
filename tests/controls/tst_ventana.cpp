#include "controls/Teclas.h"
#include "controls/Ventana.h"
#include "runtime/Error.h"

#include <QApplication>
#include <QCloseEvent>
#include <QLineEdit>
#include <QRegularExpression>
#include <QTest>

using namespace zuvi;

namespace {

// Records what the runtime hands its procedures.
class VentanaPrueba : public Ventana
{
    Q_OBJECT
public:
    explicit VentanaPrueba(bool conPreview = false) : Ventana(QStringLiteral("frmPrueba"))
    {
        KeyPreview = conPreview;
        auto *panel = new QWidget(this); // members need not be direct children
        for (const char *nombre : {"txtFields_0", "txtFieldsB_1", "txtFields_3"})
            (new QLineEdit(panel))->setObjectName(QLatin1String(nombre));
        conectaTeclas(QStringLiteral("txtFields"),
                      {[this](int i, qint16 &k, qint16 s) {
                           anota(QStringLiteral("txtFields_KeyDown %1 %2 %3").arg(i).arg(k).arg(s));
                           if (k == falloEn)
                               campo(1); // no such member: an error
                       },
                       {},
                       {}});
    }
    QLineEdit *campo(int i) { return arreglo<QLineEdit>(QStringLiteral("txtFields"))(i); }
    qint16 anota(const QString &linea, qint16 devuelve = 0)
    {
        registro << linea;
        return devuelve;
    }

    QStringList registro;
    qint16 falloEn = -1, tragaEnVentana = -1, cancelaConsulta = 0, cancelaDescarga = 0;
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
        KeyCode = KeyCode == tragaEnVentana ? 0 : KeyCode;
    }
};

// The KeyDown lines, without those of the modifier keys themselves (16-18).
QStringList soloKeyDown(const QStringList &r)
{
    return r.filter(QRegularExpression(QStringLiteral("KeyDown.* (?!1[678] )\\d+ \\d+$")));
}

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

private Q_SLOTS:
    void cleanup()
    {
        setReportSink({});
        qDeleteAll(QApplication::topLevelWidgets());
    }

    // A real key reaches the window first (key preview), then the focused member with its index,
    // each once, with the key code and shift state (1 shift, 2 ctrl, 4 alt).
    void keyTranslationAndPreview_data()
    {
        QTest::addColumn<QKeyCombination>("tecla");
        QTest::addColumn<QString>("esperado"); // key code and shift state
        QTest::newRow("F1") << QKeyCombination(Qt::Key_F1) << QString("112 0");
        QTest::newRow("F12") << QKeyCombination(Qt::Key_F12) << QString("123 0");
        QTest::newRow("Enter") << QKeyCombination(Qt::Key_Return) << QString("13 0");
        QTest::newRow("Enter numérico") << (Qt::KeypadModifier | Qt::Key_Enter) << QString("13 0");
        QTest::newRow("Mayús+F2") << (Qt::ShiftModifier | Qt::Key_F2) << QString("113 1");
        QTest::newRow("Ctrl+Suprimir") << (Qt::ControlModifier | Qt::Key_Delete) << QString("46 2");
        QTest::newRow("Alt+Mayús+F3")
            << (Qt::AltModifier | Qt::ShiftModifier | Qt::Key_F3) << QString("114 5");
    }
    void keyTranslationAndPreview()
    {
        QFETCH(QKeyCombination, tecla);
        QFETCH(QString, esperado);
        auto v = abre(true);
        QVERIFY(v);
        QTest::keyClick(v->windowHandle(), tecla.key(), tecla.keyboardModifiers());
        QCOMPARE(soloKeyDown(v->registro),
                 (QStringList{"Form_KeyDown " + esperado, "txtFields_KeyDown 3 " + esperado}));
    }

    // The preview window is not the active one: keys sent to it still reach
    // its own controls, unless it swallows them.
    void windowSwallowsKeysOnlyWithPreview()
    {
        auto v = abre(true), sinPreview = abre(false);
        QVERIFY(v && sinPreview);
        v->tragaEnVentana = 'X';
        QTest::keyClick(v->windowHandle(), Qt::Key_X);
        QTest::keyClick(v->windowHandle(), Qt::Key_Y);
        QCOMPARE(v->campo(3)->text(), QStringLiteral("y"));
        QCOMPARE(soloKeyDown(v->registro), (QStringList{"Form_KeyDown 88 0", "Form_KeyDown 89 0",
                                                        "txtFields_KeyDown 3 89 0"}));
        // Without preview the window does not see its controls' keys.
        QTest::keyClick(sinPreview->windowHandle(), Qt::Key_F5);
        QCOMPARE(soloKeyDown(sinPreview->registro), QStringList{"txtFields_KeyDown 3 116 0"});
    }

    // Control arrays go by index: txtFieldsB_1 is not txtFields(1).
    void handlerErrorIsReportedWithModuleAndProcedure()
    {
        QString informe;
        setReportSink([&](const QString &t, const QString &x) { informe += t + '|' + x; });
        auto v = abre();
        QVERIFY(v);
        v->falloEn = teclas::F8;
        QTest::keyClick(v->windowHandle(), Qt::Key_F8);
        QCOMPARE(informe,
                 QStringLiteral("ZuviProduccion|Error occured:\r\nModule: frmPrueba\r\n"
                                "Function: txtFields_KeyDown\r\nDescription: El elemento 1 "
                                "del arreglo de controles txtFields no existe."));
    }

    // Title bar (mode 0) and code (mode 1) go through one protocol; a cancel
    // (any non-zero value) at either step keeps the window open.
    void unloadProtocol()
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
            QCOMPARE(v->registro, consulta ? esperado : esperado << "Form_Unload");
            if (cierra)
                QTRY_VERIFY(v.isNull());
            else
                QVERIFY(v->isVisible() && !v->descargada());
        }
    }
};

QTEST_MAIN(TstVentana)
#include "tst_ventana.moc"
