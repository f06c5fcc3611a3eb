#pragma once

// The CSV files the catalogues are imported from and exported to. Reading
// takes what spreadsheets write: the separator (',', ';' or tab) found from
// the header row, UTF-8 with or without a byte-order mark or else
// Windows-1252, quoted fields with separators, quotes and line breaks inside.
// Writing gives UTF-8 without a mark, ',' and '"' only where needed, so an
// export reads back unchanged.

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

namespace zuvi::anfitrion::datos {

struct FilaCsv
{
    int linea = 0; // line of the file where the row begins, from 1
    QStringList campos;
};

struct ArchivoCsv
{
    QChar separador = u',';
    bool utf8 = true;         // false: the bytes were read as Windows-1252
    bool comaDecimal = false; // numbers may carry a decimal comma (separator ';' or tab)
    QStringList encabezado;
    int lineaEncabezado = 1;
    std::vector<FilaCsv> filas; // rows with every field blank are left out
};

// Reads a whole file held in memory. avance gets the bytes read so far.
ArchivoCsv leeCsv(const QByteArray &bytes,
                  const std::function<void(qint64 leidos, qint64 total)> &avance = {});

// The separator the header line uses: the most frequent of ';', tab and ','
// outside quotes (',' when it has none).
QChar separadorDe(const QByteArray &primeraLinea);

// Windows-1252 bytes as text.
QString desdeWindows1252(const QByteArray &bytes);

// A number written with '.' or, when comaDecimal, with a decimal comma (and
// '.' as thousands separator when both appear). ok false when it is none.
double numeroCsv(const QString &texto, bool comaDecimal, bool *ok);

// One row written with ',' separators, quoting where needed, ended by "\r\n".
QByteArray lineaCsv(const QStringList &campos);

// A number as an export writes it: '.' decimal point, no exponent for the
// usual magnitudes, no trailing zeros.
QString textoNumero(double valor);

} // namespace zuvi::anfitrion::datos
