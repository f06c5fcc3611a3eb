// Runs on SQLite and again on MariaDB.

#include "component/Produccion.h"
#include "core/Modulo.h"
#include "fractions/frmFracciones.h"
#include "host/servicios/AmbienteAnfitrion.h"
#include "runtime/Error.h"
#include "tests/support/BaseDePrueba.h"
#include "tests/support/CapturaReportes.h"
#include "tests/support/Ventanas.h"

#include <QApplication>
#include <QLineEdit>
#include <QTest>
#include <QTextBrowser>

using namespace zuvi;

class TstProcesoFracciones : public QObject
{
    Q_OBJECT

    std::unique_ptr<pruebas::BaseDePrueba> m_base;
    std::optional<pruebas::CapturaReportes> m_informes;

private Q_SLOTS:
    void init()
    {
        pruebas::preparaRegistro();
        m_informes.emplace();
        m_base = std::make_unique<pruebas::BaseDePrueba>();
        m_base->fijaReloj(QDateTime(QDate(2024, 5, 2), QTime(10, 15, 30)));
    }
    void cleanup()
    {
        pruebas::cierraTodo();
        modulo::reinicia();
        m_base.reset();
    }

    // An article or a secondary key is shown with its stock and recorded once, trimmed, with user,
    // date, time and station, and the field is cleared; anything else records nothing, says why.
    void capturaATravesDeLaVentana_data()
    {
        QTest::addColumn<QString>("tecleado");
        QTest::addColumn<QString>("articulo"); // recorded article, empty when none
        QTest::addColumn<QString>("enVisor");
        const auto fila = [](const char *nombre, const char *t, const char *a, const char *v) {
            QTest::newRow(nombre) << QString(t) << QString(a) << QString(v);
        };
        fila("artículo con blancos", "  TORN-01  ", "TORN-01", "Almacén general");
        fila("clave adicional con blancos", " 7501000000011 ", "TORN-01", "Almacén general");
        fila("kit sin existencias", "REP-NEGRA", "REPISA", "Sin existencias");
        fila("desconocido", "NO-EXISTE", "", "«NO-EXISTE» no corresponde a ningún artículo");
        fila("comilla sin escapar", "A'B", "", "«A'B» no corresponde");
        fila("solo blancos", "   ", "", "Escriba un código");
    }
    void capturaATravesDeLaVentana()
    {
        QFETCH(QString, tecleado);
        QFETCH(QString, articulo);
        QFETCH(QString, enVisor);
        Produccion produccion; // opens the window the way the host does
        produccion.SetAmbiente(m_base->ambiente());
        produccion.MuestraCapturaDeFracciones();
        QPointer f = pruebas::ventanaAbierta<frmFracciones>();
        QVERIFY(f);
        QTest::keyClicks(f->txtFields(0), tecleado);
        QTest::keyClick(f->windowHandle(), Qt::Key_Return);
        QCOMPARE(m_informes->toma(), QStringList());
        m_informes.reset();
        const QString visor = f->wb->toPlainText();
        QVERIFY2(visor.contains(enVisor) && visor.contains(articulo), qPrintable(visor));
        QCOMPARE(f->txtFields(0)->text(), articulo.isEmpty() ? tecleado : QString());
        const QString fila = tecleado.trimmed() + '|' + articulo + "|ADMIN|2024-05-02|10:15:30|1";
        QCOMPARE(m_base->filas("SELECT codigo, articulo, usuario, fecha, hora, estacion FROM "
                               "fracciones",
                               '|'),
                 articulo.isEmpty() ? QStringList() : QStringList{fila});
    }
};

QTEST_MAIN(TstProcesoFracciones)
#include "tst_procesofracciones.moc"
