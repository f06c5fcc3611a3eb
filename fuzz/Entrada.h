#pragma once

// Reading a fuzzer's bytes as the values a target needs.

#include <QString>

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace zuvi::fuzz {

class Entrada
{
public:
    Entrada(const uint8_t *datos, size_t largo) : m_datos(datos), m_largo(largo) {}

    bool vacia() const { return m_pos >= m_largo; }
    uint8_t byte() { return vacia() ? 0 : m_datos[m_pos++]; }
    template <typename T> T valor()
    {
        T v{};
        const size_t n = std::min(sizeof(T), m_largo - std::min(m_pos, m_largo));
        std::memcpy(&v, m_datos + m_pos, n);
        m_pos += n;
        return v;
    }
    // A text of up to `maximo` bytes read as UTF-8.
    QString texto(size_t maximo = 64)
    {
        const size_t n =
            std::min<size_t>(byte() % (maximo + 1), m_largo - std::min(m_pos, m_largo));
        const QString t =
            QString::fromUtf8(reinterpret_cast<const char *>(m_datos + m_pos), qsizetype(n));
        m_pos += n;
        return t;
    }
    // The rest of the bytes as UTF-8.
    QString resto()
    {
        const size_t desde = std::min(m_pos, m_largo);
        m_pos = m_largo;
        return QString::fromUtf8(reinterpret_cast<const char *>(m_datos + desde),
                                 qsizetype(m_largo - desde));
    }

private:
    const uint8_t *m_datos;
    size_t m_largo;
    size_t m_pos = 0;
};

} // namespace zuvi::fuzz
