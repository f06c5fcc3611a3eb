#pragma once

// The interaction seam of the benchmarks: no progress, no to every question,
// error reports to standard error and counted (a run with errors measured
// nothing worth having), messages to standard error only when asked.

#include "host/interaccion/Interaccion.h"

#include <cstdio>
#include <memory>

namespace zuvi::bench {

class Silencio : public anfitrion::Interaccion
{
    class Nada : public anfitrion::IndicadorProgreso
    {
    public:
        void inicia(int, const QString &, const QString &) override {}
        void avanza(int, const QString &, const QString &) override {}
        void cierra() override {}
    };

public:
    explicit Silencio(bool muestraMensajes = false) : m_muestraMensajes(muestraMensajes) {}

    void mensaje(const QString &t, int) override
    {
        if (m_muestraMensajes)
            std::fprintf(stderr, "%s\n", qUtf8Printable(t));
    }
    bool pregunta(const QString &) override { return false; }
    void reporte(const QString &, const QString &t) override
    {
        std::fprintf(stderr, "%s\n", qUtf8Printable(t));
        ++errores;
    }
    std::unique_ptr<anfitrion::IndicadorProgreso> progreso() override
    {
        return std::make_unique<Nada>();
    }

    int errores = 0;

private:
    bool m_muestraMensajes;
};

} // namespace zuvi::bench
