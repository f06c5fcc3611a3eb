// The SQLite side of the statement path: the statement prepared and stepped
// on the handle of the driver's own connection, its values bound as UTF-8
// and its columns read by ordinal, converted as the driver converts them.

#include "host/sql/SqlInterno.h"

#include <QDate>
#include <QDateTime>
#include <QSqlDriver>
#include <QStringEncoder>
#include <QTime>

#include <sqlite3.h>

#include <string>
#include <vector>

namespace zuvi::anfitrion::interno {

namespace {

class SentenciaSQLite final : public SentenciaPreparada
{
public:
    SentenciaSQLite(sqlite3 *db, sqlite3_stmt *st) : m_db(db), m_st(st) {}
    ~SentenciaSQLite() override { sqlite3_finalize(m_st); }

    bool ejecuta(const QVariantList &valores, RecordsetPtr *filas, ResultadoAccion *accion,
                 FalloSql &fallo) override
    {
        if (!preparaMarcas(valores.size(), fallo))
            return false;
        for (int i = 0; i < valores.size(); ++i) {
            if (enlaza(i, valores.at(i)) != SQLITE_OK)
                return falla(fallo);
        }
        return corre(filas, accion, fallo);
    }

    bool ejecutaLiterales(const Literales &literales, RecordsetPtr *filas, ResultadoAccion *accion,
                          FalloSql &fallo) override
    {
        if (!preparaMarcas(literales.size(), fallo))
            return false;
        for (int i = 0; i < literales.size(); ++i) {
            if (enlaza(i, literales[i]) != SQLITE_OK)
                return falla(fallo);
        }
        return corre(filas, accion, fallo);
    }

private:
    bool preparaMarcas(qsizetype valores, FalloSql &fallo)
    {
        if (sqlite3_stmt_busy(m_st)) // every way out resets it; this is the guard
            sqlite3_reset(m_st);
        const int marcas = sqlite3_bind_parameter_count(m_st);
        if (marcas != valores) {
            fallo = {QStringLiteral("Parameter count mismatch"), SQLITE_RANGE};
            return false;
        }
        if (m_textos.size() < size_t(marcas))
            m_textos.resize(size_t(marcas));
        return true;
    }

    bool corre(RecordsetPtr *filas, ResultadoAccion *accion, FalloSql &fallo)
    {
        QVariantList leidas;
        int rc;
        while ((rc = sqlite3_step(m_st)) == SQLITE_ROW) {
            if (filas)
                leeFila(leidas);
        }
        if (rc != SQLITE_DONE) {
            const bool r = falla(fallo);
            sqlite3_reset(m_st);
            return r;
        }
        if (filas) {
            revisaColumnas();
            *filas = Recordset::fromValues(m_columnas, std::move(leidas));
        }
        if (accion) {
            accion->filas = sqlite3_changes(m_db);
            const qint64 id = sqlite3_last_insert_rowid(m_db);
            accion->ultimoId = id ? QVariant(id) : QVariant();
        }
        // A statement left stepping would hold its read snapshot open.
        sqlite3_reset(m_st);
        return true;
    }

    bool falla(FalloSql &fallo)
    {
        fallo = {QString::fromUtf8(sqlite3_errmsg(m_db)), sqlite3_extended_errcode(m_db)};
        return false;
    }

    int enlazaTexto(int i, QStringView texto)
    {
        std::string &b = m_textos[size_t(i)];
        const qsizetype n = texto.size();
        b.resize(size_t(n));
        // Codes and numbers are plain ASCII: copied byte for byte.
        for (qsizetype k = 0; k < n; ++k) {
            const char16_t c = texto.at(k).unicode();
            if (c >= 0x80) {
                b.resize(size_t(m_utf8.requiredSpace(n)));
                char *fin = m_utf8.appendToBuffer(b.data(), texto);
                b.resize(size_t(fin - b.data()));
                break;
            }
            b[size_t(k)] = char(c);
        }
        return sqlite3_bind_text(m_st, i + 1, b.data(), int(b.size()), SQLITE_STATIC);
    }

