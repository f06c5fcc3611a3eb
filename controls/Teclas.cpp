#include "controls/Teclas.h"

#include <QKeyEvent>

namespace zuvi::teclas {

qint16 codigoTecla(int k, Qt::KeyboardModifiers modificadores)
{
    const bool teclado = modificadores.testFlag(Qt::KeypadModifier);
    if (k >= Qt::Key_0 && k <= Qt::Key_9)
        return qint16(teclado ? Num0 + (k - Qt::Key_0) : k);
    if (k >= Qt::Key_A && k <= Qt::Key_Z)
        return qint16(k); // Qt's letter keys are the upper-case ASCII codes
    if (k >= Qt::Key_F1 && k <= Qt::Key_F12)
        return qint16(F1 + (k - Qt::Key_F1));
    switch (k) {
    case Qt::Key_Backspace:
        return Retroceso;
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
        return Tabulador;
    case Qt::Key_Clear:
        return Limpiar;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return Enter;
    case Qt::Key_Shift:
        return Mayusculas;
    case Qt::Key_Control:
        return Control;
    case Qt::Key_Alt:
        return Alt;
    case Qt::Key_Pause:
        return Pausa;
    case Qt::Key_CapsLock:
        return BloqMayus;
    case Qt::Key_Escape:
        return Escape;
    case Qt::Key_Space:
        return Espacio;
    case Qt::Key_PageUp:
        return RePag;
    case Qt::Key_PageDown:
        return AvPag;
    case Qt::Key_End:
        return Fin;
    case Qt::Key_Home:
        return Inicio;
    case Qt::Key_Left:
        return Izquierda;
    case Qt::Key_Up:
        return Arriba;
    case Qt::Key_Right:
        return Derecha;
    case Qt::Key_Down:
        return Abajo;
    case Qt::Key_Insert:
        return Insertar;
    case Qt::Key_Delete:
        return Suprimir;
    case Qt::Key_Asterisk:
        return teclado ? NumPor : 0;
    case Qt::Key_Plus:
        return teclado ? NumMas : 0;
    case Qt::Key_Minus:
        return teclado ? NumMenos : 189;
    case Qt::Key_Period:
        return teclado ? NumPunto : 190;
    case Qt::Key_Slash:
        return teclado ? NumEntre : 191;
    case Qt::Key_Comma:
        return 188;
    case Qt::Key_Semicolon:
        return 186;
    case Qt::Key_Equal:
        return 187;
    default:
        return 0;
    }
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
