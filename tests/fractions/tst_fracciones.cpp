#include "component/Produccion.h"
#include "fractions/frmFracciones.h"
#include "runtime/ClassRegistry.h"
#include "runtime/Error.h"
#include "tests/support/CapturaReportes.h"

#include <QApplication>
#include <QLineEdit>
#include <QTest>

using namespace zuvi;

namespace {

// Each process start: its key, then Codigo, Estado and visible read by name from
// the window it was handed. The process then leaves its key in Estado.
QStringList llamadas;
std::optional<pruebas::CapturaReportes> informes;
QPointer<QObject> ventana; // the one handed last
QString fallaEn;           // the key whose process throws

class ProcesosGrabados : public ControlProcesos
{
    Q_OBJECT
public:
    void IniciaProceso(ArgumentosProceso &a) override
    {
        ventana = a.objeto;
        QStringList visto{a.proceso};
        for (const char *propiedad : {"Codigo", "Estado", "visible"})
            visto << ventana->property(propiedad).toString();
        llamadas << visto.join('|');
        if (a.proceso == fallaEn)
            throw Error(QStringLiteral("Servicio no disponible"));
        ventana->setProperty("Estado", a.proceso);
    }
    void ConsultaProceso(VBool &) override {}
    void ImprimeReporte(const QString &, qint32, Ambiente *, QObject *) override {}
    void CierraProceso(qint32) override {}
};

} // namespace

class TstFracciones : public QObject
{
    Q_OBJECT

    // Opens the window the way the host does; the load hands it to the process.
    static QPointer<frmFracciones> abre()
    {
        Produccion().MuestraCapturaDeFracciones();
        QPointer<frmFracciones> f = qobject_cast<frmFracciones *>(ventana);
        return f && QTest::qWaitForWindowActive(f) ? f : nullptr;
    }

private Q_SLOTS:
    void initTestCase()
    {
        ClassRegistry::instance().add(QStringLiteral("ControlProcesos"),
                                      [] { return new ProcesosGrabados; });
    }
    void init() { informes.emplace(); }
    void cleanup()
    {
        qDeleteAll(QApplication::topLevelWidgets());
        llamadas.clear();
        informes.reset();
        fallaEn.clear();
    }

    // Form_Load sets Estado and starts the welcome before the window shows; Enter starts
    // "FRACCIONES" with the whole line, trimmed; other keys start nothing, the field stays.
    void enterIniciaLaCaptura()
    {
        const struct
        {
            QString tecleado, codigo;
        } casos[] = {{"", ""}, {"   ", ""}, {"  75010 ", "75010"}, {" AB 12", "AB 12"}};
        for (const auto &caso : casos) {
            cleanup();
            init();
            auto f = abre();
            QVERIFY(f);
            QTest::keyClicks(f->txtFields(0), caso.tecleado);
            QTest::keyClick(f->windowHandle(), Qt::Key_Return);
            QCOMPARE(llamadas, (QStringList{"FRACCIONES001||ESPERANDO USUARIO|false",
                                            "FRACCIONES|" + caso.codigo + "|FRACCIONES001|true"}));
            QVERIFY(informes->textos.isEmpty() && f->txtFields(0)->text() == caso.tecleado);
        }
    }

    // Keys that type symbols refresh Codigo as any other key does: each takes the text
    // typed before it.
    void teclasDeSimbolosRefrescanElCodigo()
    {
        auto f = abre();
        QVERIFY(f);
        f->txtFields(0)->setFocus();
        QTest::keyClicks(f->txtFields(0), QStringLiteral("AB"));
        QTest::keyClick(f->windowHandle(), Qt::Key_ParenLeft, Qt::ShiftModifier);
        QCOMPARE(f->Codigo, QStringLiteral("AB"));
        QTest::keyClick(f->windowHandle(), Qt::Key_Colon, Qt::ShiftModifier);
        QCOMPARE(f->Codigo, QStringLiteral("AB("));
        QTest::keyClick(f->windowHandle(), Qt::Key_Ntilde);
        QCOMPARE(f->Codigo, QStringLiteral("AB(:"));
    }

    void dosLlamadasAbrenDosVentanasIndependientes()
    {
        auto primera = abre(), segunda = abre();
        QVERIFY(primera && segunda && primera != segunda);
        QTest::keyClicks(segunda->txtFields(0), QStringLiteral("22"));
        QTest::keyClick(segunda->windowHandle(), Qt::Key_Enter, Qt::KeypadModifier);
        QVERIFY(ventana == segunda.data() && primera->Codigo.isEmpty() && segunda->descarga());
        QTRY_VERIFY(segunda.isNull());
        QTest::keyClicks(primera->txtFields(0), QStringLiteral("11"));
        QTest::keyClick(primera->windowHandle(), Qt::Key_Return);
        QCOMPARE(llamadas.last(), QStringLiteral("FRACCIONES|11|FRACCIONES001|true"));
    }

    void erroresSeReportanConElNombreDelProcedimiento()
    {
        for (const QString procedimiento : {"Form_Load", "txtFields_KeyDown"}) {
            fallaEn = procedimiento == u"Form_Load" ? "FRACCIONES001" : "FRACCIONES";
            informes->textos.clear();
            auto f = abre();
            QVERIFY(f); // a failing welcome still leaves the window open
            QTest::keyClick(f->windowHandle(), Qt::Key_Return);
            QCOMPARE(informes->textos,
                     QStringList{"Error occured:\r\nModule: frmFracciones\r\nFunction: " +
                                 procedimiento + "\r\nDescription: Servicio no disponible"});
        }
    }
};

QTEST_MAIN(TstFracciones)
#include "tst_fracciones.moc"
