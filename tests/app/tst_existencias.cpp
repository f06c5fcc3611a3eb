// Stock through the executable's doors: a station that allows negative stock
// posts and warns; a delivery posts as much as it takes out; an order's
// material needs, as text and as CSV. What a batch operation may take out is
// proved by the host's stock rules, the movements each one posts over a real
// database.

#include "tests/support/BaseDePrueba.h"
#include "tests/support/Corrida.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace zuvi;
using pruebas::corre;
using pruebas::Corrida;

// What came in less what went out (0 when both weigh the same), and the unit
// cost SOPORTE was posted at.
const char *const kBalance =
    "SELECT ROUND(SUM(CASE WHEN tipo = 'E' THEN importe ELSE -importe END), 2), "
    "ROUND(MAX(CASE WHEN articulo = 'SOPORTE' THEN costo END), 2) FROM movimientos";

class TstExistencias : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;

private slots:
    void initTestCase()
    {
        qputenv("ZUVI_REGISTRO", QFile::encodeName(m_dir.filePath("componentes.ini")));
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }

    void puertas()
    {
        const char *const torn10 =
            "UPDATE existencias SET cantidad = 10 WHERE articulo = 'TORN-01'";
        const char *const cuantos = "SELECT COUNT(*) FROM movimientos";
        const struct
        {
            const char *prepara, *args;
            int codigo;
            const char *dice; // in the output or the errors, | between texts
            const char *consulta, *resultado;
        } casos[] = {
            {"UPDATE estaciones SET existencianegativa = 1", "ensamble SOPORTE 3 5000", 0,
             "Aviso|TORN-01|faltan 15,000|terminado",
             "SELECT cantidad FROM existencias WHERE articulo = 'TORN-01'", "-15000"},
            {"", "entrega 1", 0, "entregado", kBalance, "0 15.2"},
            {torn10, "materiales 2 --csv", 0,
             "articulo,descripcion,almacen,nombre_almacen,necesario,existencia,faltante\n"
             "TORN-01,\"Tornillo 1/4\"\"\",1,Almacén general,50,10,40\n"
             "TUER-01,\"Tuerca 1/4\"\"\",1,Almacén general,50,5000,0\n",
             cuantos, "0"},
            {"", "materiales 1", 0,
             "Materiales de la orden 1: hay existencias de todo.|SOPORTE|Soporte metálico", cuantos,
             "0"},
        };
        for (const auto &caso : casos) {
            pruebas::BaseDePrueba base;
            if (*caso.prepara)
                base.ejecuta(caso.prepara);
            const Corrida c =
                corre(QStringList{"--base", base.url()} + QString::fromUtf8(caso.args).split(' '));
            QVERIFY2(c.codigo == caso.codigo, c.dice());
            for (const QString &texto : QString::fromUtf8(caso.dice).split('|'))
                QVERIFY2((c.salida + c.error).contains(texto), c.dice());
            QCOMPARE(base.filas(caso.consulta).join('|'), QString::fromUtf8(caso.resultado));
        }
    }
};

QTEST_MAIN(TstExistencias)
#include "tst_existencias.moc"
