#include "host/Sql.h"

#include "host/Anfitrion.h"
#include "host/CausaError.h"
#include "host/SqlInterno.h"
#include "runtime/Error.h"

#include <QFile>
#include <QHash>
#include <QSqlDriver>
#include <QSqlError>

#include <array>
#include <list>
#include <unordered_map>

namespace zuvi::anfitrion {

using interno::FalloSql;
using interno::SentenciaPreparada;

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

FalloSql falloDe(const QSqlError &e)
{
    QString texto = e.databaseText().trimmed();
    if (texto.isEmpty())
        texto = e.text().trimmed();
    return {texto, e.nativeErrorCode().toInt()};
}

[[noreturn]] void lanza(const FalloSql &f, const QString &sql)
{
    throw Error(
        QStringLiteral("Error de base de datos: %1 [%2]").arg(causaDeFallo(f.texto, f.codigo), sql),
        f.codigo);
}

[[noreturn]] void falla(const QSqlError &e, const QString &sql)
{
    lanza(falloDe(e), sql);
}

void exigeAbierta(const QSqlDatabase &db)
{
    if (!db.isOpen())
        throw Error(QStringLiteral("No hay conexión abierta con la base de datos."));
}

QSqlQuery prepara(const QSqlDatabase &db, const QString &sql)
{
    exigeAbierta(db);
    if (sql.contains(QChar(u'\0'))) // SQLite would stop reading there
        lanza({QStringLiteral("El texto de la sentencia lleva un carácter nulo"), 0}, sql);
    QSqlQuery q(db);
    q.setForwardOnly(true);
    if (!q.prepare(sql))
        falla(q.lastError(), sql);
    return q;
}

// The generic side: a QSqlQuery, prepared once. SQLite connections step their
// statements on the driver's handle instead (host/SqlSQLite.cpp).
class SentenciaQt final : public SentenciaPreparada
{
public:
    explicit SentenciaQt(QSqlQuery q) : m_q(std::move(q)) {}

    bool ejecuta(const QVariantList &valores, RecordsetPtr *filas, ResultadoAccion *accion,
                 FalloSql &fallo) override
    {
        for (int i = 0; i < valores.size(); ++i)
            m_q.bindValue(i, valores.at(i));
        if (!m_q.exec()) {
            fallo = falloDe(m_q.lastError());
            return false;
        }
        if (filas)
            *filas = Recordset::fromQuery(m_q);
        if (accion)
            *accion = {m_q.numRowsAffected(), m_q.lastInsertId()};
        m_q.finish(); // an open read would hold SQLite's snapshot
        return true;
    }

private:
    QSqlQuery m_q;
};

// The statements kept for one connection, the most recently used first; when
// full, the least recently used one goes. The driver and its handle tell a
// connection reopened under the same name from the one they were prepared on.
struct Preparadas
{
    struct Entrada
    {
        QString texto;
        std::unique_ptr<SentenciaPreparada> sentencia;
    };
    const QSqlDriver *driver = nullptr;
    void *manejador = nullptr;
    Motor motor = Motor::SQLite;
    std::list<Entrada> orden;
    QHash<QString, std::list<Entrada>::iterator> indice;

