// The main window over a demo database, the component loaded by name, questions scripted.

#include "app/Componente.h"
#include "app/DialogoKit.h"
#include "app/VentanaPrincipal.h"
#include "tests/support/BaseDePrueba.h"
#include "tests/support/InteraccionGuionada.h"

#include <QtTest>
#include <QtWidgets>

using namespace zuvi;

class TstVentanaPrincipal : public QObject
{
    Q_OBJECT

private slots:
    void ordersListActionsAndKits()
    {
        pruebas::preparaRegistro();
        pruebas::BaseDePrueba base;
        auto guion = pruebas::InteraccionGuionada::instala();
        auto produccion = app::creaProduccion(base.ambiente());
        app::VentanaPrincipal ventana(base.sesion(), produccion.get());
        ventana.show();
        auto accion = [&](const char *nombre) { return ventana.findChild<QAction *>(nombre); };
        auto numero = [&](const char *sql) { return base.escalar(sql).toDouble(); };
        auto columna = [lista = ventana.findChild<QTableWidget *>("lstOrdenes")](int c) {
            QStringList s;
            for (int f = 0; f < lista->rowCount(); ++f)
                s << lista->item(f, c)->text();
            return s;
        };

        // The list, and the order actions following the selection.
        QCOMPARE(ventana.objectName(), QStringLiteral("frmMaster")); // the component looks for it
        QCOMPARE(produccion->property("Parent").value<QObject *>(), &ventana);
        QCOMPARE(columna(0), (QStringList{"1", "2", "3"}));
        QCOMPARE(columna(6), (QStringList{"2", "1", "0"})); // line counts
        QVERIFY(!accion("actEntregar")->isEnabled() && !accion("actCancelar")->isEnabled());
        QVERIFY(ventana.seleccionaOrden(2));
        QVERIFY(accion("actEntregar")->isEnabled() && accion("actCancelar")->isEnabled());
        // Changes made behind the window's back show on refresh; the selection stays.
        base.ejecuta(QStringLiteral("UPDATE op SET cerrado = 1 WHERE op = 2"));
        ventana.actualiza();
        QCOMPARE(columna(5), (QStringList{"", "Sí", ""}));
        QCOMPARE(ventana.ordenSeleccionada(), 2);

        QVERIFY(ventana.seleccionaOrden(3));
        guion->respuestas({true, false, true});
        accion("actCancelar")->trigger();
        QCOMPARE(columna(0), (QStringList{"1", "2"}));
        QVERIFY(ventana.ordenSeleccionada() == 0 && !accion("actCancelar")->isEnabled());
        const char *resto = "SELECT COUNT(*) FROM oppart WHERE op = 1 AND terminado <> cantidad";
        QVERIFY(ventana.seleccionaOrden(1));
        accion("actEntregar")->trigger(); // answered no
        QCOMPARE(numero(resto), 2.0);
        accion("actEntregar")->trigger();
        QCOMPARE(numero(resto), 0.0);
        QCOMPARE(guion->preguntas().size(), 3); // one to cancel, one per delivery

        const char *movimientos = "SELECT COUNT(*) FROM movimientos";
        auto kit = [&](const QString &texto, const QString &articulo) { // movements it made
            const double antes = numero(movimientos);
            QTimer::singleShot(0, this, [articulo] {
                auto *d = qobject_cast<app::DialogoKit *>(QApplication::activeModalWidget());
                QVERIFY(d);
                d->findChild<QComboBox *>("cmbArticulo")->setCurrentText(articulo);
                d->findChild<QComboBox *>("cmbAlmacen")->setCurrentText(QStringLiteral("3"));
                d->findChild<QDoubleSpinBox *>("spnCantidad")->setValue(1);
                d->accept();
            });
            for (QAction *a : ventana.findChildren<QAction *>())
                if (a->text() == texto)
                    a->trigger();
            return numero(movimientos) - antes;
        };
        QCOMPARE(kit("&Ensamblar...", "SOPORTE"), 4.0);
        QCOMPARE(kit("&Desensamblar...", "SOPORTE"), 4.0);
        // A kit inside the kit: refused before the component is asked, and said why.
        QCOMPARE(kit("&Desensamblar...", "REPISA"), 0.0);
        QCOMPARE(guion->textosMensajes().size(), 1);
        QVERIFY(guion->textosMensajes().first().contains(u"SOPORTE"));
    }
};

QTEST_MAIN(TstVentanaPrincipal)
#include "tst_ventanaprincipal.moc"
