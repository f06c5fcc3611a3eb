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
