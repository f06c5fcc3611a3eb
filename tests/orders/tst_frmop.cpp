// The order editor over a real database, driven by real key events: orders
// created, changed and finished from the keyboard, the rows written, bad
// input, a full grid, printing.

#include "BancoEditor.h"

#include "host/servicios/AccesoDatosAnfitrion.h"
#include "host/servicios/ConstructorSqlAnfitrion.h"
#include "runtime/ClassRegistry.h"

#include <QDateEdit>

using namespace zuvi;
using namespace zuvi::pruebas;

namespace {

// The host's statement builder, noting the type each flag or small number arrives with.
QSet<QString> tiposPequenos;
struct ConstructorQueAnota : anfitrion::ConstructorSqlAnfitrion
{
    void AgregaCampo(const QString &tabla, const QString &columna, const QVariant &valor) override
    {
        if (QStringList{"ocupado", "costo", "automatico", "partida"}.contains(columna))
            tiposPequenos << columna + ':' + QString::fromLatin1(valor.typeName());
        ConstructorSqlAnfitrion::AgregaCampo(tabla, columna, valor);
    }
};
struct AccesoQueAnota : anfitrion::AccesoDatosAnfitrion
{
    ConstructorSql *NuevoConstructorSql() override { return new ConstructorQueAnota; }
};

} // namespace

