#pragma once

// The one seam through which every interactive host service passes: message
// boxes, questions and progress. The desktop shell installs dialogs, the
// command line installs the terminal, tests install a scripted one.

#include "runtime/Error.h"

#include <QString>

#include <memory>

namespace zuvi::anfitrion {

class IndicadorProgreso
{
public:
    virtual ~IndicadorProgreso() = default;
    virtual void inicia(int total, const QString &titulo, const QString &animacion) = 0;
    virtual void avanza(int paso, const QString &linea1, const QString &linea2) = 0;
    virtual void cierra() = 0;
};

class Interaccion
{
public:
    virtual ~Interaccion() = default;
    // estilo: 16 error, 64 information (the module's styles).
    virtual void mensaje(const QString &texto, int estilo) = 0;
    // A yes/no question; true only for a yes.
    virtual bool pregunta(const QString &texto) = 0;
    // The component's error report (the four-line text), under the title.
    virtual void reporte(const QString &titulo, const QString &texto) = 0;
    virtual std::unique_ptr<IndicadorProgreso> progreso() = 0;
};

// The seam in force. Until something is installed: the terminal, answering
// no to every question. Installing one also routes the component's error
// reports (runtime/Error.h) through it.
Interaccion &interaccion();
void ponInteraccion(std::shared_ptr<Interaccion> nueva);

// Terminal: messages to standard error, questions on the terminal (yes only
// when typed, or always with siATodo; with no terminal the answer is no),
// progress as a bar on standard error.
std::shared_ptr<Interaccion> interaccionTerminal(bool siATodo);
// Desktop shell: message boxes, Yes/No dialogs, a progress dialog.
std::shared_ptr<Interaccion> interaccionVentanas(bool siATodo);

// The error reports of one batch operation. A report identical to the one
// just shown is counted instead of shown again: a lost connection would
// otherwise bring the same box up once per remaining line. While it lives it
// stands in front of the report way out in force and puts it back when it goes.
class LoteDeReportes
{
public:
    LoteDeReportes();
    ~LoteDeReportes();
    LoteDeReportes(const LoteDeReportes &) = delete;
    LoteDeReportes &operator=(const LoteDeReportes &) = delete;

    int mostrados() const { return m_mostrados; }
    int repetidos() const { return m_repetidos; }
    // The first report as "Procedure: description"; empty when there was none.
    QString primero() const { return m_primero; }
    // What to say at the end about the reports not shown; empty when none.
    QString avisoRepetidos() const;

private:
    ReportSink m_anterior;
    QString m_ultimo, m_primero;
    int m_mostrados = 0;
    int m_repetidos = 0;
};

} // namespace zuvi::anfitrion
