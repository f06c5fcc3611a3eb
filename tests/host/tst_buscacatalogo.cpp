// The host's catalogue lookup, driven with key and mouse events on the demo
// data; on SQLite and again on the MariaDB test server.

#include "host/servicios/BuscaCatalogoAnfitrion.h"
#include "runtime/Error.h"
#include "tests/support/BaseDePrueba.h"
#include "tests/support/DialogoModal.h"

#include <QLabel>
#include <QTableView>
#include <QtTest>

using namespace zuvi;
using namespace zuvi::anfitrion;
using zuvi::pruebas::BaseDePrueba;
using zuvi::pruebas::conDialogoModal;

namespace {

// The first column of the rows the dialog shows, separated by blanks.
QString claves(DialogoCatalogo *d)
{
    auto *tabla = d->findChild<QTableView *>(QStringLiteral("tabla"));
    QStringList l;
    for (int i = 0; i < tabla->model()->rowCount(); ++i)
        l << tabla->model()->index(i, 0).data().toString();
    return l.join(u' ');
}

QLineEdit *buscador(DialogoCatalogo *d)
{
    return d->findChild<QLineEdit *>(QStringLiteral("txtBuscar"));
}

} // namespace

class TstBuscaCatalogo : public QObject
{
    Q_OBJECT

    std::unique_ptr<BaseDePrueba> m_base;

    // What the user saw and what ended in the target box, which held "previo";
    // error is the description of an Error the call raised.
    struct Uso
    {
        pruebas::ResultadoModal modal;
        QString filas, estado, destino, error;
    };
    Uso usa(const QString &titulo, const QString &filtro,
            const std::function<void(DialogoCatalogo *)> &accion)
    {
        QLineEdit destino(QStringLiteral("previo"));
        BuscaCatalogoAnfitrion busca;
        busca.PonAmbiente(m_base->ambiente());
        busca.PonDestino(&destino);
        Uso uso;
        const auto muestra = [&] {
            try {
                busca.Muestra(titulo, filtro);
            } catch (const Error &e) {
                uso.error = e.description();
            }
        };
        uso.modal = conDialogoModal<DialogoCatalogo>(muestra, [&](DialogoCatalogo *d) {
            accion(d);
            uso.filas = claves(d);
            uso.estado = d->estado();
        });
        uso.destino = destino.text();
        return uso;
    }

private slots:
    void initTestCase() { m_base = std::make_unique<BaseDePrueba>(true); }
    void cleanupTestCase() { m_base.reset(); }

    // Typed search, Down presses, then Enter, Escape or a double click on the
    // second row; the rows seen before closing and what the box holds after.
    void eligeDelCatalogo()
    {
        struct Caso
        {
            const char *titulo, *filtro, *busqueda;
            int abajo;
            char cierre;
            const char *filas, *destino;
        };
        const char *art = "Articulos", *imp = "Impuestos por porcentaje", *alm = "Almacenes";
        const Caso casos[] = {
            {"Conceptos de Op al inventario", "", "", 0, 'E', "COP DE DEN DES EN OP", "COP"},
            {art, "", "", 0, 'E', "PAQ-TORN PINT-01 PLAC-01 REPISA SOPORTE TAB-01 TORN-01 TUER-01",
             "PAQ-TORN"},
            {art, "kit <> 0", "", 1, 'E', "PAQ-TORN REPISA SOPORTE", "REPISA"},
            {art, "kit <> 0", "", 9, 'E', "PAQ-TORN REPISA SOPORTE", "SOPORTE"},
            {art, "unidad = 'LT'", "", 0, 'E', "PINT-01", "PINT-01"},
            {art, "precio >= 99.5", "", 0, 'E', "PINT-01 REPISA", "PINT-01"},
            {art, "", "tornilleria", 0, 'E', "PAQ-TORN", "PAQ-TORN"},
            {art, "", "METÁLICO", 0, 'E', "SOPORTE", "SOPORTE"},
            {art, "", "01 1/4", 1, 'E', "TORN-01 TUER-01", "TUER-01"},
            {alm, "", "almacen", 0, 'E', "1", "1"},
            {imp, "", "", 3, 'E', "EXENTO IVA0 IVA8 IVA16", "16"},
            {imp, "", "region", 0, 'E', "IVA8", "8"},
            {alm, "", "", 1, 'X', "1 2 3", "previo"},
            {alm, "", "", 0, 'D', "1 2 3", "2"},
        };
        for (const Caso &c : casos) {
            const Uso uso = usa(c.titulo, c.filtro, [&](DialogoCatalogo *d) {
                QTest::keyClicks(buscador(d), QString::fromUtf8(c.busqueda));
                for (int i = 0; i < c.abajo; ++i)
                    QTest::keyClick(buscador(d), Qt::Key_Down);
                if (c.cierre == 'D') {
                    // A double click arrives as a click followed by the double click.
                    auto *tabla = d->findChild<QTableView *>(QStringLiteral("tabla"));
                    const QPoint centro = tabla->visualRect(tabla->model()->index(1, 1)).center();
                    QTest::mouseClick(tabla->viewport(), Qt::LeftButton, {}, centro);
                    QTest::mouseDClick(tabla->viewport(), Qt::LeftButton, {}, centro);
                } else {
                    QTest::keyClick(buscador(d), c.cierre == 'E' ? Qt::Key_Return : Qt::Key_Escape);
                }
            });
            QVERIFY(uso.modal.abrio);
            QVERIFY(!uso.modal.seguiaAbierto);
            QCOMPARE(uso.filas, QString::fromUtf8(c.filas));
            QCOMPARE(uso.destino, QString::fromUtf8(c.destino));
        }
    }

