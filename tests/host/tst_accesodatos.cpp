// The host's data-access object, on SQLite and MariaDB.

#include "host/base/Esquema.h"
#include "host/base/Mensajes.h"
#include "host/servicios/AccesoDatosAnfitrion.h"
#include "runtime/Error.h"
#include "tests/support/BaseDePrueba.h"

#include <QLineEdit>
#include <QtTest>

using namespace zuvi;
using namespace zuvi::anfitrion;
using zuvi::pruebas::BaseDePrueba;

namespace {

// One data row per case of a table; each case carries its row name.
template <typename Caso, size_t N> void filas(const Caso (&casos)[N])
{
    QTest::addColumn<Caso>("caso");
    for (const Caso &c : casos)
        QTest::newRow(std::get<0>(c)) << c;
}

// Name, tag, text, caret, characters selected from the caret, key typed, key kept.
using Tecla = std::tuple<const char *, const char *, const char *, int, int, int, int>;
// Name, tag, text typed, text shown.
using Formato = std::tuple<const char *, const char *, const char *, const char *>;

} // namespace

class TstAccesoDatos : public QObject
{
    Q_OBJECT

    // Created on first use: most cases need no database.
    BaseDePrueba &base()
    {
        if (!m_base) {
            m_base = std::make_unique<BaseDePrueba>(false);
            m_base->ejecuta("INSERT INTO prods (articulo, descrip, ubicacion) VALUES "
                            "('K1', 'Kit uno', 'SOLO 1,3')");
            m_base->ejecuta("INSERT INTO op (op, estado) VALUES (120, 'PE')");
        }
        return *m_base;
    }
    std::unique_ptr<BaseDePrueba> m_base;
    AccesoDatosAnfitrion m_ad;

private slots:
    void cleanup() { m_base.reset(); }

    void claveMaliciosaNoEjecutaNada_data()
    {
        QTest::addColumn<QString>("clave");
        QTest::newRow("O'Brien") << QStringLiteral("O'Brien");
        QTest::newRow("segunda sentencia") << QStringLiteral("X'; DELETE FROM op; --");
    }
    void claveMaliciosaNoEjecutaNada()
    {
        QFETCH(QString, clave);
        const QSqlDatabase db = base().conexion();
        // Concatenated between quotes, as the module builds its statements: refused.
        const QString donde = " WHERE articulo = '" + clave + "'";
        QVERIFY_THROWS_EXCEPTION(Error, m_ad.Consulta("SELECT * FROM prods" + donde, db));
        QVERIFY_THROWS_EXCEPTION(Error, base().ambiente()->EjecutaSQL("DELETE FROM prods" + donde));
        // Bound as a value it is just a key, found nowhere: the catalogue cannot hold a quote.
        QCOMPARE(m_ad.ExisteClave(clave, "prods", "articulo", db), VFalse);
        QCOMPARE(m_ad.UbicacionRestringida(clave, 2, db), VFalse);
        QVERIFY_THROWS_EXCEPTION(Error, m_ad.ExisteClave(clave, "prods; DELETE FROM op", "x", db));
        QCOMPARE(base().escalar("SELECT COUNT(*) FROM op").toInt(), 1);
    }

    void consultasALaBase()
    {
        const QSqlDatabase db = base().conexion();
        QCOMPARE(m_ad.ExisteClave("72", "mensajes", "numero", db), VTrue); // numeric column
        QCOMPARE(m_ad.UbicacionRestringida(" K1 ", 2, db), VTrue);
        QCOMPARE(m_ad.UbicacionRestringida("K1", 3, db), VFalse);
        for (const auto &[numero, texto] : catalogoMensajes())
            QCOMPARE(m_ad.TraeMensaje(numero, base().ambiente()), texto);
        QCOMPARE(m_ad.TraeMensaje(999999, base().ambiente()),
                 QStringLiteral("Mensaje 999999 no encontrado"));
        // The number drawn is left in the document too; orders already there are skipped.
        qint32 documento = 0;
        QCOMPARE(m_ad.SiguienteFolio("Op", db, documento, nullptr), 121);
        QCOMPARE(documento, 121);
        // A date reads back as a date and orders as one, across months of one and two digits.
        base().ejecuta("INSERT INTO horarios (turno, fecha, Empleado) VALUES ('T1', " +
                       m_ad.FechaSQL(db, QDate(2024, 10, 30)) + ", 'E1')");
        const QString sql = "SELECT fecha FROM horarios WHERE fecha > ";
        QCOMPARE(base().escalar(sql + m_ad.FechaSQL(db, QDate(2024, 9, 1))).toDate(),
                 QDate(2024, 10, 30));
        QCOMPARE(m_ad.FechaSQL(db, QDate()), QStringLiteral("NULL"));
    }

