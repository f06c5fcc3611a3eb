// Runs on SQLite and again on the MariaDB test server: ZUVI_PRUEBA_AMBAS_BASES

#include "host/Esquema.h"
#include "host/Sql.h"
#include "runtime/Error.h"
#include "tests/support/BaseDePrueba.h"

#include <QSqlQuery>
#include <QSqlRecord>
#include <QTest>

using namespace zuvi;
using namespace zuvi::pruebas;

class TstEsquema : public QObject
{
    Q_OBJECT

private:
    // Read-only tests share these two; tests that write make their own.
    std::unique_ptr<BaseDePrueba> m_demo, m_vacia;

    static int cuenta(BaseDePrueba &base, const QString &tabla)
    {
        return base.escalar(QStringLiteral("SELECT COUNT(*) FROM ") + tabla).toInt();
    }

private Q_SLOTS:
    void initTestCase()
    {
        m_demo = std::make_unique<BaseDePrueba>(true);
        m_vacia = std::make_unique<BaseDePrueba>(false);
    }

    void cleanupTestCase()
    {
        m_demo.reset();
        m_vacia.reset();
    }

    // Every column the module's statements and the host's services name.
    void columnas_data()
    {
        QTest::addColumn<QString>("tabla");
        QTest::addColumn<QStringList>("columnas");
        auto fila = [](const char *tabla, const char *columnas) {
            QTest::newRow(tabla) << QString::fromLatin1(tabla)
                                 << QString::fromLatin1(columnas).split(QLatin1Char(' '));
        };
        fila("op",
             "op estado ocupado usuario usufecha usuhora f_emision fechaEntrega importe costo "
             "almacen observ automatico ordencompra cerrado Tipo_doc");
        fila("oppart", "id_entrada op tipo_doc no_referen articulo cantidad precio impuesto observ "
                       "partida terminado usuario usufecha usuhora");
        fila("prods", "articulo descrip unidad costo_u ubicacion kit costo");
        fila("clavesadd", "clave Articulo Dato1 Dato2 unidad");
        fila("monedas", "moneda Tc Base");
        fila("vends", "vend Nombre");
        fila("almacen", "almacen");
        fila("componen", "articulo Minimo");
        fila("comppart", "articulo Componente Cantidad Almacen");
        fila("turnos", "turno entrada comida salida descanso regcomida");
        fila("turnoempleado", "turno empleado");
        fila("horarios", "id turno fecha Empleado HoraEntrada comida HoraSalida");
        fila("empleados", "empleado nombre");
        fila("mensajes", "numero texto");
        fila("folios", "clave ultimo");
        fila("estaciones", "estacion almacen lector");
        fila("movimientos", "id tipo concepto orden folio usuario fecha almacen articulo cantidad "
                            "costo importe");
        fila("existencias", "articulo almacen cantidad");
        fila("fracciones", "id codigo articulo usuario fecha hora estacion");
    }

    void columnas()
    {
        QFETCH(QString, tabla);
        QFETCH(QStringList, columnas);
        QSqlQuery q(m_vacia->conexion());
        QVERIFY2(q.exec(QStringLiteral("SELECT * FROM %1 WHERE 1 = 0").arg(tabla)),
                 qPrintable(tabla));
        const QSqlRecord r = q.record();
        QStringList presentes;
        for (int i = 0; i < r.count(); ++i)
            presentes << r.fieldName(i).toLower();
        for (const QString &c : columnas)
            QVERIFY2(presentes.contains(c.toLower()), qPrintable(tabla + QLatin1Char('.') + c));
    }

    void creacionIdempotente()
    {
        BaseDePrueba base(true);
        const QStringList tablas = anfitrion::tablasEsquema();
        QHash<QString, int> antes;
        for (const QString &t : tablas)
            antes.insert(t, cuenta(base, t));
        QCOMPARE(antes.value(QStringLiteral("mensajes")),
                 int(anfitrion::catalogoMensajes().size()));

        // A message edited by the shop and a demo row changed by hand survive;
        // a deleted base row comes back.
        base.ejecuta(QStringLiteral("UPDATE mensajes SET texto = 'Propio' WHERE numero = 72"));
        base.ejecuta(QStringLiteral("DELETE FROM mensajes WHERE numero = 834"));
        base.ejecuta(QStringLiteral("UPDATE prods SET costo = 99 WHERE articulo = 'TORN-01'"));
        base.sesion().creaBase(true);
        base.sesion().creaBase(false);

        for (const QString &t : tablas)
            QCOMPARE(cuenta(base, t), antes.value(t));
        QCOMPARE(base.escalar(QStringLiteral("SELECT texto FROM mensajes WHERE numero = 72")),
                 QVariant(QStringLiteral("Propio")));
        QVERIFY(!base.escalar(QStringLiteral("SELECT texto FROM mensajes WHERE numero = 834"))
                     .toString()
                     .isEmpty());
        QCOMPARE(base.escalar(QStringLiteral("SELECT costo FROM prods WHERE articulo = 'TORN-01'"))
                     .toDouble(),
                 99.0);
    }

