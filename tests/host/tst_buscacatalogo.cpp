// The host's catalogue lookup, driven with key and mouse events on the demo
// data; on SQLite and again on the MariaDB test server.

#include "host/BuscaCatalogoAnfitrion.h"
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

    // Typed search, then Down presses, then the closing gesture; the rows seen
    // before closing and what the box holds afterwards.
    void eligeDelCatalogo_data()
    {
        QTest::addColumn<QString>("titulo");
        QTest::addColumn<QString>("filtro");
        QTest::addColumn<QString>("busqueda");
        QTest::addColumn<int>("abajo");
        QTest::addColumn<QString>("cierre"); // enter, escape, doble (double click)
        QTest::addColumn<QString>("filas");
        QTest::addColumn<QString>("destino");
        const QString todos = "PAQ-TORN PINT-01 PLAC-01 REPISA SOPORTE TAB-01 TORN-01 TUER-01";
        QTest::newRow("conceptos") << "Conceptos de Op al inventario"
                                   << ""
                                   << "" << 0 << "enter"
                                   << "COP DE DEN DES EN OP"
                                   << "COP";
        QTest::newRow("articulos") << "Articulos"
                                   << ""
                                   << "" << 0 << "enter" << todos << "PAQ-TORN";
        QTest::newRow("kits") << "Articulos"
                              << "kit <> 0"
                              << "" << 1 << "enter"
                              << "PAQ-TORN REPISA SOPORTE"
                              << "REPISA";
        QTest::newRow("texto entre comillas") << "Articulos"
                                              << "unidad = 'LT'"
                                              << "" << 0 << "enter"
                                              << "PINT-01"
                                              << "PINT-01";
        QTest::newRow("numero con decimales") << "Articulos"
                                              << "precio >= 99.5"
                                              << "" << 0 << "enter"
                                              << "PINT-01 REPISA"
                                              << "PINT-01";
        QTest::newRow("sin acento ni mayusculas") << "Articulos"
                                                  << ""
                                                  << "tornilleria" << 0 << "enter"
                                                  << "PAQ-TORN"
                                                  << "PAQ-TORN";
        QTest::newRow("mayusculas y acento") << "Articulos"
                                             << ""
                                             << "METÁLICO" << 0 << "enter"
                                             << "SOPORTE"
                                             << "SOPORTE";
        QTest::newRow("por codigo y varias palabras") << "Articulos"
                                                      << ""
                                                      << "01 1/4" << 1 << "enter"
                                                      << "TORN-01 TUER-01"
                                                      << "TUER-01";
        QTest::newRow("abajo no pasa del final") << "Articulos"
                                                 << "kit <> 0"
                                                 << "" << 9 << "enter"
                                                 << "PAQ-TORN REPISA SOPORTE"
                                                 << "SOPORTE";
        QTest::newRow("almacen") << "Almacenes"
                                 << ""
                                 << "almacen" << 0 << "enter"
                                 << "1"
                                 << "1";
        QTest::newRow("impuesto escribe el porcentaje") << "Impuestos por porcentaje"
                                                        << ""
                                                        << "" << 3 << "enter"
                                                        << "EXENTO IVA0 IVA8 IVA16"
                                                        << "16";
        QTest::newRow("impuesto por descripcion") << "Impuestos por porcentaje"
                                                  << ""
                                                  << "region" << 0 << "enter"
                                                  << "IVA8"
                                                  << "8";
        QTest::newRow("escape") << "Almacenes"
                                << ""
                                << "" << 1 << "escape"
                                << "1 2 3"
                                << "previo";
        QTest::newRow("doble clic") << "Almacenes"
                                    << ""
                                    << "" << 0 << "doble"
                                    << "1 2 3"
                                    << "2";
    }
    void eligeDelCatalogo()
    {
        QFETCH(QString, titulo);
        QFETCH(QString, filtro);
        QFETCH(QString, busqueda);
        QFETCH(int, abajo);
        QFETCH(QString, cierre);
        QFETCH(QString, filas);
        QFETCH(QString, destino);
        const Uso uso = usa(titulo, filtro, [&](DialogoCatalogo *d) {
            QLineEdit *caja = buscador(d);
            QTest::keyClicks(caja, busqueda);
            for (int i = 0; i < abajo; ++i)
                QTest::keyClick(caja, Qt::Key_Down);
            auto *tabla = d->findChild<QTableView *>(QStringLiteral("tabla"));
            if (cierre == QLatin1String("doble")) {
                const QPoint centro = tabla->visualRect(tabla->model()->index(1, 1)).center();
                // A double click arrives as a click followed by the double click.
                QTest::mouseClick(tabla->viewport(), Qt::LeftButton, {}, centro);
                QTest::mouseDClick(tabla->viewport(), Qt::LeftButton, {}, centro);
            } else {
                QTest::keyClick(caja,
                                cierre == QLatin1String("enter") ? Qt::Key_Return : Qt::Key_Escape);
            }
        });
        QVERIFY(uso.modal.abrio);
        QVERIFY(!uso.modal.seguiaAbierto);
        QCOMPARE(uso.filas, filas);
        QCOMPARE(uso.destino, destino);
    }

    // Nothing to choose: the dialog opens, says why, and Enter neither closes
    // it nor writes anything.
    void sinNadaQueElegir_data()
    {
        QTest::addColumn<QString>("titulo");
        QTest::addColumn<QString>("filtro");
        QTest::addColumn<QString>("busqueda");
        QTest::addColumn<QString>("vacia"); // a table emptied first
        QTest::addColumn<QString>("estado");
        QTest::newRow("catalogo vacio") << "Conceptos de Op al inventario"
                                        << ""
                                        << ""
                                        << "conceptos"
                                        << "El catálogo está vacío";
        QTest::newRow("filtro sin filas") << "Articulos"
                                          << "kit = 5"
                                          << ""
                                          << ""
                                          << "Ningún registro del catálogo cumple \"kit = 5\"";
        QTest::newRow("busqueda sin filas") << "Almacenes"
                                            << ""
                                            << "bodega"
                                            << ""
                                            << "Nada coincide con \"bodega\"";
    }
    void sinNadaQueElegir()
    {
        QFETCH(QString, titulo);
        QFETCH(QString, filtro);
        QFETCH(QString, busqueda);
        QFETCH(QString, vacia);
        QFETCH(QString, estado);
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
        QVERIFY(uso.modal.abrio);
        QVERIFY(abiertoTrasEnter);
        QVERIFY(etiquetaVisible);
        QCOMPARE(uso.filas, QString());
        QVERIFY2(uso.estado.startsWith(estado), qPrintable(uso.estado));
        QCOMPARE(uso.destino, QStringLiteral("previo"));
    }

    // Refused before anything opens, with a Spanish description; nothing runs.
    void rechazaSinAbrir_data()
    {
        QTest::addColumn<QString>("titulo");
        QTest::addColumn<QString>("filtro");
        QTest::addColumn<QString>("mensaje");
        const QString noSimple = "solo se admite una comparación";
        QTest::newRow("titulo desconocido") << "Artículos"
                                            << ""
                                            << "No hay un catálogo llamado";
        QTest::newRow("segunda sentencia") << "Articulos"
                                           << "kit <> 0; DELETE FROM op" << noSimple;
        QTest::newRow("segunda condicion") << "Articulos"
                                           << "kit <> 0 OR 1 = 1" << noSimple;
        QTest::newRow("comentario") << "Articulos"
                                    << "kit <> 0 --" << noSimple;
        QTest::newRow("funcion") << "Articulos"
                                 << "LENGTH(articulo) > 0" << noSimple;
        QTest::newRow("comilla sin cerrar") << "Articulos"
                                            << "unidad = 'PZA" << noSimple;
        QTest::newRow("sin valor") << "Articulos"
                                   << "kit <>" << noSimple;
        QTest::newRow("columna de otra tabla") << "Almacenes"
                                               << "kit <> 0"
                                               << "no tiene la columna";
    }
    void rechazaSinAbrir()
    {
        QFETCH(QString, titulo);
        QFETCH(QString, filtro);
        QFETCH(QString, mensaje);
        const Uso uso = usa(titulo, filtro, [](DialogoCatalogo *) {});
        QVERIFY(!uso.modal.abrio);
        QVERIFY2(uso.error.contains(mensaje), qPrintable(uso.error));
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
