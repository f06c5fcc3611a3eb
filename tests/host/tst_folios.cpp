// Runs on SQLite and again on the MariaDB test server: ZUVI_PRUEBA_AMBAS_BASES
//
// The concurrency test starts this same executable several times with
// "--hijo URL CLAVE N": each child opens the database and prints N numbers
// drawn from the key, one a line.

#include "host/Anfitrion.h"
#include "host/Folios.h"
#include "runtime/Error.h"
#include "tests/support/BaseDePrueba.h"

#include <QCoreApplication>
#include <QProcess>
#include <QSet>
#include <QTest>

#include <cstdio>

using namespace zuvi;
using namespace zuvi::anfitrion;
using zuvi::pruebas::BaseDePrueba;

namespace {

int hijo(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() != 5)
        return 2;
    try {
        Opciones o;
        o.base = args.at(2);
        auto sesion = Sesion::abre(o, false);
        const int n = args.at(4).toInt();
        QByteArray salida;
        for (int i = 0; i < n; ++i)
            salida += QByteArray::number(siguienteFolio(sesion->conexion(), args.at(3))) + '\n';
        std::fwrite(salida.constData(), 1, size_t(salida.size()), stdout);
        return 0;
    } catch (const Error &e) {
        std::fprintf(stderr, "%s\n", e.what());
        return 1;
    }
}

} // namespace

class TstFolios : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void primerNumero_data()
    {
        QTest::addColumn<QString>("clave");
        QTest::addColumn<bool>("demo");
        QTest::addColumn<int>("primero");
        // The demo's orders go up to 3 and its lines up to 3.
        QTest::newRow("Op con órdenes") << "Op" << true << 4;
        QTest::newRow("oppart con partidas") << "oppart" << true << 4;
        QTest::newRow("Op sin órdenes") << "Op" << false << 1;
        QTest::newRow("clave nueva") << "ENSAMBLE" << true << 1;
    }

    void primerNumero()
    {
        QFETCH(QString, clave);
        QFETCH(bool, demo);
        QFETCH(int, primero);
        BaseDePrueba base(demo);
        QCOMPARE(siguienteFolio(base.conexion(), clave), primero);
        QCOMPARE(siguienteFolio(base.conexion(), clave), primero + 1);
        // Another key has its own counter.
        QCOMPARE(siguienteFolio(base.conexion(), QStringLiteral("DESENSAMB")), 1);
        QCOMPARE(siguienteFolio(base.conexion(), clave), primero + 2);
        QCOMPARE(
            base.escalar(QStringLiteral("SELECT ultimo FROM folios WHERE clave = '%1'").arg(clave))
                .toInt(),
            primero + 2);
    }

    void contadorGuardadoManda()
    {
        BaseDePrueba base(true);
        // Once a counter exists it is the only authority, even below the orders.
        base.ejecuta(QStringLiteral("INSERT INTO folios (clave, ultimo) VALUES ('Op', 1)"));
        QCOMPARE(siguienteFolio(base.conexion(), QStringLiteral("Op")), 2);
        // Keys compare without regard to case, on both engines.
        QCOMPARE(siguienteFolio(base.conexion(), QStringLiteral("OP")), 3);
        QCOMPARE(base.escalar(QStringLiteral("SELECT COUNT(*) FROM folios")).toInt(), 1);
    }

    void errores()
    {
        BaseDePrueba base(false);
        base.ejecuta(
            QStringLiteral("INSERT INTO folios (clave, ultimo) VALUES ('TOPE', 2147483646)"));
        QVERIFY_THROWS_EXCEPTION(Error, siguienteFolio(base.conexion(), QStringLiteral("TOPE")));
        // The failed draw left the counter where it was.
        QCOMPARE(base.escalar(QStringLiteral("SELECT ultimo FROM folios WHERE clave = 'TOPE'"))
                     .toLongLong(),
                 2147483646LL);
        QVERIFY_THROWS_EXCEPTION(Error, siguienteFolio(base.conexion(), QStringLiteral("  ")));
        // The connection is usable after the failure (no transaction left open).
        QCOMPARE(siguienteFolio(base.conexion(), QStringLiteral("OTRA")), 1);
    }

    void variosProcesosNuncaRepiten()
    {
        constexpr int kProcesos = 4;
        constexpr int kPorProceso = 500;
        BaseDePrueba base(false);
        QList<QProcess *> hijos;
        auto limpia = qScopeGuard([&] {
            for (QProcess *p : hijos) {
                if (p->state() != QProcess::NotRunning) {
                    p->kill();
                    p->waitForFinished(5000);
                }
                delete p;
            }
        });
        for (int i = 0; i < kProcesos; ++i) {
            auto *p = new QProcess;
            hijos << p;
            p->start(QCoreApplication::applicationFilePath(),
                     {QStringLiteral("--hijo"), base.url(), QStringLiteral("PRUEBA"),
                      QString::number(kPorProceso)});
        }
        QSet<int> numeros;
        int leidos = 0;
        for (QProcess *p : hijos) {
            QVERIFY(p->waitForFinished(300000));
            QVERIFY2(p->exitStatus() == QProcess::NormalExit && p->exitCode() == 0,
                     p->readAllStandardError().constData());
            const QList<QByteArray> lineas = p->readAllStandardOutput().split('\n');
            int propios = 0;
            int anterior = 0;
            for (const QByteArray &l : lineas) {
                if (l.isEmpty())
                    continue;
                const int n = l.toInt();
                // Each process sees its own numbers grow.
                QVERIFY(n > anterior);
                anterior = n;
                numeros.insert(n);
                ++propios;
            }
            QCOMPARE(propios, kPorProceso);
            leidos += propios;
        }
        QCOMPARE(leidos, kProcesos * kPorProceso);
        QCOMPARE(numeros.size(), kProcesos * kPorProceso);
        // No number was lost either: exactly 1 to 2000.
        for (int n = 1; n <= kProcesos * kPorProceso; ++n)
            QVERIFY2(numeros.contains(n), qPrintable(QString::number(n)));
        QCOMPARE(base.escalar(QStringLiteral("SELECT ultimo FROM folios WHERE clave = 'PRUEBA'"))
                     .toInt(),
                 kProcesos * kPorProceso);
    }
};

int main(int argc, char **argv)
{
    if (argc > 1 && qstrcmp(argv[1], "--hijo") == 0)
        return hijo(argc, argv);
    QCoreApplication app(argc, argv);
    TstFolios prueba;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&prueba, argc, argv);
}

#include "tst_folios.moc"