    // Nothing to choose: either the dialog opens, says why in its label, and
    // Enter neither closes it nor writes; or the call is refused before
    // anything opens, with a Spanish description, and runs nothing.
    void sinEleccion()
    {
        struct Caso
        {
            const char *titulo, *filtro, *busqueda, *vacia;
            bool abre;
            const char *mensaje;
        };
        const char *art = "Articulos", *noSimple = "solo se admite una comparación";
        const Caso casos[] = {
            {"Conceptos de Op al inventario", "", "", "conceptos", true, "El catálogo está vacío"},
            {art, "kit = 5", "", "", true, "Ningún registro del catálogo cumple \"kit = 5\""},
            {"Almacenes", "", "bodega", "", true, "Nada coincide con \"bodega\""},
            {"Artículos", "", "", "", false, "No hay un catálogo llamado"},
            {art, "kit <> 0; DELETE FROM op", "", "", false, noSimple},
            {art, "kit <> 0 OR 1 = 1", "", "", false, noSimple},
            {art, "kit <> 0 --", "", "", false, noSimple},
            {art, "LENGTH(articulo) > 0", "", "", false, noSimple},
            {art, "unidad = 'PZA", "", "", false, noSimple},
            {art, "kit <>", "", "", false, noSimple},
            {"Almacenes", "kit <> 0", "", "", false, "no tiene la columna"},
        };
        for (const Caso &c : casos) {
            if (*c.vacia)
                m_base->ejecuta(QStringLiteral("DELETE FROM %1").arg(c.vacia));
            bool abiertoTrasEnter = false, etiquetaVisible = false;
            const Uso uso = usa(QString::fromUtf8(c.titulo), c.filtro, [&](DialogoCatalogo *d) {
                QTest::keyClicks(buscador(d), c.busqueda);
                QTest::keyClick(buscador(d), Qt::Key_Return);
                abiertoTrasEnter = d->isVisible();
                etiquetaVisible = d->findChild<QLabel *>(QStringLiteral("lblEstado"))->isVisible();
            });
            if (*c.vacia)
                m_base->sesion().creaBase(true); // puts the demo rows back
            QCOMPARE(uso.modal.abrio, c.abre);
            QCOMPARE(abiertoTrasEnter, c.abre);
            QCOMPARE(etiquetaVisible, c.abre);
            QCOMPARE(uso.filas, QString());
            const QString visto = c.abre ? uso.estado : uso.error;
            QVERIFY2(visto.contains(QString::fromUtf8(c.mensaje)), qPrintable(visto));
            QCOMPARE(uso.destino, QStringLiteral("previo"));
            QCOMPARE(m_base->escalar("SELECT COUNT(*) FROM op").toInt(), 3);
        }
    }

