// Reading a text from the mould of an earlier one: the texts of one
// statement differ only in their literals, so a text that is the mould's
// text around literals of the same kinds is read without scanning it again.

#include "host/sql/SqlCaracteres.h"
#include "host/sql/SqlInterno.h"

#include <algorithm>
#include <cstring>

namespace zuvi::anfitrion::interno {

namespace {

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

} // namespace

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

} // namespace zuvi::anfitrion::interno
