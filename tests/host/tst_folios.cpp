// Runs on SQLite and again on the MariaDB test server.
// The concurrency test starts this executable again as "--hijo URL CLAVE N": each
// child opens the database and prints N numbers drawn from the key, one a line.

#include "host/base/Folios.h"
#include "runtime/Error.h"
#include "tests/support/BaseDePrueba.h"

#include <QCoreApplication>
#include <QProcess>
#include <QSet>
#include <QTest>

#include <cstdio>

using namespace zuvi;
using namespace zuvi::anfitrion;

class TstFolios : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void primerNumeroContadorYLimite()
    {
        pruebas::BaseDePrueba demo(true), vacia(false);
        // A new key starts above the numbers in use (the demo's orders and lines go up to 3).
        QCOMPARE(siguienteFolio(vacia.conexion(), QStringLiteral("Op")), 1);
        QCOMPARE(siguienteFolio(demo.conexion(), QStringLiteral("Op")), 4);
        QCOMPARE(siguienteFolio(demo.conexion(), QStringLiteral("oppart")), 4);
        QCOMPARE(siguienteFolio(demo.conexion(), QStringLiteral("ENSAMBLE")), 1);
        QCOMPARE(siguienteFolio(demo.conexion(), QStringLiteral("op")), 5); // any case, own count
        // Once a counter exists it is the only authority, even below the orders.
        vacia.ejecuta("INSERT INTO op (op, estado) VALUES (50, 'PE')");
        QCOMPARE(siguienteFolio(vacia.conexion(), QStringLiteral("OP")), 2);

        // A counter at its limit refuses and stays; a blank key is refused.
        vacia.ejecuta("INSERT INTO folios (clave, ultimo) VALUES ('TOPE', 2147483646)");
        QVERIFY_THROWS_EXCEPTION(Error, siguienteFolio(vacia.conexion(), QStringLiteral("TOPE")));
        QCOMPARE(vacia.escalar("SELECT ultimo FROM folios WHERE clave = 'TOPE'").toInt(),
                 2147483646);
        QVERIFY_THROWS_EXCEPTION(Error, siguienteFolio(vacia.conexion(), QStringLiteral("  ")));
        // No transaction is left open after the failures.
        QCOMPARE(siguienteFolio(vacia.conexion(), QStringLiteral("OTRA")), 1);
    }

    void variosProcesosNuncaRepiten()
    {
        constexpr int kProcesos = 4, kPorProceso = 500, kTotal = kProcesos * kPorProceso;
        pruebas::BaseDePrueba base(false);
        QProcess hijos[kProcesos];
        for (QProcess &p : hijos)
            p.start(QCoreApplication::applicationFilePath(),
                    {"--hijo", base.url(), "PRUEBA", QString::number(kPorProceso)});
        QSet<int> numeros;
        for (QProcess &p : hijos) {
            QVERIFY(p.waitForFinished(300000));
            QVERIFY2(p.exitStatus() == QProcess::NormalExit && p.exitCode() == 0,
                     p.readAllStandardError().constData());
            const QList<QByteArray> lineas = p.readAllStandardOutput().trimmed().split('\n');
            QCOMPARE(lineas.size(), kPorProceso);
            for (const QByteArray &linea : lineas)
                numeros.insert(linea.toInt());
        }
        // 2,000 distinct numbers and none lost: exactly 1 to 2,000, the counter left there.
        QCOMPARE(numeros.size(), kTotal);
        QCOMPARE(*std::min_element(numeros.begin(), numeros.end()), 1);
        QCOMPARE(*std::max_element(numeros.begin(), numeros.end()), kTotal);
        QCOMPARE(base.escalar("SELECT ultimo FROM folios WHERE clave = 'PRUEBA'").toInt(), kTotal);
    }
};

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() == 5 && args.at(1) == QLatin1String("--hijo")) {
        Opciones o; // an Error ends the child abnormally, its text on standard error
        o.base = args.at(2);
        auto sesion = Sesion::abre(o, false);
        for (int i = 0; i < args.at(4).toInt(); ++i)
            std::printf("%d\n", siguienteFolio(sesion->conexion(), args.at(3)));
        return 0;
    }
    TstFolios prueba;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&prueba, argc, argv);
}

#include "tst_folios.moc"
