// The batch operations against the scripted host: the order and arguments of
// every host call, the process gate, and the failure rules.

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
const QString kProdsDes = "SELECT articulo, kit, costo FROM prods WHERE articulo = '";
const QString kGate = "| Ambiente | QString:'' | nada | -1 | 0 | '' | nulo | '' | nada";
const QStringList kPartes{"articulo", "Componente", "Cantidad", "Almacen"};
const QStringList kProd{"articulo", "kit", "costo"};

struct Banco : AnfitrionGuionado
{
    Produccion p;
    Banco() { p.SetAmbiente(ambiente()); }

    // Kit K1: 2 C1 (warehouse 3, cost 10) and 1 C2 (4, cost 5) per batch of `minimo` kits.
    void recetaK1(const QVariant &minimo = 4, bool prodsC2 = true)
    {
        responde(kComppart + "K1'", Recordset(kPartes, {{"K1", "C1", 2, 3}, {"K1", "C2", 1, 4}}));
        responde(kComponen + "K1'", Recordset({"articulo", "Minimo"}, {{"K1", minimo}}));
        for (const QString &prods : {kProdsEns, kProdsDes}) {
            responde(prods + "C1'", Recordset(kProd, {{"C1", 0, 10.0}}));
            responde(prods + "C2'", Recordset(kProd, QList<QVariantList>(prodsC2, {"C2", 0, 5.0})));
        }
    }
};

} // namespace

