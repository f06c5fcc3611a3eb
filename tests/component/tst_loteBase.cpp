// The batch operations through the reference host over a real database:
// the movements and stock actually written, the order tables changed, and a
// connection lost in the middle of a delivery. ZUVI_PRUEBA_AMBAS_BASES

#include "component/Modulo.h"
#include "component/Produccion.h"
#include "host/AmbienteAnfitrion.h"
#include "host/Anfitrion.h"
#include "host/DocumentoInventarioAnfitrion.h"
#include "host/VentanaProgresoAnfitrion.h"
#include "runtime/Error.h"
#include "tests/support/BaseDePrueba.h"
#include "tests/support/InteraccionGuionada.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QTest>

using namespace zuvi;
using namespace zuvi::pruebas;

namespace {

const QDate kHoy(2024, 5, 17);

QString numero(const QVariant &v)
{
    return QString::number(variantToDouble(v), 'g', 15);
}

// Every movement posted, oldest first: tipo concepto orden folio almacen
// articulo cantidad costo.
QStringList movimientos(BaseDePrueba &base)
{
    QSqlQuery q(base.conexion());
    if (!q.exec("SELECT tipo, concepto, orden, folio, almacen, articulo, cantidad, costo, importe "
                "FROM movimientos ORDER BY id"))
        return {QStringLiteral("error: ") + q.lastError().text()};
    QStringList r;
    while (q.next()) {
        r << QStringList{q.value(0).toString(), q.value(1).toString(), numero(q.value(2)),
                         q.value(3).toString(), numero(q.value(4)),    q.value(5).toString(),
                         numero(q.value(6)),    numero(q.value(7))}
                 .join(' ');
        if (qAbs(variantToDouble(q.value(8)) -
                 variantToDouble(q.value(6)) * variantToDouble(q.value(7))) > 1e-9)
            r << QStringLiteral("importe distinto de cantidad x costo");
    }
    return r;
}

double existencia(BaseDePrueba &base, const QString &articulo, int almacen)
{
    const QVariant v =
        base.escalar(QStringLiteral("SELECT cantidad FROM existencias WHERE articulo = '%1' AND "
                                    "almacen = %2")
                         .arg(articulo)
                         .arg(almacen));
    return v.isValid() ? variantToDouble(v) : -1.0; // -1: no stock row
}

} // namespace

class TstLoteBase : public QObject
{
    Q_OBJECT

    std::unique_ptr<BaseDePrueba> base;
    std::shared_ptr<InteraccionGuionada> ui;
    std::unique_ptr<Produccion> p;
    QStringList reportes;
    QString folioHoy;

private Q_SLOTS:
    void initTestCase() { preparaRegistro(); }

    void init()
    {
        modulo::reinicia();
        base = std::make_unique<BaseDePrueba>(true);
        auto *ambiente = qobject_cast<anfitrion::AmbienteAnfitrion *>(base->ambiente());
        QVERIFY(ambiente);
        ambiente->ponAhora(QDateTime(kHoy, QTime(10, 30)));
        folioHoy = QString::number(anfitrion::datoFechaA(kHoy));
        ui = InteraccionGuionada::instala();
        reportes.clear();
        setReportSink([this](const QString &, const QString &texto) { reportes << texto; });
        p = std::make_unique<Produccion>();
        p->SetAmbiente(base->ambiente());
    }

    void cleanup()
    {
        p.reset();
        modulo::reinicia();
        base.reset();
        setReportSink(nullptr);
        anfitrion::ponManejadorProceso(QStringLiteral("OPAUTO002"), {});
    }

