#pragma once

// What host/sql/Sql.cpp runs statements with: a prepared statement kept per
// connection, behind one interface. On SQLite it steps the statement through
// the driver's own handle; on other engines it is a QSqlQuery.

#include "host/sql/Sql.h"

#include <QSqlDatabase>
#include <QString>
#include <QVarLengthArray>
#include <QVariantList>

#include <array>
#include <memory>
#include <string>

namespace zuvi::anfitrion::interno {

struct FalloSql
{
    QString texto;
    int codigo = 0;
};

// A literal the scanner took out of a statement text, seen in place in it.
struct Literal
{
    enum class Tipo : quint8 { Entero, Real, Texto };
    Tipo tipo = Tipo::Entero;
    bool comillaDoble = false; // a text with '' inside: bound with the quote once
    qint64 entero = 0;
    double real = 0;
    QStringView texto;              // inside the quotes
    qsizetype desde = 0, hasta = 0; // where it stands in the text, quotes included
};
using Literales = QVarLengthArray<Literal, 8>;

// A text the scanner read, kept as the mould of the texts that differ from it
// only in their literals: those are read without scanning them again.
struct Molde
{
    QString original;
    std::u16string texto; // its normalized text
    struct Hueco
    {
        qsizetype desde, hasta;
        Literal::Tipo tipo;
    };
    QVarLengthArray<Hueco, 4> huecos;
    Motor motor{};
};

// What the scanner leaves of one text, in buffers kept from one text to the
// next: the text with '?' in place of its literals, and the literals; and the
// moulds of the last texts read, by their first characters.
struct Normalizacion
{
    std::u16string texto;
    Literales literales;
    std::array<Molde, 32> moldes;
    QStringView vista() const { return QStringView(texto.data(), qsizetype(texto.size())); }
};

// The slot of Normalizacion::moldes where the mould of a text is kept, by
// the text's first characters (host/sql/SqlMolde.cpp).
size_t ranura(const char16_t *s, qsizetype n);

// The literals of a text that is the mould's text around other literals of
// the same kinds; false when it is not.
bool encaja(const Molde &m, const char16_t *s, qsizetype n, Motor motor, Literales &literales);

// Scans sql into n; false when the text must run as it is (see
// normalizaSentencia). The literals point into sql. A text that fits a
// mould kept in n (the same text around literals of the same kinds) is read
// from the mould: the scan would give the same.
bool normaliza(const QString &sql, Motor motor, Normalizacion &n);

// A literal as a bound value: a number, or its text with a doubled quote once.
QVariant valorDe(const Literal &l);

class SentenciaPreparada
{
public:
    virtual ~SentenciaPreparada() = default;
    // Runs with the values. With filas, reads every row into it; with accion,
    // the rows affected and the id of an inserted row. False on failure, with
    // fallo filled in.
    virtual bool ejecuta(const QVariantList &valores, RecordsetPtr *filas, ResultadoAccion *accion,
                         FalloSql &fallo) = 0;
    // The same with the literals of a scanned text as the values.
    virtual bool ejecutaLiterales(const Literales &literales, RecordsetPtr *filas,
                                  ResultadoAccion *accion, FalloSql &fallo)
    {
        QVariantList valores;
        valores.reserve(literales.size());
        for (const Literal &l : literales)
            valores.append(valorDe(l));
        return ejecuta(valores, filas, accion, fallo);
    }
};

// The driver's handle of an open SQLite connection, or null.
void *manejadorSQLite(const QSqlDatabase &db);

// Closes an SQLite handle the driver let go of (no statement left on it).
void cierraSQLite(void *manejador);

// Whether the handle is inside a transaction already.
bool enTransaccionSQLite(void *manejador);

// Whether the last call on the handle failed as busy. The driver's close of
// a handle with statements of ours open on it fails that way and leaves the
// handle as it was, so an unmarked handle that has statements of ours is
// still the one the driver runs.
bool marcadoOcupado(void *manejador);

// Prepares on SQLite's handle; null with fallo filled in when the text does
// not prepare or holds a second statement.
std::unique_ptr<SentenciaPreparada> preparaEnSQLite(void *manejador, const QString &sql,
                                                    FalloSql &fallo);

} // namespace zuvi::anfitrion::interno
