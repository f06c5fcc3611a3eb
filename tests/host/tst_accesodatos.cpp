// The host's data-access object over a real database.
// ZUVI_PRUEBA_AMBAS_BASES

#include "host/AccesoDatosAnfitrion.h"
#include "host/AmbienteAnfitrion.h"
#include "host/ConstructorSqlAnfitrion.h"
#include "host/Esquema.h"
#include "runtime/Error.h"
#include "tests/support/BaseDePrueba.h"
#include "tests/support/InteraccionGuionada.h"

#include <QApplication>
#include <QLineEdit>
#include <QtTest>

using namespace zuvi;
using namespace zuvi::anfitrion;
using zuvi::pruebas::BaseDePrueba;
using zuvi::pruebas::InteraccionGuionada;

class TstAccesoDatos : public QObject
{
    Q_OBJECT

private slots:
    void cleanup()
    {
        m_base.reset();
        ponInteraccion(nullptr);
    }

    void consultaDevuelvePrimeraFila();
    void textoInyectadoNoEjecutaNada_data();
    void textoInyectadoNoEjecutaNada();
    void conversiones_data();
    void conversiones();
    void estaVacio();
    void mensajesDelCatalogo();
    void mensajeYPreguntaPasanPorLaInteraccion();
    void siguienteFolioYComponeFecha();
    void existeClave_data();
    void existeClave();
    void reglaDeUbicacion_data();
    void reglaDeUbicacion();
    void ubicacionEnLaBase();
    void filtroTecla_data();
    void filtroTecla();
    void filtroMayusculas();
    void formateaCampo_data();
    void formateaCampo();
    void textoConCeros_data();
    void textoConCeros();
    void fechaSqlSirveEnConsultas();
    void preparaYLiberaVentana();

private:
    // The database, created on first use: most cases here need none, and a
    // fresh MariaDB database per data row would dominate the run.
    BaseDePrueba &base()
    {
        if (!m_base) {
            m_base = std::make_unique<BaseDePrueba>(false);
            m_base->ejecuta("INSERT INTO almacen (almacen, nombre) VALUES (1, 'Matriz')");
            m_base->ejecuta("INSERT INTO almacen (almacen, nombre) VALUES (3, 'Bodega')");
            m_base->ejecuta("INSERT INTO prods (articulo, descrip, ubicacion) VALUES "
                            "('K1', 'Kit uno', 'SOLO 1,3')");
            m_base->ejecuta("INSERT INTO prods (articulo, descrip, ubicacion) VALUES "
                            "('K2', 'Kit dos', 'A-12')");
            m_base->ejecuta("INSERT INTO op (op, estado) VALUES (120, 'PE')");
            m_base->ejecuta("INSERT INTO oppart (id_entrada, op, articulo, cantidad) VALUES "
                            "(1, 120, 'K1', 2)");
        }
        return *m_base;
    }
    int cuenta(const QString &tabla)
    {
        return base().escalar(QStringLiteral("SELECT COUNT(*) FROM ") + tabla).toInt();
    }
    std::unique_ptr<BaseDePrueba> m_base;
    AccesoDatosAnfitrion m_ad;
};

void TstAccesoDatos::consultaDevuelvePrimeraFila()
{
    base().ejecuta("INSERT INTO op (op, estado) VALUES (121, 'CO')");
    RecordsetPtr rs =
        m_ad.Consulta("SELECT * FROM op WHERE op >= 120 ORDER BY op", base().conexion(), VTrue);
    QVERIFY(!rs->atEnd());
    QCOMPARE(rs->number("op"), 120.0);
    QCOMPARE(rs->text("Estado"), QStringLiteral("PE"));
    rs->moveNext();
    QCOMPARE(rs->text("estado"), QStringLiteral("CO"));
    rs->moveNext();
    QVERIFY(rs->atEnd());
    QVERIFY(m_ad.Consulta("SELECT * FROM op WHERE op = 0", base().conexion())->atEnd());
}

