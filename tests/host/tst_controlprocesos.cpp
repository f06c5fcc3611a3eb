// The host's process control: handlers by key, the veto flag and the order report.

#include "host/ControlProcesosAnfitrion.h"
#include "host/Reportes.h"
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
        // Starts the process; gives back the flag, which the arguments and ConsultaProceso
        // must agree on (42, neither answer, when they do not).
        const auto veto = [&cp](ArgumentosProceso &args) {
            cp.IniciaProceso(args);
            VBool bandera = VBool(42);
            cp.ConsultaProceso(bandera);
            return bandera == args.bandera ? bandera : VBool(42);
        };
        QObject ventana, documento;
        ArgumentosProceso visto, args;
        VBool decision = VTrue;
        QString falla;
        // A key only this test uses, so the host's own handlers stay untouched.
        ponManejadorProceso(QStringLiteral("PRUEBA_CONTROL"), [&](ArgumentosProceso &a) {
            visto = a;
            a.objeto = &documento; // a handler may hand back another object
            a.bandera = decision;
            if (!falla.isEmpty())
                throw Error(falla);
        });
        args.proceso = QStringLiteral("PRUEBA_CONTROL");
        args.objeto = &ventana;
        QCOMPARE(veto(args), VTrue);
        QCOMPARE(visto.objeto.data(), &ventana);
        QCOMPARE(args.objeto.data(), &documento);
        // A key with no handler lets the caller go ahead, replacing the earlier decision.
        ArgumentosProceso otro;
        otro.proceso = QStringLiteral("PRUEBA_SIN_MANEJADOR");
        QCOMPARE(veto(otro), VFalse);
        decision = VFalse;
        QCOMPARE(veto(args), VFalse);
        // A handler's error reaches the caller; a failed process is never let through.
        falla = QStringLiteral("El proceso falló a medias.");
        QVERIFY_THROWS_EXCEPTION(Error, cp.IniciaProceso(args));
        VBool bandera = VFalse;
        cp.ConsultaProceso(bandera);
        QCOMPARE(bandera, VTrue);
        cp.CierraProceso(3);
        QCOMPARE(cp.ultimoCierre(), std::optional<qint32>(3));
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
        QCOMPARE(guion->mensajes().size(), 1); // the user is told where the file went
        QVERIFY(guion->mensajes().at(0).texto.contains(f.fileName()));
        ponCarpetaReportes(QString());
        ponInteraccion(nullptr);
    }
};

QTEST_MAIN(TstControlProcesos)
#include "tst_controlprocesos.moc"
