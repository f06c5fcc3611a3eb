#include "host/servicios/Comprobaciones.h"

#include "host/sql/Sql.h"
#include "runtime/Text.h"

#include <QHash>
#include <QSqlQuery>

#include <cmath>

namespace zuvi::anfitrion {

namespace {

QVariant primerValor(const QSqlDatabase &db, const QString &sql, const QVariantList &valores)
{
    QSqlQuery q = ejecutaConValores(db, sql, valores);
    return q.next() ? q.value(0) : QVariant();
}

bool hayFila(const QSqlDatabase &db, const QString &sql, const QVariantList &valores)
{
    return primerValor(db, sql, valores).toLongLong() > 0;
}

// A number as the component reads it: null or a text that is not a number is none.
bool numeroDe(const QVariant &valor, double &numero)
{
    if (!valor.isValid() || valor.isNull())
        return false;
    bool ok = true;
    if (valor.typeId() == QMetaType::QString || valor.typeId() == QMetaType::QByteArray)
        numero = valor.toString().trimmed().toDouble(&ok);
    else
        numero = valor.toDouble(&ok);
    return ok && std::isfinite(numero);
}

qint32 entero(const QVariant &v)
{
    return v.toInt();
}

double real(const QVariant &v)
{
    return v.toDouble();
}

const QString kEntradasDeOrden =
    QStringLiteral("FROM movimientos WHERE orden = ? AND tipo = 'E' AND concepto = 'OP'");

} // namespace

void compruebaCantidad(double cantidad)
{
    if (!std::isfinite(cantidad))
        throw Rechazo(QStringLiteral("La cantidad debe ser un número finito."));
    if (cantidad <= 0)
        throw Rechazo(QStringLiteral("La cantidad debe ser mayor que cero; se recibió %1.")
                          .arg(cantidad, 0, 'g', 15));
    if (cantidad > kCantidadMaxima)
        throw Rechazo(QStringLiteral("La cantidad no puede pasar de 1,000,000,000; se recibió %1.")
                          .arg(cantidad, 0, 'g', 15));
}

void compruebaAlmacen(const QSqlDatabase &db, qint32 almacen)
{
    if (!hayFila(db, QStringLiteral("SELECT COUNT(*) FROM almacen WHERE almacen = ?"), {almacen}))
        throw Rechazo(QStringLiteral("El almacén %1 no existe.").arg(almacen));
}

void compruebaOrden(const QSqlDatabase &db, qint32 op, bool opcional)
{
    if (op == 0 && opcional)
        return;
    if (!hayFila(db, QStringLiteral("SELECT COUNT(*) FROM op WHERE op = ?"), {op}))
        throw Rechazo(QStringLiteral("La orden de producción %1 no existe.").arg(op));
}

void compruebaKit(const QSqlDatabase &db, const QString &articulo, bool paraDesensamblar)
{
    const QString clave = eco(articulo);
    if (articulo.trimmed().isEmpty())
        throw Rechazo(QStringLiteral("Falta el artículo del kit."));
    // The component writes the key between quotes into its statements.
    if (articulo.contains(QLatin1Char('\'')) || articulo.contains(QLatin1Char('\\')))
        throw Rechazo(QStringLiteral("La clave de artículo \"%1\" no es válida: no puede llevar "
                                     "comillas ni barras inversas.")
                          .arg(clave));
    const QVariant kit =
        primerValor(db, QStringLiteral("SELECT kit FROM prods WHERE articulo = ?"), {articulo});
    if (!kit.isValid())
        throw Rechazo(QStringLiteral("El artículo \"%1\" no existe.").arg(clave));
    if (kit.toInt() == 0)
        throw Rechazo(QStringLiteral("El artículo \"%1\" no es un kit.").arg(clave));
    const QVariant minimo = primerValor(
        db, QStringLiteral("SELECT Minimo FROM componen WHERE articulo = ?"), {articulo});
    double rinde = 0;
    if (!numeroDe(minimo, rinde) || rinde == 0)
        throw Rechazo(QStringLiteral("El kit \"%1\" no tiene receta: falta su encabezado en "
                                     "componen, o rinde 0 kits (Minimo).")
                          .arg(clave));
    if (!hayFila(db, QStringLiteral("SELECT COUNT(*) FROM comppart WHERE articulo = ?"),
                 {articulo}))
        throw Rechazo(
            QStringLiteral("El kit \"%1\" no tiene componentes en su receta.").arg(clave));
    if (!paraDesensamblar)
        return;
    QSqlQuery q = ejecutaConValores(
        db,
        QStringLiteral("SELECT DISTINCT comppart.Componente FROM comppart INNER JOIN prods ON "
                       "prods.articulo = comppart.Componente WHERE comppart.articulo = ? AND "
                       "prods.kit <> 0 ORDER BY comppart.Componente"),
        {articulo});
    QStringList anidados;
    while (q.next())
        anidados << eco(q.value(0).toString().trimmed());
    if (anidados.isEmpty())
        return;
    const bool uno = anidados.size() == 1;
    throw Rechazo(
        QStringLiteral("No se puede desensamblar el kit %1: %2 %3 a su vez un kit. "
                       "Desensamble primero %4 por separado.")
            .arg(clave,
                 uno ? QStringLiteral("su componente ") + anidados.first()
                     : QStringLiteral("sus componentes ") + anidados.join(QStringLiteral(", ")),
                 uno ? QStringLiteral("es") : QStringLiteral("son"),
                 uno ? QStringLiteral("ese kit") : QStringLiteral("esos kits")));
}

void compruebaEnsamble(const QSqlDatabase &db, const QString &articulo, qint32 almacen,
                       double cantidad, qint32 op)
{
    compruebaCantidad(cantidad);
    compruebaKit(db, articulo, false);
    compruebaAlmacen(db, almacen);
    compruebaOrden(db, op, true);
}

void compruebaDesensamble(const QSqlDatabase &db, const QString &articulo, double cantidad,
                          qint32 almacen, qint32 op)
{
    compruebaCantidad(cantidad);
    compruebaKit(db, articulo, true);
    compruebaAlmacen(db, almacen);
    compruebaOrden(db, op, true);
}

bool esOperacionDeLote(const QString &metodo)
{
    return metodo == QLatin1String("Ensamble") || metodo == QLatin1String("Desensamble") ||
           metodo == QLatin1String("EntregaProductoTerminado") ||
           metodo == QLatin1String("CancelaOp");
}

void compruebaLlamada(const QSqlDatabase &db, const QString &metodo, const QVariantList &a)
{
    const qint32 op = a.size() > 3 ? entero(a.at(3)) : 0;
    if (metodo == QLatin1String("Ensamble") && a.size() >= 3)
        compruebaEnsamble(db, a.at(0).toString(), entero(a.at(1)), entero(a.at(2)), op);
    else if (metodo == QLatin1String("Desensamble") && a.size() >= 3)
        compruebaDesensamble(db, a.at(0).toString(), real(a.at(1)), entero(a.at(2)), op);
    else if ((metodo == QLatin1String("EntregaProductoTerminado") ||
              metodo == QLatin1String("CancelaOp")) &&
             a.size() == 1)
        compruebaOrden(db, entero(a.at(0)));
}

ControlEntrega::ControlEntrega(const QSqlDatabase &db, qint32 op) : m_db(db), m_op(op)
{
    m_ultimoMovimiento =
        primerValor(db, QStringLiteral("SELECT COALESCE(MAX(id), 0) FROM movimientos"), {})
            .toLongLong();
    m_previas =
        primerValor(db, QStringLiteral("SELECT COUNT(*) ") + kEntradasDeOrden, {op}).toLongLong();
}

ControlEntrega::Reparto ControlEntrega::reparteDesde(qint64 movimiento) const
{
    // The entries after `movimiento`, as article and quantity; each line takes one.
    QHash<QString, int> entradas;
    auto clave = [](const QString &articulo, double cantidad) {
        return articulo.trimmed() + QChar(0x1f) + QString::number(std::llround(cantidad));
    };
    QSqlQuery e = ejecutaConValores(m_db,
                                    QStringLiteral("SELECT articulo, cantidad ") +
                                        kEntradasDeOrden + QStringLiteral(" AND id > ?"),
                                    {m_op, movimiento});
    while (e.next())
        ++entradas[clave(e.value(0).toString(), e.value(1).toDouble())];

    Reparto reparto;
    QSqlQuery q = ejecutaConValores(
        m_db,
        QStringLiteral("SELECT partida, articulo, cantidad, id_entrada FROM oppart WHERE op = ? "
                       "ORDER BY partida, id_entrada"),
        {m_op});
    int posicion = 0;
    while (q.next()) {
        ++posicion;
        Linea l;
        l.numero = q.value(0).toInt() > 0 ? q.value(0).toInt() : posicion;
        l.articulo = q.value(1).toString().trimmed();
        const QVariant cantidad = q.value(2);
        double pedida = 0;
        l.numerica = numeroDe(cantidad, pedida);
        l.cantidad = cantidad.isNull() ? QStringLiteral("nula") : eco(cantidad.toString(), 20);
        l.id = q.value(3).toLongLong();
        // Assembly takes whole kits: the line is asked rounded half to even.
        if (l.numerica) {
            const double kits = std::nearbyint(pedida);
            l.kits = std::abs(kits) <= kCantidadMaxima ? qint32(kits) : 0;
            auto it = entradas.find(clave(l.articulo, kits));
            if (it != entradas.end() && it.value() > 0) {
                --it.value();
                reparto.entregadas << l;
                continue;
            }
        }
        reparto.pendientes << l;
    }
    m_total = posicion;
    return reparto;
}

} // namespace zuvi::anfitrion
