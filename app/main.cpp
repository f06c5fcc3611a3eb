#include "app/Comandos.h"
#include "app/Idioma.h"
#include "app/LineaComandos.h"
#include "app/VentanaPrincipal.h"
#include "host/base/Rutas.h"
#include "runtime/Error.h"

#include <QApplication>
#include <QCoreApplication>

#include <cstdio>
#include <memory>

namespace {

QtMessageHandler manejadorPrevio = nullptr;

// Warnings of the offscreen platform (no runtime folder, no window manager)
// would only confuse whoever reads the command's messages.
void filtraMensajes(QtMsgType tipo, const QMessageLogContext &contexto, const QString &texto)
{
    if (texto.startsWith(QLatin1String("QStandardPaths: XDG_RUNTIME_DIR not set")) ||
        texto == QLatin1String("This plugin does not support propagateSizeHints()"))
        return;
    if (manejadorPrevio)
        manejadorPrevio(tipo, contexto, texto);
    else
        std::fprintf(stderr, "%s\n", qUtf8Printable(texto));
}

bool hayPantalla()
{
    return !qEnvironmentVariableIsEmpty("DISPLAY") ||
           !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

// The command line must run without a display; windows then go offscreen.
std::unique_ptr<QCoreApplication> creaAplicacion(int &argc, char **argv, bool ventanas,
                                                 const QLocale &idioma)
{
    std::unique_ptr<QCoreApplication> app;
    if (ventanas) {
        if (!hayPantalla() && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
        app = std::make_unique<QApplication>(argc, argv);
    } else {
        app = std::make_unique<QCoreApplication>(argc, argv);
    }
    QCoreApplication::setApplicationName(QStringLiteral("zuvi-produccion"));
    QCoreApplication::setApplicationVersion(QStringLiteral(ZUVI_VERSION));
    zuvi::app::instalaIdioma(idioma);
    return app;
}

} // namespace

int main(int argc, char **argv)
{
    using namespace zuvi::app;
    manejadorPrevio = qInstallMessageHandler(filtraMensajes);
    QStringList argumentos;
    for (int i = 1; i < argc; ++i)
        argumentos << zuvi::anfitrion::textoDeBytes(argv[i]); // a path's bytes kept

    LineaComandos lc;
    QLocale idioma;
    try {
        lc = LineaComandos::lee(argumentos);
        idioma = eligeIdioma(lc.idioma);
    } catch (...) {
        avisa(zuvi::describeCurrentException());
        return MalUso;
    }
    if (lc.ayuda) {
        std::fputs(qUtf8Printable(textoAyuda()), stdout);
        return Exito;
    }
    if (lc.version) {
        std::fputs("zuvi-produccion " ZUVI_VERSION "\n", stdout);
        return Exito;
    }

    if (lc.orden.isEmpty()) {
        if (!hayPantalla() && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
            avisa(QStringLiteral("No hay pantalla para abrir la ventana principal (DISPLAY no "
                                 "está definido). Use una orden; vea --help."));
            return Fallo;
        }
        auto app = creaAplicacion(argc, argv, true, idioma);
        return ejecutaVentanaPrincipal(lc);
    }

    // Only what goes through the component may open windows.
    const bool ventanas = lc.orden != QLatin1String("crea-base") &&
                          lc.orden != QLatin1String("registra") &&
                          lc.orden != QLatin1String("desregistra");
    auto app = creaAplicacion(argc, argv, ventanas, idioma);
    return ejecutaOrden(lc);
}
