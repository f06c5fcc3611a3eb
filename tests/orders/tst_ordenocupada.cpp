// A busy order across stations: a second station (another process) is refused
// with the holder's name and may still view the order; the main window shows
// who holds an order, opens the editor with itself as Parent, and clears a
// stale busy mark after a question that names the holder.

#include "app/Componente.h"
#include "app/VentanaPrincipal.h"
#include "orders/frmOp.h"
#include "tests/support/BaseDePrueba.h"
#include "tests/support/InteraccionGuionada.h"

#include <QProcess>
#include <QtTest>
#include <QtWidgets>

using namespace zuvi;

namespace {

struct Corrida
{
    int codigo = -1;
    QString salida, errores;
};

Corrida corre(const QStringList &args)
{
    QProcess p;
    p.start(ZUVI_BIN_DIR "/zuvi-produccion", args);
    p.closeWriteChannel();
    const bool normal = p.waitForFinished(180000) && p.exitStatus() == QProcess::NormalExit;
    return {normal ? p.exitCode() : -1, QString::fromUtf8(p.readAllStandardOutput()),
            QString::fromUtf8(p.readAllStandardError())};
}

frmOp *editor()
{
    for (QWidget *w : QApplication::topLevelWidgets())
        if (auto *f = qobject_cast<frmOp *>(w); f && !f->descargada())
            return f;
    return nullptr;
}

} // namespace

class TstOrdenOcupada : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        pruebas::preparaRegistro();
        QCOMPARE(corre({"registra"}).codigo, 0);
    }

    void segundaEstacionRechazada()
    {
        pruebas::BaseDePrueba base;
        auto guion = pruebas::InteraccionGuionada::instala();
        auto produccion = app::creaProduccion(base.ambiente());
        QMetaObject::invokeMethod(produccion.get(), "ModificaOp", Q_ARG(qint32, 1));
        QPointer<frmOp> f = editor();
        QVERIFY(f);
        QCOMPARE(base.escalar("SELECT ocupado FROM op WHERE op = 1").toInt(), 1);

        const QString texto =
            [&](int n) {
                return base
                    .escalar(QStringLiteral("SELECT texto FROM mensajes WHERE numero = %1").arg(n))
                    .toString();
            }(756) +
            " ADMIN " + base.escalar("SELECT texto FROM mensajes WHERE numero = 76").toString();
        const Corrida otra =
            corre({"invoca", "ModificaOp", "1", "--base", base.url(), "--usuario", "OTRO"});
        QVERIFY2(otra.errores.contains(texto), qPrintable(otra.errores));
        QVERIFY(!otra.errores.contains("Sin pantalla")); // no window was opened
        const Corrida vista =
            corre({"invoca", "ConsultaOp", "1", "--base", base.url(), "--usuario", "OTRO"});
        QCOMPARE(vista.codigo, 0);
        QVERIFY2(vista.errores.contains("Sin pantalla"), qPrintable(vista.errores));
        // The viewer neither marked nor released the order.
        QCOMPARE(base.escalar("SELECT ocupado FROM op WHERE op = 1").toInt(), 1);
        QVERIFY(f->descarga());
        QCOMPARE(base.escalar("SELECT ocupado FROM op WHERE op = 1").toInt(), 0);
    }

    void ventanaPrincipalLiberaOrdenOcupada()
    {
        pruebas::BaseDePrueba base;
        auto guion = pruebas::InteraccionGuionada::instala();
        auto produccion = app::creaProduccion(base.ambiente());
        app::VentanaPrincipal ventana(base.sesion(), produccion.get());
        auto *lista = ventana.findChild<QTableView *>("lstOrdenes");
        // Who holds an order, by its number (the newest is on top).
        auto ocupada = [lista](int op) {
            const QAbstractItemModel *m = lista->model();
            for (int f = 0; f < m->rowCount(); ++f)
                if (m->index(f, 0).data().toInt() == op)
                    return m->index(f, 7).data().toString();
            return QStringLiteral("(no está)");
        };
        auto *libera = ventana.findChild<QAction *>("actLiberar");
        QVERIFY(lista && libera);
        base.ejecuta("UPDATE op SET ocupado = 1, usuario = 'LAURA ' WHERE op = 2");
        ventana.actualiza();
        QCOMPARE(ocupada(2), QStringLiteral("LAURA"));
        QVERIFY(ocupada(1).isEmpty());

        QVERIFY(ventana.seleccionaOrden(1));
        QVERIFY(!libera->isEnabled());
        QVERIFY(ventana.seleccionaOrden(2));
        QVERIFY(libera->isEnabled());
        guion->respuestas({false, true});
        libera->trigger(); // answered no
        QCOMPARE(base.escalar("SELECT ocupado FROM op WHERE op = 2").toInt(), 1);
        libera->trigger();
        QCOMPARE(base.escalar("SELECT ocupado FROM op WHERE op = 2").toInt(), 0);
        QCOMPARE(guion->preguntas().size(), 2);
        QVERIFY(guion->preguntas().first().contains("LAURA"));
        QVERIFY(ocupada(2).isEmpty() && !libera->isEnabled());

        // Enter on the list opens the selected order; the editor's Parent is the window.
        QVERIFY(ventana.seleccionaOrden(1));
        ventana.show();
        QVERIFY(QTest::qWaitForWindowActive(&ventana));
        lista->setFocus();
        QTest::keyClick(ventana.windowHandle(), Qt::Key_Return);
        QPointer<frmOp> f = editor();
        QVERIFY(f);
        QCOMPARE(f->Modo, QStringLiteral("MODIFICACION"));
        QCOMPARE(f->Parent.data(), &ventana);
        ventana.actualiza();
        QCOMPARE(ocupada(1), QStringLiteral("ADMIN"));
        QVERIFY(f->descarga());
        QTRY_VERIFY(ocupada(1).isEmpty()); // SetFocus read the order again
    }
};

QTEST_MAIN(TstOrdenOcupada)
#include "tst_ordenocupada.moc"
