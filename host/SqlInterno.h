#pragma once

// What host/Sql.cpp runs statements with: a prepared statement kept per
// connection, behind one interface. On SQLite it steps the statement through
// the driver's own handle; on other engines it is a QSqlQuery.

#include "host/Sql.h"

#include <QSqlDatabase>
#include <QString>
#include <QVariantList>

#include <memory>

namespace zuvi::anfitrion::interno {

struct FalloSql
{
    QString texto;
    int codigo = 0;
};

class SentenciaPreparada
{
public:
    virtual ~SentenciaPreparada() = default;
    // Runs with the values. With filas, reads every row into it; with accion,
    // the rows affected and the id of an inserted row. False on failure, with
    // fallo filled in.
    virtual bool ejecuta(const QVariantList &valores, RecordsetPtr *filas, ResultadoAccion *accion,
                         FalloSql &fallo) = 0;
};

// The driver's handle of an open SQLite connection, or null.
void *manejadorSQLite(const QSqlDatabase &db);

// Closes an SQLite handle the driver let go of (no statement left on it).
void cierraSQLite(void *manejador);

// Prepares on SQLite's handle; null with fallo filled in when the text does
// not prepare or holds a second statement.
std::unique_ptr<SentenciaPreparada> preparaEnSQLite(void *manejador, const QString &sql,
                                                    FalloSql &fallo);

} // namespace zuvi::anfitrion::interno
