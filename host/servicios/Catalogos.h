#pragma once

// The catalogues the lookup dialog offers, by the caption the editor shows
// them with, and the rows of one catalogue read into memory so the dialog can
// narrow them as the user types without asking the database again. The
// articles, which may be many, are narrowed by the database instead
// (host/servicios/ConsultaCatalogo.h).
//
//   "Conceptos de Op al inventario"  conceptos (concepto, descrip); writes concepto
//   "Articulos"                      prods (articulo, descrip, unidad); writes articulo
//   "Impuestos por porcentaje"       impuestos (impuesto, descrip, porcentaje);
//                                    writes porcentaje
//   "Almacenes"                      almacen (almacen, nombre); writes almacen
//
// A search matches a row when every word of it appears in the row's code or
// description, ignoring case and accents ("almacen" finds "Almacén").
//
// A catalogue's filter is one comparison of a column of its table with a number
// or a quoted text ("kit <> 0", "unidad = 'PZA'"), run with the value bound.
// Anything else (a second condition, a function, another statement, a column
// the table does not have) is refused with an Error.

#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <vector>

namespace zuvi::anfitrion {

struct DefinicionCatalogo
{
    QString titulo;
    QString tabla;
    QStringList columnas;    // shown, in order; the first two are code and description
    QStringList encabezados; // one per shown column
    int columnaClave = 0;    // the shown column written into the box
    QString orden;           // ORDER BY
    QStringList filtrables;  // the table's columns a filter may compare
};

// The catalogue with this caption (compared exactly), or nullptr.
const DefinicionCatalogo *definicionCatalogo(const QString &titulo);
// Every caption, in the order above.
QStringList titulosCatalogos();

// A filter taken apart: "WHERE columna operador ?" with valor bound.
struct FiltroCatalogo
{
    QString columna;
    QString operador;
    QVariant valor;
};

// An empty or blank text is no filter (columna empty). Throws Error when the
// text is not a comparison the catalogue admits.
FiltroCatalogo leeFiltro(const DefinicionCatalogo &catalogo, const QString &texto);

// The text a row is searched by, and a search typed by the user, in one form:
// case folded, accents and other combining marks removed.
QString formaDeBusqueda(const QString &texto);

struct FilaCatalogo
{
    QStringList celdas;
    QString busqueda; // formaDeBusqueda of code and description
};

class FilasCatalogo
{
public:
    // Reads every row of the catalogue that passes the filter, in the
    // catalogue's order. Throws Error on a refused filter or a failed query.
    static FilasCatalogo lee(const DefinicionCatalogo &catalogo, const QString &filtro,
                             const QSqlDatabase &conexion);

    int total() const { return int(m_filas.size()); }
    const FilaCatalogo &fila(int i) const { return m_filas[size_t(i)]; }
    // The positions of the rows the search matches, in order; all for a blank one.
    std::vector<int> busca(const QString &texto) const;

private:
    std::vector<FilaCatalogo> m_filas;
};

} // namespace zuvi::anfitrion
