// The host's stock rules on the demo data: what a batch operation may take
// out of each warehouse, how the movement document values a kit, and the
// order-line quantity the statement builder refuses.

#include "host/servicios/ConstructorSqlAnfitrion.h"
#include "host/servicios/DocumentoInventarioAnfitrion.h"
#include "host/servicios/Existencias.h"
#include "tests/support/BaseDePrueba.h"
#include "tests/support/InteraccionGuionada.h"

#include <QTableWidget>
#include <QtTest>

using namespace zuvi;

class TstReglasStock : public QObject
{
    Q_OBJECT

    std::unique_ptr<pruebas::BaseDePrueba> m_base;
    std::shared_ptr<pruebas::InteraccionGuionada> m_ui;

private slots:
    void initTestCase() { pruebas::preparaRegistro(); }
    void init()
    {
        m_base = std::make_unique<pruebas::BaseDePrueba>();
        m_ui = pruebas::InteraccionGuionada::instala();
    }
    void cleanup() { m_base.reset(); }

    void existencias_data()
    {
        QTest::addColumn<QString>("prepara");
        QTest::addColumn<QString>("metodo");
        QTest::addColumn<QVariantList>("args");
        QTest::addColumn<bool>("negativos");
        QTest::addColumn<int>("desenlace"); // 0 goes ahead, 1 warns, 2 refused
        QTest::addColumn<QStringList>("dice");
        QTest::addColumn<QString>("calla"); // not named: it is not short
        const QVariantList cincoMil{"SOPORTE", 3, 5000, 0};
        QTest::newRow("ensamble sin componentes")
            << ""
            << "Ensamble" << cincoMil << false << 2
            << QStringList{"ensamblar 5,000 SOPORTE (Soporte metálico) en el almacén 3",
                           "TORN-01 (Tornillo 1/4\") en el almacén 1 (Almacén general): se "
                           "necesitan 20,000, hay 5,000, faltan 15,000",
                           "TUER-01",
                           "PLAC-01 (Placa de acero 10x10) en el almacén 1 (Almacén "
                           "general): se necesitan 5,000, hay 200, faltan 4,800"}
            << "";
        QTest::newRow("ensamble permitido")
            << ""
            << "Ensamble" << cincoMil << true << 1 << QStringList{"Aviso", "faltan 15,000"} << "";
        QTest::newRow("ensamble justo") << ""
                                        << "Ensamble" << QVariantList{"SOPORTE", 3, 200, 0} << false
                                        << 0 << QStringList() << "";
        QTest::newRow("ensamble uno de más")
            << ""
            << "Ensamble" << QVariantList{"SOPORTE", 3, 201, 0} << false << 2
            << QStringList{"se necesitan 201, hay 200, faltan 1"} << "TORN-01";
        QTest::newRow("desensamble de más")
            << ""
            << "Desensamble" << QVariantList{"SOPORTE", 12.5, 3, 0} << false << 2
            << QStringList{"SOPORTE (Soporte metálico) en el almacén 3 (Producto terminado): se "
                           "necesitan 12.5, hay 12, faltan 0.5"}
            << "";
        // Line 1 makes the SOPORTE that line 2 (REPISA) takes.
        QTest::newRow("entrega con lo que hace la orden")
            << "UPDATE existencias SET cantidad = 0 WHERE articulo = 'SOPORTE'"
            << "EntregaProductoTerminado" << QVariantList{1} << false << 0 << QStringList() << "";
        QTest::newRow("entrega con todo lo que falta")
            << "UPDATE existencias SET cantidad = 0 WHERE almacen = 1"
            << "EntregaProductoTerminado" << QVariantList{1} << false << 2
            << QStringList{"entregar la orden de producción 1",
                           "TORN-01",
                           "TUER-01",
                           "PLAC-01",
                           "TAB-01",
                           "PINT-01"}
            << "SOPORTE";
    }
    void existencias()
    {
        QFETCH(QString, prepara);
        QFETCH(QString, metodo);
        QFETCH(QVariantList, args);
        QFETCH(bool, negativos);
        QFETCH(int, desenlace);
        QFETCH(QStringList, dice);
        QFETCH(QString, calla);
        if (!prepara.isEmpty())
            m_base->ejecuta(prepara);
        m_base->ejecuta(
            QStringLiteral("UPDATE estaciones SET existencianegativa = %1").arg(negativos ? 1 : 0));
        const anfitrion::AjustesEstacion ajustes = anfitrion::ajustesEstacion(m_base->ambiente());
        QCOMPARE(ajustes.existenciaNegativa, negativos);
        QString texto;
        int visto = 0;
        try {
            texto = anfitrion::compruebaExistencias(m_base->conexion(), ajustes, metodo, args);
            visto = texto.isEmpty() ? 0 : 1;
        } catch (const anfitrion::Faltante &e) {
            texto = e.description();
            visto = 2;
        }
        QVERIFY2(visto == desenlace, qPrintable(texto));
        for (const QString &d : dice)
            QVERIFY2(texto.contains(d), qPrintable(texto));
        QVERIFY2(calla.isEmpty() || !texto.contains(calla), qPrintable(texto));
    }

