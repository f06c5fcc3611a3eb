#include "host/sql/Sql.h"

#include "host/sql/CausaError.h"
#include "host/sql/Motor.h"
#include "host/sql/Reconexion.h"
#include "host/sql/SqlInterno.h"
#include "runtime/Error.h"

#include <QFile>
#include <QHash>
#include <QSqlDriver>
#include <QSqlError>

#include <array>
#include <cstring>
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

// A failure of a statement on a connection: a lost one is marked, so that
// the next statement reconnects, and said so in the person's words.
[[noreturn]] void fallaEn(const QSqlDatabase &db, const FalloSql &f, const QString &sql)
{
    if (motorDe(db) == Motor::MariaDB && esConexionPerdida(f.texto, f.codigo)) {
        marcaPerdida(db);
        throw ConexionPerdida(textoConexionPerdida(), f.codigo);
    }
    lanza(f, sql);
}

// Runs f on the connection, reconnected first when it was lost; a read that
// finds it lost runs once more on the new connection, a write never does.
template <typename F> auto conReconexion(const QSqlDatabase &db, bool lectura, F &&f)
{
    reconectaSiHaceFalta(db, olvidaSentencias);
    try {
        return f();
    } catch (const ConexionPerdida &) {
        if (!lectura)
            throw;
    }
    reconectaSiHaceFalta(db, olvidaSentencias);
    return f();
}

bool esLectura(const QString &sql)
{
    return sql.trimmed().startsWith(QLatin1String("SELECT"), Qt::CaseInsensitive);
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
        fallaEn(db, falloDe(q.lastError()), sql);
    return q;
}

// The generic side: a QSqlQuery, prepared once. SQLite connections step their
// statements on the driver's handle instead (host/sql/SqlSQLite.cpp).
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

// The kept texts are the program's own statements, not keys anyone picks to
// collide: a multiply per four characters spreads them well enough.
struct HashTexto
{
    size_t operator()(QStringView t) const noexcept
    {
        constexpr quint64 kMezcla = 0xff51afd7ed558ccdULL;
        const char16_t *p = t.utf16();
        const qsizetype n = t.size();
        quint64 h = 0x9e3779b97f4a7c15ULL ^ quint64(n);
        qsizetype i = 0;
        for (; i + 4 <= n; i += 4) {
            quint64 w;
            std::memcpy(&w, p + i, sizeof w);
            h = (h ^ w) * kMezcla;
            h ^= h >> 29;
        }
        for (; i < n; ++i)
            h = (h ^ p[i]) * kMezcla;
        return size_t(h ^ (h >> 32));
    }
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
    using Lista = std::list<Entrada>;
    // A text handed over with its values apart is most often a constant: it
    // comes back in the same buffer, which the kept text shares, and is found
    // by its address without hashing it. An equal address and length is the
    // same text: a buffer shared with a kept text does not change.
    struct Atajo
    {
        const QChar *datos = nullptr;
        Lista::iterator entrada;
    };

    const QSqlDriver *driver = nullptr;
    void *manejador = nullptr;
    Motor motor = Motor::SQLite;
    Lista orden;
    std::unordered_map<QStringView, Lista::iterator, HashTexto> indice; // views of the kept texts
    std::array<Atajo, 8> atajos;
    // BEGIN, COMMIT and ROLLBACK on SQLite, apart from the texts.
    std::array<std::unique_ptr<SentenciaPreparada>, 3> control;
    // The scanner's buffers, kept from one statement to the next.
    interno::Normalizacion normalizacion;

