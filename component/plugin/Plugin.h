#pragma once

#include "runtime/ComponentRegistry.h"

#include <QObject>

namespace zuvi {

class FabricaProduccion : public QObject, public ComponentFactory
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID ZuviComponentFactory_iid FILE "ZuviProduccion.json")
    Q_INTERFACES(zuvi::ComponentFactory)
public:
    QObject *createInstance(const QString &nombreOClase) override;
};

} // namespace zuvi

// Self-registration entry points. archivoRegistro may be null for the default
// file. Return 0 on success, 1 on failure.
extern "C" {
Q_DECL_EXPORT int ZuviRegistraServidor(const char *archivoRegistro);
Q_DECL_EXPORT int ZuviDesregistraServidor(const char *archivoRegistro);
}
