#pragma once

// The host's numeric pad: a dialog with large buttons (0-9, the decimal point,
// "C" to clear, a back key, Aceptar and Cancelar) for a touch screen, that
// works as well with the mouse or the keyboard: digits, '.' (or ','),
// Backspace, Delete (clear), Enter (Aceptar) and Escape (Cancelar).
//
// It starts from the target box's text when that reads as a number (thousands
// commas dropped), otherwise empty. It refuses a second decimal point, a
// sixteenth digit (a double keeps fifteen exactly) and a key that would make
// the text longer than the box's maximum length. Aceptar writes the number in
// the plain form the "N" formatting gives ("5." -> "5", ".5" -> "0.5"; nothing
// typed writes an empty box); Cancelar leaves the box as it was.

#include "contract/Servicios.h"
#include "host/interaccion/DialogoDestino.h"

#include <QDialog>
#include <QLineEdit>

namespace zuvi::anfitrion {

class TecladoNumerico : public QDialog
{
    Q_OBJECT
public:
    // largoMaximo: the target box's maximum length.
    explicit TecladoNumerico(const QString &inicial, int largoMaximo = 32767,
                             QWidget *padre = nullptr);

    QString texto() const;  // as typed, shown on the display
    QString numero() const; // what Aceptar writes

    // One key of the pad: a digit, '.', 'C' (clear) or '<' (back). False when
    // refused (the text stays).
    bool pulsa(QChar tecla);

protected:
    void keyPressEvent(QKeyEvent *evento) override;

private:
    QLineEdit *m_pantalla = nullptr;
    int m_largoMaximo;
};

class CapturaNumericaAnfitrion : public ServicioConDestino<zuvi::CapturaNumerica>
{
    Q_OBJECT
public:
    using ServicioConDestino::ServicioConDestino;

    // Throws Error when no target box was given.
    void Muestra() override;
};

// The text the pad starts from for a box holding texto.
QString textoInicialTeclado(const QString &texto);

} // namespace zuvi::anfitrion
