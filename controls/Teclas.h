#pragma once

// The numeric key codes and shift state the windows' handlers compare
// against, translated from Qt key events in this one place.

#include "core/Exporta.h"

#include <QtCore/qnamespace.h>
#include <QtGlobal>

class QKeyEvent;

namespace zuvi::teclas {

inline constexpr qint16 Retroceso = 8;
inline constexpr qint16 Tabulador = 9;
inline constexpr qint16 Limpiar = 12;
inline constexpr qint16 Enter = 13;
inline constexpr qint16 Mayusculas = 16;
inline constexpr qint16 Control = 17;
inline constexpr qint16 Alt = 18;
inline constexpr qint16 Pausa = 19;
inline constexpr qint16 BloqMayus = 20;
inline constexpr qint16 Escape = 27;
inline constexpr qint16 Espacio = 32;
inline constexpr qint16 RePag = 33;
inline constexpr qint16 AvPag = 34;
inline constexpr qint16 Fin = 35;
inline constexpr qint16 Inicio = 36;
inline constexpr qint16 Izquierda = 37;
inline constexpr qint16 Arriba = 38;
inline constexpr qint16 Derecha = 39;
inline constexpr qint16 Abajo = 40;
inline constexpr qint16 Insertar = 45;
inline constexpr qint16 Suprimir = 46;
inline constexpr qint16 Num0 = 96; // keypad 0..9 are 96..105
inline constexpr qint16 NumPor = 106;
inline constexpr qint16 NumMas = 107;
inline constexpr qint16 NumMenos = 109;
inline constexpr qint16 NumPunto = 110;
inline constexpr qint16 NumEntre = 111;
inline constexpr qint16 F1 = 112; // F1..F12 are 112..123
inline constexpr qint16 F2 = 113;
inline constexpr qint16 F3 = 114;
inline constexpr qint16 F5 = 116;
inline constexpr qint16 F6 = 117;
inline constexpr qint16 F8 = 119;
inline constexpr qint16 F9 = 120;
inline constexpr qint16 F12 = 123;

// Shift state bits.
inline constexpr qint16 ShiftMask = 1;
inline constexpr qint16 CtrlMask = 2;
inline constexpr qint16 AltMask = 4;

// The key code of a key event: letters as upper-case ASCII, digits 48-57,
// keypad digits 96-105, F1-F12 112-123 and so on. A key that types a symbol
// has the code of the physical key: Shift+9 "(" is 57, "ñ" is 192, ";" 186.
// 0 only for keys that have no code at all (a bare dead key of no known
// layout, media keys).
ZUVI_PRODUCCION_EXPORT qint16 codigoTecla(const QKeyEvent *evento);
ZUVI_PRODUCCION_EXPORT qint16 codigoTecla(int teclaQt, Qt::KeyboardModifiers modificadores);

// The shift state: 1 shift, 2 ctrl, 4 alt, added together.
ZUVI_PRODUCCION_EXPORT qint16 estadoShift(Qt::KeyboardModifiers modificadores);

// The character code a key press types (what KeyPress handlers receive):
// Enter 13, Backspace 8, Escape 27, otherwise the typed character; 0 when the
// key types nothing.
ZUVI_PRODUCCION_EXPORT qint16 codigoCaracter(const QKeyEvent *evento);

// The Qt key for a character code, to replay a character a handler changed.
ZUVI_PRODUCCION_EXPORT int teclaQtDeCaracter(qint16 caracter);

} // namespace zuvi::teclas
