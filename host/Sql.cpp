#include "host/Sql.h"

#include "host/Anfitrion.h"
#include "runtime/Error.h"

#include <QDate>
#include <QDateTime>
#include <QTime>

#include <QFile>
#include <QHash>
#include <QSqlDriver>
#include <QSqlError>

namespace zuvi::anfitrion {

namespace {

struct Traza
{
    QString archivo;
    QFile file;
};

Traza &estado()
{
    static Traza t;
    return t;
}

[[noreturn]] void falla(const QSqlError &e, const QString &sql)
{
    QString texto = e.databaseText().trimmed();
    if (texto.isEmpty())
        texto = e.text().trimmed();
    if (texto.isEmpty())
        texto = QStringLiteral("error desconocido");
    throw Error(QStringLiteral("Error de base de datos: %1 [%2]").arg(texto, sql),
                e.nativeErrorCode().toInt());
}

QSqlQuery prepara(const QSqlDatabase &db, const QString &sql)
{
    if (!db.isOpen())
        throw Error(QStringLiteral("No hay conexión abierta con la base de datos."));
    QSqlQuery q(db);
    q.setForwardOnly(true);
    if (!q.prepare(sql))
        falla(q.lastError(), sql);
    return q;
}

// Prepared statements kept per connection name. The driver pointer tells a
// connection reopened under the same name from the one the statements were
// prepared on.
struct Preparadas
{
    const QSqlDriver *driver = nullptr;
    QHash<QString, QSqlQuery> sentencias;
};

constexpr qsizetype kMaximoPreparadas = 256;

QHash<QString, Preparadas> &preparadas()
{
    static QHash<QString, Preparadas> cache;
    return cache;
}

QSqlQuery &preparada(const QSqlDatabase &db, const QString &sql)
{
    if (!db.isOpen())
        throw Error(QStringLiteral("No hay conexión abierta con la base de datos."));
    Preparadas &p = preparadas()[db.connectionName()];
    if (p.driver != db.driver()) {
        p.sentencias.clear();
        p.driver = db.driver();
    }
    auto it = p.sentencias.find(sql);
    if (it != p.sentencias.end())
        return *it;
    if (p.sentencias.size() >= kMaximoPreparadas)
        p.sentencias.clear();
    return *p.sentencias.insert(sql, prepara(db, sql));
}

// The text a statement is traced and reported with: the one given, or the
// statement with its values written in.
QString textoDe(const QSqlDatabase &db, const QString &sql, const QVariantList &valores,
                const QString &textoTraza)
{
    if (!textoTraza.isEmpty())
        return textoTraza;
    return valores.isEmpty() ? sql : textoConValores(sql, valores, motorDe(db));
}

void trazaSentencia(const QSqlDatabase &db, const QString &sql, const QVariantList &valores,
                    const QString &textoTraza)
{
    if (hayTraza())
        traza(textoDe(db, sql, valores, textoTraza));
}

// Runs a kept statement; on failure it is dropped, so a lost connection or a
// changed table is prepared afresh next time.
QSqlQuery &ejecutaPreparada(const QSqlDatabase &db, const QString &sql, const QVariantList &valores,
                            const QString &textoTraza)
{
    trazaSentencia(db, sql, valores, textoTraza);
    QSqlQuery &q = preparada(db, sql);
    for (int i = 0; i < valores.size(); ++i)
        q.bindValue(i, valores.at(i));
    if (!q.exec()) {
        const QSqlError error = q.lastError();
        preparadas()[db.connectionName()].sentencias.remove(sql);
        falla(error, textoDe(db, sql, valores, textoTraza));
    }
    return q;
}

bool esSQLite(const QSqlDatabase &db)
{
    return motorDe(db) == Motor::SQLite;
}

} // namespace

RecordsetPtr consulta(const QSqlDatabase &db, const QString &sql, const QVariantList &valores,
                      const QString &textoTraza)
{
    QSqlQuery &q = ejecutaPreparada(db, sql, valores, textoTraza);
    RecordsetPtr filas = Recordset::fromQuery(q);
    q.finish(); // an open read would hold SQLite's snapshot
    return filas;
}

ResultadoAccion ejecutaAccion(const QSqlDatabase &db, const QString &sql,
                              const QVariantList &valores, const QString &textoTraza)
{
    QSqlQuery &q = ejecutaPreparada(db, sql, valores, textoTraza);
    ResultadoAccion r{q.numRowsAffected(), q.lastInsertId()};
    q.finish();
    return r;
}

void olvidaSentencias(const QSqlDatabase &db)
{
    preparadas().remove(db.connectionName());
}

Transaccion::Transaccion(const QSqlDatabase &db) : m_db(db), m_sqlite(esSQLite(db))
{
    if (m_sqlite) {
        // Inside a transaction already: SQLite refuses a nested BEGIN; join it.
        try {
            ejecutaAccion(m_db, QStringLiteral("BEGIN"));
            m_propia = true;
        } catch (const Error &) {
            m_propia = false;
        }
    } else {
        m_propia = m_db.transaction();
        if (m_propia)
            traza(QStringLiteral("BEGIN"));
    }
}

Transaccion::~Transaccion()
{
    if (!m_propia)
        return;
    try {
        if (m_sqlite) {
            ejecutaAccion(m_db, QStringLiteral("ROLLBACK"));
        } else {
            traza(QStringLiteral("ROLLBACK"));
            m_db.rollback();
        }
    } catch (...) {
        // The connection may be gone; the server rolls back on its own then.
    }
}

void Transaccion::confirma()
{
    if (!m_propia)
        return;
    if (m_sqlite) {
        ejecutaAccion(m_db, QStringLiteral("COMMIT"));
    } else {
        traza(QStringLiteral("COMMIT"));
        if (!m_db.commit())
            throw Error(QStringLiteral("No se pudo confirmar la transacción: %1")
                            .arg(m_db.lastError().text()));
    }
    m_propia = false;
}

QSqlQuery ejecuta(const QSqlDatabase &db, const QString &sql)
{
    traza(sql);
    QSqlQuery q = prepara(db, sql);
    if (!q.exec())
        falla(q.lastError(), sql);
    return q;
}

QSqlQuery ejecutaConValores(const QSqlDatabase &db, const QString &sql, const QVariantList &valores,
                            const QString &textoTraza)
{
    trazaSentencia(db, sql, valores, textoTraza);
    QSqlQuery q = prepara(db, sql);
    for (int i = 0; i < valores.size(); ++i)
        q.bindValue(i, valores.at(i));
    if (!q.exec())
        falla(q.lastError(), textoDe(db, sql, valores, textoTraza));
    return q;
}

void ponTraza(const QString &archivo)
{
    Traza &t = estado();
    t.file.close();
    t.archivo = archivo;
    if (archivo.isEmpty())
        return;
    t.file.setFileName(archivo);
    if (!t.file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Text))
        throw Error(QStringLiteral("No se puede abrir el archivo de traza \"%1\": %2")
                        .arg(archivo, t.file.errorString()));
}

