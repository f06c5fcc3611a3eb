// The main window over a demo database, the component loaded by name, questions scripted.

#include "app/Componente.h"
#include "app/DialogoKit.h"
#include "app/ModeloOrdenes.h"
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
    void listaDeOrdenesYAcciones()
    {
        pruebas::preparaRegistro();
        pruebas::BaseDePrueba base;
        auto guion = pruebas::InteraccionGuionada::instala();
        auto produccion = app::creaProduccion(base.ambiente());
        app::VentanaPrincipal ventana(base.sesion(), produccion.get());
        auto accion = [&](const char *nombre) { return ventana.findChild<QAction *>(nombre); };
        auto *lista = ventana.findChild<QTableView *>("lstOrdenes");
        auto columna = [lista](int c) {
            QString s;
            for (int f = 0; f < lista->model()->rowCount(); ++f)
                s += lista->model()->index(f, c).data().toString() + '|';
            return s;
        };

        QCOMPARE(ventana.objectName(), QStringLiteral("frmMaster")); // the component looks for it
        QCOMPARE(produccion->property("Parent").value<QObject *>(), &ventana);
        QCOMPARE(columna(0) + columna(6), "3|2|1|0|1|2|"); // newest first, then their line counts
        QVERIFY(!accion("actEntregar")->isEnabled() && !accion("actCancelar")->isEnabled());
        QVERIFY(ventana.seleccionaOrden(2));
        QVERIFY(accion("actEntregar")->isEnabled() && accion("actCancelar")->isEnabled());
        // Changes made behind the window's back show on refresh; the selection stays. A
        // closed order leaves the list until the filter asks for every order.
        base.ejecuta(QStringLiteral("UPDATE op SET cerrado = 1 WHERE op = 2"));
        ventana.actualiza();
        QVERIFY(columna(0) == "3|1|" && ventana.ordenSeleccionada() == 0);
        ventana.findChild<QComboBox *>("cmbEstado")->setCurrentText("Todas");
        QVERIFY(columna(5) == "|Sí||" && ventana.seleccionaOrden(2));
        ventana.findChild<QLineEdit *>("txtBuscar")->setText("2");
        QTRY_COMPARE(columna(0), "2|");
        ventana.findChild<QLineEdit *>("txtBuscar")->clear();
        QTRY_COMPARE(columna(0), "3|2|1|");
        // Issued between two dates, both kept.
        auto *desde = ventana.findChild<QDateEdit *>("dtpDesde");
        auto *hasta = ventana.findChild<QDateEdit *>("dtpHasta");
        QCOMPARE(base.escalar("SELECT f_emision FROM op WHERE op = 2").toDate(), QDate(2024, 5, 3));
        desde->setDate(QDate(2024, 5, 3));
        hasta->setDate(QDate(2024, 5, 6));
        QTRY_COMPARE(columna(0), "3|2|");
        desde->setDate(desde->minimumDate());
        hasta->setDate(QDate(2024, 5, 3));
        QTRY_COMPARE(columna(0), "2|1|");
        hasta->setDate(hasta->minimumDate());
        QTRY_COMPARE(columna(0), "3|2|1|");
        // By the date of issue, newest first, a missing date last; again, the other way.
        base.ejecuta("UPDATE op SET f_emision = '2024-05-10' WHERE op = 1");
        base.ejecuta("UPDATE op SET f_emision = NULL WHERE op = 2");
        auto *cabecera = lista->horizontalHeader();
        for (const auto &[seccion, esperado] :
             {std::pair{2, "1|3|2|"}, {2, "2|3|1|"}, {0, "3|2|1|"}}) {
            emit cabecera->sectionClicked(seccion);
            QCOMPARE(columna(0), esperado);
            QCOMPARE(cabecera->sortIndicatorSection(), seccion);
        }
        base.ejecuta("UPDATE op SET f_emision = '2024-05-02' WHERE op = 1");
        base.ejecuta("UPDATE op SET f_emision = '2024-05-03' WHERE op = 2");

        QVERIFY(ventana.seleccionaOrden(3));
        guion->respuestas({true, false, true});
        accion("actCancelar")->trigger();
        QCOMPARE(columna(0), "2|1|");
        QVERIFY(ventana.ordenSeleccionada() == 0 && !accion("actCancelar")->isEnabled());
        const char *resto = "SELECT COUNT(*) FROM oppart WHERE op = 1 AND terminado <> cantidad";
        QVERIFY(ventana.seleccionaOrden(1));
        accion("actEntregar")->trigger(); // answered no
        QCOMPARE(base.escalar(resto).toInt(), 2);
        accion("actEntregar")->trigger();
        QCOMPARE(base.escalar(resto).toInt(), 0);
        // Delivered already: a second delivery asks again; a no posts nothing.
        const QString movimientos = "SELECT COUNT(*) FROM movimientos";
        const int antes = base.escalar(movimientos).toInt();
        guion->respuestas({true, false});
        accion("actEntregar")->trigger();
        QCOMPARE(base.escalar(movimientos).toInt(), antes);
        QCOMPARE(guion->preguntas().size(), 5); // one to cancel, one per delivery, one "again"
        QVERIFY(guion->preguntas().last().contains("ya tiene 2 entrada(s)"));
    }

    // Page after page, by number or by date either way, the list is the database's order,
    // missing dates included.
    void paginas()
    {
        pruebas::BaseDePrueba base;
        for (int i = 10; i < 520; ++i)
            base.ejecuta(QStringLiteral("INSERT INTO op (op, f_emision) VALUES (%1, %2)")
                             .arg(i)
                             .arg(i % 7 ? QStringLiteral("'2024-06-%1'").arg(i % 13 + 10)
                                        : QStringLiteral("NULL")));
        app::ModeloOrdenes modelo(base.conexion());
        for (const bool porEmision : {false, true})
            for (const bool ascendente : {false, true}) {
                app::FiltroOrdenes f;
                f.estado = app::FiltroOrdenes::Estado::Todas;
                f.porEmision = porEmision;
                f.ascendente = ascendente;
                modelo.ponFiltro(f);
                while (modelo.canFetchMore({}))
                    modelo.fetchMore({});
                QStringList ops;
                for (int r = 0; r < modelo.rowCount(); ++r)
                    ops << QString::number(modelo.orden(r));
                const QString sentido = ascendente ? " ASC" : " DESC";
                QCOMPARE(ops.join(' '),
                         base.filas("SELECT op FROM op ORDER BY " +
                                    (porEmision ? "f_emision" + sentido + ", " : QString()) + "op" +
                                    sentido)
                             .join(' '));
            }
    }

    // The kit dialog refuses what every other door refuses, and says why; what it lets through
    // posts the components and the kit.
    // The dialog hands what it holds to the host's checks and shows their refusal once,
    // staying open; which arguments the host refuses is proved where the host makes it.
    void dialogoDeKits()
    {
        const struct
        {
            bool desensambla;
            const char *articulo, *almacen;
            double cantidad;
            int orden;
            const char *dice; // the refusal; empty when let through
        } casos[] = {
            {false, "SOPORTE", "3", 2.0, 0, ""},
            {true, "SOPORTE", "3", 1.5, 1, ""},
            {true, "REPISA", "3", 1.0, 0, "SOPORTE es a su vez un kit"},
            {true, "SOPORTE", "x", 1.0, 0, "número entero"}, // the dialog's own
        };
        pruebas::preparaRegistro();
        for (const auto &caso : casos) {
            const QString dice = QString::fromUtf8(caso.dice);
            pruebas::BaseDePrueba base;
            auto guion = pruebas::InteraccionGuionada::instala();
            auto produccion = app::creaProduccion(base.ambiente());
            app::VentanaPrincipal ventana(base.sesion(), produccion.get());
            bool cerrado = false;
            QTimer::singleShot(0, this, [&] {
                auto *d = qobject_cast<app::DialogoKit *>(QApplication::activeModalWidget());
                QVERIFY(d);
                d->findChild<QComboBox *>("cmbArticulo")->setCurrentText(caso.articulo);
                d->findChild<QComboBox *>("cmbAlmacen")->setCurrentText(caso.almacen);
                d->findChild<QDoubleSpinBox *>("spnCantidad")->setValue(caso.cantidad);
                d->findChild<QSpinBox *>("spnOrden")->setValue(caso.orden);
                d->accept();
                cerrado = !d->isVisible();
                if (!cerrado)
                    d->reject();
            });
            const QString texto = caso.desensambla ? "&Desensamblar..." : "&Ensamblar...";
            for (QAction *a : ventana.findChildren<QAction *>())
                if (a->text() == texto)
                    a->trigger();
            const QStringList mensajes = guion->textosMensajes();
            QCOMPARE(cerrado, dice.isEmpty());
            QCOMPARE(base.escalar("SELECT COUNT(*) FROM movimientos").toInt(),
                     dice.isEmpty() ? 4 : 0);
            QVERIFY2(dice.isEmpty() ? mensajes.isEmpty()
                                    : mensajes.size() == 1 && mensajes[0].contains(dice),
                     qPrintable(mensajes.join('|')));
        }
    }
};

QTEST_MAIN(TstVentanaPrincipal)
#include "tst_ventanaprincipal.moc"
