// The statement path: the literal scanner, the kept statements and the trace,
// on SQLite and MariaDB; and the statement texts the module sends.

#include "host/base/Sesion.h"
#include "host/procesos/Procesos.h"
#include "host/servicios/Registro.h"
#include "host/sql/Sql.h"
#include "host/sql/SqlInterno.h"
#include "orders/SentenciasOp.h"
#include "runtime/Error.h"
#include "shifts/SentenciasTurnos.h"
#include "tests/support/BaseDePrueba.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTemporaryFile>
#include <QtTest>

using namespace zuvi;
using namespace zuvi::anfitrion;
using zuvi::pruebas::BaseDePrueba;

namespace {

// The rows of a statement read with a bare query, no host path in between:
// one text per row, its fields joined.
QStringList filasDirectas(const QSqlDatabase &db, const QString &sql)
{
    QSqlQuery q(db);
    if (!q.exec(sql))
        throw Error(sql + QStringLiteral(": ") + q.lastError().text());
    QStringList filas;
    while (q.next()) {
        QStringList f;
        for (int i = 0; i < q.record().count(); ++i)
            f << (q.value(i).isNull() ? QStringLiteral("NULL") : variantToText(q.value(i)));
        filas << f.join(QLatin1Char('|'));
    }
    return filas;
}

QStringList filasDe(const RecordsetPtr &r)
{
    QStringList filas;
    for (r->moveFirst(); !r->atEnd(); r->moveNext()) {
        QStringList f;
        for (int i = 0; i < r->fieldCount(); ++i)
            f << (r->value(i).isNull() ? QStringLiteral("NULL") : variantToText(r->value(i)));
        filas << f.join(QLatin1Char('|'));
    }
    return filas;
}

QString valoresEnTexto(const QVariantList &valores)
{
    QStringList t;
    for (const QVariant &v : valores)
        t << QStringLiteral("%1:%2").arg(QString::fromLatin1(v.typeName()), v.toString());
    return t.join(QLatin1Char(' '));
}

// What the tables a write touches hold, to compare two runs of it.
QStringList estado(const QSqlDatabase &db)
{
    QStringList todo;
    for (const char *t : {"op", "oppart", "turnos", "turnoempleado", "horarios"})
        todo << filasDirectas(db, QStringLiteral("SELECT * FROM %1").arg(QLatin1String(t)));
    todo.sort();
    return todo;
}

} // namespace