void TstAccesoDatos::textoInyectadoNoEjecutaNada_data()
{
    // A key typed by the user and concatenated between quotes, as the module
    // builds its statements.
    QTest::addColumn<QString>("clave");
    QTest::addColumn<bool>("accion");
    QTest::newRow("comilla, consulta") << QStringLiteral("O'Brien") << false;
    QTest::newRow("segunda sentencia, consulta")
        << QStringLiteral("X'; DELETE FROM op; --") << false;
    QTest::newRow("comilla, accion") << QStringLiteral("O'Brien") << true;
    QTest::newRow("segunda sentencia, accion") << QStringLiteral("X'; DELETE FROM op; --") << true;
    QTest::newRow("segunda sentencia sin comentario, accion")
        << QStringLiteral("X'; DELETE FROM op WHERE 'a'='a") << true;
}

void TstAccesoDatos::textoInyectadoNoEjecutaNada()
{
    QFETCH(QString, clave);
    QFETCH(bool, accion);
    if (accion) {
        const QString sql = "DELETE FROM oppart WHERE articulo = '" + clave + "'";
        QVERIFY_THROWS_EXCEPTION(Error, base().ambiente()->EjecutaSQL(sql));
    } else {
        const QString sql = "SELECT * FROM prods WHERE articulo = '" + clave + "'";
        QVERIFY_THROWS_EXCEPTION(Error, m_ad.Consulta(sql, base().conexion()));
    }
    QCOMPARE(cuenta("op"), 1);
    QCOMPARE(cuenta("oppart"), 1);
    // The connection is still usable afterwards.
    QCOMPARE(m_ad.Consulta("SELECT * FROM op", base().conexion())->rowCount(), 1);
}

void TstAccesoDatos::conversiones_data()
{
    QTest::addColumn<QVariant>("valor");
    QTest::addColumn<double>("numero");
    QTest::addColumn<QString>("texto");
    QTest::newRow("nulo") << QVariant() << 0.0 << QString();
    QTest::newRow("nulo con tipo") << QVariant(QMetaType::fromType<double>()) << 0.0 << QString();
    QTest::newRow("texto vacio") << QVariant(QString()) << 0.0 << QString();
    QTest::newRow("texto con blancos") << QVariant(" 12.5 ") << 12.5 << QStringLiteral(" 12.5 ");
    QTest::newRow("texto no numerico") << QVariant("abc") << 0.0 << QStringLiteral("abc");
    QTest::newRow("entero corto") << QVariant::fromValue<qint16>(-3) << -3.0
                                  << QStringLiteral("-3");
    QTest::newRow("real") << QVariant(2.25) << 2.25 << QStringLiteral("2.25");
    QTest::newRow("fecha") << QVariant(QDate(2024, 5, 2)) << 0.0 << QStringLiteral("2024-05-02");
}

void TstAccesoDatos::conversiones()
{
    QFETCH(QVariant, valor);
    QFETCH(double, numero);
    QFETCH(QString, texto);
    QCOMPARE(m_ad.ValorNumerico(valor), numero);
    QCOMPARE(m_ad.ValorTexto(valor), texto);
    // A text box handed over as the value is read through its text.
    QLineEdit caja;
    caja.setText(texto);
    const QVariant comoObjeto = QVariant::fromValue<QObject *>(&caja);
    QCOMPARE(m_ad.ValorTexto(comoObjeto), texto);
    if (valor.typeId() == QMetaType::QString)
        QCOMPARE(m_ad.ValorNumerico(comoObjeto), numero);
}

void TstAccesoDatos::estaVacio()
{
    QCOMPARE(m_ad.EstaVacio(QString()), VTrue);
    QCOMPARE(m_ad.EstaVacio(QStringLiteral("   ")), VTrue);
    QCOMPARE(m_ad.EstaVacio(QStringLiteral("\t")), VTrue);
    QCOMPARE(m_ad.EstaVacio(QStringLiteral(" 0 ")), VFalse);
}

