// What the host lets through to the batch operations, its grouping of repeated error reports and
// the movements it refuses to post.

#include "host/interaccion/Interaccion.h"
#include "host/servicios/Comprobaciones.h"
#include "host/servicios/DocumentoInventarioAnfitrion.h"
#include "tests/support/BaseDePrueba.h"
#include "tests/support/CapturaReportes.h"

#include <QtTest>

#include <cmath>
#include <limits>

using namespace zuvi;

class TstComprobaciones : public QObject
{
    Q_OBJECT

    std::unique_ptr<pruebas::BaseDePrueba> m_base;

private slots:
    void initTestCase()
    {
        pruebas::preparaRegistro();
        m_base = std::make_unique<pruebas::BaseDePrueba>();
        // A kit without a recipe header, and one whose recipe yields nothing.
        for (const char *sql :
             {"INSERT INTO prods (articulo, descrip, kit) VALUES ('SINREC', 'Sin receta', 1)",
              "INSERT INTO prods (articulo, descrip, kit) VALUES ('RINDE0', 'Rinde 0', 1)",
              "INSERT INTO componen (articulo, Minimo) VALUES ('RINDE0', 0)",
              "INSERT INTO comppart (articulo, Componente, Cantidad, Almacen) VALUES "
              "('RINDE0', 'TORN-01', 1, 1)"})
            m_base->ejecuta(sql);
    }
    void cleanupTestCase() { m_base.reset(); }

    void puertas_data()
    {
        QTest::addColumn<QString>("metodo");
        QTest::addColumn<QVariantList>("args");
        QTest::addColumn<QString>("rechazo"); // part of the refusal; empty: let through
        const double inf = std::numeric_limits<double>::infinity();
        auto fila = [](const char *nombre, const char *metodo, const QVariantList &a,
                       const char *rechazo = "") {
            QTest::newRow(nombre) << QString(metodo) << a << QString::fromUtf8(rechazo);
        };
        fila("ensamble", "Ensamble", {"SOPORTE", 3, 1, 0});
        fila("ensamble de un kit con kits", "Ensamble", {"REPISA", 3, 2});
        fila("ensamble tope", "Ensamble", {"SOPORTE", 3, 1000000000, 1});
        fila("desensamble fracción", "Desensamble", {"SOPORTE", 1.5, 3});
        fila("otro miembro", "NuevaOp", {});
        fila("entrega", "EntregaProductoTerminado", {1});
        fila("ensamble 0", "Ensamble", {"SOPORTE", 3, 0, 0}, "mayor que cero");
        fila("ensamble -1", "Ensamble", {"SOPORTE", 3, -1}, "mayor que cero");
        fila("ensamble de más", "Ensamble", {"SOPORTE", 3, 1000000001}, "1,000,000,000");
        for (double q : {0.0, -2.5, 2e307, 1e9 + 0.5, inf, std::nan("")})
            fila(qPrintable(QString("desensamble %1").arg(q)), "Desensamble", {"SOPORTE", q, 3},
                 !std::isfinite(q) ? "finito"
                 : q > 0           ? "1,000,000,000"
                                   : "mayor que cero");
        fila("comilla", "Ensamble", {"X' OR '1'='1", 3, 1}, "comillas");
        fila("barra inversa", "Desensamble", {"SOPORTE\\", 1, 3}, "barras inversas");
        fila("artículo vacío", "Ensamble", {" ", 3, 1}, "Falta el artículo");
        fila("artículo inexistente", "Ensamble", {"NOEXISTE", 3, 1}, "\"NOEXISTE\" no existe");
        fila("no es kit", "Desensamble", {"TORN-01", 1, 3}, "no es un kit");
        fila("sin receta", "Ensamble", {"SINREC", 3, 1}, "no tiene receta");
        fila("receta que rinde 0", "Ensamble", {"RINDE0", 3, 1}, "rinde 0");
        fila("kit dentro de kit", "Desensamble", {"REPISA", 1, 3}, "SOPORTE es a su vez un kit");
        fila("almacén inexistente", "Ensamble", {"SOPORTE", 99, 1}, "almacén 99 no existe");
        fila("almacén de desensamble", "Desensamble", {"SOPORTE", 1, -3}, "almacén -3");
        fila("orden de ensamble", "Ensamble", {"SOPORTE", 3, 1, 999}, "orden de producción 999");
        fila("orden de desensamble", "Desensamble", {"SOPORTE", 1, 3, -1}, "producción -1 no");
        fila("entrega inexistente", "EntregaProductoTerminado", {999}, "999 no existe");
        fila("entrega de la orden 0", "EntregaProductoTerminado", {0}, "0 no existe");
        fila("cancela inexistente", "CancelaOp", {998}, "998 no existe");
    }

