// The host's statement builder against a real database.
// ZUVI_PRUEBA_AMBAS_BASES

#include "host/ConstructorSqlAnfitrion.h"
#include "host/Sql.h"
#include "runtime/Error.h"
#include "tests/support/BaseDePrueba.h"

#include <QLineEdit>
#include <QTemporaryDir>
#include <QtTest>

#include <functional>

using namespace zuvi;
using namespace zuvi::anfitrion;
using zuvi::pruebas::BaseDePrueba;

namespace {

// A header row with every kind of value the editor hands over.
void agregaCabecera(ConstructorSql &c, qint32 op, QObject *usuario)
{
    c.AgregaCampo("op", "op", QVariant::fromValue<qint32>(op));
    c.AgregaCampo("op", "ocupado", QVariant::fromValue<qint16>(1));
    c.AgregaCampo("op", "f_emision", QDate(2024, 5, 2));
    c.AgregaCampo("op", "importe", 1234.56);
    c.AgregaCampo("op", "costo", QVariant::fromValue<qint16>(0));
    c.AgregaCampo("op", "almacen", QStringLiteral("3"));
    c.AgregaCampo("op", "estado", QStringLiteral("PE"));
    c.AgregaCampo("op", "observ", QStringLiteral("O'Brien; DELETE FROM op; --"));
    c.AgregaCampo("op", "usuario", QVariant::fromValue<QObject *>(usuario));
    c.AgregaCampo("op", "usuhora", QStringLiteral("10:11:12"));
    c.AgregaCampo("op", "automatico", true);
    c.AgregaCampo("op", "ordencompra", QVariant());
}

} // namespace

class TstConstructorSql : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_base = std::make_unique<BaseDePrueba>(false); }
    void cleanup()
    {
        m_base.reset();
        ponTraza(QString());
    }

    void insertYUpdateConservanCadaTipo();
    void generaEscribeLosValores();
    void updateSinColumnasNoHaceNada();
    void usosIndebidosSonError_data();
    void usosIndebidosSonError();
    void condicionConSegundaSentenciaNoSeEjecuta_data();
    void condicionConSegundaSentenciaNoSeEjecuta();
    void trazaRegistraLoGenerado();

private:
    QVariant escalar(const QString &sql) { return m_base->escalar(sql); }
    std::unique_ptr<BaseDePrueba> m_base;
};

void TstConstructorSql::insertYUpdateConservanCadaTipo()
{
    QLineEdit usuario;
    usuario.setText(QStringLiteral("MARÍA"));
    ConstructorSqlAnfitrion c;
    c.PonConexion(m_base->conexion());
    c.Limpia();
    c.Tipo(QStringLiteral("INSERT"));
    agregaCabecera(c, 501, &usuario);
    c.Genera(QStringLiteral("op"));
    c.Ejecuta();

    QCOMPARE(escalar("SELECT COUNT(*) FROM op WHERE op = 501").toInt(), 1);
    QCOMPARE(escalar("SELECT ocupado FROM op WHERE op = 501").toInt(), 1);
    QCOMPARE(escalar("SELECT f_emision FROM op WHERE op = 501").toDate(), QDate(2024, 5, 2));
    QCOMPARE(escalar("SELECT importe FROM op WHERE op = 501").toDouble(), 1234.56);
    QCOMPARE(escalar("SELECT almacen FROM op WHERE op = 501").toInt(), 3);
    QCOMPARE(escalar("SELECT observ FROM op WHERE op = 501").toString(),
             QStringLiteral("O'Brien; DELETE FROM op; --"));
    QCOMPARE(escalar("SELECT usuario FROM op WHERE op = 501").toString(), QStringLiteral("MARÍA"));
    QCOMPARE(escalar("SELECT usuhora FROM op WHERE op = 501").toString(),
             QStringLiteral("10:11:12"));
    QCOMPARE(escalar("SELECT automatico FROM op WHERE op = 501").toInt(), 1);
    QVERIFY(escalar("SELECT ordencompra FROM op WHERE op = 501").isNull());
    // A date column compares with the literal form the host writes.
    QCOMPARE(escalar("SELECT COUNT(*) FROM op WHERE f_emision = '2024-05-02'").toInt(), 1);

    // UPDATE of the same row, reusing the builder after Limpia.
    c.Limpia();
    c.Tipo(QStringLiteral("update"));
    c.AgregaCampo("op", "ocupado", QVariant::fromValue<qint16>(0));
    c.AgregaCampo("op", "estado", QStringLiteral("CO"));
    c.AgregaCampo("op", "costo", 99.5);
    c.AgregaCampo("op", "fechaEntrega", QDate(2024, 12, 31));
    c.Condicion(QStringLiteral("op = 501"));
    c.Genera(QStringLiteral("Op")); // table names in either case
    c.Ejecuta();
    QCOMPARE(escalar("SELECT estado FROM op WHERE op = 501").toString(), QStringLiteral("CO"));
    QCOMPARE(escalar("SELECT ocupado FROM op WHERE op = 501").toInt(), 0);
    QCOMPARE(escalar("SELECT costo FROM op WHERE op = 501").toDouble(), 99.5);
    QCOMPARE(escalar("SELECT fechaEntrega FROM op WHERE op = 501").toDate(), QDate(2024, 12, 31));
    // Untouched columns keep their values.
    QCOMPARE(escalar("SELECT importe FROM op WHERE op = 501").toDouble(), 1234.56);
}

