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

    // What the batch operations may be called with; each refusal says why.
    void puertas()
    {
        const double inf = std::numeric_limits<double>::infinity();
        struct Caso
        {
            const char *metodo;
            QVariantList args;
            const char *rechazo = ""; // part of the refusal; empty: let through
        };
        QList<Caso> casos{
            {"Ensamble", {"SOPORTE", 3, 1, 0}},
            {"Ensamble", {"REPISA", 3, 2}}, // a kit with kits
            {"Ensamble", {"SOPORTE", 3, 1000000000, 1}},
            {"Desensamble", {"SOPORTE", 1.5, 3}},
            {"NuevaOp", {}},
            {"EntregaProductoTerminado", {1}},
            {"Ensamble", {"SOPORTE", 3, 0, 0}, "mayor que cero"},
            {"Ensamble", {"SOPORTE", 3, -1}, "mayor que cero"},
            {"Ensamble", {"SOPORTE", 3, 1000000001}, "1,000,000,000"},
            {"Ensamble", {"X' OR '1'='1", 3, 1}, "comillas"},
            {"Desensamble", {"SOPORTE\\", 1, 3}, "barras inversas"},
            {"Ensamble", {" ", 3, 1}, "Falta el artículo"},
            {"Ensamble", {"NOEXISTE", 3, 1}, "\"NOEXISTE\" no existe"},
            {"Desensamble", {"TORN-01", 1, 3}, "no es un kit"},
            {"Ensamble", {"SINREC", 3, 1}, "no tiene receta"},
            {"Ensamble", {"RINDE0", 3, 1}, "rinde 0"},
            {"Desensamble", {"REPISA", 1, 3}, "SOPORTE es a su vez un kit"},
            {"Ensamble", {"SOPORTE", 99, 1}, "almacén 99 no existe"},
            {"Desensamble", {"SOPORTE", 1, -3}, "almacén -3"},
            {"Ensamble", {"SOPORTE", 3, 1, 999}, "orden de producción 999"},
            {"Desensamble", {"SOPORTE", 1, 3, -1}, "producción -1 no"},
            {"EntregaProductoTerminado", {999}, "999 no existe"},
            {"EntregaProductoTerminado", {0}, "0 no existe"},
            {"CancelaOp", {998}, "998 no existe"},
        };
        for (double q : {0.0, -2.5, 2e307, 1e9 + 0.5, inf, std::nan("")})
            casos.append({"Desensamble",
                          {"SOPORTE", q, 3},
                          !std::isfinite(q) ? "finito"
                          : q > 0           ? "1,000,000,000"
                                            : "mayor que cero"});
        for (const Caso &c : std::as_const(casos)) {
            QString visto;
            try {
                anfitrion::compruebaLlamada(m_base->conexion(), c.metodo, c.args);
            } catch (const anfitrion::Rechazo &e) {
                visto = e.description();
            }
            const QString rechazo = QString::fromUtf8(c.rechazo);
            QVERIFY2(rechazo.isEmpty() ? visto.isEmpty() : visto.contains(rechazo),
                     qPrintable(QString(c.metodo) + ": " + visto));
        }
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

    // A movement whose quantity, cost, amount or warehouse is not a finite number is refused
    // and leaves nothing behind.
    void movimientoNoFinito()
    {
        const double inf = std::numeric_limits<double>::infinity(), nan = std::nan("");
        const struct
        {
            double cantidad, costo, almacen;
        } casos[] = {{2, 3, 1},   {inf, 3, 1},       {nan, 3, 1}, {2, -inf, 1},
                     {2, nan, 1}, {1e200, 1e200, 1}, {2, 3, nan}}; // the first is posted
        const QString estado = "SELECT COUNT(*), SUM(cantidad) FROM movimientos UNION ALL "
                               "SELECT COUNT(*), SUM(cantidad) FROM existencias";
        for (const auto &c : casos) {
            const QStringList antes = m_base->filas(estado);
            anfitrion::DocumentoInventarioAnfitrion doc;
            doc.PonAmbiente(m_base->ambiente());
            doc.PonTipo("E");
            doc.PonArticulo("TORN-01");
            doc.PonAlmacen(c.almacen);
            doc.PonCantidad(c.cantidad);
            doc.PonCosto(c.costo);
            qint32 numero = 0;
            const bool finito = std::isfinite(c.cantidad * c.costo * c.almacen);
            try {
                QCOMPARE(doc.AplicaMovimiento(numero), 6.0);
                QVERIFY(finito && numero > 0);
                QVERIFY(m_base->filas(estado) != antes);
            } catch (const Error &e) {
                QVERIFY2(!finito && e.description().contains("no es un número finito"), e.what());
                QCOMPARE(m_base->filas(estado), antes);
            }
        }
    }
};

QTEST_MAIN(TstComprobaciones)
#include "tst_comprobaciones.moc"
