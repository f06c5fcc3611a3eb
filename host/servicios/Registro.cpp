#include "host/servicios/Registro.h"

#include "host/servicios/AccesoDatosAnfitrion.h"
#include "host/servicios/BuscaCatalogoAnfitrion.h"
#include "host/servicios/CapturaNumericaAnfitrion.h"
#include "host/servicios/ConstructorSqlAnfitrion.h"
#include "host/servicios/ControlProcesosAnfitrion.h"
#include "host/servicios/DocumentoInventarioAnfitrion.h"
#include "host/servicios/VentanaProgresoAnfitrion.h"
#include "runtime/ClassRegistry.h"

namespace zuvi::anfitrion {

namespace {

template <typename Clase> QObject *crea()
{
    return new Clase;
}

struct ClaseAnfitrion
{
    const char *nombre;
    QObject *(*fabrica)();
};

// Every class name the component asks the host for, and what answers it.
constexpr ClaseAnfitrion kClases[] = {
    {"AccesoDatos", crea<AccesoDatosAnfitrion>},
    {"BuscaCatalogo", crea<BuscaCatalogoAnfitrion>},
    {"CapturaNumerica", crea<CapturaNumericaAnfitrion>},
    {"ConstructorSql", crea<ConstructorSqlAnfitrion>},
    {"ControlProcesos", crea<ControlProcesosAnfitrion>},
    {"DocumentoInventario", crea<DocumentoInventarioAnfitrion>},
    {"VentanaProgreso", crea<VentanaProgresoAnfitrion>},
};

} // namespace

void registraClasesAnfitrion()
{
    ClassRegistry &registro = ClassRegistry::instance();
    for (const ClaseAnfitrion &c : kClases)
        registro.add(QString::fromUtf8(c.nombre), c.fabrica);
}

} // namespace zuvi::anfitrion
