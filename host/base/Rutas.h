#pragma once

// File names as the bytes the user gave. A name on Linux is a string of
// bytes that need not be UTF-8; a byte that is not part of valid UTF-8 is
// kept in the text as the code U+DC00 + byte (half of a surrogate pair, which
// no decoded text holds alone), so it goes back to that same byte when the
// file is opened, instead of becoming a replacement character that names
// another file.

#include <QByteArray>
#include <QString>

namespace zuvi::anfitrion {

QString textoDeBytes(const QByteArray &bytes);
QByteArray bytesDeTexto(const QString &texto);

// A path made safe to show: each kept byte as \xNN, control characters made
// visible and a long path cut (zuvi::eco).
QString muestraRuta(const QString &ruta);

// Makes a folder and the ones above it that are missing, private to their
// owner (what the program writes there is one person's). False on failure.
bool creaCarpetaPrivada(const QString &carpeta);

} // namespace zuvi::anfitrion