void TstAccesoDatos::mensajesDelCatalogo()
{
    QString esperado;
    for (const auto &m : catalogoMensajes())
        if (m.first == 757)
            esperado = m.second;
    QVERIFY(!esperado.isEmpty());
    QCOMPARE(m_ad.TraeMensaje(757, base().ambiente()), esperado);
    QCOMPARE(m_ad.TraeMensaje(999999, base().ambiente()),
             QStringLiteral("Mensaje 999999 no encontrado"));
    QVERIFY_THROWS_EXCEPTION(Error, m_ad.TraeMensaje(72, nullptr));
}

void TstAccesoDatos::mensajeYPreguntaPasanPorLaInteraccion()
{
    auto guion = InteraccionGuionada::instala();
    guion->respuestas({true});
    m_ad.Mensaje(QStringLiteral("No se encontró la orden."), 16, base().ambiente());
    QCOMPARE(m_ad.Pregunta(QStringLiteral("¿Cancelar?"), 2), VTrue);
    QCOMPARE(m_ad.Pregunta(QStringLiteral("¿Otra vez?"), 2), VFalse);
    QCOMPARE(guion->mensajes().size(), 1);
    QCOMPARE(guion->mensajes().at(0).estilo, 16);
    QCOMPARE(guion->mensajes().at(0).texto, QStringLiteral("No se encontró la orden."));
    QCOMPARE(guion->preguntas(), QStringList({"¿Cancelar?", "¿Otra vez?"}));
}

void TstAccesoDatos::siguienteFolioYComponeFecha()
{
    qint32 documento = 0;
    const qint32 primero = m_ad.SiguienteFolio("Op", base().conexion(), documento, nullptr);
    QCOMPARE(documento, primero);
    QVERIFY(primero > 120); // above the orders already there
    documento = 0;
    const qint32 segundo = m_ad.SiguienteFolio("Op", base().conexion(), documento, nullptr);
    QCOMPARE(segundo, primero + 1);
    QCOMPARE(documento, segundo);

    const QDate dia(2024, 5, 2);
    QCOMPARE(m_ad.ComponeFecha(datoFechaA(dia), datoFechaB(QTime(13, 30))), dia);

    std::unique_ptr<ConstructorSql> c(m_ad.NuevoConstructorSql());
    QVERIFY(qobject_cast<ConstructorSqlAnfitrion *>(c.get()));
}

void TstAccesoDatos::existeClave_data()
{
    QTest::addColumn<QString>("valor");
    QTest::addColumn<QString>("tabla");
    QTest::addColumn<QString>("columna");
    QTest::addColumn<VBool>("existe");
    QTest::newRow("articulo") << "K1"
                              << "prods"
                              << "articulo" << VTrue;
    QTest::newRow("articulo que no existe") << "K9"
                                            << "prods"
                                            << "articulo" << VFalse;
    QTest::newRow("almacen numerico") << "3"
                                      << "almacen"
                                      << "almacen" << VTrue;
    QTest::newRow("almacen que no existe") << "2"
                                           << "almacen"
                                           << "almacen" << VFalse;
    QTest::newRow("comilla") << "O'Brien"
                             << "prods"
                             << "articulo" << VFalse;
    QTest::newRow("segunda sentencia") << "X'; DELETE FROM op; --"
                                       << "prods"
                                       << "articulo" << VFalse;
    QTest::newRow("vacio") << ""
                           << "prods"
                           << "articulo" << VFalse;
}

void TstAccesoDatos::existeClave()
{
    QFETCH(QString, valor);
    QFETCH(QString, tabla);
    QFETCH(QString, columna);
    QFETCH(VBool, existe);
    QCOMPARE(m_ad.ExisteClave(valor, tabla, columna, base().conexion(), VTrue), existe);
    QCOMPARE(cuenta("op"), 1);
    // Names cannot carry a statement either.
    QVERIFY_THROWS_EXCEPTION(
        Error, m_ad.ExisteClave(valor, "prods; DELETE FROM op", columna, base().conexion()));
    QCOMPARE(cuenta("op"), 1);
}

