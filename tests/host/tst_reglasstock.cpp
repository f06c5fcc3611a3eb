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

private slots:
    void initTestCase() { pruebas::preparaRegistro(); }

    void existencias()
    {
        const QVariantList cincoMil{"SOPORTE", 3, 5000, 0}, doscientos{"SOPORTE", 3, 200, 0},
            doscientosUno{"SOPORTE", 3, 201, 0}, desarma{"SOPORTE", 12.5, 3, 0}, orden1{1};
        const char *sinSoporte = "UPDATE existencias SET cantidad = 0 WHERE articulo = 'SOPORTE'";
        const char *sinAlmacen1 = "UPDATE existencias SET cantidad = 0 WHERE almacen = 1";
        const struct
        {
            const char *prepara, *metodo;
            QVariantList args;
            bool negativos;
            int desenlace;          // 0 goes ahead, 1 warns, 2 refused
            const char *dice;       // '|' between the parts
            const char *calla = ""; // not named: it is not short
        } casos[] = {
            {"", "Ensamble", cincoMil, false, 2,
             "ensamblar 5,000 SOPORTE (Soporte metálico) en el almacén 3|TORN-01 (Tornillo 1/4\") "
             "en el almacén 1 (Almacén general): se necesitan 20,000, hay 5,000, faltan 15,000|"
             "TUER-01|PLAC-01 (Placa de acero 10x10) en el almacén 1 (Almacén general): se "
             "necesitan 5,000, hay 200, faltan 4,800"},
            {"", "Ensamble", cincoMil, true, 1, "Aviso|faltan 15,000"},
            {"", "Ensamble", doscientos, false, 0, ""},
            {"", "Ensamble", doscientosUno, false, 2, "necesitan 201, hay 200, faltan 1",
             "TORN-01"},
            {"", "Desensamble", desarma, false, 2,
             "SOPORTE (Soporte metálico) en el almacén 3 (Producto terminado): se necesitan 12.5, "
             "hay 12, faltan 0.5"},
            // Line 1 makes the SOPORTE that line 2 (REPISA) takes.
            {sinSoporte, "EntregaProductoTerminado", orden1, false, 0, ""},
            {sinAlmacen1, "EntregaProductoTerminado", orden1, false, 2,
             "entregar la orden de producción 1|TORN-01|TUER-01|PLAC-01|TAB-01|PINT-01", "SOPORTE"},
        };
        for (const auto &caso : casos) {
            pruebas::BaseDePrueba base;
            if (*caso.prepara)
                base.ejecuta(caso.prepara);
            base.ejecuta(QStringLiteral("UPDATE estaciones SET existencianegativa = %1")
                             .arg(caso.negativos ? 1 : 0));
            const anfitrion::AjustesEstacion ajustes = anfitrion::ajustesEstacion(base.ambiente());
            QCOMPARE(ajustes.existenciaNegativa, caso.negativos);
            QString texto;
            int visto = 0;
            try {
                texto = anfitrion::compruebaExistencias(
                    base.conexion(), ajustes, QString::fromLatin1(caso.metodo), caso.args);
                visto = texto.isEmpty() ? 0 : 1;
            } catch (const anfitrion::Faltante &e) {
                texto = e.description();
                visto = 2;
            }
            QVERIFY2(visto == caso.desenlace, qPrintable(texto));
            for (const QString &d : QString::fromUtf8(caso.dice).split('|', Qt::SkipEmptyParts))
                QVERIFY2(texto.contains(d), qPrintable(texto));
            QVERIFY2(!*caso.calla || !texto.contains(QString::fromUtf8(caso.calla)),
                     qPrintable(texto));
        }
    }

    // Movements posted through one document: "h" is a new header, then type,
    // article, quantity and the cost handed over. Each row as posted: article,
    // unit cost, amount.
    void valuacion()
    {
        const struct
        {
            const char *pasos, *asentado;
        } casos[] = {
            // assembly: the kit is worth its components
            {"h|S TORN-01 12 0.5|S TUER-01 12 0.3|S PLAC-01 3 12|E SOPORTE 3 136.8",
             "TORN-01 0.5 6|TUER-01 0.3 3.6|PLAC-01 12 36|SOPORTE 15.2 45.6"},
            {"h|E TORN-01 8 0.5|E PLAC-01 2 12|S SOPORTE 2 999",
             "TORN-01 0.5 4|PLAC-01 12 24|SOPORTE 14 28"},
            // one inside another
            {"h|E TAB-01 1 45|h|E TORN-01 4 0.5|S SOPORTE 1 0|E PINT-01 1 80|S REPISA 1 0",
             "TAB-01 45 45|TORN-01 0.5 2|SOPORTE 2 2|PINT-01 80 80|REPISA 125 125"},
            // one after another
            {"h|S TORN-01 4 0.5|E SOPORTE 1 0|h|S TUER-01 2 0.3|E SOPORTE 2 0",
             "TORN-01 0.5 2|SOPORTE 2 2|TUER-01 0.3 0.6|SOPORTE 0.3 0.6"},
            {"h|S TORN-01 0 0.5|E SOPORTE 0 7", "TORN-01 0.5 0|SOPORTE 0 0"},
        };
        for (const auto &caso : casos) {
            pruebas::BaseDePrueba base;
            anfitrion::DocumentoInventarioAnfitrion doc;
            for (const QString &paso : QString::fromLatin1(caso.pasos).split('|')) {
                const QStringList p = paso.split(' ');
                if (p.first() == "h") {
                    doc.PonAmbiente(base.ambiente());
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
            QCOMPARE(base.filas("SELECT articulo, ROUND(costo, 6), ROUND(importe, 6) FROM "
                                "movimientos ORDER BY id")
                         .join('|'),
                     QString::fromLatin1(caso.asentado));
        }
    }

    // A line's quantity typed in the grid: refused unless above zero, the
    // stored one kept and shown again in the cell.
    void cantidadDePartida()
    {
        const struct
        {
            const char *tipo;
            QVariant valor;
            const char *guardada;
        } casos[] = {
            {"UPDATE", 0.0, "10"}, {"UPDATE", -3.0, "10"}, {"UPDATE", "abc", "10"},
            {"UPDATE", 4.0, "4"},  {"INSERT", 0.0, "10"},
        };
        for (const auto &caso : casos) {
            pruebas::BaseDePrueba base;
            const auto ui = pruebas::InteraccionGuionada::instala();
            const QString tipo = QString::fromLatin1(caso.tipo);
            const QString guardada = QString::fromLatin1(caso.guardada);
            QWidget ventana;
            auto *rejilla = new QTableWidget(2, 8, &ventana);
            rejilla->setObjectName("fg2");
            rejilla->setItem(0, 1, new QTableWidgetItem(caso.valor.toString()));
            rejilla->setItem(0, 5, new QTableWidgetItem("1"));
            anfitrion::ConstructorSqlAnfitrion sql;
            sql.PonConexion(base.conexion());
            sql.Tipo(tipo);
            if (tipo == "INSERT")
                sql.AgregaCampo("oppart", "id_entrada", 99);
            sql.AgregaCampo("oppart", "cantidad", caso.valor);
            sql.Condicion("id_entrada = 1");
            sql.Genera("oppart");
            bool rechazada = false;
            try {
                sql.Ejecuta();
            } catch (const anfitrion::Rechazo &e) {
                rechazada = e.description() == "La cantidad debe ser mayor que cero.";
            }
            QCOMPARE(rechazada, tipo == "INSERT");
            QCOMPARE(base.filas("SELECT cantidad FROM oppart WHERE id_entrada IN (1, 99)"),
                     QStringList{guardada});
            if (tipo == "UPDATE") // the cell shows the quantity kept
                QCOMPARE(rejilla->item(0, 1)->text(), guardada);
            const bool avisa = tipo == "UPDATE" && guardada == "10";
            QCOMPARE(ui->textosMensajes(),
                     avisa ? QStringList{"La cantidad debe ser mayor que cero. La línea de "
                                         "SOPORTE de la orden 1 conserva su cantidad 10."}
                           : QStringList());
        }
    }
};

QTEST_MAIN(TstReglasStock)
#include "tst_reglasstock.moc"