    void catalogoDeMensajes()
    {
        BaseDePrueba &base = *m_vacia;
        const int numeros[] = {1,   72,  74,  75,  76,  224, 234, 235, 236, 240,
                               241, 343, 703, 753, 754, 755, 756, 757, 758, 759,
                               832, 833, 834, 835, 836, 837, 838, 839};
        for (int n : numeros) {
            const QString texto =
                base.escalar(QStringLiteral("SELECT texto FROM mensajes WHERE numero = %1").arg(n))
                    .toString();
            QVERIFY2(!texto.isEmpty(), qPrintable(QString::number(n)));
            // Joined with blanks around the user's name: no blank of their own.
            QCOMPARE(texto.trimmed(), texto);
        }
        // Only the catalogue's own numbers are there.
        QCOMPARE(cuenta(base, QStringLiteral("mensajes")), int(std::size(numeros)));
        QCOMPARE(cuenta(base, QStringLiteral("estaciones")), 1);
        QCOMPARE(cuenta(base, QStringLiteral("prods")), 0);
    }

    // The module's own statement texts, as it sends them, on the demo data.
    void sentenciasDelModulo_data()
    {
        QTest::addColumn<QString>("sql");
        QTest::addColumn<int>("filas");
        auto fila = [](const char *nombre, const char *sql, int filas) {
            QTest::newRow(nombre) << QString::fromUtf8(sql) << filas;
        };
        fila("op vacío", "SELECT * FROM op WHERE op = 0", 0);
        fila("op paréntesis", "SELECT * FROM op WHERE (((op) = 1))", 1);
        fila("partidas Op", "SELECT * FROM oppart WHERE (((Op)=1))", 2);
        fila("partidas Op=()", "SELECT * FROM oppart WHERE Op = (1)", 2);
        fila("entrega",
             "SELECT oppart.articulo, oppart.cantidad, op.almacen FROM oppart INNER "
             "JOIN op USING(op) WHERE op.op = 1",
             2);
        fila("receta dos blancos", "SELECT * FROM comppart WHERE articulo =  'REPISA'", 3);
        fila("encabezado receta", "SELECT * FROM componen WHERE articulo =  'PAQ-TORN'", 1);
        fila("clave sin mayúsculas", "SELECT kit, costo FROM prods WHERE articulo = 'soporte'", 1);
        fila("clave secundaria", "SELECT * FROM clavesadd WHERE clave = '7501000000011'", 1);
        fila("moneda", "SELECT * FROM monedas WHERE moneda = 'USD'", 1);
        fila("vendedor", "SELECT * FROM vends WHERE vend = 'V01'", 1);
        fila("miembros",
             "SELECT turnoempleado.empleado, empleados.nombre FROM turnoempleado "
             "LEFT JOIN empleados USING( empleado ) WHERE turno = 'MATUTINO' ORDER BY "
             "empleado",
             3);
        fila("horario por fecha",
             "SELECT * FROM horarios WHERE fecha = '2024-05-06' AND turno = 'MATUTINO'", 2);
        fila("turno con blanco", "SELECT * FROM turnos WHERE turno = ' MATUTINO'", 0);
    }

    void sentenciasDelModulo()
    {
        QFETCH(QString, sql);
        QFETCH(int, filas);
        BaseDePrueba &base = *m_demo;
        QSqlQuery q = anfitrion::ejecuta(base.conexion(), sql);
        int n = 0;
        while (q.next())
            ++n;
        QCOMPARE(n, filas);
    }

    void accionesDelModulo()
    {
        BaseDePrueba base(true);
        // Table and column written with capitals, as the editor's unload does.
        base.ejecuta(QStringLiteral("UPDATE op SET ocupado = 1 WHERE op = 1"));
        base.ejecuta(QStringLiteral("UPDATE Op SET ocupado = 0 WHERE Op = 1"));
        QCOMPARE(base.escalar(QStringLiteral("SELECT ocupado FROM op WHERE op = 1")).toInt(), 0);
        base.ejecuta(QStringLiteral("UPDATE oppart SET terminado = cantidad WHERE op = 1"));
        QCOMPARE(base.escalar(QStringLiteral("SELECT SUM(terminado) FROM oppart WHERE op = 1"))
                     .toDouble(),
                 12.0);
        QCOMPARE(base.escalar(QStringLiteral("SELECT COUNT( * ) FROM oppart WHERE op = 1")).toInt(),
                 2);
        // A duplicate shift is refused by the key, not stored twice.
        QVERIFY_THROWS_EXCEPTION(
            Error, base.ejecuta(QStringLiteral("INSERT INTO turnos (turno) VALUES ('MATUTINO')")));
        // A new line takes the defaults the editor leaves unset.
        base.ejecuta(QStringLiteral(
            "INSERT INTO oppart (id_entrada, op, articulo, cantidad) VALUES (50, 3, 'TAB-01', 2)"));
        QCOMPARE(base.escalar(QStringLiteral("SELECT impuesto FROM oppart WHERE id_entrada = 50"))
                     .toDouble(),
                 0.0);
        QCOMPARE(base.escalar(QStringLiteral("SELECT terminado FROM oppart WHERE id_entrada = 50"))
                     .toDouble(),
                 0.0);
        // Ids of the host's tables number themselves.
        base.ejecuta(QStringLiteral("INSERT INTO fracciones (codigo) VALUES ('A')"));
        base.ejecuta(QStringLiteral("INSERT INTO fracciones (codigo) VALUES ('B')"));
        QCOMPARE(base.escalar(QStringLiteral("SELECT COUNT(DISTINCT id) FROM fracciones")).toInt(),
                 2);
    }

