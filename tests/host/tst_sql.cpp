// The statement path: the literal scanner, the kept statements and the trace,
// on SQLite and MariaDB.

#include "host/sql/Motor.h"
#include "host/sql/Sql.h"
#include "host/sql/SqlInterno.h"
#include "runtime/Error.h"
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

    void normalizaLiteralesDondeSePuede_data()
    {
        QTest::addColumn<QString>("sql");
        QTest::addColumn<QString>("texto");
        QTest::addColumn<QString>("valores");
        const char *casos[][4] = {
            {"dos blancos", "SELECT * FROM comppart WHERE articulo =  'KIT-001'",
             "SELECT * FROM comppart WHERE articulo = ?", "QString:KIT-001"},
            {"comilla dentro", "SELECT * FROM prods WHERE articulo = 'O''Brien'",
             "SELECT * FROM prods WHERE articulo = ?", "QString:O'Brien"},
            {"paréntesis", "SELECT * FROM op WHERE (((op) = 5))",
             "SELECT * FROM op WHERE (((op) = ?))", "qlonglong:5"},
            {"cuenta", "SELECT COUNT( * ) FROM oppart WHERE op = 7001",
             "SELECT COUNT( * ) FROM oppart WHERE op = ?", "qlonglong:7001"},
            {"decimal y texto", "UPDATE op SET importe = 12.5, observ = 'a;b' WHERE op=3",
             "UPDATE op SET importe = ?, observ = ? WHERE op=?",
             "double:12.5 QString:a;b qlonglong:3"},
            {"valores", "INSERT INTO turnoempleado (turno, empleado) VALUES ('M', 'E1')",
             "INSERT INTO turnoempleado (turno, empleado) VALUES (?, ?)", "QString:M QString:E1"},
            {"lista y orden quedan", "SELECT 5, 'x' FROM op WHERE op > 1 ORDER BY 1 LIMIT 3",
             "SELECT 5, 'x' FROM op WHERE op > ? ORDER BY 1 LIMIT 3", "qlonglong:1"},
            {"agrupa", "SELECT estado, COUNT(*) FROM op GROUP BY 1 HAVING COUNT(*) > 1",
             "SELECT estado, COUNT(*) FROM op GROUP BY 1 HAVING COUNT(*) > 1", ""},
            {"patrón", "SELECT * FROM prods WHERE articulo LIKE 'KIT%' AND kit = 1",
             "SELECT * FROM prods WHERE articulo LIKE 'KIT%' AND kit = ?", "qlonglong:1"},
            {"subconsulta", "SELECT * FROM op WHERE op IN (SELECT 2 FROM oppart WHERE op = 2)",
             "SELECT * FROM op WHERE op IN (SELECT 2 FROM oppart WHERE op = ?)", "qlonglong:2"},
            {"tipo", "SELECT * FROM op WHERE CAST(importe AS DECIMAL(10, 2)) = 710",
             "SELECT * FROM op WHERE CAST(importe AS DECIMAL(10, 2)) = ?", "qlonglong:710"},
            {"nombres", "SELECT * FROM op WHERE op.op = 1 AND \"estado\" = 'PE'",
             "SELECT * FROM op WHERE op.op = ? AND \"estado\" = ?", "qlonglong:1 QString:PE"},
            {"blancos y saltos", "  SELECT *\n\tFROM op   WHERE op = 1  ",
             "SELECT * FROM op WHERE op = ?", "qlonglong:1"},
        };
        for (const auto &c : casos)
            QTest::newRow(c[0]) << QString::fromUtf8(c[1]) << QString::fromUtf8(c[2])
                                << QString::fromUtf8(c[3]);
    }
    void normalizaLiteralesDondeSePuede()
    {
        QFETCH(QString, sql);
        QFETCH(QString, texto);
        QFETCH(QString, valores);
        const SentenciaNormalizada n = normalizaSentencia(sql, Motor::SQLite);
        QVERIFY(n.entendida);
        QCOMPARE(n.texto, texto);
        QCOMPARE(valoresEnTexto(n.valores), valores);
    }

    void loQueNoEntiendeCorreComoEsta_data()
    {
        QTest::addColumn<QString>("sql");
        QTest::addColumn<int>("motor");
        const int lite = int(Motor::SQLite), maria = int(Motor::MariaDB);
        QTest::newRow("segunda sentencia") << "SELECT 1 FROM op; DELETE FROM op" << lite;
        QTest::newRow("comentario") << "SELECT * FROM op WHERE op = 1 -- x" << lite;
        QTest::newRow("comentario de bloque") << "SELECT * FROM op /* x */ WHERE op = 1" << lite;
        QTest::newRow("marca") << "SELECT * FROM op WHERE op = ?" << lite;
        QTest::newRow("nombrada") << "SELECT * FROM op WHERE op = :op" << lite;
        QTest::newRow("esquema") << "CREATE TABLE t (a INT DEFAULT 0)" << lite;
        QTest::newRow("binario") << "SELECT * FROM prods WHERE articulo = X'41'" << lite;
        QTest::newRow("sin cerrar") << "SELECT * FROM prods WHERE articulo = 'A" << lite;
        QTest::newRow("paréntesis de más") << "SELECT * FROM op WHERE (op = 1" << lite;
        QTest::newRow("textos juntos") << "SELECT * FROM op WHERE estado = 'P' 'E'" << lite;
        QTest::newRow("barra en el servidor") << "SELECT * FROM op WHERE observ = 'a\\'" << maria;
    }
    void loQueNoEntiendeCorreComoEsta()
    {
        QFETCH(QString, sql);
        QFETCH(int, motor);
        QVERIFY(!normalizaSentencia(sql, Motor(motor)).entendida);
    }

    // A text read from the mould of an earlier one gives what scanning it
    // gives: the same text and values, or a refusal. The first 32 characters
    // are shared, so the mould is tried.
    void elMoldeDaLoMismoQueElLector_data()
    {
        QTest::addColumn<QString>("molde");
        QTest::addColumn<QString>("sql");
        QTest::addColumn<int>("motor");
        const int lite = int(Motor::SQLite), maria = int(Motor::MariaDB);
        const QString prod = "SELECT kit, costo FROM prods WHERE articulo = ";
        const QString mov = "UPDATE movimientos SET importe = ";
        QTest::newRow("otro largo") << prod + "'C-1-2'" << prod + "'KIT-0012345'" << lite;
        QTest::newRow("comilla doble") << prod + "'A'" << prod + "'O''Brien'" << lite;
        QTest::newRow("texto vacío") << prod + "'A'" << prod + "''" << lite;
        QTest::newRow("número por texto") << prod + "'A'" << prod + "7" << lite;
        QTest::newRow("sin cerrar") << prod + "'A'" << prod + "'A" << lite;
        QTest::newRow("segunda sentencia") << prod + "'A'" << prod + "'A'; DELETE FROM op" << lite;
        QTest::newRow("textos juntos") << prod + "'A'" << prod + "'A' 'B'" << lite;
        QTest::newRow("barra en el servidor") << prod + "'A'" << prod + "'A\\'" << maria;
        QTest::newRow("entero a decimal")
            << mov + "12 WHERE id = 3" << mov + "12.5 WHERE id = 3" << lite;
        QTest::newRow("decimal a entero")
            << mov + "12.5 WHERE id = 3" << mov + "12 WHERE id = 3" << lite;
        QTest::newRow("exponente")
            << mov + "1.5 WHERE id = 3" << mov + "1.5e3 WHERE id = 3" << lite;
        QTest::newRow("demasiados dígitos")
            << mov + "1.5 WHERE id = 3" << mov + "0.1234567890123456 WHERE id = 3" << lite;
        QTest::newRow("entero enorme")
            << mov + "1 WHERE id = 3" << mov + "99999999999999999999 WHERE id = 3" << lite;
        QTest::newRow("hexadecimal") << mov + "1 WHERE id = 3" << mov + "0x1F WHERE id = 3" << lite;
        QTest::newRow("pegado a un nombre")
            << mov + "1 WHERE id = 3" << mov + "1abc WHERE id = 3" << lite;
        QTest::newRow("decimal en el servidor")
            << mov + "12 WHERE id = 3" << mov + "12.5 WHERE id = 3" << maria;
        QTest::newRow("otro resto")
            << mov + "1 WHERE id = 3" << mov + "1 WHERE id = 3 OR 1 = 1" << lite;
        QTest::newRow("otros blancos") << mov + "1 WHERE id = 3" << mov + "1 WHERE  id = 3" << lite;
    }
    void elMoldeDaLoMismoQueElLector()
    {
        QFETCH(QString, molde);
        QFETCH(QString, sql);
        QFETCH(int, motor);
        interno::Normalizacion n;
        QVERIFY(interno::normaliza(molde, Motor(motor), n));
        const SentenciaNormalizada esperada = normalizaSentencia(sql, Motor(motor));
        QCOMPARE(interno::normaliza(sql, Motor(motor), n), esperada.entendida);
        if (!esperada.entendida)
            return;
        QCOMPARE(n.vista().toString(), esperada.texto);
        QVariantList valores;
        for (const interno::Literal &l : n.literales)
            valores << interno::valorDe(l);
        QCOMPARE(valoresEnTexto(valores), valoresEnTexto(esperada.valores));
    }

    void elServidorConservaLosDecimales()
    {
        const SentenciaNormalizada n =
            normalizaSentencia("UPDATE op SET importe = 12.5 WHERE op = 3", Motor::MariaDB);
        QVERIFY(n.entendida);
        QCOMPARE(n.texto, "UPDATE op SET importe = 12.5 WHERE op = ?");
        QCOMPARE(valoresEnTexto(n.valores), "qlonglong:3");
        // Sixteen significant digits are more than a double keeps exact.
        QCOMPARE(
            normalizaSentencia("SELECT * FROM op WHERE importe = 0.1234567890123456", Motor::SQLite)
                .valores.size(),
            0);
    }

    // Every statement text the module hands over, with the values it uses:
    // the normalized statement returns the rows the original returns and
    // writes what the original writes.
    void normalizadaDevuelveLoMismo_data()
    {
        QTest::addColumn<QString>("sql");
        const QString fecha = QStringLiteral("'2024-05-06'");
        const QStringList textos = {
            "SELECT * FROM op WHERE op = 0",
            "SELECT * FROM op WHERE op = 1",
            "SELECT * FROM op WHERE (((op) = 1))",
            "SELECT * FROM oppart WHERE op = 1",
            "SELECT * FROM oppart WHERE (((Op)=1))",
            "SELECT * FROM oppart WHERE Op = (1)",
            "SELECT COUNT( * ) FROM oppart WHERE op = 1",
            "SELECT oppart.articulo, oppart.cantidad, op.almacen FROM oppart INNER JOIN op "
            "USING(op) WHERE op.op = 1",
            "UPDATE oppart SET terminado = cantidad WHERE op = 1",
            "UPDATE op SET cerrado = 1 WHERE op = 2",
            "DELETE FROM op WHERE op = 3",
            "DELETE FROM oppart WHERE op = 1",
            "DELETE FROM oppart WHERE id_entrada = 2",
            "UPDATE Op SET ocupado = 0 WHERE Op = 1",
            "SELECT ubicacion FROM prods WHERE articulo = 'SOPORTE'",
            "SELECT descrip,unidad,costo_u FROM prods WHERE articulo = 'SOPORTE'",
            "SELECT * FROM clavesadd WHERE clave = '7501000000011'",
            "SELECT articulo,descrip FROM prods WHERE articulo = 'TORN-01'",
            "SELECT * FROM monedas WHERE moneda = 'USD'",
            "SELECT * FROM vends WHERE vend = 'V01'",
            "SELECT * FROM comppart WHERE articulo =  'SOPORTE'",
            "SELECT * FROM componen WHERE articulo =  'SOPORTE'",
            "SELECT kit, costo FROM prods WHERE articulo = 'SOPORTE'",
            "SELECT articulo, kit, costo FROM prods WHERE articulo = 'O''Brien'",
            "SELECT COUNT( * ) FROM turnos",
            "SELECT * FROM turnos ORDER BY turno",
            "SELECT * FROM turnos WHERE turno = 'MATUTINO'",
            "SELECT * FROM turnos WHERE turno = ' MATUTINO'",
            "DELETE FROM turnoempleado WHERE turno = 'MATUTINO'",
            "DELETE FROM turnos WHERE turno = 'VESPERTINO'",
            "DELETE FROM horarios WHERE turno = 'MATUTINO'",
            "SELECT COUNT( * ) FROM horarios WHERE fecha = " + fecha + " AND turno = 'MATUTINO'",
            "SELECT * FROM horarios WHERE fecha = " + fecha + " AND turno = 'MATUTINO'",
            "SELECT COUNT( * ) FROM turnoempleado WHERE turno = 'MATUTINO'",
            "SELECT turnoempleado.empleado, empleados.nombre FROM turnoempleado LEFT JOIN "
            "empleados USING( empleado ) WHERE turno = 'MATUTINO' ORDER BY empleado",
            "SELECT COUNT( * ) FROM empleados",
            "SELECT * FROM empleados ORDER BY empleado",
            "SELECT * FROM turnoempleado",
            "INSERT INTO turnoempleado (turno, empleado) VALUES ('VESPERTINO', 'E006')",
            "UPDATE turnos SET entrada = '08:00', comida = '12:00' WHERE turno = 'MATUTINO'",
            "UPDATE op SET importe = 12.75, observ = 'It''s  two' WHERE op = 1",
        };
        for (const QString &t : textos)
            QTest::newRow(qPrintable(t.left(60))) << t;
    }
    void normalizadaDevuelveLoMismo()
    {
        QFETCH(QString, sql);
        BaseDePrueba base(true);
        QSqlDatabase db = base.conexion();
        const SentenciaNormalizada n = normalizaSentencia(sql, base.motor());
        QVERIFY(n.entendida);
        QVERIFY2(!n.valores.isEmpty() || !sql.contains(QLatin1String("WHERE")),
                 qPrintable(n.texto));
        if (sql.startsWith(QLatin1String("SELECT"))) {
            const QStringList esperadas = filasDirectas(db, sql);
            QCOMPARE(filasDe(consulta(db, n.texto, n.valores)), esperadas);
            QCOMPARE(filasDe(consulta(db, sql)), esperadas); // the host's own way
            QCOMPARE(filasDe(consulta(db, sql)), esperadas); // and its kept statement
            return;
        }
        QVERIFY(db.transaction());
        QSqlQuery q(db);
        QVERIFY2(q.exec(sql), qPrintable(q.lastError().text()));
        const int filas = q.numRowsAffected();
        const QStringList esperado = estado(db);
        QVERIFY(db.rollback());
        QVERIFY(db.transaction());
        QCOMPARE(ejecutaAccion(db, n.texto, n.valores).filas, filas);
        QCOMPARE(estado(db), esperado);
        QVERIFY(db.rollback());
        QVERIFY(db.transaction());
        QCOMPARE(ejecutaAccion(db, sql).filas, filas);
        QCOMPARE(estado(db), esperado);
        QVERIFY(db.rollback());
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
        try {
            consulta(db, mala);
            QFAIL("una tabla que no existe");
        } catch (const Error &e) {
            QVERIFY2(e.description().contains(mala), qPrintable(e.description()));
        }
        esperadas << mala;
        const QString valores = QStringLiteral("SELECT * FROM op WHERE op = ? AND estado = ?");
        consulta(db, valores, {1, QStringLiteral("P'E")});
        esperadas << QStringLiteral("SELECT * FROM op WHERE op = 1 AND estado = 'P''E'");
        QCOMPARE(QString::fromUtf8(traza.readAll()).split('\n', Qt::SkipEmptyParts), esperadas);
    }

    void segundaSentenciaRechazada_data()
    {
        QTest::addColumn<QString>("sql");
        QTest::newRow("tras un texto") << "SELECT * FROM op WHERE estado = 'PE'; DELETE FROM op";
        QTest::newRow("tras un número") << "UPDATE op SET ocupado = 1 WHERE op = 1;DELETE FROM op";
    }
    void segundaSentenciaRechazada()
    {
        QFETCH(QString, sql);
        BaseDePrueba base(true);
        const QVariant antes = base.escalar("SELECT COUNT(*) FROM op");
        QVERIFY_THROWS_EXCEPTION(Error, consulta(base.conexion(), sql));
        QVERIFY_THROWS_EXCEPTION(Error, ejecutaAccion(base.conexion(), sql));
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
