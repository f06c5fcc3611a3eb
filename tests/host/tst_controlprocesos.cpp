// The host's process control: handlers by key, the veto flag and the order report.

#include "host/AccesoDatosAnfitrion.h"
#include "host/ConstructorSqlAnfitrion.h"
#include "host/ControlProcesosAnfitrion.h"
#include "host/Reportes.h"
#include "runtime/ClassRegistry.h"
#include "runtime/Error.h"
#include "tests/support/BaseDePrueba.h"
#include "tests/support/InteraccionGuionada.h"

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

using namespace zuvi;
using namespace zuvi::anfitrion;
using zuvi::pruebas::BaseDePrueba;
using zuvi::pruebas::InteraccionGuionada;

namespace {

// Keys only these tests use, so the host's own handlers stay untouched.
const QString kSinManejador = QStringLiteral("PRUEBA_SIN_MANEJADOR");
const QString kPrueba = QStringLiteral("PRUEBA_CONTROL");

} // namespace

class TstControlProcesos : public QObject
{
    Q_OBJECT

private slots:
    void cleanup()
    {
        ponManejadorProceso(kPrueba, nullptr);
        ponInteraccion(nullptr);
        ponCarpetaReportes(QString());
    }

    void clasesRegistradasPorNombre();
    void claveSinManejadorDejaSeguir();
    void manejadorDecideElVeto_data();
    void manejadorDecideElVeto();
    void manejadorRecibeYCambiaArgumentos();
    void errorDelManejadorLlegaAlLlamador();
    void consultaSinProcesoNoCambiaLaBandera();
    void reporteDeOrdenEnPdf();
    void reportesQueNoExistenSonError();
};

void TstControlProcesos::clasesRegistradasPorNombre()
{
    registraClasesAnfitrion();
    const ClassRegistry &r = ClassRegistry::instance();
    std::unique_ptr<QObject> ad(r.create(QStringLiteral("AccesoDatos")));
    std::unique_ptr<QObject> cs(r.create(QStringLiteral("ConstructorSql")));
    std::unique_ptr<QObject> cp(r.create(QStringLiteral("ControlProcesos")));
    QVERIFY(qobject_cast<AccesoDatosAnfitrion *>(ad.get()));
    QVERIFY(qobject_cast<ConstructorSqlAnfitrion *>(cs.get()));
    QVERIFY(qobject_cast<ControlProcesosAnfitrion *>(cp.get()));
}

void TstControlProcesos::claveSinManejadorDejaSeguir()
{
    ControlProcesosAnfitrion cp;
    ArgumentosProceso args;
    args.proceso = kSinManejador;
    QCOMPARE(args.bandera, VTrue);
    cp.IniciaProceso(args);
    QCOMPARE(args.bandera, VFalse);
    VBool bandera = VTrue;
    cp.ConsultaProceso(bandera);
    QCOMPARE(bandera, VFalse);
}

void TstControlProcesos::manejadorDecideElVeto_data()
{
    QTest::addColumn<VBool>("dejaManejador");
    QTest::addColumn<VBool>("consulta");
    QTest::newRow("veta") << VTrue << VTrue;
    QTest::newRow("deja seguir") << VFalse << VFalse;
    QTest::newRow("uno de otro lenguaje") << VBool(1) << VBool(1);
}

void TstControlProcesos::manejadorDecideElVeto()
{
    QFETCH(VBool, dejaManejador);
    QFETCH(VBool, consulta);
    ponManejadorProceso(kPrueba,
                        [dejaManejador](ArgumentosProceso &a) { a.bandera = dejaManejador; });
    ControlProcesosAnfitrion cp;
    ArgumentosProceso args;
    args.proceso = kPrueba;
    cp.IniciaProceso(args);
    VBool bandera = consulta == VTrue ? VFalse : VTrue; // anything else than expected
    cp.ConsultaProceso(bandera);
    QCOMPARE(bandera, consulta);

    // The next process's decision replaces the earlier one.
    ArgumentosProceso otro;
    otro.proceso = kSinManejador;
    cp.IniciaProceso(otro);
    cp.ConsultaProceso(bandera);
    QCOMPARE(bandera, VFalse);
}

