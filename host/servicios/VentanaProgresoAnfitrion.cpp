#include "host/servicios/VentanaProgresoAnfitrion.h"

#include "runtime/Error.h"
#include "runtime/Recordset.h"

#include <cmath>
#include <limits>

namespace zuvi::anfitrion {

namespace {

int entero(const QVariant &v)
{
    const double d = std::nearbyint(variantToDouble(v));
    if (!std::isfinite(d) || d < 0 || d > double(std::numeric_limits<int>::max()))
        return 0;
    return int(d);
}

} // namespace

VentanaProgresoAnfitrion::~VentanaProgresoAnfitrion()
{
    // A destructor must not throw, whatever the seam does.
    try {
        Cierra();
    } catch (...) {
    }
}

void VentanaProgresoAnfitrion::Inicia(const QVariant &total, const QString &titulo,
                                      const QString &animacion)
{
    if (m_indicador)
        m_indicador->cierra();
    m_indicador = interaccion().progreso();
    if (!m_indicador)
        throw Error(QStringLiteral("No se pudo abrir la ventana de progreso."));
    m_indicador->inicia(entero(total), titulo, animacion);
}

void VentanaProgresoAnfitrion::Avanza(const QVariant &paso, const QString &linea1,
                                      const QString &linea2)
{
    if (m_indicador)
        m_indicador->avanza(entero(paso), linea1, linea2);
}

void VentanaProgresoAnfitrion::Cierra()
{
    if (!m_indicador)
        return;
    std::unique_ptr<IndicadorProgreso> indicador = std::move(m_indicador);
    indicador->cierra();
}

} // namespace zuvi::anfitrion
