#pragma once

// Drives a dialog that a call shows with exec(): once the dialog is up, the
// action runs on it; whatever the action did, the dialog is closed before the
// call returns, so a failing test never hangs on an open dialog.

#include <QApplication>
#include <QDialog>
#include <QTest>
#include <QTimer>

#include <functional>

namespace zuvi::pruebas {

struct ResultadoModal
{
    bool abrio = false;         // a dialog of the expected class was shown
    bool seguiaAbierto = false; // the action left it open (it was then rejected)
};

template <typename Dialogo>
ResultadoModal conDialogoModal(const std::function<void()> &muestra,
                               const std::function<void(Dialogo *)> &accion)
{
    ResultadoModal r;
    QObject contexto; // cancels the timer when the call never opened anything
    QTimer::singleShot(0, &contexto, [&] {
        auto *dialogo = qobject_cast<Dialogo *>(QApplication::activeModalWidget());
        if (!dialogo)
            return;
        r.abrio = true;
        // Laid out and on screen, as a person finds it.
        if (!QTest::qWaitForWindowExposed(dialogo))
            qWarning("the dialog was never exposed");
        accion(dialogo);
        if (dialogo->isVisible()) {
            r.seguiaAbierto = true;
            dialogo->reject();
        }
    });
    muestra();
    return r;
}

} // namespace zuvi::pruebas