void TstAccesoDatos::reglaDeUbicacion_data()
{
    QTest::addColumn<QString>("ubicacion");
    QTest::addColumn<int>("almacen");
    QTest::addColumn<bool>("restringe");
    QTest::newRow("vacia") << "" << 1 << false;
    QTest::newRow("anaquel") << "A-12" << 2 << false;
    QTest::newRow("listado primero") << "SOLO 1,3" << 1 << false;
    QTest::newRow("listado ultimo") << "SOLO 1,3" << 3 << false;
    QTest::newRow("no listado") << "SOLO 1,3" << 2 << true;
    QTest::newRow("minusculas y blancos") << " solo 1, 3 " << 2 << true;
    QTest::newRow("acento") << "SÓLO 4" << 4 << false;
    QTest::newRow("13 no es 1 ni 3") << "SOLO 13" << 1 << true;
    QTest::newRow("sin blanco") << "SOLO1;3" << 3 << false;
    QTest::newRow("sin numeros") << "SOLO" << 1 << true;
    QTest::newRow("palabra que empieza igual") << "SOLOMON" << 1 << false;
}

void TstAccesoDatos::reglaDeUbicacion()
{
    QFETCH(QString, ubicacion);
    QFETCH(int, almacen);
    QFETCH(bool, restringe);
    QCOMPARE(ubicacionRestringe(ubicacion, almacen), restringe);
}

void TstAccesoDatos::ubicacionEnLaBase()
{
    const QSqlDatabase db = base().conexion();
    QCOMPARE(m_ad.UbicacionRestringida(QStringLiteral("K1"), 2, db), VTrue);
    QCOMPARE(m_ad.UbicacionRestringida(QStringLiteral(" K1 "), 2, db), VTrue);
    QCOMPARE(m_ad.UbicacionRestringida(QStringLiteral("K1"), 3, db), VFalse);
    QCOMPARE(m_ad.UbicacionRestringida(QStringLiteral("K2"), 2, db), VFalse);
    QCOMPARE(m_ad.UbicacionRestringida(QStringLiteral("NO-EXISTE"), 2, db), VFalse);
    QCOMPARE(m_ad.UbicacionRestringida(QStringLiteral("O'Brien"), 2, db), VFalse);
}

void TstAccesoDatos::filtroTecla_data()
{
    QTest::addColumn<QString>("etiqueta");
    QTest::addColumn<QString>("texto");
    QTest::addColumn<int>("cursor");
    QTest::addColumn<int>("seleccion"); // characters selected from the cursor on
    QTest::addColumn<int>("tecla");
    QTest::addColumn<int>("queda");
    QTest::newRow("N digito") << "N"
                              << "12" << 2 << 0 << int('3') << int('3');
    QTest::newRow("N punto") << "N"
                             << "12" << 2 << 0 << int('.') << int('.');
    QTest::newRow("N segundo punto") << "N"
                                     << "1.2" << 3 << 0 << int('.') << 0;
    QTest::newRow("N punto sobre seleccion") << "N"
                                             << "1.2" << 0 << 3 << int('.') << int('.');
    QTest::newRow("N menos al inicio") << "N"
                                       << "12" << 0 << 0 << int('-') << int('-');
    QTest::newRow("N menos en medio") << "N"
                                      << "12" << 1 << 0 << int('-') << 0;
    QTest::newRow("N letra") << "N"
                             << "" << 0 << 0 << int('a') << 0;
    QTest::newRow("N retroceso") << "N"
                                 << "1" << 1 << 0 << 8 << 8;
    QTest::newRow("N enter") << "N"
                             << "1" << 1 << 0 << 13 << 13;
    QTest::newRow("SN punto") << "SN"
                              << "1" << 1 << 0 << int('.') << 0;
    QTest::newRow("SN menos") << "SN"
                              << "" << 0 << 0 << int('-') << 0;
    QTest::newRow("SN digito") << "SN"
                               << "1" << 1 << 0 << int('5') << int('5');
    QTest::newRow("SD cero") << "SD"
                             << "00" << 2 << 0 << int('0') << int('0');
    QTest::newRow("SD letra") << "SD"
                              << "00" << 2 << 0 << int('x') << 0;
    QTest::newRow("D barra") << "D"
                             << "01" << 2 << 0 << int('/') << int('/');
    QTest::newRow("D guion") << "D"
                             << "2024" << 4 << 0 << int('-') << int('-');
    QTest::newRow("D letra") << "D"
                             << "01" << 2 << 0 << int('a') << 0;
    QTest::newRow("D lleno") << "D"
                             << "01/02/2024" << 10 << 0 << int('1') << 0;
    QTest::newRow("D enter lleno") << "D"
                                   << "01/02/2024" << 10 << 0 << 13 << 13;
    QTest::newRow("etiqueta en minusculas") << "n"
                                            << "" << 0 << 0 << int('a') << int('a');
    QTest::newRow("sin etiqueta") << ""
                                  << "" << 0 << 0 << int('a') << int('a');
    QTest::newRow("U no filtra aqui") << "U"
                                      << "" << 0 << 0 << int('a') << int('a');
}

