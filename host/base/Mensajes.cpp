#include "host/base/Mensajes.h"

namespace zuvi::anfitrion {

// The texts of the numbered messages the module asks for. 75 and 756 are
// shown as text + " " + user + " " + text 76, so they end where the user's
// name goes and 76 carries on after it.
const QList<QPair<int, QString>> &catalogoMensajes()
{
    static const QList<QPair<int, QString>> catalogo = {
        {1, QStringLiteral("¿Desea eliminar el turno seleccionado junto con sus empleados y "
                           "todos sus horarios?")},
        {72, QStringLiteral("No se encontró la orden de producción solicitada.")},
        {74, QStringLiteral("Usted ya tiene abierta esta orden de producción en otra ventana.")},
        {75, QStringLiteral("La orden de producción está siendo modificada por el usuario")},
        {76, QStringLiteral("en este momento. Intente más tarde.")},
        {224, QStringLiteral("La fecha del documento no es válida. Corríjala antes de continuar.")},
        {234, QStringLiteral("Escriba la clave del artículo.")},
        {235, QStringLiteral("El artículo no existe en el catálogo de artículos.")},
        {236, QStringLiteral("La cantidad debe ser mayor que cero.")},
        {240, QStringLiteral("Indique el almacén donde se entregará el producto terminado.")},
        {241, QStringLiteral("El almacén indicado no existe en el catálogo de almacenes.")},
        {343, QStringLiteral("La orden no tiene partidas; se guardará como movimiento pendiente.")},
        {703, QStringLiteral("Este artículo no puede registrarse en el almacén de la orden por su "
                             "ubicación.")},
        {753, QStringLiteral("La orden de producción ya está confirmada; se abrirá sólo para "
                             "consulta.")},
        {754, QStringLiteral("No se encontró la orden de producción que desea modificar.")},
        {755, QStringLiteral("Usted ya tiene abierta esta orden de producción en otra ventana.")},
        {756, QStringLiteral("No se puede modificar la orden de producción porque la tiene abierta "
                             "el usuario")},
        {757, QStringLiteral("¿Está seguro de cancelar esta orden de producción? Una orden "
                             "pendiente se borra con sus partidas; una confirmada queda cerrada.")},
        {758, QStringLiteral("La orden de producción fue cancelada.")},
        {759, QStringLiteral("¿Desea confirmar la orden de producción? Una vez confirmada ya no "
                             "podrá modificarse.")},
        {832, QStringLiteral("Ya existe un turno con esa clave.")},
        {833, QStringLiteral("Escriba la clave o el nombre del turno.")},
        {834, QStringLiteral("Seleccione la hora de entrada.")},
        {835, QStringLiteral("Seleccione la hora de comida.")},
        {836, QStringLiteral("Seleccione la hora de regreso de comida.")},
        {837, QStringLiteral("Seleccione la hora de salida.")},
        {838, QStringLiteral("Seleccione el día de descanso.")},
        {839, QStringLiteral("No se puede mover el empleado: en la lista hay un empleado que no "
                             "está en el catálogo de empleados.")},
    };
    return catalogo;
}

} // namespace zuvi::anfitrion
