#include "app/Idioma.h"

#include "runtime/Error.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QTranslator>

#include <cstdio>

namespace zuvi::app {

QLocale eligeIdioma(const QString &pedido)
{
    QString nombre = pedido.trimmed();
    if (nombre.isEmpty())
        nombre = qEnvironmentVariable("ZUVI_IDIOMA").trimmed();
    if (nombre.isEmpty())
        return QLocale(QLocale::Spanish, QLocale::Mexico);
    // "es_MX.UTF-8" and "es-MX" name the same locale as "es_MX".
    const QString base = nombre.section(QLatin1Char('.'), 0, 0).section(QLatin1Char('@'), 0, 0);
    const QLocale local(base);
    const bool espanol =
        local.language() == QLocale::Spanish && base.startsWith(QLatin1String("es"));
    if (!espanol)
        throw Error(QStringLiteral("El idioma \"%1\" no es una variante del español; use, por "
                                   "ejemplo, es_MX o es_ES.")
                        .arg(nombre));
    return local;
}

bool instalaIdioma(const QLocale &local)
{
    QLocale::setDefault(local);
    auto *app = QCoreApplication::instance();
    // Translators installed later are looked up first: ours completes Qt's.
    auto *qt = new QTranslator(app);
    const QString carpeta = QLibraryInfo::path(QLibraryInfo::TranslationsPath);
    const bool hayQt = qt->load(local, QStringLiteral("qtbase"), QStringLiteral("_"), carpeta);
    if (hayQt)
        QCoreApplication::installTranslator(qt);
    else
        std::fprintf(stderr, "%s\n",
                     qUtf8Printable(QStringLiteral("No se encontraron las traducciones de Qt al "
                                                   "español en %1 (paquete "
                                                   "qt6-translations-l10n); los diálogos "
                                                   "estándar quedarán en inglés.")
                                        .arg(carpeta)));
    auto *propia = new QTranslator(app);
    if (propia->load(local, QStringLiteral("zuvi-produccion"), QStringLiteral("_"),
                     QStringLiteral(":/idioma")))
        QCoreApplication::installTranslator(propia);
    return hayQt;
}

} // namespace zuvi::app
