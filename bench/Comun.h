#pragma once

// What the editor's benchmarks share: the median of a side's times, and a
// session of the reference host on a fresh SQLite file, with the host's
// classes registered and the silent interaction in force.

#include "bench/Silencio.h"
#include "host/Anfitrion.h"
#include "host/Interaccion.h"

#include <QDir>
#include <QFile>

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

} // namespace zuvi::bench
