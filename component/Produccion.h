#pragma once

#include "component/Export.h"
#include "component/Identidad.h"
#include "component/Servicios.h"

#include <QObject>
#include <QPointer>

namespace zuvi {

// The early-bound form of the published interface "_Produccion". Members in
// their published order. Methods that call another member of the class (the
// delivery calls Ensamble, disassembly calls itself) go through this
// interface, so a host that derives from or wraps the class sees the calls.
class ZUVI_PRODUCCION_EXPORT InterfazProduccion
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

namespace zuvi {

// The one creatable class of the component. Callable early-bound through
// InterfazProduccion and by name through the meta-object system
// (QMetaObject::invokeMethod(obj, "ModificaOp", Q_ARG(qint32, 120))).
class ZUVI_PRODUCCION_EXPORT Produccion : public QObject, public InterfazProduccion
{
    Q_OBJECT
    Q_CLASSINFO("LibraryName", ZUVI_LIBRARY_NAME)
    Q_CLASSINFO("LibraryID", ZUVI_LIBRARY_ID)
    Q_CLASSINFO("InterfaceName", ZUVI_INTERFACE_NAME)
    Q_CLASSINFO("InterfaceID", ZUVI_INTERFACE_ID)
    Q_CLASSINFO("ClassName", ZUVI_CLASS_NAME)
    Q_CLASSINFO("ClassID", ZUVI_CLASS_ID)
    Q_CLASSINFO("ProgID", ZUVI_PROG_ID)
    Q_CLASSINFO("ImportsLibrary", ZUVI_ENVIRONMENT_LIBRARY)
    Q_PROPERTY(QObject *Ambiente READ AmbienteObjeto WRITE SetAmbienteObjeto)
    Q_PROPERTY(QObject *Parent READ Parent WRITE SetParent)
    Q_INTERFACES(zuvi::InterfazProduccion)

public:
    explicit Produccion(QObject *owner = nullptr);
    ~Produccion() override;

    zuvi::Ambiente *Ambiente() const override;
    void SetAmbiente(zuvi::Ambiente *ambiente) override;
    QObject *Parent() const override;
    void SetParent(QObject *parent) override;

    // The property Ambiente as the meta-object system sees it.
    QObject *AmbienteObjeto() const;
    void SetAmbienteObjeto(QObject *ambiente);

    Q_INVOKABLE void NuevaOp() override;
    Q_INVOKABLE void ModificaOp(qint32 nOp) override;
    Q_INVOKABLE void ConsultaOp(qint32 nOp) override;
    Q_INVOKABLE void EntregaProductoTerminado(qint32 nOp) override;
    Q_INVOKABLE void Ensamble(const QString &Articulo, qint32 nAlmacen, qint32 nCantidad,
                              qint32 nOp = 0) override;
    Q_INVOKABLE void Desensamble(const QString &Articulo, double nCantidad, qint32 nAlmacen,
                                 qint32 nOp = 0) override;
    Q_INVOKABLE zuvi::VBool CancelaOp(qint32 nOp) override;
    Q_INVOKABLE void MuestraCapturaDeFracciones() override;
    Q_INVOKABLE void MuestraTurnos() override;

private:
    QPointer<zuvi::Ambiente> m_ambiente;
    QPointer<QObject> m_parent;
};

// The class's error report: builds the four-line text and shows it through
// the report sink (a plain box titled "ZuviProduccion"). Returns true.
ZUVI_PRODUCCION_EXPORT bool ReportaError(const QString &modulo, const QString &procedimiento,
                                         const QString &descripcion);

} // namespace zuvi
