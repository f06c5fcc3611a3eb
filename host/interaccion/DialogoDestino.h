#pragma once

// What the catalogue lookup and the numeric pad share: an environment and a
// target box the module hands over, and a modal dialog whose result is written
// into that box.

#include "contract/Servicios.h"

#include <QDialog>
#include <QLineEdit>
#include <QPointer>

namespace zuvi::anfitrion {

template <typename Interfaz> class ServicioConDestino : public Interfaz
{
public:
    using Interfaz::Interfaz;

    void PonAmbiente(Ambiente *ambiente) override { m_ambiente = ambiente; }
    void PonDestino(QLineEdit *destino) override { m_destino = destino; }

protected:
    // Shows the dialog, made with the target's window as its parent, modal;
    // when it is accepted and the box still exists, writes valor(dialog) into
    // it. Closing the window while the dialog is open deletes the dialog with
    // it: the guarded pointer tells, and nothing is written.
    template <typename Dialogo, typename Valor> void muestraYEscribe(Dialogo *nuevo, Valor valor)
    {
        QPointer<Dialogo> dialogo = nuevo;
        const bool aceptado = dialogo->exec() == QDialog::Accepted;
        if (!dialogo)
            return;
        const QString texto = valor(*dialogo);
        delete dialogo;
        if (aceptado && m_destino)
            m_destino->setText(texto);
    }

    QPointer<Ambiente> m_ambiente;
    QPointer<QLineEdit> m_destino;
};

} // namespace zuvi::anfitrion
