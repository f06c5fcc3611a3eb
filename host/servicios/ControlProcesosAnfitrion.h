#pragma once

// The host's process control. IniciaProceso runs the handler registered for
// the process key (host/base/Anfitrion.h); a key with no handler clears the veto
// flag so the caller goes ahead, and a handler's Error reaches the caller.
// ConsultaProceso hands back the flag as the last IniciaProceso left it
// (unchanged when none ran yet; true while a handler that failed left it
// undecided). ImprimeReporte knows the report "ORDENP": the production order
// as a PDF in the reports folder (host/reportes/Reportes.h); the user is told where.

#include "contract/Servicios.h"

#include <optional>

namespace zuvi::anfitrion {

class ControlProcesosAnfitrion : public zuvi::ControlProcesos
{
    Q_OBJECT
public:
    using zuvi::ControlProcesos::ControlProcesos;

    void IniciaProceso(ArgumentosProceso &argumentos) override;
    void ConsultaProceso(VBool &bandera) override;
    void ImprimeReporte(const QString &reporte, qint32 numero, Ambiente *ambiente,
                        QObject *ventana) override;
    void CierraProceso(qint32 valor) override;

    // The last value handed to CierraProceso, for whoever needs to know.
    std::optional<qint32> ultimoCierre() const { return m_cierre; }
    // The file the last report was written to.
    QString ultimoReporte() const { return m_reporte; }

private:
    std::optional<VBool> m_bandera;
    std::optional<qint32> m_cierre;
    QString m_reporte;
};

} // namespace zuvi::anfitrion
