#pragma once

// What the editor's benchmarks share: the median of a side's times, a
// session of the reference host on a fresh SQLite file, with the host's
// classes registered and the silent interaction in force, the events that
// run between two timed passes, and the frame of their main().

#include "bench/Silencio.h"
#include "core/Modulo.h"
#include "host/base/Sesion.h"
#include "host/interaccion/Interaccion.h"
#include "host/servicios/Registro.h"
#include "runtime/Error.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>

#include <algorithm>
#include <memory>
#include <vector>

namespace zuvi::bench {

inline double mediana(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    const size_t m = v.size() / 2;
    return v.size() % 2 ? v[m] : (v[m - 1] + v[m]) / 2;
}

struct Banco
{
    std::shared_ptr<Silencio> silencio;
    QString ruta; // the database file
    std::unique_ptr<anfitrion::Sesion> sesion;
};

inline Banco abreBanco(const QString &carpeta, const QString &archivo)
{
    Banco b;
    b.silencio = std::make_shared<Silencio>(true);
    anfitrion::ponInteraccion(b.silencio);
    anfitrion::registraClasesAnfitrion();
    b.ruta = QDir(carpeta).filePath(archivo);
    QFile::remove(b.ruta);
    anfitrion::Opciones o;
    o.base = b.ruta;
    b.sesion = anfitrion::Sesion::abre(o, false);
    return b;
}

// What the event loop would do between two passes (deferred deletes, layout
// and paint requests), run outside the timing.
inline void vaciaEventos()
{
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
}

// main() of an editor benchmark: offscreen unless told otherwise; the number
// of runs from the first argument, the database folder from the second (a
// temporary one by default); cuerpo(corridas, carpeta) does the rest, and
// an error is printed under the benchmark's name with exit 1.
template <typename F>
int principal(int argc, char **argv, const char *nombre, int corridasPorOmision, F &&cuerpo)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const int corridas = argc > 1 ? qMax(1, std::atoi(argv[1])) : corridasPorOmision;
    QTemporaryDir temporal;
    const QString carpeta = argc > 2 ? QString::fromLocal8Bit(argv[2]) : temporal.path();
    try {
        cuerpo(corridas, carpeta);
        modulo::reinicia();
    } catch (...) {
        std::fprintf(stderr, "%s: %s\n", nombre, qUtf8Printable(describeCurrentException()));
        return 1;
    }
    return 0;
}

} // namespace zuvi::bench
