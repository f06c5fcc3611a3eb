// The host's catalogue lookup, driven with key and mouse events on the demo
// data; on SQLite and again on the MariaDB test server.

#include "host/servicios/BuscaCatalogoAnfitrion.h"
#include "runtime/Error.h"
#include "tests/support/BaseDePrueba.h"
#include "tests/support/DialogoModal.h"

#include <QElapsedTimer>
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
    void eligeDelCatalogo_data()
    {
        QTest::addColumn<QString>("titulo");
        QTest::addColumn<QString>("filtro");
        QTest::addColumn<QString>("busqueda");
        QTest::addColumn<int>("abajo");
        QTest::addColumn<char>("cierre"); // 'E' Enter, 'X' Escape, 'D' double click
        QTest::addColumn<QString>("filas");
        QTest::addColumn<QString>("destino");
        struct Caso
        {
            const char *nombre, *titulo, *filtro, *busqueda;
            int abajo;
            char cierre;
            const char *filas, *destino;
        };
        const char *art = "Articulos", *imp = "Impuestos por porcentaje", *alm = "Almacenes";
        const Caso casos[] = {
            {"conceptos", "Conceptos de Op al inventario", "", "", 0, 'E', "COP DE DEN DES EN OP",
             "COP"},
            {"articulos", art, "", "", 0, 'E',
             "PAQ-TORN PINT-01 PLAC-01 REPISA SOPORTE TAB-01 TORN-01 TUER-01", "PAQ-TORN"},
            {"kits", art, "kit <> 0", "", 1, 'E', "PAQ-TORN REPISA SOPORTE", "REPISA"},
            {"abajo no pasa del final", art, "kit <> 0", "", 9, 'E', "PAQ-TORN REPISA SOPORTE",
             "SOPORTE"},
            {"texto entre comillas", art, "unidad = 'LT'", "", 0, 'E', "PINT-01", "PINT-01"},
            {"numero con decimales", art, "precio >= 99.5", "", 0, 'E', "PINT-01 REPISA",
             "PINT-01"},
            {"sin acento ni mayusculas", art, "", "tornilleria", 0, 'E', "PAQ-TORN", "PAQ-TORN"},
            {"mayusculas y acento", art, "", "METÁLICO", 0, 'E', "SOPORTE", "SOPORTE"},
            {"codigo y varias palabras", art, "", "01 1/4", 1, 'E', "TORN-01 TUER-01", "TUER-01"},
            {"almacen", alm, "", "almacen", 0, 'E', "1", "1"},
            {"impuesto escribe el porcentaje", imp, "", "", 3, 'E', "EXENTO IVA0 IVA8 IVA16", "16"},
            {"impuesto por descripcion", imp, "", "region", 0, 'E', "IVA8", "8"},
            {"escape", alm, "", "", 1, 'X', "1 2 3", "previo"},
            {"doble clic", alm, "", "", 0, 'D', "1 2 3", "2"},
        };
        for (const Caso &c : casos)
            QTest::newRow(c.nombre) << c.titulo << c.filtro << QString::fromUtf8(c.busqueda)
                                    << c.abajo << c.cierre << c.filas << c.destino;
    }
    void eligeDelCatalogo()
    {
        QFETCH(QString, titulo);
        QFETCH(QString, filtro);
        QFETCH(QString, busqueda);
        QFETCH(int, abajo);
        QFETCH(char, cierre);
        QFETCH(QString, filas);
        QFETCH(QString, destino);
        const Uso uso = usa(titulo, filtro, [&](DialogoCatalogo *d) {
            QTest::keyClicks(buscador(d), busqueda);
            for (int i = 0; i < abajo; ++i)
                QTest::keyClick(buscador(d), Qt::Key_Down);
            if (cierre == 'D') {
                // A double click arrives as a click followed by the double click.
                auto *tabla = d->findChild<QTableView *>(QStringLiteral("tabla"));
                const QPoint centro = tabla->visualRect(tabla->model()->index(1, 1)).center();
                QTest::mouseClick(tabla->viewport(), Qt::LeftButton, {}, centro);
                QTest::mouseDClick(tabla->viewport(), Qt::LeftButton, {}, centro);
            } else {
                QTest::keyClick(buscador(d), cierre == 'E' ? Qt::Key_Return : Qt::Key_Escape);
            }
        });
        QVERIFY(uso.modal.abrio);
        QVERIFY(!uso.modal.seguiaAbierto);
        QCOMPARE(uso.filas, filas);
        QCOMPARE(uso.destino, destino);
    }

    // Nothing to choose: either the dialog opens, says why in its label, and
    // Enter neither closes it nor writes; or the call is refused before
    // anything opens, with a Spanish description, and runs nothing.
    void sinEleccion_data()
    {
        QTest::addColumn<QString>("titulo");
        QTest::addColumn<QString>("filtro");
        QTest::addColumn<QString>("busqueda");
        QTest::addColumn<QString>("vacia"); // a table emptied first
        QTest::addColumn<bool>("abre");
        QTest::addColumn<QString>("mensaje"); // in the label, or in the error
        struct Caso
        {
            const char *nombre, *titulo, *filtro, *busqueda, *vacia;
            bool abre;
            const char *mensaje;
        };
        const char *art = "Articulos", *noSimple = "solo se admite una comparación";
        const Caso casos[] = {
            {"catalogo vacio", "Conceptos de Op al inventario", "", "", "conceptos", true,
             "El catálogo está vacío"},
            {"filtro sin filas", art, "kit = 5", "", "", true,
             "Ningún registro del catálogo cumple \"kit = 5\""},
            {"busqueda sin filas", "Almacenes", "", "bodega", "", true,
             "Nada coincide con \"bodega\""},
            {"titulo desconocido", "Artículos", "", "", "", false, "No hay un catálogo llamado"},
            {"segunda sentencia", art, "kit <> 0; DELETE FROM op", "", "", false, noSimple},
            {"segunda condicion", art, "kit <> 0 OR 1 = 1", "", "", false, noSimple},
            {"comentario", art, "kit <> 0 --", "", "", false, noSimple},
            {"funcion", art, "LENGTH(articulo) > 0", "", "", false, noSimple},
            {"comilla sin cerrar", art, "unidad = 'PZA", "", "", false, noSimple},
            {"sin valor", art, "kit <>", "", "", false, noSimple},
            {"columna de otra tabla", "Almacenes", "kit <> 0", "", "", false,
             "no tiene la columna"},
        };
        for (const Caso &c : casos)
            QTest::newRow(c.nombre) << QString::fromUtf8(c.titulo) << c.filtro << c.busqueda
                                    << c.vacia << c.abre << QString::fromUtf8(c.mensaje);
    }
    void sinEleccion()
    {
        QFETCH(QString, titulo);
        QFETCH(QString, filtro);
        QFETCH(QString, busqueda);
        QFETCH(QString, vacia);
        QFETCH(bool, abre);
        QFETCH(QString, mensaje);
        if (!vacia.isEmpty())
            m_base->ejecuta("DELETE FROM " + vacia);
        bool abiertoTrasEnter = false, etiquetaVisible = false;
        const Uso uso = usa(titulo, filtro, [&](DialogoCatalogo *d) {
            QTest::keyClicks(buscador(d), busqueda);
            QTest::keyClick(buscador(d), Qt::Key_Return);
            abiertoTrasEnter = d->isVisible();
            etiquetaVisible = d->findChild<QLabel *>(QStringLiteral("lblEstado"))->isVisible();
        });
        if (!vacia.isEmpty())
            m_base->sesion().creaBase(true); // puts the demo rows back
        QCOMPARE(uso.modal.abrio, abre);
        QCOMPARE(abiertoTrasEnter, abre);
        QCOMPARE(etiquetaVisible, abre);
        QCOMPARE(uso.filas, QString());
        const QString visto = abre ? uso.estado : uso.error;
        QVERIFY2(visto.contains(mensaje), qPrintable(visto));
        QCOMPARE(uso.destino, QStringLiteral("previo"));
        QCOMPARE(m_base->escalar("SELECT COUNT(*) FROM op").toInt(), 3);
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
        QElapsedTimer reloj;
        reloj.start();
        QLineEdit destino;
        DialogoCatalogo dialogo(
            *definicionCatalogo("Articulos"),
            FilasCatalogo::lee(*definicionCatalogo("Articulos"), QString(), m_base->conexion()),
            QString(), &destino);
        dialogo.show();
        const qint64 apertura = reloj.restart();
        qint64 peorTecla = 0;
        for (const QChar c : QStringLiteral("a0999")) {
            QTest::keyClick(buscador(&dialogo), c.toLatin1());
            peorTecla = qMax(peorTecla, reloj.restart());
        }
        m_base->ejecuta("DELETE FROM prods WHERE articulo LIKE 'A0%'");
        qInfo("10008 articulos: apertura %lld ms, peor tecla %lld ms", apertura, peorTecla);
        QCOMPARE(dialogo.filasVisibles(), 10); // A09990 to A09999
        QCOMPARE(claves(&dialogo).left(6), QStringLiteral("A09990"));
        QVERIFY2(peorTecla < 250, qPrintable(QString::number(peorTecla)));
    }
};

QTEST_MAIN(TstBuscaCatalogo)
#include "tst_buscacatalogo.moc"
