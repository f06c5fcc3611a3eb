#include "component/Produccion.h"

#include "core/Modulo.h"
#include "runtime/Error.h"

namespace zuvi {

Produccion::Produccion(QObject *owner) : QObject(owner) {}

Produccion::~Produccion() = default;

zuvi::Ambiente *Produccion::Ambiente() const
{
    return m_ambiente.data();
}

void Produccion::SetAmbiente(zuvi::Ambiente *ambiente)
{
    m_ambiente = ambiente;
}

QObject *Produccion::Parent() const
{
    return m_parent.data();
}

void Produccion::SetParent(QObject *parent)
{
    m_parent = parent;
}

QObject *Produccion::AmbienteObjeto() const
{
    return m_ambiente.data();
}

void Produccion::SetAmbienteObjeto(QObject *ambiente)
{
    m_ambiente = qobject_cast<zuvi::Ambiente *>(ambiente);
}

} // namespace zuvi