    void ensambleEscribeMovimientosYExistencias_data()
    {
        QTest::addColumn<int>("op");
        QTest::addColumn<QString>("cabecera"); // concept orden folio of the components
        QTest::addColumn<QString>("kit");      // concept orden folio of the kit
        QTest::newRow("con orden") << 1 << "OP 1 @"
                                   << "OP 1 @";
        QTest::newRow("sin orden") << 0 << "EN 1 1"
                                   << "DE 1 1";
    }
    void ensambleEscribeMovimientosYExistencias()
    {
        QFETCH(int, op);
        QFETCH(QString, cabecera);
        QFETCH(QString, kit);
        cabecera.replace('@', folioHoy);
        kit.replace('@', folioHoy);

        p->Ensamble(QStringLiteral("SOPORTE"), 3, 3, op);

        QVERIFY2(reportes.isEmpty(), qPrintable(reportes.join('\n')));
        QCOMPARE(movimientos(*base), (QStringList{"S " + cabecera + " 1 TORN-01 12 0.5",
                                                  "S " + cabecera + " 1 TUER-01 12 0.3",
                                                  "S " + cabecera + " 1 PLAC-01 3 12",
                                                  "E " + kit + " 3 SOPORTE 3 45.6"}));
        QCOMPARE(existencia(*base, "TORN-01", 1), 4988.0);
        QCOMPARE(existencia(*base, "PLAC-01", 1), 197.0);
        QCOMPARE(existencia(*base, "SOPORTE", 3), 15.0);
        QCOMPARE(base->escalar("SELECT MIN(fecha) FROM movimientos").toDate(), kHoy);
        QCOMPARE(base->escalar("SELECT COUNT(*) FROM movimientos WHERE usuario = 'ADMIN'").toInt(),
                 4);
    }

    void ensambleCreaLaExistenciaQueFalta()
    {
        // One batch yields ten packs: 100/10*5 of each component.
        p->Ensamble(QStringLiteral("PAQ-TORN"), 2, 5, 0);
        QVERIFY(reportes.isEmpty());
        QCOMPARE(existencia(*base, "PAQ-TORN", 2), 5.0);
        QCOMPARE(existencia(*base, "TORN-01", 1), 4950.0);
        p->Ensamble(QStringLiteral("PAQ-TORN"), 2, 5, 0);
        QCOMPARE(existencia(*base, "PAQ-TORN", 2), 10.0);
        QCOMPARE(
            base->escalar("SELECT COUNT(*) FROM existencias WHERE articulo = 'PAQ-TORN'").toInt(),
            1);
        // Each run without an order draws its own reference.
        QCOMPARE(base->escalar("SELECT COUNT(DISTINCT orden) FROM movimientos").toInt(), 2);
    }

    void desensambleEscribeMovimientosYExistencias_data()
    {
        QTest::addColumn<int>("op");
        QTest::addColumn<QString>("cabecera");
        QTest::addColumn<QString>("kit");
        QTest::newRow("con orden") << 2 << "COP 2 @"
                                   << "COP 2 @";
        QTest::newRow("sin orden") << 0 << "DES 1 1"
                                   << "DEN 1 1";
    }
    void desensambleEscribeMovimientosYExistencias()
    {
        QFETCH(int, op);
        QFETCH(QString, cabecera);
        QFETCH(QString, kit);
        cabecera.replace('@', folioHoy);
        kit.replace('@', folioHoy);

        p->Desensamble(QStringLiteral("SOPORTE"), 2.5, 3, op);

        QVERIFY2(reportes.isEmpty(), qPrintable(reportes.join('\n')));
        QCOMPARE(movimientos(*base), (QStringList{"E " + cabecera + " 1 TORN-01 10 0.5",
                                                  "E " + cabecera + " 1 TUER-01 10 0.3",
                                                  "E " + cabecera + " 1 PLAC-01 2.5 12",
                                                  "S " + kit + " 3 SOPORTE 2.5 38"}));
        QCOMPARE(existencia(*base, "TORN-01", 1), 5010.0);
        QCOMPARE(existencia(*base, "SOPORTE", 3), 9.5);
    }