    // Ten thousand articles: read once, then every key narrows them in memory.
    void catalogoGrandeAlEscribir()
    {
        for (int bloque = 0; bloque < 20; ++bloque) {
            QStringList valores;
            for (int i = bloque * 500; i < (bloque + 1) * 500; ++i)
                valores << QStringLiteral("('A%1', 'Artículo de prueba %2', 'PZA')")
                               .arg(i, 5, 10, QLatin1Char('0'))
                               .arg(i);
            m_base->ejecuta("INSERT INTO prods (articulo, descrip, unidad) VALUES " +
                            valores.join(u','));
        }
        QLineEdit destino;
        DialogoCatalogo dialogo(
            *definicionCatalogo("Articulos"),
            FilasCatalogo::lee(*definicionCatalogo("Articulos"), QString(), m_base->conexion()),
            QString(), &destino);
        dialogo.show();
        // Gone from the database, still found: the keys narrow what was read.
        m_base->ejecuta("DELETE FROM prods WHERE articulo LIKE 'A0%'");
        QTest::keyClicks(buscador(&dialogo), "a0999");
        QCOMPARE(dialogo.filasVisibles(), 10); // A09990 to A09999
        QCOMPARE(claves(&dialogo).left(6), QStringLiteral("A09990"));
    }

    // The articles narrowed by the database: every word in the code or the description, case
    // and accents ignored, the rows in pages in the catalogue's order; what the triggers keep.
    void articulosEnLaBase()
    {
        for (int i = 0; i < 250; ++i)
            m_base->ejecuta(QStringLiteral("INSERT INTO prods (articulo, descrip, kit) VALUES "
                                           "('Z%1', '%2 n%3', %4)")
                                .arg(i, 3, 10, QLatin1Char('0'))
                                .arg(i % 2 ? "Ménsula de ACERO" : "Bisagra latón")
                                .arg(i)
                                .arg(i % 50 == 0 ? 1 : 0));
        m_base->ejecuta("UPDATE prods SET descrip = 'Escuadra' WHERE articulo = 'Z001'");
        m_base->ejecuta("DELETE FROM prods WHERE articulo = 'Z003'");
        const struct
        {
            const char *busqueda, *filtro;
            int filas;
            const char *primeras;
        } casos[] = {
            {"", "", 257, "PAQ-TORN PINT-01"},
            {"MENSULA acero", "", 123, "Z005 Z007"},
            {"laton BISAGRA", "", 125, "Z000 Z002"},
            {"z00", "", 9, "Z000 Z001 Z002 Z004"},
            {"ENSÚL cer", "", 123, "Z005 Z007"}, // any part of a word
            {"bisagra N9", "", 5, "Z090 Z092"},  // a word too short for the index
            {"escuadra", "", 1, "Z001"},
            {"bisagra", "kit <> 0", 5, "Z000 Z050"},
            {"mensula tuerca", "", 0, ""},
        };
        const DefinicionCatalogo &art = *definicionCatalogo("Articulos");
        for (const auto &c : casos) {
            ConsultaCatalogo consulta(art, c.filtro, m_base->conexion());
            std::vector<QStringList> filas = consulta.busca(QString::fromUtf8(c.busqueda));
            if (!*c.busqueda) // the whole catalogue comes a page at a time
                QCOMPARE(int(filas.size()), ConsultaCatalogo::kPagina);
            while (consulta.hayMas())
                for (QStringList &f : consulta.sigue())
                    filas.push_back(f);
            QStringList claves;
            for (const QStringList &f : filas)
                claves << f.at(0);
            QVERIFY2(claves.size() == c.filas, qPrintable(claves.join(u' ')));
            QStringList enOrden = claves;
            std::sort(enOrden.begin(), enOrden.end());
            QCOMPARE(claves, enOrden);
            QCOMPARE(claves.mid(0, QString(c.primeras).count(' ') + 1).join(' '),
                     QString::fromUtf8(c.primeras));
        }
    }
};

QTEST_MAIN(TstBuscaCatalogo)
#include "tst_buscacatalogo.moc"
