// The batch operations against the scripted host: the order and arguments of
// every host call, the process gate, and the failure rules.

#include "component/Produccion.h"
#include "runtime/Error.h"
#include "tests/support/AnfitrionGuionado.h"

#include <QTest>

using namespace zuvi;

namespace {

const QString kComppart = QStringLiteral("SELECT * FROM comppart WHERE articulo =  '");
const QString kComponen = QStringLiteral("SELECT * FROM componen WHERE articulo =  '");
const QString kProdsEns = QStringLiteral("SELECT kit, costo FROM prods WHERE articulo = '");
const QString kProdsDes = "SELECT articulo, kit, costo FROM prods WHERE articulo = '";
const QStringList kPartes{"Componente", "Cantidad", "Almacen"};
const QStringList kProd{"articulo", "kit", "costo"};
const QString kGate = "| Ambiente | QString:'' | nada | -1 | 0 | '' | nulo | '' | nada";
const QString kSinFila =
    "No hay registro actual: el conjunto de registros está vacío o ya está al final.";

const auto fila = [](const char *n, const auto &...v) { (QTest::newRow(n) << ... << v); };

struct Banco : pruebas::AnfitrionGuionado
{
    Produccion p;
    Banco() { p.SetAmbiente(ambiente()); }
    void responde(const QString &sql, const Recordset &rs) { respuestas.insert(sql, rs); }

