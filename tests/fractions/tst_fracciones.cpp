#include "component/Modulo.h"
#include "component/Produccion.h"
#include "fractions/frmFracciones.h"
#include "runtime/ClassRegistry.h"
#include "runtime/Error.h"

#include <QApplication>
#include <QLineEdit>
#include <QTest>

using namespace zuvi;

namespace {

// Each process start as the process saw it: its key, then Codigo, Estado and
// visible read by name from the window object it was handed. The process then
// leaves its key in Estado.
QStringList llamadas;
QPointer<QObject> ventana; // the one handed last
QString fallaEn;           // the key whose process throws

class ProcesosGrabados : public ControlProcesos
{
    Q_OBJECT
public:
    void IniciaProceso(ArgumentosProceso &a) override
    {
        ventana = a.objeto;
        const auto lee = [](const char *p) {
            return ventana ? ventana->property(p).toString() : QString();
        };
        llamadas << QStringList{a.proceso, lee("Codigo"), lee("Estado"), lee("visible")}.join('|');
        if (a.proceso == fallaEn)
            throw Error(QStringLiteral("Servicio no disponible"));
        if (ventana)
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

    QStringList m_informes;

    // Opens the window the way the host does; the load hands it to the process.
    QPointer<frmFracciones> abre()
    {
        Produccion().MuestraCapturaDeFracciones();
        QPointer<frmFracciones> f = qobject_cast<frmFracciones *>(ventana);
        return f && QTest::qWaitForWindowActive(f) ? f : nullptr;
    }

private Q_SLOTS:
    void init()
    {
        modulo::reinicia();
        ClassRegistry::instance().add(QStringLiteral("ControlProcesos"),
                                      [] { return new ProcesosGrabados; });
        llamadas.clear();
        fallaEn.clear();
        m_informes.clear();
        setReportSink([this](const QString &, const QString &texto) { m_informes << texto; });
    }
    void cleanup()
    {
        qDeleteAll(QApplication::topLevelWidgets());
        ClassRegistry::instance().remove(QStringLiteral("ControlProcesos"));
        setReportSink({});
    }

    // Form_Load sets Estado and starts the welcome before the window shows;
    // Enter starts "FRACCIONES" with the whole line typed, trimmed; other keys
    // start nothing, and the window leaves the field as it was.
    void enterStartsTheCapture_data()
    {
        QTest::addColumn<QString>("tecleado");
        QTest::addColumn<QString>("codigo");
        QTest::newRow("vacío") << QString() << QString();
        QTest::newRow("solo blancos") << QStringLiteral("   ") << QString();
        QTest::newRow("blancos alrededor") << QStringLiteral("  75010 ") << QStringLiteral("75010");
        QTest::newRow("blanco interior") << QStringLiteral(" AB 12") << QStringLiteral("AB 12");
    }
    void enterStartsTheCapture()
    {
        QFETCH(QString, tecleado);
        QFETCH(QString, codigo);
        auto f = abre();
        QVERIFY(f);
        QTest::keyClicks(f->txtFields(0), tecleado);
        QTest::keyClick(f->windowHandle(), Qt::Key_Return);
        QCOMPARE(llamadas, (QStringList{"FRACCIONES001||ESPERANDO USUARIO|false",
                                        "FRACCIONES|" + codigo + "|FRACCIONES001|true"}));
        QVERIFY(ventana == f.data());
        QCOMPARE(f->Estado, QStringLiteral("FRACCIONES"));
        QCOMPARE(f->txtFields(0)->text(), tecleado);
        QVERIFY(m_informes.isEmpty());
    }

    void twoCallsOpenTwoIndependentWindows()
    {
        auto primera = abre(), segunda = abre();
        QVERIFY(primera && segunda && primera != segunda);
        QTest::keyClicks(segunda->txtFields(0), QStringLiteral("22"));
        QTest::keyClick(segunda->windowHandle(), Qt::Key_Enter, Qt::KeypadModifier);
        QVERIFY(ventana == segunda.data());
        QCOMPARE(primera->Codigo, QString());
        QVERIFY(segunda->descarga());
        QTRY_VERIFY(segunda.isNull());
        QTest::keyClicks(primera->txtFields(0), QStringLiteral("11"));
        QTest::keyClick(primera->windowHandle(), Qt::Key_Return);
        QVERIFY(ventana == primera.data());
        QCOMPARE(llamadas.last(), QStringLiteral("FRACCIONES|11|FRACCIONES001|true"));
    }

    void errorsAreReportedWithTheProcedureName_data()
    {
        QTest::addColumn<QString>("clave");
        QTest::addColumn<QString>("procedimiento");
        QTest::newRow("al cargar") << QString("FRACCIONES001") << QString("Form_Load");
        QTest::newRow("al capturar") << QString("FRACCIONES") << QString("txtFields_KeyDown");
    }
    void errorsAreReportedWithTheProcedureName()
    {
        QFETCH(QString, clave);
        QFETCH(QString, procedimiento);
        fallaEn = clave;
        auto f = abre();
        QVERIFY(f); // a failing welcome still leaves the window open
        QTest::keyClick(f->windowHandle(), Qt::Key_Return);
        QCOMPARE(m_informes,
                 QStringList{"Error occured:\r\nModule: frmFracciones\r\nFunction: " +
                             procedimiento + "\r\nDescription: Servicio no disponible"});
    }
};

QTEST_MAIN(TstFracciones)
#include "tst_fracciones.moc"
