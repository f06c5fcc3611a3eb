// The batch operations against the scripted host: statement texts, the order
// and arguments of every host call, the process gate, and the failure rules.

#include "component/Produccion.h"
#include "runtime/Error.h"
#include "tests/support/AnfitrionGuionado.h"

#include <QTest>

using namespace zuvi;
using namespace zuvi::pruebas;

namespace {

const QString kComppart = QStringLiteral("SELECT * FROM comppart WHERE articulo =  '");
const QString kComponen = QStringLiteral("SELECT * FROM componen WHERE articulo =  '");
const QString kProdsEns = QStringLiteral("SELECT kit, costo FROM prods WHERE articulo = '");
const QString kProdsDes =
    QStringLiteral("SELECT articulo, kit, costo FROM prods WHERE articulo = '");
const QString kGate =
    QStringLiteral("| Ambiente | QString:'' | nada | -1 | 0 | '' | nulo | '' | nada");

Recordset filas(const QStringList &columnas, const QList<QVariantList> &f)
{
    return Recordset(columnas, f);
}

// Kit K1: two C1 and one C2 per batch of four kits.
void recetaK1(AnfitrionGuionado &h, const QVariant &minimo = 4)
{
    const QStringList cols{"articulo", "Componente", "Cantidad", "Almacen"};
    h.responde(kComppart + "K1'", filas(cols, {{"K1", "C1", 2, 3}, {"K1", "C2", 1, 4}}));
    h.responde(kComponen + "K1'", filas({"articulo", "Minimo"}, {{"K1", minimo}}));
    h.responde(kProdsEns + "C1'", filas({"kit", "costo"}, {{0, 10.0}}));
    h.responde(kProdsEns + "C2'", filas({"kit", "costo"}, {{0, 5.0}}));
    h.responde(kProdsDes + "C1'", filas({"articulo", "kit", "costo"}, {{"C1", 0, 10.0}}));
    h.responde(kProdsDes + "C2'", filas({"articulo", "kit", "costo"}, {{"C2", 0, 5.0}}));
}

QString descripcionSinFila()
{
    try {
        Recordset({QStringLiteral("costo")}, {}).value(QStringLiteral("costo"));
    } catch (const Error &e) {
        return e.description();
    }
    return QString();
}

// Sees the calls that arrive through the published interface.
class ProduccionEspia : public Produccion
{
public:
    QStringList llamadas;
    bool soloRegistra = false;

    void Ensamble(const QString &a, qint32 alm, qint32 cant, qint32 op) override
    {
        llamadas << QStringLiteral("Ensamble %1 %2 %3 %4").arg(a).arg(alm).arg(cant).arg(op);
        if (!soloRegistra)
            Produccion::Ensamble(a, alm, cant, op);
    }
    void Desensamble(const QString &a, double cant, qint32 alm, qint32 op) override
    {
        llamadas << QStringLiteral("Desensamble %1 %2 %3 %4").arg(a).arg(cant).arg(alm).arg(op);
        Produccion::Desensamble(a, cant, alm, op);
    }
};

} // namespace

