// The host's statement builder against a real database.
// ZUVI_PRUEBA_AMBAS_BASES

#include "host/ConstructorSqlAnfitrion.h"
#include "host/Sql.h"
#include "runtime/Error.h"
#include "tests/support/BaseDePrueba.h"

#include <QLineEdit>
#include <QSqlRecord>
#include <QTemporaryDir>
#include <QtTest>

using namespace zuvi::anfitrion;

using Uso = std::tuple<const char *, const char *, const char *, const char *, const char *>;

class TstConstructorSql : public QObject
{
    Q_OBJECT

    std::unique_ptr<zuvi::pruebas::BaseDePrueba> m_base;

    QStringList fila(const QString &sql)
    {
        QSqlQuery q = ejecuta(m_base->conexion(), sql);
        q.next(); // the first row, as text; with no row every value reads as NULL
        QStringList valores;
        for (int i = 0; i < q.record().count(); ++i)
            valores << (q.isNull(i) ? QStringLiteral("NULL") : q.value(i).toString());
        return valores;
    }

private slots:
    void init() { m_base = std::make_unique<zuvi::pruebas::BaseDePrueba>(false); }

    void cadaTipoSeConservaYSeTraza()
    {
        QTemporaryDir dir;
        ponTraza(dir.filePath(QStringLiteral("traza.sql")));
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
        QCOMPARE(fila("SELECT " + columnas + " FROM op WHERE f_emision = '2024-05-02'"),
                 QStringList({"501", "1", "2024-05-02", "1234.56", "O'Brien;\nDELETE FROM op; --",
                              "MARÍA", "10:11:12", "1", "NULL"}));

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
        QCOMPARE(fila("SELECT ocupado, fechaEntrega, importe FROM op"),
                 QStringList({"0", "2024-12-31", "1234.56"}));

        ponTraza(QString());
        QFile f(dir.filePath(QStringLiteral("traza.sql")));
        f.open(QIODevice::ReadOnly);
        const QStringList lineas = QString::fromUtf8(f.readAll()).split('\n', Qt::SkipEmptyParts);
        QCOMPARE(lineas.filter(QRegularExpression("^(INSERT|UPDATE)")), // not the SELECTs above
                 QStringList({QString(generado).replace('\n', ' '), update}));
    }

    void usoIndebidoNoTocaLaBase_data()
    {
        const Uso casos[] = {
            {"tipo desconocido", "DELETE", "op", "ocupado", "op = 1"},
            {"columna de otra tabla", "UPDATE", "oppart", "cantidad", "op = 1"},
            {"nombre de columna con sentencia", "INSERT", "op", "op); DELETE FROM op; --", ""},
            {"update sin condicion", "UPDATE", "op", "ocupado", " "},
            {"segunda sentencia", "UPDATE", "op", "ocupado", "op = 1; DELETE FROM op"},
            {"cierra la comilla", "UPDATE", "op", "ocupado", "observ = 'X'; DELETE FROM op; --'"},
        };
        QTest::addColumn<Uso>("uso");
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
        QCOMPARE(fila("SELECT COUNT(*), MIN(estado), MIN(ocupado) FROM op"),
                 QStringList({"1", "PE", "0"}));
    }
};

QTEST_MAIN(TstConstructorSql)
#include "tst_constructorsql.moc"
