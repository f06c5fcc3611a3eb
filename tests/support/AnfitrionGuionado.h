#pragma once

// A scripted host for component tests: implementations of Ambiente,
// AccesoDatos, ControlProcesos, DocumentoInventario and VentanaProgreso that
// write every call, with its arguments, into one ordered log and answer as
// the test says. Creating an AnfitrionGuionado puts its classes into the class
// registry under the host's class names (and forgets the module-wide objects);
// destroying it takes them out again.
//
// Log lines are "Operation: arg | arg | ...". Texts appear as they stand,
// the empty text as '' and a null text as nulo; tagged values as type:value.

#include "component/Servicios.h"
#include "runtime/Recordset.h"

#include <QHash>
#include <QList>
#include <QQueue>
#include <QSet>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

namespace zuvi::pruebas {

// One AplicaMovimiento, with the values the document held at the time.
struct MovimientoGuionado
{
    QString documento; // objectName of the document that posted it
    QString tipo, concepto, folio, articulo, usuario;
    qint32 orden = 0;
    qint32 datoFecha = 0;
    double almacen = 0, cantidad = 0, costo = 0;
};

class AnfitrionGuionado
{
public:
    AnfitrionGuionado();
    ~AnfitrionGuionado();
    AnfitrionGuionado(const AnfitrionGuionado &) = delete;
    AnfitrionGuionado &operator=(const AnfitrionGuionado &) = delete;

    // --- what the host answers -------------------------------------------

    // Consulta of exactly this text (or, with prefijo, of any text that
    // starts with it; the longest prefix wins) returns a copy of rs. Without a
    // matching answer Consulta returns an empty recordset; a later answer for
    // the same text replaces an earlier one.
    void responde(const QString &sql, const Recordset &rs, bool prefijo = false);
    // Consulta of texts starting with prefijo works veces times, then throws
    // Error(descripcion) on every further call.
    void fallaConsultaTras(const QString &prefijo, int veces, const QString &descripcion);
    // EjecutaSQL of texts starting with prefijo throws Error(descripcion).
    void fallaEjecutaSQL(const QString &prefijo, const QString &descripcion);
    // Answers to Pregunta, in order; no when the queue is empty.
    void respuestas(std::initializer_list<bool> lista);
    // ConsultaProceso leaves the veto flag true after IniciaProceso of clave.
    void veta(const QString &clave) { m_vetadas.insert(clave); }
    // Called inside IniciaProceso (to replace argument (2), for example).
    void alIniciarProceso(std::function<void(ArgumentosProceso &)> f) { m_alIniciar = f; }
    // SiguienteFolio returns folio and leaves documento in its in/out argument.
    void ponFolios(qint32 folio, qint32 documento)
    {
        m_folio = folio;
        m_documentoFolio = documento;
    }
    // No Ambiente until given one (for the "never set" case).
    zuvi::Ambiente *ambiente() const;

    // --- what the component did ------------------------------------------

    const QStringList &registro() const { return m_registro; }
    // The log lines that start with one of the operation names.
    QStringList registro(const QStringList &operaciones) const;
    const QList<MovimientoGuionado> &movimientos() const { return m_movimientos; }
    // Error reports shown (their full text), also logged as "ReportaError: ...".
    const QStringList &reportes() const { return m_reportes; }
    // Scripted objects of that class alive now ("DocumentoInventario",
    // "VentanaProgreso") and created so far.
    int vivos(const QString &clase) const { return m_vivos.value(clase); }
    int creados(const QString &clase) const { return m_creados.value(clase); }
    void olvida(); // clears the log, movements and reports

    // Creates a scripted movement document (for a host that hands back
    // another one); the caller owns it.
    DocumentoInventario *nuevoDocumento();

    // Used by the scripted classes.
    void anota(const QString &operacion, const QStringList &argumentos = {});
    RecordsetPtr consulta(const QString &sql);
    bool pregunta();
    void ejecutaSQL(const QString &sql);
    bool vetada(const QString &clave) const { return m_vetadas.contains(clave); }
    void iniciando(ArgumentosProceso &a)
    {
        if (m_alIniciar)
            m_alIniciar(a);
    }
    qint32 folio() const { return m_folio; }
    qint32 documentoFolio() const { return m_documentoFolio; }
    void nace(const QString &clase);
    void muere(const QString &clase) { --m_vivos[clase]; }
    void movimiento(const MovimientoGuionado &m) { m_movimientos << m; }

    static QString texto(const QString &s);
    static QString valor(const QVariant &v);
    static QString numero(double d);

private:
    struct Respuesta
    {
        QString sql;
        bool prefijo = false;
        Recordset rs;
    };
    struct Falla
    {
        QString prefijo;
        int veces = 0;
        QString descripcion;
        int vistas = 0;
    };

    QStringList m_registro;
    QStringList m_reportes;
    QList<MovimientoGuionado> m_movimientos;
    QList<Respuesta> m_respuestas;
    QList<Falla> m_fallasConsulta;
    QList<QPair<QString, QString>> m_fallasEjecuta;
    QQueue<bool> m_si;
    QSet<QString> m_vetadas;
    std::function<void(ArgumentosProceso &)> m_alIniciar;
    qint32 m_folio = 500;
    qint32 m_documentoFolio = 77;
    QHash<QString, int> m_vivos, m_creados;
    std::unique_ptr<zuvi::Ambiente> m_ambiente;
};

} // namespace zuvi::pruebas
