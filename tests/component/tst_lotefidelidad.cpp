// The batch operations as a host that wraps the component sees them: every
// method takes the environment through the class's own Ambiente property, and
// an assembly that the host vetoes while leaving argument (2) empty stops
// silently after closing the process.

#include "component/Produccion.h"
#include "runtime/ClassRegistry.h"
#include "tests/support/AnfitrionGuionado.h"

#include <QTest>

using namespace zuvi;

namespace {

const QString kComppart = QStringLiteral("SELECT * FROM comppart WHERE articulo =  '");
const QString kComponen = QStringLiteral("SELECT * FROM componen WHERE articulo =  '");

// A host's wrapper: the environment comes only from its own Ambiente.
struct Envoltura : Produccion
{
    zuvi::Ambiente *propio = nullptr;
    zuvi::Ambiente *Ambiente() const override { return propio; }
};

// Process control that empties argument (2) and leaves the veto as told.
struct ProcesosSinDocumento : ControlProcesos
{
    explicit ProcesosSinDocumento(pruebas::AnfitrionGuionado *h, bool veta) : h(h), veta(veta) {}
    void IniciaProceso(ArgumentosProceso &a) override
    {
        h->anota("IniciaProceso", {a.proceso});
        a.objeto = nullptr;
    }
    void ConsultaProceso(VBool &bandera) override
    {
        h->anota("ConsultaProceso", {QString::number(bandera)});
        bandera = toVBool(veta);
    }
    void ImprimeReporte(const QString &, qint32, zuvi::Ambiente *, QObject *) override {}
    void CierraProceso(qint32 v) override { h->anota("CierraProceso", {QString::number(v)}); }
    pruebas::AnfitrionGuionado *h;
    bool veta;
};

} // namespace

class TstLoteFidelidad : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void ambienteDeLaPropiedad_data()
    {
        QTest::addColumn<QString>("metodo");
        QTest::addColumn<QString>("primera"); // the first host call the method makes
        QTest::newRow("Ensamble") << "Ensamble"
                                  << "Consulta: " + kComppart + "K1'";
        QTest::newRow("Desensamble") << "Desensamble"
                                     << "IniciaProceso: DESEM007 | ";
        QTest::newRow("EntregaProductoTerminado")
            << "EntregaProductoTerminado"
            << "Consulta: SELECT COUNT( * ) FROM oppart WHERE op = 9";
        QTest::newRow("CancelaOp") << "CancelaOp"
                                   << "Pregunta: Mensaje 757 | 2";
    }
    void ambienteDeLaPropiedad()
    {
        QFETCH(QString, metodo);
        QFETCH(QString, primera);
        pruebas::AnfitrionGuionado h;
        Envoltura p; // the stored member stays empty
        p.propio = h.ambiente();
        InterfazProduccion &i = p;
        if (metodo == u"Ensamble")
            i.Ensamble("K1", 2, 6, 0);
        else if (metodo == u"Desensamble")
            i.Desensamble("K1", 1.5, 2, 0);
        else if (metodo == u"EntregaProductoTerminado")
            i.EntregaProductoTerminado(9);
        else
            i.CancelaOp(9);
        QVERIFY2(!h.registro.isEmpty(), "the method ended before asking the host anything");
        QVERIFY2(h.registro.first().startsWith(primera), qPrintable(h.registro.first()));
        QVERIFY2(!h.reportes().join('\n').contains("Ambiente"),
                 qPrintable(h.reportes().join('\n')));
    }

    // Argument (2) left empty: no error while the host vetoes; an error at the document's
    // first use when it lets the assembly go ahead.
    void ensambleConArgumentoVacio_data()
    {
        QTest::addColumn<bool>("veta");
        QTest::newRow("vetado") << true;
        QTest::newRow("permitido") << false;
    }
    void ensambleConArgumentoVacio()
    {
        QFETCH(bool, veta);
        pruebas::AnfitrionGuionado h;
        ClassRegistry::instance().add(QStringLiteral("ControlProcesos"),
                                      [&h, veta] { return new ProcesosSinDocumento(&h, veta); });
        h.respuestas.insert(kComppart + "K1'",
                            Recordset({"Componente", "Cantidad", "Almacen"}, {{"C1", 2, 3}}));
        h.respuestas.insert(kComponen + "K1'", Recordset({"Minimo"}, {{1}}));
        Produccion p;
        p.SetAmbiente(h.ambiente());
        p.Ensamble("K1", 2, 6, 0);
        const QStringList proceso =
            h.registroDe({"IniciaProceso", "ConsultaProceso", "CierraProceso"});
        if (veta) {
            QCOMPARE(proceso, (QStringList{"IniciaProceso: OPAUTO002", "ConsultaProceso: -1",
                                           "CierraProceso: 0"}));
            QVERIFY(h.reportes().isEmpty() && h.movimientos.isEmpty());
        } else {
            QCOMPARE(proceso, (QStringList{"IniciaProceso: OPAUTO002", "ConsultaProceso: -1"}));
            QCOMPARE(h.reportes().size(), 1);
            QVERIFY(h.reportes().first().contains("Function: Ensamble"));
            QVERIFY(h.movimientos.isEmpty());
        }
    }
};

QTEST_MAIN(TstLoteFidelidad)
#include "tst_lotefidelidad.moc"
