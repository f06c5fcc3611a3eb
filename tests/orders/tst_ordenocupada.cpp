// A busy order across stations: a second station (another process) is refused
// with the holder's name, in the editor and in the batch operations, and may
// still view the order; of two stations claiming an order at the same
// instant only one gets it; a claim whose station is gone goes by itself;
// the main window shows who holds an order, opens the editor with itself as
// Parent, and releases a busy order after a question that names the holder.

#include "app/Componente.h"
#include "app/Lotes.h"
#include "app/VentanaPrincipal.h"
#include "host/base/Reclamos.h"
#include "orders/frmOp.h"
#include "tests/support/BaseDePrueba.h"
#include "tests/support/Corrida.h"
#include "tests/support/InteraccionGuionada.h"
#include "tests/support/Ventanas.h"

#include <QSqlQuery>
#include <QtTest>
#include <QtWidgets>

#include <latch>
#include <thread>

using namespace zuvi;
using pruebas::corre;
using pruebas::Corrida;

namespace {

// A claim nobody holds any longer: no such process, no such server session.
const char kReclamoMuerto[] = "INSERT INTO reclamos (op, usuario, estacion, equipo, proceso, "
                              "conexion, desde, motivo) VALUES (3, 'LAURA', '7', '%1', "
                              "2147483000, 2147483000, '2026-01-01 08:00:00', 'edicion')";

} // namespace

