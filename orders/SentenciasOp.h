#pragma once

// The statement texts of the order editor and of the component's openers,
// exactly as they are sent: numbers in decimal, keys between single quotes,
// nothing escaped.

#include "core/Exporta.h"

#include <QString>

namespace zuvi::sentenciasOp {

// An empty result with the columns of op: the template of a new order.
ZUVI_PRODUCCION_EXPORT QString plantillaOp();
ZUVI_PRODUCCION_EXPORT QString op(qint32 numero);
// The header read again when a line is added.
ZUVI_PRODUCCION_EXPORT QString opParaPartida(qint32 numero);
// The lines read when the window loads, and when it finishes.
ZUVI_PRODUCCION_EXPORT QString partidasCarga(qint32 numero);
ZUVI_PRODUCCION_EXPORT QString partidasGuardadas(qint32 numero);
// The key as the grid holds it (text).
ZUVI_PRODUCCION_EXPORT QString borraPartida(const QString &idEntrada);
ZUVI_PRODUCCION_EXPORT QString liberaOp(qint32 numero);
ZUVI_PRODUCCION_EXPORT QString ubicacion(const QString &articulo);
ZUVI_PRODUCCION_EXPORT QString descripcion(const QString &articulo);
ZUVI_PRODUCCION_EXPORT QString claveAdicional(const QString &clave);
ZUVI_PRODUCCION_EXPORT QString moneda(const QString &moneda);
ZUVI_PRODUCCION_EXPORT QString vendedor(const QString &vend);
// The rows of the article list under the article field; the article of a
// secondary key.
ZUVI_PRODUCCION_EXPORT QString listaArticulos();
ZUVI_PRODUCCION_EXPORT QString articuloDeClave(const QString &articulo);

// The statement builder's conditions.
ZUVI_PRODUCCION_EXPORT QString condicionOp(qint32 numero);          // "op = n"
ZUVI_PRODUCCION_EXPORT QString condicionOpMayuscula(qint32 numero); // "Op = n"
ZUVI_PRODUCCION_EXPORT QString condicionPartida(const QString &idEntrada);

} // namespace zuvi::sentenciasOp
