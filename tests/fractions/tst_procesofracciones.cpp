// Runs on SQLite and again on MariaDB (ZUVI_PRUEBA_AMBAS_BASES).

#include "component/Modulo.h"
#include "component/Produccion.h"
#include "fractions/frmFracciones.h"
#include "host/AmbienteAnfitrion.h"
#include "host/Anfitrion.h"
#include "runtime/Error.h"
#include "tests/support/BaseDePrueba.h"

#include <QApplication>
#include <QLineEdit>
#include <QPointer>
#include <QSqlQuery>
#include <QTest>
#include <QTextBrowser>
#include <QWindow>

#include <memory>

using namespace zuvi;
using zuvi::pruebas::BaseDePrueba;

namespace {

void teclea(QWindow *ventana, const QString &texto)
{
    for (QChar c : texto)
        QTest::keyClick(ventana, c.toLatin1());
}

} // namespace

class TstProcesoFracciones : public QObject
{
    Q_OBJECT

    std::unique_ptr<BaseDePrueba> m_base;
    QStringList m_informes;

    QPointer<frmFracciones> abre()
    {
        Produccion produccion;
        produccion.SetAmbiente(m_base->ambiente());
        produccion.MuestraCapturaDeFracciones();
        for (QWidget *w : QApplication::topLevelWidgets())
            if (auto *f = qobject_cast<frmFracciones *>(w); f && f->isVisible())
                return QTest::qWaitForWindowActive(f) ? f : nullptr;
        return nullptr;
    }

    int capturas()
    {
        return m_base->escalar(QStringLiteral("SELECT COUNT(*) FROM fracciones")).toInt();
    }

private Q_SLOTS:
    void init()
    {
        m_base = std::make_unique<BaseDePrueba>(true);
        pruebas::preparaRegistro();
        modulo::reinicia();
        auto *ambiente = qobject_cast<anfitrion::AmbienteAnfitrion *>(m_base->ambiente());
        QVERIFY(ambiente);
        ambiente->ponAhora(QDateTime(QDate(2024, 5, 2), QTime(10, 15, 30)));
        m_informes.clear();
        setReportSink([this](const QString &, const QString &texto) { m_informes << texto; });
    }
    void cleanup()
    {
        for (QWidget *w : QApplication::topLevelWidgets())
            delete w;
        modulo::reinicia();
        m_base.reset();
        setReportSink({});
    }

    void welcomeShowsInTheViewer()
    {
        auto f = abre();
        QVERIFY(f);
        QVERIFY(f->wb->toPlainText().contains(QStringLiteral("pulse Enter")));
        QCOMPARE(f->Estado, QStringLiteral("ESPERANDO USUARIO"));
        QVERIFY(m_informes.isEmpty());
    }