class TstLoteGuionado : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void llamadasAlAnfitrion_data()
    {
        QTest::addColumn<bool>("des");
        QTest::addColumn<QString>("conceptos");  // components, kit; empty: the gate vetoes
        QTest::addColumn<QString>("cantidades"); // C1, C2, kit, kit's cost
        // Assembly: per batch / batch yield * kits; disassembly: per batch * kits / yield.
        QTest::newRow("ensamble") << false << QString("EN DE") << "3 1.5 6 37.5";
        QTest::newRow("desensamble") << true << QString("DES DEN") << "0.75 0.375 1.5 9.375";
        QTest::newRow("ensamble vetado consulta y no mueve") << false << QString() << "";
        QTest::newRow("desensamble vetado no consulta nada") << true << QString() << "";
    }
    void llamadasAlAnfitrion()
    {
        QFETCH(bool, des);
        QFETCH(QString, conceptos);
        QFETCH(QString, cantidades);
        Banco h;
        h.recetaK1();
        if (conceptos.isEmpty())
            h.veta(des ? "DESEM007" : "OPAUTO002");
        des ? h.p.Desensamble("K1", 1.5, 2, 0) : h.p.Ensamble("K1", 2, 6, 0); // without an order

        const QString comp = "Consulta: " + kComppart + "K1'",
                      rec = "Consulta: " + kComponen + "K1'";
        // Disassembly runs its gate on its own behalf, before reading the recipe.
        QStringList e{des ? "IniciaProceso: DESEM007 | zuvi::Produccion " + kGate
                          : "IniciaProceso: OPAUTO002 | Documento1 " + kGate,
                      "ConsultaProceso: -1"};
        e = des ? e + QStringList{rec, comp} : QStringList{comp, rec} + e;
        if (conceptos.isEmpty()) { // the veto comes before the recipe when taking apart
            QCOMPARE(h.registro(), e.mid(0, des ? 2 : 4) << "CierraProceso: 0");
            return;
        }
        const QStringList k = conceptos.split(' '), c = cantidades.split(' ');
        const QString d = "Documento1: ", prods = "Consulta: " + (des ? kProdsDes : kProdsEns);
        // The number drawn becomes the order, the document number the folio.
        e << d + "Ambiente=Ambiente DatoDocumento=QString:DOC Tipo=" + (des ? "E" : "S")
          << "ComponeFecha: 11 | 22" << d + "Fecha=2024-05-17"
          << QString("SiguienteFolio: %1 | 0 | nada").arg(des ? "DESENSAMB" : "ENSAMBLE")
          << d + "Orden=500 Concepto=" + k[0] + " Usuario=PRUEBA DatoFecha=77 Folio=77";
        e << prods + "C1'" << d + "Almacen=3 Articulo=C1 Cantidad=" + c[0] + " Costo=10 Aplica=0"
          << prods + "C2'" << d + "Almacen=4 Articulo=C2 Cantidad=" + c[1] + " Costo=5 Aplica=0"
          << d + "Concepto=" + k[1] + " Tipo=" + (des ? "S" : "E") +
                 " Almacen=2 Articulo=K1 Cantidad=" + c[2] + " Costo=" + c[3] + " Aplica=0";
        QCOMPARE(h.registro(), e);
    }

    void erroresSeReportanYLoHechoQueda_data()
    {
        QTest::addColumn<bool>("des");
        QTest::addColumn<QVariant>("minimo");
        QTest::addColumn<QString>("descripcion");
        QTest::addColumn<QStringList>("movimientos"); // empty: every prods row is there
        const QString sinFila =
            "No hay registro actual: el conjunto de registros está vacío o ya está al final.";
        QTest::newRow("ensamble sin fila en prods")
            << false << QVariant(4) << sinFila << QStringList{"Documento1 S 500 3 C1 3"};
        QTest::newRow("desensamble sin fila en prods")
            << true << QVariant(4) << sinFila << QStringList{"Documento1 E 500 3 C1 0.75"};
        QTest::newRow("ensamble Minimo 0")
            << false << QVariant(0) << "División por cero." << QStringList{};
        QTest::newRow("desensamble Minimo nulo")
            << true << QVariant() << "Uso no válido de Null." << QStringList{};
    }
    void erroresSeReportanYLoHechoQueda()
    {
        QFETCH(bool, des);
        QFETCH(QVariant, minimo);
        QFETCH(QString, descripcion);
        QFETCH(QStringList, movimientos);
        Banco h;
        h.recetaK1(minimo, movimientos.isEmpty());
        des ? h.p.Desensamble("K1", 1.5, 2, 0) : h.p.Ensamble("K1", 2, 6, 0);
        QCOMPARE(h.reportes(), QStringList{errorReportText(
                                   "Produccion", des ? "Desensamble" : "Ensamble", descripcion)});
        QCOMPARE(h.movimientos(), movimientos);
    }

    void desensambleRepiteElSubkit()
    {
        Banco h;
        // K2 is made of the kit S1, which is made of the plain article P.
        h.responde(kComponen + "K2'", Recordset({"articulo", "Minimo"}, {{"K2", 1}}));
        h.responde(kComppart + "K2'", Recordset(kPartes, {{"K2", "S1", 2, 1}}));
        h.responde(kProdsDes + "S1'", Recordset(kProd, {{"S1", 1, 0.0}}));
        h.responde(kComponen + "S1'", Recordset({"articulo", "Minimo"}, {{"S1", 1}}));
        h.responde(kComppart + "S1'", Recordset(kPartes, {{"S1", "P", 3, 5}}));
        h.responde(kProdsDes + "P'", Recordset(kProd, {{"P", 0, 2.0}}));
        // The sub-kit line never advances: its lookup fails on the fourth round.
        h.fallaConsultaTras(kProdsDes + "S1'", 3, QStringLiteral("Se perdió la conexión"));
        h.p.Desensamble(QStringLiteral("K2"), 1, 9, 0);

        // Each round takes 2 S1 apart into warehouse 9: P in, S1 out; K2 never leaves.
        const QStringList ronda{"Documento1 E 500 5 P 6", "Documento1 S 500 9 S1 2"};
        QCOMPARE(h.movimientos(), ronda + ronda + ronda);
        QCOMPARE(h.reportes(), QStringList{errorReportText("Produccion", "Desensamble",
                                                           "Se perdió la conexión")});
    }

    void entrega_data()
    {
        QTest::addColumn<int>("cuenta");        // what COUNT says
        QTest::addColumn<QVariant>("cantidad"); // of line K1; invalid: the join finds no line
        QTest::addColumn<QString>("kit");       // K1's own movement; empty: none
        QTest::addColumn<QStringList>("ventana");
        const QString inicia =
            "Inicia: int:2 | Entregando producto terminado | /opt/zuvi\\Images\\Gears.Avi";
        const QStringList fin{"EjecutaSQL: UPDATE oppart SET terminado = cantidad WHERE op = 120",
                              "Cierra"};
        const QStringList avanza{inicia, "Avanza: int:1 | Procesando: K1 | ''",
                                 "Avanza: int:2 | Procesando: B | ''"};
        // K1 goes into the order's warehouse; B has no recipe.
        QTest::newRow("2.5 a 2") << 2 << QVariant(2.5) << "120 7 K1 2" << avanza + fin;
        QTest::newRow("3.5 a 4") << 2 << QVariant(3.5) << "120 7 K1 4" << avanza + fin;
        // A line that fails ends the delivery silently: no update, no report.
        QTest::newRow("desborda 32 bits") << 2 << QVariant(3.0e9) << QString() << avanza.mid(0, 2);
        QTest::newRow("sin líneas") << 0 << QVariant() << QString() << fin;
        QTest::newRow("sin cabecera") << 2 << QVariant() << QString() << avanza.mid(0, 1) + fin;
    }
    void entrega()
    {
        QFETCH(int, cuenta);
        QFETCH(QVariant, cantidad);
        QFETCH(QString, kit);
        QFETCH(QStringList, ventana);
        Banco h;
        h.recetaK1();
        h.responde("SELECT COUNT( * ) FROM oppart WHERE op = 120", Recordset({"c"}, {{cuenta}}));
        if (cantidad.isValid())
            h.responde(
                "SELECT oppart.articulo, oppart.cantidad, op.almacen FROM oppart INNER "
                "JOIN op USING(op) WHERE op.op = 120",
                Recordset({"articulo", "cantidad", "almacen"}, {{"K1", cantidad, 7}, {"B", 1, 7}}));
        h.p.EntregaProductoTerminado(120);
        QCOMPARE(h.movimientos().filter(" K1 ").join("").section(' ', 2), kit);
        QCOMPARE(h.registro({"Inicia", "Avanza", "EjecutaSQL", "Cierra", "ReportaError"}), ventana);
        QCOMPARE(h.vivos(QStringLiteral("VentanaProgreso")), 0);
    }

    void cancelaOp_data()
    {
        QTest::addColumn<QList<bool>>("si");
        QTest::addColumn<QString>("estado"); // empty: no such order
        QTest::addColumn<int>("lineas");
        QTest::addColumn<QStringList>("despues"); // after the first question
        const QStringList borra{"EjecutaSQL: DELETE FROM op WHERE op = 31",
                                "EjecutaSQL: DELETE FROM oppart WHERE op = 31"};
        const QString cerrar = "Pregunta: Esta orden de producción ya fue confirmada, Desea "
                               "cerrar esta order de producción | 2";
        QTest::newRow("no en la primera") << QList<bool>{false} << "PE" << 1 << QStringList{};
        QTest::newRow("pendiente") << QList<bool>{true} << "PE" << 2 << borra;
        QTest::newRow("sin líneas") << QList<bool>{true} << "PE" << 0 << borra;
        QTest::newRow("confirmada se cierra, líneas quedan")
            << QList<bool>{true, true} << "CO" << 1
            << QStringList{cerrar, "EjecutaSQL: UPDATE op SET cerrado = 1 WHERE op = 31"};
        QTest::newRow("confirmada, no en la segunda")
            << QList<bool>{true, false} << "CO" << 1 << QStringList{cerrar};
        QTest::newRow("no existe") << QList<bool>{true} << "" << 0 << QStringList{};
    }
    void cancelaOp()
    {
        QFETCH(QList<bool>, si);
        QFETCH(QString, estado);
        QFETCH(int, lineas);
        QFETCH(QStringList, despues);
        Banco h;
        h.respuestas(si);
        if (!estado.isEmpty())
            h.responde("SELECT * FROM op WHERE op = 31", Recordset({"estado"}, {{estado}}));
        h.responde("SELECT * FROM oppart WHERE op = 31",
                   Recordset({"op"}, QList<QVariantList>(lineas, {31})));
        // True exactly when the order was changed; a no to the first question reads nothing.
        QCOMPARE(h.p.CancelaOp(31), toVBool(!despues.filter("EjecutaSQL").isEmpty()));
        QCOMPARE(h.registro({"Pregunta", "EjecutaSQL", "ReportaError"}),
                 QStringList{"Pregunta: Mensaje 757 | 2"} + despues);
        QCOMPARE(h.registro({"Consulta"}).size(), si.first() ? 2 : 0);
    }
};

QTEST_MAIN(TstLoteGuionado)
#include "tst_loteGuionado.moc"
