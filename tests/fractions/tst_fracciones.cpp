#include "component/Modulo.h"
#include "component/Produccion.h"
#include "fractions/frmFracciones.h"
#include "runtime/ClassRegistry.h"
#include "runtime/Error.h"

#include <QApplication>
#include <QLineEdit>
#include <QPointer>
#include <QTest>
#include <QTextBrowser>
#include <QWindow>

#include <functional>

using namespace zuvi;

namespace {

// One IniciaProceso as the process saw it, read through the window object
// by name the way a host does.
struct Llamada
{
    ArgumentosProceso argumentos;
    QString codigo, estado;
    bool visible = false;
};

QList<Llamada> llamadas;
std::function<void(ArgumentosProceso &)> alIniciar;

class ProcesosGrabados : public ControlProcesos
{
    Q_OBJECT
public:
    void IniciaProceso(ArgumentosProceso &a) override
    {
        Llamada l{a, {}, {}, false};
        if (QObject *ventana = a.objeto) {
            l.codigo = ventana->property("Codigo").toString();
            l.estado = ventana->property("Estado").toString();
            if (auto *w = qobject_cast<QWidget *>(ventana))
                l.visible = w->isVisible();
        }
        llamadas << l;
        if (alIniciar)
            alIniciar(a);
    }
    void ConsultaProceso(VBool &) override {}
    void ImprimeReporte(const QString &, qint32, Ambiente *, QObject *) override {}
    void CierraProceso(qint32) override {}
};

class AmbienteMinimo : public Ambiente
{
    Q_OBJECT
public:
    QSqlDatabase Conexion() const override { return {}; }
    QString UsuarioActual() const override { return QStringLiteral("ADMIN"); }
    QString RutaAplicacion() const override { return {}; }
    QVariant EjecutaSQL(const QString &) override { return {}; }
    qint32 DatoFechaA() const override { return 0; }
    qint32 DatoFechaB() const override { return 0; }
    QVariant DatoDocumento() const override { return {}; }
    RecordsetPtr ParametrosEstacion() override { return {}; }
    QObject *ContenedorRutas() override { return nullptr; }
};

QList<frmFracciones *> ventanasAbiertas()
{
    QList<frmFracciones *> lista;
    for (QWidget *w : QApplication::topLevelWidgets())
        if (auto *f = qobject_cast<frmFracciones *>(w); f && f->isVisible())
            lista << f;
    return lista;
}

QStringList claves()
{
    QStringList l;
    for (const Llamada &c : llamadas)
        l << c.argumentos.proceso;
    return l;
}

void teclea(QWindow *ventana, const QString &texto)
{
    for (QChar c : texto)
        QTest::keyClick(ventana, c.toLatin1());
}

} // namespace

class TstFracciones : public QObject
{
    Q_OBJECT

    AmbienteMinimo m_ambiente;
    QStringList m_informes;

    // Opens the window the way the host does and waits until it is active.
    QPointer<frmFracciones> abre()
    {
        Produccion produccion;
        produccion.SetAmbiente(&m_ambiente);
        const auto antes = ventanasAbiertas();
        produccion.MuestraCapturaDeFracciones();
        for (frmFracciones *f : ventanasAbiertas())
            if (!antes.contains(f))
                return QTest::qWaitForWindowActive(f) ? f : nullptr;
        return nullptr;
    }

private Q_SLOTS:
    void init()
    {
        modulo::reinicia();
        ClassRegistry::instance().add(QStringLiteral("ControlProcesos"),
                                      [] { return new ProcesosGrabados; });
        llamadas.clear();
        alIniciar = nullptr;
        m_informes.clear();
        setReportSink([this](const QString &, const QString &texto) { m_informes << texto; });
    }
    void cleanup()
    {
        for (QWidget *w : QApplication::topLevelWidgets())
            delete w;
        modulo::reinicia();
        ClassRegistry::instance().remove(QStringLiteral("ControlProcesos"));
        setReportSink({});
    }