    void captureThroughTheWindow_data()
    {
        QTest::addColumn<QString>("tecleado");
        QTest::addColumn<QString>("codigo");   // recorded code, empty when none
        QTest::addColumn<QString>("articulo"); // recorded article
        QTest::addColumn<QString>("estado");
        QTest::addColumn<QString>("enVisor");
        QTest::newRow("artículo con blancos")
            << QStringLiteral("  TORN-01  ") << QStringLiteral("TORN-01")
            << QStringLiteral("TORN-01") << QStringLiteral("CAPTURADO")
            << QStringLiteral("Almacén general");
        QTest::newRow("clave adicional")
            << QStringLiteral("7501000000011") << QStringLiteral("7501000000011")
            << QStringLiteral("TORN-01") << QStringLiteral("CAPTURADO")
            << QStringLiteral("Tornillo");
        QTest::newRow("kit por clave adicional")
            << QStringLiteral(" REP-NEGRA") << QStringLiteral("REP-NEGRA")
            << QStringLiteral("REPISA") << QStringLiteral("CAPTURADO")
            << QStringLiteral("Sin existencias");
        QTest::newRow("desconocido") << QStringLiteral("NO-EXISTE") << QString() << QString()
                                     << QStringLiteral("CODIGO NO ENCONTRADO")
                                     << QStringLiteral("«NO-EXISTE» no corresponde");
        QTest::newRow("comilla sin escapar")
            << QStringLiteral("A'B") << QString() << QString()
            << QStringLiteral("CODIGO NO ENCONTRADO") << QStringLiteral("«A'B»");
        QTest::newRow("vacío") << QStringLiteral("   ") << QString() << QString()
                               << QStringLiteral("ESPERANDO USUARIO")
                               << QStringLiteral("Escriba un código");
    }
    void captureThroughTheWindow()
    {
        QFETCH(QString, tecleado);
        QFETCH(QString, codigo);
        QFETCH(QString, articulo);
        QFETCH(QString, estado);
        QFETCH(QString, enVisor);
        auto f = abre();
        QVERIFY(f);
        teclea(f->windowHandle(), tecleado);
        QTest::keyClick(f->windowHandle(), Qt::Key_Return);
        QCOMPARE(m_informes, QStringList());
        QCOMPARE(f->Estado, estado);
        QVERIFY2(f->wb->toPlainText().contains(enVisor), qPrintable(f->wb->toPlainText()));
        if (codigo.isEmpty()) {
            QCOMPARE(capturas(), 0);
            return;
        }
        QCOMPARE(capturas(), 1);
        QSqlQuery q(m_base->conexion());
        QVERIFY(q.exec(QStringLiteral(
            "SELECT codigo, articulo, usuario, fecha, hora, estacion FROM fracciones")));
        QVERIFY(q.next());
        QCOMPARE(q.value(0).toString(), codigo);
        QCOMPARE(q.value(1).toString(), articulo);
        QCOMPARE(q.value(2).toString(), QStringLiteral("ADMIN"));
        QCOMPARE(q.value(3).toDate(), QDate(2024, 5, 2));
        QCOMPARE(q.value(4).toString(), QStringLiteral("10:15:30"));
        QCOMPARE(q.value(5).toString(), QStringLiteral("1"));
        // The field is ready for the next code, which makes a second row.
        QCOMPARE(f->txtFields(0)->text(), QString());
        teclea(f->windowHandle(), QStringLiteral("TUER-01"));
        QTest::keyClick(f->windowHandle(), Qt::Key_Return);
        QCOMPARE(capturas(), 2);
    }

    // Both processes let the caller go ahead, whatever the code.
    void bothProcessesClearTheVeto_data()
    {
        QTest::addColumn<QString>("clave");
        QTest::addColumn<QString>("codigo");
        QTest::newRow("bienvenida") << QStringLiteral("FRACCIONES001") << QString();
        QTest::newRow("captura") << QStringLiteral("FRACCIONES") << QStringLiteral("PLAC-01");
        QTest::newRow("desconocido") << QStringLiteral("FRACCIONES") << QStringLiteral("ZZZ");
        QTest::newRow("vacío") << QStringLiteral("FRACCIONES") << QString();
    }
    void bothProcessesClearTheVeto()
    {
        QFETCH(QString, clave);
        QFETCH(QString, codigo);
        frmFracciones ventana; // never shown: the process works on the object alone
        ventana.Codigo = codigo;
        ArgumentosProceso a;
        a.proceso = clave;
        a.objeto = &ventana;
        a.ambiente = m_base->ambiente();
        modulo::controlProcesos()->IniciaProceso(a);
        QCOMPARE(a.bandera, VFalse);
        VBool consultada = VTrue;
        modulo::controlProcesos()->ConsultaProceso(consultada);
        QCOMPARE(consultada, VFalse);
        QVERIFY(!ventana.wb->toPlainText().isEmpty());
    }

    void databaseFailureIsReportedByTheWindow()
    {
        auto f = abre();
        QVERIFY(f);
        m_base->ejecuta(QStringLiteral("DROP TABLE fracciones"));
        teclea(f->windowHandle(), QStringLiteral("TAB-01"));
        QTest::keyClick(f->windowHandle(), Qt::Key_Return);
        QCOMPARE(m_informes.size(), 1);
        QVERIFY2(m_informes.first().startsWith(QStringLiteral(
                     "Error occured:\r\nModule: frmFracciones\r\nFunction: txtFields_KeyDown\r\n"
                     "Description: ")),
                 qPrintable(m_informes.first()));
        QVERIFY(f->isVisible());
        QCOMPARE(f->txtFields(0)->text(), QStringLiteral("TAB-01"));
    }
};

QTEST_MAIN(TstProcesoFracciones)
#include "tst_procesofracciones.moc"
