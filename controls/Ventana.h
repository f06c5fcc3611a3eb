#pragma once

// The base of every window of the module. The opener sets the public members
// and calls muestra(); Form_Load runs before the window is visible. Closing
// from the title bar and from code go through one unload protocol
// (Form_QueryUnload, then Form_Unload, either of which may cancel). Key events
// reach the handlers with the numeric key codes of controls/Teclas.h; each
// handler runs inside the error trap with the window's module name and its
// own procedure name.

#include "controls/ArregloControles.h"
#include "core/Exporta.h"
#include "runtime/Error.h"

#include <QHash>
#include <QPointer>
#include <QWidget>

#include <functional>

class QKeyEvent;
class QLineEdit;

namespace zuvi {

class ZUVI_PRODUCCION_EXPORT Ventana : public QWidget
{
    Q_OBJECT

public:
    // Unload modes handed to Form_QueryUnload.
    static constexpr qint16 DesdeMenuControl = 0; // title bar or control menu
    static constexpr qint16 DesdeCodigo = 1;

    // Window states of WindowState().
    static constexpr qint16 Normal = 0;
    static constexpr qint16 Minimizada = 1;
    static constexpr qint16 Maximizada = 2;

    explicit Ventana(const QString &modulo, QWidget *parent = nullptr);
    ~Ventana() override;

    const QString &modulo() const { return m_modulo; }

    // Runs Form_Load once, then shows the window, modeless or modal. A failing
    // Form_Load propagates to the opener and the window is discarded unshown.
    // A modal call returns when the window has been unloaded; the window is
    // deleted right after, so the caller reads nothing from it afterwards.
    void muestra(bool modal = false);

    // Unloads from code (unload mode 1). False when a handler cancelled.
    bool descarga();

    bool cargada() const { return m_cargada; }
    bool descargada() const { return m_descargada; }

    qint16 WindowState() const;
    void SetWindowState(qint16 estado);

    // The window sees keys before its controls (Form_KeyDown, Form_KeyPress,
    // Form_KeyUp run first, and a key code set to 0 there stops the key).
    bool KeyPreview = false;

    // Handlers for the keys of a control. KeyCode and KeyAscii are in/out:
    // set to 0 they swallow the key; a KeyAscii changed to another character
    // types that character instead.
    struct Teclas
    {
        std::function<void(int Index, qint16 &KeyCode, qint16 Shift)> KeyDown;
        std::function<void(int Index, qint16 &KeyAscii)> KeyPress;
        std::function<void(int Index, qint16 &KeyCode, qint16 Shift)> KeyUp;
    };
    // Every member of the control array `arreglo`; the procedures are named
    // "<arreglo>_KeyDown" and so on, and receive the member's index.
    void conectaTeclas(const QString &arreglo, Teclas manejadores);
    // A single control; procedures named "<nombre>_KeyDown"..., Index -1
    // unless given.
    void conectaTeclas(QWidget *control, const QString &nombre, Teclas manejadores,
                       int indice = -1);

    // The other events of a control: Change (its text changed, by the user or
    // by code), GotFocus and LostFocus (not when the whole window is
    // activated or deactivated), DblClick. Procedures named "<arreglo>_Change"
    // and so on, with the member's index.
    struct Eventos
    {
        std::function<void(int Index)> Change;
        std::function<void(int Index)> GotFocus;
        std::function<void(int Index)> LostFocus;
        std::function<void(int Index)> DblClick;
    };
    void conectaEventos(const QString &arreglo, Eventos manejadores);
    void conectaEventos(QWidget *control, const QString &nombre, Eventos manejadores,
                        int indice = -1);

    // Pastes the clipboard into a text box as if its characters were typed:
    // each goes through the box's KeyPress (which may change or refuse it),
    // characters that cannot be typed (control, format, unassigned code
    // points, undecodable bytes) are dropped, and pasting stops when the box
    // is full or a handler took the focus elsewhere. Ctrl+V, Shift+Insert and
    // the box's context menu paste this way in every box with a KeyPress.
    void pegaFiltrado(QLineEdit *caja);

    template <typename T> ArregloControles<T> arreglo(const QString &nombre) const
    {
        return ArregloControles<T>(this, nombre);
    }

    // Runs f inside the window's error trap under the procedure's name.
    template <typename F> bool atrapa(const QString &procedimiento, F &&f)
    {
        return reportErrors(m_modulo, procedimiento, std::forward<F>(f));
    }

Q_SIGNALS:
    // The unload went through; the window is about to go.
    void seDescargo();

protected:
    virtual void Form_Load() {}
    // Nothing to do unless a window has something to do: the parameters are
    // named as the handlers that override them name theirs.
    virtual void Form_QueryUnload([[maybe_unused]] qint16 &Cancel,
                                  [[maybe_unused]] qint16 UnloadMode)
    {
    }
    virtual void Form_Unload([[maybe_unused]] qint16 &Cancel) {}
    virtual void Form_Paint() {}
    virtual void Form_KeyDown([[maybe_unused]] qint16 &KeyCode, [[maybe_unused]] qint16 Shift) {}
    virtual void Form_KeyPress([[maybe_unused]] qint16 &KeyAscii) {}
    virtual void Form_KeyUp([[maybe_unused]] qint16 &KeyCode, [[maybe_unused]] qint16 Shift) {}

    void closeEvent(QCloseEvent *evento) override;
    void paintEvent(QPaintEvent *evento) override;
    bool eventFilter(QObject *objeto, QEvent *evento) override;

private:
    struct Enlace
    {
        QString nombre;
        int indice = -1;
        Teclas manejadores;
        Eventos eventos;
    };

    void vigila(QWidget *control);
    // A window its opener did not place is centred on its screen and made
    // no larger than the room there, title bar included.
    void acomodaEnPantalla();
    bool esDestinoDeTeclas(QWidget *control) const;
    bool teclaAbajo(QWidget *control, QKeyEvent *evento);
    bool teclaArriba(QWidget *control, QKeyEvent *evento);
    // A key that only types a character into a plain text box of this
    // window, typed there; false for any other key or control.
    bool escribe(QWidget *control, QKeyEvent *evento);
    Enlace &enlaza(QWidget *control, const QString &nombre, int indice);
    bool eventoDeControl(QObject *objeto, QEvent *evento);
    void lanza(const Enlace &enlace, const char *evento, const std::function<void(int)> &manejador);

    QString m_modulo;
    QHash<QObject *, Enlace> m_enlaces;
    bool m_cargada = false;
    bool m_descargada = false;
    bool m_pintando = false;
    bool m_reenviando = false;
    // The window lost the focus to a modal message or dialog.
    bool m_trasDialogo = false;
};

} // namespace zuvi
