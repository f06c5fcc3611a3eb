// Runs on SQLite and again on MariaDB (ZUVI_PRUEBA_AMBAS_BASES).

#include "component/Modulo.h"
#include "component/Produccion.h"
#include "fractions/frmFracciones.h"
#include "host/AmbienteAnfitrion.h"
#include "runtime/Error.h"
#include "tests/support/BaseDePrueba.h"

#include <QApplication>
#include <QLineEdit>
#include <QSqlQuery>
#include <QTest>
#include <QTextBrowser>

using namespace zuvi;
using zuvi::pruebas::BaseDePrueba;

class TstProcesoFracciones : public QObject
{
    Q_OBJECT

    std::unique_ptr<BaseDePrueba> m_base;
    QStringList m_informes;

private Q_SLOTS:
    void init()
    {
        m_base = std::make_unique<BaseDePrueba>(true);
        pruebas::preparaRegistro();
        modulo::reinicia();
        qobject_cast<anfitrion::AmbienteAnfitrion *>(m_base->ambiente())
            ->ponAhora(QDateTime(QDate(2024, 5, 2), QTime(10, 15, 30)));
        m_informes.clear();
        setReportSink([this](const QString &, const QString &texto) { m_informes << texto; });
    }
    void cleanup()
    {
        qDeleteAll(QApplication::topLevelWidgets());
        modulo::reinicia();
        m_base.reset();
        setReportSink({});
    }

    // An article or a secondary key is shown with its stock and recorded once,
    // trimmed, with user, date, time and station, and the field is cleared for
    // the next code; anything else records nothing and says why.
    void captureThroughTheWindow_data()
    {
        QTest::addColumn<QString>("tecleado");
        QTest::addColumn<QString>("articulo"); // recorded article, empty when none
        QTest::addColumn<QString>("enVisor");
        QTest::newRow("artículo con blancos")
            << QString("  TORN-01  ") << QString("TORN-01") << QString("Almacén general");
        QTest::newRow("clave adicional con blancos")
            << QString(" 7501000000011 ") << QString("TORN-01") << QString("Almacén general");
        QTest::newRow("kit sin existencias")
            << QString("REP-NEGRA") << QString("REPISA") << QString("Sin existencias");
        QTest::newRow("desconocido") << QString("NO-EXISTE") << QString()
                                     << QString("«NO-EXISTE» no corresponde a ningún artículo");
        QTest::newRow("comilla sin escapar")
            << QString("A'B") << QString() << QString("«A'B» no corresponde");
        QTest::newRow("solo blancos")
            << QString("   ") << QString() << QString("Escriba un código");
    }
    void captureThroughTheWindow()
    {
        QFETCH(QString, tecleado);
        QFETCH(QString, articulo);
        QFETCH(QString, enVisor);
        Produccion produccion; // opens the window the way the host does
        produccion.SetAmbiente(m_base->ambiente());
        produccion.MuestraCapturaDeFracciones();
        QPointer f = qobject_cast<frmFracciones *>(QApplication::topLevelWidgets().value(0));
        QVERIFY(f && QTest::qWaitForWindowActive(f));
        QTest::keyClicks(f->txtFields(0), tecleado);
        QTest::keyClick(f->windowHandle(), Qt::Key_Return);
        QCOMPARE(m_informes, QStringList());
        const QString visor = f->wb->toPlainText();
        QVERIFY2(visor.contains(enVisor) && visor.contains(articulo), qPrintable(visor));
        QCOMPARE(f->txtFields(0)->text(), articulo.isEmpty() ? tecleado : QString());
        QSqlQuery q(m_base->conexion());
        QVERIFY(q.exec(QStringLiteral(
            "SELECT codigo, articulo, usuario, fecha, hora, estacion FROM fracciones")));
        QStringList filas;
        while (q.next())
            for (int i = 0; i < 6; ++i)
                filas << q.value(i).toString();
        QCOMPARE(filas.join('|'), articulo.isEmpty() ? QString()
                                                     : tecleado.trimmed() + '|' + articulo +
                                                           "|ADMIN|2024-05-02|10:15:30|1");
    }
};

QTEST_MAIN(TstProcesoFracciones)
#include "tst_procesofracciones.moc"
