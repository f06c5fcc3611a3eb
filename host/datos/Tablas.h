#pragma once

// What the host knows of each catalogue a workshop keeps: its columns, their
// kind and length, which are its key, what another catalogue they point at,
// and the Spanish words a clerk reads. The import, the export and the
// catalogue windows all work from these descriptions.

#include "host/base/Sesion.h"
#include "host/procesos/Procesos.h"
#include "host/servicios/Registro.h"

#include <QList>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <QVariant>

namespace zuvi::anfitrion::datos {

enum class Tipo { Texto, Clave, Entero, Real, Bandera };

struct Columna
{
    QString nombre; // as the table spells it
    Tipo tipo = Tipo::Texto;
    int largo = 0;      // texts: characters
    QString etiqueta;   // Spanish, as a header and in messages
    QString referencia; // the catalogue (by its name) it must exist in
    bool clave = false;
    bool obligatoria = false;
};

struct Catalogo
{
    QString nombre;   // as the command line takes it: "articulos", "kits"...
    QString tabla;    // what a row is kept in ("kits": comppart, with componen)
    QString titulo;   // "Artículos"
    QString singular; // "el artículo"
    QList<Columna> columnas;
    QString orden;    // ORDER BY of a listing
    QString busqueda; // the columns a search looks in (code and description)

    QStringList claves() const;
    const Columna *columna(const QString &nombre) const; // any case
};

// Every catalogue, in the order of the menu.
const QList<Catalogo> &catalogos();
const Catalogo *catalogo(const QString &nombre);
QStringList nombresCatalogos();

// A value typed or read from a file, checked against its column and turned
// into what the database takes. Returns the Spanish reason when it is not
// valid (empty when it is). comaDecimal: the number may use a decimal comma.
// An empty number is null: not given, so the column keeps its value or default.
QString convierte(const Columna &c, const QString &texto, Motor motor, bool comaDecimal,
                  QVariant &valor);

// Whether a key exists in the catalogue of that name.
bool existe(const QSqlDatabase &db, const QString &catalogo, const QVariant &clave);

// Where a row of the catalogue is still used, in Spanish ("en 3 líneas de
// órdenes (1, 4, 9)"); empty when it can be deleted.
QStringList usos(const QSqlDatabase &db, const QString &catalogo, const QVariant &clave);

} // namespace zuvi::anfitrion::datos