    void loadHandsTheWindowToTheWelcomeProcess()
    {
        auto f = abre();
        QVERIFY(f);
        QCOMPARE(claves(), QStringList{QStringLiteral("FRACCIONES001")});
        const Llamada &l = llamadas.first();
        QVERIFY(!l.visible); // load runs before the window shows
        QCOMPARE(l.estado, QStringLiteral("ESPERANDO USUARIO"));
        QCOMPARE(l.argumentos.objeto.data(), f.data());
        QCOMPARE(l.argumentos.ambiente.data(), &m_ambiente);
        QCOMPARE(l.argumentos.valor, QVariant(QString("")));
        QVERIFY(l.argumentos.referencia.isNull());
        QCOMPARE(l.argumentos.bandera, VTrue);
        QCOMPARE(l.argumentos.numero, 0);
        QVERIFY(!l.argumentos.texto.isNull() && l.argumentos.texto.isEmpty());
        QVERIFY(l.argumentos.textoNulo.isNull());
        QVERIFY(!l.argumentos.textoFinal.isNull() && l.argumentos.textoFinal.isEmpty());
        QVERIFY(l.argumentos.referenciaFinal.isNull());

        QCOMPARE(f->windowTitle(), QStringLiteral("Captura de fracciones"));
        QVERIFY(!f->isModal());
        QVERIFY(!f->parentWidget());
        QCOMPARE(f->property("Ambiente").value<QObject *>(), &m_ambiente);
        QVERIFY(f->findChild<QTextBrowser *>(QStringLiteral("wb")));
        QTRY_COMPARE(f->WindowState(), Ventana::Maximizada);
        QCOMPARE(QApplication::focusWidget(), f->txtFields(0));
        QVERIFY(m_informes.isEmpty());
    }

    // Enter starts "FRACCIONES" with the trimmed line typed so far; the
    // window leaves the field as it was.
    void enterStartsTheCapture_data()
    {
        QTest::addColumn<QString>("tecleado");
        QTest::addColumn<QString>("codigo");
        QTest::newRow("vacío") << QString() << QString();
        QTest::newRow("solo blancos") << QStringLiteral("   ") << QString();
        QTest::newRow("blancos alrededor") << QStringLiteral("  75010 ") << QStringLiteral("75010");
        QTest::newRow("blanco interior") << QStringLiteral(" AB 12  ") << QStringLiteral("AB 12");
        QTest::newRow("una letra") << QStringLiteral("x") << QStringLiteral("x");
    }
    void enterStartsTheCapture()
    {
        QFETCH(QString, tecleado);
        QFETCH(QString, codigo);
        auto f = abre();
        QVERIFY(f);
        teclea(f->windowHandle(), tecleado);
        QTest::keyClick(f->windowHandle(), Qt::Key_Return);
        QCOMPARE(claves(),
                 (QStringList{QStringLiteral("FRACCIONES001"), QStringLiteral("FRACCIONES")}));
        const Llamada &l = llamadas.last();
        QCOMPARE(l.codigo, codigo);
        QCOMPARE(f->Codigo, codigo);
        QCOMPARE(l.argumentos.objeto.data(), f.data());
        QCOMPARE(l.argumentos.ambiente.data(), &m_ambiente);
        QCOMPARE(l.argumentos.bandera, VTrue);
        QCOMPARE(f->txtFields(0)->text(), tecleado);
        QVERIFY(m_informes.isEmpty());
    }

    // Every other key only refreshes Codigo, with the text before that key.
    void otherKeysOnlyRefreshCodigo()
    {
        auto f = abre();
        QVERIFY(f);
        teclea(f->windowHandle(), QStringLiteral(" AB"));
        QCOMPARE(f->Codigo, QStringLiteral("A"));
        QTest::keyClick(f->windowHandle(), Qt::Key_F5);
        QCOMPARE(f->property("Codigo").toString(), QStringLiteral("AB"));
        QTest::keyClick(f->windowHandle(), Qt::Key_Backspace);
        QTest::keyClick(f->windowHandle(), Qt::Key_Delete);
        QCOMPARE(f->Codigo, QStringLiteral("A"));
        QCOMPARE(claves(), QStringList{QStringLiteral("FRACCIONES001")});
    }

