#pragma once

// The host's side of the component: registering the plugin through its own
// entry points, creating Produccion by name as any host would, and calling
// its members by name through the meta-object system.

#include <QMetaMethod>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <memory>

namespace zuvi {
class Ambiente;
}

namespace zuvi::app {

// The plugin library: next to the executable, or installed in the private
// library folder found from the executable's.
QString rutaPlugin();

// Loads the plugin and calls its ZuviRegistraServidor / ZuviDesregistraServidor
// on the registration file. Throw Error with a Spanish description.
void registraComponente();
void desregistraComponente();

// True when the registration file names a library that exists.
bool componenteRegistrado();

// Creates "ZuviProduccion.Produccion" by name, registering the component
// first (and saying so on standard error) when it is not registered yet, and
// sets its properties Ambiente and, when given, Parent by name.
std::unique_ptr<QObject> creaProduccion(zuvi::Ambiente *ambiente, QObject *padre = nullptr);

// The result of a call by name: valid only when the member returns something.
struct Resultado
{
    bool hayValor = false;
    QVariant valor;
};

// Calls a public member of objeto by name. Each text argument is converted to
// the type the member declares for that position (32-bit and 16-bit whole
// numbers, reals, texts); an overload is chosen by the number of arguments.
// Throws Error on an unknown member, a wrong number of arguments or a value
// that does not convert.
Resultado invocaPorNombre(QObject *objeto, const QString &metodo, const QStringList &argumentos);

// The parts of invocaPorNombre: the public member of that name taking that
// many arguments, the texts converted to its parameter types, and the call
// with values of those types (others are converted or refused). Throw Error.
QMetaMethod miembroPorNombre(const QObject *objeto, const QString &metodo, int argumentos);
QVariantList convierteArgumentos(const QMetaMethod &m, const QStringList &argumentos);
Resultado invocaMiembro(QObject *objeto, const QMetaMethod &m, QVariantList valores);

// Members of the class that open a window and return at once.
bool abreVentana(const QString &metodo);

} // namespace zuvi::app
