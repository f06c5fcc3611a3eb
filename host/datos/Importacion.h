#pragma once

// A catalogue brought in from a CSV file, or written out to one.
//
// The file's header names the catalogue's own columns, in any case and any
// order; a column it does not have is refused by name. A row whose key is
// already there updates the columns the file brings; a new key is inserted
// with the others at their default. Everything is checked first, every bad
// row is reported (line, column, why), and then the whole file goes in one
// transaction: one refused row and nothing is written. A simulation checks
// and applies everything and then rolls it all back.

#include "host/datos/Tablas.h"

#include <QByteArray>
#include <QSqlDatabase>
#include <QString>

#include <functional>
#include <vector>

namespace zuvi::anfitrion::datos {

struct Rechazo
{
    int linea = 0;
    QString columna; // as the file's header spells it; empty for the whole row
    QString motivo;
    QString texto() const; // "Línea 4, columna costo: debe ser un número; dice \"x\""
};

struct ResultadoImportacion
{
    int filas = 0;
    int insertadas = 0;
    int actualizadas = 0;
    std::vector<Rechazo> rechazos;
    bool escrito = false; // the transaction was confirmed
    QChar separador;
    bool utf8 = true;
};

// What is being done ("Leyendo", "Revisando", "Escribiendo") and how far:
// bytes while reading, rows while checking and writing.
using Avance = std::function<void(const QString &fase, qint64 hecho, qint64 total)>;

ResultadoImportacion importa(const QSqlDatabase &db, const Catalogo &catalogo,
                             const QByteArray &archivo, bool simula, const Avance &avance = {});

// The catalogue as a CSV file that importa() takes back unchanged.
QByteArray exporta(const QSqlDatabase &db, const Catalogo &catalogo);

// The rows of a listing as the same CSV (a header, then the rows).
QByteArray comoCsv(const QStringList &encabezado, const QList<QStringList> &filas);

} // namespace zuvi::anfitrion::datos