    // Kit K1: 2 C1 (warehouse 3, cost 10) and 1 C2 (4, cost 5) per batch of `minimo` kits.
    void recetaK1(const QVariant &minimo = 4, bool prodsC2 = true)
    {
        responde(kComppart + "K1'", Recordset(kPartes, {{"C1", 2, 3}, {"C2", 1, 4}}));
        responde(kComponen + "K1'", Recordset({"Minimo"}, {{minimo}}));
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
    // Without an order: 6 K1 assembled into warehouse 2, or 1.5 taken apart from there.
    void ensambleYDesensamble_data()
    {
        QTest::addColumn<bool>("des");
        QTest::addColumn<QVariant>("minimo");
        QTest::addColumn<QString>("error");       // the description reported
        QTest::addColumn<QString>("movimientos"); // each "tipo almacen articulo cantidad"
        fila("ensamble", false, QVariant(4), "", "S 3 C1 3,S 4 C2 1.5,E 2 K1 6");
        fila("desensamble", true, QVariant(4), "", "E 3 C1 0.75,E 4 C2 0.375,S 2 K1 1.5");
        fila("ensamble vetado consulta y no mueve", false, QVariant(4), "", "");
        fila("desensamble vetado no consulta nada", true, QVariant(4), "", "");
        fila("ensamble sin fila en prods", false, QVariant(4), kSinFila, "S 3 C1 3");
        fila("desensamble sin fila en prods", true, QVariant(4), kSinFila, "E 3 C1 0.75");
        fila("ensamble Minimo 0", false, QVariant(0), "División por cero.", "");
        fila("desensamble Minimo nulo", true, QVariant(), "Uso no válido de Null.", "");
        // Each round takes 0.75 of the kit C1 apart: 1.5 C2 into warehouse 5, C1 out of 2.
        fila("desensamble repite el subkit hasta que su consulta falla", true, QVariant(4),
             "Se perdió la conexión", QStringList(3, "E 5 C2 1.5,S 2 C1 0.75").join(','));
    }
    void ensambleYDesensamble()
    {
        QFETCH(bool, des);
        QFETCH(QVariant, minimo);
        QFETCH(QString, error);
        QFETCH(QString, movimientos);
        Banco h;
        h.recetaK1(minimo, error != kSinFila);
        if (error.isEmpty() && movimientos.isEmpty()) // neither: the gate vetoes
            h.vetadas = {"DESEM007", "OPAUTO002"};
        if (error == "Se perdió la conexión") { // C1 is a kit of C2; its line never advances
            h.responde(kProdsDes + "C1'", Recordset(kProd, {{"C1", 1, 0.0}}));
            h.responde(kComppart + "C1'", Recordset(kPartes, {{"C2", 2, 5}}));
            h.responde(kComponen + "C1'", Recordset({"Minimo"}, {{1}}));
            h.fallas.insert(kProdsDes + "C1'", {3, error});
        }
        des ? h.p.Desensamble("K1", 1.5, 2, 0) : h.p.Ensamble("K1", 2, 6, 0);
        QCOMPARE(h.movimientos.join(',').remove("Documento1 ").remove("500 "), movimientos);
        const QString donde = des ? "Desensamble" : "Ensamble";
        QCOMPARE(h.reportes(),
                 QStringList(!error.isEmpty(), errorReportText("Produccion", donde, error)));
        if (!error.isEmpty())
            return;

        const QStringList r{"Consulta: " + kComppart + "K1'", "Consulta: " + kComponen + "K1'"};
        const QString gate = des ? "DESEM007 | zuvi::Produccion " : "OPAUTO002 | Documento1 ";
        QStringList e{"IniciaProceso: " + gate + kGate, "ConsultaProceso: -1"};
        e = des ? e + QStringList{r[1], r[0]} : r + e; // taking apart, the gate comes first
        const QStringList k = // concepts; quantities of C1, C2 and K1; K1's cost
            QString(des ? "DES DEN 0.75 0.375 1.5 9.375" : "EN DE 3 1.5 6 37.5").split(' ');
        const QString d = "Documento1: ", prods = "Consulta: " + (des ? kProdsDes : kProdsEns);
        // The number drawn becomes the order, the document number the folio.
        e << d + "Ambiente=Ambiente DatoDocumento=QString:DOC Tipo=" + (des ? "E" : "S")
          << "ComponeFecha: 11 | 22" << d + "Fecha=2024-05-17"
          << QString("SiguienteFolio: %1 | 0 | nada").arg(des ? "DESENSAMB" : "ENSAMBLE")
          << d + "Orden=500 Concepto=" + k[0] + " Usuario=PRUEBA DatoFecha=77 Folio=77";
        e << prods + "C1'" << d + "Almacen=3 Articulo=C1 Cantidad=" + k[2] + " Costo=10 Aplica=0"
          << prods + "C2'" << d + "Almacen=4 Articulo=C2 Cantidad=" + k[3] + " Costo=5 Aplica=0"
          << d + "Concepto=" + k[1] + " Tipo=" + (des ? "S" : "E") +
                 " Almacen=2 Articulo=K1 Cantidad=" + k[4] + " Costo=" + k[5] + " Aplica=0";
        if (!h.vetadas.isEmpty()) // the veto closes the process; taking apart, before any query
            e = e.mid(0, des ? 2 : 4) << "CierraProceso: 0";
        QCOMPARE(h.registro, e);
    }

    void entrega_data()
    {
        QTest::addColumn<int>("cuenta");           // what COUNT says
        QTest::addColumn<QVariant>("cantidad");    // of line K1; invalid: the join finds no line
        QTest::addColumn<QStringList>("registro"); // the window's calls, the end; K1's movement
        const QStringList fin{"EjecutaSQL: UPDATE oppart SET terminado = cantidad WHERE op = 120",
                              "Cierra", "Libera"};
        const QStringList avanza{
            "Inicia: int:2 | Entregando producto terminado | /opt/zuvi\\Images\\Gears.Avi",
            "Avanza: int:1 | Procesando: K1 | ''", "Avanza: int:2 | Procesando: B | ''"};
        // K1 goes into the order's warehouse; B has no recipe.
        fila("2.5 a 2", 2, QVariant(2.5), avanza + fin << "Documento1 E 120 7 K1 2");
        fila("3.5 a 4", 2, QVariant(3.5), avanza + fin << "Documento1 E 120 7 K1 4");
        // A line that fails ends the delivery silently: no update, no report.
        fila("desborda 32 bits", 2, QVariant(3.0e9), avanza.mid(0, 2) << "Libera");
        fila("sin líneas", 0, QVariant(), fin);
        fila("sin cabecera", 2, QVariant(), avanza.mid(0, 1) + fin);
    }
    void entrega()
    {
        QFETCH(int, cuenta);
        QFETCH(QVariant, cantidad);
        QFETCH(QStringList, registro);
        Banco h;
        h.recetaK1();
        h.responde("SELECT COUNT( * ) FROM oppart WHERE op = 120", Recordset({"c"}, {{cuenta}}));
        if (cantidad.isValid())
            h.responde(
                "SELECT oppart.articulo, oppart.cantidad, op.almacen FROM oppart INNER "
                "JOIN op USING(op) WHERE op.op = 120",
                Recordset({"Articulo", "Cantidad", "Almacen"}, {{"K1", cantidad, 7}, {"B", 1, 7}}));
        h.p.EntregaProductoTerminado(120);
        const QStringList ventana =
            h.registroDe({"Inicia", "Avanza", "EjecutaSQL", "Cierra", "Libera", "ReportaError"});
        QCOMPARE(ventana + h.movimientos.filter(" K1 "), registro);
    }

    void cancelaOp_data()
    {
        QTest::addColumn<QString>("si");     // the answers: s yes, n no
        QTest::addColumn<QString>("estado"); // empty: no such order
        QTest::addColumn<int>("lineas");
        QTest::addColumn<QString>("cambio"); // the statements run, before " WHERE op = 31"
        const QString borra = "DELETE FROM op,DELETE FROM oppart";
        fila("no en la primera", "n", "PE", 1, "");
        fila("pendiente", "s", "PE", 2, borra);
        fila("sin líneas", "s", "PE", 0, borra);
        fila("confirmada se cierra, líneas quedan", "ss", "CO", 1, "UPDATE op SET cerrado = 1");
        fila("confirmada, no en la segunda", "sn", "CO", 1, "");
        fila("no existe", "s", "", 0, "");
    }
    void cancelaOp()
    {
        QFETCH(QString, si);
        QFETCH(QString, estado);
        QFETCH(int, lineas);
        QFETCH(QString, cambio);
        Banco h;
        h.si = si;
        if (!estado.isEmpty())
            h.responde("SELECT * FROM op WHERE op = 31", Recordset({"Estado"}, {{estado}}));
        h.responde("SELECT * FROM oppart WHERE op = 31",
                   Recordset({"op"}, QList<QVariantList>(lineas, {31})));
        QCOMPARE(h.p.CancelaOp(31), toVBool(!cambio.isEmpty())); // true when it changed the order
        QStringList e{"Pregunta: Mensaje 757 | 2"};
        if (si.size() > 1) // a confirmed order is only closed on a second yes
            e << "Pregunta: Esta orden de producción ya fue confirmada, Desea cerrar esta order "
                 "de producción | 2";
        for (const QString &sql : cambio.split(',', Qt::SkipEmptyParts))
            e << "EjecutaSQL: " + sql + " WHERE op = 31";
        QCOMPARE(h.registroDe({"Pregunta", "EjecutaSQL", "ReportaError"}), e);
    }
};

QTEST_MAIN(TstLoteGuionado)
#include "tst_loteguionado.moc"