class TstSql : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { pruebas::preparaRegistro(); }

    // The module's own shapes (two blanks, nested parentheses, COUNT( * )) are run through
    // this in losTextosDelModulo; here, the shapes around them.
    void normalizaLiteralesDondeSePuede()
    {
        const struct
        {
            const char *sql, *texto, *valores;
            Motor motor = Motor::SQLite;
        } casos[] = {
            {"SELECT * FROM prods WHERE articulo = 'O''Brien'",
             "SELECT * FROM prods WHERE articulo = ?", "QString:O'Brien"},
            {"UPDATE op SET importe = 12.5, observ = 'a;b' WHERE op=3",
             "UPDATE op SET importe = ?, observ = ? WHERE op=?",
             "double:12.5 QString:a;b qlonglong:3"},
            {"INSERT INTO turnoempleado (turno, empleado) VALUES ('M', 'E1')",
             "INSERT INTO turnoempleado (turno, empleado) VALUES (?, ?)", "QString:M QString:E1"},
            // the select list, ORDER BY, LIMIT, GROUP BY, HAVING and patterns stay
            {"SELECT 5, 'x' FROM op WHERE op > 1 ORDER BY 1 LIMIT 3",
             "SELECT 5, 'x' FROM op WHERE op > ? ORDER BY 1 LIMIT 3", "qlonglong:1"},
            {"SELECT estado, COUNT(*) FROM op GROUP BY 1 HAVING COUNT(*) > 1",
             "SELECT estado, COUNT(*) FROM op GROUP BY 1 HAVING COUNT(*) > 1", ""},
            {"SELECT * FROM prods WHERE articulo LIKE 'KIT%' AND kit = 1",
             "SELECT * FROM prods WHERE articulo LIKE 'KIT%' AND kit = ?", "qlonglong:1"},
            {"SELECT * FROM op WHERE op IN (SELECT 2 FROM oppart WHERE op = 2)",
             "SELECT * FROM op WHERE op IN (SELECT 2 FROM oppart WHERE op = ?)", "qlonglong:2"},
            {"SELECT * FROM op WHERE CAST(importe AS DECIMAL(10, 2)) = 710",
             "SELECT * FROM op WHERE CAST(importe AS DECIMAL(10, 2)) = ?", "qlonglong:710"},
            {"SELECT * FROM op WHERE op.op = 1 AND \"estado\" = 'PE'",
             "SELECT * FROM op WHERE op.op = ? AND \"estado\" = ?", "qlonglong:1 QString:PE"},
            {"  SELECT *\n\tFROM op   WHERE op = 1  ", "SELECT * FROM op WHERE op = ?",
             "qlonglong:1"},
            // The server keeps the decimals; sixteen digits are more than a double keeps exact.
            {"UPDATE op SET importe = 12.5 WHERE op = 3",
             "UPDATE op SET importe = 12.5 WHERE op = ?", "qlonglong:3", Motor::MariaDB},
            {"SELECT * FROM op WHERE importe = 0.1234567890123456",
             "SELECT * FROM op WHERE importe = 0.1234567890123456", ""},
        };
        for (const auto &c : casos) {
            const SentenciaNormalizada n = normalizaSentencia(QString::fromUtf8(c.sql), c.motor);
            QVERIFY2(n.entendida, c.sql);
            QCOMPARE(n.texto, QString::fromUtf8(c.texto));
            QCOMPARE(valoresEnTexto(n.valores), QString::fromUtf8(c.valores));
        }
    }

    void loQueNoEntiendeCorreComoEsta()
    {
        const struct
        {
            const char *sql;
            Motor motor = Motor::SQLite;
        } casos[] = {
            {"SELECT 1 FROM op; DELETE FROM op"},
            {"SELECT * FROM op WHERE op = 1 -- x"},
            {"SELECT * FROM op /* x */ WHERE op = 1"},
            {"SELECT * FROM op WHERE op = ?"},
            {"SELECT * FROM op WHERE op = :op"},
            {"CREATE TABLE t (a INT DEFAULT 0)"},
            {"SELECT * FROM prods WHERE articulo = X'41'"},
            {"SELECT * FROM prods WHERE articulo = 'A"},
            {"SELECT * FROM op WHERE (op = 1"},
            {"SELECT * FROM op WHERE estado = 'P' 'E'"},
            {"SELECT * FROM op WHERE observ = 'a\\'", Motor::MariaDB}, // the server's backslash
        };
        for (const auto &c : casos)
            QVERIFY2(!normalizaSentencia(QString::fromUtf8(c.sql), c.motor).entendida, c.sql);
    }

    // A text read from the mould of an earlier one gives what scanning it
    // gives: the same text and values, or a refusal. The first 32 characters
    // are shared, so the mould is tried.
    void elMoldeDaLoMismoQueElLector()
    {
        const QString prod = "SELECT kit, costo FROM prods WHERE articulo = ";
        const QString mov = "UPDATE movimientos SET importe = ";
        const struct
        {
            QString molde, sql;
            Motor motor = Motor::SQLite;
        } casos[] = {
            {prod + "'C-1-2'", prod + "'KIT-0012345'"},
            {prod + "'A'", prod + "'O''Brien'"},
            {prod + "'A'", prod + "''"},
            {prod + "'A'", prod + "7"},
            {prod + "'A'", prod + "'A"},
            {prod + "'A'", prod + "'A'; DELETE FROM op"},
            {prod + "'A'", prod + "'A' 'B'"},
            {prod + "'A'", prod + "'A\\'", Motor::MariaDB},
            {mov + "12 WHERE id = 3", mov + "12.5 WHERE id = 3"},
            {mov + "12.5 WHERE id = 3", mov + "12 WHERE id = 3"},
            {mov + "1.5 WHERE id = 3", mov + "1.5e3 WHERE id = 3"},
            {mov + "1.5 WHERE id = 3", mov + "0.1234567890123456 WHERE id = 3"},
            {mov + "1 WHERE id = 3", mov + "99999999999999999999 WHERE id = 3"},
            {mov + "1 WHERE id = 3", mov + "0x1F WHERE id = 3"},
            {mov + "1 WHERE id = 3", mov + "1abc WHERE id = 3"},
            {mov + "12 WHERE id = 3", mov + "12.5 WHERE id = 3", Motor::MariaDB},
            {mov + "1 WHERE id = 3", mov + "1 WHERE id = 3 OR 1 = 1"},
            {mov + "1 WHERE id = 3", mov + "1 WHERE  id = 3"},
        };
        for (const auto &c : casos) {
            interno::Normalizacion n;
            QVERIFY(interno::normaliza(c.molde, c.motor, n));
            const SentenciaNormalizada esperada = normalizaSentencia(c.sql, c.motor);
            QVERIFY2(interno::normaliza(c.sql, c.motor, n) == esperada.entendida,
                     qPrintable(c.sql));
            if (!esperada.entendida)
                continue;
            QCOMPARE(n.vista().toString(), esperada.texto);
            QVariantList valores;
            for (const interno::Literal &l : n.literales)
                valores << interno::valorDe(l);
            QCOMPARE(valoresEnTexto(valores), valoresEnTexto(esperada.valores));
        }
    }

    // The statement texts the module hands over, pinned here and nowhere else:
    // a host may know them by their text. Each, with the values of the demo
    // data, normalized returns the rows the original returns and writes what
    // the original writes.
    void losTextosDelModulo()
    {
        namespace o = sentenciasOp;
        const QString m = "MATUTINO", f = "'2024-05-06'";
        const std::pair<QString, const char *> textos[] = {
            {o::plantillaOp(), "SELECT * FROM op WHERE op = 0"},
            {o::op(1), "SELECT * FROM op WHERE op = 1"},
            {o::opParaPartida(1), "SELECT * FROM op WHERE (((op) = 1))"},
            {o::partidasCarga(1), "SELECT * FROM oppart WHERE Op = (1)"},
            {o::partidasGuardadas(1), "SELECT * FROM oppart WHERE (((Op)=1))"},
            {o::borraPartida("2"), "DELETE FROM oppart WHERE id_entrada = 2"},
            {o::liberaOp(1), "UPDATE Op SET ocupado = 0 WHERE Op = 1"},
            {o::ubicacion("SOPORTE"), "SELECT ubicacion FROM prods WHERE articulo = 'SOPORTE'"},
            {o::descripcion("SOPORTE"),
             "SELECT descrip,unidad,costo_u FROM prods WHERE articulo = 'SOPORTE'"},
            {o::claveAdicional("7501000000011"),
             "SELECT * FROM clavesadd WHERE clave = '7501000000011'"},
            {o::moneda("USD"), "SELECT * FROM monedas WHERE moneda = 'USD'"},
            {o::vendedor("V01"), "SELECT * FROM vends WHERE vend = 'V01'"},
            {o::listaArticulos(), "SELECT articulo, descrip, unidad FROM prods ORDER BY articulo"},
            {o::articuloDeClave("TORN-01"),
             "SELECT articulo,descrip FROM prods WHERE articulo = 'TORN-01'"},
            {o::condicionOp(1) + o::condicionOpMayuscula(2) + o::condicionPartida("3"),
             "op = 1Op = 2id_entrada = 3"},
            {turnos::cuentaTurnos(), "SELECT COUNT( * ) FROM turnos"},
            {turnos::selectTurnos(), "SELECT * FROM turnos ORDER BY turno"},
            {turnos::selectTurno(m), "SELECT * FROM turnos WHERE turno = 'MATUTINO'"},
            {turnos::existeTurno(m), "SELECT * FROM turnos WHERE turno = ' MATUTINO'"},
            {turnos::condicionTurno(m), "turno = 'MATUTINO'"},
            {turnos::borraTurno("VESPERTINO"), "DELETE FROM turnos WHERE turno = 'VESPERTINO'"},
            {turnos::borraMiembros(m), "DELETE FROM turnoempleado WHERE turno = 'MATUTINO'"},
            {turnos::borraHorarios(m), "DELETE FROM horarios WHERE turno = 'MATUTINO'"},
            {turnos::cuentaHorarios(f, m),
             "SELECT COUNT( * ) FROM horarios WHERE fecha = '2024-05-06' AND turno = 'MATUTINO'"},
            {turnos::selectHorarios(f, m),
             "SELECT * FROM horarios WHERE fecha = '2024-05-06' AND turno = 'MATUTINO'"},
            {turnos::cuentaEmpleados(), "SELECT COUNT( * ) FROM empleados"},
            {turnos::selectEmpleados(), "SELECT * FROM empleados ORDER BY empleado"},
            {turnos::cuentaMiembros(m),
             "SELECT COUNT( * ) FROM turnoempleado WHERE turno = 'MATUTINO'"},
            {turnos::selectMiembros(m),
             "SELECT turnoempleado.empleado, empleados.nombre FROM turnoempleado LEFT JOIN "
             "empleados USING( empleado ) WHERE turno = 'MATUTINO' ORDER BY empleado"},
            {turnos::selectTodosLosMiembros(), "SELECT * FROM turnoempleado"},
        };
        // And statements of the shapes the batch operations and the builder send.
        QStringList sentencias{
            "SELECT oppart.articulo, oppart.cantidad, op.almacen FROM oppart INNER JOIN op "
            "USING(op) WHERE op.op = 1",
            "SELECT * FROM comppart WHERE articulo =  'SOPORTE'",
            "SELECT articulo, kit, costo FROM prods WHERE articulo = 'O''Brien'",
            "UPDATE oppart SET terminado = cantidad WHERE op = 1",
            "INSERT INTO turnoempleado (turno, empleado) VALUES ('VESPERTINO', 'E006')",
            "UPDATE op SET importe = 12.75, observ = 'It''s  two' WHERE op = 1",
        };
        for (const auto &[modulo, texto] : textos) {
            QCOMPARE(modulo, QString::fromUtf8(texto));
            if (modulo.contains(u"FROM "))
                sentencias << modulo;
        }
        BaseDePrueba base(true);
        QSqlDatabase db = base.conexion();
        for (const QString &sql : std::as_const(sentencias)) {
            const SentenciaNormalizada n = normalizaSentencia(sql, base.motor());
            QVERIFY2(n.entendida, qPrintable(sql));
            QVERIFY2(!n.valores.isEmpty() || !sql.contains(u"WHERE"), qPrintable(sql));
            if (sql.startsWith(u"SELECT")) {
                const QStringList esperadas = filasDirectas(db, sql);
                QCOMPARE(filasDe(consulta(db, n.texto, n.valores)), esperadas);
                QCOMPARE(filasDe(consulta(db, sql)), esperadas); // the host's own way
                QCOMPARE(filasDe(consulta(db, sql)), esperadas); // and its kept statement
                continue;
            }
            QVERIFY(db.transaction());
            QSqlQuery q(db);
            QVERIFY2(q.exec(sql), qPrintable(q.lastError().text()));
            const int filas = q.numRowsAffected();
            const QStringList esperado = estado(db);
            QVERIFY(db.rollback());
            for (int vez = 0; vez < 2; ++vez) { // normalized, then the host's own way
                QVERIFY(db.transaction());
                QCOMPARE(vez ? ejecutaAccion(db, sql).filas
                             : ejecutaAccion(db, n.texto, n.valores).filas,
                         filas);
                QCOMPARE(estado(db), esperado);
                QVERIFY(db.rollback());
            }
        }
    }

    // Many texts that differ only in their values share one kept statement;
    // the trace still records each as it was handed over, and a failing text
    // reports it as well.
    void laTrazaGuardaElTextoOriginal()
    {
        BaseDePrueba base(true);
        QSqlDatabase db = base.conexion();
        QTemporaryFile traza;
        QVERIFY(traza.open());
        ponTraza(traza.fileName());
        auto apaga = qScopeGuard([] { ponTraza(QString()); });
        QStringList esperadas;
        for (int i = 0; i < 600; ++i) { // one statement for all of them
            const QString sql =
                QStringLiteral("SELECT COUNT( * ) FROM  oppart WHERE op = %1").arg(i);
            QCOMPARE(consulta(db, sql)->number(0), i == 1 ? 2.0 : i == 2 ? 1.0 : 0.0);
            esperadas << sql;
        }
        // A literal in the select list stays: each text is a statement of its
        // own, more than are kept, so the first ones are prepared again.
        for (int vuelta = 0; vuelta < 2; ++vuelta) {
            for (int i = 0; i < 300; i += vuelta ? 100 : 1) {
                const QString sql =
                    QStringLiteral("SELECT %1 + COUNT( * ) FROM oppart WHERE op = 1").arg(i);
                QCOMPARE(consulta(db, sql)->number(0), i + 2.0);
                esperadas << sql;
            }
        }
        const QString mala = QStringLiteral("SELECT * FROM nada WHERE op = 'x'");
        const QString error = pruebas::errorDe([&] { consulta(db, mala); });
        QVERIFY2(error.contains(mala), qPrintable(error));
        esperadas << mala;
        const QString valores = QStringLiteral("SELECT * FROM op WHERE op = ? AND estado = ?");
        consulta(db, valores, {1, QStringLiteral("P'E")});
        esperadas << QStringLiteral("SELECT * FROM op WHERE op = 1 AND estado = 'P''E'");
        QCOMPARE(QString::fromUtf8(traza.readAll()).split('\n', Qt::SkipEmptyParts), esperadas);
    }

    void segundaSentenciaRechazada()
    {
        BaseDePrueba base(true);
        const QVariant antes = base.escalar("SELECT COUNT(*) FROM op");
        for (const char *sql : {"SELECT * FROM op WHERE estado = 'PE'; DELETE FROM op",
                                "UPDATE op SET ocupado = 1 WHERE op = 1;DELETE FROM op"}) {
            QVERIFY_THROWS_EXCEPTION(Error, consulta(base.conexion(), sql));
            QVERIFY_THROWS_EXCEPTION(Error, ejecutaAccion(base.conexion(), sql));
        }
        QCOMPARE(base.escalar("SELECT COUNT(*) FROM op"), antes);
    }

    // The values come back with the types the driver gives, and the id of an
    // inserted row with them.
    void tiposYUltimoId()
    {
        BaseDePrueba base(true);
        QSqlDatabase db = base.conexion();
        const ResultadoAccion r = ejecutaAccion(
            db, "INSERT INTO movimientos (tipo, concepto, orden, folio, usuario, fecha, almacen, "
                "articulo, cantidad, costo, importe) VALUES ('S', 'OP', 1, '7', 'ADMIN', "
                "NULL, 2, 'Ñandú', 1.5, 0.25, 0.375)");
        QCOMPARE(r.filas, 1);
        QVERIFY(r.ultimoId.toLongLong() > 0);
        const RecordsetPtr rs =
            consulta(db, "SELECT articulo, almacen, cantidad, fecha FROM movimientos WHERE id = " +
                             r.ultimoId.toString());
        QCOMPARE(rs->rowCount(), 1);
        QCOMPARE(rs->text("ARTICULO"), QStringLiteral("Ñandú"));
        QCOMPARE(rs->number("Almacen"), 2.0);
        QCOMPARE(rs->number("cantidad"), 1.5);
        QVERIFY(rs->isNull("fecha"));
        QCOMPARE(ejecutaAccion(db, "UPDATE movimientos SET importe = 3 WHERE almacen = 2").filas,
                 1);
        // A null text, date or time is bound as NULL, as the driver binds it;
        // an empty text stays a text.
        const QVariantList nulos{QString(), QVariant(QMetaType::fromType<QDate>()), QString(""),
                                 r.ultimoId};
        ejecutaAccion(db, "UPDATE movimientos SET concepto = ?, fecha = ?, folio = ? WHERE id = ?",
                      nulos);
        const RecordsetPtr n = consulta(
            db, "SELECT concepto, fecha, folio FROM movimientos WHERE id = ?", {r.ultimoId});
        QVERIFY(n->isNull("concepto"));
        QVERIFY(n->isNull("fecha"));
        QVERIFY(!n->isNull("folio"));
        QCOMPARE(n->text("folio"), QString());
    }
};

QTEST_MAIN(TstSql)
#include "tst_sql.moc"
