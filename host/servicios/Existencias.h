#pragma once

// Stock before a batch operation. What an assembly, a disassembly or the
// delivery of an order takes out of each warehouse is worked out from the
// recipes as the component will post it, against the stock in existencias.
// A shortage refuses the operation before anything is posted, unless the
// station lets stock go below zero (a shop that posts first and counts
// later); then it only warns.

#include "host/servicios/Comprobaciones.h"

#include <QList>
#include <QSqlDatabase>
#include <QString>
#include <QVariantList>

namespace zuvi {
class Ambiente;
}

namespace zuvi::anfitrion {

// The station's own settings (estaciones), as the environment hands them.
struct AjustesEstacion
{
    bool existenciaNegativa = false; // stock may go below zero
    bool lineasSinKit = false;       // an order may list articles that are not kits
};
// Both off when there is no environment or the record lacks the fields.
AjustesEstacion ajustesEstacion(zuvi::Ambiente *ambiente);

// One article taken out of one warehouse.
struct Necesidad
{
    QString articulo, descripcion;
    qint32 almacen = 0;
    QString nombreAlmacen;
    double necesaria = 0;  // what the operation takes out
    double existencia = 0; // in stock before it
    double faltante = 0;   // how far below zero the stock would go
};

// Each component of the kit, in its own warehouse, for cantidad kits.
QList<Necesidad> necesidadesEnsamble(const QSqlDatabase &db, const QString &articulo,
                                     double cantidad);
// The kit itself, out of the warehouse it leaves.
QList<Necesidad> necesidadesDesensamble(const QSqlDatabase &db, const QString &articulo,
                                        double cantidad, qint32 almacen);
// Every line of the order in turn, each kit's components out and the kit into
// the order's warehouse, so a line may use what an earlier one made. Lines
// that are not kits take nothing. Shortages first, then by article.
QList<Necesidad> necesidadesOrden(const QSqlDatabase &db, qint32 op);

// "1,234.5": a quantity as the messages show it.
QString cifra(double valor);
// One line per shortage: article, warehouse, needed, in stock, short.
QStringList describeFaltantes(const QList<Necesidad> &necesidades);

// A batch operation refused for want of stock.
class Faltante : public Rechazo
{
public:
    using Rechazo::Rechazo;
};

// For a batch member and its arguments in the member's order: throws
// Faltante naming every shortage; when the station allows negative stock,
// returns the same list as a warning instead. Empty when nothing is short.
QString compruebaExistencias(const QSqlDatabase &db, const AjustesEstacion &ajustes,
                             const QString &metodo, const QVariantList &argumentos);

} // namespace zuvi::anfitrion
