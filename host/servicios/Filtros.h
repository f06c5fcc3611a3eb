#pragma once

// Key filters and display formatting of the editor's text boxes, chosen by the
// box's tag. The tags and what each admits while typing:
//
//   "U"   any character, turned to upper case (letters with accents and the
//         enye included).
//   "N"   a decimal number: digits, at most one decimal point and a minus
//         sign only as the first character.
//   "SN"  a whole number: digits only ("solo numeros").
//   "SD"  a code of digits kept as text: digits only ("solo digitos"); unlike
//         "SN" its leading zeros stay when the box is formatted.
//   "D"   a date: digits and the separators '/' and '-', at most 10 characters.
//
// Control codes (below 32: backspace 8, Enter 13, Tab, Escape, the clipboard
// keys) always pass, so editing keeps working in every box. A refused key comes
// back as 0. The decision looks at the text the box would hold after the key
// (the selection replaced by it), so a second decimal point or a minus in the
// middle is refused wherever the caret is. Tags are compared exactly: "n" or
// "sd" get no filter.
//
// Formatting a box for display (when it is filled by code or left):
//   "U"   the text in upper case.
//   "N"   the number in plain C-locale form without thousands separators or
//         trailing zeros ("1,234.50" -> "1234.5"), so the numeric conversion
//         reads it back; blank stays blank, unreadable text is left alone.
//   "SN"  the whole number without leading zeros ("007" -> "7").
//   "SD"  the digits as typed, trimmed.
//   "D"   the date as dd/MM/yyyy, read from d/M/yyyy, d-M-yyyy, yyyy-MM-dd,
//         ddMMyyyy or d/M/yy (years 00-69 are 2000-2069); an impossible date
//         is left as typed so the user sees what to fix.
//   other tags: the text unchanged.

#include <QDate>
#include <QString>

namespace zuvi::anfitrion {

// The character code to keep for a key typed into a box with this tag, text,
// and selection (start and length; with no selection, start is the caret).
int filtraTecla(const QString &etiqueta, const QString &texto, int inicioSeleccion,
                int largoSeleccion, int tecla);

// The upper-case form of a typed character code; control codes unchanged.
int mayuscula(int tecla);

// The display form of a box's text under its tag.
QString formateaTexto(const QString &etiqueta, const QString &texto);

// A date typed in one of the forms "D" accepts; a null date when none fits.
QDate leeFecha(const QString &texto);

} // namespace zuvi::anfitrion
