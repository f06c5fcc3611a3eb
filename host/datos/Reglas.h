#pragma once

// The rules a row typed in a catalogue window is checked against before it is
// written, the search of those windows, and the rolled-up cost of a kit.

#include "host/datos/Tablas.h"

#include <QSet>
#include <QSqlDatabase>
#include <QVariantMap>

namespace zuvi::anfitrion::datos {

// The recipe header of the kits window (componen): the kit and its yield.
const Catalogo &cabeceraKits();

// What is wrong with a row about to be written, in Spanish and naming the
// field; empty when it may be written. valores by column name; nueva: an
// insert (its key must not be taken yet).
QString revisaFila(const QSqlDatabase &db, const Catalogo &c, const QVariantMap &valores,
                   bool nueva);

// The articles that have a recipe (are kits), case folded.
QSet<QString> kitsConReceta(const QSqlDatabase &db);

// Whether the article componente contains kit, directly or through its own
// components (the kit would then contain itself).
bool contiene(const QSqlDatabase &db, const QString &componente, const QString &kit);

// The cost of one kit: each component's cost times its quantity per batch,
// divided by the batch yield, a sub-kit's cost rolled up the same way.
double costoKit(const QSqlDatabase &db, const QString &kit);

// The condition (without WHERE) that keeps the rows with every word of the
// search in one of the columns, case and accents ignored. Empty for a blank
// search.
QString condicionBusqueda(const QSqlDatabase &db, const QStringList &columnas,
                          const QString &busqueda);

// The same over the articles: on SQLite through their search index, keeping
// the rows whose article's row number (`numero`: "rowid", "p.rowid") the
// index finds, without reading the table.
QString condicionBusquedaArticulos(const QSqlDatabase &db, const QString &numero,
                                   const QStringList &columnas, const QString &busqueda);

} // namespace zuvi::anfitrion::datos
