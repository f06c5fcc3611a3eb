// The batch operations against the scripted host: what they move, the process
// gate, and the failure rules; and as a host that
// wraps the component sees them: every method takes the environment through
// the class's own Ambiente property, and an assembly that the host vetoes
// while leaving argument (2) empty stops silently after closing the process.

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
const QString kSinFila =
    "No hay registro actual: el conjunto de registros está vacío o ya está al final.";

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

// A host's wrapper: the environment comes only from its own Ambiente.
struct Envoltura : Produccion
{
    zuvi::Ambiente *propio = nullptr;
    zuvi::Ambiente *Ambiente() const override { return propio; }
};

} // namespace

class TstLoteGuionado : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Without an order: 6 K1 assembled into warehouse 2, or 1.5 taken apart from there.
    void ensambleYDesensamble()
    {
        const struct
        {
            bool des;
            QVariant minimo;
            QString error;       // the description reported
            QString movimientos; // each "tipo almacen articulo cantidad"
        } casos[] = {
            {false, QVariant(4), "", "S 3 C1 3,S 4 C2 1.5,E 2 K1 6"},
            {true, QVariant(4), "", "E 3 C1 0.75,E 4 C2 0.375,S 2 K1 1.5"},
            {false, QVariant(4), "", ""}, // vetoed: moves nothing
            {true, QVariant(4), "", ""},
            {false, QVariant(4), kSinFila, "S 3 C1 3"},   // no prods row
            {true, QVariant(4), kSinFila, "E 3 C1 0.75"}, // no prods row
            {false, QVariant(0), "División por cero.", ""},
            {true, QVariant(), "Uso no válido de Null.", ""},
            // Each round takes 0.75 of the kit C1 apart: 1.5 C2 into warehouse 5, C1 out of 2;
            // the subkit is taken apart again until its query fails.
            {true, QVariant(4), "Se perdió la conexión",
             QStringList(3, "E 5 C2 1.5,S 2 C1 0.75").join(',')},
        };
        for (const auto &c : casos) {
            Banco h;
            h.recetaK1(c.minimo, c.error != kSinFila);
            if (c.error.isEmpty() && c.movimientos.isEmpty()) // neither: the gate vetoes
                h.vetadas = {"DESEM007", "OPAUTO002"};
            if (c.error == "Se perdió la conexión") { // C1 is a kit of C2; its line never advances
                h.responde(kProdsDes + "C1'", Recordset(kProd, {{"C1", 1, 0.0}}));
                h.responde(kComppart + "C1'", Recordset(kPartes, {{"C2", 2, 5}}));
                h.responde(kComponen + "C1'", Recordset({"Minimo"}, {{1}}));
                h.fallas.insert(kProdsDes + "C1'", {3, c.error});
            }
            c.des ? h.p.Desensamble("K1", 1.5, 2, 0) : h.p.Ensamble("K1", 2, 6, 0);
            QCOMPARE(h.movimientos.join(',').remove("Documento1 ").remove("500 "), c.movimientos);
            const QString donde = c.des ? "Desensamble" : "Ensamble";
            QCOMPARE(h.reportes(), QStringList(!c.error.isEmpty(),
                                               errorReportText("Produccion", donde, c.error)));
            if (!c.error.isEmpty())
                continue;
            // Each operation draws from its own folio series; the veto closes the process instead.
            const QString serie = c.des ? "DESENSAMB" : "ENSAMBLE";
            QCOMPARE(h.registroDe({"SiguienteFolio", "CierraProceso"}),
                     QStringList(h.vetadas.isEmpty() ? "SiguienteFolio: " + serie + " | 0 | nada"
                                                     : "CierraProceso: 0"));
        }
    }

    void entrega()
    {
        const QStringList fin{"EjecutaSQL: UPDATE oppart SET terminado = cantidad WHERE op = 120",
                              "Cierra", "Libera"};
        const QStringList avanza{
            "Inicia: int:2 | Entregando producto terminado | /opt/zuvi\\Images\\Gears.Avi",
            "Avanza: int:1 | Procesando: K1 | ''", "Avanza: int:2 | Procesando: B | ''"};
        const struct
        {
            int cuenta;           // what COUNT says
            QVariant cantidad;    // of line K1; invalid: the join finds no line
            QStringList registro; // the window's calls, the end; K1's movement
        } casos[] = {
            // K1 goes into the order's warehouse; B has no recipe.
            {2, 2.5, avanza + fin << "Documento1 E 120 7 K1 2"},
            {2, 3.5, avanza + fin << "Documento1 E 120 7 K1 4"},
            // A line that fails ends the delivery silently: no update, no report.
            {2, 3.0e9, avanza.mid(0, 2) << "Libera"}, // overflows 32 bits
            {0, {}, fin},                             // no lines
            {2, {}, avanza.mid(0, 1) + fin},          // no header
        };
        for (const auto &c : casos) {
            Banco h;
            h.recetaK1();
            h.responde("SELECT COUNT( * ) FROM oppart WHERE op = 120",
                       Recordset({"c"}, {{c.cuenta}}));
            if (c.cantidad.isValid())
                h.responde("SELECT oppart.articulo, oppart.cantidad, op.almacen FROM oppart INNER "
                           "JOIN op USING(op) WHERE op.op = 120",
                           Recordset({"Articulo", "Cantidad", "Almacen"},
                                     {{"K1", c.cantidad, 7}, {"B", 1, 7}}));
            h.p.EntregaProductoTerminado(120);
            const QStringList ventana = h.registroDe(
                {"Inicia", "Avanza", "EjecutaSQL", "Cierra", "Libera", "ReportaError"});
            QCOMPARE(ventana + h.movimientos.filter(" K1 "), c.registro);
        }
    }

    void cancelaOp()
    {
        const QString borra = "DELETE FROM op,DELETE FROM oppart";
        const struct
        {
            QString si;     // the answers: s yes, n no
            QString estado; // empty: no such order
            int lineas;
            QString cambio; // the statements run, before " WHERE op = 31"
        } casos[] = {
            {"n", "PE", 1, ""},
            {"s", "PE", 2, borra},
            {"s", "PE", 0, borra},
            {"ss", "CO", 1, "UPDATE op SET cerrado = 1"}, // confirmed: closed, lines stay
            {"sn", "CO", 1, ""},
            {"s", "", 0, ""},
        };
        for (const auto &c : casos) {
            Banco h;
            h.si = c.si;
            if (!c.estado.isEmpty())
                h.responde("SELECT * FROM op WHERE op = 31", Recordset({"Estado"}, {{c.estado}}));
            h.responde("SELECT * FROM oppart WHERE op = 31",
                       Recordset({"op"}, QList<QVariantList>(c.lineas, {31})));
            QCOMPARE(h.p.CancelaOp(31),
                     toVBool(!c.cambio.isEmpty())); // true when it changed the order
            QStringList e{"Pregunta: Mensaje 757 | 2"};
            if (c.si.size() > 1) // a confirmed order is only closed on a second yes
                e << "Pregunta: Esta orden de producción ya fue confirmada, Desea cerrar esta "
                     "order "
                     "de producción | 2";
            for (const QString &sql : c.cambio.split(',', Qt::SkipEmptyParts))
                e << "EjecutaSQL: " + sql + " WHERE op = 31";
            QCOMPARE(h.registroDe({"Pregunta", "EjecutaSQL", "ReportaError"}), e);
        }
    }

    void ambienteDeLaPropiedad()
    {
        const std::pair<const char *, QString> casos[] = {
            // the first host call each one makes
            {"Ensamble", "Consulta: " + kComppart + "K1'"},
            {"Desensamble", "IniciaProceso: DESEM007 | "},
            {"EntregaProductoTerminado", "Consulta: SELECT COUNT( * ) FROM oppart WHERE op = 9"},
            {"CancelaOp", "Pregunta: Mensaje 757 | 2"}};
        for (const auto &[metodo, primera] : casos) {
            pruebas::AnfitrionGuionado h;
            Envoltura p; // the stored member stays empty
            p.propio = h.ambiente();
            InterfazProduccion &i = p;
            const QLatin1String m(metodo);
            if (m == "Ensamble")
                i.Ensamble("K1", 2, 6, 0);
            else if (m == "Desensamble")
                i.Desensamble("K1", 1.5, 2, 0);
            else if (m == "EntregaProductoTerminado")
                i.EntregaProductoTerminado(9);
            else
                i.CancelaOp(9);
            QVERIFY2(!h.registro.isEmpty(), metodo); // ended before asking the host anything
            QVERIFY2(h.registro.first().startsWith(primera), qPrintable(h.registro.first()));
            QVERIFY2(!h.reportes().join('\n').contains("Ambiente"),
                     qPrintable(h.reportes().join('\n')));
        }
    }

    // Argument (2) left empty: no error while the host vetoes; an error at the document's
    // first use when it lets the assembly go ahead.
    void ensambleConArgumentoVacio()
    {
        for (const bool veta : {true, false}) {
            pruebas::AnfitrionGuionado h;
            h.sinObjeto = true;
            if (veta)
                h.vetadas = {"OPAUTO002"};
            h.respuestas.insert(kComppart + "K1'", Recordset(kPartes, {{"C1", 2, 3}}));
            h.respuestas.insert(kComponen + "K1'", Recordset({"Minimo"}, {{1}}));
            Produccion p;
            p.SetAmbiente(h.ambiente());
            p.Ensamble("K1", 2, 6, 0);
            const QStringList proceso =
                h.registroDe({"IniciaProceso", "ConsultaProceso", "CierraProceso"});
            QVERIFY2(proceso.value(0).startsWith("IniciaProceso: OPAUTO002 | "),
                     qPrintable(proceso.join('\n')));
            QStringList esperado{proceso.value(0), "ConsultaProceso: -1"};
            if (veta)
                esperado << "CierraProceso: 0";
            QCOMPARE(proceso, esperado);
            QCOMPARE(h.reportes().size(), veta ? 0 : 1);
            if (!veta)
                QVERIFY(h.reportes().first().contains("Function: Ensamble"));
            QVERIFY(h.movimientos.isEmpty());
        }
    }
};

QTEST_MAIN(TstLoteGuionado)
#include "tst_loteguionado.moc"
