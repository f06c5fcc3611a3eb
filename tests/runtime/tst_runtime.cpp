#include "runtime/ClassRegistry.h"
#include "runtime/ComponentRegistry.h"
#include "runtime/Error.h"
#include "runtime/Recordset.h"
#include "runtime/VBool.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

using namespace zuvi;

namespace {

class Marca : public QObject
{
    Q_OBJECT
};

Recordset dosFilas()
{
    return Recordset({QStringLiteral("Op"), QStringLiteral("Estado"), QStringLiteral("importe")},
                     {{120, QStringLiteral("PE"), 10.5}, {121, QVariant(), QVariant()}});
}

} // namespace

class TstRuntime : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void recordsetWalksRowsAndEnds()
    {
        Recordset rs = dosFilas();
        QVERIFY(!rs.atEnd());
        QCOMPARE(rs.value(QStringLiteral("op")).toInt(), 120);
        QCOMPARE(rs.value(QStringLiteral("OP")).toInt(), 120);
        QCOMPARE(rs.text(QStringLiteral("estado")), QStringLiteral("PE"));
        QCOMPARE(rs.value(1).toString(), QStringLiteral("PE"));
        rs.moveNext();
        QVERIFY(!rs.atEnd());
        // Null fields read as empty text and zero.
        QVERIFY(rs.isNull(QStringLiteral("Estado")));
        QCOMPARE(rs.text(QStringLiteral("Estado")), QString());
        QCOMPARE(rs.number(QStringLiteral("importe")), 0.0);
        rs.moveNext();
        QVERIFY(rs.atEnd());
        QVERIFY_THROWS_EXCEPTION(Error, rs.value(0));
        QVERIFY_THROWS_EXCEPTION(Error, rs.moveNext());
        rs.moveFirst();
        QCOMPARE(rs.value(0).toInt(), 120);
    }

    void recordsetRefusesUnknownFields()
    {
        Recordset rs = dosFilas();
        QVERIFY_THROWS_EXCEPTION(Error, rs.value(QStringLiteral("Minimo")));
        QVERIFY_THROWS_EXCEPTION(Error, rs.value(3));
        QVERIFY_THROWS_EXCEPTION(Error, rs.value(-1));
        QCOMPARE(rs.indexOf(QStringLiteral("IMPORTE")), 2);
        QVERIFY(!rs.hasField(QStringLiteral("costo")));
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
        // The rows stay readable after the table changes under them.
        QVERIFY(QSqlQuery(db).exec(QStringLiteral("DELETE FROM t")));
        QCOMPARE(rs->rowCount(), 2);
        QCOMPARE(rs->text(QStringLiteral("articulo")), QStringLiteral("A"));
        QCOMPARE(rs->number(QStringLiteral("Cantidad")), 1.5);
        rs->moveNext();
        QCOMPARE(rs->number(QStringLiteral("Cantidad")), 0.0);

        QVERIFY(q.exec(QStringLiteral("SELECT * FROM t")));
        auto vacio = Recordset::fromQuery(q);
        QVERIFY(vacio->atEnd());
        QCOMPARE(vacio->fieldCount(), 2); // an empty result keeps its columns
        q.finish();
        db.close();
    }

    void conversions_data()
    {
        QTest::addColumn<QVariant>("valor");
        QTest::addColumn<double>("numero");
        QTest::addColumn<QString>("texto");
        QTest::newRow("null") << QVariant() << 0.0 << QString();
        QTest::newRow("int") << QVariant(42) << 42.0 << QStringLiteral("42");
        QTest::newRow("real") << QVariant(2.5) << 2.5 << QStringLiteral("2.5");
        QTest::newRow("numeric text")
            << QVariant(QStringLiteral(" 3.25 ")) << 3.25 << QStringLiteral(" 3.25 ");
        QTest::newRow("other text")
            << QVariant(QStringLiteral("abc")) << 0.0 << QStringLiteral("abc");
        QTest::newRow("date") << QVariant(QDate(2026, 3, 4)) << 0.0 << QStringLiteral("2026-03-04");
    }

    void conversions()
    {
        QFETCH(QVariant, valor);
        QFETCH(double, numero);
        QFETCH(QString, texto);
        if (valor.typeId() != QMetaType::QDate)
            QCOMPARE(variantToDouble(valor), numero);
        QCOMPARE(variantToText(valor), texto);
    }

    void interfaceBoolean()
    {
        QCOMPARE(toVBool(true), VBool(-1));
        QCOMPARE(toVBool(false), VBool(0));
        QVERIFY(fromVBool(1));
        QVERIFY(fromVBool(VTrue));
        QVERIFY(!fromVBool(VFalse));
        QCOMPARE(sizeof(VBool), size_t(2));
    }

    void errorReportTextAndSink()
    {
        QString titulo, texto;
        setReportSink([&](const QString &t, const QString &x) {
            titulo = t;
            texto = x;
        });
        const bool terminado =
            reportErrors(QStringLiteral("Produccion"), QStringLiteral("Ensamble"),
                         [] { throw Error(QStringLiteral("línea 1\nlínea 2")); });
        setReportSink({});
        QVERIFY(!terminado);
        QCOMPARE(titulo, QStringLiteral("ZuviProduccion"));
        QCOMPARE(texto, QStringLiteral("Error occured:\r\nModule: Produccion\r\nFunction: "
                                       "Ensamble\r\nDescription: línea 1\nlínea 2"));
    }

    void trapsCatchEveryKindOfError()
    {
        QStringList descripciones;
        setReportSink([&](const QString &, const QString &x) {
            descripciones << x.section(QStringLiteral("Description: "), 1);
        });
        reportErrors(QStringLiteral("m"), QStringLiteral("p"),
                     [] { throw std::runtime_error("fallo std"); });
        reportErrors(QStringLiteral("m"), QStringLiteral("p"), [] { throw 5; });
        QVERIFY(reportErrors(QStringLiteral("m"), QStringLiteral("p"), [] {}));
        setReportSink({});
        QCOMPARE(descripciones,
                 QStringList({QStringLiteral("fallo std"), QStringLiteral("Error desconocido")}));
        QVERIFY(!swallowErrors([] { throw Error(QStringLiteral("x")); }));
        QVERIFY(swallowErrors([] {}));
    }

    void classRegistryCreatesByName()
    {
        auto &registry = ClassRegistry::instance();
        registry.add(QStringLiteral("Marca"), [] { return new Marca; });
        std::unique_ptr<QObject> o(registry.create(QStringLiteral("MARCA")));
        QVERIFY(qobject_cast<Marca *>(o.get()));
        std::unique_ptr<Marca> typed(registry.create<Marca>(QStringLiteral("marca")));
        QVERIFY(typed);
        // Wrong interface: refused and the object is not leaked into the caller.
        registry.add(QStringLiteral("Otra"), [] { return new QObject; });
        QVERIFY_THROWS_EXCEPTION(Error, registry.create<Marca>(QStringLiteral("Otra")));
        registry.remove(QStringLiteral("Marca"));
        QVERIFY(!registry.contains(QStringLiteral("Marca")));
        try {
            registry.create(QStringLiteral("Marca"));
            QFAIL("an unregistered class was created");
        } catch (const Error &e) {
            QVERIFY(e.description().contains(QStringLiteral("no está registrada")));
        }
        registry.add(QStringLiteral("Nula"), [] { return nullptr; });
        QVERIFY_THROWS_EXCEPTION(Error, registry.create(QStringLiteral("Nula")));
        registry.clear();
    }

    void registrationFileRoundTrip()
    {
        QTemporaryDir dir;
        const QString file = dir.filePath(QStringLiteral("sub/registro.ini"));
        const QString id = QStringLiteral("{11111111-2222-3333-4444-555555555555}");
        QVERIFY(components::registerClass(QStringLiteral("Lib.Clase"), id,
                                          QStringLiteral("/ruta/lib.so"), file));
        QCOMPARE(components::libraryFor(QStringLiteral("Lib.Clase"), file),
                 QStringLiteral("/ruta/lib.so"));
        // By class id, with or without braces and in any case.
        QCOMPARE(components::libraryFor(id.toLower(), file), QStringLiteral("/ruta/lib.so"));
        QCOMPARE(components::libraryFor(id.mid(1, 36), file), QStringLiteral("/ruta/lib.so"));
        QCOMPARE(components::libraryFor(QStringLiteral("lib.CLASE"), file),
                 QStringLiteral("/ruta/lib.so"));
        QVERIFY(components::libraryFor(QStringLiteral("Otra.Clase"), file).isEmpty());
        // A library that is not there: a clear error, not a crash.
        try {
            delete components::createObject(QStringLiteral("Lib.Clase"), file);
            QFAIL("created an object from a missing library");
        } catch (const Error &e) {
            QVERIFY(e.description().contains(QStringLiteral("/ruta/lib.so")));
        }
        QVERIFY(components::unregisterClass(QStringLiteral("Lib.Clase"), id, file));
        QVERIFY(components::libraryFor(QStringLiteral("Lib.Clase"), file).isEmpty());
        QVERIFY_THROWS_EXCEPTION(Error,
                                 components::createObject(QStringLiteral("Lib.Clase"), file));
    }
};

QTEST_MAIN(TstRuntime)
#include "tst_runtime.moc"