class TstOrdenOcupada : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        pruebas::preparaRegistro();
        QCOMPARE(corre({"registra"}).codigo, 0);
    }

    void segundaEstacionRechazada()
    {
        pruebas::BaseDePrueba base;
        auto guion = pruebas::InteraccionGuionada::instala();
        auto produccion = app::creaProduccion(base.ambiente());
        QMetaObject::invokeMethod(produccion.get(), "ModificaOp", Q_ARG(qint32, 1));
        QPointer<frmOp> f = pruebas::ventanaAbierta<frmOp>();
        QVERIFY(f);
        QCOMPARE(base.escalar("SELECT ocupado FROM op WHERE op = 1").toInt(), 1);

        const QString texto = base.mensaje(756) + " ADMIN " + base.mensaje(76);
        const Corrida otra =
            corre(QStringList{"invoca", "ModificaOp", "1"} + base.otraCuenta("OTRO", "captura"));
        QVERIFY2(otra.error.contains(texto), qPrintable(otra.error));
        QVERIFY(!otra.error.contains("Sin pantalla")); // no window was opened
        const Corrida vista =
            corre(QStringList{"invoca", "ConsultaOp", "1"} + base.otraCuenta("OTRO", "captura"));
        QCOMPARE(vista.codigo, 0);
        QVERIFY2(vista.error.contains("Sin pantalla"), qPrintable(vista.error));
        // The viewer neither marked nor released the order.
        QCOMPARE(base.escalar("SELECT ocupado FROM op WHERE op = 1").toInt(), 1);
        const QString titular = "ADMIN en la estación 1";
        QVERIFY2(otra.error.contains(titular), qPrintable(otra.error));
        // The batch operations refuse it too, naming the holder, and change nothing.
        for (const QStringList &lote :
             {QStringList{"cancela", "1", "--si"}, QStringList{"entrega", "1", "--si"},
              QStringList{"ensamble", "SOPORTE", "3", "1", "1"}}) {
            const Corrida c = corre(lote + QStringList{"--base", base.url(), "--usuario", "OTRO"});
            QVERIFY2(c.codigo != 0 && c.error.contains(titular), qPrintable(c.error));
        }
        QCOMPARE(base.cuenta("movimientos"), 0);
        QCOMPARE(base.cuenta("op WHERE op = 1"), 1);
        QVERIFY(f->descarga());
        QCOMPARE(base.escalar("SELECT ocupado FROM op WHERE op = 1").toInt(), 0);
        QCOMPARE(base.cuenta("reclamos"), 0);
    }

    // Two connections released at the same instant claim one order, round
    // after round (20, or ZUVI_VUELTAS when more): one gets it, the other is
    // told who; the other cannot give it back.
    void dosEstacionesALaVez()
    {
        pruebas::BaseDePrueba base;
        const QString original = base.conexion().connectionName();
        const int vueltas = qMax(20, qEnvironmentVariableIntValue("ZUVI_VUELTAS"));
        for (int vuelta = 0; vuelta < vueltas; ++vuelta) {
            std::latch salida(2), llegada(2), soltada(2);
            QString dice[2];
            bool solto[2] = {false, false};
            const auto estacion = [&](int i) {
                const QString nombre = QStringLiteral("carrera%1").arg(i);
                {
                    QSqlDatabase db = QSqlDatabase::cloneDatabase(original, nombre);
                    db.open();
                    anfitrion::ponIdentidad(db, i ? "LAURA" : "PEDRO", QString::number(7 + i));
                    salida.arrive_and_wait();
                    try {
                        anfitrion::reclama(db, 1, anfitrion::kReclamoEdicion);
                        dice[i] = "gana";
                    } catch (const Error &e) {
                        dice[i] = e.description();
                    }
                    llegada.arrive_and_wait();
                    if (dice[i] != "gana")
                        solto[i] = anfitrion::suelta(db, 1);
                    soltada.arrive_and_wait();
                    if (dice[i] == "gana")
                        solto[i] = anfitrion::suelta(db, 1);
                    anfitrion::quitaIdentidad(db);
                }
                QSqlDatabase::removeDatabase(nombre);
            };
            std::thread a(estacion, 0), b(estacion, 1);
            a.join();
            b.join();
            const int gana = dice[0] == "gana" ? 0 : 1;
            QVERIFY2(dice[1 - gana] != "gana", "dos estaciones tienen la orden");
            const QString quien = gana ? "LAURA en la estación 8" : "PEDRO en la estación 7";
            QVERIFY2(dice[1 - gana].contains(quien), qPrintable(dice[1 - gana]));
            QVERIFY(solto[gana] && !solto[1 - gana]);
            QCOMPARE(base.cuenta("reclamos"), 0);
        }
    }

    // A claim whose station is gone does not keep the order: the next opener
    // gets it, and is told whose it was.
    void reclamoSinEstacion()
    {
        pruebas::BaseDePrueba base;
        auto guion = pruebas::InteraccionGuionada::instala();
        base.ejecuta(QString(kReclamoMuerto).arg(QSysInfo::machineHostName()));
        base.ejecuta("UPDATE op SET ocupado = 1 WHERE op = 3");
        auto produccion = app::creaProduccion(base.ambiente());
        app::llamaMiembro(produccion.get(), base.conexion(), "ModificaOp", {3});
        QPointer<frmOp> f = pruebas::ventanaAbierta<frmOp>();
        QVERIFY(f);
        const QString dicho = guion->textosMensajes().join('\n');
        QVERIFY2(dicho.contains("LAURA en la estación 7") && dicho.contains("se liberó"),
                 qPrintable(dicho));
        QCOMPARE(base.filas("SELECT usuario, estacion, motivo FROM reclamos WHERE op = 3"),
                 QStringList{"ADMIN 1 edicion"});
        QVERIFY(f->descarga());
        QCOMPARE(base.cuenta("reclamos"), 0);
    }

    // The session that holds an order is dropped: the next statement opens
    // another, and the claim follows it, still alive to the other stations.
    void reclamoTrasReconectar()
    {
        if (!pruebas::BaseDePrueba::enMariaDB())
            QSKIP("only against a MariaDB server");
        pruebas::BaseDePrueba base;
        QSqlDatabase db = base.conexion();
        anfitrion::reclama(db, 1, anfitrion::kReclamoEdicion);
        QSqlDatabase otra = QSqlDatabase::cloneDatabase(db, "verdugo");
        QVERIFY(otra.open());
        QVERIFY(QSqlQuery(otra).exec("KILL " + base.escalar("SELECT CONNECTION_ID()").toString()));
        QCOMPARE(base.cuenta("op WHERE op = 1"), 1);
        const std::optional<anfitrion::Titular> t = anfitrion::titular(otra, 1);
        QVERIFY(t && t->vivo && !t->propio && anfitrion::titular(db, 1)->propio);
        otra.close();
    }

    // Another program holds SQLite's write lock: the claim shows that it
    // waits, and takes the order once the lock goes.
    void esperaLaBaseOcupada()
    {
        if (pruebas::BaseDePrueba::enMariaDB())
            QSKIP("SQLite's write lock");
        pruebas::BaseDePrueba base;
        QSqlDatabase otra = QSqlDatabase::cloneDatabase(base.conexion(), "escritor");
        QVERIFY(otra.open() && QSqlQuery(otra).exec("BEGIN IMMEDIATE"));
        auto espera = pruebas::InteraccionGuionada::instala();
        espera->alProgreso = [&otra](const pruebas::InteraccionGuionada::LlamadaProgreso &l) {
            if (l.operacion == u"avanza")
                QSqlQuery(otra).exec("ROLLBACK"); // the other program is done
        };
        QVERIFY(anfitrion::reclama(base.conexion(), 1, anfitrion::kReclamoEdicion).nuevo);
        QStringList vistos; // what the person sees: the waiting shown, then closed
        for (const auto &l : espera->llamadasProgreso())
            if (l.operacion != u"avanza")
                vistos << l.operacion + ' ' + l.texto1;
        QCOMPARE(vistos, QStringList({"inicia Esperando la base de datos", "cierra "}));
        otra.close();
    }

    void ventanaPrincipalLiberaOrdenOcupada()
    {
        pruebas::BaseDePrueba base;
        auto guion = pruebas::InteraccionGuionada::instala();
        auto produccion = app::creaProduccion(base.ambiente());
        app::VentanaPrincipal ventana(base.sesion(), produccion.get());
        auto *lista = ventana.findChild<QTableView *>("lstOrdenes");
        // Who holds an order, by its number (the newest is on top).
        auto ocupada = [lista](int op) {
            const QAbstractItemModel *m = lista->model();
            for (int f = 0; f < m->rowCount(); ++f)
                if (m->index(f, 0).data().toInt() == op)
                    return m->index(f, 7).data().toString();
            return QStringLiteral("(no está)");
        };
        auto *libera = ventana.findChild<QAction *>("actLiberar");
        QVERIFY(lista && libera);
        base.ejecuta("UPDATE op SET ocupado = 1, usuario = 'LAURA ' WHERE op = 2");
        ventana.actualiza();
        QCOMPARE(ocupada(2), QStringLiteral("LAURA"));
        QVERIFY(ocupada(1).isEmpty());

        QVERIFY(ventana.seleccionaOrden(1));
        QVERIFY(!libera->isEnabled());
        QVERIFY(ventana.seleccionaOrden(2));
        QVERIFY(libera->isEnabled());
        guion->respuestas({false, true});
        libera->trigger(); // answered no
        QCOMPARE(base.escalar("SELECT ocupado FROM op WHERE op = 2").toInt(), 1);
        libera->trigger();
        QCOMPARE(base.escalar("SELECT ocupado FROM op WHERE op = 2").toInt(), 0);
        QCOMPARE(guion->preguntas().size(), 2);
        QVERIFY(guion->preguntas().first().contains("LAURA"));
        QVERIFY(ocupada(2).isEmpty() && !libera->isEnabled());
        {
            // Held by a live station: released only after a question naming it and since when.
            QSqlDatabase otra = QSqlDatabase::cloneDatabase(base.conexion(), "otra");
            QVERIFY(otra.open());
            anfitrion::ponIdentidad(otra, "LAURA", "7");
            anfitrion::reclama(otra, 2, anfitrion::kReclamoEdicion);
            ventana.actualiza();
            QCOMPARE(ocupada(2), QStringLiteral("LAURA (estación 7)"));
            QVERIFY(ventana.seleccionaOrden(2));
            guion->respuestas({true});
            libera->trigger();
            QVERIFY(guion->preguntas().last().contains("LAURA en la estación 7"));
            QVERIFY(guion->preguntas().last().contains("(hace "));
            QCOMPARE(base.cuenta("reclamos"), 0);
            anfitrion::suelta(otra, 2); // the lock its session still held
            anfitrion::quitaIdentidad(otra);
            otra.close();
        }
        QSqlDatabase::removeDatabase("otra");

        // Enter on the list opens the selected order; the editor's Parent is the window.
        QVERIFY(ventana.seleccionaOrden(1));
        ventana.show();
        QVERIFY(QTest::qWaitForWindowActive(&ventana));
        lista->setFocus();
        QTest::keyClick(ventana.windowHandle(), Qt::Key_Return);
        QPointer<frmOp> f = pruebas::ventanaAbierta<frmOp>();
        QVERIFY(f);
        QCOMPARE(f->Modo, QStringLiteral("MODIFICACION"));
        QCOMPARE(f->Parent.data(), &ventana);
        ventana.actualiza();
        QCOMPARE(ocupada(1), QStringLiteral("ADMIN (estación 1)"));
        QVERIFY(f->descarga());
        QTRY_VERIFY(ocupada(1).isEmpty()); // SetFocus read the order again
    }
};

QTEST_MAIN(TstOrdenOcupada)
#include "tst_ordenocupada.moc"