    void vacia()
    {
        indice.clear();
        orden.clear();
    }
    // Drops the statements. The driver cannot close an SQLite handle while
    // statements of ours are open on it (its close fails and forgets the
    // handle); so when the connection no longer runs on the handle they were
    // prepared on, the handle is ours to close once they are finalized.
    void suelta(void *vivo)
    {
        void *propio = manejador;
        const bool habia = !orden.empty();
        vacia();
        if (propio && habia && propio != vivo)
            interno::cierraSQLite(propio);
    }
    void quita(const QString &texto)
    {
        const auto it = indice.find(texto);
        if (it == indice.end())
            return;
        orden.erase(*it);
        indice.erase(it);
    }
};

constexpr qsizetype kMaximoPreparadas = 256;

std::unordered_map<QString, Preparadas> &preparadas()
{
    static std::unordered_map<QString, Preparadas> cache;
    return cache;
}

// The connection of the last statement, found again without hashing its name.
struct Ultima
{
    const QSqlDriver *driver = nullptr;
    QString nombre;
    Preparadas *preparadas = nullptr;
};

Ultima &ultima()
{
    static Ultima u;
    return u;
}

Preparadas &preparadasDe(const QSqlDatabase &db)
{
    exigeAbierta(db);
    Ultima &u = ultima();
    const QString nombre = db.connectionName();
    if (u.driver != db.driver() || u.nombre != nombre) {
        u = {db.driver(), nombre, &preparadas()[nombre]};
    }
    Preparadas &p = *u.preparadas;
    void *manejador = interno::manejadorSQLite(db);
    if (p.driver != db.driver() || p.manejador != manejador) {
        p.suelta(manejador);
        p.driver = db.driver();
        p.manejador = manejador;
        p.motor = motorDe(db);
    }
    return p;
}

std::unique_ptr<SentenciaPreparada> preparaNueva(const QSqlDatabase &db, const Preparadas &p,
                                                 const QString &texto, FalloSql &fallo)
{
    if (p.manejador)
        return interno::preparaEnSQLite(p.manejador, texto, fallo);
    QSqlQuery q(db);
    q.setForwardOnly(true);
    if (!q.prepare(texto)) {
        fallo = falloDe(q.lastError());
        return nullptr;
    }
    return std::make_unique<SentenciaQt>(std::move(q));
}

// The kept statement of a text, prepared when it is not kept; null with fallo
// filled in when it does not prepare.
SentenciaPreparada *preparada(const QSqlDatabase &db, Preparadas &p, const QString &texto,
                              FalloSql &fallo)
{
    const auto it = p.indice.find(texto);
    if (it != p.indice.end()) {
        if (*it != p.orden.begin())
            p.orden.splice(p.orden.begin(), p.orden, *it);
        return p.orden.front().sentencia.get();
    }
    std::unique_ptr<SentenciaPreparada> nueva = preparaNueva(db, p, texto, fallo);
    if (!nueva)
        return nullptr;
    if (p.orden.size() >= size_t(kMaximoPreparadas)) {
        p.indice.remove(p.orden.back().texto);
        p.orden.pop_back();
    }
    p.orden.push_front({texto, std::move(nueva)});
    p.indice.insert(texto, p.orden.begin());
    return p.orden.front().sentencia.get();
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

// A text with no quote and no digit (BEGIN, COMMIT, a fixed query) has no
// literal to hoist: it is kept as it is, without scanning it.
bool puedeTenerLiterales(const QString &sql)
{
    for (const QChar c : sql) {
        const char16_t u = c.unicode();
        if (u == u'\'' || (u >= u'0' && u <= u'9'))
            return true;
    }
    return false;
}

// The scanner's answer for a text, remembered for the last texts seen: the
// same article or order comes back line after line. One slot per hash, the
// newer text taking the slot.
SentenciaNormalizada normalizada(const QString &sql, Motor motor)
{
    struct Recordada
    {
        QString original;
        Motor motor = Motor::SQLite;
        SentenciaNormalizada normalizada;
    };
    constexpr size_t kRecordadas = 512;
    static std::array<Recordada, kRecordadas> recordadas;
    Recordada &r = recordadas[qHash(sql) % kRecordadas];
    if (r.motor != motor || r.original != sql)
        r = {sql, motor, normalizaSentencia(sql, motor)};
    return r.normalizada;
}

// Runs a kept statement. A text handed over with its values written in runs
// as the kept statement of its normalized text, its literals bound; on
// failure the statement is dropped, so a lost connection or a changed table
// is prepared afresh next time.
void ejecutaPreparada(const QSqlDatabase &db, const QString &sql, const QVariantList &valores,
                      const QString &textoTraza, RecordsetPtr *filas, ResultadoAccion *accion)
{
    trazaSentencia(db, sql, valores, textoTraza);
    Preparadas &p = preparadasDe(db);
    SentenciaNormalizada n;
    if (valores.isEmpty() && puedeTenerLiterales(sql))
        n = normalizada(sql, p.motor);
    const QString &texto = n.entendida ? n.texto : sql;
    const QVariantList &enlazados = n.entendida ? n.valores : valores;
    FalloSql fallo;
    SentenciaPreparada *s = preparada(db, p, texto, fallo);
    if (!s)
        lanza(fallo, textoDe(db, sql, valores, textoTraza));
    if (!s->ejecuta(enlazados, filas, accion, fallo)) {
        p.quita(texto);
        lanza(fallo, textoDe(db, sql, valores, textoTraza));
    }
}

bool esSQLite(const QSqlDatabase &db)
{
    return motorDe(db) == Motor::SQLite;
}

} // namespace

RecordsetPtr consulta(const QSqlDatabase &db, const QString &sql, const QVariantList &valores,
                      const QString &textoTraza)
{
    RecordsetPtr filas;
    ejecutaPreparada(db, sql, valores, textoTraza, &filas, nullptr);
    return filas;
}

ResultadoAccion ejecutaAccion(const QSqlDatabase &db, const QString &sql,
                              const QVariantList &valores, const QString &textoTraza)
{
    ResultadoAccion r;
    ejecutaPreparada(db, sql, valores, textoTraza, nullptr, &r);
    return r;
}

void olvidaSentencias(const QSqlDatabase &db)
{
    ultima() = {};
    const auto it = preparadas().find(db.connectionName());
    if (it == preparadas().end())
        return;
    it->second.suelta(interno::manejadorSQLite(db));
    preparadas().erase(it);
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
    // The driver knows its engine: no name to copy and compare on every statement.
    const QSqlDriver *driver = db.driver();
    return driver && driver->dbmsType() == QSqlDriver::SQLite ? Motor::SQLite : Motor::MariaDB;
}

} // namespace zuvi::anfitrion
