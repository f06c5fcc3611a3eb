#pragma once

// The host's progress window over the interaction seam: the shell's dialog
// or the terminal's bar, whichever is in force when Inicia runs. Avanza and
// Cierra without Inicia do nothing; the window closes at the latest when the
// object goes.

#include "contract/Servicios.h"
#include "host/interaccion/Interaccion.h"

#include <memory>

namespace zuvi::anfitrion {

class VentanaProgresoAnfitrion : public zuvi::VentanaProgreso
{
    Q_OBJECT
public:
    using zuvi::VentanaProgreso::VentanaProgreso;
    ~VentanaProgresoAnfitrion() override;

    void Inicia(const QVariant &total, const QString &titulo, const QString &animacion) override;
    void Avanza(const QVariant &paso, const QString &linea1, const QString &linea2) override;
    void Cierra() override;

    bool abierta() const { return bool(m_indicador); }

private:
    std::unique_ptr<IndicadorProgreso> m_indicador;
};

} // namespace zuvi::anfitrion
