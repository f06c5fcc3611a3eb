#pragma once

// A scripted host for component tests: Ambiente, AccesoDatos, ControlProcesos,
// DocumentoInventario and VentanaProgreso that write their calls, with their
// arguments, into one ordered log and answer as the test says. While an
// AnfitrionGuionado lives its classes stand in the class registry under the
// host's class names (the module-wide objects are forgotten on both ends).
// AccesoDatos is the host's own but for what the batch operations call.
//
// Log lines are "Operation: arg | arg | ...". Texts appear as they stand,
// the empty text as '' and a null text as nulo; tagged values as type:value.
// A movement document's calls are not logged: each AplicaMovimiento adds a
// line to movimientos. A progress window's destruction is logged as "Libera".

#include "contract/Servicios.h"
#include "runtime/Recordset.h"
#include "tests/support/CapturaReportes.h"

#include <QHash>
#include <QSet>
#include <QStringList>

#include <memory>

namespace zuvi::pruebas {

struct AnfitrionGuionado
{
    AnfitrionGuionado();
    ~AnfitrionGuionado();

    // --- what the host answers ---
    // Consulta of a text found here returns a copy of its recordset; of any
    // other text, an empty recordset.
    QHash<QString, Recordset> respuestas;
    // Consulta of a text found here works `first` more times, then throws
    // Error(second) on every further call.
    QHash<QString, QPair<int, QString>> fallas;
    QString si;             // answers to Pregunta in order, 's' for yes; no when none is left
    QSet<QString> vetadas;  // process keys after which ConsultaProceso vetoes
    bool sinObjeto = false; // IniciaProceso leaves argument (2) empty

    // --- what the component did ---
    QStringList registro;
    // One line per AplicaMovimiento: "document tipo orden almacen articulo cantidad".
    QStringList movimientos;
    int documentos = 0; // movement documents created

    // The log lines of these operations only.
    QStringList registroDe(const QStringList &operaciones) const;
    void anota(const QString &operacion, const QStringList &argumentos = {});
    zuvi::Ambiente *ambiente() const { return m_ambiente.get(); }
    // Error reports (full text), also logged as "ReportaError: ...".
    const QStringList &reportes() const { return m_reportes->textos; }

private:
    std::unique_ptr<zuvi::Ambiente> m_ambiente;
    std::unique_ptr<CapturaReportes> m_reportes;
};

} // namespace zuvi::pruebas
