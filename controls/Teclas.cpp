#include "controls/Teclas.h"

#include <QKeyEvent>

namespace zuvi::teclas {

namespace {

// Keys that type a symbol arrive as the symbol; the handlers get the code of
// the key that produces it: the digit row for its shifted symbols, the
// punctuation keys of the US and Spanish layouts for theirs. Any other
// character key (a letter with an accent) gets its upper-case Latin-1 code,
// so that no key that types something is lost on the way to KeyDown.
qint16 teclaDeSimbolo(int k)
{
    struct Simbolo
    {
        int tecla;
        qint16 codigo;
    };
    static constexpr Simbolo kSimbolos[] = {
        {Qt::Key_ParenRight, '0'},
        {Qt::Key_Exclam, '1'},
        {Qt::Key_At, '2'},
        {Qt::Key_NumberSign, '3'},
        {Qt::Key_Dollar, '4'},
        {Qt::Key_Percent, '5'},
        {Qt::Key_AsciiCircum, '6'},
        {Qt::Key_Ampersand, '7'},
        {Qt::Key_ParenLeft, '9'},
        {Qt::Key_Semicolon, 186},
        {Qt::Key_Colon, 186},
        {Qt::Key_Equal, 187},
        {Qt::Key_Comma, 188},
        {Qt::Key_Less, 188},
        {Qt::Key_Underscore, 189},
        {Qt::Key_Greater, 190},
        {Qt::Key_Question, 191},
        {Qt::Key_Ccedilla, 191},
        {Qt::Key_QuoteLeft, 192},
        {Qt::Key_AsciiTilde, 192},
        {Qt::Key_Ntilde, 192},
        {Qt::Key_BracketLeft, 219},
        {Qt::Key_BraceLeft, 219},
        {Qt::Key_Apostrophe, 222},
        {Qt::Key_Backslash, 220},
        {Qt::Key_Bar, 220},
        {Qt::Key_masculine, 220},
        {Qt::Key_ordfeminine, 220},
        {Qt::Key_BracketRight, 221},
        {Qt::Key_BraceRight, 221},
        {Qt::Key_exclamdown, 221},
        {Qt::Key_questiondown, 221},
        {Qt::Key_QuoteDbl, 222},
        {Qt::Key_Dead_Acute, 222},
        {Qt::Key_Dead_Diaeresis, 222},
        {Qt::Key_Dead_Grave, 186},
        {Qt::Key_Dead_Circumflex, 186},
        {Qt::Key_acute, 222},
        {Qt::Key_diaeresis, 222},
    };
    for (const Simbolo &s : kSimbolos)
        if (s.tecla == k)
            return s.codigo;
    if (k >= 0xA0 && k <= 0xFF)
        return qint16(k); // Qt's Latin-1 keys are their upper-case codes
    return 0;
}

// The keys whose code does not depend on where they are.
struct TeclaFija
{
    int tecla;
    qint16 codigo;
};
constexpr TeclaFija kTeclasFijas[] = {
    {Qt::Key_Backspace, Retroceso},
    {Qt::Key_Tab, Tabulador},
    {Qt::Key_Backtab, Tabulador},
    {Qt::Key_Clear, Limpiar},
    {Qt::Key_Return, Enter},
    {Qt::Key_Enter, Enter},
    {Qt::Key_Shift, Mayusculas},
    {Qt::Key_Control, Control},
    {Qt::Key_Alt, Alt},
    {Qt::Key_Pause, Pausa},
    {Qt::Key_CapsLock, BloqMayus},
    {Qt::Key_Escape, Escape},
    {Qt::Key_Space, Espacio},
    {Qt::Key_PageUp, RePag},
    {Qt::Key_PageDown, AvPag},
    {Qt::Key_End, Fin},
    {Qt::Key_Home, Inicio},
    {Qt::Key_Left, Izquierda},
    {Qt::Key_Up, Arriba},
    {Qt::Key_Right, Derecha},
    {Qt::Key_Down, Abajo},
    {Qt::Key_Insert, Insertar},
    {Qt::Key_Delete, Suprimir},
};

// The operator keys: one code on the numeric keypad, the code of the main
// keyboard's key that types the same symbol elsewhere.
struct TeclaDeTeclado
{
    int tecla;
    qint16 enTeclado;
    qint16 fuera;
};
constexpr TeclaDeTeclado kTeclasDeTeclado[] = {
    {Qt::Key_Asterisk, NumPor, '8'}, {Qt::Key_Plus, NumMas, 187},    {Qt::Key_Minus, NumMenos, 189},
    {Qt::Key_Period, NumPunto, 190}, {Qt::Key_Slash, NumEntre, 191},
};

} // namespace

qint16 codigoTecla(int k, Qt::KeyboardModifiers modificadores)
{
    const bool teclado = modificadores.testFlag(Qt::KeypadModifier);
    if (k >= Qt::Key_0 && k <= Qt::Key_9)
        return qint16(teclado ? Num0 + (k - Qt::Key_0) : k);
    if (k >= Qt::Key_A && k <= Qt::Key_Z)
        return qint16(k); // Qt's letter keys are the upper-case ASCII codes
    if (k >= Qt::Key_F1 && k <= Qt::Key_F12)
        return qint16(F1 + (k - Qt::Key_F1));
    for (const TeclaFija &t : kTeclasFijas)
        if (t.tecla == k)
            return t.codigo;
    for (const TeclaDeTeclado &t : kTeclasDeTeclado)
        if (t.tecla == k)
            return teclado ? t.enTeclado : t.fuera;
    return teclaDeSimbolo(k);
}

qint16 codigoTecla(const QKeyEvent *evento)
{
    return codigoTecla(evento->key(), evento->modifiers());
}

qint16 estadoShift(Qt::KeyboardModifiers modificadores)
{
    qint16 estado = 0;
    if (modificadores.testFlag(Qt::ShiftModifier))
        estado |= ShiftMask;
    if (modificadores.testFlag(Qt::ControlModifier))
        estado |= CtrlMask;
    if (modificadores.testFlag(Qt::AltModifier))
        estado |= AltMask;
    return estado;
}

qint16 codigoCaracter(const QKeyEvent *evento)
{
    switch (evento->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return Enter;
    case Qt::Key_Backspace:
        return Retroceso;
    case Qt::Key_Escape:
        return Escape;
    default:
        break;
    }
    const QString texto = evento->text();
    if (texto.size() != 1)
        return 0;
    const QChar c = texto.at(0);
    // Control characters other than the three above type nothing.
    if (c.unicode() < 32 || c.unicode() == 127)
        return 0;
    return qint16(c.unicode());
}

int teclaQtDeCaracter(qint16 caracter)
{
    if (caracter == Enter)
        return Qt::Key_Return;
    if (caracter == Retroceso)
        return Qt::Key_Backspace;
    if (caracter == Escape)
        return Qt::Key_Escape;
    if (caracter >= 'a' && caracter <= 'z')
        return caracter - 'a' + 'A';
    if (caracter >= 32 && caracter < 127)
        return caracter; // Qt's keys for printable ASCII are their codes
    return Qt::Key_unknown;
}

} // namespace zuvi::teclas