void TstAccesoDatos::filtroTecla()
{
    QFETCH(QString, etiqueta);
    QFETCH(QString, texto);
    QFETCH(int, cursor);
    QFETCH(int, seleccion);
    QFETCH(int, tecla);
    QFETCH(int, queda);
    QLineEdit caja;
    caja.setProperty("Tag", etiqueta);
    caja.setText(texto);
    if (seleccion > 0)
        caja.setSelection(cursor, seleccion);
    else
        caja.setCursorPosition(cursor);
    qint32 t = tecla;
    QCOMPARE(m_ad.FiltroTecla(VTrue, &caja, t), queda);
    QCOMPARE(t, queda);
    // With the flag off every key passes.
    t = tecla;
    QCOMPARE(m_ad.FiltroTecla(VFalse, &caja, t), tecla);
}

void TstAccesoDatos::filtroMayusculas()
{
    const QList<QPair<int, int>> casos = {{'a', 'A'},   {'Z', 'Z'}, {'1', '1'}, {0xF1, 0xD1},
                                          {0xE1, 0xC1}, {8, 8},     {13, 13},   {0xDF, 0xDF}};
    QLineEdit caja;
    caja.setProperty("Tag", "U");
    for (const auto &[entra, sale] : casos) {
        qint32 t = entra;
        QCOMPARE(m_ad.FiltroMayusculas(&caja, t), sale);
        QCOMPARE(t, sale);
    }
}

void TstAccesoDatos::formateaCampo_data()
{
    QTest::addColumn<QString>("etiqueta");
    QTest::addColumn<QString>("texto");
    QTest::addColumn<QString>("formado");
    QTest::newRow("U") << "U"
                       << "kit ñandú"
                       << "KIT ÑANDÚ";
    QTest::newRow("N miles") << "N"
                             << "1,234.50"
                             << "1234.5";
    QTest::newRow("N entero") << "N"
                              << " 42 "
                              << "42";
    QTest::newRow("N negativo") << "N"
                                << "-0.25"
                                << "-0.25";
    QTest::newRow("N vacio") << "N"
                             << "  "
                             << "";
    QTest::newRow("N ilegible") << "N"
                                << "1.2.3"
                                << "1.2.3";
    QTest::newRow("SN ceros") << "SN"
                              << "007"
                              << "7";
    QTest::newRow("SD ceros") << "SD"
                              << " 007 "
                              << "007";
    QTest::newRow("D corta") << "D"
                             << "2/5/2024"
                             << "02/05/2024";
    QTest::newRow("D iso") << "D"
                           << "2024-05-02"
                           << "02/05/2024";
    QTest::newRow("D corrida") << "D"
                               << "02052024"
                               << "02/05/2024";
    QTest::newRow("D anio corto") << "D"
                                  << "2-5-24"
                                  << "02/05/2024";
    QTest::newRow("D imposible") << "D"
                                 << "31/02/2024"
                                 << "31/02/2024";
    QTest::newRow("otra etiqueta") << "X"
                                   << " abc "
                                   << " abc ";
}

