// The executable as a script runs it, with its own registration file and database; the batch
// operations run on SQLite and on the MariaDB test server.

#include "runtime/ComponentRegistry.h"
#include "tests/support/BaseDePrueba.h"
#include "tests/support/Corrida.h"

#include <QFileInfo>
#include <QTemporaryDir>
#include <QtTest>

using namespace zuvi;
using pruebas::corre;
using pruebas::Corrida;

const QString kProgId = QStringLiteral("ZuviProduccion.Produccion");

class TstLineaComandos : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    QString basura() const { return m_dir.filePath("basura.db"); }

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

    // Each command line: its exit code (2 bad arguments, 1 a database that cannot be opened),
    // what it says, and the demo data afterwards: orders, undelivered lines of order 1,
    // order 2 closed, movements, SOPORTE in store 3. The host's checks of the batch operations,
    // of the stock and of the --base address are proved where the host makes them: one row
    // here for each way out of the command line they take.
    void ordenes()
    {
        const QString intacta = "3 2 0 0 12";
        const struct
        {
            QString args;
            int codigo;
            const char *dice; // in the output or the errors, '|' between parts
            QString estado;
        } casos[] = {
            // desregistra, desensamble stand for registra, ensamble too
            {"--help", 0,
             "Uso: zuvi-produccion|crea-base|desregistra|invoca|entrega|desensamble|cancela|"
             "--base|--traza-sql|--si",
             intacta},
            {"ensamble SOPORTE 3 0", 2, "antidad", intacta},
            {"invoca Desensamble REPISA 1 3", 2, "REPISA|SOPORTE|kit", intacta},
            {"entrega", 2, "Faltan argumentos", intacta},
            {"entrega 1 2", 2, "Sobran argumentos", intacta},
            {"ensamble SOPORTE 3 2.5", 2, "La cantidad debe", intacta},
            {"desensamble SOPORTE abc 1", 2, "La cantidad", intacta},
            {"invoca", 2, "Falta el método", intacta},
            {"vuela", 2, "Orden desconocida", intacta},
            {"--nada", 2, "Opción desconocida", intacta},
            {"crea-base --base", 2, "Falta el valor de la opción --base", intacta},
            {"entrega 1 --demo", 2, "--demo", intacta},
            {"invoca NoExiste", 2, "no tiene un método", intacta},
            {"invoca ModificaOp abc", 2, "número entero", intacta},
            {"invoca ModificaOp 1 2", 2, "no admite 2", intacta},
            {"crea-base --base " + basura(), 1, "basura", intacta},
            {"entrega 1 --usuario " + QString(31, 'U'), 1, "--usuario|31 caracteres|30", intacta},
            {"crea-base --demo", 0, "datos de demostración", intacta},
            {"entrega 1", 0, "entregado", "3 0 0 8 18"},
            {"cancela 3 --si", 0, "cancelada", "2 2 0 0 12"},
            {"cancela 1", 1, "no se canceló", intacta}, // no terminal: no
            {"ensamble SOPORTE 3 2", 0, "terminado", "3 2 0 4 14"},
            {"desensamble SOPORTE 1,5 3", 0, "", "3 2 0 4 10.5"},
            {"invoca MuestraCapturaDeFracciones", 0, "Sin pantalla", intacta},
            // Short of components: refused, named, nothing posted.
            {"ensamble SOPORTE 3 5000", 1, "TORN-01|faltan 15,000|TUER-01|PLAC-01|faltan 4,800",
             intacta},
            {"entrega 1 --csv", 2, "--csv", intacta},
            {"rol 2024-13", 2, "AAAA-MM", intacta},
            {"entrega 1 --turno NOCHE", 2, "--turno", intacta},
            {"rol 2024-05 --turno NOCHE", 0, "3 empleados|RolMes-2024-05-NOCHE.pdf", intacta},
            {"rol 2024-05 --turno NADA", 1, "no existe", intacta},
        };
        for (const auto &caso : casos) {
            pruebas::BaseDePrueba base;
            const Corrida c = corre(QStringList{"--base", base.url()} + caso.args.split(' '));
            const bool rechazoPropio = c.error.contains(u"zuvi-produccion: ") && c.salida.isEmpty();
            QVERIFY2(c.codigo == caso.codigo && (caso.codigo == 0 || rechazoPropio),
                     qPrintable(caso.args + ": " + c.dice()));
            for (const QString &texto : QString::fromUtf8(caso.dice).split('|'))
                QVERIFY2((c.salida + c.error).contains(texto),
                         qPrintable(caso.args + ": " + c.dice()));
            QStringList visto;
            for (const char *sql :
                 {"SELECT COUNT(*) FROM op",
                  "SELECT COUNT(*) FROM oppart WHERE op = 1 AND terminado <> cantidad",
                  "SELECT cerrado FROM op WHERE op = 2", "SELECT COUNT(*) FROM movimientos",
                  "SELECT cantidad FROM existencias WHERE articulo = 'SOPORTE' AND almacen = 3"})
                visto << QString::number(base.escalar(sql).toDouble());
            QVERIFY2(visto.join(' ') == caso.estado,
                     qPrintable(caso.args + ": " + visto.join(' ')));
        }
    }

    // crea-base makes a new file in a new folder; the component, unregistered, is registered
    // again on the fly when needed, and said so.
    void creaBaseYRegistro()
    {
        const QString demo = m_dir.filePath("nueva/base.db");
        QCOMPARE(corre({"crea-base", "--demo", "--base", demo}).codigo, 0);
        QCOMPARE(corre({"registra"}).codigo, 0);
        QCOMPARE(QFileInfo(components::libraryFor(kProgId)).fileName(), "ZuviProduccion.so");
        QCOMPARE(corre({"desregistra"}).codigo, 0);
        QVERIFY(components::libraryFor(kProgId).isEmpty());
        const Corrida c = corre({"invoca", "CancelaOp", "1", "--si", "--base", demo});
        QVERIFY2(c.codigo == 0 && c.error.contains(u"no estaba registrado") && c.salida == "-1\n",
                 c.dice());
    }
};

QTEST_MAIN(TstLineaComandos)
#include "tst_lineacomandos.moc"