    void reglasSinBase()
    {
        const std::tuple<const char *, const char *, int, bool> ubicaciones[] = {
            {"anaquel", "A-12", 2, false},    {"minusculas y blancos", " solo 1, 3 ", 2, true},
            {"acento", "SÓLO 4", 4, false},   {"13 no es 1 ni 3", "SOLO 13", 1, true},
            {"sin numeros", "SOLO", 1, true}, {"palabra que empieza igual", "SOLOMON", 1, false}};
        for (const auto &[nombre, texto, almacen, si] : ubicaciones)
            QVERIFY2(ubicacionRestringe(QString::fromUtf8(texto), almacen) == si, nombre);
        // Serial day (days since 1899-12-30) and seconds of the day.
        QCOMPARE(m_ad.ComponeFecha(45414, 49510), QDate(2024, 5, 2));
        QCOMPARE(m_ad.ComponeFecha(45351, 86400), QDate(2024, 3, 1)); // whole days carry over
        QCOMPARE(m_ad.ComponeFecha(45414, -1), QDate(2024, 5, 1));
        QCOMPARE(m_ad.TextoConCeros(7.6, 2), QStringLiteral("08"));
        QCOMPARE(m_ad.TextoConCeros(123, 2), QStringLiteral("123"));
        QCOMPARE(m_ad.TextoConCeros(-5, 3), QStringLiteral("-05"));
        QLineEdit numero(QStringLiteral("1234.5")); // a box handed over reads as its text
        QCOMPARE(m_ad.ValorNumerico(QVariant::fromValue<QObject *>(&numero)), 1234.5);
        // Accented letters and the enye too; the sharp s and control codes stay.
        const std::pair<int, int> mayusculas[] = {{0xF1, 0xD1}, {0xDF, 0xDF}, {8, 8}};
        for (auto [entra, sale] : mayusculas) {
            QCOMPARE(m_ad.FiltroMayusculas(nullptr, entra), sale);
            QCOMPARE(entra, sale);
        }
    }

    void filtroTecla_data()
    {
        const Tecla casos[] = {
            {"N segundo punto", "N", "1.2", 3, 0, '.', 0},
            {"N punto sobre seleccion", "N", "1.2", 0, 3, '.', '.'},
            {"N menos al inicio", "N", "12", 0, 0, '-', '-'},
            {"N menos en medio", "N", "12", 1, 0, '-', 0},
            {"SN punto", "SN", "1", 1, 0, '.', 0},
            {"SD cero", "SD", "00", 2, 0, '0', '0'},
            {"D barra", "D", "01", 2, 0, '/', '/'},
            {"D letra", "D", "01", 2, 0, 'a', 0},
            {"D lleno", "D", "01/02/2024", 10, 0, '1', 0},
            {"D enter lleno", "D", "01/02/2024", 10, 0, 13, 13},
            {"etiqueta en minusculas", "n", "", 0, 0, 'a', 'a'},
        };
        filas(casos);
    }
    void filtroTecla()
    {
        QFETCH(Tecla, caso);
        const auto [nombre, etiqueta, texto, cursor, seleccion, tecla, queda] = caso;
        QLineEdit caja(texto);
        caja.setProperty("Tag", etiqueta);
        caja.setSelection(cursor, seleccion); // no selection: just the caret
        qint32 t = tecla;
        QCOMPARE(m_ad.FiltroTecla(VTrue, &caja, t), queda);
        QCOMPARE(t, queda);
        t = tecla; // with the flag off every key passes
        QCOMPARE(m_ad.FiltroTecla(VFalse, &caja, t), tecla);
    }

    void formateaCampo_data()
    {
        const Formato casos[] = {
            {"U", "U", "kit ñandú", "KIT ÑANDÚ"},
            {"N miles", "N", "1,234.50", "1234.5"},
            {"N ilegible", "N", "1.2.3", "1.2.3"},
            {"SN ceros", "SN", "007", "7"},
            {"SD ceros", "SD", " 007 ", "007"},
            {"D corta", "D", "2/5/2024", "02/05/2024"},
            {"D iso", "D", "2024-05-02", "02/05/2024"},
            {"D corrida", "D", "02052024", "02/05/2024"},
            {"D anio corto", "D", "2-5-24", "02/05/2024"},
            {"D imposible", "D", "31/02/2024", "31/02/2024"},
        };
        filas(casos);
    }
    void formateaCampo()
    {
        QFETCH(Formato, caso);
        const auto [nombre, etiqueta, texto, esperado] = caso;
        QLineEdit caja(QString::fromUtf8(texto));
        caja.setProperty("Tag", etiqueta);
        QCOMPARE(m_ad.FormateaCampo(&caja, nullptr), QString::fromUtf8(esperado));
    }
};

QTEST_MAIN(TstAccesoDatos)
#include "tst_accesodatos.moc"