class TstFrmOp : public QObject, public BancoEditor
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        preparaClase();
        QVERIFY(etiquetasReales);
    }
    void init() { prepara(); }
    void cleanup() { limpia(); }

    // From the keyboard alone: an article and Enter, a quantity and Enter, a secondary key
    // and Enter, a quantity and Enter, F5 and yes. The order is confirmed with both lines;
    // the flags and small numbers reached the statement builder as 16-bit integers.
    void nuevaOrdenConfirmadaDesdeElTeclado()
    {
        auto &clases = ClassRegistry::instance();
        clases.add(QStringLiteral("AccesoDatos"), [] { return new AccesoQueAnota; });
        const auto restaura = qScopeGuard([&] {
            clases.add(QStringLiteral("AccesoDatos"),
                       [] { return new anfitrion::AccesoDatosAnfitrion; });
        });
        tiposPequenos.clear();
        deNuevo(); // the module takes its builder when it starts
        auto f = abre();
        QVERIFY(f);
        QCOMPARE(f->Modo, QStringLiteral("ALTA"));
        QCOMPARE(foco(f), QStringLiteral("txtFields_4"));
        QCOMPARE(f->fg2->Rows(), 101);
        QCOMPARE(f->DTPicker1->date(), kHoy);
        QCOMPARE(f->txtFields(14)->text(), QStringLiteral("1"));

        teclea(f, "TORN-01⏎");
        QCOMPARE(foco(f), QStringLiteral("txtFields_5"));
        QCOMPARE(f->txtFields(1)->text(), QStringLiteral("Tornillo 1/4\""));
        teclea(f, "5⏎");
        QCOMPARE(foco(f), QStringLiteral("txtFields_4"));
        QCOMPARE(f->Modo, QStringLiteral("MODIFICACION"));
        const qint32 op = f->Op;
        QVERIFY(op > 3);
        QCOMPARE(f->windowTitle(), "Op: " + QString::number(op));
        QCOMPARE(cabecera(op).value(0).section('|', 1, 2), QStringLiteral("PE|1"));
        // Tab works as Enter, and the toolkit does not move the focus a second time.
        teclea(f, "7501000000028⇥"); // the secondary key of TUER-01
        QCOMPARE(f->txtFields(4)->text(), QStringLiteral("TUER-01"));
        QCOMPARE(foco(f), QStringLiteral("txtFields_5"));
        teclea(f, "3⇥");
        QCOMPARE(foco(f), QStringLiteral("txtFields_4"));
        QCOMPARE(f->fg2->TextMatrix(1, 0) + ' ' + f->fg2->TextMatrix(2, 0) + ' ' +
                     f->fg2->TextMatrix(2, 1),
                 QStringLiteral("TORN-01 TUER-01 3"));
        QCOMPARE(f->CuantasPartidas(), 2);

        ui->respuestas({true});
        teclea(f, "{F5}");
        QTRY_VERIFY(f.isNull());
        QCOMPARE(ui->preguntas(), QStringList{mensaje(759)});
        QVERIFY2(ui->reportes().isEmpty(), qPrintable(ui->reportes().join('\n')));
        QCOMPARE(procesos, (QStringList{"Op001 0", "Op005 0", "Op005 0", "OP007 -1", "Op006 0"}));
        QCOMPARE(cabecera(op), QStringList{QString::number(op) +
                                           "|CO|0|1|2024-05-17|2024-05-17|0|"
                                           "3.4|0|0|ADMIN|" +
                                           hoy});
        const QStringList lineas = partidas(op);
        QCOMPARE(lineas.size(), 2);
        const QString o = QString::number(op);
        QCOMPARE(lineas.at(0).section('|', 1),
                 o + "||" + o + "|TORN-01|5|0|Tornillo 1/4\"|0|ADMIN|" + hoy);
        QCOMPARE(lineas.at(1).section('|', 1),
                 o + "||" + o + "|TUER-01|3|0|Tuerca 1/4\"|0|ADMIN|" + hoy);
        QCOMPARE(tiposPequenos,
                 (QSet<QString>{"ocupado:short", "costo:short", "costo:double", "partida:short"}));
    }

    // With no line the order is saved pending, with message 343; no process runs and the
    // window stays open with Finalizar disabled.
    void nuevaOrdenSinPartidasQuedaPendiente()
    {
        auto f = abre();
        QVERIFY(f);
        const int antes = cuenta("op");
        ui->respuestas({true});
        teclea(f, "{F5}");
        QCOMPARE(ui->textosMensajes(), QStringList{mensaje(343)});
        QVERIFY(f && !f->Command5->isEnabled() && f->Check3->isChecked());
        QCOMPARE(cuenta("op"), antes + 1);
        QCOMPARE(cabecera(f->Op).value(0).section('|', 1, 3), QStringLiteral("PE|0|1"));
        QCOMPARE(procesos, QStringList{"Op001 0"});
        teclea(f, "{F5}"); // disabled: nothing more happens
        QCOMPARE(ui->preguntas().size(), 1);
    }

    // An existing order: busy while open, its lines in the grid, a line added, left pending
    // through the caption of Check3, released on closing.
    void ordenExistenteModificadaYPendiente()
    {
        base->ejecuta("UPDATE op SET automatico = 1, usuario = 'OTRO' WHERE op = 1");
        auto f = abre(1);
        QVERIFY(f);
        QCOMPARE(f->windowTitle(), QStringLiteral("Orden de fabricación: 1"));
        QCOMPARE(base->escalar("SELECT ocupado FROM op WHERE op = 1").toInt(), 1);
        QCOMPARE(f->fg2->TextMatrix(1, 0) + f->fg2->TextMatrix(2, 0),
                 QStringLiteral("SOPORTEREPISA"));
        QVERIFY(f->fg2->TextMatrix(1, 4).startsWith(' '));
        QVERIFY(f->Check1->isChecked() && !f->Command1->isEnabled());
        QCOMPARE(f->fg2->Row(), 1);

        teclea(f, "TAB-01⏎2⏎");
        QCOMPARE(f->fg2->TextMatrix(3, 0), QStringLiteral("TAB-01"));
        f->Check1->setChecked(false);
        QTest::mouseClick(f->Label10(1), Qt::LeftButton);
        QVERIFY(f->Check3->isChecked());
        f->txtFields(4)->setFocus();
        teclea(f, "{F5}");
        QTRY_VERIFY(f.isNull());
        QVERIFY(ui->preguntas().isEmpty());
        const QStringList c = cabecera(1);
        QCOMPARE(c.value(0).section('|', 1, 3), QStringLiteral("PE|0|3"));
        QCOMPARE(c.value(0).section('|', 8, 8), QStringLiteral("1")); // automatico stays 1
        QCOMPARE(c.value(0).section('|', 10, 10), QStringLiteral("ADMIN"));
        QCOMPARE(partidas(1).size(), 3);
        QVERIFY(!procesos.contains("OP007 -1"));
    }

    // Confirming with Check1 clear never writes automatico back to 0; with Check1 ticked
    // it writes 1.
    void automaticoNuncaVuelveACero()
    {
        const struct
        {
            int antes;
            bool marcado;
            int despues;
        } casos[] = {{1, false, 1}, {0, true, 1}, {0, false, 0}};
        for (const auto &c : casos) {
            deNuevo();
            base->ejecuta(
                QStringLiteral("UPDATE op SET automatico = %1 WHERE op = 1").arg(c.antes));
            auto f = abre(1);
            QVERIFY(f);
            f->Check1->setChecked(c.marcado);
            ui->respuestas({true});
            f->Command5->click();
            QTRY_VERIFY(f.isNull());
            QCOMPARE(filas(base->conexion(), "SELECT automatico, estado FROM op WHERE op = 1"),
                     QStringList{QString::number(c.despues) + " CO"});
        }
    }

    // A cell written back by SalvaCambios: the column decides what is written (column 5
    // holds the line's key: an edit there writes the key itself as the tax).
    void salvaCambiosPorColumna()
    {
        const struct
        {
            int columna;
            const char *texto;
            const char *esperado; // cantidad|impuesto|observ; the key for the line's own key
        } casos[] = {
            {1, "7.5", "7.5|0|"},     // quantity
            {2, "4", "4|0|"},         // the price goes to the quantity
            {3, "99", "10|0|"},       // the amount: nothing
            {4, "otra", "10|0|"},     // the description: nothing
            {6, "caja", "10|0|caja"}, // the presentation to observ
            {5, "", nullptr},
        };
        base->ejecuta("UPDATE oppart SET observ = '' WHERE op = 1");
        auto f = abre(1);
        QVERIFY(f);
        const QString id = f->fg2->TextMatrix(1, 5);
        const QString sql =
            "SELECT cantidad, impuesto, observ FROM oppart WHERE id_entrada = " + id;
        for (const auto &c : casos) {
            base->ejecuta("UPDATE oppart SET cantidad = 10, impuesto = 0, observ = '' WHERE "
                          "id_entrada = " +
                          id);
            f->fg2->SetRow(1);
            f->fg2->SetCol(c.columna);
            if (c.esperado)
                f->fg2->SetText(c.texto);
            f->SalvaCambios();
            QCOMPARE(filas(base->conexion(), sql, u'|'),
                     QStringList{c.esperado ? c.esperado : "10|" + id + "|"});
        }
        QVERIFY(ui->reportes().isEmpty());
    }

    // What a clerk can type wrong: a message, no line, the window still usable. A quote
    // or a stacked statement in the article code fails in the lookup and is reported;
    // nothing else runs.
    void entradaInvalida()
    {
        const struct
        {
            const char *articulo, *cantidad;
            int mensaje;
            bool reporte = false;
        } casos[] = {
            {"", "1", 234},
            {"NOEXISTE", "1", 235},
            {"TORN-01", "abc", 236},
            {"TORN-01", "0", 236},
            {"TORN-01", "-2", 236},
            {"PLAC-01", "1", 703}, // restricted
            {"O'Brien", "1", 235, true},
            {"X'; DELETE FROM op; --", "1", 235, true},
        };
        for (const auto &c : casos) {
            deNuevo();
            base->ejecuta("UPDATE estaciones SET almacen = 3");
            auto f = abre();
            QVERIFY(f);
            const int ops = cuenta("op"), lineas = cuenta("oppart");
            teclea(f, QString::fromUtf8(c.articulo) + "⏎" + c.cantidad + "⏎");
            QCOMPARE(ui->textosMensajes(), QStringList{mensaje(c.mensaje)});
            QCOMPARE(ui->reportes().size(), c.reporte ? 1 : 0);
            if (c.reporte)
                QVERIFY2(ui->reportes().first().contains(
                             "Module: frmOp\r\nFunction: PonDescripcion\r\n"),
                         qPrintable(ui->reportes().first()));
            QCOMPARE(cuenta("op"), ops);
            QCOMPARE(cuenta("oppart"), lineas);
            QCOMPARE(f->Modo, QStringLiteral("ALTA"));
            // Still usable: a good line goes in.
            f->txtFields(4)->setFocus();
            f->txtFields(4)->clear();
            f->txtFields(5)->clear();
            teclea(f, "TORN-01⏎2⏎");
            QCOMPARE(cuenta("oppart"), lineas + 1);
            QCOMPARE(f->fg2->TextMatrix(1, 0), QStringLiteral("TORN-01"));
        }
    }

    // The warehouse is checked before finishing: blank 240, unknown 241.
    void almacenAlFinalizar()
    {
        for (const auto &[almacen, numero] : {std::pair{"", 240}, {"99", 241}}) {
            deNuevo();
            auto f = abre();
            QVERIFY(f);
            f->txtFields(14)->setText(almacen);
            teclea(f, "{F5}");
            QCOMPARE(ui->textosMensajes(), QStringList{mensaje(numero)});
            QCOMPARE(foco(f), QStringLiteral("txtFields_14"));
            QVERIFY(ui->preguntas().isEmpty() && f->Command5->isEnabled());
        }
    }

    // The exchange rate of the currency typed, and the salesperson's name: an unknown
    // currency empties the rate, the base currency disables it for good.
    void tipoDeCambioYVendedor()
    {
        auto f = abre();
        QVERIFY(f);
        const auto tc = [&](const QString &moneda) {
            f->txtFields(15)->setText(moneda);
            f->PonTC();
            return f->txtFields(16)->text() + (f->txtFields(16)->isEnabled() ? "" : " (fijo)");
        };
        QCOMPARE(tc("USD"), QStringLiteral("17.5"));
        QCOMPARE(tc("XX"), QString());
        QCOMPARE(tc("MN"), QStringLiteral("1 (fijo)"));
        QCOMPARE(tc("EUR"), QStringLiteral("19.2 (fijo)"));
        QCOMPARE(f->TraeVends(), QString()); // field 0 blank: nothing is read
        f->txtFields(0)->setText("1");
        f->txtFields(1)->setText("V01");
        QCOMPARE(f->TraeVends(), QStringLiteral("Laura Méndez"));
        f->txtFields(1)->setText("V99");
        QCOMPARE(f->TraeVends(), QString());
        QVERIFY(ui->reportes().isEmpty());
    }

    // A full grid: the 101st line is stored, not shown, and nothing fails.
    void rejillaLlena()
    {
        for (int i = 0; i < 100; ++i)
            base->ejecuta(QStringLiteral("INSERT INTO oppart (id_entrada, op, articulo, cantidad) "
                                         "VALUES (%1, 3, 'TORN-01', 1)")
                              .arg(1000 + i));
        auto f = abre(3);
        QVERIFY(f);
        QCOMPARE(f->CuantasPartidas(), 100);
        teclea(f, "TUER-01⏎4⏎");
        QCOMPARE(partidas(3).size(), 101);
        QCOMPARE(f->fg2->Rows(), 101);
        QVERIFY(ui->reportes().isEmpty() && ui->mensajes().isEmpty());
    }

    // Delete in the grid removes a stored line, but not in view-only mode.
    void suprimirPartida()
    {
        auto f = abre(1);
        QVERIFY(f);
        f->fg2->setFocus();
        f->fg2->SetRow(1);
        QTest::keyClick(f->windowHandle(), Qt::Key_Delete);
        QCOMPARE(partidas(1).size(), 1);
        QCOMPARE(f->fg2->TextMatrix(1, 0), QStringLiteral("REPISA"));
        f->descarga();
        p->ConsultaOp(1);
        f = editor();
        QVERIFY(f);
        f->fg2->SetRow(1);
        f->fg2->setEnabled(true);
        f->fg2->setFocus();
        QTest::keyClick(f->windowHandle(), Qt::Key_Delete);
        QCOMPARE(partidas(1).size(), 1);
    }

    // Confirming with "Imprimir movimiento." ticked (through its caption): the labels, one
    // per unit, then the order report, both written as PDF files and reported.
    void imprimeEtiquetasYOrden()
    {
        QTemporaryDir carpeta;
        anfitrion::ponCarpetaReportes(carpeta.path());
        conEtiquetas = true;
        auto f = abre(1);
        QVERIFY(f);
        QTest::mouseClick(f->Label10(2), Qt::LeftButton);
        QVERIFY(f->Check2->isChecked());
        ui->respuestas({true});
        teclea(f, "{F5}");
        QTRY_VERIFY(f.isNull());
        anfitrion::ponCarpetaReportes(QString());
        const QString etiquetas = carpeta.filePath("Etiquetas-Orden-1.pdf");
        const QString orden = carpeta.filePath("OrdenProduccion-1.pdf");
        QVERIFY2(QFileInfo(etiquetas).size() > 1000 && QFileInfo(orden).size() > 1000,
                 qPrintable((ui->textosMensajes() + ui->reportes()).join('\n')));
        QCOMPARE(ui->textosMensajes(),
                 (QStringList{"12 etiqueta(s) de la orden 1 se guardaron en " + etiquetas,
                              "La orden de producción 1 se guardó en " + orden}));
        QVERIFY(ui->reportes().isEmpty());
    }
};

QTEST_MAIN(TstFrmOp)
#include "tst_frmop.moc"
