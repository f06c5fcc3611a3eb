#pragma once

// What the literal scanner knows of characters and words: the classes of
// the ASCII characters, looked up in one table, and the words that change
// how the literals after them are read.

#include <QChar>
#include <QStringView>

#include <array>
#include <string_view>

namespace zuvi::anfitrion::interno {

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

// A letter (or, with numero, a letter or digit) beyond ASCII.
bool esOtraLetra(char16_t u, bool numero);

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

// The keyword a word of the text is, in any case; null when it is none.
const Palabra *palabraClave(const char16_t *p, qsizetype n);

// How many significant digits a decimal literal carries.
int digitosSignificativos(QStringView numero);

} // namespace zuvi::anfitrion::interno