void TstConstructorSql::generaEscribeLosValores()
{
    ConstructorSqlAnfitrion c;
    c.Tipo(QStringLiteral("INSERT"));
    c.AgregaCampo("oppart", "id_entrada", QVariant::fromValue<qint32>(7));
    c.AgregaCampo("oppart", "articulo", QStringLiteral("O'Brien"));
    c.AgregaCampo("oppart", "cantidad", 2.5);
    c.AgregaCampo("oppart", "partida", QVariant::fromValue<qint16>(0));
    c.AgregaCampo("oppart", "usufecha", QDate(2024, 1, 9));
    c.AgregaCampo("oppart", "observ", QVariant());
    QCOMPARE(
        c.Genera(QStringLiteral("oppart")),
        QStringLiteral("INSERT INTO oppart (id_entrada, articulo, cantidad, partida, "
                       "usufecha, observ) VALUES (7, 'O''Brien', 2.5, 0, '2024-01-09', NULL)"));
    QCOMPARE(c.sentencia(), QStringLiteral("INSERT INTO oppart (id_entrada, articulo, cantidad, "
                                           "partida, usufecha, observ) VALUES (?, ?, ?, ?, ?, ?)"));
    QCOMPARE(c.valores().size(), 6);

    c.Limpia();
    c.Tipo(QStringLiteral("UPDATE"));
    c.AgregaCampo("oppart", "cantidad", 3.0);
    c.Condicion(QStringLiteral("id_entrada = 7"));
    QCOMPARE(c.Genera(QStringLiteral("oppart")),
             QStringLiteral("UPDATE oppart SET cantidad = 3 WHERE id_entrada = 7"));
}

void TstConstructorSql::updateSinColumnasNoHaceNada()
{
    m_base->ejecuta(
        "INSERT INTO oppart (id_entrada, op, articulo, cantidad) VALUES (1, 1, 'A', 4)");
    ConstructorSqlAnfitrion c;
    c.PonConexion(m_base->conexion());
    c.Limpia();
    c.Tipo(QStringLiteral("UPDATE"));
    c.Condicion(QStringLiteral("id_entrada = 1"));
    QCOMPARE(c.Genera(QStringLiteral("oppart")), QString());
    c.Ejecuta(); // succeeds
    QCOMPARE(escalar("SELECT cantidad FROM oppart WHERE id_entrada = 1").toDouble(), 4.0);
}

void TstConstructorSql::usosIndebidosSonError_data()
{
    using Paso = std::function<void(ConstructorSqlAnfitrion &, const QSqlDatabase &)>;
    QTest::addColumn<Paso>("paso");
    QTest::newRow("Ejecuta sin Genera") << Paso([](auto &c, const QSqlDatabase &db) {
        c.PonConexion(db);
        c.Tipo("UPDATE");
        c.AgregaCampo("op", "estado", "CO");
        c.Condicion("op = 1");
        c.Ejecuta();
    });
    QTest::newRow("cambio tras Genera") << Paso([](auto &c, const QSqlDatabase &db) {
        c.PonConexion(db);
        c.Tipo("UPDATE");
        c.AgregaCampo("op", "estado", "CO");
        c.Condicion("op = 1");
        c.Genera("op");
        c.AgregaCampo("op", "ocupado", 0);
        c.Ejecuta();
    });
    QTest::newRow("sin conexion") << Paso([](auto &c, const QSqlDatabase &) {
        c.Tipo("UPDATE");
        c.AgregaCampo("op", "estado", "CO");
        c.Condicion("op = 1");
        c.Genera("op");
        c.Ejecuta();
    });
    QTest::newRow("tipo desconocido")
        << Paso([](auto &c, const QSqlDatabase &) { c.Tipo("DELETE"); });
    QTest::newRow("sin tipo") << Paso([](auto &c, const QSqlDatabase &) {
        c.AgregaCampo("op", "estado", "CO");
        c.Genera("op");
    });
    QTest::newRow("columna de otra tabla") << Paso([](auto &c, const QSqlDatabase &) {
        c.Tipo("UPDATE");
        c.AgregaCampo("oppart", "cantidad", 1);
        c.Condicion("op = 1");
        c.Genera("op");
    });
    QTest::newRow("nombre de columna con sentencia") << Paso([](auto &c, const QSqlDatabase &) {
        c.Tipo("INSERT");
        c.AgregaCampo("op", "op) VALUES (1); DELETE FROM op; --", 1);
    });
    QTest::newRow("insert sin columnas") << Paso([](auto &c, const QSqlDatabase &) {
        c.Tipo("INSERT");
        c.Genera("op");
    });
    QTest::newRow("update sin condicion") << Paso([](auto &c, const QSqlDatabase &) {
        c.Tipo("UPDATE");
        c.AgregaCampo("op", "ocupado", 0);
        c.Genera("op");
    });
    QTest::newRow("llave duplicada") << Paso([](auto &c, const QSqlDatabase &db) {
        c.PonConexion(db);
        c.Tipo("INSERT");
        c.AgregaCampo("op", "op", 1);
        c.Genera("op");
        c.Ejecuta();
    });
}

