#pragma once

// A scripted host for component tests: Ambiente, AccesoDatos, ControlProcesos,
// DocumentoInventario and VentanaProgreso that write every call, with its
// arguments, into one ordered log and answer as the test says. While an
// AnfitrionGuionado lives its classes stand in the class registry under the
// host's class names (the module-wide objects are forgotten on both ends).
//
// Log lines are "Operation: arg | arg | ...". Texts appear as they stand,
// the empty text as '' and a null text as nulo; tagged values as type:value.
// Calls in a row to one movement document share a line, "Documento1: Tipo=S
// Articulo=C1 ...", which AplicaMovimiento ("Aplica=0") ends.

#include "component/Servicios.h"
#include "runtime/Recordset.h"

#include <QHash>
#include <QQueue>
#include <QSet>
#include <QStringList>

#include <memory>

namespace zuvi::pruebas {

class AnfitrionGuionado
{
public:
    AnfitrionGuionado();
    ~AnfitrionGuionado();
    AnfitrionGuionado(const AnfitrionGuionado &) = delete;
    AnfitrionGuionado &operator=(const AnfitrionGuionado &) = delete;

    // --- what the host answers ---
    // Consulta of exactly this text returns a copy of rs; of any other text,
    // an empty recordset.
    void responde(const QString &sql, const Recordset &rs) { m_respuestas.insert(sql, rs); }
    // Consulta of exactly this text works veces times, then throws
    // Error(descripcion) on every further call.
    void fallaConsultaTras(const QString &sql, int veces, const QString &descripcion)
    {
        m_fallas.insert(sql, {veces, descripcion});
    }
    // Answers to Pregunta, in order; no when the queue is empty.
    void respuestas(const QList<bool> &lista) { m_si.append(lista); }
    // ConsultaProceso leaves the veto flag true after IniciaProceso of clave.
    void veta(const QString &clave) { m_vetadas.insert(clave); }
    zuvi::Ambiente *ambiente() const { return m_ambiente.get(); }

    // --- what the component did ---
    const QStringList &registro() const { return m_registro; }
    // The log lines of these operations only.
    QStringList registro(const QStringList &operaciones) const;
    // One line per AplicaMovimiento: "document tipo orden almacen articulo
    // cantidad".
    const QStringList &movimientos() const { return m_movimientos; }
    // Error reports shown (their full text), also logged as "ReportaError: ...".
    const QStringList &reportes() const { return m_reportes; }
    // Scripted objects of a class ("DocumentoInventario", "VentanaProgreso")
    // alive now and created so far.
    int vivos(const QString &clase) const { return m_vivos.value(clase); }
    int creados(const QString &clase) const { return m_creados.value(clase); }

    // --- used by the scripted classes ---
    void anota(const QString &operacion, const QStringList &argumentos = {});
    void pon(const QString &documento, const QString &campo, const QString &valor);
    RecordsetPtr consulta(const QString &sql);
    bool pregunta() { return !m_si.isEmpty() && m_si.dequeue(); }
    bool vetada(const QString &clave) const { return m_vetadas.contains(clave); }
    void movimiento(const QString &m) { m_movimientos << m; }
    void nace(const QString &clase)
    {
        ++m_vivos[clase];
        ++m_creados[clase];
    }
    void muere(const QString &clase) { --m_vivos[clase]; }

private:
    QStringList m_registro, m_reportes, m_movimientos;
    QHash<QString, Recordset> m_respuestas;
    QHash<QString, QPair<int, QString>> m_fallas; // times left, description
    QQueue<bool> m_si;
    QSet<QString> m_vetadas;
    QHash<QString, int> m_vivos, m_creados;
    std::unique_ptr<zuvi::Ambiente> m_ambiente;
};

} // namespace zuvi::pruebas
