#include "host/base/Rutas.h"

#include "runtime/Text.h"

#include <QDir>
#include <QFileInfo>

#include <sys/stat.h>

namespace zuvi::anfitrion {

namespace {

constexpr char16_t kByteGuardado = 0xDC00;

// The code point of the valid UTF-8 sequence at i and its length, or a
// length of 0 when the bytes there are not one (overlong forms, surrogates
// and codes above U+10FFFF are not).
std::pair<char32_t, int> secuencia(const QByteArray &b, qsizetype i)
{
    const auto byte = [&](qsizetype k) { return uchar(b.at(k)); };
    const uchar c = byte(i);
    int largo = 0;
    char32_t cp = 0, minimo = 0;
    if (c < 0x80)
        return {c, 1};
    if ((c & 0xE0) == 0xC0)
        largo = 2, cp = c & 0x1F, minimo = 0x80;
    else if ((c & 0xF0) == 0xE0)
        largo = 3, cp = c & 0x0F, minimo = 0x800;
    else if ((c & 0xF8) == 0xF0)
        largo = 4, cp = c & 0x07, minimo = 0x10000;
    else
        return {0, 0};
    if (i + largo > b.size())
        return {0, 0};
    for (int k = 1; k < largo; ++k) {
        if ((byte(i + k) & 0xC0) != 0x80)
            return {0, 0};
        cp = (cp << 6) | (byte(i + k) & 0x3F);
    }
    if (cp < minimo || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF))
        return {0, 0};
    return {cp, largo};
}

} // namespace

QString textoDeBytes(const QByteArray &bytes)
{
    QString texto;
    texto.reserve(bytes.size());
    for (qsizetype i = 0; i < bytes.size();) {
        const auto [cp, largo] = secuencia(bytes, i);
        if (largo == 0) {
            texto += QChar(char16_t(kByteGuardado + uchar(bytes.at(i))));
            ++i;
            continue;
        }
        const char32_t uno[] = {cp};
        texto += QString::fromUcs4(uno, 1);
        i += largo;
    }
    return texto;
}

QByteArray bytesDeTexto(const QString &texto)
{
    QByteArray bytes;
    bytes.reserve(texto.size());
    for (qsizetype i = 0; i < texto.size(); ++i) {
        const char16_t u = texto.at(i).unicode();
        if (u >= kByteGuardado + 0x80 && u <= kByteGuardado + 0xFF) {
            bytes += char(u - kByteGuardado);
            continue;
        }
        qsizetype largo = 1;
        if (QChar::isHighSurrogate(u) && i + 1 < texto.size() &&
            QChar::isLowSurrogate(texto.at(i + 1).unicode()))
            largo = 2;
        bytes += QStringView(texto).mid(i, largo).toUtf8();
        i += largo - 1;
    }
    return bytes;
}

QString muestraRuta(const QString &ruta)
{
    QString visible;
    for (const QChar c : ruta) {
        const char16_t u = c.unicode();
        if (u >= kByteGuardado + 0x80 && u <= kByteGuardado + 0xFF)
            visible +=
                QStringLiteral("\\x%1").arg(uint(u - kByteGuardado), 2, 16, QLatin1Char('0'));
        else
            visible += c;
    }
    return eco(visible, 200);
}

bool creaCarpetaPrivada(const QString &carpeta)
{
    const QString limpia = QDir::cleanPath(QFileInfo(carpeta).absoluteFilePath());
    if (QFileInfo(limpia).isDir())
        return true;
    const QString padre = QFileInfo(limpia).path();
    if (padre != limpia && !creaCarpetaPrivada(padre))
        return false;
    return ::mkdir(bytesDeTexto(limpia).constData(), 0700) == 0 || QFileInfo(limpia).isDir();
}

} // namespace zuvi::anfitrion
