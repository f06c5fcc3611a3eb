// A delivery that stops halfway is said to have stopped, with its lines and the first error; the
// stock keeps matching the movements; and delivering the order again needs a yes.

#include "app/Componente.h"
#include "app/Lotes.h"
#include "host/servicios/Comprobaciones.h"
#include "host/sql/Sql.h"
#include "tests/support/BaseDePrueba.h"
#include "tests/support/Corrida.h"
#include "tests/support/InteraccionGuionada.h"
#include "tests/support/Ventanas.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QtTest>

#include <csignal>

using namespace zuvi;
using pruebas::BaseDePrueba;

namespace {

// Order 9, to warehouse 3: `lineas` lines of SOPORTE, line n asking n % 5 + 1 kits.
void creaOrden(BaseDePrueba &base, int lineas)
{
    base.ejecuta("INSERT INTO op (op, estado, almacen) VALUES (9, 'PE', 3)");
    for (int desde = 1; desde <= lineas; desde += 500) {
        QStringList filas;
        for (int n = desde; n < desde + 500 && n <= lineas; ++n)
            filas << QString("(%1, 9, 'SOPORTE', %2, %3, 0)").arg(1000 + n).arg(n % 5 + 1).arg(n);
        base.ejecuta("INSERT INTO oppart (id_entrada, op, articulo, cantidad, partida, terminado) "
                     "VALUES " +
                     filas.join(','));
    }
}

// Stock of each article and warehouse, as "article/warehouse" -> quantity.
QMap<QString, double> existencias(BaseDePrueba &base)
{
    QMap<QString, double> m;
    for (const QString &f : base.filas("SELECT articulo, almacen, cantidad FROM existencias", '|'))
        m[f.section('|', 0, 1)] = f.section('|', 2).toDouble();
    return m;
}

// Where the stock moved by other than its movements say (no movements before `inicial`).
QStringList descuadres(BaseDePrueba &base, const QMap<QString, double> &inicial)
{
    QMap<QString, double> movido;
    for (const QString &f :
         base.filas("SELECT articulo, almacen, SUM(CASE WHEN tipo = 'E' THEN cantidad ELSE "
                    "-cantidad END) FROM movimientos GROUP BY articulo, almacen",
                    '|'))
        movido[f.section('|', 0, 1)] = f.section('|', 2).toDouble();
    QStringList malos;
    const QMap<QString, double> ahora = existencias(base);
    for (auto it = ahora.begin(); it != ahora.end(); ++it)
        if (!qFuzzyCompare(1 + it.value() - inicial.value(it.key()), 1 + movido.value(it.key())))
            malos << it.key();
    return malos;
}

const char kEntradas[] = "movimientos WHERE orden = 9 AND tipo = 'E'";

} // namespace

