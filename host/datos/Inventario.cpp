#include "host/datos/Inventario.h"

#include "host/datos/Csv.h"
#include "host/servicios/Catalogos.h"
#include "host/sql/Sql.h"

namespace zuvi::anfitrion::datos {

namespace {

bool hallada(const QStringList &palabras, const QString &texto)
{
    const QString forma = formaDeBusqueda(texto);
    return std::all_of(palabras.cbegin(), palabras.cend(),
                       [&](const QString &p) { return forma.contains(p); });
}

// The condition on the article, its warehouse and the dates, with its values.
QString condicion(const QString &articulo, int almacen, const QDate &desde, const QDate &hasta,
                  QVariantList &valores)
{
    QString c = QStringLiteral(" WHERE articulo = ?");
    valores = {articulo};
    if (almacen > 0) {
        c += QStringLiteral(" AND almacen = ?");
        valores << almacen;
    }
    if (desde.isValid()) {
        c += QStringLiteral(" AND fecha >= ?");
        valores << desde.toString(Qt::ISODate);
    }
    if (hasta.isValid()) {
        c += QStringLiteral(" AND fecha <= ?");
        valores << hasta.toString(Qt::ISODate);
    }
    return c;
}

double suma(const QSqlDatabase &db, const QString &sql, const QVariantList &valores)
{
    const RecordsetPtr r = consulta(db, sql, valores);
    return r->atEnd() ? 0.0 : r->number(0);
}

} // namespace

QList<Existencia> existencias(const QSqlDatabase &db, int almacen, const QString &busqueda)
{
    QString sql = QStringLiteral(
        "SELECT e.articulo, p.descrip, e.almacen, a.nombre, e.cantidad, p.costo FROM existencias e"
        " LEFT JOIN prods p ON p.articulo = e.articulo"
        " LEFT JOIN almacen a ON a.almacen = e.almacen");
    QVariantList valores;
    if (almacen > 0) {
        sql += QStringLiteral(" WHERE e.almacen = ?");
        valores << almacen;
    }
    sql += QStringLiteral(" ORDER BY e.articulo, e.almacen");
    const QStringList palabras = formaDeBusqueda(busqueda).split(u' ', Qt::SkipEmptyParts);
    QList<Existencia> l;
    for (RecordsetPtr r = consulta(db, sql, valores); !r->atEnd(); r->moveNext()) {
        Existencia e{r->text(0),   r->text(1), int(r->number(2)), r->text(3), r->number(4),
                     r->number(5), 0};
        if (!palabras.isEmpty() && !hallada(palabras, e.articulo + u' ' + e.descripcion))
            continue;
        e.valor = e.cantidad * e.costo;
        l << e;
    }
    return l;
}

QList<Movimiento> movimientos(const QSqlDatabase &db, const QString &articulo, int almacen,
                              const QDate &desde, const QDate &hasta)
{
    QVariantList valores;
    const QString stock = QStringLiteral("SELECT SUM(cantidad) FROM existencias") +
                          condicion(articulo, almacen, {}, {}, valores);
    const double ahora = suma(db, stock, valores);
    const QString desdeAhi =
        QStringLiteral("SELECT SUM(CASE WHEN tipo = 'E' THEN cantidad ELSE -cantidad END) "
                       "FROM movimientos") +
        condicion(articulo, almacen, desde, {}, valores);
    Movimiento apertura;
    apertura.fecha = desde;
    apertura.almacen = almacen;
    apertura.saldo = ahora - suma(db, desdeAhi, valores);
    QList<Movimiento> l{apertura};
    const QString sql = QStringLiteral("SELECT fecha, tipo, concepto, orden, folio, usuario, "
                                       "almacen, cantidad, costo, importe FROM movimientos") +
                        condicion(articulo, almacen, desde, hasta, valores) +
                        QStringLiteral(" ORDER BY fecha, id");
    double saldo = apertura.saldo;
    for (RecordsetPtr r = consulta(db, sql, valores); !r->atEnd(); r->moveNext()) {
        Movimiento m;
        m.fecha = r->value(0).toDate();
        m.tipo = r->text(1).toUpper();
        m.concepto = r->text(2);
        m.orden = int(r->number(3));
        m.folio = r->text(4);
        m.usuario = r->text(5);
        m.almacen = int(r->number(6));
        const double cantidad = r->number(7);
        (m.tipo == QLatin1String("E") ? m.entrada : m.salida) = cantidad;
        m.costo = r->number(8);
        m.valor = r->number(9);
        saldo += m.entrada - m.salida;
        m.saldo = saldo;
        l << m;
    }
    return l;
}

QStringList encabezadoExistencias()
{
    return {QStringLiteral("articulo"),   QStringLiteral("descripcion"),
            QStringLiteral("almacen"),    QStringLiteral("nombre_almacen"),
            QStringLiteral("existencia"), QStringLiteral("costo"),
            QStringLiteral("valor")};
}

QList<QStringList> filasExistencias(const QList<Existencia> &l)
{
    QList<QStringList> filas;
    for (const Existencia &e : l)
        filas << QStringList{
            e.articulo,          e.descripcion,           QString::number(e.almacen),
            e.nombreAlmacen,     textoNumero(e.cantidad), textoNumero(e.costo),
            textoNumero(e.valor)};
    return filas;
}

QStringList encabezadoMovimientos()
{
    return {QStringLiteral("fecha"),   QStringLiteral("tipo"),    QStringLiteral("concepto"),
            QStringLiteral("orden"),   QStringLiteral("folio"),   QStringLiteral("usuario"),
            QStringLiteral("almacen"), QStringLiteral("entrada"), QStringLiteral("salida"),
            QStringLiteral("costo"),   QStringLiteral("valor"),   QStringLiteral("saldo")};
}

QList<QStringList> filasMovimientos(const QList<Movimiento> &l)
{
    QList<QStringList> filas;
    for (const Movimiento &m : l) {
        if (m.tipo.isEmpty()) { // the opening balance
            filas << QStringList{m.fecha.toString(Qt::ISODate),
                                 QString(),
                                 QStringLiteral("SALDO ANTERIOR"),
                                 QString(),
                                 QString(),
                                 QString(),
                                 m.almacen > 0 ? QString::number(m.almacen) : QString(),
                                 QString(),
                                 QString(),
                                 QString(),
                                 QString(),
                                 textoNumero(m.saldo)};
            continue;
        }
        filas << QStringList{m.fecha.toString(Qt::ISODate),
                             m.tipo,
                             m.concepto,
                             QString::number(m.orden),
                             m.folio,
                             m.usuario,
                             QString::number(m.almacen),
                             textoNumero(m.entrada),
                             textoNumero(m.salida),
                             textoNumero(m.costo),
                             textoNumero(m.valor),
                             textoNumero(m.saldo)};
    }
    return filas;
}

} // namespace zuvi::anfitrion::datos
