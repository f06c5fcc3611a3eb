#include "host/datos/Csv.h"

#include "runtime/Error.h"

#include <QLocale>
#include <QStringDecoder>

#include <csv.h>

#include <cmath>

namespace zuvi::anfitrion::datos {

namespace {

// The characters 0x80-0x9F of Windows-1252; the rest of its bytes are Latin-1.
constexpr char16_t kWindows1252[32] = {
    0x20AC, 0xFFFD, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0xFFFD, 0x017D, 0xFFFD, 0xFFFD, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0xFFFD, 0x017E, 0x0178};

bool esUtf8(QByteArrayView bytes)
{
    QStringDecoder decodificador(QStringConverter::Utf8);
    const QString texto = decodificador.decode(bytes); // decode() is lazy: convert to run it
    return !decodificador.hasError();
}

// What the parser's callbacks fill. A record ends at each unquoted line end
// (CSV_REPALL_NL), so blank lines are seen and counted too.
struct Lector
{
    ArchivoCsv *archivo = nullptr;
    QStringList campos;
    int linea = 1;       // the line being read
    int inicio = 0;      // line where the current record began; 0: none yet
    bool trasCR = false; // the last line end was a CR (a following LF is the same end)
    bool encabezadoLeido = false;

    QString texto(const char *datos, size_t largo) const
    {
        const QByteArray b = QByteArray::fromRawData(datos, qsizetype(largo));
        return archivo->utf8 ? QString::fromUtf8(b) : desdeWindows1252(b);
    }
};

void campo(void *datos, size_t largo, void *usuario)
{
    auto *l = static_cast<Lector *>(usuario);
    if (l->inicio == 0)
        l->inicio = l->linea;
    l->trasCR = false;
    const char *p = static_cast<const char *>(datos);
    l->campos << l->texto(p, largo);
    // Line breaks inside a quoted field move the line count on.
    for (size_t i = 0; i < largo; ++i)
        if (p[i] == '\n' || (p[i] == '\r' && (i + 1 == largo || p[i + 1] != '\n')))
            ++l->linea;
}

void finDeFila(int caracter, void *usuario)
{
    auto *l = static_cast<Lector *>(usuario);
    const bool vacia = std::all_of(l->campos.cbegin(), l->campos.cend(),
                                   [](const QString &c) { return c.trimmed().isEmpty(); });
    if (!l->campos.isEmpty() && !vacia) {
        if (!l->encabezadoLeido) {
            l->archivo->encabezado = l->campos;
            l->archivo->lineaEncabezado = l->inicio;
            l->encabezadoLeido = true;
        } else {
            l->archivo->filas.push_back({l->inicio, l->campos});
        }
    }
    l->campos.clear();
    l->inicio = 0;
    if (caracter == '\r') {
        ++l->linea;
        l->trasCR = true;
    } else if (caracter == '\n') {
        if (!l->trasCR)
            ++l->linea;
        l->trasCR = false;
    }
}

int soloEspacio(unsigned char c)
{
    return c == ' ';
}

} // namespace

QString desdeWindows1252(const QByteArray &bytes)
{
    QString s(bytes.size(), Qt::Uninitialized);
    QChar *d = s.data();
    for (const char c : bytes) {
        const auto b = static_cast<unsigned char>(c);
        *d++ = (b >= 0x80 && b < 0xA0) ? QChar(kWindows1252[b - 0x80]) : QChar(b);
    }
    return s;
}

QChar separadorDe(const QByteArray &primeraLinea)
{
    int comas = 0, puntoYComa = 0, tabuladores = 0;
    bool entreComillas = false;
    for (const char c : primeraLinea) {
        if (c == '"')
            entreComillas = !entreComillas;
        else if (entreComillas)
            continue;
        else if (c == ',')
            ++comas;
        else if (c == ';')
            ++puntoYComa;
        else if (c == '\t')
            ++tabuladores;
        else if (c == '\n' || c == '\r')
            break;
    }
    if (puntoYComa > comas && puntoYComa >= tabuladores)
        return u';';
    if (tabuladores > comas)
        return u'\t';
    return u',';
}

ArchivoCsv leeCsv(const QByteArray &bytes, const std::function<void(qint64, qint64)> &avance)
{
    ArchivoCsv archivo;
    QByteArrayView datos(bytes);
    if (datos.startsWith("\xEF\xBB\xBF"))
        datos = datos.sliced(3);
    archivo.utf8 = esUtf8(datos);
    archivo.separador =
        separadorDe(datos.first(std::min<qsizetype>(datos.size(), 65536)).toByteArray());
    archivo.comaDecimal = archivo.separador != u',';

    csv_parser parser;
    if (csv_init(&parser, CSV_REPALL_NL) != 0)
        throw Error(QStringLiteral("No hay memoria para leer el archivo."));
    csv_set_delim(&parser, static_cast<unsigned char>(archivo.separador.toLatin1()));
    csv_set_space_func(&parser, soloEspacio);
    Lector lector;
    lector.archivo = &archivo;
    // In blocks, so a long file shows its progress as it goes.
    constexpr qsizetype kBloque = 1 << 20;
    for (qsizetype desde = 0; desde < datos.size(); desde += kBloque) {
        const QByteArrayView bloque = datos.sliced(desde, std::min(kBloque, datos.size() - desde));
        if (csv_parse(&parser, bloque.data(), size_t(bloque.size()), campo, finDeFila, &lector) !=
            size_t(bloque.size())) {
            const QString causa = QString::fromUtf8(csv_strerror(csv_error(&parser)));
            csv_free(&parser);
            throw Error(QStringLiteral("No se pudo leer el archivo: %1").arg(causa));
        }
        if (avance)
            avance(desde + bloque.size(), datos.size());
    }
    csv_fini(&parser, campo, finDeFila, &lector);
    csv_free(&parser);
    return archivo;
}

double numeroCsv(const QString &texto, bool comaDecimal, bool *ok)
{
    QString t = texto.trimmed();
    if (comaDecimal && t.contains(u',')) {
        t.remove(u'.');
        t.replace(u',', u'.');
    }
    bool leido = false;
    const double n = QLocale::c().toDouble(t, &leido);
    *ok = leido && std::isfinite(n);
    return *ok ? n : 0.0;
}

QByteArray lineaCsv(const QStringList &campos)
{
    QByteArray linea;
    for (qsizetype i = 0; i < campos.size(); ++i) {
        if (i > 0)
            linea += ',';
        const QByteArray c = campos.at(i).toUtf8();
        const bool comillas = c.contains(',') || c.contains('"') || c.contains('\n') ||
                              c.contains('\r') || c.startsWith(' ') || c.endsWith(' ');
        if (!comillas) {
            linea += c;
            continue;
        }
        QByteArray doble = c;
        doble.replace("\"", "\"\"");
        linea += '"' + doble + '"';
    }
    return linea + "\r\n";
}

QString textoNumero(double valor)
{
    return QLocale::c().toString(valor, 'g', 15);
}

} // namespace zuvi::anfitrion::datos