class TstLoteGuionado : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void ensambleLlamaAlAnfitrionEnOrden_data()
    {
        QTest::addColumn<int>("op");
        QTest::addColumn<QStringList>("cabecera");
        QTest::addColumn<QString>("conceptoComponentes");
        QTest::addColumn<QString>("conceptoKit");

        QTest::newRow("con orden")
            << 120
            << QStringList{"PonOrden: 120", "PonConcepto: OP", "PonUsuario: PRUEBA",
                           "PonDatoFecha: 11", "PonFolio: 11"}
            << "OP"
            << "OP";
        QTest::newRow("sin orden") << 0
                                   << QStringList{"SiguienteFolio: ENSAMBLE | 0 | nada",
                                                  "PonOrden: 500",
                                                  "PonConcepto: EN",
                                                  "PonUsuario: PRUEBA",
                                                  "PonDatoFecha: 77",
                                                  "PonFolio: 77"}
                                   << "EN"
                                   << "DE";
    }
    void ensambleLlamaAlAnfitrionEnOrden()
    {
        QFETCH(int, op);
        QFETCH(QStringList, cabecera);
        QFETCH(QString, conceptoComponentes);
        QFETCH(QString, conceptoKit);
        AnfitrionGuionado h;
        recetaK1(h);
        Produccion p;
        p.SetAmbiente(h.ambiente());

        p.Ensamble(QStringLiteral("K1"), 2, 6, op);

        QStringList esperado{"Consulta: " + kComppart + "K1'",
                             "Consulta: " + kComponen + "K1'",
                             "IniciaProceso: OPAUTO002 | Documento1 " + kGate,
                             "ConsultaProceso: -1",
                             "PonAmbiente: Ambiente",
                             "PonDatoDocumento: QString:DOC",
                             "PonTipo: S",
                             "ComponeFecha: 11 | 22",
                             "PonFecha: 2024-05-17"};
        esperado << cabecera;
        // Quantity per batch / batch yield * kits: 2/4*6 and 1/4*6.
        esperado << "Consulta: " + kProdsEns + "C1'"
                 << "PonAlmacen: 3"
                 << "PonArticulo: C1"
                 << "PonCantidad: 3"
                 << "PonCosto: 10"
                 << "AplicaMovimiento: 0";
        esperado << "Consulta: " + kProdsEns + "C2'"
                 << "PonAlmacen: 4"
                 << "PonArticulo: C2"
                 << "PonCantidad: 1.5"
                 << "PonCosto: 5"
                 << "AplicaMovimiento: 0";
        esperado << "PonConcepto: " + conceptoKit << "PonTipo: E"
                 << "PonAlmacen: 2"
                 << "PonArticulo: K1"
                 << "PonCantidad: 6"
                 << "PonCosto: 37.5"
                 << "AplicaMovimiento: 0";
        QCOMPARE(h.registro(), esperado);
        QCOMPARE(h.movimientos().size(), 3);
        QCOMPARE(h.movimientos().at(0).concepto, conceptoComponentes);
        QCOMPARE(h.movimientos().at(1).tipo, QStringLiteral("S"));
        QCOMPARE(h.movimientos().at(2).concepto, conceptoKit);
        QVERIFY(h.reportes().isEmpty());
    }

    void desensambleLlamaAlAnfitrionEnOrden_data()
    {
        QTest::addColumn<int>("op");
        QTest::addColumn<QStringList>("cabecera");
        QTest::addColumn<QString>("conceptoComponentes");
        QTest::addColumn<QString>("conceptoKit");

        QTest::newRow("con orden")
            << 120
            << QStringList{"PonOrden: 120", "PonConcepto: COP", "PonUsuario: PRUEBA",
                           "PonDatoFecha: 11", "PonFolio: 11"}
            << "COP"
            << "COP";
        QTest::newRow("sin orden") << 0
                                   << QStringList{"SiguienteFolio: DESENSAMB | 0 | nada",
                                                  "PonOrden: 500",
                                                  "PonConcepto: DES",
                                                  "PonUsuario: PRUEBA",
                                                  "PonDatoFecha: 77",
                                                  "PonFolio: 77"}
                                   << "DES"
                                   << "DEN";
    }
    void desensambleLlamaAlAnfitrionEnOrden()
    {
        QFETCH(int, op);
        QFETCH(QStringList, cabecera);
        QFETCH(QString, conceptoComponentes);
        QFETCH(QString, conceptoKit);
        AnfitrionGuionado h;
        recetaK1(h);
        Produccion p;
        p.SetAmbiente(h.ambiente());

        p.Desensamble(QStringLiteral("K1"), 1.5, 2, op);

        QStringList esperado{"IniciaProceso: DESEM007 | zuvi::Produccion " + kGate,
                             "ConsultaProceso: -1",
                             "Consulta: " + kComponen + "K1'",
                             "Consulta: " + kComppart + "K1'",
                             "PonAmbiente: Ambiente",
                             "PonDatoDocumento: QString:DOC",
                             "PonTipo: E",
                             "ComponeFecha: 11 | 22",
                             "PonFecha: 2024-05-17"};
        esperado << cabecera;
        // Quantity per batch * kits / batch yield: 2*1.5/4 and 1*1.5/4.
        esperado << "Consulta: " + kProdsDes + "C1'"
                 << "PonAlmacen: 3"
                 << "PonArticulo: C1"
                 << "PonCantidad: 0.75"
                 << "PonCosto: 10"
                 << "AplicaMovimiento: 0";
        esperado << "Consulta: " + kProdsDes + "C2'"
                 << "PonAlmacen: 4"
                 << "PonArticulo: C2"
                 << "PonCantidad: 0.375"
                 << "PonCosto: 5"
                 << "AplicaMovimiento: 0";
        esperado << "PonConcepto: " + conceptoKit << "PonTipo: S"
                 << "PonAlmacen: 2"
                 << "PonArticulo: K1"
                 << "PonCantidad: 1.5"
                 << "PonCosto: 9.375"
                 << "AplicaMovimiento: 0";
        QCOMPARE(h.registro(), esperado);
        QCOMPARE(h.movimientos().at(0).concepto, conceptoComponentes);
        QCOMPARE(h.movimientos().at(0).tipo, QStringLiteral("E"));
        QVERIFY(h.reportes().isEmpty());
    }

    void compuertaVetada_data()
    {
        QTest::addColumn<bool>("desensamble");
        QTest::addColumn<QStringList>("esperado");
        QTest::newRow("ensamble consulta y no mueve")
            << false
            << QStringList{"Consulta: " + kComppart + "K1'", "Consulta: " + kComponen + "K1'",
                           "IniciaProceso: OPAUTO002 | Documento1 " + kGate, "ConsultaProceso: -1",
                           "CierraProceso: 0"};
        QTest::newRow("desensamble no consulta nada")
            << true
            << QStringList{"IniciaProceso: DESEM007 | zuvi::Produccion " + kGate,
                           "ConsultaProceso: -1", "CierraProceso: 0"};
    }
    void compuertaVetada()
    {
        QFETCH(bool, desensamble);
        QFETCH(QStringList, esperado);
        AnfitrionGuionado h;
        recetaK1(h);
        h.veta(QStringLiteral("OPAUTO002"));
        h.veta(QStringLiteral("DESEM007"));
        Produccion p;
        p.SetAmbiente(h.ambiente());
        if (desensamble)
            p.Desensamble(QStringLiteral("K1"), 1, 2, 0);
        else
            p.Ensamble(QStringLiteral("K1"), 2, 6, 0);
        QCOMPARE(h.registro(), esperado);
        QVERIFY(h.movimientos().isEmpty());
        QVERIFY(h.reportes().isEmpty());
    }

    void kitSinComponentesNoMueveNada()
    {
        AnfitrionGuionado h;
        Produccion p;
        p.SetAmbiente(h.ambiente());
        p.Ensamble(QStringLiteral("X"), 1, 1, 0);
        // Assembly stops before the gate; disassembly has passed it already.
        QCOMPARE(h.registro(),
                 (QStringList{"Consulta: " + kComppart + "X'", "Consulta: " + kComponen + "X'"}));
        h.olvida();
        p.Desensamble(QStringLiteral("X"), 1, 1, 0);
        QCOMPARE(h.registro({"IniciaProceso", "Consulta", "PonTipo"}).size(), 3);
        QVERIFY(h.movimientos().isEmpty());
        QVERIFY(h.reportes().isEmpty());
        QCOMPARE(h.creados(QStringLiteral("DocumentoInventario")), 0);
    }

    void erroresSeReportanYLoHechoQueda_data()
    {
        QTest::addColumn<bool>("desensamble");
        QTest::addColumn<QString>("caso");
        QTest::addColumn<QString>("descripcion");
        QTest::addColumn<int>("movimientos");
        for (bool des : {false, true}) {
            const char *m = des ? "desensamble" : "ensamble";
            QTest::addRow("%s sin fila en prods", m)
                << des << "sinProds" << descripcionSinFila() << 1;
            QTest::addRow("%s Minimo 0", m) << des << "minimo0"
                                            << "División por cero." << 0;
            QTest::addRow("%s Minimo nulo", m) << des << "minimoNulo"
                                               << "Uso no válido de Null." << 0;
            QTest::addRow("%s sin Ambiente", m) << des << "sinAmbiente"
                                                << "No se ha establecido el objeto Ambiente." << 0;
        }
    }
    void erroresSeReportanYLoHechoQueda()
    {
        QFETCH(bool, desensamble);
        QFETCH(QString, caso);
        QFETCH(QString, descripcion);
        QFETCH(int, movimientos);
        AnfitrionGuionado h;
        if (caso == "minimo0")
            recetaK1(h, 0);
        else if (caso == "minimoNulo")
            recetaK1(h, QVariant());
        else
            recetaK1(h);
        if (caso == "sinProds") {
            h.responde(kProdsEns + "C2'", Recordset({"kit", "costo"}, {}));
            h.responde(kProdsDes + "C2'", Recordset({"articulo", "kit", "costo"}, {}));
        }
        Produccion p;
        if (caso != "sinAmbiente")
            p.SetAmbiente(h.ambiente());

        if (desensamble)
            p.Desensamble(QStringLiteral("K1"), 1.5, 2, 0);
        else
            p.Ensamble(QStringLiteral("K1"), 2, 6, 0);

        const QString procedimiento = desensamble ? "Desensamble" : "Ensamble";
        QCOMPARE(h.reportes(),
                 QStringList{errorReportText("Produccion", procedimiento, descripcion)});
        QVERIFY(h.reportes().first().startsWith("Error occured:\r\nModule: Produccion\r\n"));
        QCOMPARE(h.movimientos().size(), movimientos);
        if (caso == "sinProds")
            QCOMPARE(h.movimientos().first().articulo, QStringLiteral("C1"));
    }

    void desensambleRepiteElSubkit()
    {
        AnfitrionGuionado h;
        // K2 is made of the kit S1, which is made of the plain article P.
        h.responde(kComponen + "K2'", filas({"articulo", "Minimo"}, {{"K2", 1}}));
        h.responde(kComppart + "K2'",
                   filas({"articulo", "Componente", "Cantidad", "Almacen"}, {{"K2", "S1", 2, 1}}));
        h.responde(kProdsDes + "S1'", filas({"articulo", "kit", "costo"}, {{"S1", 1, 0.0}}));
        h.responde(kComponen + "S1'", filas({"articulo", "Minimo"}, {{"S1", 1}}));
        h.responde(kComppart + "S1'",
                   filas({"articulo", "Componente", "Cantidad", "Almacen"}, {{"S1", "P", 3, 5}}));
        h.responde(kProdsDes + "P'", filas({"articulo", "kit", "costo"}, {{"P", 0, 2.0}}));
        // The repeated lookup of the sub-kit line fails on its fourth round.
        h.fallaConsultaTras(kProdsDes + "S1'", 3, QStringLiteral("Se perdió la conexión"));
        ProduccionEspia p;
        p.SetAmbiente(h.ambiente());

        p.Desensamble(QStringLiteral("K2"), 1, 9, 0);

        const QString sub = QStringLiteral("Desensamble S1 2 9 0");
        QCOMPARE(p.llamadas, (QStringList{"Desensamble K2 1 9 0", sub, sub, sub}));
        QCOMPARE(h.registro({"IniciaProceso"}).size(), 4);
        // Each round posts P in and S1 out; K2 itself never leaves.
        QCOMPARE(h.movimientos().size(), 6);
        for (int i = 0; i < 6; i += 2) {
            QCOMPARE(h.movimientos().at(i).articulo, QStringLiteral("P"));
            QCOMPARE(h.movimientos().at(i).cantidad, 6.0);
            QCOMPARE(h.movimientos().at(i + 1).articulo, QStringLiteral("S1"));
            QCOMPARE(h.movimientos().at(i + 1).tipo, QStringLiteral("S"));
        }
        QCOMPARE(h.reportes(), QStringList{errorReportText("Produccion", "Desensamble",
                                                           "Se perdió la conexión")});
    }

    void documentoPorObjetoYReemplazable()
    {
        AnfitrionGuionado h;
        recetaK1(h);
        std::unique_ptr<DocumentoInventario> otro;
        {
            Produccion p;
            p.SetAmbiente(h.ambiente());
            p.Ensamble(QStringLiteral("K1"), 2, 4, 0);
            p.Desensamble(QStringLiteral("K1"), 1, 2, 0);
            QCOMPARE(h.creados(QStringLiteral("DocumentoInventario")), 1);

            // A host that hands back another document: the rest goes to it.
            otro.reset(h.nuevoDocumento());
            h.alIniciarProceso([&](ArgumentosProceso &a) { a.objeto = otro.get(); });
            h.olvida();
            p.Ensamble(QStringLiteral("K1"), 2, 4, 0);
            QCOMPARE(h.movimientos().size(), 3);
            for (const MovimientoGuionado &m : h.movimientos())
                QCOMPARE(m.documento, QStringLiteral("Documento2"));

            // One that hands back something else is an error, reported.
            QObject ajeno;
            h.alIniciarProceso([&](ArgumentosProceso &a) { a.objeto = &ajeno; });
            h.olvida();
            p.Ensamble(QStringLiteral("K1"), 2, 4, 0);
            QVERIFY(h.movimientos().isEmpty());
            QCOMPARE(h.reportes().size(), 1);
            QVERIFY(h.reportes().first().contains("Function: Ensamble"));
            h.alIniciarProceso(nullptr);
        }
        // The document the component created went with it; the host's stays.
        QCOMPARE(h.vivos(QStringLiteral("DocumentoInventario")), 1);
    }

    void entregaConvierteYRedondea_data()
    {
        QTest::addColumn<QVariant>("cantidad");
        QTest::addColumn<QString>("llamada");
        QTest::newRow("2.5 a 2") << QVariant(2.5) << "Ensamble A 7 2 120";
        QTest::newRow("3.5 a 4") << QVariant(3.5) << "Ensamble A 7 4 120";
        QTest::newRow("-2.5 a -2") << QVariant(-2.5) << "Ensamble A 7 -2 120";
        QTest::newRow("1.4999") << QVariant(1.4999) << "Ensamble A 7 1 120";
        QTest::newRow("texto 6") << QVariant("6") << "Ensamble A 7 6 120";
        QTest::newRow("desborda") << QVariant(3.0e9) << "";
        QTest::newRow("nulo") << QVariant() << "";
    }
    void entregaConvierteYRedondea()
    {
        QFETCH(QVariant, cantidad);
        QFETCH(QString, llamada);
        AnfitrionGuionado h;
        h.responde("SELECT COUNT( * ) FROM oppart WHERE op = 120", filas({"c"}, {{2}}));
        h.responde("SELECT oppart.articulo, oppart.cantidad, op.almacen FROM oppart INNER JOIN "
                   "op USING(op) WHERE op.op = 120",
                   filas({"articulo", "cantidad", "almacen"}, {{"A", cantidad, 7}, {"B", 1, 7}}));
        ProduccionEspia p;
        p.soloRegistra = true;
        p.SetAmbiente(h.ambiente());

        p.EntregaProductoTerminado(120);

        const bool bien = !llamada.isEmpty();
        const QStringList esperado =
            bien ? QStringList{llamada, "Ensamble B 7 1 120"} : QStringList{};
        QCOMPARE(p.llamadas, esperado);
        // A failed line ends the delivery silently: no update, no report.
        QCOMPARE(h.registro({"EjecutaSQL"}).size(), bien ? 1 : 0);
        QVERIFY(h.reportes().isEmpty());
        QCOMPARE(h.vivos(QStringLiteral("VentanaProgreso")), 0);
    }

    void entregaRecorreLasLineas()
    {
        AnfitrionGuionado h;
        recetaK1(h, 0); // every line's assembly fails and is reported
        h.responde("SELECT COUNT( * ) FROM oppart WHERE op = 9", filas({"c"}, {{3}}));
        h.responde("SELECT oppart.articulo, oppart.cantidad, op.almacen FROM oppart INNER JOIN "
                   "op USING(op) WHERE op.op = 9",
                   filas({"articulo", "cantidad", "almacen"}, {{"K1", 1, 7}, {"K1", 2, 7}}));
        ProduccionEspia p;
        p.SetAmbiente(h.ambiente());

        p.EntregaProductoTerminado(9);

        QCOMPARE(h.registro({"Inicia", "Avanza", "EjecutaSQL", "Cierra"}),
                 (QStringList{
                     "Inicia: int:3 | Entregando producto terminado | "
                     "/opt/zuvi\\Images\\Gears.Avi",
                     "Avanza: int:1 | Procesando: K1 | ''", "Avanza: int:2 | Procesando: K1 | ''",
                     "EjecutaSQL: UPDATE oppart SET terminado = cantidad WHERE op = 9", "Cierra"}));
        QCOMPARE(p.llamadas, (QStringList{"Ensamble K1 7 1 9", "Ensamble K1 7 2 9"}));
        QCOMPARE(h.reportes().size(), 2);
        QCOMPARE(h.creados(QStringLiteral("VentanaProgreso")), 1);
        QCOMPARE(h.vivos(QStringLiteral("VentanaProgreso")), 0);
    }

    void entregaSinLineasOSinCabecera_data()
    {
        QTest::addColumn<int>("cuenta");
        QTest::addColumn<QStringList>("esperado");
        const QString update = "EjecutaSQL: UPDATE oppart SET terminado = cantidad WHERE op = 5";
        QTest::newRow("sin líneas") << 0 << QStringList{update, "Cierra"};
        QTest::newRow("sin cabecera")
            << 2
            << QStringList{"Inicia: int:2 | Entregando producto terminado | "
                           "/opt/zuvi\\Images\\Gears.Avi",
                           update, "Cierra"};
    }
    void entregaSinLineasOSinCabecera()
    {
        QFETCH(int, cuenta);
        QFETCH(QStringList, esperado);
        AnfitrionGuionado h;
        h.responde("SELECT COUNT( * ) FROM oppart WHERE op = 5", filas({"c"}, {{cuenta}}));
        ProduccionEspia p;
        p.SetAmbiente(h.ambiente());
        p.EntregaProductoTerminado(5);
        QCOMPARE(h.registro({"Inicia", "Avanza", "EjecutaSQL", "Cierra"}), esperado);
        QVERIFY(p.llamadas.isEmpty());
        QCOMPARE(h.vivos(QStringLiteral("VentanaProgreso")), 0);
    }

    void cancelaOp_data()
    {
        QTest::addColumn<QList<bool>>("si");
        QTest::addColumn<QString>("estado"); // empty: no such order
        QTest::addColumn<bool>("fallaSegundoDelete");
        QTest::addColumn<int>("resultado");
        QTest::addColumn<QStringList>("despues"); // after the two queries

        const QString cerrar = "Pregunta: Esta orden de producción ya fue confirmada, Desea "
                               "cerrar esta order de producción | 2";
        const QStringList borra{"EjecutaSQL: DELETE FROM op WHERE op = 31",
                                "EjecutaSQL: DELETE FROM oppart WHERE op = 31"};
        QTest::newRow("pendiente") << QList<bool>{true} << "PE" << false << -1 << borra;
        QTest::newRow("estado en minúsculas se borra")
            << QList<bool>{true} << "co" << false << -1 << borra;
        QTest::newRow("confirmada y se cierra")
            << QList<bool>{true, true} << "CO" << false << -1
            << QStringList{cerrar, "EjecutaSQL: UPDATE op SET cerrado = 1 WHERE op = 31"};
        QTest::newRow("confirmada, no en la segunda")
            << QList<bool>{true, false} << "CO" << false << 0 << QStringList{cerrar};
        QTest::newRow("no existe") << QList<bool>{true} << "" << false << 0 << QStringList{};
        QTest::newRow("falla el segundo DELETE") << QList<bool>{true} << "PE" << true << 0 << borra;
    }
    void cancelaOp()
    {
        QFETCH(QList<bool>, si);
        QFETCH(QString, estado);
        QFETCH(bool, fallaSegundoDelete);
        QFETCH(int, resultado);
        QFETCH(QStringList, despues);
        AnfitrionGuionado h;
        for (bool b : si)
            h.respuestas({b});
        if (!estado.isEmpty())
            h.responde("SELECT * FROM op WHERE op = 31", filas({"op", "estado"}, {{31, estado}}));
        if (fallaSegundoDelete)
            h.fallaEjecutaSQL("DELETE FROM oppart", "Tabla bloqueada");
        Produccion p;
        p.SetAmbiente(h.ambiente());

        QCOMPARE(int(p.CancelaOp(31)), resultado);

        QStringList esperado{"TraeMensaje: 757", "Pregunta: Mensaje 757 | 2",
                             "Consulta: SELECT * FROM op WHERE op = 31",
                             "Consulta: SELECT * FROM oppart WHERE op = 31"};
        QCOMPARE(h.registro(), esperado + despues);
        QVERIFY(h.reportes().isEmpty());
    }

    void cancelaOpDeclinadaNoLeeNada()
    {
        AnfitrionGuionado h;
        h.respuestas({false});
        Produccion p;
        p.SetAmbiente(h.ambiente());
        QCOMPARE(p.CancelaOp(31), VFalse);
        QCOMPARE(h.registro(), (QStringList{"TraeMensaje: 757", "Pregunta: Mensaje 757 | 2"}));
    }
};

QTEST_MAIN(TstLoteGuionado)
#include "tst_loteGuionado.moc"