void TstAccesoDatos::formateaCampo()
{
    QFETCH(QString, etiqueta);
    QFETCH(QString, texto);
    QFETCH(QString, formado);
    QLineEdit caja;
    caja.setProperty("Tag", etiqueta);
    caja.setText(texto);
    QCOMPARE(m_ad.FormateaCampo(&caja, nullptr), formado);
    // What a numeric box shows is what the numeric conversion reads back.
    if (etiqueta == QLatin1String("N") && formado != texto) {
        QString t = texto;
        QCOMPARE(m_ad.ValorNumerico(formado), t.remove(QLatin1Char(',')).trimmed().toDouble());
    }
}

void TstAccesoDatos::textoConCeros_data()
{
    QTest::addColumn<double>("numero");
    QTest::addColumn<int>("ancho");
    QTest::addColumn<QString>("texto");
    QTest::newRow("hora") << 5.0 << 2 << "05";
    QTest::newRow("cero") << 0.0 << 2 << "00";
    QTest::newRow("mas ancho que el campo") << 123.0 << 2 << "123";
    QTest::newRow("redondeo") << 7.6 << 2 << "08";
    QTest::newRow("negativo") << -5.0 << 3 << "-05";
    QTest::newRow("sin ancho") << 9.0 << 0 << "9";
}

void TstAccesoDatos::textoConCeros()
{
    QFETCH(double, numero);
    QFETCH(int, ancho);
    QFETCH(QString, texto);
    QCOMPARE(m_ad.TextoConCeros(numero, ancho), texto);
}

void TstAccesoDatos::fechaSqlSirveEnConsultas()
{
    const QSqlDatabase db = base().conexion();
    const QDate dia(2024, 5, 2);
    base().ejecuta("INSERT INTO horarios (turno, fecha, Empleado) VALUES ('T1', " +
                   m_ad.FechaSQL(db, dia) + ", 'E1')");
    base().ejecuta("INSERT INTO horarios (turno, fecha, Empleado) VALUES ('T1', " +
                   m_ad.FechaSQL(db, QDate(2024, 10, 30)) + ", 'E1')");
    const auto cuentaDonde = [&](const QString &condicion) {
        return base().escalar("SELECT COUNT(*) FROM horarios WHERE " + condicion).toInt();
    };
    QCOMPARE(cuentaDonde("fecha = " + m_ad.FechaSQL(db, dia)), 1);
    QCOMPARE(base()
                 .escalar("SELECT fecha FROM horarios WHERE fecha = " + m_ad.FechaSQL(db, dia))
                 .toDate(),
             dia);
    // Dates order as dates, across months of one and two digits.
    QCOMPARE(cuentaDonde("fecha > " + m_ad.FechaSQL(db, QDate(2024, 9, 1))), 1);
    QCOMPARE(cuentaDonde("fecha BETWEEN " + m_ad.FechaSQL(db, QDate(2024, 5, 1)) + " AND " +
                         m_ad.FechaSQL(db, QDate(2024, 5, 31))),
             1);
    QCOMPARE(m_ad.FechaSQL(db, QDate()), QStringLiteral("NULL"));
}

void TstAccesoDatos::preparaYLiberaVentana()
{
    QWidget principal;
    principal.setObjectName(QStringLiteral("frmMaster"));
    QWidget otra;
    otra.setObjectName(QStringLiteral("frmOtra"));
    principal.show();
    otra.show();
    QWidget ventana;
    m_ad.PreparaVentana(&ventana, nullptr, QString());
    QVERIFY(ventana.isVisible());
    QVERIFY(QTest::qWaitForWindowActive(&ventana));

    m_ad.LiberaVentana(&ventana, nullptr, QStringLiteral("frmMaster"));
    QTRY_VERIFY(principal.isActiveWindow());
    QVERIFY(!otra.isActiveWindow());

    // A main window that is not there: nothing happens, nothing fails.
    m_ad.LiberaVentana(&ventana, nullptr, QStringLiteral("frmNoExiste"));
    m_ad.PreparaVentana(nullptr, nullptr, QString());
}

QTEST_MAIN(TstAccesoDatos)
#include "tst_accesodatos.moc"