void TstControlProcesos::manejadorRecibeYCambiaArgumentos()
{
    QObject ventana, documento;
    ArgumentosProceso visto;
    ponManejadorProceso(kPrueba, [&](ArgumentosProceso &a) {
        visto = a;
        a.objeto = &documento; // a handler may hand back another object
        a.numero = 7;
    });
    ControlProcesosAnfitrion cp;
    ArgumentosProceso args;
    args.proceso = kPrueba;
    args.objeto = &ventana;
    cp.IniciaProceso(args);
    QCOMPARE(visto.proceso, kPrueba);
    QCOMPARE(visto.objeto.data(), &ventana);
    QCOMPARE(visto.bandera, VTrue);
    QVERIFY(visto.textoNulo.isNull());
    QVERIFY(!visto.texto.isNull() && visto.texto.isEmpty());
    QCOMPARE(args.objeto.data(), &documento);
    QCOMPARE(args.numero, 7);
}

void TstControlProcesos::errorDelManejadorLlegaAlLlamador()
{
    ponManejadorProceso(kPrueba, [](ArgumentosProceso &a) {
        a.bandera = VFalse;
        throw Error(QStringLiteral("El proceso falló a medias."));
    });
    ControlProcesosAnfitrion cp;
    ArgumentosProceso args;
    args.proceso = kPrueba;
    try {
        cp.IniciaProceso(args);
        QFAIL("IniciaProceso debió fallar");
    } catch (const Error &e) {
        QCOMPARE(e.description(), QStringLiteral("El proceso falló a medias."));
    }
    // A failed process never lets the caller go ahead.
    VBool bandera = VFalse;
    cp.ConsultaProceso(bandera);
    QCOMPARE(bandera, VTrue);
}

void TstControlProcesos::consultaSinProcesoNoCambiaLaBandera()
{
    ControlProcesosAnfitrion cp;
    for (VBool inicial : {VTrue, VFalse}) {
        VBool bandera = inicial;
        cp.ConsultaProceso(bandera);
        QCOMPARE(bandera, inicial);
    }
}

void TstControlProcesos::reporteDeOrdenEnPdf()
{
    BaseDePrueba base(false);
    base.ejecuta("INSERT INTO prods (articulo, descrip) VALUES ('K1', 'Kit de prueba')");
    base.ejecuta("INSERT INTO op (op, estado, f_emision, almacen, observ) VALUES "
                 "(120, 'PE', '2024-05-02', 1, 'Urgente')");
    for (int i = 1; i <= 120; ++i) // more lines than one page holds
        base.ejecuta(QStringLiteral("INSERT INTO oppart (id_entrada, op, articulo, cantidad, "
                                    "precio) VALUES (%1, 120, 'K1', %1, 1.5)")
                         .arg(i));
    QTemporaryDir dir;
    ponCarpetaReportes(dir.path());
    auto guion = InteraccionGuionada::instala();

    ControlProcesosAnfitrion cp;
    QWidget ventana;
    cp.ImprimeReporte(QStringLiteral("ORDENP"), 120, base.ambiente(), &ventana);

    const QString archivo = cp.ultimoReporte();
    QVERIFY(archivo.startsWith(dir.path()));
    QFile f(archivo);
    QVERIFY(f.open(QIODevice::ReadOnly));
    const QByteArray pdf = f.readAll();
    QVERIFY(pdf.startsWith("%PDF-"));
    // One page object per page: 120 lines do not fit on one.
    static const QRegularExpression pagina(QStringLiteral("/Type\\s*/Page(?!s)"));
    QVERIFY(QString::fromLatin1(pdf).count(pagina) >= 2);

    QCOMPARE(guion->mensajes().size(), 1);
    QCOMPARE(guion->mensajes().at(0).estilo, 64);
    QVERIFY(guion->mensajes().at(0).texto.contains(archivo));
}

void TstControlProcesos::reportesQueNoExistenSonError()
{
    BaseDePrueba base(false);
    QTemporaryDir dir;
    ponCarpetaReportes(dir.path());
    auto guion = InteraccionGuionada::instala();
    ControlProcesosAnfitrion cp;
    try {
        cp.ImprimeReporte(QStringLiteral("NOEXISTE"), 1, base.ambiente(), nullptr);
        QFAIL("un reporte desconocido debió fallar");
    } catch (const Error &e) {
        QVERIFY(e.description().contains(QStringLiteral("NOEXISTE")));
        QVERIFY(e.description().contains(QStringLiteral("reporte")));
    }
    // An order that is not there: an error, and no file is left behind.
    QVERIFY_THROWS_EXCEPTION(
        Error, cp.ImprimeReporte(QStringLiteral("ORDENP"), 999, base.ambiente(), nullptr));
    QVERIFY(QDir(dir.path()).entryList(QDir::Files).isEmpty());
    QVERIFY(guion->mensajes().isEmpty());
}

QTEST_MAIN(TstControlProcesos)
#include "tst_controlprocesos.moc"