QString archivoTraza()
{
    return estado().archivo;
}

bool hayTraza()
{
    return estado().file.isOpen();
}

void traza(const QString &sentencia)
{
    Traza &t = estado();
    if (!t.file.isOpen())
        return;
    QString linea = sentencia;
    linea.replace(QLatin1Char('\n'), QLatin1Char(' ')).replace(QLatin1Char('\r'), QLatin1Char(' '));
    t.file.write(linea.toUtf8());
    t.file.write("\n");
    t.file.flush();
}

Motor motorDe(const QSqlDatabase &db)
{
    return db.driverName().startsWith(QLatin1String("QSQLITE")) ? Motor::SQLite : Motor::MariaDB;
}

QString literalSql(const QVariant &v, Motor motor)
{
    if (!v.isValid() || v.isNull())
        return QStringLiteral("NULL");
    const auto citado = [](const QString &t) { return QLatin1Char('\'') + t + QLatin1Char('\''); };
    switch (v.typeId()) {
    case QMetaType::Bool:
        return v.toBool() ? QStringLiteral("1") : QStringLiteral("0");
    case QMetaType::Double:
    case QMetaType::Float:
        return QString::number(v.toDouble(), 'g', 15);
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::UChar:
        return v.toString();
    case QMetaType::QDate:
        return citado(v.toDate().toString(QStringLiteral("yyyy-MM-dd")));
    case QMetaType::QTime:
        return citado(v.toTime().toString(QStringLiteral("hh:mm:ss")));
    case QMetaType::QDateTime:
        return citado(v.toDateTime().toString(QStringLiteral("yyyy-MM-dd hh:mm:ss")));
    default: {
        QString t = v.toString();
        if (motor == Motor::MariaDB)
            t.replace(QLatin1Char('\\'), QStringLiteral("\\\\"));
        t.replace(QLatin1Char('\''), QStringLiteral("''"));
        return citado(t);
    }
    }
}

QString textoConValores(const QString &sql, const QVariantList &valores, Motor motor)
{
    QString texto;
    texto.reserve(sql.size() + 16 * valores.size());
    qsizetype siguiente = 0;
    QChar comilla;
    for (const QChar c : sql) {
        if (!comilla.isNull()) {
            if (c == comilla)
                comilla = QChar();
        } else if (c == QLatin1Char('\'') || c == QLatin1Char('"')) {
            comilla = c;
        } else if (c == QLatin1Char('?') && siguiente < valores.size()) {
            texto += literalSql(valores.at(siguiente++), motor);
            continue;
        }
        texto += c;
    }
    return texto;
}

} // namespace zuvi::anfitrion