    void puertas()
    {
        QFETCH(QString, metodo);
        QFETCH(QVariantList, args);
        QFETCH(QString, rechazo);
        QString visto;
        try {
            anfitrion::compruebaLlamada(m_base->conexion(), metodo, args);
        } catch (const anfitrion::Rechazo &e) {
            visto = e.description();
        }
        QVERIFY2(rechazo.isEmpty() ? visto.isEmpty() : visto.contains(rechazo), qPrintable(visto));
    }

    // Identical reports in a row are counted, not shown; a different one breaks the run. The
    // way out in force before comes back afterwards.
    void repetidosContados()
    {
        pruebas::CapturaReportes capturados;
        {
            anfitrion::LoteDeReportes lote;
            for (const char *d : {"se perdió", "se perdió", "se perdió", "otro", "se perdió"})
                showErrorReport("Produccion", "Ensamble", QString::fromUtf8(d));
            QCOMPARE(lote.mostrados(), 3);
            QCOMPARE(lote.repetidos(), 2);
            QCOMPARE(lote.primero(), QString::fromUtf8("Ensamble: se perdió"));
            QVERIFY(lote.avisoRepetidos().startsWith("2 informes de error iguales"));
        }
        showErrorReport("Produccion", "Ensamble", "otro");
        QStringList vistos;
        for (const QString &t : capturados.textos)
            vistos << t.section("Description: ", 1);
        QCOMPARE(vistos.join('|'), QString::fromUtf8("se perdió|otro|se perdió|otro"));
        anfitrion::LoteDeReportes nuevo;
        QVERIFY(nuevo.avisoRepetidos().isEmpty() && nuevo.primero().isEmpty());
    }

    void movimientoNoFinito_data()
    {
        QTest::addColumn<double>("cantidad");
        QTest::addColumn<double>("costo");
        QTest::addColumn<double>("almacen");
        const double inf = std::numeric_limits<double>::infinity();
        QTest::newRow("finito se registra") << 2.0 << 3.0 << 1.0;
        QTest::newRow("cantidad infinita") << inf << 3.0 << 1.0;
        QTest::newRow("cantidad NaN") << std::nan("") << 3.0 << 1.0;
        QTest::newRow("costo -infinito") << 2.0 << -inf << 1.0;
        QTest::newRow("costo NaN") << 2.0 << std::nan("") << 1.0;
        QTest::newRow("importe desbordado") << 1e200 << 1e200 << 1.0;
        QTest::newRow("almacén NaN") << 2.0 << 3.0 << std::nan("");
    }

    void movimientoNoFinito()
    {
        QFETCH(double, cantidad);
        QFETCH(double, costo);
        QFETCH(double, almacen);
        const QString estado = "SELECT COUNT(*), SUM(cantidad) FROM movimientos UNION ALL "
                               "SELECT COUNT(*), SUM(cantidad) FROM existencias";
        const QStringList antes = m_base->filas(estado);
        anfitrion::DocumentoInventarioAnfitrion doc;
        doc.PonAmbiente(m_base->ambiente());
        doc.PonTipo("E");
        doc.PonArticulo("TORN-01");
        doc.PonAlmacen(almacen);
        doc.PonCantidad(cantidad);
        doc.PonCosto(costo);
        qint32 numero = 0;
        const bool finito = std::isfinite(cantidad * costo * almacen);
        try {
            QCOMPARE(doc.AplicaMovimiento(numero), 6.0);
            QVERIFY(finito && numero > 0);
            QVERIFY(m_base->filas(estado) != antes);
        } catch (const Error &e) {
            QVERIFY2(!finito && e.description().contains("no es un número finito"), e.what());
            QCOMPARE(m_base->filas(estado), antes);
        }
    }
};

QTEST_MAIN(TstComprobaciones)
#include "tst_comprobaciones.moc"
