#include "runtime/ClassRegistry.h"
#include "runtime/Error.h"
#include "runtime/Recordset.h"
#include "runtime/VBool.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTest>

using namespace zuvi;

namespace {

class Marca : public QObject
{
    Q_OBJECT
};

} // namespace

class TstRuntime : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void recordsetWalksRowsAndReadsNullSafely()
    {
        Recordset rs({QStringLiteral("Op"), QStringLiteral("Estado"), QStringLiteral("importe")},
                     {{120, QStringLiteral("PE"), QStringLiteral(" 3.25 ")},
                      {121, QVariant(), QStringLiteral("abc")}});
        QCOMPARE(rs.value(QStringLiteral("OP")).toInt(), 120);
        QCOMPARE(rs.text(QStringLiteral("estado")), QStringLiteral("PE"));
        QCOMPARE(rs.value(1).toString(), QStringLiteral("PE"));
        QCOMPARE(rs.number(QStringLiteral("IMPORTE")), 3.25);
        QVERIFY_THROWS_EXCEPTION(Error, rs.value(QStringLiteral("Minimo")));
        QVERIFY_THROWS_EXCEPTION(Error, rs.value(3));
        rs.moveNext();
        QVERIFY(rs.isNull(QStringLiteral("Estado")));
        QCOMPARE(rs.text(QStringLiteral("Estado")), QString());
        QCOMPARE(rs.number(1), 0.0);
        QCOMPARE(rs.number(QStringLiteral("importe")), 0.0); // unreadable text is 0
        rs.moveNext();
        QVERIFY(rs.atEnd());
        QVERIFY_THROWS_EXCEPTION(Error, rs.value(0));
        QVERIFY_THROWS_EXCEPTION(Error, rs.moveNext());
        rs.moveFirst();
        QCOMPARE(rs.value(0).toInt(), 120);
        QCOMPARE(variantToText(QDate(2026, 3, 4)), QStringLiteral("2026-03-04"));
    }

    void recordsetFromQueryReadsAllRowsUpFront()
    {
        QSqlDatabase db =
            QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("rs"));
        db.setDatabaseName(QStringLiteral(":memory:"));
        QVERIFY(db.open());
        QSqlQuery q(db);
        QVERIFY(q.exec(QStringLiteral("CREATE TABLE t (Articulo TEXT, cantidad REAL)")));
        QVERIFY(q.exec(QStringLiteral("INSERT INTO t VALUES ('A', 1.5), ('B', NULL)")));
        QVERIFY(q.exec(QStringLiteral("SELECT * FROM t ORDER BY Articulo")));
        auto rs = Recordset::fromQuery(q);
        QVERIFY(QSqlQuery(db).exec(QStringLiteral("DELETE FROM t"))); // rows already read
        QCOMPARE(rs->text(QStringLiteral("articulo")), QStringLiteral("A"));
        QCOMPARE(rs->number(QStringLiteral("Cantidad")), 1.5);
        QVERIFY(q.exec(QStringLiteral("SELECT * FROM t")));
        auto vacio = Recordset::fromQuery(q);
        QVERIFY(vacio->atEnd());
        QCOMPARE(vacio->fieldCount(), 2); // an empty result keeps its columns
        q.finish();
        db.close();
    }

    void interfaceBoolean()
    {
        QCOMPARE(toVBool(true), VBool(-1));
        QCOMPARE(toVBool(false), VBool(0));
        QVERIFY(fromVBool(1) && fromVBool(VTrue) && !fromVBool(VFalse));
        QCOMPARE(sizeof(VBool), size_t(2));
    }

    void errorReportAndTraps()
    {
        QStringList titulos, textos;
        setReportSink([&](const QString &t, const QString &x) {
            titulos << t;
            textos << x;
        });
        QVERIFY(!reportErrors(QStringLiteral("Produccion"), QStringLiteral("Ensamble"),
                              [] { throw Error(QStringLiteral("línea 1\nlínea 2")); }));
        reportErrors(QStringLiteral("m"), QStringLiteral("p"),
                     [] { throw std::runtime_error("fallo std"); });
        reportErrors(QStringLiteral("m"), QStringLiteral("p"), [] { throw 5; });
        QVERIFY(reportErrors(QStringLiteral("m"), QStringLiteral("p"), [] {}));
        QVERIFY(!swallowErrors([] { throw Error(QStringLiteral("x")); })); // silent
        QVERIFY(swallowErrors([] {}));
        setReportSink({});
        QCOMPARE(textos.size(), 3);
        QCOMPARE(titulos.first(), QStringLiteral("ZuviProduccion"));
        QCOMPARE(textos.at(0), QStringLiteral("Error occured:\r\nModule: Produccion\r\nFunction: "
                                              "Ensamble\r\nDescription: línea 1\nlínea 2"));
        QVERIFY(textos.at(1).endsWith(QStringLiteral("Description: fallo std")));
        QVERIFY(textos.at(2).endsWith(QStringLiteral("Description: Error desconocido")));
    }

    void classRegistryCreatesByName()
    {
        auto &registry = ClassRegistry::instance();
        registry.add(QStringLiteral("Marca"), [] { return new Marca; });
        registry.add(QStringLiteral("Otra"), [] { return new QObject; });
        QVERIFY(qobject_cast<Marca *>(
            std::unique_ptr<QObject>(registry.create(QStringLiteral("MARCA"))).get()));
        QVERIFY(std::unique_ptr<Marca>(registry.create<Marca>(QStringLiteral("marca"))));
        QVERIFY_THROWS_EXCEPTION(Error, registry.create<Marca>(QStringLiteral("Otra")));
        registry.remove(QStringLiteral("Marca"));
        QVERIFY_THROWS_EXCEPTION(Error, registry.create(QStringLiteral("Marca")));
        registry.clear();
    }
};

QTEST_MAIN(TstRuntime)
#include "tst_runtime.moc"
