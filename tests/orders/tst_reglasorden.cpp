// The host's own rules at the editor's load and at each new line, with the
// editor driven as a person drives it: a changed order keeps its purchase
// order and amount; a line that is not a kit is refused unless the station
// allows it; a quantity of 0 typed in the grid is not written.

#include "BancoEditor.h"

using namespace zuvi;
using namespace zuvi::pruebas;

class TstReglasOrden : public QObject, public BancoEditor
{
    Q_OBJECT

    anfitrion::ManejadorProceso m_carga, m_partida;

    // The editor with the host's own handlers at its load and its new lines.
    QPointer<frmOp> abre(qint32 op)
    {
        anfitrion::ponManejadorProceso("Op001", m_carga);
        anfitrion::ponManejadorProceso("Op005", m_partida);
        return BancoEditor::abre(op);
    }

private Q_SLOTS:
    void initTestCase()
    {
        preparaClase();
        m_carga = anfitrion::manejadorProceso("Op001");
        m_partida = anfitrion::manejadorProceso("Op005");
        QVERIFY(m_carga && m_partida);
    }
    void init() { prepara(); }
    void cleanup() { limpia(); }

    // Demo order 1 changed and finished: 4501 and 710 stay; a new order starts blank.
    void ordenModificadaConservaCompraEImporte()
    {
        auto f = abre(1);
        QVERIFY(f);
        QCOMPARE(f->txtFields(0)->text() + ' ' + f->txtFields(11)->text(), "4501 710");
        ui->respuestas({true});
        f->Command5->click();
        QTRY_VERIFY(f.isNull());
        QCOMPARE(base->filas("SELECT ordencompra, importe, estado FROM op WHERE op = 1"),
                 QStringList{"4501 710 CO"});
        auto n = abre(0);
        QVERIFY(n);
        QCOMPARE(n->txtFields(0)->text() + n->txtFields(11)->text(), QString());
    }

    void lineaQueNoEsKit_data()
    {
        QTest::addColumn<QString>("articulo");
        QTest::addColumn<int>("sinKit"); // the station's setting
        QTest::addColumn<int>("lineas");
        QTest::newRow("materia prima") << "TORN-01" << 0 << 2;
        QTest::newRow("kit") << "PAQ-TORN" << 0 << 3;
        QTest::newRow("materia prima, la estación lo permite") << "TORN-01" << 1 << 3;
    }
    void lineaQueNoEsKit()
    {
        QFETCH(QString, articulo);
        QFETCH(int, sinKit);
        QFETCH(int, lineas);
        base->ejecuta(QStringLiteral("UPDATE estaciones SET lineassinkit = %1").arg(sinKit));
        auto f = abre(1);
        QVERIFY(f);
        f->txtFields(4)->setFocus();
        teclea(f, articulo + "⏎5⏎");
        QCOMPARE(partidas(1).size(), lineas);
        const QStringList dicho = ui->textosMensajes();
        QCOMPARE(dicho, lineas == 2 ? QStringList{articulo + " no es un kit: una orden de "
                                                             "producción sólo lleva artículos que "
                                                             "se fabrican"}
                                    : QStringList());
    }

    // 0 typed over the quantity of line 1: not written, the cell shows 10 again.
    void cantidadCeroEnLaRejilla()
    {
        auto f = abre(1);
        QVERIFY(f);
        f->fg2->setFocus();
        f->fg2->SetRow(1);
        f->fg2->SetCol(1);
        QTest::keyClick(f->windowHandle(), '0');
        QVERIFY(f->txtEdit->isVisible());
        QTest::keyClick(f->windowHandle(), Qt::Key_Return);
        QCOMPARE(f->fg2->TextMatrix(1, 1), QStringLiteral("10"));
        QCOMPARE(base->escalar("SELECT cantidad FROM oppart WHERE id_entrada = 1").toDouble(),
                 10.0);
        QVERIFY2(ui->reportes().isEmpty(), qPrintable(ui->reportes().join('\n')));
        QCOMPARE(ui->textosMensajes(), QStringList{"La cantidad debe ser mayor que cero. La línea "
                                                   "de SOPORTE de la orden 1 conserva su "
                                                   "cantidad 10."});
    }
};

QTEST_MAIN(TstReglasOrden)
#include "tst_reglasorden.moc"
