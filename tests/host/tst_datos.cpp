// A workshop's own data: the CSV files spreadsheets write, the all-or-nothing
// import with every refusal named, the export that reads back, and the
// stock card's running balance. Runs on SQLite and again on MariaDB.

#include "host/datos/Importacion.h"
#include "host/datos/Inventario.h"
#include "host/datos/Reglas.h"
#include "host/servicios/DocumentoInventarioAnfitrion.h"
#include "tests/support/BaseDePrueba.h"
#include "tests/support/Corrida.h"

#include <QTemporaryDir>

#include <QTest>

using namespace zuvi;
using namespace zuvi::anfitrion;
using namespace zuvi::anfitrion::datos;

namespace {

struct Dialecto
{
    const char *nombre;
    QByteArray archivo;
    QStringList esperado; // articulo|descrip|unidad|costo of the rows imported
};

// "Ñandú; 2ª" as Windows-1252 bytes.
const QByteArray kAcentos1252 = QByteArray("\xD1"
                                           "and\xFA; 2\xAA");

const Dialecto kDialectos[] = {
    {"coma, comillas con separador, comillas y salto de línea",
     "articulo,descrip,costo\r\n"
     "A-1,\"Tornillo, 1\"\"\",2.5\r\n"
     "A-2,\"dos\nlíneas\",3\r\n",
     {"A-1|Tornillo, 1\"||2.5", "A-2|dos\nlíneas||3"}},
    {"UTF-8 con marca, punto y coma y coma decimal",
     "\xEF\xBB\xBF"
     "ARTICULO;Descrip;COSTO;unidad\n"
     "A-3;\"Café; molido\";1.234,5;KG\n",
     {"A-3|Café; molido|KG|1234.5"}},
    {"Windows-1252, punto y coma, filas en blanco y orden distinto",
     "unidad;costo;articulo;descrip\r\n"
     ";;;\r\n"
     "PZA;0,75;A-4;\"" +
         kAcentos1252 +
         "\"\r\n"
         "\r\n",
     {"A-4|Ñandú; 2ª|PZA|0.75"}},
    {"tabulador", "articulo\tdescrip\tcosto\nA-5\tcon, coma\t7\n", {"A-5|con, coma||7"}},
};

struct Rechazado
{
    const char *nombre;
    const char *catalogo;
    QByteArray archivo;
    const char *esperado; // "línea columna" of each refusal, in order, ';' between them
};

const Rechazado kRechazados[] = {
    {"encabezado: columna desconocida y falta la clave", "articulos", "descrip,precioo\nx,1\n",
     "1 precioo;1 "},
    {"tres filas malas entre buenas: todas, ninguna escrita", "articulos",
     "articulo,descrip,costo\nN-1,bien,1\nN'2,comilla,1\nN-3,bien,uno\nN-4," +
         QByteArray(101, 'x') + ",1\nN-5,bien,2\n",
     "3 articulo;4 costo;5 descrip"},
    {"clave repetida en el archivo y fila con campos de más", "almacenes",
     "almacen,nombre\n7,uno\n7,otro\n8,tres,cuatro\n", "3 ;4 "},
    {"claves de un artículo que no existe", "claves", "clave,Articulo\nK-1,NO-HAY\n", "2 Articulo"},
    {"kits: componente de sí mismo, rendimiento cero, otro rendimiento", "kits",
     "articulo,Minimo,Componente,Cantidad,Almacen\nTORN-01,1,TORN-01,1,1\nTUER-01,0,TORN-01,1,1\n"
     "PLAC-01,2,TORN-01,1,1\nPLAC-01,3,TUER-01,1,1\nPINT-01,1,TORN-01,1,99\n",
     "2 Componente;3 Minimo;5 Minimo;6 Almacen"},
    {"kits: el componente ya contiene al kit", "kits",
     "articulo,Componente,Cantidad,Almacen\nTORN-01,TUER-01,1,1\nTUER-01,PLAC-01,1,1\n"
     "PLAC-01,TORN-01,1,1\n",
     "2 Componente;3 Componente;4 Componente"},
    {"monedas: dos bases", "monedas", "moneda,Tc,Base\nEUR,20,1\nUSD,17,1\n", "3 "},
};

struct Regla
{
    const char *catalogo; // "recetas": the kit window's header
    QVariantMap fila;
    bool nueva;
    const char *motivo; // a piece of the refusal; empty when the row may be written
};

const Regla kReglas[] = {
    {"articulos", {{"articulo", "A'1"}}, true, "comillas"},
    {"articulos", {{"articulo", "TORN-01"}}, true, "ya existe el artículo"},
    {"articulos", {{"articulo", "TORN-01"}, {"costo", "1,5"}}, false, ""},
    {"claves", {{"clave", "K-9"}, {"Articulo", "NO-HAY"}}, true, "no existe el artículo"},
    {"kits",
     {{"articulo", "SOPORTE"}, {"Componente", "SOPORTE"}, {"Cantidad", 1}, {"Almacen", 1}},
     true,
     "sí mismo"},
    {"kits",
     {{"articulo", "TORN-01"}, {"Componente", "SOPORTE"}, {"Cantidad", 1}, {"Almacen", 1}},
     true,
     "contiene al kit"},
    {"kits",
     {{"articulo", "SOPORTE"}, {"Componente", "TAB-01"}, {"Cantidad", 1}, {"Almacen", 77}},
     true,
     "no existe el almacén"},
    {"recetas", {{"articulo", "SOPORTE"}, {"Minimo", 0}}, false, "mayor que cero"},
    {"monedas", {{"moneda", "XXX"}, {"Tc", 1}, {"Base", 1}}, true, "ya es base"},
};

QString lugar(const Rechazo &r)
{
    return QStringLiteral("%1 %2").arg(r.linea).arg(r.columna);
}

} // namespace

