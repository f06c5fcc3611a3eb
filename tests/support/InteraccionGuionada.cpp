#include "tests/support/InteraccionGuionada.h"

namespace zuvi::pruebas {

class ProgresoGuionado : public zuvi::anfitrion::IndicadorProgreso
{
public:
    explicit ProgresoGuionado(InteraccionGuionada *duenio) : m_duenio(duenio) {}

    void inicia(int total, const QString &titulo, const QString &animacion) override
    {
        m_duenio->m_progreso.append({QStringLiteral("inicia"), total, titulo, animacion});
    }
    void avanza(int paso, const QString &linea1, const QString &linea2) override
    {
        m_duenio->m_progreso.append({QStringLiteral("avanza"), paso, linea1, linea2});
    }
    void cierra() override { m_duenio->m_progreso.append({QStringLiteral("cierra"), 0, {}, {}}); }

private:
    InteraccionGuionada *m_duenio;
};

void InteraccionGuionada::mensaje(const QString &texto, int estilo)
{
    m_mensajes.append({texto, estilo});
}

bool InteraccionGuionada::pregunta(const QString &texto)
{
    m_preguntas.append(texto);
    return m_respuestas.isEmpty() ? false : m_respuestas.dequeue();
}

std::unique_ptr<zuvi::anfitrion::IndicadorProgreso> InteraccionGuionada::progreso()
{
    return std::make_unique<ProgresoGuionado>(this);
}

void InteraccionGuionada::respuestas(std::initializer_list<bool> lista)
{
    for (bool r : lista)
        m_respuestas.enqueue(r);
}

QStringList InteraccionGuionada::textosMensajes() const
{
    QStringList textos;
    for (const MensajeVisto &m : m_mensajes)
        textos << m.texto;
    return textos;
}

void InteraccionGuionada::olvida()
{
    m_mensajes.clear();
    m_preguntas.clear();
    m_respuestas.clear();
    m_progreso.clear();
}

std::shared_ptr<InteraccionGuionada> InteraccionGuionada::instala()
{
    auto guion = std::make_shared<InteraccionGuionada>();
    zuvi::anfitrion::ponInteraccion(guion);
    return guion;
}

} // namespace zuvi::pruebas
