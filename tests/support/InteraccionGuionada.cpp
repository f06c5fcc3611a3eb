#include "tests/support/InteraccionGuionada.h"

namespace zuvi::pruebas {

namespace {

using Llamadas = QList<InteraccionGuionada::LlamadaProgreso>;

struct ProgresoGuionado : zuvi::anfitrion::IndicadorProgreso
{
    explicit ProgresoGuionado(Llamadas *llamadas) : m_llamadas(llamadas) {}
    void inicia(int total, const QString &titulo, const QString &animacion) override
    {
        m_llamadas->append({QStringLiteral("inicia"), total, titulo, animacion});
    }
    void avanza(int paso, const QString &linea1, const QString &linea2) override
    {
        m_llamadas->append({QStringLiteral("avanza"), paso, linea1, linea2});
    }
    void cierra() override { m_llamadas->append({QStringLiteral("cierra"), 0, {}, {}}); }
    Llamadas *m_llamadas;
};

} // namespace

bool InteraccionGuionada::pregunta(const QString &texto)
{
    m_preguntas.append(texto);
    return !m_respuestas.isEmpty() && m_respuestas.dequeue();
}

std::unique_ptr<zuvi::anfitrion::IndicadorProgreso> InteraccionGuionada::progreso()
{
    return std::make_unique<ProgresoGuionado>(&m_progreso);
}

QStringList InteraccionGuionada::textosMensajes() const
{
    QStringList textos;
    for (const MensajeVisto &m : m_mensajes)
        textos << m.texto;
    return textos;
}

std::shared_ptr<InteraccionGuionada> InteraccionGuionada::instala()
{
    auto guion = std::make_shared<InteraccionGuionada>();
    zuvi::anfitrion::ponInteraccion(guion);
    return guion;
}

} // namespace zuvi::pruebas