    void entregaDeUnaOrdenDeVariasLineas()
    {
        // Order 1, warehouse 3: 10 SOPORTE and 2 REPISA.
        const double otrasTerminadas =
            base->escalar("SELECT SUM(terminado) FROM oppart WHERE op <> 1").toDouble();
        p->EntregaProductoTerminado(1);

        QVERIFY2(reportes.isEmpty(), qPrintable(reportes.join('\n')));
        const QString h = "OP 1 " + folioHoy;
        QCOMPARE(movimientos(*base),
                 (QStringList{"S " + h + " 1 TORN-01 40 0.5", "S " + h + " 1 TUER-01 40 0.3",
                              "S " + h + " 1 PLAC-01 10 12", "E " + h + " 3 SOPORTE 10 152",
                              "S " + h + " 1 TAB-01 2 45", "S " + h + " 3 SOPORTE 4 15.2",
                              "S " + h + " 1 PINT-01 0.5 80", "E " + h + " 3 REPISA 2 190.8"}));
        QCOMPARE(existencia(*base, "SOPORTE", 3), 18.0);
        QCOMPARE(existencia(*base, "REPISA", 3), 2.0);
        QCOMPARE(base->escalar("SELECT COUNT(*) FROM oppart WHERE op = 1 AND terminado = cantidad")
                     .toInt(),
                 2);
        QCOMPARE(base->escalar("SELECT SUM(terminado) FROM oppart WHERE op <> 1").toDouble(),
                 otrasTerminadas);
        const auto &pr = ui->llamadasProgreso();
        QCOMPARE(pr.size(), 4);
        QCOMPARE(pr.at(0).operacion, QStringLiteral("inicia"));
        QCOMPARE(pr.at(0).numero, 2);
        QCOMPARE(pr.at(0).texto1, QStringLiteral("Entregando producto terminado"));
        QVERIFY(pr.at(0).texto2.endsWith(QStringLiteral("\\Images\\Gears.Avi")));
        QCOMPARE(pr.at(1).texto1, QStringLiteral("Procesando: SOPORTE"));
        QCOMPARE(pr.at(2).numero, 2);
        QCOMPARE(pr.at(3).operacion, QStringLiteral("cierra"));
    }

    void cancelaOp_data()
    {
        QTest::addColumn<int>("op");
        QTest::addColumn<QList<bool>>("si");
        QTest::addColumn<int>("resultado");
        QTest::addColumn<int>("cabeceras"); // op rows left for that order
        QTest::addColumn<int>("lineas");    // oppart rows left
        QTest::addColumn<int>("cerrado");
        QTest::addColumn<int>("preguntas");

        QTest::newRow("pendiente se borra con sus líneas")
            << 1 << QList<bool>{true} << -1 << 0 << 0 << 0 << 1;
        QTest::newRow("confirmada se cierra")
            << 2 << QList<bool>{true, true} << -1 << 1 << 1 << 1 << 2;
        QTest::newRow("confirmada, no en la segunda")
            << 2 << QList<bool>{true, false} << 0 << 1 << 1 << 0 << 2;
        QTest::newRow("no en la primera") << 1 << QList<bool>{false} << 0 << 1 << 2 << 0 << 1;
        QTest::newRow("no existe") << 999 << QList<bool>{true} << 0 << 0 << 0 << 0 << 1;
        QTest::newRow("sin líneas se borra") << 3 << QList<bool>{true} << -1 << 0 << 0 << 0 << 1;
    }
    void cancelaOp()
    {
        QFETCH(int, op);
        QFETCH(QList<bool>, si);
        QFETCH(int, resultado);
        QFETCH(int, cabeceras);
        QFETCH(int, lineas);
        QFETCH(int, cerrado);
        QFETCH(int, preguntas);
        for (bool b : si)
            ui->agregaRespuesta(b);
        const int otras = base->escalar("SELECT COUNT(*) FROM op").toInt() - cabeceras;

        QCOMPARE(int(p->CancelaOp(op)), resultado);

        const QString n = QString::number(op);
        QCOMPARE(base->escalar("SELECT COUNT(*) FROM op WHERE op = " + n).toInt(), cabeceras);
        QCOMPARE(base->escalar("SELECT COUNT(*) FROM oppart WHERE op = " + n).toInt(), lineas);
        QCOMPARE(base->escalar("SELECT COUNT(*) FROM op WHERE cerrado = 1").toInt(), cerrado);
        if (op != 999 && resultado == 0) // a refusal leaves every order as it was
            QCOMPARE(base->escalar("SELECT COUNT(*) FROM op").toInt(), otras + cabeceras);
        QCOMPARE(ui->preguntas().size(), preguntas);
        if (preguntas == 2)
            QCOMPARE(ui->preguntas().at(1),
                     QStringLiteral("Esta orden de producción ya fue confirmada, Desea cerrar "
                                    "esta order de producción"));
        QVERIFY(reportes.isEmpty());
    }

