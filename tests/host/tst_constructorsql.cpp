// The host's statement builder, on SQLite and MariaDB.

#include "host/servicios/ConstructorSqlAnfitrion.h"
#include "host/sql/Sql.h"
#include "runtime/Error.h"
#include "tests/support/BaseDePrueba.h"

#include <QLineEdit>
#include <QtTest>

using namespace zuvi::anfitrion;

using Uso = std::tuple<const char *, const char *, const char *, const char *, const char *>;

class TstConstructorSql : public QObject
{
    Q_OBJECT

    std::unique_ptr<zuvi::pruebas::BaseDePrueba> m_base;

private slots:
    void init() { m_base = std::make_unique<zuvi::pruebas::BaseDePrueba>(false); }

    void cadaTipoSeConservaYSeTraza()
    {
        QTemporaryFile traza;
        QVERIFY(traza.open());
        ponTraza(traza.fileName());
        auto apaga = qScopeGuard([] { ponTraza(QString()); });
        QLineEdit usuario(QStringLiteral("MARÍA")); // an object stands for its text
        ConstructorSqlAnfitrion c;
        c.PonConexion(m_base->conexion());
        c.Tipo(QStringLiteral("INSERT"));
        c.AgregaCampo("op", "op", QVariant::fromValue<qint32>(501));
        c.AgregaCampo("op", "ocupado", QVariant::fromValue<qint16>(1));
        c.AgregaCampo("op", "f_emision", QDate(2024, 5, 2));
        c.AgregaCampo("op", "importe", 1234.56);
        c.AgregaCampo("op", "observ", QStringLiteral("O'Brien;\nDELETE FROM op; --"));
        c.AgregaCampo("op", "usuario", QVariant::fromValue<QObject *>(&usuario));
        c.AgregaCampo("op", "usuhora", QTime(10, 11, 12));
        c.AgregaCampo("op", "automatico", true);
        c.AgregaCampo("op", "ordencompra", QVariant());
        const QString columnas = QStringLiteral(
            "op, ocupado, f_emision, importe, observ, usuario, usuhora, automatico, ordencompra");
        const QString insert = "INSERT INTO op (" + columnas + ") VALUES (";
        const QString generado = c.Genera(QStringLiteral("op"));
        QCOMPARE(generado, insert + "501, 1, '2024-05-02', 1234.56, 'O''Brien;\nDELETE FROM "
                                    "op; --', 'MARÍA', '10:11:12', 1, NULL)");
        QCOMPARE(c.sentencia(), insert + "?, ?, ?, ?, ?, ?, ?, ?, ?)");
        c.Ejecuta();

        // An UPDATE with no columns generates nothing, runs nothing and succeeds.
        c.Limpia();
        c.Tipo(QStringLiteral("update"));
        c.Condicion(QStringLiteral("op = 501"));
        QCOMPARE(c.Genera(QStringLiteral("op")), QString());
        c.Ejecuta();
        c.AgregaCampo("op", "ocupado", QVariant::fromValue<qint16>(0));
        c.AgregaCampo("op", "fechaEntrega", QDate(2024, 12, 31));
        QVERIFY_THROWS_EXCEPTION(zuvi::Error, c.Ejecuta());    // changed since Genera
        const QString update = c.Genera(QStringLiteral("Op")); // table names in either case
        QCOMPARE(update, "UPDATE Op SET ocupado = 0, fechaEntrega = '2024-12-31' WHERE op = 501");
        c.Ejecuta();
        QCOMPARE(QString::fromUtf8(traza.readAll()), // exactly what Genera gave
                 QString(generado).replace('\n', ' ') + '\n' + update + '\n');
        const auto r = // every value kept its type; the UPDATE touched only its columns
            consulta(m_base->conexion(), "SELECT " + columnas + ", fechaEntrega FROM op");
        QStringList fila;
        for (int i = 0; i < r->fieldCount(); ++i)
            fila << (r->value(i).isNull() ? "NULL" : r->value(i).toString());
        QCOMPARE(fila.join('|'), "501|0|2024-05-02|1234.56|O'Brien;\nDELETE FROM op; "
                                 "--|MARÍA|10:11:12|1|NULL|2024-12-31");
    }

    void usoIndebidoNoTocaLaBase_data()
    {
        QTest::addColumn<Uso>("uso");
        const Uso casos[] = {
            {"tipo desconocido", "DELETE", "op", "ocupado", "op = 1"},
            {"columna de otra tabla", "UPDATE", "oppart", "cantidad", "op = 1"},
            {"columna con sentencia", "INSERT", "op", "op); DELETE FROM op; --", ""},
            {"update sin condicion", "UPDATE", "op", "ocupado", " "},
            {"segunda sentencia", "UPDATE", "op", "ocupado", "op = 1; DELETE FROM op; --"}};
        for (const Uso &u : casos)
            QTest::newRow(std::get<0>(u)) << u;
    }
    void usoIndebidoNoTocaLaBase()
    {
        QFETCH(Uso, uso);
        const auto [nombre, tipo, tabla, columna, condicion] = uso;
        m_base->ejecuta("INSERT INTO op (op, estado, ocupado) VALUES (1, 'PE', 0)");
        ConstructorSqlAnfitrion c;
        c.PonConexion(m_base->conexion());
        QVERIFY_THROWS_EXCEPTION(zuvi::Error, [&] {
            c.Tipo(tipo);
            c.AgregaCampo(tabla, columna, 1);
            c.Condicion(condicion);
            c.Genera(QStringLiteral("op"));
            c.Ejecuta();
        }());
        QCOMPARE(m_base->escalar("SELECT COUNT(*) FROM op WHERE estado = 'PE' AND ocupado = 0"), 1);
    }
};

QTEST_MAIN(TstConstructorSql)
#include "tst_constructorsql.moc"
