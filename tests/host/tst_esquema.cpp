// Runs on SQLite and again on the MariaDB test server.

#include "host/base/Actualizacion.h"
#include "host/base/Esquema.h"
#include "host/servicios/ConstructorSqlAnfitrion.h"
#include "host/sql/Sql.h"
#include "runtime/Error.h"
#include "tests/support/BaseDePrueba.h"

#include <QFile>
#include <QSqlQuery>
#include <QTest>

using namespace zuvi;
using pruebas::BaseDePrueba;
using pruebas::errorDe;

class TstEsquema : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void mensajesDelModulo()
    {
        BaseDePrueba base(false);
        // A trimmed text (it goes between blanks) for each number the module asks for, only those.
        const QString pedidos = "numero IN (1, 72, 74, 75, 76, 224, 234, 235, 236, 240, 241, 343, "
                                "703, 753, 754, 755, 756, 757, 758, 759, 832, 833, 834, 835, 836, "
                                "837, 838, 839)";
        QCOMPARE(base.cuenta("mensajes WHERE texto <> '' AND texto = TRIM(texto) AND " + pedidos),
                 28);
        QCOMPARE(base.cuenta("mensajes"), 28);
    }

    // The demo holds together (no reference without its row, every kit with a recipe that
    // prices it), has at least one of each case a user tries, answers the module's texts, and
    // creating it again changes nothing.
    void demoCoherenteYCreacionIdempotente()
    {
        BaseDePrueba base(true);
        const char *nunca[] = {
            "prods WHERE kit <> 0 AND articulo NOT IN (SELECT articulo FROM componen)",
            "componen WHERE articulo NOT IN (SELECT articulo FROM prods WHERE kit <> 0)",
            "comppart WHERE articulo NOT IN (SELECT articulo FROM componen)",
            "comppart WHERE Componente NOT IN (SELECT articulo FROM prods)",
            "comppart WHERE Almacen NOT IN (SELECT almacen FROM almacen)",
            "op WHERE almacen NOT IN (SELECT almacen FROM almacen)",
            "oppart WHERE op NOT IN (SELECT op FROM op)",
            "oppart WHERE articulo NOT IN (SELECT articulo FROM prods)",
            "clavesadd WHERE Articulo NOT IN (SELECT articulo FROM prods)",
            "estaciones WHERE almacen NOT IN (SELECT almacen FROM almacen)",
            "existencias WHERE articulo NOT IN (SELECT articulo FROM prods)",
            "turnoempleado WHERE empleado NOT IN (SELECT empleado FROM empleados)",
            "turnoempleado WHERE turno NOT IN (SELECT turno FROM turnos)",
            "horarios WHERE turno NOT IN (SELECT turno FROM turnos)",
            "horarios WHERE Empleado NOT IN (SELECT empleado FROM empleados)",
            "prods k JOIN componen c ON c.articulo = k.articulo WHERE ABS(k.costo * c.Minimo - "
            "(SELECT SUM(r.Cantidad * p.costo) FROM comppart r JOIN prods p ON p.articulo = "
            "r.Componente WHERE r.articulo = k.articulo)) > 1e-9",
        };
        for (const char *desde : nunca)
            QVERIFY2(base.cuenta(desde) == 0, desde);
        const char *alguno[] = {
            // A kit inside a kit, a kit made in batches, orders in both states, a base currency.
            "comppart WHERE Componente IN (SELECT articulo FROM prods WHERE kit <> 0)",
            "componen WHERE Minimo > 1",
            "op WHERE estado = 'CO'",
            "op WHERE estado = 'PE' AND op IN (SELECT op FROM oppart)",
            "monedas WHERE Base <> 0",
            "turnoempleado",
            // The module's texts: parentheses, capitals, two blanks, keys in any case.
            "oppart WHERE (((Op)=1))",
            "comppart WHERE articulo =  'REPISA'",
            "prods WHERE articulo = 'soporte' AND kit <> 0",
        };
        for (const char *desde : alguno)
            QVERIFY2(base.cuenta(desde) > 0, desde);

        QHash<QString, int> antes;
        for (const QString &t : anfitrion::tablasEsquema())
            antes.insert(t, base.cuenta(t));
        // A row edited by hand survives; a deleted base row comes back.
        base.ejecuta("UPDATE mensajes SET texto = 'Propio' WHERE numero = 72");
        base.ejecuta("DELETE FROM mensajes WHERE numero = 834");
        base.sesion().creaBase(true);
        for (const QString &t : anfitrion::tablasEsquema())
            QCOMPARE(base.cuenta(t), antes.value(t));
        QCOMPARE(base.escalar("SELECT texto FROM mensajes WHERE numero = 72").toString(), "Propio");
    }

    // A key the module writes between quotes cannot hold a quote (nor a backslash on MariaDB),
    // by any path: a plain statement, the builder's bound INSERT, an UPDATE. The message names
    // the column; nothing is stored.
    void claveConComillaSeRechaza()
    {
        const struct
        {
            const char *como; // "sql" a plain statement, else the builder's tipo
            QString tabla, columna, valor;
            bool soloMariaDB = false;
        } casos[] = {
            {"INSERT", "turnos", "turno", "X' OR '1'='1"},  {"UPDATE", "turnos", "turno", "NOCHE'"},
            {"INSERT", "turnoempleado", "empleado", "E'1"}, {"sql", "prods", "articulo", "A''B"},
            {"sql", "comppart", "Componente", "''"},        {"UPDATE", "clavesadd", "clave", "C'"},
            {"INSERT", "vends", "vend", "V\\", true},
        };
        for (const auto &caso : casos) {
            if (caso.soloMariaDB && !BaseDePrueba::enMariaDB())
                continue;
            const QString como = QString::fromLatin1(caso.como);
            const QString &tabla = caso.tabla, &columna = caso.columna, &valor = caso.valor;
            BaseDePrueba base(true);
            base.ejecuta("INSERT INTO clavesadd (clave, Articulo) VALUES ('C1', 'SOPORTE')");
            base.ejecuta("INSERT INTO vends (vend) VALUES ('V1')");
            const QString antes = base.filas("SELECT * FROM " + tabla).join('|');
            const QString error = errorDe([&] {
                if (como == "sql") {
                    const QString otra = tabla == "comppart" ? ", articulo" : "";
                    base.ambiente()->EjecutaSQL(
                        QString("INSERT INTO %1 (%2%3) VALUES ('%4'%5)")
                            .arg(tabla, columna, otra, valor, otra.isEmpty() ? "" : ", 'REPISA'"));
                    return;
                }
                anfitrion::ConstructorSqlAnfitrion c;
                c.PonConexion(base.conexion());
                c.Tipo(como);
                c.AgregaCampo(tabla, columna, valor);
                if (tabla == "turnoempleado")
                    c.AgregaCampo(tabla, "turno", "NOCHE");
                c.Condicion(columna + " IS NOT NULL");
                c.Genera(tabla);
                c.Ejecuta();
            });
            QVERIFY2(error.contains(QString("la columna %1 de la tabla %2 no puede llevar comillas")
                                        .arg(columna, tabla)),
                     qPrintable(error));
            QCOMPARE(base.filas("SELECT * FROM " + tabla).join('|'), antes);
        }
    }

    // A text longer than its column is refused, not cut (MariaDB) nor stored whole (SQLite);
    // one that fits, a backslash in it, is stored and read back as it was on both engines.
    void textoLargoSeRechazaYBarraEsLiteral()
    {
        BaseDePrueba base(false);
        const QString error = errorDe([&] {
            base.ambiente()->EjecutaSQL("INSERT INTO op (op, usuario) VALUES (9, '" +
                                        QString(31, 'U') + "')");
        });
        QVERIFY2(error.contains("demasiado largo para la columna usuario de la tabla op, que "
                                "admite a lo más 30"),
                 qPrintable(error));
        QCOMPARE(base.cuenta("op"), 0);
        base.ambiente()->EjecutaSQL("INSERT INTO op (op, usuario, observ) VALUES (9, '" +
                                    QString(30, 'U') + "', 'C:\\nueva\\''x')");
        QCOMPARE(base.filas("SELECT observ, LENGTH(usuario) FROM op"),
                 QStringList{"C:\\nueva\\'x 30"});
    }

    // The server lost under an open session: the next statement says so, in Spanish.
    void servidorPerdido()
    {
        if (!BaseDePrueba::enMariaDB())
            QSKIP("Sólo con un servidor MariaDB.");
        BaseDePrueba base(false);
        auto otra = anfitrion::Sesion::abre({.base = base.url()}, false);
        const auto corta = [&] {
            const QString id = base.escalar("SELECT CONNECTION_ID()").toString();
            QVERIFY(QSqlQuery(otra->conexion()).exec("KILL " + id));
        };
        // A write says it was not saved and is not run again; the next
        // statement reconnects, with the session's settings.
        corta();
        const QString error =
            errorDe([&] { base.ejecuta("INSERT INTO almacen (almacen, nombre) VALUES (9, 'x')"); });
        QVERIFY2(error.contains("Se perdió la conexión con el servidor MariaDB: lo último que "
                                "hizo no se guardó"),
                 qPrintable(error));
        QCOMPARE(base.cuenta("almacen WHERE almacen = 9"), 0);
        QVERIFY(base.escalar("SELECT @@SESSION.sql_mode").toString().contains("NO_BACKSLASH"));
        // A read that finds the session gone is read again.
        corta();
        QCOMPARE(base.cuenta("almacen WHERE almacen = 9"), 0);
    }

    // A database of the first version (no version row, no checks) is brought up to date on
    // opening: its rows stay, the checks hold from then on. One with a key that no longer fits
    // is refused, naming the row, and left as it was.
    void actualizaDesdeVersion1()
    {
        for (const bool conComilla : {false, true}) {
            BaseDePrueba base(false);
            for (const QString &t : base.conexion().tables())
                if (!t.startsWith("sqlite_"))
                    base.ejecuta("DROP TABLE IF EXISTS " + t); // an index goes with its table
            QFile f(QStringLiteral(ZUVI_SOURCE_DIR "/tests/host/datos/esquema-v1-%1.sql")
                        .arg(BaseDePrueba::enMariaDB() ? "mariadb" : "sqlite"));
            QVERIFY(f.open(QIODevice::ReadOnly));
            for (const QByteArray &linea : f.readAll().split('\n'))
                if (!linea.isEmpty() && !linea.startsWith("--"))
                    base.ejecuta(QString::fromUtf8(linea));
            const QStringList filas = {
                "INSERT INTO mensajes (numero, texto) VALUES (72, 'Propio')",
                "INSERT INTO prods (articulo, descrip, kit) VALUES ('KIT', 'Kit', 1)",
                "INSERT INTO turnos (turno, entrada) VALUES ('NOCHE', '22:00')",
                "INSERT INTO comppart (articulo, Componente, Cantidad) VALUES ('KIT', 'TORNILLO', "
                "4)",
                conComilla ? "INSERT INTO turnos (turno) VALUES ('O''NEIL')"
                           : "INSERT INTO op (op, usuario) VALUES (7, 'ANA')"};
            for (const QString &sql : filas)
                base.ejecuta(sql);
            QCOMPARE(anfitrion::versionDe(base.conexion()), 1);
            const QString vistas = "SELECT articulo, descrip FROM prods UNION ALL SELECT turno, "
                                   "entrada FROM turnos UNION ALL SELECT Componente, Cantidad "
                                   "FROM comppart UNION ALL SELECT texto, numero FROM mensajes";
            const QStringList antes = base.filas(vistas);

            // On SQLite, an articles' index of whole words, as kept before, is made again.
            const bool indiceViejo = !conComilla && !BaseDePrueba::enMariaDB();
            if (indiceViejo) {
                base.ejecuta("CREATE VIRTUAL TABLE prods_busqueda USING fts5(texto)");
                base.ejecuta("CREATE TRIGGER prods_busqueda_cambia AFTER UPDATE ON prods BEGIN "
                             "SELECT 1; END");
            }
            const QString error =
                errorDe([&] { anfitrion::Sesion::abre({.base = base.url()}, false); });
            if (conComilla) {
                QVERIFY2(error.contains("no se pudo poner al día", Qt::CaseInsensitive),
                         qPrintable(error));
                QVERIFY2(error.contains("turnos.turno = \"O'NEIL\""), qPrintable(error));
                QCOMPARE(anfitrion::versionDe(base.conexion()), 1);
                QCOMPARE(base.filas(vistas), antes);
                continue;
            }
            QCOMPARE(error, QString());
            QCOMPARE(anfitrion::versionDe(base.conexion()), anfitrion::kVersionEsquema);
            QCOMPARE(base.filas(vistas), antes);
            if (indiceViejo) // "KIT Kit" holds "it " only as a piece, not as a word
                QCOMPARE(base.filas("SELECT rowid FROM prods_busqueda WHERE prods_busqueda "
                                    "MATCH '\"it \"'")
                             .size(),
                         1);
            for (const QString &t : anfitrion::tablasEsquema())
                QVERIFY2(base.conexion().tables().contains(t, Qt::CaseInsensitive), qPrintable(t));
            QVERIFY(!errorDe([&] {
                         base.ejecuta("INSERT INTO prods (articulo) VALUES ('A''B')");
                     }).isEmpty());
            // The numbering of an auto-numbered key carries on after the copied rows.
            base.ejecuta("INSERT INTO comppart (articulo, Componente) VALUES ('KIT', 'TUERCA')");
            QCOMPARE(base.filas("SELECT id FROM comppart ORDER BY id"), QStringList({"1", "2"}));
        }
    }
};

QTEST_GUILESS_MAIN(TstEsquema)
#include "tst_esquema.moc"
