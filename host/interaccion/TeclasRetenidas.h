#pragma once

// A scanner does not wait for a message box. When a code is refused with a
// message and the next code follows at once, its first characters arrive
// before the window manager has given the box the focus, and the rest reach
// the box and its Enter closes it: a modal box would lose that code. So the
// box is shown without Qt's modality and this stands in for it: while the box
// is open, no click, key or close reaches another window; the printable keys
// typed meanwhile, wherever they went, are kept; and when an Enter closes the
// box after such keys, they are typed again, with their Enter, into whatever
// has the focus once the box is gone.

#include <QKeyEvent>
#include <QList>
#include <QObject>

class QDialog;

namespace zuvi::anfitrion {

class TeclasRetenidas : public QObject
{
    Q_OBJECT
public:
    explicit TeclasRetenidas(QDialog *caja);
    ~TeclasRetenidas() override;

    // Shows the box over the active window and waits until it is closed.
    void espera();

protected:
    bool eventFilter(QObject *objeto, QEvent *evento) override;

private:
    bool teclaRetenida(QEvent *evento);
    // Types the kept keys, if any, into ventana once the box's closing is done.
    void repite(QWidget *ventana);

    struct Tecla
    {
        int codigo;
        Qt::KeyboardModifiers modificadores;
        QString texto;
    };
    QDialog *m_caja;
    QList<Tecla> m_teclas;
    bool m_completas = false; // an Enter closed the box after the kept keys
};

} // namespace zuvi::anfitrion
