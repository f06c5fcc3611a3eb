// The literal scanner: a statement text written with its values in becomes
// one text with '?' in their place and the values apart, so that the texts of
// many rows share one prepared statement. It reads the text once, character
// by character, and gives up (the text then runs as it is) on anything it
// does not fully understand.

#include "host/Anfitrion.h"
#include "host/Sql.h"

#include <QDate>
#include <QDateTime>
#include <QTime>
#include <QVarLengthArray>

#include <array>
#include <string_view>

namespace zuvi::anfitrion {

namespace {

// Where in the statement a literal stands: only in a condition, an assignment
// or a row of values may it become a bound value.
enum class Clausula { Otra, Condicion, Asignacion, Valores };

struct Nivel
{
    Clausula clausula = Clausula::Otra;
    bool patron = false; // after LIKE and its kin, until the next AND, OR or ','
};

bool esLetra(QChar c)
{
    const char16_t u = c.unicode();
    if (u < 128)
        return (u >= u'a' && u <= u'z') || (u >= u'A' && u <= u'Z') || u == u'_';
    return c.isLetter();
}

bool esDeNombre(QChar c)
{
    const char16_t u = c.unicode();
    if (u < 128)
        return (u >= u'a' && u <= u'z') || (u >= u'A' && u <= u'Z') || (u >= u'0' && u <= u'9') ||
               u == u'_' || u == u'$';
    return c.isLetterOrNumber();
}

bool esDigito(QChar c)
{
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

// What a word of the statement does to the scan.
enum class Clave {
    Condicion,  // WHERE
    Asignacion, // SET
    Valores,    // VALUES
    Otra,       // a clause where literals stay: SELECT, FROM, ORDER, ... and AS
    Patron,     // LIKE and its kin: the pattern stays
    Conector,   // AND, OR, WHEN, ...: ends a pattern
    NoSubir,    // the literal after it stays: INTERVAL 5 DAY, DATE '2024-01-01'
    Tipo,       // a type whose sizes follow: DECIMAL(10, 2)
};

struct Palabra
{
    std::string_view texto;
    Clave clave;
    bool inicia; // a statement the scanner follows starts with it
};

constexpr Palabra kPalabras[] = {
    {"WHERE", Clave::Condicion, false},   {"SET", Clave::Asignacion, false},
    {"VALUES", Clave::Valores, false},    {"VALUE", Clave::Valores, false},
    {"SELECT", Clave::Otra, true},        {"INSERT", Clave::Otra, true},
    {"UPDATE", Clave::Otra, true},        {"DELETE", Clave::Otra, true},
    {"REPLACE", Clave::Otra, true},       {"FROM", Clave::Otra, false},
    {"JOIN", Clave::Otra, false},         {"ON", Clave::Otra, false},
    {"USING", Clave::Otra, false},        {"INTO", Clave::Otra, false},
    {"GROUP", Clave::Otra, false},        {"ORDER", Clave::Otra, false},
    {"HAVING", Clave::Otra, false},       {"LIMIT", Clave::Otra, false},
    {"OFFSET", Clave::Otra, false},       {"UNION", Clave::Otra, false},
    {"EXCEPT", Clave::Otra, false},       {"INTERSECT", Clave::Otra, false},
    {"RETURNING", Clave::Otra, false},    {"WINDOW", Clave::Otra, false},
    {"OVER", Clave::Otra, false},         {"AS", Clave::Otra, false},
    {"PARTITION", Clave::Otra, false},    {"LIKE", Clave::Patron, false},
    {"GLOB", Clave::Patron, false},       {"REGEXP", Clave::Patron, false},
    {"RLIKE", Clave::Patron, false},      {"MATCH", Clave::Patron, false},
    {"ESCAPE", Clave::Patron, false},     {"AND", Clave::Conector, false},
    {"OR", Clave::Conector, false},       {"WHEN", Clave::Conector, false},
    {"THEN", Clave::Conector, false},     {"ELSE", Clave::Conector, false},
    {"END", Clave::Conector, false},      {"INTERVAL", Clave::NoSubir, false},
    {"DATE", Clave::NoSubir, false},      {"TIME", Clave::NoSubir, false},
    {"TIMESTAMP", Clave::NoSubir, false}, {"SEPARATOR", Clave::NoSubir, false},
    {"DECIMAL", Clave::Tipo, false},      {"DEC", Clave::Tipo, false},
    {"NUMERIC", Clave::Tipo, false},      {"CHAR", Clave::Tipo, false},
    {"VARCHAR", Clave::Tipo, false},      {"FLOAT", Clave::Tipo, false},
    {"DOUBLE", Clave::Tipo, false},       {"BINARY", Clave::Tipo, false},
};

// The word in capitals, looked up without building a string.
const Palabra *palabraClave(QStringView p)
{
    constexpr qsizetype kMasLarga = 9;
    if (p.size() < 2 || p.size() > kMasLarga)
        return nullptr;
    char mayusculas[kMasLarga];
    for (qsizetype i = 0; i < p.size(); ++i) {
        const char16_t c = p.at(i).unicode();
        if (c >= u'a' && c <= u'z')
            mayusculas[i] = char(c - u'a' + 'A');
        else if (c < 128)
            mayusculas[i] = char(c);
        else
            return nullptr;
    }
    if (mayusculas[0] < 'A' || mayusculas[0] > 'Z')
        return nullptr;
    // The words by their first letter, so that a lookup compares a few.
    static const auto porLetra = [] {
        std::array<QVarLengthArray<const Palabra *, 8>, 26> tabla;
        for (const Palabra &k : kPalabras)
            tabla[size_t(k.texto[0] - 'A')].append(&k);
        return tabla;
    }();
    const std::string_view w(mayusculas, size_t(p.size()));
    for (const Palabra *k : porLetra[size_t(mayusculas[0] - 'A')]) {
        if (k->texto == w)
            return k;
    }
    return nullptr;
}

// How many significant digits a decimal literal carries.
int digitosSignificativos(QStringView numero)
{
    int n = 0;
    bool inicio = true;
    for (const QChar c : numero) {
        if (c == QLatin1Char('e') || c == QLatin1Char('E'))
            break;
        if (!esDigito(c))
            continue;
        if (inicio && c == QLatin1Char('0'))
            continue;
        inicio = false;
        ++n;
    }
    return n;
}

class Lector
{
public:
    Lector(const QString &sql, Motor motor) : m_sql(sql), m_motor(motor)
    {
        m_niveles.append(Nivel{});
    }

    bool lee()
    {
        const qsizetype n = m_sql.size();
        qsizetype i = 0;
        qsizetype blancos = -1; // where the blanks before this token start
        while (i < n) {
            const QChar c = m_sql.at(i);
            if (c.isSpace()) {
                if (blancos < 0)
                    blancos = i;
                ++i;
                continue;
            }
            if (blancos >= 0 && m_escrito) {
                // One blank stays as it is; a run of them becomes one.
                if (i - blancos == 1 && m_sql.at(blancos) == QLatin1Char(' '))
                    copia(blancos, i);
                else
                    escribe(QLatin1Char(' '));
            }
            blancos = -1;
            const bool literalAntes = m_literalAntes;
            m_literalAntes = false;
            m_trasPunto = m_anterior == QLatin1Char('.');
            m_anterior = QChar();
            const bool tipo = m_tipo;
            m_tipo = false;
            if (c == QLatin1Char('\'')) {
                if (literalAntes || (i > 0 && esDeNombre(m_sql.at(i - 1))))
                    return false; // 'a' 'b', X'0A', N'texto', _utf8'texto'
                if (!texto(i))
                    return false;
                m_literalAntes = true;
            } else if (c == QLatin1Char('"') || c == QLatin1Char('`') ||
                       (c == QLatin1Char('[') && m_motor == Motor::SQLite)) {
                if (!entreComillas(i, c == QLatin1Char('[') ? QLatin1Char(']') : c))
                    return false;
            } else if (esDigito(c) ||
                       (c == QLatin1Char('.') && i + 1 < n && esDigito(m_sql.at(i + 1)))) {
                if (!numero(i))
                    return false;
            } else if (esLetra(c)) {
                if (!palabra(i))
                    return false;
            } else if (!signo(c, i, tipo)) {
                return false;
            }
        }
        vuelca();
        return m_niveles.size() == 1;
    }

    QString m_salida;
    QVariantList m_valores;

private:
    bool subible() const
    {
        const Nivel &nivel = m_niveles.last();
        return nivel.clausula != Clausula::Otra && !nivel.patron && !m_noSubir;
    }

    // What is copied as it is accumulates as one run of the original text and
    // is written when something else must be written, or at the end.
    void copia(qsizetype desde, qsizetype hasta)
    {
        m_escrito = true;
        if (m_desde >= 0 && m_hasta == desde) {
            m_hasta = hasta;
            return;
        }
        vuelca();
        m_desde = desde;
        m_hasta = hasta;
    }
    void vuelca()
    {
        if (m_desde < 0)
            return;
        if (m_salida.isEmpty() && m_desde == 0 && m_hasta == m_sql.size())
            m_salida = m_sql; // nothing changed: shared, not copied
        else
            m_salida += QStringView(m_sql).mid(m_desde, m_hasta - m_desde);
        m_desde = -1;
    }
    void escribe(QChar c)
    {
        vuelca();
        if (m_salida.isEmpty())
            m_salida.reserve(m_sql.size());
        m_salida += c;
        m_escrito = true;
    }

    // A quoted text; its quote is written twice inside it.
    bool texto(qsizetype &i)
    {
        const qsizetype desde = i;
        QString valor;
        bool dobles = false;
        for (++i; i < m_sql.size(); ++i) {
            const QChar c = m_sql.at(i);
            if (c == QLatin1Char('\\') && m_motor == Motor::MariaDB)
                return false; // an escape the server reads its own way
            if (c == QLatin1Char('\'')) {
                if (i + 1 < m_sql.size() && m_sql.at(i + 1) == QLatin1Char('\'')) {
                    dobles = true;
                    ++i;
                    continue;
                }
                ++i;
                const QStringView dentro = QStringView(m_sql).mid(desde + 1, i - desde - 2);
                if (subible()) {
                    QString v = dentro.toString();
                    if (dobles)
                        v.replace(QStringLiteral("''"), QStringLiteral("'"));
                    m_valores.append(std::move(v));
                    escribe(QLatin1Char('?'));
                } else {
                    copia(desde, i);
                }
                m_noSubir = false;
                return true;
            }
        }
        return false; // not closed
    }

    bool entreComillas(qsizetype &i, QChar cierre)
    {
        const qsizetype desde = i;
        const qsizetype fin = m_sql.indexOf(cierre, i + 1);
        if (fin < 0)
            return false;
        i = fin + 1;
        copia(desde, i);
        return true;
    }

    bool numero(qsizetype &i)
    {
        const qsizetype desde = i;
        const qsizetype n = m_sql.size();
        if (m_sql.at(i) == QLatin1Char('0') && i + 1 < n &&
            (m_sql.at(i + 1) == QLatin1Char('x') || m_sql.at(i + 1) == QLatin1Char('X')))
            return false; // hexadecimal
        bool decimal = false;
        while (i < n && esDigito(m_sql.at(i)))
            ++i;
        if (i < n && m_sql.at(i) == QLatin1Char('.')) {
            decimal = true;
            ++i;
            while (i < n && esDigito(m_sql.at(i)))
                ++i;
        }
        if (i < n && (m_sql.at(i) == QLatin1Char('e') || m_sql.at(i) == QLatin1Char('E'))) {
            decimal = true;
            ++i;
            if (i < n && (m_sql.at(i) == QLatin1Char('+') || m_sql.at(i) == QLatin1Char('-')))
                ++i;
            if (i >= n || !esDigito(m_sql.at(i)))
                return false;
            while (i < n && esDigito(m_sql.at(i)))
                ++i;
        }
        if (i < n && (esDeNombre(m_sql.at(i)) || m_sql.at(i) == QLatin1Char('.')))
            return false; // 5abc, 1.2.3
        const QStringView texto = QStringView(m_sql).mid(desde, i - desde);
        QVariant valor;
        bool ok = false;
        if (!decimal) {
            const qint64 v = texto.toLongLong(&ok);
            if (ok)
                valor = v;
        } else if (m_motor == Motor::SQLite && digitosSignificativos(texto) <= 15) {
            // The server keeps decimal literals exact; only SQLite reads them
            // as the double a bound value is.
            const double v = texto.toDouble(&ok);
            if (ok)
                valor = v;
        }
        if (valor.isValid() && subible()) {
            m_valores.append(valor);
            escribe(QLatin1Char('?'));
        } else {
            copia(desde, i);
        }
        m_noSubir = false;
        return true;
    }

    bool palabra(qsizetype &i)
    {
        const qsizetype desde = i;
        while (i < m_sql.size() && esDeNombre(m_sql.at(i)))
            ++i;
        const QStringView p = QStringView(m_sql).mid(desde, i - desde);
        copia(desde, i);
        const Palabra *clave = m_trasPunto ? nullptr : palabraClave(p);
        if (!m_primera) {
            m_primera = true;
            if (!clave || !clave->inicia)
                return false;
        }
        m_noSubir = false;
        if (!clave)
            return true;
        Nivel &nivel = m_niveles.last();
        switch (clave->clave) {
        case Clave::Condicion:
            nivel = {Clausula::Condicion, false};
            break;
        case Clave::Asignacion:
            nivel = {Clausula::Asignacion, false};
            break;
        case Clave::Valores:
            nivel = {Clausula::Valores, false};
            break;
        case Clave::Otra: // AS also ends a level inside CAST(x AS DECIMAL(10, 2))
            nivel = {Clausula::Otra, false};
            break;
        case Clave::Patron:
            nivel.patron = true;
            break;
        case Clave::Conector:
            nivel.patron = false;
            break;
        case Clave::NoSubir:
            m_noSubir = true;
            break;
        case Clave::Tipo:
            m_tipo = true;
            break;
        }
        return true;
    }

    bool signo(QChar c, qsizetype &i, bool trasTipo)
    {
        const QChar siguiente = i + 1 < m_sql.size() ? m_sql.at(i + 1) : QChar();
        if ((c == QLatin1Char('-') && siguiente == QLatin1Char('-')) ||
            (c == QLatin1Char('/') && siguiente == QLatin1Char('*')) || c == QLatin1Char('#'))
            return false; // a comment
        if (c == QLatin1Char(';') || c == QLatin1Char('?') || c == QLatin1Char(':') ||
            c == QLatin1Char('@') || c == QLatin1Char('$') || c == QLatin1Char('{') ||
            c == QLatin1Char('\\'))
            return false; // a second statement, a parameter, a variable
        if (c == QLatin1Char('(')) {
            const Nivel arriba = m_niveles.last();
            m_niveles.append(trasTipo ? Nivel{} : arriba);
        } else if (c == QLatin1Char(')')) {
            if (m_niveles.size() < 2)
                return false;
            m_niveles.removeLast();
        } else if (c == QLatin1Char(',')) {
            m_niveles.last().patron = false;
        }
        copia(i, i + 1);
        m_anterior = c;
        if (c != QLatin1Char('.'))
            m_noSubir = false;
        ++i;
        return true;
    }

    const QString &m_sql;
    Motor m_motor;
    QVarLengthArray<Nivel, 8> m_niveles;
    QChar m_anterior;
    bool m_escrito = false;
    qsizetype m_desde = -1, m_hasta = -1;
    bool m_primera = false;
    bool m_literalAntes = false;
    bool m_noSubir = false;
    bool m_trasPunto = false;
    bool m_tipo = false;
};

} // namespace

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

SentenciaNormalizada normalizaSentencia(const QString &sql, Motor motor)
{
    Lector lector(sql, motor);
    SentenciaNormalizada r;
    if (!lector.lee())
        return r;
    r.texto = std::move(lector.m_salida);
    r.valores = std::move(lector.m_valores);
    r.entendida = true;
    return r;
}

} // namespace zuvi::anfitrion
