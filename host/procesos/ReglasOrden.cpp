// The host's rules at the order editor's load ("Op001") and at each new line
// ("Op005").
//
// Op001: the editor loads the header fields it saves again except the
// purchase-order number and the amount; an order being changed or looked at
// gets both from its row, so finishing it keeps them. A new order is left as
// it is.
//
// Op005: an order lists what is made, so a line whose article is not a kit is
// refused (the veto stays up) and the person is told why. A station whose shop
// lists materials on its orders allows them (estaciones.lineassinkit).

#include "host/interaccion/Interaccion.h"
#include "host/procesos/Ordenes.h"
#include "host/servicios/Existencias.h"
#include "host/sql/Sql.h"
#include "runtime/Text.h"

#include <QLineEdit>
#include <QSqlQuery>

#include <cmath>

namespace zuvi::anfitrion {

namespace {

QLineEdit *campo(QObject *ventana, int indice)
{
    return ventana ? ventana->findChild<QLineEdit *>(QStringLiteral("txtFields_%1").arg(indice))
                   : nullptr;
}

QString entero(const QVariant &valor)
{
    return valor.isNull() ? QString() : QString::number(std::llround(valor.toDouble()));
}

void cargaOrden(ArgumentosProceso &a)
{
    a.bandera = VFalse;
    QObject *ventana = a.objeto;
    if (!ventana || !a.ambiente || ventana->property("Modo").toString() == QLatin1String("ALTA"))
        return;
    const qint32 op = ventana->property("Op").toInt();
    QSqlQuery q =
        ejecutaConValores(a.ambiente->Conexion(),
                          QStringLiteral("SELECT ordencompra, importe FROM op WHERE op = ?"), {op});
    if (!q.next())
        return;
    if (QLineEdit *compra = campo(ventana, 0))
        compra->setText(entero(q.value(0)));
    if (QLineEdit *importe = campo(ventana, 11))
        importe->setText(q.value(1).isNull() ? QString()
                                             : QString::number(q.value(1).toDouble(), 'f', 2));
}

void nuevaPartida(ArgumentosProceso &a)
{
    a.bandera = VFalse;
    QLineEdit *caja = campo(a.objeto, 4);
    if (!caja || !a.ambiente || ajustesEstacion(a.ambiente).lineasSinKit)
        return;
    const QString articulo = caja->text().trimmed();
    QSqlQuery q =
        ejecutaConValores(a.ambiente->Conexion(),
                          QStringLiteral("SELECT kit FROM prods WHERE articulo = ?"), {articulo});
    // An article that does not exist is the editor's own refusal.
    if (!q.next() || q.value(0).toInt() != 0)
        return;
    a.bandera = VTrue;
    interaccion().mensaje(QStringLiteral("%1 no es un kit: una orden de producción sólo lleva "
                                         "artículos que se fabrican")
                              .arg(eco(articulo)),
                          48);
}

} // namespace

QList<ProcesoAnfitrion> procesosReglasOrden()
{
    return {{"Op001", cargaOrden}, {"Op005", nuevaPartida}};
}

} // namespace zuvi::anfitrion