    void fechasSeLeenComoFecha()
    {
        BaseDePrueba &base = *m_demo;
        QCOMPARE(base.escalar(QStringLiteral("SELECT f_emision FROM op WHERE op = 1")).toDate(),
                 QDate(2024, 5, 2));
        QCOMPARE(base.escalar(QStringLiteral("SELECT COUNT(*) FROM op WHERE fechaEntrega > "
                                             "'2024-05-05'"))
                     .toInt(),
                 2);
    }

    // The demo data holds together: what the windows and batch operations
    // will be shown against.
    void demoCoherente()
    {
        BaseDePrueba &base = *m_demo;
        auto cero = [&](const char *sql) {
            QCOMPARE(base.escalar(QString::fromLatin1(sql)).toInt(), 0);
        };
        cero("SELECT COUNT(*) FROM comppart c LEFT JOIN prods p ON p.articulo = c.Componente "
             "WHERE p.articulo IS NULL");
        cero("SELECT COUNT(*) FROM componen c LEFT JOIN prods p ON p.articulo = c.articulo "
             "WHERE p.articulo IS NULL OR p.kit = 0");
        cero("SELECT COUNT(*) FROM oppart l LEFT JOIN op o ON o.op = l.op WHERE o.op IS NULL");
        cero("SELECT COUNT(*) FROM clavesadd c LEFT JOIN prods p ON p.articulo = c.Articulo "
             "WHERE p.articulo IS NULL");
        cero("SELECT COUNT(*) FROM turnoempleado t LEFT JOIN empleados e USING(empleado) WHERE "
             "e.empleado IS NULL");
        cero("SELECT COUNT(*) FROM comppart c LEFT JOIN almacen a ON a.almacen = c.Almacen WHERE "
             "a.almacen IS NULL");
        QVERIFY(cuenta(base, QStringLiteral("almacen")) >= 3);
        QCOMPARE(
            base.escalar(QStringLiteral("SELECT COUNT(*) FROM monedas WHERE Base <> 0")).toInt(),
            1);
        QVERIFY(base.escalar(QStringLiteral("SELECT COUNT(*) FROM componen")).toInt() >= 3);
        QVERIFY(base.escalar(QStringLiteral("SELECT COUNT(*) FROM componen WHERE Minimo <> 1"))
                    .toInt() >= 1);
        QVERIFY(base.escalar(QStringLiteral("SELECT COUNT(*) FROM comppart c JOIN prods p ON "
                                            "p.articulo = c.Componente WHERE p.kit <> 0"))
                    .toInt() >= 1);
        QVERIFY(
            base.escalar(QStringLiteral("SELECT COUNT(*) FROM op WHERE estado = 'CO'")).toInt() >=
            1);
        QVERIFY(
            base.escalar(QStringLiteral("SELECT COUNT(*) FROM op WHERE estado = 'PE'")).toInt() >=
            1);
        QCOMPARE(
            base.escalar(QStringLiteral("SELECT COUNT(DISTINCT turno) FROM turnoempleado")).toInt(),
            2);

        // Each kit's cost is what its recipe costs per kit.
        QSqlQuery q = anfitrion::ejecuta(
            base.conexion(),
            QStringLiteral("SELECT k.articulo, k.costo, c.Minimo FROM prods k JOIN componen c ON "
                           "c.articulo = k.articulo"));
        int kits = 0;
        while (q.next()) {
            ++kits;
            const QString kit = q.value(0).toString();
            const double receta =
                base.escalar(QStringLiteral("SELECT SUM(c.Cantidad * p.costo) FROM comppart c "
                                            "JOIN prods p ON p.articulo = c.Componente WHERE "
                                            "c.articulo = '%1'")
                                 .arg(kit))
                    .toDouble();
            QVERIFY2(qAbs(receta / q.value(2).toDouble() - q.value(1).toDouble()) < 1e-9,
                     qPrintable(kit));
        }
        QCOMPARE(kits, 3);
    }
};

QTEST_GUILESS_MAIN(TstEsquema)
#include "tst_esquema.moc"