    // What the process does through the window object stays done.
    void processWorksThroughTheWindowObject()
    {
        alIniciar = [](ArgumentosProceso &a) {
            if (a.proceso != QLatin1String("FRACCIONES"))
                return;
            a.objeto->setProperty("Estado", QStringLiteral("CAPTURADO"));
            a.objeto->findChild<QLineEdit *>(QStringLiteral("txtFields_0"))->clear();
            a.bandera = VFalse;
        };
        auto f = abre();
        QVERIFY(f);
        teclea(f->windowHandle(), QStringLiteral("A1"));
        QTest::keyClick(f->windowHandle(), Qt::Key_Enter, Qt::KeypadModifier);
        QCOMPARE(llamadas.last().codigo, QStringLiteral("A1"));
        QCOMPARE(f->Estado, QStringLiteral("CAPTURADO"));
        QCOMPARE(f->txtFields(0)->text(), QString());
        // The next code starts from the cleared field.
        teclea(f->windowHandle(), QStringLiteral("B2"));
        QTest::keyClick(f->windowHandle(), Qt::Key_Return);
        QCOMPARE(llamadas.last().codigo, QStringLiteral("B2"));
    }

    void twoCallsOpenTwoIndependentWindows()
    {
        auto primera = abre();
        auto segunda = abre();
        QVERIFY(primera && segunda);
        QVERIFY(primera != segunda);
        QCOMPARE(claves(),
                 (QStringList{QStringLiteral("FRACCIONES001"), QStringLiteral("FRACCIONES001")}));
        teclea(segunda->windowHandle(), QStringLiteral("22"));
        QTest::keyClick(segunda->windowHandle(), Qt::Key_Return);
        QCOMPARE(llamadas.last().argumentos.objeto.data(), segunda.data());
        QCOMPARE(primera->Codigo, QString());
        QVERIFY(segunda->descarga());
        QTRY_VERIFY(segunda.isNull());
        QVERIFY(primera->isVisible());
        primera->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(primera));
        teclea(primera->windowHandle(), QStringLiteral("11"));
        QTest::keyClick(primera->windowHandle(), Qt::Key_Return);
        QCOMPARE(llamadas.last().argumentos.objeto.data(), primera.data());
        QCOMPARE(llamadas.last().codigo, QStringLiteral("11"));
    }

    void repaintTakesTheFocusBack()
    {
        auto f = abre();
        QVERIFY(f);
        f->wb->setFocus();
        QCOMPARE(QApplication::focusWidget(), f->wb);
        f->repaint();
        QCOMPARE(QApplication::focusWidget(), f->txtFields(0));
    }

    void errorsAreReportedWithTheProcedureName_data()
    {
        QTest::addColumn<QString>("clave");
        QTest::addColumn<QString>("procedimiento");
        QTest::newRow("al cargar")
            << QStringLiteral("FRACCIONES001") << QStringLiteral("Form_Load");
        QTest::newRow("al capturar")
            << QStringLiteral("FRACCIONES") << QStringLiteral("txtFields_KeyDown");
    }
    void errorsAreReportedWithTheProcedureName()
    {
        QFETCH(QString, clave);
        QFETCH(QString, procedimiento);
        alIniciar = [clave](ArgumentosProceso &a) {
            if (a.proceso == clave)
                throw Error(QStringLiteral("Servicio no disponible"));
        };
        auto f = abre();
        QVERIFY(f); // a failing welcome still leaves the window open
        QTest::keyClick(f->windowHandle(), Qt::Key_Return);
        QCOMPARE(
            m_informes,
            QStringList{QStringLiteral("Error occured:\r\nModule: frmFracciones\r\nFunction: ") +
                        procedimiento + QStringLiteral("\r\nDescription: Servicio no disponible")});
    }

    void missingProcessControlIsReportedAtLoad()
    {
        ClassRegistry::instance().remove(QStringLiteral("ControlProcesos"));
        auto f = abre();
        QVERIFY(f);
        QCOMPARE(m_informes.size(), 1);
        QVERIFY(m_informes.first().startsWith(
            QStringLiteral("Error occured:\r\nModule: frmFracciones\r\nFunction: Form_Load\r\n"
                           "Description: ")));
        QCOMPARE(f->Estado, QStringLiteral("ESPERANDO USUARIO"));
    }
};

QTEST_MAIN(TstFracciones)
#include "tst_fracciones.moc"
