#include "host/servicios/CantidadPartida.h"

#include "host/interaccion/Interaccion.h"
#include "host/servicios/Comprobaciones.h"
#include "host/sql/Sql.h"
#include "runtime/Text.h"

#include <QApplication>
#include <QRegularExpression>
#include <QSqlQuery>
#include <QTableWidget>

#include <cmath>

namespace zuvi::anfitrion {

namespace {

// The grid columns a cell edit writes the quantity from ("QTY" and "Precio")
// and the one holding the line's key.
constexpr int kColCantidad = 1;
constexpr int kColPrecio = 2;
constexpr int kColClave = 5;

bool valida(const QVariant &valor, double &numero)
{
    const QVariant simple = valor.canConvert<QObject *>() && valor.value<QObject *>()
                                ? valor.value<QObject *>()->property("text")
                                : valor;
    bool ok = false;
    numero = simple.toString().trimmed().toDouble(&ok);
    return ok && std::isfinite(numero) && numero > 0;
}

QString mensajeCantidad(const QSqlDatabase &db)
{
    QSqlQuery q =
        ejecutaConValores(db, QStringLiteral("SELECT texto FROM mensajes WHERE numero = ?"), {236});
    return q.next() ? q.value(0).toString()
                    : QStringLiteral("La cantidad debe ser mayor que cero.");
}

QString plano(double valor)
{
    return QString::number(valor, 'g', 15);
}

// The cells of the line in every open grid that shows it: the one whose text
// is the refused value goes back to what is stored.
void restauraCeldas(const QString &clave, double refusada, double cantidad, double precio)
{
    if (!qobject_cast<QApplication *>(QCoreApplication::instance()))
        return;
    for (QWidget *ventana : QApplication::topLevelWidgets())
        for (QTableWidget *rejilla : ventana->findChildren<QTableWidget *>(QStringLiteral("fg2")))
            for (int fila = 0; fila < rejilla->rowCount(); ++fila) {
                const QTableWidgetItem *k = rejilla->item(fila, kColClave);
                if (!k || k->text().trimmed() != clave)
                    continue;
                for (int col : {kColCantidad, kColPrecio}) {
                    QTableWidgetItem *celda = rejilla->item(fila, col);
                    double escrito = 0;
                    const bool numero = celda && valida(celda->text(), escrito);
                    if (celda && (!numero || escrito == refusada))
                        celda->setText(plano(col == kColCantidad ? cantidad : precio));
                }
            }
}

} // namespace

bool rechazaCantidadPartida(const QSqlDatabase &db, const QString &tipo, const QVariant &cantidad,
                            const QString &condicion)
{
    double numero = 0;
    if (valida(cantidad, numero))
        return false;
    const QString texto = mensajeCantidad(db);
    if (tipo != QLatin1String("UPDATE"))
        throw Rechazo(texto);
    static const QRegularExpression patron(QStringLiteral("^\\s*id_entrada\\s*=\\s*(\\d+)\\s*$"));
    const QRegularExpressionMatch m = patron.match(condicion);
    QSqlQuery q =
        ejecutaConValores(db,
                          QStringLiteral("SELECT op, articulo, cantidad, precio FROM oppart WHERE "
                                         "id_entrada = ?"),
                          {m.hasMatch() ? m.captured(1).toLongLong() : -1});
    if (!q.next())
        throw Rechazo(texto);
    const double guardada = q.value(2).toDouble();
    // The cell first: the message waits for the person.
    restauraCeldas(m.captured(1), numero, guardada, q.value(3).toDouble());
    interaccion().mensaje(
        QStringLiteral("%1 La línea de %2 de la orden %3 conserva su cantidad %4.")
            .arg(texto, eco(q.value(1).toString().trimmed()), QString::number(q.value(0).toInt()),
                 plano(guardada)),
        48);
    return true;
}

} // namespace zuvi::anfitrion
