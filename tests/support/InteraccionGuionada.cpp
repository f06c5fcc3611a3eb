#include "tests/support/InteraccionGuionada.h"

namespace zuvi::pruebas {

namespace {

struct ProgresoGuionado : zuvi::anfitrion::IndicadorProgreso
{
    explicit ProgresoGuionado(InteraccionGuionada *guion) : m_guion(guion) {}
    void inicia(int total, const QString &titulo, const QString &animacion) override
    {
        anota({QStringLiteral("inicia"), total, titulo, animacion});
    }
    void avanza(int paso, const QString &linea1, const QString &linea2) override
    {
        anota({QStringLiteral("avanza"), paso, linea1, linea2});
    }
    void cierra() override { anota({QStringLiteral("cierra"), 0, {}, {}}); }
    void anota(const InteraccionGuionada::LlamadaProgreso &llamada)
    {
        m_guion->anotaProgreso(llamada);
        if (m_guion->alProgreso)
            m_guion->alProgreso(llamada);
    }
    InteraccionGuionada *m_guion;
};

} // namespace

bool InteraccionGuionada::pregunta(const QString &texto)
{
    m_preguntas.append(texto);
    return !m_respuestas.isEmpty() && m_respuestas.dequeue();
}

std::unique_ptr<zuvi::anfitrion::IndicadorProgreso> InteraccionGuionada::progreso()
{
    return std::make_unique<ProgresoGuionado>(this);
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
