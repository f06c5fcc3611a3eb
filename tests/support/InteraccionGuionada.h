#pragma once

// A scripted interaction seam for tests: records every message, question,
// error report and progress call and answers questions from a queue the test fills (no when it
// is empty). instala() puts a fresh one in force until something else is.

#include "host/interaccion/Interaccion.h"

#include <QList>
#include <QQueue>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

namespace zuvi::pruebas {

class InteraccionGuionada : public zuvi::anfitrion::Interaccion
{
public:
    struct MensajeVisto
    {
        QString texto;
        int estilo = 0;
    };

    // One progress call: "inicia", "avanza" or "cierra", with its values.
    struct LlamadaProgreso
    {
        QString operacion;
        int numero = 0; // total for inicia, step for avanza
        QString texto1; // caption for inicia, first line for avanza
        QString texto2; // animation for inicia, second line for avanza
    };

    void mensaje(const QString &texto, int estilo) override { m_mensajes.append({texto, estilo}); }
    bool pregunta(const QString &texto) override;
    void reporte(const QString &, const QString &texto) override { m_reportes.append(texto); }
    std::unique_ptr<zuvi::anfitrion::IndicadorProgreso> progreso() override;

    // Runs on each progress call, after it is recorded (what another program does meanwhile).
    std::function<void(const LlamadaProgreso &)> alProgreso;

    // Answers for the coming questions, in order.
    void respuestas(std::initializer_list<bool> lista) { m_respuestas.append(lista); }

    const QList<MensajeVisto> &mensajes() const { return m_mensajes; }
    QStringList textosMensajes() const;
    const QStringList &preguntas() const { return m_preguntas; }
    const QStringList &reportes() const { return m_reportes; }
    const QList<LlamadaProgreso> &llamadasProgreso() const { return m_progreso; }
    void anotaProgreso(const LlamadaProgreso &llamada) { m_progreso.append(llamada); }

    // Forgets what was recorded, the pending answers and alProgreso.
    void olvida() { *this = InteraccionGuionada(); }

    static std::shared_ptr<InteraccionGuionada> instala();

private:
    QList<MensajeVisto> m_mensajes;
    QStringList m_preguntas;
    QStringList m_reportes;
    QQueue<bool> m_respuestas;
    QList<LlamadaProgreso> m_progreso;
};

} // namespace zuvi::pruebas