    // The values bound as the driver binds them, null where the driver takes a
    // value for null: an empty variant, a null text, date or byte array, an
    // invalid time or date and time.
    int enlaza(int i, const Literal &l)
    {
        switch (l.tipo) {
        case Literal::Tipo::Entero:
            return sqlite3_bind_int64(m_st, i + 1, l.entero);
        case Literal::Tipo::Real:
            return sqlite3_bind_double(m_st, i + 1, l.real);
        case Literal::Tipo::Texto:
            break;
        }
        if (!l.comillaDoble)
            return enlazaTexto(i, l.texto);
        QString t = l.texto.toString();
        t.replace(QStringLiteral("''"), QStringLiteral("'"));
        return enlazaTexto(i, t);
    }

    int enlaza(int i, const QVariant &v)
    {
        const int n = i + 1;
        // The variant's type and null mark, read in place: a variant made of a
        // type and no value is null whatever its type.
        const QVariant::Private &datos = v.data_ptr();
        const QMetaType tipo = datos.type();
        if (datos.is_null || !tipo.iface())
            return sqlite3_bind_null(m_st, n);
        const void *d = v.constData();
        switch (tipo.id()) {
        case QMetaType::Int:
            return sqlite3_bind_int64(m_st, n, *static_cast<const int *>(d));
        case QMetaType::LongLong:
            return sqlite3_bind_int64(m_st, n, *static_cast<const qlonglong *>(d));
        case QMetaType::Double:
            return sqlite3_bind_double(m_st, n, *static_cast<const double *>(d));
        case QMetaType::Bool:
        case QMetaType::Short:
        case QMetaType::UShort:
        case QMetaType::Char:
        case QMetaType::SChar:
        case QMetaType::UChar:
        case QMetaType::UInt:
        case QMetaType::Long:
            return sqlite3_bind_int64(m_st, n, v.toLongLong());
        case QMetaType::ULong:
        case QMetaType::ULongLong:
            return sqlite3_bind_int64(m_st, n, qint64(v.toULongLong()));
        case QMetaType::Float:
            return sqlite3_bind_double(m_st, n, v.toDouble());
        case QMetaType::QByteArray: {
            const QByteArray &b = *static_cast<const QByteArray *>(d);
            if (b.isNull())
                return sqlite3_bind_null(m_st, n);
            return sqlite3_bind_blob(m_st, n, b.constData(), int(b.size()), SQLITE_TRANSIENT);
        }
        case QMetaType::QString: {
            const QString &t = *static_cast<const QString *>(d);
            return t.isNull() ? sqlite3_bind_null(m_st, n) : enlazaTexto(i, t);
        }
        case QMetaType::QDate: {
            const QDate &fecha = *static_cast<const QDate *>(d);
            if (fecha.isNull())
                return sqlite3_bind_null(m_st, n);
            // One posting after another carries the same date: its text is kept.
            if (fecha != m_fecha || m_textoFecha.isEmpty()) {
                m_fecha = fecha;
                m_textoFecha = fecha.toString(Qt::ISODate);
            }
            return enlazaTexto(i, m_textoFecha);
        }
        case QMetaType::QDateTime: {
            const QDateTime &t = *static_cast<const QDateTime *>(d);
            if (!t.isValid())
                return sqlite3_bind_null(m_st, n);
            return enlazaTexto(i, t.toString(Qt::ISODateWithMs));
        }
        case QMetaType::QTime: {
            const QTime &t = *static_cast<const QTime *>(d);
            if (!t.isValid())
                return sqlite3_bind_null(m_st, n);
            return enlazaTexto(i, t.toString(QStringLiteral("hh:mm:ss.zzz")));
        }
        default:
            if (v.isNull()) // a null pointer
                return sqlite3_bind_null(m_st, n);
            return enlazaTexto(i, v.toString());
        }
    }

    // The row's values appended to f.
    void leeFila(QVariantList &f)
    {
        const int n = sqlite3_column_count(m_st);
        if (f.isEmpty())
            f.reserve(n);
        for (int i = 0; i < n; ++i) {
            switch (sqlite3_column_type(m_st, i)) {
            case SQLITE_INTEGER:
                f.append(QVariant(qint64(sqlite3_column_int64(m_st, i))));
                break;
            case SQLITE_FLOAT:
                f.append(QVariant(sqlite3_column_double(m_st, i)));
                break;
            case SQLITE_NULL:
                f.append(QVariant(QMetaType::fromType<QString>()));
                break;
            case SQLITE_BLOB: {
                const auto *datos = static_cast<const char *>(sqlite3_column_blob(m_st, i));
                f.append(QVariant(QByteArray(datos, sqlite3_column_bytes(m_st, i))));
                break;
            }
            default: {
                const auto *t = reinterpret_cast<const char *>(sqlite3_column_text(m_st, i));
                f.append(QVariant(QString::fromUtf8(t, sqlite3_column_bytes(m_st, i))));
                break;
            }
            }
        }
    }