    void erroresDeBaseSeReportanYLoAplicadoQueda()
    {
        // A kit whose second component has a quote in its code: the statement
        // text breaks, the first component's movement stays.
        base->ejecuta("INSERT INTO componen (articulo, Minimo) VALUES ('RARO', 1)");
        base->ejecuta("INSERT INTO comppart (articulo, Componente, Cantidad, Almacen) VALUES "
                      "('RARO', 'TORN-01', 1, 1)");
        base->ejecuta("INSERT INTO comppart (articulo, Componente, Cantidad, Almacen) VALUES "
                      "('RARO', 'X''Y', 1, 1)");
        base->ejecuta("INSERT INTO comppart (articulo, Componente, Cantidad, Almacen) VALUES "
                      "('RARO', 'NO-EXISTE', 1, 1)");

        p->Ensamble(QStringLiteral("RARO"), 1, 2, 0);
        QCOMPARE(reportes.size(), 1);
        QVERIFY(reportes.at(0).startsWith(
            "Error occured:\r\nModule: Produccion\r\nFunction: Ensamble\r\nDescription: "));
        QCOMPARE(movimientos(*base), (QStringList{"S EN 1 1 1 TORN-01 2 0.5"}));

        // The article itself with a quote fails on the first query: nothing moves.
        reportes.clear();
        p->Desensamble(QStringLiteral("SO'PORTE"), 1, 3, 0);
        QCOMPARE(reportes.size(), 1);
        QVERIFY(reportes.at(0).contains("Function: Desensamble\r\nDescription: "));
        QCOMPARE(movimientos(*base).size(), 1);

        // A component without a prods row stops after what was applied.
        base->ejecuta("DELETE FROM comppart WHERE Componente = 'X''Y'");
        reportes.clear();
        p->Ensamble(QStringLiteral("RARO"), 1, 2, 0);
        QCOMPARE(reportes.size(), 1);
        QCOMPARE(movimientos(*base).size(), 2);
        QCOMPARE(existencia(*base, "TORN-01", 1), 4996.0);
        QCOMPARE(existencia(*base, "RARO", 1), -1.0);
    }

    void documentoRechazaMovimientosIncompletos_data()
    {
        QTest::addColumn<QString>("tipo");
        QTest::addColumn<QString>("articulo");
        QTest::addColumn<bool>("conAmbiente");
        QTest::addColumn<QString>("error");
        QTest::newRow("sin tipo") << ""
                                  << "TORN-01" << true << "Falta el tipo";
        QTest::newRow("tipo ajeno") << "X"
                                    << "TORN-01" << true << "Tipo de movimiento";
        QTest::newRow("sin artículo") << "E"
                                      << " " << true << "Falta el artículo";
        QTest::newRow("sin ambiente") << "E"
                                      << "TORN-01" << false << "PonAmbiente";
    }
    void documentoRechazaMovimientosIncompletos()
    {
        QFETCH(QString, tipo);
        QFETCH(QString, articulo);
        QFETCH(bool, conAmbiente);
        QFETCH(QString, error);
        anfitrion::DocumentoInventarioAnfitrion doc;
        if (conAmbiente)
            doc.PonAmbiente(base->ambiente());
        doc.PonTipo(tipo);
        doc.PonArticulo(articulo);
        doc.PonAlmacen(1);
        doc.PonCantidad(2);
        qint32 n = 0;
        try {
            doc.AplicaMovimiento(n);
            QFAIL("se aplicó un movimiento incompleto");
        } catch (const Error &e) {
            QVERIFY2(e.description().contains(error), qPrintable(e.description()));
        }
        QCOMPARE(base->escalar("SELECT COUNT(*) FROM movimientos").toInt(), 0);
        QCOMPARE(existencia(*base, "TORN-01", 1), 5000.0);
    }