class TstDatos : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void dialectosYCodificaciones()
    {
        for (const Dialecto &d : kDialectos) {
            pruebas::BaseDePrueba base(false);
            const ResultadoImportacion r =
                importa(base.conexion(), *catalogo("articulos"), d.archivo, false);
            QStringList rechazos;
            for (const Rechazo &x : r.rechazos)
                rechazos << x.texto();
            QVERIFY2(r.rechazos.empty() && r.escrito,
                     qPrintable(d.nombre + (u' ' + rechazos.join(u'\n'))));
            QCOMPARE(
                base.filas("SELECT articulo, descrip, unidad, costo FROM prods ORDER BY articulo",
                           u'|'),
                d.esperado);
        }
    }

    void unaFilaMalaYNadaSeEscribe()
    {
        for (const Rechazado &caso : kRechazados) {
            pruebas::BaseDePrueba base(true);
            const Catalogo &c = *catalogo(QString::fromLatin1(caso.catalogo));
            const QString tabla = c.tabla;
            const QStringList antes = base.filas("SELECT * FROM " + tabla);
            const QStringList articulos = base.filas("SELECT * FROM prods");
            const ResultadoImportacion r = importa(base.conexion(), c, caso.archivo, false);
            QStringList lugares;
            for (const Rechazo &x : r.rechazos) {
                lugares << lugar(x);
                QVERIFY2(!x.motivo.isEmpty(), caso.nombre);
            }
            QVERIFY2(lugares.join(u';') == QString::fromUtf8(caso.esperado),
                     qPrintable(QStringLiteral("%1: %2").arg(caso.nombre, lugares.join(u';'))));
            QVERIFY(!r.escrito);
            QCOMPARE(base.filas("SELECT * FROM " + tabla), antes);
            QCOMPARE(base.filas("SELECT * FROM prods"), articulos);
        }
    }

    void simulacionYVueltaDeLaExportacion()
    {
        pruebas::BaseDePrueba base(true);
        const QByteArray nuevo = "articulo;descrip;costo\nZ-1;\"nuevo; con acento é\";1,5\n";
        const ResultadoImportacion simulado =
            importa(base.conexion(), *catalogo("articulos"), nuevo, true);
        QCOMPARE(simulado.insertadas, 1);
        QVERIFY(!simulado.escrito);
        QVERIFY(base.filas("SELECT articulo FROM prods WHERE articulo = 'Z-1'").isEmpty());
        QVERIFY(importa(base.conexion(), *catalogo("articulos"), nuevo, false).escrito);
        for (const Catalogo &c : catalogos()) {
            const QByteArray antes = exporta(base.conexion(), c);
            const ResultadoImportacion r = importa(base.conexion(), c, antes, false);
            QVERIFY2(r.rechazos.empty(), qPrintable(c.nombre));
            QCOMPARE(r.insertadas, 0);
            QCOMPARE(exporta(base.conexion(), c), antes);
        }
    }

    void reglasDeLasVentanasYCostoDelKit()
    {
        pruebas::BaseDePrueba base(true);
        for (const Regla &r : kReglas) {
            const QString nombre = QString::fromLatin1(r.catalogo);
            const Catalogo &c =
                nombre == QLatin1String("recetas") ? cabeceraKits() : *catalogo(nombre);
            const QString motivo = revisaFila(base.conexion(), c, r.fila, r.nueva);
            QVERIFY2(QString::fromUtf8(r.motivo).isEmpty()
                         ? motivo.isEmpty()
                         : motivo.contains(QString::fromUtf8(r.motivo)),
                     qPrintable(nombre + QStringLiteral(": ") + motivo));
        }
        // A backslash in a key is refused where the engine reads it as an escape.
        const QString barra =
            revisaFila(base.conexion(), *catalogo("articulos"), {{"articulo", "A\\1"}}, true);
        QCOMPARE(barra.contains(QStringLiteral("barras invertidas")),
                 base.motor() == Motor::MariaDB);
        // 4 TORN-01 at 0.5, 4 TUER-01 at 0.3 and a PLAC-01 at 12 make one SOPORTE.
        QCOMPARE(costoKit(base.conexion(), QStringLiteral("SOPORTE")), 15.2);
        base.ejecuta("INSERT INTO componen (articulo, Minimo) VALUES ('PINT-01', 4)");
        base.ejecuta("INSERT INTO comppart (articulo, Componente, Cantidad, Almacen) "
                     "VALUES ('PINT-01', 'SOPORTE', 2, 1)");
        QCOMPARE(costoKit(base.conexion(), QStringLiteral("PINT-01")), 7.6);
        // The windows' search: every word, in the code or the name, accents and case ignored.
        const struct
        {
            const char *busqueda;
            QStringList monedas;
        } busquedas[] = {{"DOLARES", {"USD"}},
                         {"eur euros", {"EUR"}},
                         {"eur pesos", {}},
                         {"", {"EUR", "MN", "USD"}}};
        for (const auto &b : busquedas) {
            const QString donde = condicionBusqueda(base.conexion(), {"moneda", "nombre"},
                                                    QString::fromUtf8(b.busqueda));
            QCOMPARE(base.filas("SELECT moneda FROM monedas" +
                                (donde.isEmpty() ? QString() : " WHERE " + donde) +
                                " ORDER BY moneda"),
                     b.monedas);
        }
        // The articles' windows search through the index on SQLite; a "?" or a quote typed is
        // searched as such.
        for (const auto &[busqueda, articulos] :
             {std::pair{"ORNILL", QStringList{"PAQ-TORN", "TORN-01"}},
              {"ornil 1/4\"", {"TORN-01"}},
              {"a?' ? ornil", {}}}) {
            const QString donde = condicionBusquedaArticulos(
                base.conexion(), "rowid", {"articulo", "descrip"}, QString::fromUtf8(busqueda));
            QCOMPARE(base.filas("SELECT articulo FROM prods WHERE " + donde + " ORDER BY articulo"),
                     articulos);
        }
        QVERIFY(!usos(base.conexion(), QStringLiteral("almacenes"), 1).isEmpty());
        QVERIFY(
            usos(base.conexion(), QStringLiteral("articulos"), QStringLiteral("NO-HAY")).isEmpty());
    }

    void ordenesYSusCodigosDeSalida()
    {
        pruebas::BaseDePrueba base(true);
        QTemporaryDir dir;
        auto archivo = [&](const char *nombre, const QByteArray &texto) {
            QFile f(dir.filePath(QString::fromLatin1(nombre)));
            QVERIFY(f.open(QIODevice::WriteOnly) && f.write(texto) == texto.size());
        };
        archivo("bueno.csv", "articulo;descrip;costo\r\nB-1;\"uno; dos\";1,5\r\n");
        archivo("malo.csv", "articulo,costo\nM-1,1\nM-2,x\nM-3,y\n");
        const struct
        {
            QStringList args;
            int codigo;
            const char *dice; // in the output or the error stream
        } casos[] = {
            {{"importa", "articulos", dir.filePath("bueno.csv"), "--simula"}, 0, "simulación"},
            {{"importa", "articulos", dir.filePath("malo.csv")}, 1, "Línea 4, columna costo"},
            {{"importa", "articulos", dir.filePath("bueno.csv")}, 0, "1 nuevas"},
            {{"importa", "nada", dir.filePath("bueno.csv")}, 2, "No hay una tabla"},
            {{"importa", "articulos", dir.filePath("no-hay.csv")}, 2, "No se pudo abrir"},
            {{"exporta", "articulos"}, 0, "B-1,uno; dos,,0,,0,1.5,0"},
            {{"existencias", "--almacen", "uno"}, 2, "número entero"},
            {{"existencias", "--simula"}, 2, "--simula solo vale"},
            {{"movimientos", "TORN-01", "--csv"}, 0, "SALDO ANTERIOR"},
            {{"movimientos", "NO-HAY"}, 2, "No existe el artículo"},
        };
        for (const auto &c : casos) {
            const pruebas::Corrida r = pruebas::corre(c.args + QStringList{"--base", base.url()});
            QVERIFY2(r.codigo == c.codigo &&
                         (r.salida + r.error).contains(QString::fromUtf8(c.dice)),
                     r.dice());
        }
        // The refused file wrote nothing, the good one its row as written.
        QCOMPARE(base.filas("SELECT articulo, descrip, costo FROM prods WHERE articulo LIKE 'B-%' "
                            "OR articulo LIKE 'M-%'",
                            u'|'),
                 QStringList{"B-1|uno; dos|1.5"});
    }

    void tarjetaDeAlmacen()
    {
        pruebas::BaseDePrueba base(true);
        const double inicial = base.escalar("SELECT cantidad FROM existencias WHERE articulo = "
                                            "'TORN-01' AND almacen = 1")
                                   .toDouble();
        DocumentoInventarioAnfitrion doc;
        doc.PonAmbiente(base.ambiente());
        const struct
        {
            const char *fecha, *tipo;
            double cantidad;
        } posteos[] = {{"2024-05-02", "S", 10}, {"2024-05-05", "E", 4}, {"2024-05-09", "S", 1}};
        for (const auto &p : posteos) {
            doc.PonFecha(QDate::fromString(QString::fromLatin1(p.fecha), Qt::ISODate));
            doc.PonTipo(QString::fromLatin1(p.tipo));
            doc.PonAlmacen(1);
            doc.PonArticulo(QStringLiteral("TORN-01"));
            doc.PonCantidad(p.cantidad);
            doc.PonCosto(0.5);
            qint32 n = 0;
            doc.AplicaMovimiento(n);
        }
        const struct
        {
            const char *desde, *hasta;
            double apertura;
            QList<double> saldos;
        } rangos[] = {{"", "", inicial, {inicial - 10, inicial - 6, inicial - 7}},
                      {"2024-05-03", "", inicial - 10, {inicial - 6, inicial - 7}},
                      {"2024-05-03", "2024-05-06", inicial - 10, {inicial - 6}},
                      {"2024-06-01", "", inicial - 7, {}}};
        const QDate nula;
        for (const auto &r : rangos) {
            const QDate desde = QDate::fromString(QString::fromLatin1(r.desde), Qt::ISODate);
            const QDate hasta = QDate::fromString(QString::fromLatin1(r.hasta), Qt::ISODate);
            const QList<Movimiento> l =
                movimientos(base.conexion(), QStringLiteral("TORN-01"), 1, desde, hasta);
            QCOMPARE(l.first().saldo, r.apertura);
            QList<double> saldos;
            for (qsizetype i = 1; i < l.size(); ++i)
                saldos << l.at(i).saldo;
            QCOMPARE(saldos, r.saldos);
        }
        // The card of every warehouse ends at the stock the listing shows.
        const QList<Movimiento> todo =
            movimientos(base.conexion(), QStringLiteral("TORN-01"), 0, nula, nula);
        double stock = 0;
        for (const Existencia &e : existencias(base.conexion(), 0, QStringLiteral("torn")))
            stock += e.cantidad;
        QCOMPARE(todo.last().saldo, stock);
        QCOMPARE(stock, inicial - 7);
    }
};

QTEST_GUILESS_MAIN(TstDatos)
#include "tst_datos.moc"
