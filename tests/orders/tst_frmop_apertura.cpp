// Opening and closing the order editor over a real database: the openers'
// refusals, the busy mark, closing from the title bar, refused steps, the
// numbering at its limit and the database lost while the window is open.

#include "BancoEditor.h"

using namespace zuvi;
using namespace zuvi::pruebas;

class TstFrmOpApertura : public QObject, public BancoEditor
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

    // The openers: the mode from the state, the refusals of a busy order.
    void aperturas()
    {
        const struct
        {
            bool modifica;
            int op;
            const char *cambio;   // applied to the order first
            const char *mensajes; // message numbers are replaced by their texts, then "/style"
            const char *modo;     // empty: no window
        } casos[] = {
            {true, 77, "", "754/16", ""},                   // no such order
            {true, 2, "", "753/64", "CONSULTA"},            // confirmed
            {true, 2, "ocupado = 1", "753/64", "CONSULTA"}, // confirmed and busy
            {true, 1, "ocupado = 1", "755/64", ""},         // busy by me
            {true, 1, "ocupado = 1, usuario = '  OTRO  '", "756 OTRO 76/64", ""},
            {true, 3, "", "", "MODIFICACION"},                           // free
            {false, 77, "", "72/16", ""},                                // view, no such order
            {false, 1, "ocupado = 1, usuario = 'OTRO'", "", "CONSULTA"}, // view a busy order
        };
        for (const auto &c : casos) {
            deNuevo();
            if (*c.cambio)
                base->ejecuta(
                    QStringLiteral("UPDATE op SET %1 WHERE op = %2").arg(c.cambio).arg(c.op));
            c.modifica ? p->ModificaOp(c.op) : p->ConsultaOp(c.op);
            QStringList vistos;
            for (const auto &m : ui->mensajes())
                vistos << m.texto + '/' + QString::number(m.estilo);
            QString esperado = QString::fromUtf8(c.mensajes);
            for (int n : {72, 76, 753, 754, 755, 756})
                esperado.replace(QString::number(n), mensaje(n));
            QCOMPARE(vistos, esperado.isEmpty() ? QStringList() : QStringList{esperado});
            const auto lista = visibles<frmOp>();
            const QString modo = QString::fromUtf8(c.modo);
            QCOMPARE(lista.size(), modo.isEmpty() ? 0 : 1);
            if (!modo.isEmpty()) {
                QCOMPARE(lista.first()->Modo, modo);
                QCOMPARE(lista.first()->Command5->isEnabled(), modo != u"CONSULTA");
                QCOMPARE(lista.first()->Command1->isEnabled(), modo == u"CONSULTA");
            }
        }
    }

    // A view-only window never marks nor releases the order.
    void consultaNoMarcaNiLibera()
    {
        base->ejecuta("UPDATE op SET ocupado = 1, usuario = 'OTRO' WHERE op = 1");
        p->ConsultaOp(1);
        auto f = editor();
        QVERIFY(f && !f->txtFields(4)->isEnabled() && f->Command2->isEnabled());
        QVERIFY(f->descarga());
        QCOMPARE(base->escalar("SELECT ocupado FROM op WHERE op = 1").toInt(), 1);
    }

    // Closing from the title bar goes through the timer; a refused load leaves the flag
    // set, so the first close is refused; a refused close from the title bar is tried
    // again on every tick until it goes through.
    void cierreYRechazos()
    {
        vetados = {"Op001"};
        auto f = abre(1);
        QVERIFY(f);
        QVERIFY(fromVBool(f->Rechazo));
        QCloseEvent desdeTitulo;
        QApplication::sendEvent(f, &desdeTitulo); // not spontaneous: from code
        QVERIFY(f && !f->descargada());           // refused once, flag cleared
        QVERIFY(!fromVBool(f->Rechazo));
        QCOMPARE(base->escalar("SELECT ocupado FROM op WHERE op = 1").toInt(), 1);
        // The window system's close arms the timer; while "Op006" refuses, each tick tries
        // again, and the window goes on the tick after the refusal is lifted.
        vetados = {"Op006"};
        QCloseEvent barra; // what the window system sends for the title bar
        QCoreApplication::sendEvent(f->windowHandle(), &barra);
        QTRY_VERIFY(procesos.filter("Op006").size() >= 4);
        QVERIFY(f && !f->descargada());
        vetados.clear();
        QTRY_VERIFY(f.isNull());
        QCOMPARE(base->escalar("SELECT ocupado FROM op WHERE op = 1").toInt(), 0);
        QCOMPARE(procesos.mid(0, 2), (QStringList{"Op001 0", "Op006 -1"}));
    }

    // A refused "Op005" adds no line and clears the flag.
    void partidaRechazada()
    {
        vetados = {"Op005"};
        auto f = abre();
        QVERIFY(f);
        teclea(f, "TORN-01⏎1⏎");
        QCOMPARE(f->Modo, QStringLiteral("ALTA"));
        QVERIFY(!fromVBool(f->Rechazo) && f->fg2->TextMatrix(1, 0).isEmpty());
        vetados.clear();
        teclea(f, "TORN-01⏎1⏎");
        QCOMPARE(partidas(f->Op).size(), 1);
    }

    // Numbering at its limit: a clear report. For "Op" nothing is written; for "oppart"
    // the header written by CreaOp stays, the line does not.
    void numeracionAlLimite()
    {
        for (const auto &[clave, opsNuevas] : {std::pair{"Op", 0}, {"oppart", 1}}) {
            deNuevo();
            base->ejecuta(QStringLiteral("DELETE FROM folios WHERE clave = '%1'").arg(clave));
            base->ejecuta(
                QStringLiteral("INSERT INTO folios (clave, ultimo) VALUES ('%1', 2147483646)")
                    .arg(clave));
            auto f = abre();
            QVERIFY(f);
            const int ops = cuenta("op"), lineas = cuenta("oppart");
            teclea(f, "TORN-01⏎1⏎");
            QCOMPARE(ui->reportes().size(), 1);
            QVERIFY2(ui->reportes().first().contains(u"límite"),
                     qPrintable(ui->reportes().first()));
            QCOMPARE(cuenta("op"), ops + opsNuevas);
            QCOMPARE(cuenta("oppart"), lineas);
            QVERIFY(f->fg2->TextMatrix(1, 0).isEmpty());
        }
    }

    // The connection lost while the window is open: finishing and closing report the
    // error, the window goes, the busy mark stays behind.
    void baseDeDatosPerdida()
    {
        auto f = abre(1);
        QVERIFY(f);
        QSqlDatabase db = base->conexion();
        anfitrion::olvidaSentencias(db);
        db.close();
        f->Check3->setChecked(true);
        teclea(f, "{F5}");
        QVERIFY(!ui->reportes().isEmpty());
        QVERIFY(f);
        f->descarga();
        QTRY_VERIFY(f.isNull());
        QVERIFY2(ui->reportes().last().contains("Function: Form_Unload"),
                 qPrintable(ui->reportes().join('\n')));
        QVERIFY(db.open());
        QCOMPARE(base->escalar("SELECT ocupado FROM op WHERE op = 1").toInt(), 1);
    }
};

QTEST_MAIN(TstFrmOpApertura)
#include "tst_frmop_apertura.moc"
