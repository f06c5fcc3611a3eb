// The executable run as a script would run it: a child process with its own
// registration file and database. ZUVI_PRUEBA_AMBAS_BASES: the batch
// operations run on SQLite and on the MariaDB test server.

#include "runtime/ComponentRegistry.h"
#include "tests/support/BaseDePrueba.h"

#include <QFileInfo>
#include <QProcess>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QtTest>

using namespace zuvi;
using zuvi::pruebas::BaseDePrueba;

namespace {

struct Corrida
{
    int codigo = -1;
    bool normal = false; // ended by itself, not by a signal or a timeout
    QString salida;
    QString error;
};

const QString kProgId = QStringLiteral("ZuviProduccion.Produccion");

} // namespace

class TstLineaComandos : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    QString m_registro;

    Corrida corre(const QStringList &args, const QProcessEnvironment &extra = {},
                  const QStringList &quita = {})
    {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("ZUVI_REGISTRO"), m_registro);
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        // The default database, if anything falls back to it, stays in here.
        env.insert(QStringLiteral("XDG_DATA_HOME"), m_dir.filePath(QStringLiteral("datos")));
        for (const QString &k : extra.keys())
            env.insert(k, extra.value(k));
        for (const QString &k : quita)
            env.remove(k);
        QProcess p;
        p.setProcessEnvironment(env);
        p.start(QStringLiteral(ZUVI_BIN_DIR "/zuvi-produccion"), args);
        Corrida c;
        if (!p.waitForStarted(10000))
            return c;
        p.closeWriteChannel(); // no terminal: questions are answered no
        if (!p.waitForFinished(180000)) {
            p.kill();
            p.waitForFinished();
        }
        c.normal = p.exitStatus() == QProcess::NormalExit;
        c.codigo = p.exitCode();
        c.salida = QString::fromUtf8(p.readAllStandardOutput());
        c.error = QString::fromUtf8(p.readAllStandardError());
        return c;
    }

    static QString describe(const Corrida &c)
    {
        return QStringLiteral("código %1, salida [%2], errores [%3]")
            .arg(c.codigo)
            .arg(c.salida, c.error);
    }

    // A refusal: a Spanish line from the program and a clean exit code.
    static bool rechazoLimpio(const Corrida &c, int codigo)
    {
        return c.normal && c.codigo == codigo &&
               c.error.contains(QLatin1String("zuvi-produccion: ")) &&
               !c.error.contains(QLatin1String("terminate called")) &&
               !c.error.contains(QLatin1String("Stack trace"));
    }

    static double numero(BaseDePrueba &base, const QString &sql)
    {
        return base.escalar(sql).toDouble();
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        m_registro = m_dir.filePath(QStringLiteral("componentes.ini"));
        QVERIFY(QFileInfo::exists(QStringLiteral(ZUVI_BIN_DIR "/zuvi-produccion")));
    }

    void helpIsSpanishAndListsEveryCommand()
    {
        for (const QStringList &args : {QStringList{"--help"}, QStringList{"entrega", "-h"}}) {
            const Corrida c = corre(args);
            QVERIFY2(c.normal && c.codigo == 0, qPrintable(describe(c)));
            QVERIFY(c.salida.startsWith(QLatin1String("Uso: zuvi-produccion")));
            for (const char *orden : {"crea-base", "registra", "desregistra", "invoca", "entrega",
                                      "ensamble", "desensamble", "cancela", "--base", "--usuario",
                                      "--estacion", "--traza-sql", "--si"})
                QVERIFY2(c.salida.contains(QLatin1String(orden)), orden);
        }
    }

    void badArguments_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<bool>("conBase");
        QTest::addColumn<QString>("mensaje");
        auto fila = [](const char *nombre, QStringList a, bool base, const char *m) {
            QTest::newRow(nombre) << a << base << QString::fromUtf8(m);
        };
        fila("entrega sin orden", {"entrega"}, false, "Faltan argumentos");
        fila("entrega con letras", {"entrega", "abc"}, false, "La orden debe ser un número entero");
        fila("entrega de más", {"entrega", "1", "2"}, false, "Sobran argumentos");
        fila("ensamble incompleto", {"ensamble", "SOPORTE", "1"}, false, "Faltan argumentos");
        fila("ensamble almacén", {"ensamble", "SOPORTE", "x", "2"}, false, "El almacén");
        fila("ensamble fracción", {"ensamble", "SOPORTE", "3", "2.5"}, false,
             "La cantidad debe ser un número entero");
        fila("desensamble cantidad", {"desensamble", "SOPORTE", "abc", "1"}, false, "La cantidad");
        fila("desensamble orden", {"desensamble", "SOPORTE", "1", "3", "x"}, false, "La orden");
        fila("cancela sin orden", {"cancela"}, false, "Faltan argumentos");
        fila("invoca sin método", {"invoca"}, false, "Falta el método");
        fila("orden desconocida", {"vuela"}, false, "Orden desconocida");
        fila("opción desconocida", {"--nada"}, false, "Opción desconocida");
        fila("base sin valor", {"crea-base", "--base"}, false,
             "Falta el valor de la opción --base");
        fila("demo fuera de lugar", {"entrega", "1", "--demo"}, false, "--demo");
        fila("orden inexistente", {"entrega", "999999"}, true, "no existe");
        fila("método inexistente", {"invoca", "NoExiste"}, true, "no tiene un método");
        fila("argumento no numérico", {"invoca", "ModificaOp", "abc"}, true, "número entero");
        fila("argumentos de más", {"invoca", "ModificaOp", "1", "2"}, true, "no admite 2");
        fila("kit inexistente", {"ensamble", "NOEXISTE", "3", "1"}, true, "no es un kit");
    }

    void badArguments()
    {
        QFETCH(QStringList, args);
        QFETCH(bool, conBase);
        QFETCH(QString, mensaje);
        std::unique_ptr<BaseDePrueba> base;
        if (conBase) {
            base = std::make_unique<BaseDePrueba>();
            args << QStringLiteral("--base") << base->url();
        }
        const Corrida c = corre(args);
        QVERIFY2(rechazoLimpio(c, 2), qPrintable(describe(c)));
        QVERIFY2(c.error.contains(mensaje), qPrintable(describe(c)));
        QVERIFY(c.salida.isEmpty());
    }

    void unopenableDatabase_data()
    {
        QTest::addColumn<QString>("base");
        QTest::newRow("carpeta") << m_dir.path();
        QTest::newRow("archivo que no es base") << m_dir.filePath(QStringLiteral("basura.db"));
        QTest::newRow("servidor que no responde") << QStringLiteral("mariadb://u:c@127.0.0.1:1/x");
        QTest::newRow("url mal formado") << QStringLiteral("mariadb:sinbarras");
    }

    void unopenableDatabase()
    {
        QFETCH(QString, base);
        QFile basura(m_dir.filePath(QStringLiteral("basura.db")));
        QVERIFY(basura.open(QIODevice::WriteOnly));
        basura.write(QByteArray(4096, 'x'));
        basura.close();
        for (const QStringList &args :
             {QStringList{"crea-base"}, QStringList{"entrega", "1"}, QStringList{"cancela", "1"}}) {
            const Corrida c = corre(QStringList(args) << QStringLiteral("--base") << base);
            QVERIFY2(rechazoLimpio(c, 1), qPrintable(describe(c)));
        }
        QCOMPARE(basura.size(), qint64(4096)); // not overwritten
    }

    void creaBaseOnANewFile()
    {
        if (BaseDePrueba::enMariaDB())
            QSKIP("solo para archivos SQLite");
        const QString ruta = m_dir.filePath(QStringLiteral("nueva/base.db"));
        const QString vacia = m_dir.filePath(QStringLiteral("vacia.db"));
        for (int vez = 0; vez < 2; ++vez) { // a second run changes nothing
            const Corrida c = corre({"crea-base", "--demo", "--base", ruta});
            QVERIFY2(c.normal && c.codigo == 0, qPrintable(describe(c)));
        }
        const Corrida c = corre({"--base", vacia, "crea-base"});
        QVERIFY2(c.normal && c.codigo == 0, qPrintable(describe(c)));
        {
            QSqlDatabase db =
                QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("comprueba"));
            auto cuenta = [&](const QString &archivo, const QString &tabla) {
                db.setDatabaseName(archivo);
                if (!db.open())
                    return -1;
                QSqlQuery q(db);
                const int n = q.exec(QStringLiteral("SELECT COUNT(*) FROM ") + tabla) && q.next()
                                  ? q.value(0).toInt()
                                  : -1;
                q.finish();
                db.close();
                return n;
            };
            QCOMPARE(cuenta(ruta, QStringLiteral("op")), 3);
            QCOMPARE(cuenta(vacia, QStringLiteral("op")), 0);
            QVERIFY(cuenta(vacia, QStringLiteral("oppart")) == 0); // the schema is there
        }
        QSqlDatabase::removeDatabase(QStringLiteral("comprueba"));
    }

    void registerUnregisterAndAutoRegister()
    {
        BaseDePrueba base;
        const QString archivo = m_dir.filePath(QStringLiteral("propio.ini"));
        QProcessEnvironment env;
        env.insert(QStringLiteral("ZUVI_REGISTRO"), archivo);
        const QString plugin =
            QFileInfo(QStringLiteral(ZUVI_BIN_DIR "/ZuviProduccion.so")).canonicalFilePath();

        Corrida c = corre({"registra"}, env);
        QVERIFY2(c.normal && c.codigo == 0, qPrintable(describe(c)));
        QCOMPARE(QFileInfo(components::libraryFor(kProgId, archivo)).canonicalFilePath(), plugin);

        c = corre({"desregistra"}, env);
        QVERIFY2(c.normal && c.codigo == 0, qPrintable(describe(c)));
        QVERIFY(components::libraryFor(kProgId, archivo).isEmpty());

        // Needed again: registered on the fly, and said so.
        c = corre({"invoca", "CancelaOp", "999999", "--si", "--base", base.url()}, env);
        QVERIFY2(c.normal && c.codigo == 0, qPrintable(describe(c)));
        QVERIFY2(c.error.contains(QLatin1String("no estaba registrado")), qPrintable(describe(c)));
        QCOMPARE(c.salida.trimmed(), QStringLiteral("0"));
        QCOMPARE(QFileInfo(components::libraryFor(kProgId, archivo)).canonicalFilePath(), plugin);
    }

    void cancelaDeletesClosesOrDeclines()
    {
        BaseDePrueba base;
        // Order 3 is pending without lines: deleted.
        Corrida c = corre({"cancela", "3", "--si", "--base", base.url()});
        QVERIFY2(c.normal && c.codigo == 0, qPrintable(describe(c)));
        QCOMPARE(numero(base, QStringLiteral("SELECT COUNT(*) FROM op WHERE op = 3")), 0.0);

        // Without --si and without a terminal the answer is no.
        c = corre({"--base", base.url(), "cancela", "1"});
        QVERIFY2(rechazoLimpio(c, 1), qPrintable(describe(c)));
        QCOMPARE(numero(base, QStringLiteral("SELECT COUNT(*) FROM op WHERE op = 1")), 1.0);
        QCOMPARE(numero(base, QStringLiteral("SELECT COUNT(*) FROM oppart WHERE op = 1")), 2.0);

        // Order 2 is confirmed: closed, not deleted; by name the result is printed.
        c = corre({"invoca", "CancelaOp", "2", "--si", "--base", base.url()});
        QVERIFY2(c.normal && c.codigo == 0, qPrintable(describe(c)));
        QCOMPARE(c.salida.trimmed(), QStringLiteral("-1"));
        QCOMPARE(numero(base, QStringLiteral("SELECT cerrado FROM op WHERE op = 2")), 1.0);
    }

    void entregaMarksLinesFinishedAndTraces()
    {
        BaseDePrueba base;
        const QString traza = m_dir.filePath(QStringLiteral("traza.sql"));
        QFile::remove(traza);
        const Corrida c = corre({"--traza-sql", traza, "entrega", "1", "--base", base.url()});
        QVERIFY2(c.normal && c.codigo == 0, qPrintable(describe(c)));
        QCOMPARE(numero(base, QStringLiteral("SELECT COUNT(*) FROM oppart WHERE op = 1 AND "
                                             "terminado <> cantidad")),
                 0.0);
        QFile f(traza);
        QVERIFY(f.open(QIODevice::ReadOnly));
        const QStringList lineas = QString::fromUtf8(f.readAll()).split(QLatin1Char('\n'));
        QVERIFY(
            lineas.contains(QStringLiteral("UPDATE oppart SET terminado = cantidad WHERE op = 1")));
        QVERIFY(
            lineas.contains(QStringLiteral("SELECT * FROM comppart WHERE articulo =  'SOPORTE'")));
    }

    void kitsThroughTheCommandLine()
    {
        BaseDePrueba base;
        const QString movimientos = QStringLiteral("SELECT COUNT(*) FROM movimientos");
        const QString soportes =
            QStringLiteral("SELECT cantidad FROM existencias WHERE articulo = 'SOPORTE' AND "
                           "almacen = 3");
        const double antes = numero(base, movimientos);
        const double existencia = numero(base, soportes);

        // Three components out, the kit in.
        Corrida c = corre({"ensamble", "SOPORTE", "3", "2", "--base", base.url()});
        QVERIFY2(c.normal && c.codigo == 0, qPrintable(describe(c)));
        QCOMPARE(numero(base, movimientos), antes + 4);
        QCOMPARE(numero(base, soportes), existencia + 2);

        // A fractional disassembly, with a decimal comma.
        c = corre({"desensamble", "SOPORTE", "1,5", "3", "--base", base.url()});
        QVERIFY2(c.normal && c.codigo == 0, qPrintable(describe(c)));
        QCOMPARE(numero(base, movimientos), antes + 8);
        QCOMPARE(numero(base, soportes), existencia + 0.5);

        // A kit inside the kit: refused before the component is asked.
        const QString traza = m_dir.filePath(QStringLiteral("anidado.sql"));
        QFile::remove(traza);
        c = corre({"desensamble", "REPISA", "1", "3", "--base", base.url(), "--traza-sql", traza});
        QVERIFY2(rechazoLimpio(c, 1), qPrintable(describe(c)));
        QVERIFY2(c.error.contains(QLatin1String("REPISA")) &&
                     c.error.contains(QLatin1String("SOPORTE")) &&
                     c.error.contains(QLatin1String("kit")),
                 qPrintable(describe(c)));
        QCOMPARE(numero(base, movimientos), antes + 8);
        QFile f(traza);
        QVERIFY(f.open(QIODevice::ReadOnly));
        QVERIFY(!f.readAll().contains("SELECT * FROM componen"));
    }

    void windowOpenerDoesNotHangWithoutDisplay()
    {
        BaseDePrueba base;
        const Corrida c = corre({"invoca", "MuestraCapturaDeFracciones", "--base", base.url()});
        QVERIFY2(c.normal && c.codigo == 0, qPrintable(describe(c)));
        // The window did open, and was closed because nobody could see it.
        QVERIFY2(c.error.contains(QLatin1String("Sin pantalla")), qPrintable(describe(c)));
    }

    void shellNeedsADisplay()
    {
        BaseDePrueba base;
        const Corrida c =
            corre({"--base", base.url()}, {}, {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"});
        QVERIFY2(rechazoLimpio(c, 1), qPrintable(describe(c)));
        QVERIFY(c.error.contains(QLatin1String("pantalla")));
    }
};

QTEST_MAIN(TstLineaComandos)
#include "tst_lineacomandos.moc"