class TstEntrega : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { pruebas::preparaRegistro(); }

    void entregaAMedias_data()
    {
        QTest::addColumn<QString>("dano"); // a statement, or "cierra" to close the connection
        QTest::addColumn<QStringList>("dice");
        QTest::addColumn<int>("entregadas"); // kit entries of the first run
        QTest::newRow("cantidad nula")
            << "UPDATE oppart SET cantidad = NULL WHERE op = 9 AND partida = 3"
            << QStringList{"3 de 5 líneas", "Línea 3: SOPORTE, cantidad nula", "Línea 5",
                           "Primer error: la cantidad de la línea 3 (SOPORTE) no es un número"}
            << 2;
        if (!BaseDePrueba::enMariaDB()) // a DOUBLE column there holds no text
            QTest::newRow("cantidad no numérica")
                << "UPDATE oppart SET cantidad = 'tres' WHERE op = 9 AND partida = 4"
                << QStringList{"2 de 5 líneas", "Línea 4: SOPORTE, cantidad tres", "Línea 5"} << 3;
        QTest::newRow("conexión cerrada")
            << "cierra"
            << QStringList{"no se pudo comprobar",
                           "Primer error: Ensamble: ", "2 informes de error iguales"}
            << 2;
    }

    void entregaAMedias()
    {
        QFETCH(QString, dano);
        QFETCH(QStringList, dice);
        QFETCH(int, entregadas);
        BaseDePrueba base;
        creaOrden(base, 5);
        const QMap<QString, double> inicial = existencias(base);
        auto guion = pruebas::InteraccionGuionada::instala();
        QSqlDatabase db = base.conexion();
        bool cerrada = false; // once, under the host, before the third line
        if (dano == "cierra") {
            guion->alProgreso = [&](const pruebas::InteraccionGuionada::LlamadaProgreso &l) {
                if (l.operacion == u"avanza" && l.numero == 3 && !std::exchange(cerrada, true)) {
                    anfitrion::olvidaSentencias(db);
                    db.close();
                }
            };
        } else {
            base.ejecuta(dano);
        }
        auto produccion = app::creaProduccion(base.ambiente());
        app::Desenlace d = app::llamaMiembro(produccion.get(), db,
                                             QStringLiteral("EntregaProductoTerminado"), {9});
        QVERIFY2(d.llamado && !d.completo, qPrintable(d.resumen));
        for (const QString &texto : dice)
            QVERIFY2(d.resumen.contains(texto), qPrintable(d.resumen));
        QVERIFY(guion->reportes().size() <= 1); // the rest counted
        if (!db.isOpen())
            QVERIFY(db.open());
        QCOMPARE(base.cuenta(kEntradas), entregadas);
        QCOMPARE(descuadres(base, inicial), QStringList());
        QCOMPARE(base.cuenta("oppart WHERE op = 9 AND terminado <> 0"), 0);

        // Again: asked first; a no posts nothing, a yes (data mended) posts every line.
        const int movimientos = base.cuenta("movimientos");
        d = app::llamaMiembro(produccion.get(), db, QStringLiteral("EntregaProductoTerminado"),
                              {9});
        QVERIFY(d.rehusado && !d.llamado);
        QVERIFY(
            guion->preguntas().value(0).contains(QString("ya tiene %1 entrada").arg(entregadas)));
        QCOMPARE(base.cuenta("movimientos"), movimientos);
        base.ejecuta("UPDATE oppart SET cantidad = 1 WHERE op = 9 AND partida IN (3, 4)");
        guion->respuestas({true});
        d = app::llamaMiembro(produccion.get(), db, QStringLiteral("EntregaProductoTerminado"),
                              {9});
        QVERIFY2(d.completo && d.resumen.isEmpty(), qPrintable(d.resumen));
        QCOMPARE(base.cuenta(kEntradas), entregadas + 5);
        QCOMPARE(descuadres(base, inicial), QStringList());
    }

    // The command line: exit 1 with the summary and no "delivered"; a second run without a
    // terminal refuses; --si posts.
    void entregaDesdeLaLineaDeOrdenes()
    {
        BaseDePrueba base;
        creaOrden(base, 5);
        base.ejecuta("UPDATE oppart SET cantidad = NULL WHERE op = 9 AND partida = 2");
        pruebas::Corrida c = pruebas::corre({"--base", base.url(), "entrega", "9"});
        QVERIFY2(c.codigo == 1 && c.salida.isEmpty() && c.error.contains("4 de 5 líneas") &&
                     c.error.contains("Línea 2: SOPORTE, cantidad nula"),
                 c.dice());
        QCOMPARE(base.cuenta(kEntradas), 1);
        c = pruebas::corre({"--base", base.url(), "entrega", "9"});
        QVERIFY2(c.codigo == 1 && c.error.contains("no se confirmó"), c.dice());
        QCOMPARE(base.cuenta(kEntradas), 1);
        base.ejecuta("UPDATE oppart SET cantidad = 2 WHERE op = 9 AND partida = 2");
        c = pruebas::corre({"--base", base.url(), "entrega", "9", "--si"});
        QVERIFY2(c.codigo == 0 && c.salida.contains("entregado"), c.dice());
        QCOMPARE(base.cuenta(kEntradas), 6);
    }

    // A delivery stopped halfway (line 3 refused, 4 and 5 posted), then --resto: exactly the
    // missing line is posted and only it marked finished; a second --resto posts nothing.
    void entregaElResto()
    {
        BaseDePrueba base;
        creaOrden(base, 5);
        const QMap<QString, double> inicial = existencias(base);
        auto guion = pruebas::InteraccionGuionada::instala();
        QVERIFY(pruebas::fallaAl(base, "INSERT", "movimientos",
                                 "NEW.articulo = 'SOPORTE' AND NEW.cantidad = 4"));
        QSqlDatabase db = base.conexion();
        auto produccion = app::creaProduccion(base.ambiente());
        app::Desenlace d = app::llamaMiembro(produccion.get(), db, "EntregaProductoTerminado", {9});
        QVERIFY2(d.resumen.contains("Se entregaron 4 de 5 partidas: SOPORTE,"),
                 qPrintable(d.resumen));
        base.ejecuta("DROP TRIGGER falla");
        base.ejecuta("UPDATE oppart SET terminado = 0"); // to see which lines --resto marks

        d = app::entregaResto(produccion.get(), db, 9);
        QVERIFY2(d.completo && d.hecho.startsWith("Se entregaron 1 de las 1 partidas que "
                                                  "faltaban: SOPORTE"),
                 qPrintable(d.hecho + d.resumen));
        QCOMPARE(base.cuenta(kEntradas), 5);
        QCOMPARE(base.escalar("SELECT SUM(cantidad) FROM movimientos WHERE orden = 9 AND "
                              "tipo = 'E'")
                     .toInt(),
                 2 + 3 + 4 + 5 + 1);
        QCOMPARE(base.filas("SELECT partida FROM oppart WHERE terminado <> 0"), QStringList{"3"});
        QCOMPARE(descuadres(base, inicial), QStringList());

        const int movimientos = base.cuenta("movimientos");
        d = app::entregaResto(produccion.get(), db, 9);
        QVERIFY2(d.completo && d.hecho.contains("no tiene líneas sin entregar"),
                 qPrintable(d.hecho));
        QCOMPARE(base.cuenta("movimientos"), movimientos);
    }

    // A movement refused halfway through a kit line undoes the line's earlier
    // movements: no line is left half posted.
    void lineaEnteraONada()
    {
        BaseDePrueba base;
        creaOrden(base, 3);
        QVERIFY(pruebas::fallaAl(base, "INSERT", "movimientos", "NEW.articulo = 'TUER-01'"));
        auto guion = pruebas::InteraccionGuionada::instala();
        auto produccion = app::creaProduccion(base.ambiente());
        const app::Desenlace d =
            app::llamaMiembro(produccion.get(), base.conexion(), "EntregaProductoTerminado", {9});
        QVERIFY2(d.resumen.contains("3 de 3 líneas"), qPrintable(d.resumen));
        QCOMPARE(base.cuenta("movimientos"), 0);
    }

    // Two stations deliver one order at the same instant, round after round
    // (20, or ZUVI_VUELTAS when more): the order is delivered once each
    // time; the other is refused or asked.
    void dosEntregasALaVez()
    {
        BaseDePrueba base;
        creaOrden(base, 40);
        base.ejecuta("UPDATE estaciones SET existencianegativa = 1");
        int cruzadas = 0;
        const int vueltas = qMax(20, qEnvironmentVariableIntValue("ZUVI_VUELTAS"));
        for (int vuelta = 0; vuelta < vueltas; ++vuelta) {
            base.ejecuta("DELETE FROM movimientos WHERE orden = 9");
            QProcess estaciones[2];
            for (QProcess &p : estaciones) {
                p.start(ZUVI_BIN_DIR "/zuvi-produccion", {"--base", base.url(), "entrega", "9"});
                p.closeWriteChannel();
            }
            QStringList dicen;
            for (QProcess &p : estaciones) {
                QVERIFY(p.waitForFinished(300000));
                dicen << QString::number(p.exitCode()) + ' ' + p.readAllStandardError();
            }
            QCOMPARE(base.cuenta(kEntradas), 40);
            QVERIFY2(dicen.filter(QRegularExpression("^0 ")).size() == 1,
                     qPrintable(dicen.join('\n')));
            cruzadas += dicen.filter("está ocupada").size();
        }
        qInfo("%d de %d vueltas se cruzaron", cruzadas, vueltas);
    }

    // A server of its own, killed while a 3,000-line order is being delivered, then started
    // again on the same data.
    void servidorCaidoALaMitad()
    {
        if (!BaseDePrueba::enMariaDB())
            QSKIP("only against a MariaDB server");
        QTemporaryDir dir;
        const QString script = ZUVI_SOURCE_DIR "/scripts/mariadb-pruebas.sh";
        auto servidor = [&](const QString &accion) {
            return QProcess::execute("bash", {script, accion, dir.path()}) == 0;
        };
        QVERIFY(servidor("start"));
        const QByteArray urlComun = qgetenv("ZUVI_PRUEBA_MARIADB_URL_FILE");
        qputenv("ZUVI_PRUEBA_MARIADB_URL_FILE", QFile::encodeName(dir.filePath("url")));
        auto limpia = qScopeGuard([&] {
            servidor("stop");
            qputenv("ZUVI_PRUEBA_MARIADB_URL_FILE", urlComun);
        });
        auto base = std::make_unique<BaseDePrueba>();
        creaOrden(*base, 3000);
        // Parts for the whole order: a shortage would refuse it before anything is posted.
        base->ejecuta("UPDATE existencias SET cantidad = 100000 WHERE almacen = 1");
        const QMap<QString, double> inicial = existencias(*base);
        QFile pid(dir.filePath("mariadb.pid"));
        QVERIFY(pid.open(QIODevice::ReadOnly));
        const pid_t servidorPid = pid.readAll().trimmed().toInt();
        bool muerto = false;
        pruebas::Corrida c = pruebas::corre({"--base", base->url(), "entrega", "9"}, [&] {
            if (!muerto && base->cuenta("movimientos") >= 400)
                muerto = ::kill(servidorPid, SIGKILL) == 0;
        });
        QVERIFY(muerto);
        QVERIFY2(c.codigo == 1 && c.salida.isEmpty(), c.dice());
        QCOMPARE(c.error.count("La entrega de la orden 9"), 1);
        QVERIFY2(c.error.contains("no se pudo comprobar") &&
                     c.error.contains("informes de error iguales al anterior") &&
                     c.error.count("Error occured:") < 5,
                 c.dice());

        const QString primeraCorrida = c.error.mid(c.error.indexOf("La entrega de la orden 9"));
        QVERIFY(servidor("reanuda"));
        anfitrion::olvidaSentencias(base->conexion());
        QSqlDatabase db = base->conexion();
        db.close();
        QVERIFY2(db.open(), qPrintable(db.lastError().text()));
        const int entradas = base->cuenta(kEntradas);
        QVERIFY2(entradas >= 100 && entradas < 3000, qPrintable(QString::number(entradas)));
        QCOMPARE(descuadres(*base, inicial), QStringList());
        const int movimientos = base->cuenta("movimientos");
        c = pruebas::corre({"--base", base->url(), "entrega", "9"});
        QVERIFY2(c.codigo == 1 && c.error.contains(QString("ya tiene %1 entrada").arg(entradas)) &&
                     c.error.contains("no se confirmó"),
                 c.dice());
        QCOMPARE(base->cuenta("movimientos"), movimientos);
        // What is missing, and only that, from the command line; then nothing is.
        for (const char *dice : {"que faltaban: SOPORTE", "no tiene líneas sin entregar"}) {
            c = pruebas::corre({"--base", base->url(), "entrega", "9", "--resto"});
            QVERIFY2(c.codigo == 0 && c.salida.contains(dice), c.dice());
            QCOMPARE(base->cuenta(kEntradas), 3000);
        }
        QCOMPARE(descuadres(*base, inicial), QStringList());
        qInfo("%d de 3000 líneas entregadas antes de la caída:\n%s", entradas,
              qPrintable(primeraCorrida));
    }
};

QTEST_MAIN(TstEntrega)
#include "tst_entrega.moc"
