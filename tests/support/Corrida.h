#pragma once

// The executable run as a script runs it: no terminal, so every question is
// answered no; killed on the way out when it hangs.

#include <QProcess>
#include <QString>
#include <QStringList>

#include <functional>

namespace zuvi::pruebas {

struct Corrida
{
    int codigo = -1; // also when the program did not start, crashed or hung
    QString salida, error;
    QByteArray dice() const { return QString("%1 %2 %3").arg(codigo).arg(salida, error).toUtf8(); }
};

// mientras, when given, is called about every 50 ms while the program runs;
// entrada is what it reads on its standard input.
inline Corrida corre(const QStringList &args, const std::function<void()> &mientras = {},
                     const QByteArray &entrada = {})
{
    QProcess p;
    p.start(ZUVI_BIN_DIR "/zuvi-produccion", args);
    if (!entrada.isEmpty() && p.waitForStarted())
        p.write(entrada);
    p.closeWriteChannel();
    bool termino = false;
    for (int ms = 0; ms < 300000 && !termino; ms += 50) {
        termino = p.waitForFinished(50) || p.state() == QProcess::NotRunning;
        if (!termino && mientras)
            mientras();
    }
    const bool normal = termino && p.exitStatus() == QProcess::NormalExit;
    return {normal ? p.exitCode() : -1, p.readAllStandardOutput(), p.readAllStandardError()};
}

} // namespace zuvi::pruebas