    // The names are read again only when SQLite prepared the statement anew
    // (a changed table): the pointers it hands out change with it.
    void revisaColumnas()
    {
        const int n = sqlite3_column_count(m_st);
        bool iguales = int(m_punteros.size()) == n;
        for (int i = 0; iguales && i < n; ++i)
            iguales = m_punteros[size_t(i)] == sqlite3_column_name(m_st, i);
        if (iguales)
            return;
        m_punteros.clear();
        QStringList nombres;
        nombres.reserve(n);
        for (int i = 0; i < n; ++i) {
            const char *nombre = sqlite3_column_name(m_st, i);
            m_punteros.push_back(nombre);
            // The driver drops the quotes of a quoted column name.
            nombres.append(QString::fromUtf8(nombre).remove(QLatin1Char('"')));
        }
        m_columnas = nombres;
    }

    sqlite3 *m_db;
    sqlite3_stmt *m_st;
    QStringEncoder m_utf8{QStringEncoder::Utf8, QStringEncoder::Flag::Stateless};
    std::vector<std::string> m_textos;
    std::vector<const char *> m_punteros;
    QStringList m_columnas;
    QDate m_fecha;
    QString m_textoFecha;
};

} // namespace

void cierraSQLite(void *manejador)
{
    sqlite3_close(static_cast<sqlite3 *>(manejador));
}

bool enTransaccionSQLite(void *manejador)
{
    return sqlite3_get_autocommit(static_cast<sqlite3 *>(manejador)) == 0;
}

bool marcadoOcupado(void *manejador)
{
    return (sqlite3_extended_errcode(static_cast<sqlite3 *>(manejador)) & 0xff) == SQLITE_BUSY;
}

void *manejadorSQLite(const QSqlDatabase &db)
{
    const QSqlDriver *driver = db.driver();
    if (!driver || !driver->isOpen())
        return nullptr;
    // The driver registers the handle's type on first use: it is recognised
    // by name once, then by the type itself.
    static QMetaType tipo;
    const QVariant h = driver->handle();
    if (h.metaType() != tipo) {
        if (!h.isValid() || qstrcmp(h.typeName(), "sqlite3*") != 0)
            return nullptr;
        tipo = h.metaType();
    }
    return *static_cast<sqlite3 *const *>(h.constData());
}

std::unique_ptr<SentenciaPreparada> preparaEnSQLite(void *manejador, const QString &sql,
                                                    FalloSql &fallo)
{
    auto *db = static_cast<sqlite3 *>(manejador);
    // SQLite reads a text up to its first null character: "DELETE FROM op\0
    // WHERE ..." would run as a DELETE of every row.
    if (sql.contains(QChar(u'\0'))) {
        fallo = {QStringLiteral("El texto de la sentencia lleva un carácter nulo"), SQLITE_MISUSE};
        return nullptr;
    }
    const QByteArray texto = sql.toUtf8();
    sqlite3_stmt *st = nullptr;
    const char *resto = nullptr;
    const int rc = sqlite3_prepare_v2(db, texto.constData(), int(texto.size()) + 1, &st, &resto);
    if (rc != SQLITE_OK) {
        fallo = {QString::fromUtf8(sqlite3_errmsg(db)), sqlite3_extended_errcode(db)};
        sqlite3_finalize(st);
        return nullptr;
    }
    if (!st) {
        fallo = {QStringLiteral("No hay sentencia que ejecutar"), SQLITE_MISUSE};
        return nullptr;
    }
    if (resto && !QByteArray(resto).trimmed().isEmpty()) {
        sqlite3_finalize(st);
        fallo = {QStringLiteral("Unable to execute multiple statements at a time"), SQLITE_MISUSE};
        return nullptr;
    }
    return std::make_unique<SentenciaSQLite>(db, st);
}

} // namespace zuvi::anfitrion::interno
