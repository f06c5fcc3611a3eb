#include "runtime/ClassRegistry.h"
#include "runtime/Error.h"
#include "runtime/Recordset.h"
#include "runtime/Text.h"
#include "runtime/VBool.h"
#include "tests/support/CapturaReportes.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTest>
#include <QTimer>

using namespace zuvi;

class TstRuntime : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void recordsetRecorreFilasYLeeNulosSinFallar()
    {
        Recordset rs({"Op", "Estado", "importe"},
                     {{120, QStringLiteral("PE"), QStringLiteral(" 3.25 ")},
                      {121, QVariant(), QStringLiteral("abc")}});
        QCOMPARE(rs.value("OP").toInt(), 120);
        QCOMPARE(rs.text("estado"), QStringLiteral("PE"));
        QCOMPARE(rs.value(1).toString(), QStringLiteral("PE"));
        QCOMPARE(rs.number("IMPORTE"), 3.25);
        QVERIFY_THROWS_EXCEPTION(Error, rs.value("Minimo"));
        QVERIFY_THROWS_EXCEPTION(Error, rs.value(3));
        rs.moveNext();
        QVERIFY(rs.isNull("Estado"));
        QCOMPARE(rs.text("Estado"), QString());
        QCOMPARE(rs.number(1), 0.0);
        QCOMPARE(rs.number("importe"), 0.0); // unreadable text is 0
        rs.moveNext();
        QVERIFY(rs.atEnd());
        QVERIFY_THROWS_EXCEPTION(Error, rs.value(0));
        QVERIFY_THROWS_EXCEPTION(Error, rs.moveNext());
        rs.moveFirst();
        QCOMPARE(rs.value(0).toInt(), 120);
        QCOMPARE(variantToText(QDate(2026, 3, 4)), QStringLiteral("2026-03-04"));
    }

    // The next statement on the query does not change rows already read; an empty result keeps
    // its columns.
    void recordsetDeConsultaLeeTodasLasFilas()
    {
        QSqlDatabase db = QSqlDatabase::addDatabase("QSQLITE", "rs");
        db.setDatabaseName(":memory:");
        QVERIFY(db.open());
        QSqlQuery q(db);
        QVERIFY(q.exec("SELECT 'A' AS Articulo, 1.5 AS cantidad UNION ALL SELECT 'B', NULL"));
        auto rs = Recordset::fromQuery(q);
        QVERIFY(q.exec("SELECT 'C' AS articulo, 2 AS cantidad WHERE 0"));
        auto vacio = Recordset::fromQuery(q);
        QCOMPARE(rs->text("articulo"), QStringLiteral("A"));
        QCOMPARE(rs->number("Cantidad"), 1.5);
        rs->moveNext();
        QVERIFY(rs->isNull("cantidad") && (rs->moveNext(), rs->atEnd()));
        QVERIFY(vacio->atEnd());
        QCOMPARE(vacio->fieldCount(), 2);
    }

    void reporteDeErrorYTrampas()
    {
        pruebas::CapturaReportes capturados;
        QVERIFY(!reportErrors("Produccion", "Ensamble", [] { throw Error("línea 1\nlínea 2"); }));
        reportErrors("m", "p", [] { throw std::runtime_error("fallo std"); });
        reportErrors("m", "p", [] { throw 5; });
        QVERIFY(reportErrors("m", "p", [] {}));
        QVERIFY(!swallowErrors([] { throw Error("x"); })); // silent
        QVERIFY(swallowErrors([] {}));
        QCOMPARE(capturados.titulos, QStringList(3, "ZuviProduccion"));
        const QStringList informes = capturados.toma();
        QCOMPARE(informes.size(), 3);
        QCOMPARE(informes.at(0),
                 QStringLiteral("Error occured:\r\nModule: Produccion"
                                "\r\nFunction: Ensamble\r\nDescription: línea 1\nlínea 2"));
        QVERIFY(informes.at(1).endsWith(QStringLiteral("Description: fallo std")));
        QVERIFY(informes.at(2).endsWith(QStringLiteral("Description: Error desconocido")));
    }

    // Names in any case; the interface the caller asks for is checked.
    void registroDeClasesCreaPorNombre()
    {
        auto &registry = ClassRegistry::instance();
        registry.add("Marca", [] { return new QTimer; });
        registry.add("Otra", [] { return new QObject; });
        QVERIFY(qobject_cast<QTimer *>(std::unique_ptr<QObject>(registry.create("MARCA")).get()));
        QVERIFY(std::unique_ptr<QTimer>(registry.create<QTimer>("marca")));
        QVERIFY_THROWS_EXCEPTION(Error, registry.create<QTimer>("Otra"));
        registry.remove("Marca");
        QVERIFY_THROWS_EXCEPTION(Error, registry.create("Marca"));
        registry.clear();
    }

    void ecoMuestraControlesYCorta()
    {
        const struct
        {
            QString valor;
            int maximo;
            QString esperado;
        } casos[] = {
            {"Almacén 1", 60, "Almacén 1"},
            {"a\x1b[2Jb\n", 60, "a\\x1b[2Jb\\x0a"},
            {"abcd", 4, "abcd"},
            {"abcde", 4, "abcd…"},
            {QString(QChar(0x9b)), 60, "\\x9b"},
        };
        for (const auto &caso : casos)
            QCOMPARE(eco(caso.valor, caso.maximo), caso.esperado);
    }
};

QTEST_MAIN(TstRuntime)
#include "tst_runtime.moc"
