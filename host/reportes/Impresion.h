#pragma once

// Where the host's printed documents go. In the desktop shell they open in a
// print preview, from which the user prints or saves a PDF; from the command
// line (and in tests) they are written as a PDF file and its path is handed
// back, with nothing waiting for a person.

#include <QMarginsF>
#include <QString>

#include <functional>

class QPagedPaintDevice;

namespace zuvi::anfitrion {

// Paints every page of a document on the device (a PDF writer or a printer),
// already set to letter size with the document's margins.
using Dibujo = std::function<void(QPagedPaintDevice &dispositivo)>;

// On in the desktop shell.
void ponVistaPrevia(bool activa);
bool vistaPrevia();

// Shows the document in the preview and returns the empty text, or writes it
// to archivo and returns the file's native path. Throws Error when the file
// cannot be written.
QString publica(const QString &titulo, const QString &archivo, const QMarginsF &margenesMm,
                const Dibujo &dibujo);

} // namespace zuvi::anfitrion
