#include "core/Modulo.h"

#include "runtime/Error.h"

namespace zuvi::modulo {

namespace {
QPointer<AccesoDatos> &datos()
{
    static QPointer<AccesoDatos> p;
    return p;
}
QPointer<ControlProcesos> &procesos()
{
    static QPointer<ControlProcesos> p;
    return p;
}
} // namespace

AccesoDatos *accesoDatos()
{
    if (!datos())
        datos() = crea<AccesoDatos>(QStringLiteral("AccesoDatos"));
    return datos();
}

ControlProcesos *controlProcesos()
{
    if (!procesos())
        procesos() = crea<ControlProcesos>(QStringLiteral("ControlProcesos"));
    return procesos();
}

void reinicia()
{
    delete datos().data();
    delete procesos().data();
    datos() = nullptr;
    procesos() = nullptr;
}

Ambiente *requiere(const QPointer<Ambiente> &ambiente)
{
    if (!ambiente)
        throw Error(QStringLiteral("No se ha establecido el objeto Ambiente."));
    return ambiente.data();
}

} // namespace zuvi::modulo
