// The executable run as a script would run it: a child process with its own
// registration file and database. The batch operations run on SQLite and on
// the MariaDB test server: ZUVI_PRUEBA_AMBAS_BASES

#include "runtime/ComponentRegistry.h"
#include "tests/support/BaseDePrueba.h"

#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

using namespace zuvi;

struct Corrida
{
    int codigo = -1; // also when the program did not start, crashed or hung
    QString salida, error;
    QByteArray dice() const { return QString("%1 %2 %3").arg(codigo).arg(salida, error).toUtf8(); }
};

class TstLineaComandos : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    QString basura() const { return m_dir.filePath("basura.db"); }

    static Corrida corre(const QStringList &args)
    {
        QProcess p;
        p.start(ZUVI_BIN_DIR "/zuvi-produccion", args);
        p.closeWriteChannel(); // no terminal: questions are answered no
        if (!p.waitForFinished(180000))
            p.kill(), p.waitForFinished();
        const bool normal = p.exitStatus() == QProcess::NormalExit && p.error() != p.FailedToStart;
        return {normal ? p.exitCode() : -1, QString::fromUtf8(p.readAllStandardOutput()),
                QString::fromUtf8(p.readAllStandardError())};
    }

private slots:
    void initTestCase()
    {
        qputenv("ZUVI_REGISTRO", QFile::encodeName(m_dir.filePath("componentes.ini")));
        qputenv("QT_QPA_PLATFORM", "offscreen");
        QFile f(basura());
        QVERIFY(f.open(QIODevice::WriteOnly) && f.write(QByteArray(4096, 'x')) == 4096);
    }

    // A file that is not a database is refused, never overwritten.
    void cleanupTestCase() { QCOMPARE(QFileInfo(basura()).size(), qint64(4096)); }

    void ordenes_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<int>("codigo");
        QTest::addColumn<QStringList>("dice"); // in the output or the errors
        QTest::addColumn<QString>("consulta"); // afterwards, gives valor
        QTest::addColumn<double>("valor");
        auto fila = [](const char *nombre, QStringList a, int codigo, QStringList dice,
                       const char *consulta = "", double valor = 0) {
            QTest::newRow(nombre) << a << codigo << dice << consulta << valor;
        };
        fila("--help", {"--help"}, 0,
             {"Uso: zuvi-produccion", "crea-base", "registra", "desregistra", "invoca", "entrega",
              "ensamble", "desensamble", "cancela", "--base", "--traza-sql", "--si"});
        // Bad arguments: a Spanish message and exit code 2.
        fila("entrega sin orden", {"entrega"}, 2, {"Faltan argumentos"});
        fila("entrega con letras", {"entrega", "abc"}, 2, {"La orden debe ser un número entero"});
        fila("entrega de más", {"entrega", "1", "2"}, 2, {"Sobran argumentos"});
        fila("ensamble fracción", {"ensamble", "SOPORTE", "3", "2.5"}, 2, {"La cantidad debe"});
        fila("desensamble cantidad", {"desensamble", "SOPORTE", "abc", "1"}, 2, {"La cantidad"});
        fila("invoca sin método", {"invoca"}, 2, {"Falta el método"});
        fila("orden desconocida", {"vuela"}, 2, {"Orden desconocida"});
        fila("opción desconocida", {"--nada"}, 2, {"Opción desconocida"});
        fila("base sin valor", {"crea-base", "--base"}, 2, {"Falta el valor de la opción --base"});
        fila("demo fuera de lugar", {"entrega", "1", "--demo"}, 2, {"--demo"});
        fila("orden inexistente", {"entrega", "999999"}, 2, {"no existe"});
        fila("método inexistente", {"invoca", "NoExiste"}, 2, {"no tiene un método"});
        fila("argumento no numérico", {"invoca", "ModificaOp", "abc"}, 2, {"número entero"});
        fila("argumentos de más", {"invoca", "ModificaOp", "1", "2"}, 2, {"no admite 2"});
        fila("kit inexistente", {"ensamble", "NOEXISTE", "3", "1"}, 2, {"no es un kit"});
        // A database that cannot be opened: said plainly, exit code 1.
        fila("base carpeta", {"crea-base", "--base", m_dir.path()}, 1, {"es una carpeta"});
        fila("base archivo que no es base", {"crea-base", "--base", basura()}, 1, {"basura"});
        fila("base sin servidor", {"cancela", "1", "--base", "mariadb://u@127.0.0.1:1/x"}, 1,
             {"conectar"});
        fila("base url mal formado", {"entrega", "1", "--base", "mariadb:x"}, 1, {"no es válida"});
        fila("crea-base --demo otra vez", {"crea-base", "--demo"}, 0, {"datos de demostración"},
             "SELECT COUNT(*) FROM op", 3);
        fila("entrega", {"entrega", "1"}, 0, {"entregado"},
             "SELECT COUNT(*) FROM oppart WHERE op = 1 AND terminado <> cantidad", 0);
        fila("cancela con --si borra", {"cancela", "3", "--si"}, 0, {"cancelada"},
             "SELECT COUNT(*) FROM op WHERE op = 3", 0);
        fila("cancela sin terminal: no", {"cancela", "1"}, 1, {"no se canceló"},
             "SELECT COUNT(*) FROM oppart WHERE op = 1", 2);
        fila("CancelaOp por nombre cierra", {"invoca", "CancelaOp", "2", "--si"}, 0, {"-1"},
             "SELECT cerrado FROM op WHERE op = 2", 1);
        // Kits: movements * 1000 + stock of SOPORTE in store 3 (12 in the demo data).
        const char *kit = "SELECT (SELECT COUNT(*) FROM movimientos) * 1000 + cantidad FROM "
                          "existencias WHERE articulo = 'SOPORTE' AND almacen = 3";
        fila("ensamble", {"ensamble", "SOPORTE", "3", "2"}, 0, {"terminado"}, kit, 4014);
        fila("desensamble 1,5", {"desensamble", "SOPORTE", "1,5", "3"}, 0, {}, kit, 4010.5);
        fila("desensamble kit anidado", {"desensamble", "REPISA", "1", "3"}, 1,
             {"REPISA", "SOPORTE", "kit"}, kit, 12);
        fila("ventana sin pantalla", {"invoca", "MuestraCapturaDeFracciones"}, 0, {"Sin pantalla"});
    }

    void ordenes()
    {
        QFETCH(QStringList, args);
        QFETCH(int, codigo);
        QFETCH(QStringList, dice);
        QFETCH(QString, consulta);
        QFETCH(double, valor);
        pruebas::BaseDePrueba base;
        const Corrida c = corre(QStringList{"--base", base.url()} + args);
        // A refusal is the program's own line, not a crash report.
        QVERIFY2(c.codigo == codigo && (codigo == 0 || (c.error.contains(u"zuvi-produccion: ") &&
                                                        c.salida.isEmpty())),
                 c.dice());
        for (const QString &texto : dice)
            QVERIFY2((c.salida + c.error).contains(texto), c.dice());
        if (!consulta.isEmpty())
            QCOMPARE(base.escalar(consulta).toDouble(), valor);
    }

    void creaBaseOnANewFile()
    {
        const QString demo = m_dir.filePath("nueva/base.db"), vacia = m_dir.filePath("vacia.db");
        QCOMPARE(corre({"crea-base", "--demo", "--base", demo}).codigo, 0);
        QCOMPARE(corre({"--base", vacia, "crea-base"}).codigo, 0);
        // The demo orders are there; the plain database has the schema and no orders.
        QCOMPARE(corre({"entrega", "1", "--base", demo}).codigo, 0);
        QCOMPARE(corre({"entrega", "1", "--base", vacia}).codigo, 2);
    }

    void registerUnregisterAndAutoRegister()
    {
        pruebas::BaseDePrueba base;
        const QString archivo = components::registryFile(), id = "ZuviProduccion.Produccion";
        QCOMPARE(corre({"registra"}).codigo, 0);
        QCOMPARE(QFileInfo(components::libraryFor(id, archivo)).fileName(), "ZuviProduccion.so");
        QCOMPARE(corre({"desregistra"}).codigo, 0);
        QVERIFY(components::libraryFor(id, archivo).isEmpty());
        // Needed again: registered on the fly, and said so.
        const Corrida c = corre({"invoca", "CancelaOp", "99", "--si", "--base", base.url()});
        QVERIFY2(c.codigo == 0 && c.error.contains(u"no estaba registrado") && c.salida == "0\n",
                 c.dice());
    }
};

QTEST_MAIN(TstLineaComandos)
#include "tst_lineacomandos.moc"
