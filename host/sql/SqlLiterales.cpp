// The literal scanner: a statement text written with its values in becomes
// one text with '?' in their place and the values apart, so that the texts of
// many rows share one prepared statement. It reads the text once, character
// by character, and gives up (the text then runs as it is) on anything it
// does not fully understand.

#include "host/base/Anfitrion.h"
#include "host/sql/Sql.h"
#include "host/sql/SqlInterno.h"

#include <QDate>
#include <QDateTime>
#include <QTime>
#include <QVarLengthArray>

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

namespace zuvi::anfitrion {

using interno::Literal;
using interno::Literales;
using interno::Normalizacion;

namespace {

// Where in the statement a literal stands: only in a condition, an assignment
// or a row of values may it become a bound value.
enum class Clausula { Otra, Condicion, Asignacion, Valores };

struct Nivel
{
    Clausula clausula = Clausula::Otra;
    bool patron = false; // after LIKE and its kin, until the next AND, OR or ','
};

// What an ASCII character is to the scanner, looked up in one table.
enum : quint8 { kBlanco = 1, kInicial = 2, kDeNombre = 4, kDigito = 8 };

constexpr std::array<quint8, 128> kClases = [] {
    std::array<quint8, 128> t{};
    for (char16_t c = 0; c < 128; ++c) {
        const bool letra = (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || c == u'_';
        const bool digito = c >= u'0' && c <= u'9';
        t[c] = quint8((c == u' ' || (c >= u'\t' && c <= u'\r') ? kBlanco : 0) |
                      (letra ? kInicial : 0) | (letra || digito || c == u'$' ? kDeNombre : 0) |
                      (digito ? kDigito : 0));
    }
    return t;
}();

[[gnu::noinline]] bool esOtraLetra(char16_t u, bool numero)
{
    return numero ? QChar(u).isLetterOrNumber() : QChar(u).isLetter();
}

inline bool esLetra(char16_t u)
{
    return u < 128 ? (kClases[u] & kInicial) != 0 : esOtraLetra(u, false);
}

inline bool esDeNombre(char16_t u)
{
    return u < 128 ? (kClases[u] & kDeNombre) != 0 : esOtraLetra(u, true);
}

inline bool esDigito(char16_t u)
{
    return u >= u'0' && u <= u'9';
}

inline bool esBlanco(char16_t u)
{
    return u < 128 ? (kClases[u] & kBlanco) != 0 : QChar::isSpace(u);
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
const Palabra *palabraClave(const char16_t *p, qsizetype n)
{
    constexpr qsizetype kMasLarga = 9;
    if (n < 2 || n > kMasLarga)
        return nullptr;
    char mayusculas[kMasLarga];
    for (qsizetype i = 0; i < n; ++i) {
        const char16_t c = p[i];
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
    const std::string_view w(mayusculas, size_t(n));
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
        if (!esDigito(c.unicode()))
            continue;
        if (inicio && c == QLatin1Char('0'))
            continue;
        inicio = false;
        ++n;
    }
    return n;
}

// The scan itself: one pass over the UTF-16 text, the output written into
// the caller's buffer and the literals kept as views of the text.
class Lector
{
public:
    Lector(const QString &sql, Motor motor, Normalizacion &salida)
        : m_s(reinterpret_cast<const char16_t *>(sql.constData())), m_n(sql.size()), m_motor(motor),
          m_salida(salida.texto), m_literales(salida.literales)
    {
        m_salida.clear();
        m_literales.clear();
        m_niveles.append(Nivel{});
    }

    bool lee()
    {
        const qsizetype n = m_n;
        qsizetype i = 0;
        qsizetype blancos = -1; // where the blanks before this token start
        while (i < n) {
            const char16_t c = m_s[i];
            if (esBlanco(c)) {
                if (blancos < 0)
                    blancos = i;
                ++i;
                continue;
            }
            if (blancos >= 0 && m_escrito) {
                // One blank stays as it is; a run of them becomes one.
                if (i - blancos == 1 && m_s[blancos] == u' ')
                    copia(blancos, i);
                else
                    escribe(u' ');
            }
            blancos = -1;
            const bool literalAntes = m_literalAntes;
            m_literalAntes = false;
            m_trasPunto = m_anterior == u'.';
            m_anterior = 0;
            const bool tipo = m_tipo;
            m_tipo = false;
            if (c == u'\'') {
                if (literalAntes || (i > 0 && esDeNombre(m_s[i - 1])))
                    return false; // 'a' 'b', X'0A', N'texto', _utf8'texto'
                if (!texto(i))
                    return false;
                m_literalAntes = true;
            } else if (c == u'"' || c == u'`' || (c == u'[' && m_motor == Motor::SQLite)) {
                if (!entreComillas(i, c == u'[' ? u']' : c))
                    return false;
            } else if (esDigito(c) || (c == u'.' && i + 1 < n && esDigito(m_s[i + 1]))) {
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
        m_salida.append(m_s + m_desde, size_t(m_hasta - m_desde));
        m_desde = -1;
    }
    void escribe(char16_t c)
    {
        vuelca();
        m_salida.push_back(c);
        m_escrito = true;
    }
    void sube(const Literal &l)
    {
        m_literales.append(l);
        escribe(u'?');
    }

    // A quoted text; its quote is written twice inside it.
    bool texto(qsizetype &i)
    {
        const qsizetype desde = i;
        bool dobles = false;
        for (++i; i < m_n; ++i) {
            const char16_t c = m_s[i];
            if (c == u'\\' && m_motor == Motor::MariaDB)
                return false; // an escape the server reads its own way
            if (c != u'\'')
                continue;
            if (i + 1 < m_n && m_s[i + 1] == u'\'') {
                dobles = true;
                ++i;
                continue;
            }
            ++i;
            if (subible()) {
                Literal l;
                l.tipo = Literal::Tipo::Texto;
                l.comillaDoble = dobles;
                l.texto = QStringView(m_s + desde + 1, i - desde - 2);
                l.desde = desde;
                l.hasta = i;
                sube(l);
            } else {
                copia(desde, i);
            }
            m_noSubir = false;
            return true;
        }
        return false; // not closed
    }

    bool entreComillas(qsizetype &i, char16_t cierre)
    {
        const qsizetype desde = i;
        qsizetype fin = i + 1;
        while (fin < m_n && m_s[fin] != cierre)
            ++fin;
        if (fin >= m_n)
            return false;
        i = fin + 1;
        copia(desde, i);
        return true;
    }

    bool numero(qsizetype &i)
    {
        const qsizetype desde = i;
        const qsizetype n = m_n;
        if (m_s[i] == u'0' && i + 1 < n && (m_s[i + 1] == u'x' || m_s[i + 1] == u'X'))
            return false; // hexadecimal
        bool decimal = false;
        qint64 entero = 0;
        while (i < n && esDigito(m_s[i])) {
            if (i - desde < 18) // beyond that the value is not kept (see largo)
                entero = entero * 10 + (m_s[i] - u'0');
            ++i;
        }
        const bool largo = i - desde > 18; // more than a 64-bit integer surely holds
        if (i < n && m_s[i] == u'.') {
            decimal = true;
            ++i;
            while (i < n && esDigito(m_s[i]))
                ++i;
        }
        if (i < n && (m_s[i] == u'e' || m_s[i] == u'E')) {
            decimal = true;
            ++i;
            if (i < n && (m_s[i] == u'+' || m_s[i] == u'-'))
                ++i;
            if (i >= n || !esDigito(m_s[i]))
                return false;
            while (i < n && esDigito(m_s[i]))
                ++i;
        }
        if (i < n && (esDeNombre(m_s[i]) || m_s[i] == u'.'))
            return false; // 5abc, 1.2.3
        const QStringView texto(m_s + desde, i - desde);
        Literal l;
        bool ok = false;
        if (!decimal) {
            ok = true;
            l.entero = largo ? texto.toLongLong(&ok) : entero;
        } else if (m_motor == Motor::SQLite && digitosSignificativos(texto) <= 15) {
            // The server keeps decimal literals exact; only SQLite reads them
            // as the double a bound value is.
            l.tipo = Literal::Tipo::Real;
            l.real = texto.toDouble(&ok);
        }
        l.desde = desde;
        l.hasta = i;
        if (ok && subible())
            sube(l);
        else
            copia(desde, i);
        m_noSubir = false;
        return true;
    }

    bool palabra(qsizetype &i)
    {
        const qsizetype desde = i;
        while (i < m_n && esDeNombre(m_s[i]))
            ++i;
        copia(desde, i);
        const Palabra *clave = m_trasPunto ? nullptr : palabraClave(m_s + desde, i - desde);
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

    bool signo(char16_t c, qsizetype &i, bool trasTipo)
    {
        const char16_t siguiente = i + 1 < m_n ? m_s[i + 1] : 0;
        if ((c == u'-' && siguiente == u'-') || (c == u'/' && siguiente == u'*') || c == u'#')
            return false; // a comment
        if (c == u';' || c == u'?' || c == u':' || c == u'@' || c == u'$' || c == u'{' ||
            c == u'\\')
            return false; // a second statement, a parameter, a variable
        if (c == u'(') {
            const Nivel arriba = m_niveles.last();
            m_niveles.append(trasTipo ? Nivel{} : arriba);
        } else if (c == u')') {
            if (m_niveles.size() < 2)
                return false;
            m_niveles.removeLast();
        } else if (c == u',') {
            m_niveles.last().patron = false;
        }
        copia(i, i + 1);
        m_anterior = c;
        if (c != u'.')
            m_noSubir = false;
        ++i;
        return true;
    }

    const char16_t *m_s; // the text the literals point into
    qsizetype m_n;
    Motor m_motor;
    std::u16string &m_salida;
    Literales &m_literales;
    QVarLengthArray<Nivel, 8> m_niveles;
    char16_t m_anterior = 0;
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

namespace interno {

namespace {

// The mould's slot of a text: its first characters, which the texts of one
// statement share up to their first literal.
size_t ranura(const char16_t *s, qsizetype n)
{
    constexpr qsizetype kPrefijo = 32;
    quint64 h = 0x9e3779b97f4a7c15ULL;
    for (qsizetype i = 0; i < std::min(n, kPrefijo); ++i)
        h = (h ^ s[i]) * 0xff51afd7ed558ccdULL;
    return size_t(h >> 40) % std::tuple_size_v<decltype(Normalizacion::moldes)>;
}

bool igual(const char16_t *a, const char16_t *b, qsizetype n)
{
    return std::memcmp(a, b, size_t(n) * sizeof(char16_t)) == 0;
}

// A quoted text at i, read as the scanner reads it; its end, or -1.
qsizetype finDeTexto(const char16_t *s, qsizetype n, qsizetype i, Motor motor, bool &dobles)
{
    if (i >= n || s[i] != u'\'')
        return -1;
    for (++i; i < n; ++i) {
        if (s[i] == u'\\' && motor == Motor::MariaDB)
            return -1;
        if (s[i] != u'\'')
            continue;
        if (i + 1 < n && s[i + 1] == u'\'') {
            dobles = true;
            ++i;
            continue;
        }
        return i + 1;
    }
    return -1;
}

// A number at i of the kind the mould had there, read as the scanner reads
// it and only when the scanner would take it out too; its end, or -1.
qsizetype finDeNumero(const char16_t *s, qsizetype n, qsizetype i, Literal &l)
{
    const qsizetype desde = i;
    qint64 entero = 0;
    for (; i < n && esDigito(s[i]); ++i)
        if (i - desde < 18) // longer is refused below, and would overflow
            entero = entero * 10 + (s[i] - u'0');
    if (i == desde)
        return -1;
    const bool decimal = i < n && (s[i] == u'.' || s[i] == u'e' || s[i] == u'E');
    if (l.tipo == Literal::Tipo::Entero) {
        if (decimal || i - desde > 18)
            return -1;
        l.entero = entero;
        return i;
    }
    if (!decimal)
        return -1; // a whole number: the scanner takes it as one
    if (i < n && s[i] == u'.') {
        ++i;
        while (i < n && esDigito(s[i]))
            ++i;
    }
    if (i < n && (s[i] == u'e' || s[i] == u'E')) {
        ++i;
        if (i < n && (s[i] == u'+' || s[i] == u'-'))
            ++i;
        if (i >= n || !esDigito(s[i]))
            return -1;
        while (i < n && esDigito(s[i]))
            ++i;
    }
    const QStringView texto(s + desde, i - desde);
    bool ok = false;
    if (digitosSignificativos(texto) <= 15)
        l.real = texto.toDouble(&ok);
    return ok ? i : -1;
}

// The literals of a text that is the mould's text around other literals of
// the same kinds; false when it is not.
bool encaja(const Molde &m, const char16_t *s, qsizetype n, Motor motor, Literales &literales)
{
    if (m.original.isNull() || m.motor != motor)
        return false;
    const char16_t *o = reinterpret_cast<const char16_t *>(m.original.constData());
    qsizetype io = 0, is = 0;
    for (const Molde::Hueco &h : m.huecos) {
        const qsizetype tramo = h.desde - io;
        if (is + tramo > n || !igual(s + is, o + io, tramo))
            return false;
        is += tramo;
        io = h.hasta;
        Literal l;
        l.tipo = h.tipo;
        l.desde = is;
        if (h.tipo == Literal::Tipo::Texto) {
            l.hasta = finDeTexto(s, n, is, motor, l.comillaDoble);
            if (l.hasta >= 0)
                l.texto = QStringView(s + is + 1, l.hasta - is - 2);
        } else {
            l.hasta = finDeNumero(s, n, is, l);
        }
        if (l.hasta < 0)
            return false;
        is = l.hasta;
        literales.append(l);
    }
    const qsizetype resto = m.original.size() - io;
    return n - is == resto && igual(s + is, o + io, resto);
}

} // namespace

bool normaliza(const QString &sql, Motor motor, Normalizacion &n)
{
    const auto *s = reinterpret_cast<const char16_t *>(sql.constData());
    Molde &molde = n.moldes[ranura(s, sql.size())];
    n.literales.clear();
    if (encaja(molde, s, sql.size(), motor, n.literales)) {
        n.texto.assign(molde.texto);
        return true;
    }
    if (!Lector(sql, motor, n).lee())
        return false;
    molde.original = sql;
    molde.texto.assign(n.texto);
    molde.motor = motor;
    molde.huecos.clear();
    for (const Literal &l : n.literales)
        molde.huecos.append({l.desde, l.hasta, l.tipo});
    return true;
}

QVariant valorDe(const Literal &l)
{
    switch (l.tipo) {
    case Literal::Tipo::Entero:
        return QVariant(l.entero);
    case Literal::Tipo::Real:
        return QVariant(l.real);
    case Literal::Tipo::Texto:
        break;
    }
    QString t = l.texto.toString();
    if (l.comillaDoble)
        t.replace(QStringLiteral("''"), QStringLiteral("'"));
    return QVariant(t);
}

} // namespace interno

SentenciaNormalizada normalizaSentencia(const QString &sql, Motor motor)
{
    interno::Normalizacion n;
    SentenciaNormalizada r;
    if (!interno::normaliza(sql, motor, n))
        return r;
    r.texto = n.vista().toString();
    for (const interno::Literal &l : n.literales)
        r.valores.append(interno::valorDe(l));
    r.entendida = true;
    return r;
}

} // namespace zuvi::anfitrion