    void documentoAplicaFilaYExistenciaJuntas()
    {
        anfitrion::DocumentoInventarioAnfitrion doc;
        doc.PonAmbiente(base->ambiente());
        doc.PonTipo("s");
        doc.PonArticulo("TORN-01");
        doc.PonAlmacen(1);
        doc.PonCantidad(4);
        doc.PonCosto(0.5);
        qint32 n = 0;
        QCOMPARE(doc.AplicaMovimiento(n), 2.0);
        QVERIFY(n > 0);
        QCOMPARE(existencia(*base, "TORN-01", 1), 4996.0);

        // A stock change the database refuses takes the movement row with it.
        if (BaseDePrueba::enMariaDB())
            base->ejecuta("CREATE TRIGGER bloquea BEFORE UPDATE ON existencias FOR EACH ROW "
                          "SIGNAL SQLSTATE '45000' SET MESSAGE_TEXT = 'bloqueada'");
        else
            base->ejecuta("CREATE TRIGGER bloquea BEFORE UPDATE ON existencias BEGIN "
                          "SELECT RAISE(ABORT, 'bloqueada'); END");
        QVERIFY_THROWS_EXCEPTION(Error, doc.AplicaMovimiento(n));
        QCOMPARE(base->escalar("SELECT COUNT(*) FROM movimientos").toInt(), 1);
        QCOMPARE(existencia(*base, "TORN-01", 1), 4996.0);
    }

    void ventanaProgresoPasaAlaInteraccion()
    {
        {
            anfitrion::VentanaProgresoAnfitrion v;
            v.Avanza(QVariant::fromValue<qint32>(1), "x", "");
            v.Cierra(); // harmless without Inicia
            QVERIFY(ui->llamadasProgreso().isEmpty());
            v.Inicia(QVariant::fromValue<qint32>(3), "Titulo", "C:\\App\\Images\\Gears.Avi");
            v.Avanza(QVariant::fromValue<qint32>(2), "uno", "dos");
        } // going away closes it
        const auto &pr = ui->llamadasProgreso();
        QCOMPARE(pr.size(), 3);
        QCOMPARE(pr.at(0).numero, 3);
        QCOMPARE(pr.at(0).texto2, QStringLiteral("C:\\App\\Images\\Gears.Avi"));
        QCOMPARE(pr.at(1).texto2, QStringLiteral("dos"));
        QCOMPARE(pr.at(2).operacion, QStringLiteral("cierra"));
    }

    void conexionPerdidaAMitadDeEntrega()
    {
        // The second line's assembly loses the connection inside its gate.
        int vez = 0;
        const bool maria = BaseDePrueba::enMariaDB();
        anfitrion::ponManejadorProceso(QStringLiteral("OPAUTO002"), [&](ArgumentosProceso &a) {
            a.bandera = VFalse;
            if (++vez != 2)
                return;
            QSqlDatabase db = base->conexion();
            if (maria)
                QSqlQuery(db).exec(QStringLiteral("KILL CONNECTION_ID()"));
            else
                db.close();
        });

        p->EntregaProductoTerminado(1);

        QCOMPARE(vez, 2);
        QCOMPARE(reportes.size(), 1);
        QVERIFY(reportes.at(0).contains("Function: Ensamble"));

        // What line one posted is there for a fresh connection.
        {
            std::unique_ptr<anfitrion::Sesion> otra;
            anfitrion::Opciones opciones;
            opciones.base = base->url();
            QVERIFY_THROWS_NO_EXCEPTION(otra = anfitrion::Sesion::abre(opciones, false));
            QSqlQuery q(otra->conexion());
            QVERIFY(q.exec("SELECT COUNT(*), SUM(cantidad) FROM movimientos"));
            QVERIFY(q.next());
            QCOMPARE(q.value(0).toInt(), 4);
            QCOMPARE(variantToDouble(q.value(1)), 100.0); // 40 + 40 + 10 + 10 SOPORTE
            QVERIFY(q.exec("SELECT COUNT(*) FROM oppart WHERE op = 1 AND terminado <> 0"));
            QVERIFY(q.next());
            QCOMPARE(q.value(0).toInt(), 0);
        }
    }
};

QTEST_MAIN(TstLoteBase)
#include "tst_loteBase.moc"
