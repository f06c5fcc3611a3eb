// Typing into an editor box: every key goes through the box's filter, the
// text is then formatted for display. Whatever is typed, a filtered box only
// ever holds what its tag admits, and formatting twice changes nothing more
// than formatting once.

#include "Entrada.h"
#include "Exige.h"
#include "host/servicios/Filtros.h"

#include <QRegularExpression>

using namespace zuvi::anfitrion;
using zuvi::fuzz::exige;

namespace {

const char *const kEtiquetas[] = {"U", "N", "SN", "SD", "D", "", "n"};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *datos, size_t largo)
{
    zuvi::fuzz::Entrada e(datos, largo);
    const QString etiqueta = QLatin1String(kEtiquetas[e.byte() % std::size(kEtiquetas)]);
    QString caja;
    while (!e.vacia() && caja.size() < 40) {
        const uint8_t orden = e.byte();
        int tecla = orden < 0xF0 ? orden : e.valor<uint16_t>();
        if (orden == 0xFF)
            tecla = e.valor<int32_t>(); // anything at all
        const int inicio = e.byte() % 48, seleccion = e.byte() % 8;
        const int tecla0 = tecla;
        tecla = filtraTecla(etiqueta, caja, inicio, seleccion, tecla);
        exige(tecla == 0 || tecla == tecla0, "el filtro sólo deja pasar o rechaza la tecla");
        if (etiqueta == QLatin1String("U"))
            tecla = mayuscula(tecla);
        if (tecla >= 32 && tecla <= 0xFFFF) {
            const int desde = qBound(0, inicio, int(caja.size()));
            caja.replace(desde, qBound(0, seleccion, int(caja.size()) - desde),
                         QChar(char16_t(tecla)));
        }
    }
    static const QHash<QString, QRegularExpression> admitido = {
        {QStringLiteral("N"), QRegularExpression(QStringLiteral("^-?[0-9]*\\.?[0-9]*$"))},
        {QStringLiteral("SN"), QRegularExpression(QStringLiteral("^[0-9]*$"))},
        {QStringLiteral("SD"), QRegularExpression(QStringLiteral("^[0-9]*$"))},
        {QStringLiteral("D"), QRegularExpression(QStringLiteral("^[0-9/-]{0,10}$"))}};
    if (admitido.contains(etiqueta))
        exige(admitido.value(etiqueta).match(caja).hasMatch(),
              "la caja tiene lo que su etiqueta admite");

    // Formatting, of what was typed and of any text a program puts in the box.
    for (const QString &texto : {caja, e.resto()}) {
        const QString una = formateaTexto(etiqueta, texto);
        exige(formateaTexto(etiqueta, una) == una, "formatear dos veces da lo mismo que una");
        if (etiqueta == QLatin1String("D") && una != texto && !una.isEmpty())
            exige(leeFecha(una).isValid(), "una fecha formateada se vuelve a leer");
    }
    return 0;
}
