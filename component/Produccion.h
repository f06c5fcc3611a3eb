#pragma once

#include "contract/InterfazProduccion.h"
#include "core/Exporta.h"

#include <QObject>
#include <QPointer>

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

} // namespace zuvi