    void vacia()
    {
        atajos.fill({});
        indice.clear();
        orden.clear();
        for (auto &s : control)
            s.reset();
    }
    bool hayAbiertas() const { return !orden.empty() || control[0] || control[1] || control[2]; }
    // Still running on the handle the driver runs: the statements of ours
    // open on it keep a close of it from going through unnoticed.
    bool vigente() const
    {
        return manejador && hayAbiertas() && !interno::marcadoOcupado(manejador);
    }
    // Drops the statements. The driver cannot close an SQLite handle while
    // statements of ours are open on it (its close fails and forgets the
    // handle); so when the connection no longer runs on the handle they were
    // prepared on, the handle is ours to close once they are finalized.
    void suelta(void *vivo)
    {
        void *propio = manejador;
        const bool habia = hayAbiertas();
        vacia();
        if (propio && habia && propio != vivo)
            interno::cierraSQLite(propio);
    }
    void quita(Lista::iterator e)
    {
        atajos.fill({});
        indice.erase(QStringView(e->texto));
        orden.erase(e);
    }
    // The kept statement of a text, or orden.end(). dado is the text as it
    // was handed over, when it runs as it is.
    Lista::iterator busca(QStringView texto, const QString *dado)
    {
        Atajo *atajo = nullptr;
        if (dado) {
            atajo = &atajos[(quintptr(dado->constData()) >> 4) % atajos.size()];
            if (atajo->datos == dado->constData() && atajo->entrada->texto.size() == dado->size())
                return atajo->entrada;
        }
        const auto it = indice.find(texto);
        if (it == indice.end())
            return orden.end();
        if (atajo && it->second->texto.constData() == dado->constData())
            *atajo = {dado->constData(), it->second};
        return it->second;
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
    Ultima &u = ultima();
    // The same connection as the last statement, its handle unchanged: no
    // name to copy nor handle to ask the driver for.
    if (u.driver == db.driver() && u.preparadas && u.preparadas->vigente())
        return *u.preparadas;
    exigeAbierta(db);
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

// The kept statement of a text, prepared when it is not kept and put first;
// orden.end() with fallo filled in when it does not prepare.
Preparadas::Lista::iterator preparada(const QSqlDatabase &db, Preparadas &p, QStringView texto,
                                      const QString *dado, FalloSql &fallo)
{
    const auto it = p.busca(texto, dado);
    if (it != p.orden.end()) {
        if (it != p.orden.begin())
            p.orden.splice(p.orden.begin(), p.orden, it);
        return it;
    }
    QString guardado = dado ? *dado : texto.toString();
    std::unique_ptr<SentenciaPreparada> nueva = preparaNueva(db, p, guardado, fallo);
    if (!nueva)
        return p.orden.end();
    if (p.orden.size() >= size_t(kMaximoPreparadas))
        p.quita(std::prev(p.orden.end()));
    p.orden.push_front({std::move(guardado), std::move(nueva)});
    p.indice.emplace(QStringView(p.orden.front().texto), p.orden.begin());
    return p.orden.begin();
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

// Runs a kept statement. A text handed over with its values written in runs
// as the kept statement of its normalized text, its literals bound; on
// failure the statement is dropped, so a lost connection or a changed table
// is prepared afresh next time.
void ejecutaPreparada(const QSqlDatabase &db, const QString &sql, const QVariantList &valores,
                      const QString &textoTraza, RecordsetPtr *filas, ResultadoAccion *accion)
{
    trazaSentencia(db, sql, valores, textoTraza);
    Preparadas &p = preparadasDe(db);
    interno::Normalizacion &n = p.normalizacion;
    const bool normalizada = valores.isEmpty() && interno::normaliza(sql, p.motor, n);
    const QStringView texto = normalizada ? n.vista() : QStringView(sql);
    FalloSql fallo;
    const auto e = preparada(db, p, texto, normalizada ? nullptr : &sql, fallo);
    if (e == p.orden.end())
        fallaEn(db, fallo, textoDe(db, sql, valores, textoTraza));
    SentenciaPreparada &s = *e->sentencia;
    if (normalizada ? !s.ejecutaLiterales(n.literales, filas, accion, fallo)
                    : !s.ejecuta(valores, filas, accion, fallo)) {
        p.quita(e);
        fallaEn(db, fallo, textoDe(db, sql, valores, textoTraza));
    }
}

enum class Control { Inicia, Confirma, Deshace };

const QString &textoControl(Control orden)
{
    static const std::array<QString, 3> textos{QStringLiteral("BEGIN"), QStringLiteral("COMMIT"),
                                               QStringLiteral("ROLLBACK")};
    return textos[size_t(orden)];
}

// BEGIN, COMMIT and ROLLBACK on SQLite: traced as any statement, run on
// statements kept apart, with no text to scan or look up. A BEGIN inside a
// transaction is not run: the caller joins the transaction. False with fallo
// filled in when the statement fails.
bool ejecutaControl(const QSqlDatabase &db, Control orden, FalloSql &fallo)
{
    const QString &texto = textoControl(orden);
    traza(texto);
    Preparadas &p = preparadasDe(db);
    if (orden == Control::Inicia && p.manejador && interno::enTransaccionSQLite(p.manejador))
        return false;
    std::unique_ptr<SentenciaPreparada> &s = p.control[size_t(orden)];
    if (!s)
        s = preparaNueva(db, p, texto, fallo);
    if (s && s->ejecuta({}, nullptr, nullptr, fallo))
        return true;
    s.reset(); // prepared afresh next time
    return false;
}

bool esSQLite(const QSqlDatabase &db)
{
    return motorDe(db) == Motor::SQLite;
}

} // namespace

RecordsetPtr consulta(const QSqlDatabase &db, const QString &sql, const QVariantList &valores,
                      const QString &textoTraza)
{
    return conReconexion(db, true, [&] {
        RecordsetPtr filas;
        ejecutaPreparada(db, sql, valores, textoTraza, &filas, nullptr);
        return filas;
    });
}

ResultadoAccion ejecutaAccion(const QSqlDatabase &db, const QString &sql,
                              const QVariantList &valores, const QString &textoTraza)
{
    return conReconexion(db, false, [&] {
        ResultadoAccion r;
        ejecutaPreparada(db, sql, valores, textoTraza, nullptr, &r);
        return r;
    });
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
            FalloSql fallo;
            m_propia = ejecutaControl(m_db, Control::Inicia, fallo);
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
            FalloSql fallo;
            ejecutaControl(m_db, Control::Deshace, fallo);
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
        FalloSql fallo;
        if (!ejecutaControl(m_db, Control::Confirma, fallo))
            lanza(fallo, textoControl(Control::Confirma));
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
    return conReconexion(db, esLectura(sql), [&] {
        QSqlQuery q = prepara(db, sql);
        if (!q.exec())
            fallaEn(db, falloDe(q.lastError()), sql);
        return q;
    });
}

QSqlQuery ejecutaConValores(const QSqlDatabase &db, const QString &sql, const QVariantList &valores,
                            const QString &textoTraza)
{
    trazaSentencia(db, sql, valores, textoTraza);
    return conReconexion(db, esLectura(sql), [&] {
        QSqlQuery q = prepara(db, sql);
        for (int i = 0; i < valores.size(); ++i)
            q.bindValue(i, valores.at(i));
        if (!q.exec())
            fallaEn(db, falloDe(q.lastError()), textoDe(db, sql, valores, textoTraza));
        return q;
    });
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
