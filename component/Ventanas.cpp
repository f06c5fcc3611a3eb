#include "component/Produccion.h"
#include "fractions/frmFracciones.h"
#include "shifts/frmTurnos.h"

#include "runtime/Error.h"

namespace zuvi {

void Produccion::MuestraCapturaDeFracciones()
{
    // Ends silently on an error, as the class's methods do.
    swallowErrors([this] {
        auto *ventana = new frmFracciones;
        ventana->Ambiente = m_ambiente;
        ventana->muestra(false);
    });
}

void Produccion::MuestraTurnos()
{
    swallowErrors([this] {
        auto *ventana = new frmTurnos;
        ventana->Ambiente = m_ambiente;
        ventana->muestra(false);
    });
}

} // namespace zuvi
