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
    void listaDeOrdenesAccionesYKits()
    {
        pruebas::preparaRegistro();
        pruebas::BaseDePrueba base;
        auto guion = pruebas::InteraccionGuionada::instala();
        auto produccion = app::creaProduccion(base.ambiente());
        app::VentanaPrincipal ventana(base.sesion(), produccion.get());
        auto accion = [&](const char *nombre) { return ventana.findChild<QAction *>(nombre); };
        auto columna = [lista = ventana.findChild<QTableWidget *>("lstOrdenes")](int c) {
            QString s;
            for (int f = 0; f < lista->rowCount(); ++f)
                s += lista->item(f, c)->text() + '|';
            return s;
        };

        QCOMPARE(ventana.objectName(), QStringLiteral("frmMaster")); // the component looks for it
        QCOMPARE(produccion->property("Parent").value<QObject *>(), &ventana);
        QCOMPARE(columna(0) + columna(6), "1|2|3|2|1|0|"); // orders, then their line counts
        QVERIFY(!accion("actEntregar")->isEnabled() && !accion("actCancelar")->isEnabled());
        QVERIFY(ventana.seleccionaOrden(2));
        QVERIFY(accion("actEntregar")->isEnabled() && accion("actCancelar")->isEnabled());
        // Changes made behind the window's back show on refresh; the selection stays.
        base.ejecuta(QStringLiteral("UPDATE op SET cerrado = 1 WHERE op = 2"));
        ventana.actualiza();
        QVERIFY(columna(5) == "|Sí||" && ventana.ordenSeleccionada() == 2);

        QVERIFY(ventana.seleccionaOrden(3));
        guion->respuestas({true, false, true});
        accion("actCancelar")->trigger();
        QCOMPARE(columna(0), "1|2|");
        QVERIFY(ventana.ordenSeleccionada() == 0 && !accion("actCancelar")->isEnabled());
        const char *resto = "SELECT COUNT(*) FROM oppart WHERE op = 1 AND terminado <> cantidad";
        QVERIFY(ventana.seleccionaOrden(1));
        accion("actEntregar")->trigger(); // answered no
        QCOMPARE(base.escalar(resto).toInt(), 2);
        accion("actEntregar")->trigger();
        QCOMPARE(base.escalar(resto).toInt(), 0);
        QCOMPARE(guion->preguntas().size(), 3); // one to cancel, one per delivery

        auto kit = [&](const QString &texto, const QString &articulo) { // movements it made
            const int antes = base.escalar("SELECT COUNT(*) FROM movimientos").toInt();
            QTimer::singleShot(0, this, [articulo] {
                auto *d = qobject_cast<app::DialogoKit *>(QApplication::activeModalWidget());
                QVERIFY(d);
                d->findChild<QComboBox *>("cmbArticulo")->setCurrentText(articulo);
                d->findChild<QComboBox *>("cmbAlmacen")->setCurrentText(QStringLiteral("3"));
                d->accept();
            });
            for (QAction *a : ventana.findChildren<QAction *>())
                if (a->text() == texto)
                    a->trigger();
            return base.escalar("SELECT COUNT(*) FROM movimientos").toInt() - antes;
        };
        QCOMPARE(kit("&Ensamblar...", "SOPORTE"), 4);
        QCOMPARE(kit("&Desensamblar...", "SOPORTE"), 4);
        QCOMPARE(kit("&Desensamblar...", "REPISA"), 0); // a kit inside: refused, and said why
        QVERIFY(guion->textosMensajes().size() == 1 &&
                guion->textosMensajes()[0].contains("SOPORTE"));
    }
};

QTEST_MAIN(TstVentanaPrincipal)
#include "tst_ventanaprincipal.moc"
