#pragma once

#include <QString>

namespace zuvi {

// Removes the blanks (spaces) at both ends and nothing else, as the windows'
// stored values expect: a tab or other character typed into a field stays.
inline QString Trim(const QString &texto)
{
    qsizetype inicio = 0;
    qsizetype fin = texto.size();
    while (inicio < fin && texto.at(inicio) == QLatin1Char(' '))
        ++inicio;
    while (fin > inicio && texto.at(fin - 1) == QLatin1Char(' '))
        --fin;
    return texto.mid(inicio, fin - inicio);
}

} // namespace zuvi

namespace zuvi {

// A value the user gave, made safe to echo in a message: control characters
// (escape bytes, line breaks, tabs) are shown as \xNN, and a text longer than
// `maximo` characters is cut there with "…" added, so a pasted page or a
// terminal sequence never floods or repaints the screen.
inline QString eco(const QString &valor, qsizetype maximo = 60)
{
    QString salida;
    salida.reserve(qMin(valor.size(), maximo) + 1);
    qsizetype visibles = 0;
    for (QChar c : valor) {
        if (visibles == maximo)
            return salida + QChar(0x2026);
        const char16_t u = c.unicode();
        if (u < 0x20 || u == 0x7f || (u >= 0x80 && u < 0xa0))
            salida += QStringLiteral("\\x%1").arg(uint(u), 2, 16, QLatin1Char('0'));
        else
            salida += c;
        ++visibles;
    }
    return salida;
}

} // namespace zuvi