    // Movements posted through one document: "h" is a new header, then type,
    // article, quantity and the cost handed over. Each row as posted: article,
    // unit cost, amount.
    void valuacion_data()
    {
        QTest::addColumn<QString>("pasos");
        QTest::addColumn<QString>("asentado");
        QTest::newRow("ensamble: el kit vale sus componentes")
            << "h|S TORN-01 12 0.5|S TUER-01 12 0.3|S PLAC-01 3 12|E SOPORTE 3 136.8"
            << "TORN-01 0.5 6|TUER-01 0.3 3.6|PLAC-01 12 36|SOPORTE 15.2 45.6";
        QTest::newRow("desensamble") << "h|E TORN-01 8 0.5|E PLAC-01 2 12|S SOPORTE 2 999"
                                     << "TORN-01 0.5 4|PLAC-01 12 24|SOPORTE 14 28";
        QTest::newRow("uno dentro de otro")
            << "h|E TAB-01 1 45|h|E TORN-01 4 0.5|S SOPORTE 1 0|E PINT-01 1 80|S REPISA 1 0"
            << "TAB-01 45 45|TORN-01 0.5 2|SOPORTE 2 2|PINT-01 80 80|REPISA 125 125";
        QTest::newRow("uno tras otro")
            << "h|S TORN-01 4 0.5|E SOPORTE 1 0|h|S TUER-01 2 0.3|E SOPORTE 2 0"
            << "TORN-01 0.5 2|SOPORTE 2 2|TUER-01 0.3 0.6|SOPORTE 0.3 0.6";
        QTest::newRow("cantidad cero") << "h|S TORN-01 0 0.5|E SOPORTE 0 7"
                                       << "TORN-01 0.5 0|SOPORTE 0 0";
    }
    void valuacion()
    {
        QFETCH(QString, pasos);
        QFETCH(QString, asentado);
        anfitrion::DocumentoInventarioAnfitrion doc;
        for (const QString &paso : pasos.split('|')) {
            const QStringList p = paso.split(' ');
            if (p.first() == "h") {
                doc.PonAmbiente(m_base->ambiente());
                continue;
            }
            doc.PonTipo(p.at(0));
            doc.PonArticulo(p.at(1));
            doc.PonAlmacen(1);
            doc.PonCantidad(p.at(2).toDouble());
            doc.PonCosto(p.at(3).toDouble());
            qint32 numero = 0;
            doc.AplicaMovimiento(numero);
        }
        QCOMPARE(m_base
                     ->filas("SELECT articulo, ROUND(costo, 6), ROUND(importe, 6) FROM "
                             "movimientos ORDER BY id")
                     .join('|'),
                 asentado);
    }

    // A line's quantity typed in the grid: refused unless above zero, the
    // stored one kept and shown again in the cell.
    void cantidadDePartida_data()
    {
        QTest::addColumn<QString>("tipo");
        QTest::addColumn<QVariant>("valor");
        QTest::addColumn<QString>("guardada");
        QTest::addColumn<QString>("celda");
        QTest::newRow("cero") << "UPDATE" << QVariant(0.0) << "10"
                              << "10";
        QTest::newRow("negativa") << "UPDATE" << QVariant(-3.0) << "10"
                                  << "10";
        QTest::newRow("no es número") << "UPDATE" << QVariant("abc") << "10"
                                      << "10";
        QTest::newRow("válida") << "UPDATE" << QVariant(4.0) << "4"
                                << "4";
        QTest::newRow("alta en cero") << "INSERT" << QVariant(0.0) << "10"
                                      << "";
    }
    void cantidadDePartida()
    {
        QFETCH(QString, tipo);
        QFETCH(QVariant, valor);
        QFETCH(QString, guardada);
        QFETCH(QString, celda);
        QWidget ventana;
        auto *rejilla = new QTableWidget(2, 8, &ventana);
        rejilla->setObjectName("fg2");
        rejilla->setItem(0, 1, new QTableWidgetItem(valor.toString()));
        rejilla->setItem(0, 5, new QTableWidgetItem("1"));
        anfitrion::ConstructorSqlAnfitrion sql;
        sql.PonConexion(m_base->conexion());
        sql.Tipo(tipo);
        if (tipo == "INSERT")
            sql.AgregaCampo("oppart", "id_entrada", 99);
        sql.AgregaCampo("oppart", "cantidad", valor);
        sql.Condicion("id_entrada = 1");
        sql.Genera("oppart");
        bool rechazada = false;
        try {
            sql.Ejecuta();
        } catch (const anfitrion::Rechazo &e) {
            rechazada = e.description() == "La cantidad debe ser mayor que cero.";
        }
        QCOMPARE(rechazada, tipo == "INSERT");
        QCOMPARE(m_base->filas("SELECT cantidad FROM oppart WHERE id_entrada IN (1, 99)"),
                 QStringList{guardada});
        if (!celda.isEmpty())
            QCOMPARE(rejilla->item(0, 1)->text(), celda);
        const bool avisa = tipo == "UPDATE" && guardada == "10";
        QCOMPARE(m_ui->textosMensajes(),
                 avisa ? QStringList{"La cantidad debe ser mayor que cero. La línea de SOPORTE "
                                     "de la orden 1 conserva su cantidad 10."}
                       : QStringList());
    }
};

QTEST_MAIN(TstReglasStock)
#include "tst_reglasstock.moc"
