#pragma once

// A catalogue too big to read whole (the articles), narrowed by the database
// as the user types and read a page at a time.
//
// The rules are those of the catalogues read into memory: a row matches when
// every word of the search is in its code or its description, case and
// accents ignored. On SQLite the words go to the index kept beside the
// table; on MariaDB each word is
// looked for anywhere in both columns, whose collation ignores case and
// accents. Rows come in the catalogue's order; when a search on SQLite
// matches more than kExactas rows they come in the order they were entered,
// which needs no sorting of every match.

#include "host/servicios/Catalogos.h"

#include <QSqlDatabase>

#include <vector>

namespace zuvi::anfitrion {

// A search on the articles' index: its words of three letters or more are
// pieces the index finds by itself; a shorter word is looked for in the
// texts those leave, or, when every word is short, in every text (read in
// order, so a common one stops at the first page).
struct BusquedaEnIndice
{
    explicit BusquedaEnIndice(const QString &texto = {});
    bool vacia() const { return piezas.isEmpty() && cortas.isEmpty(); }
    // The condition on the index's rows, with its values as placeholders
    // (valores() in their order) or written in.
    QString condicion(bool literales = false) const;
    QVariantList valores() const;

    QString piezas;     // the index's query: "orn" "acer"
    QStringList cortas; // LIKE patterns: %m4%
};

class ConsultaCatalogo
{
public:
    static constexpr int kPagina = 100;
    static constexpr int kExactas = 2000;

    // Throws Error on a refused filter or a failed count.
    ConsultaCatalogo(const DefinicionCatalogo &catalogo, const QString &filtro,
                     QSqlDatabase conexion);

    static constexpr int kCuenta = 10000;

    // The rows the filter leaves, counted once up to kCuenta.
    int total() const { return m_total; }
    bool totalExacto() const { return m_totalExacto; }
    // Starts a search (blank: every row); its first rows, each the cells of
    // the catalogue's shown columns. Throws Error.
    std::vector<QStringList> busca(const QString &texto);
    // The next page; none when every match is read. Throws Error.
    std::vector<QStringList> sigue();
    bool hayMas() const { return m_hayMas; }
    // How many rows the search matches; -1 when only the pages read tell.
    int coincidencias() const { return m_coincidencias; }
    bool enOrdenDeAlta() const { return m_porAlta; }

private:
    QString columnas(const QString &prefijo = {}) const;
    void leePagina();

    const DefinicionCatalogo &m_catalogo;
    QSqlDatabase m_db;
    FiltroCatalogo m_filtro;
    int m_total = 0;
    bool m_totalExacto = true;
    BusquedaEnIndice m_busqueda;      // the search on SQLite's index
    QStringList m_palabras;           // the words, for MariaDB
    std::vector<QStringList> m_filas; // the rows just read
    QVariant m_ultima;                // the key (or entry number) of the last row read
    bool m_indice = false;            // SQLite with its full-text index
    bool m_hayMas = false;
    bool m_porAlta = false;
    int m_coincidencias = -1;
};

} // namespace zuvi::anfitrion
