#pragma once

// The stock the movements leave, and the movements behind it (the stock card
// of one article).

#include <QDate>
#include <QList>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>

namespace zuvi::anfitrion::datos {

struct Existencia
{
    QString articulo, descripcion;
    int almacen = 0;
    QString nombreAlmacen;
    double cantidad = 0, costo = 0, valor = 0;
};

// Stock per article and warehouse (of one warehouse when almacen > 0) whose
// article or description has every word of busqueda, by article and
// warehouse, valued at the article's cost.
QList<Existencia> existencias(const QSqlDatabase &db, int almacen = 0,
                              const QString &busqueda = {});

struct Movimiento
{
    QDate fecha;
    QString tipo; // "E" in, "S" out; empty on the opening row
    QString concepto;
    int orden = 0;
    QString folio, usuario;
    int almacen = 0;
    double entrada = 0, salida = 0, costo = 0, valor = 0;
    double saldo = 0; // the balance after this movement
};

// The stock card: a first row with the balance before desde, then the
// movements of the article (in one warehouse when almacen > 0) from desde to
// hasta, oldest first, each with the running balance. The balance before the
// range is the stock now less every movement from desde on, so stock entered
// without a movement (an opening count) is part of it and the last balance
// without hasta is the stock shown. Invalid dates leave the range open.
QList<Movimiento> movimientos(const QSqlDatabase &db, const QString &articulo, int almacen,
                              const QDate &desde, const QDate &hasta);

// Both listings as the rows of a table (the terminal's, a CSV's, a
// window's): the header, then the rows, numbers written with '.'.
QStringList encabezadoExistencias();
QList<QStringList> filasExistencias(const QList<Existencia> &l);
QStringList encabezadoMovimientos();
QList<QStringList> filasMovimientos(const QList<Movimiento> &l);

} // namespace zuvi::anfitrion::datos
