// The host's process control: handlers by key, the veto flag and the order report.

#include "host/reportes/Reportes.h"
#include "host/servicios/ControlProcesosAnfitrion.h"
#include "runtime/Error.h"
#include "tests/support/BaseDePrueba.h"
#include "tests/support/InteraccionGuionada.h"

#include <QtTest>

using namespace zuvi;
using namespace zuvi::anfitrion;

class TstControlProcesos : public QObject
{
    Q_OBJECT

private slots:
    void manejadorDecideElVeto()
    {
        ControlProcesosAnfitrion cp;
        QObject ventana, documento;
        ArgumentosProceso visto, args, otro;
        args.proceso = QStringLiteral("PRUEBA_CONTROL");
        args.objeto = &ventana;
        otro.proceso = QStringLiteral("PRUEBA_SIN_MANEJADOR");
        VBool decision = VTrue;
        bool falla = false;
        // A key only this test uses, so the host's own handlers stay untouched.
        ponManejadorProceso(args.proceso, [&](ArgumentosProceso &a) {
            visto = a;
            a.objeto = &documento; // a handler may hand back another object
            a.bandera = decision;
            if (falla)
                throw Error("El proceso falló a medias.");
        });
        // The flag both the arguments and ConsultaProceso must agree on, else 42 (neither answer).
        const auto veto = [&cp](ArgumentosProceso &a) {
            cp.IniciaProceso(a);
            VBool bandera = VBool(42);
            cp.ConsultaProceso(bandera);
            return bandera == a.bandera ? bandera : VBool(42);
        };
        QCOMPARE(veto(args), VTrue);
        QVERIFY(visto.objeto == &ventana && args.objeto == &documento);
        // A key with no handler lets the caller go ahead, replacing the earlier decision.
        QCOMPARE(veto(otro), VFalse);
        decision = VFalse;
        QCOMPARE(veto(args), VFalse);
        // A handler's error reaches the caller; a failed process is never let through.
        falla = true;
        QVERIFY_THROWS_EXCEPTION(Error, cp.IniciaProceso(args));
        VBool bandera = VFalse;
        cp.ConsultaProceso(bandera);
        QCOMPARE(bandera, VTrue);
    }

    void reporteDeOrdenEnPdf()
    {
        pruebas::BaseDePrueba base(false);
        base.ejecuta("INSERT INTO op (op, estado, f_emision) VALUES (120, 'PE', '2024-05-02')");
        QTemporaryDir dir;
        ponCarpetaReportes(dir.path());
        auto guion = pruebas::InteraccionGuionada::instala();
        ControlProcesosAnfitrion cp;
        // Unknown reports and orders that are not there fail and leave no file behind.
        QVERIFY_THROWS_EXCEPTION(Error, cp.ImprimeReporte("NOEXISTE", 120, base.ambiente(), {}));
        QVERIFY_THROWS_EXCEPTION(Error, cp.ImprimeReporte("ORDENP", 999, base.ambiente(), {}));
        QVERIFY(QDir(dir.path()).isEmpty());

        cp.ImprimeReporte(QStringLiteral("ORDENP"), 120, base.ambiente(), nullptr);
        QFile f(cp.ultimoReporte());
        QVERIFY(f.fileName().startsWith(dir.path()) && f.open(QIODevice::ReadOnly));
        QVERIFY(f.readAll().startsWith("%PDF-"));
        QCOMPARE(guion->textosMensajes().join('|').count(f.fileName()), 1); // told where it is
    }
};

QTEST_MAIN(TstControlProcesos)
#include "tst_controlprocesos.moc"
