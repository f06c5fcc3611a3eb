#pragma once

#include "contract/Identidad.h"
#include "contract/Servicios.h"

#include <QObject>

namespace zuvi {

// The early-bound form of the published interface "_Produccion". Members in
// their published order. Methods that call another member of the class (the
// delivery calls Ensamble, disassembly calls itself) go through this
// interface, so a host that derives from or wraps the class sees the calls.
class InterfazProduccion
{
public:
    virtual ~InterfazProduccion() = default;

    virtual zuvi::Ambiente *Ambiente() const = 0;
    virtual void SetAmbiente(zuvi::Ambiente *ambiente) = 0;
    virtual QObject *Parent() const = 0;
    virtual void SetParent(QObject *parent) = 0;
    virtual void NuevaOp() = 0;
    virtual void ModificaOp(qint32 nOp) = 0;
    virtual void ConsultaOp(qint32 nOp) = 0;
    virtual void EntregaProductoTerminado(qint32 nOp) = 0;
    virtual void Ensamble(const QString &Articulo, qint32 nAlmacen, qint32 nCantidad,
                          qint32 nOp = 0) = 0;
    virtual void Desensamble(const QString &Articulo, double nCantidad, qint32 nAlmacen,
                             qint32 nOp = 0) = 0;
    virtual VBool CancelaOp(qint32 nOp) = 0;
    virtual void MuestraCapturaDeFracciones() = 0;
    virtual void MuestraTurnos() = 0;
};

} // namespace zuvi

#define ZuviInterfazProduccion_iid "ZuviProduccion._Produccion/" ZUVI_INTERFACE_ID
Q_DECLARE_INTERFACE(zuvi::InterfazProduccion, ZuviInterfazProduccion_iid)
