#pragma once

// Captures the error reports shown while it lives (their full four-line text)
// and leaves the default way out in place when it goes.

#include "runtime/Error.h"

#include <QStringList>

namespace zuvi::pruebas {

class CapturaReportes
{
public:
    CapturaReportes()
    {
        setReportSink([this](const QString &titulo, const QString &texto) {
            titulos << titulo;
            textos << texto;
        });
    }
    ~CapturaReportes() { setReportSink({}); }
    CapturaReportes(const CapturaReportes &) = delete;
    CapturaReportes &operator=(const CapturaReportes &) = delete;

    // What was captured so far, forgotten on return.
    QStringList toma() { return std::exchange(textos, {}); }

    QStringList titulos;
    QStringList textos;
};

} // namespace zuvi::pruebas
