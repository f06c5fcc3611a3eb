// The main window "frmMaster" over a demo database, with the component loaded
// by name and the interaction seam scripted.

#include "app/Comandos.h"
#include "app/Componente.h"
#include "app/DialogoKit.h"
#include "app/Kits.h"
#include "app/VentanaPrincipal.h"

#include "tests/support/BaseDePrueba.h"
#include "tests/support/InteraccionGuionada.h"

#include <QTimer>
#include <QtTest>
#include <QtWidgets>

using namespace zuvi;
using zuvi::pruebas::BaseDePrueba;
using zuvi::pruebas::InteraccionGuionada;

class TstVentanaPrincipal : public QObject
{
    Q_OBJECT

    std::unique_ptr<BaseDePrueba> m_base;
    std::unique_ptr<QObject> m_produccion;
    std::unique_ptr<app::VentanaPrincipal> m_ventana;
    std::shared_ptr<InteraccionGuionada> m_guion;

    QAction *accion(const char *nombre) { return m_ventana->findChild<QAction *>(nombre); }
    QTableWidget *lista() { return m_ventana->findChild<QTableWidget *>("lstOrdenes"); }
    QStringList columna(int c)
    {
        QStringList s;
        for (int f = 0; f < lista()->rowCount(); ++f)
            s << lista()->item(f, c)->text();
        return s;
    }
    double numero(const QString &sql) { return m_base->escalar(sql).toDouble(); }

private slots:
    void initTestCase() { pruebas::preparaRegistro(); }

    void init()
    {
        m_base = std::make_unique<BaseDePrueba>();
        m_guion = InteraccionGuionada::instala();
        m_produccion = app::creaProduccion(m_base->ambiente());
        m_ventana = std::make_unique<app::VentanaPrincipal>(m_base->sesion(), m_produccion.get());
        m_ventana->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_ventana.get()));
    }

    void cleanup()
    {
        m_ventana.reset();
        m_produccion.reset();
        m_base.reset();
    }

    void listsTheOrdersAndHandsItselfToTheComponent()
    {
        QCOMPARE(m_ventana->objectName(), QStringLiteral("frmMaster"));
        QCOMPARE(m_produccion->property("Parent").value<QObject *>(), m_ventana.get());
        QCOMPARE(columna(0), (QStringList{"1", "2", "3"}));
        QCOMPARE(columna(1), (QStringList{"PE", "CO", "PE"}));
        QCOMPARE(columna(6), (QStringList{"2", "1", "0"})); // line counts
        // Changes made behind the window's back show on refresh.
        m_base->ejecuta(QStringLiteral("UPDATE op SET cerrado = 1 WHERE op = 2"));
        m_ventana->actualiza();
        QCOMPARE(columna(5), (QStringList{"", "Sí", ""}));
    }

    void orderActionsFollowTheSelection()
    {
        for (const char *a : {"actEntregar", "actCancelar"})
            QVERIFY2(accion(a) && !accion(a)->isEnabled(), a);
        QVERIFY(m_ventana->seleccionaOrden(2));
        QCOMPARE(m_ventana->ordenSeleccionada(), 2);
        for (const char *a : {"actEntregar", "actCancelar"})
            QVERIFY2(accion(a)->isEnabled(), a);
        // The selection survives a refresh.
        m_ventana->actualiza();
        QCOMPARE(m_ventana->ordenSeleccionada(), 2);
    }

    void cancelRefreshesTheList()
    {
        QVERIFY(m_ventana->seleccionaOrden(3));
        m_guion->respuestas({true});
        accion("actCancelar")->trigger();
        QCOMPARE(m_guion->preguntas().size(), 1);
        QCOMPARE(columna(0), (QStringList{"1", "2"}));
        QCOMPARE(m_ventana->ordenSeleccionada(), 0);
        QVERIFY(!accion("actCancelar")->isEnabled());
    }

    void deliveryAsksFirst()
    {
        QVERIFY(m_ventana->seleccionaOrden(1));
        const QString pendientes =
            QStringLiteral("SELECT COUNT(*) FROM oppart WHERE op = 1 AND terminado <> cantidad");
        m_guion->respuestas({false});
        accion("actEntregar")->trigger();
        QCOMPARE(numero(pendientes), 2.0);
        m_guion->respuestas({true});
        accion("actEntregar")->trigger();
        QCOMPARE(numero(pendientes), 0.0);
        QCOMPARE(m_guion->preguntas().size(), 2);
    }

    void kitDialog_data()
    {
        QTest::addColumn<bool>("desensamble");
        QTest::addColumn<QString>("articulo");
        QTest::addColumn<int>("movimientos");
        QTest::addColumn<bool>("rechazo");
        QTest::newRow("ensamble") << false << "SOPORTE" << 4 << false;
        QTest::newRow("desensamble") << true << "SOPORTE" << 4 << false;
        QTest::newRow("kit anidado") << true << "REPISA" << 0 << true;
    }

    void kitDialog()
    {
        QFETCH(bool, desensamble);
        QFETCH(QString, articulo);
        QFETCH(int, movimientos);
        QFETCH(bool, rechazo);
        const QString cuenta = QStringLiteral("SELECT COUNT(*) FROM movimientos");
        const double antes = numero(cuenta);
        bool visto = false;
        QTimer::singleShot(0, this, [&] {
            auto *d = qobject_cast<app::DialogoKit *>(QApplication::activeModalWidget());
            if (!d)
                return;
            visto = true;
            d->findChild<QComboBox *>("cmbArticulo")->setCurrentText(articulo);
            d->findChild<QComboBox *>("cmbAlmacen")->setCurrentText(QStringLiteral("3"));
            d->findChild<QDoubleSpinBox *>("spnCantidad")->setValue(1);
            d->accept();
        });
        const QString texto =
            desensamble ? QStringLiteral("&Desensamblar...") : QStringLiteral("&Ensamblar...");
        QAction *a = nullptr;
        for (QAction *x : m_ventana->findChildren<QAction *>())
            if (x->text() == texto)
                a = x;
        QVERIFY(a);
        a->trigger();
        QVERIFY(visto);
        QCOMPARE(numero(cuenta), antes + movimientos);
        const QStringList mensajes = m_guion->textosMensajes();
        QCOMPARE(mensajes.size(), rechazo ? 1 : 0);
        if (rechazo)
            QVERIFY(mensajes.first().contains(QLatin1String("SOPORTE")));
    }
};

QTEST_MAIN(TstVentanaPrincipal)
#include "tst_ventanaprincipal.moc"