void TstConstructorSql::usosIndebidosSonError()
{
    QFETCH(std::function<void(ConstructorSqlAnfitrion &, const QSqlDatabase &)>, paso);
    m_base->ejecuta("INSERT INTO op (op, estado, ocupado) VALUES (1, 'PE', 1)");
    ConstructorSqlAnfitrion c;
    QVERIFY_THROWS_EXCEPTION(Error, paso(c, m_base->conexion()));
    QCOMPARE(escalar("SELECT COUNT(*) FROM op").toInt(), 1);
    QCOMPARE(escalar("SELECT estado FROM op WHERE op = 1").toString(), QStringLiteral("PE"));
    QCOMPARE(escalar("SELECT ocupado FROM op WHERE op = 1").toInt(), 1);
}

void TstConstructorSql::condicionConSegundaSentenciaNoSeEjecuta_data()
{
    QTest::addColumn<QString>("condicion");
    QTest::newRow("segunda sentencia") << QStringLiteral("op = 1; DELETE FROM op");
    QTest::newRow("comilla sin cerrar") << QStringLiteral("observ = 'O'Brien'");
    QTest::newRow("texto que cierra y borra")
        << QStringLiteral("observ = 'X'; DELETE FROM op; --'");
}

void TstConstructorSql::condicionConSegundaSentenciaNoSeEjecuta()
{
    QFETCH(QString, condicion);
    m_base->ejecuta("INSERT INTO op (op, estado) VALUES (1, 'PE')");
    m_base->ejecuta("INSERT INTO op (op, estado) VALUES (2, 'PE')");
    ConstructorSqlAnfitrion c;
    c.PonConexion(m_base->conexion());
    c.Tipo(QStringLiteral("UPDATE"));
    c.AgregaCampo("op", "estado", QStringLiteral("CO"));
    c.Condicion(condicion);
    c.Genera(QStringLiteral("op"));
    QVERIFY_THROWS_EXCEPTION(Error, c.Ejecuta());
    QCOMPARE(escalar("SELECT COUNT(*) FROM op").toInt(), 2);
    QCOMPARE(escalar("SELECT COUNT(*) FROM op WHERE estado = 'CO'").toInt(), 0);
}

void TstConstructorSql::trazaRegistraLoGenerado()
{
    QTemporaryDir dir;
    const QString archivo = dir.filePath(QStringLiteral("traza.sql"));
    ponTraza(archivo);
    ConstructorSqlAnfitrion c;
    c.PonConexion(m_base->conexion());
    c.Tipo(QStringLiteral("INSERT"));
    c.AgregaCampo("op", "op", QVariant::fromValue<qint32>(77));
    c.AgregaCampo("op", "observ", QStringLiteral("línea 1\nlínea 2"));
    const QString texto = c.Genera(QStringLiteral("op"));
    c.Ejecuta();
    // An UPDATE with no columns runs nothing and traces nothing.
    c.Limpia();
    c.Tipo(QStringLiteral("UPDATE"));
    c.Condicion(QStringLiteral("op = 77"));
    c.Genera(QStringLiteral("op"));
    c.Ejecuta();
    ponTraza(QString());

    QFile f(archivo);
    QVERIFY(f.open(QIODevice::ReadOnly));
    const QStringList lineas =
        QString::fromUtf8(f.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    QCOMPARE(lineas.size(), 1);
    QCOMPARE(lineas.at(0), QString(texto).replace(QLatin1Char('\n'), QLatin1Char(' ')));
    QVERIFY(lineas.at(0).contains(QStringLiteral("'línea 1 línea 2'")));
}

QTEST_MAIN(TstConstructorSql)
#include "tst_constructorsql.moc"
