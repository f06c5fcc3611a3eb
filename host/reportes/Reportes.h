#pragma once

// The host's printed reports, written as PDF files.

#include <QSqlDatabase>
#include <QString>

namespace zuvi::anfitrion {

// Writes the production order report (the op header and its oppart lines,
// with article descriptions) to the PDF file archivo. Throws Error when the
// order does not exist or the file cannot be written.
void escribeOrdenProduccion(const QSqlDatabase &db, qint32 op, const QString &archivo);
// The same report where printed documents go (host/reportes/Impresion.h): the preview
// in the desktop shell (the empty text is returned), otherwise the PDF file
// archivo, whose path is returned.
QString publicaOrdenProduccion(const QSqlDatabase &db, qint32 op, const QString &archivo);

// The folder reports go to: the one set with ponCarpetaReportes, otherwise
// the user's documents folder when it exists, otherwise the data folder.
QString carpetaReportes();
void ponCarpetaReportes(const QString &carpeta); // empty returns to the default

} // namespace zuvi::anfitrion
