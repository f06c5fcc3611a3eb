#pragma once

// Captures the error reports shown while it lives (their full four-line text)
// and leaves the default way out in place when it goes.

#include "runtime/Error.h"

#include <QStringList>

#include <functional>
#include <utility>

namespace zuvi::pruebas {

class CapturaReportes
{
public:
    // alVer, when given, also hears each report as it comes (the scripted host
    // writes it into its ordered log).
    explicit CapturaReportes(std::function<void(const QString &texto)> alVer = {})
    {
        setReportSink(
            [this, alVer = std::move(alVer)](const QString &titulo, const QString &texto) {
                titulos << titulo;
                textos << texto;
                if (alVer)
                    alVer(texto);
            });
    }
    // A guard that replaced this one (set up before this one went) stays in force.
    ~CapturaReportes()
    {
        if (actual() == this) {
            actual() = nullptr;
            setReportSink({});
        }
    }
    CapturaReportes(const CapturaReportes &) = delete;
    CapturaReportes &operator=(const CapturaReportes &) = delete;

    // What was captured so far, forgotten on return.
    QStringList toma() { return std::exchange(textos, {}); }

    QStringList titulos;
    QStringList textos;

private:
    static CapturaReportes *&actual()
    {
        static CapturaReportes *guardia = nullptr;
        return guardia;
    }
};

} // namespace zuvi::pruebas
