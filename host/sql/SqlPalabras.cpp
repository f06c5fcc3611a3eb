// The words and characters of a statement text as the literal scanner
// reads them.

#include "host/sql/SqlCaracteres.h"

#include <QVarLengthArray>

namespace zuvi::anfitrion::interno {

namespace {

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

} // namespace

[[gnu::noinline]] bool esOtraLetra(char16_t u, bool numero)
{
    return numero ? QChar(u).isLetterOrNumber() : QChar(u).isLetter();
}

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

} // namespace zuvi::anfitrion::interno
