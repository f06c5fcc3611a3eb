#include "app/Componente.h"

#include "app/LineaComandos.h"
#include "contract/Identidad.h"
#include "contract/Servicios.h"
#include "runtime/ComponentRegistry.h"
#include "runtime/Error.h"
#include "runtime/Text.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLibrary>
#include <QMetaMethod>

#include <array>
#include <cstdio>

namespace zuvi::app {

namespace {

using EntradaRegistro = int (*)(const char *);

void llamaEntrada(const char *entrada)
{
    const QString ruta = rutaPlugin();
    if (!QFileInfo::exists(ruta))
        throw Error(QStringLiteral("No se encuentra la biblioteca del componente: %1").arg(ruta));
    QLibrary biblioteca(ruta);
    if (!biblioteca.load())
        throw Error(QStringLiteral("No se pudo cargar la biblioteca del componente %1: %2")
                        .arg(ruta, biblioteca.errorString()));
    auto funcion = reinterpret_cast<EntradaRegistro>(biblioteca.resolve(entrada));
    if (!funcion)
        throw Error(QStringLiteral("La biblioteca %1 no ofrece la entrada %2.")
                        .arg(ruta, QString::fromLatin1(entrada)));
    const QByteArray archivo = QFile::encodeName(components::registryFile());
    if (funcion(archivo.constData()) != 0)
        throw Error(QStringLiteral("No se pudo escribir el registro de componentes %1.")
                        .arg(components::registryFile()));
}

// Converts one argument to the parameter's type; the QVariant then holds
// exactly that type, so its data can be handed to the meta-call.
QVariant convierte(const QString &texto, QMetaType tipo, const QString &que)
{
    switch (tipo.id()) {
    case QMetaType::Int:
        return QVariant::fromValue(enteroDe(texto, que));
    case QMetaType::Short: {
        const qint32 n = enteroDe(texto, que);
        if (n < -32768 || n > 32767)
            throw Error(QStringLiteral("%1 no cabe en 16 bits: %2").arg(que, texto));
        return QVariant::fromValue(qint16(n));
    }
    case QMetaType::LongLong: {
        bool ok = false;
        const qint64 n = texto.trimmed().toLongLong(&ok);
        if (!ok)
            throw Error(
                QStringLiteral("%1 debe ser un número entero; se recibió \"%2\".").arg(que, texto));
        return QVariant::fromValue(n);
    }
    case QMetaType::Double:
        return QVariant::fromValue(realDe(texto, que));
    case QMetaType::QString:
        return QVariant::fromValue(texto);
    default:
        throw Error(QStringLiteral("%1 es de un tipo (%2) que no se puede dar desde la línea "
                                   "de órdenes.")
                        .arg(que, QString::fromLatin1(tipo.name())));
    }
}

QString firmas(const QList<QMetaMethod> &metodos)
{
    QStringList s;
    for (const QMetaMethod &m : metodos)
        s << QString::fromLatin1(m.methodSignature());
    return s.join(QStringLiteral(", "));
}

} // namespace

QString rutaPlugin()
{
    // In the build tree the plugin lies beside the executable; installed, in
    // the private library folder at the same place relative to it, so an
    // unpacked tree runs wherever it is.
    const QString carpeta = QCoreApplication::applicationDirPath();
    const QString junto = carpeta + QStringLiteral("/ZuviProduccion.so");
#ifdef ZUVI_PLUGIN_RELATIVO
    if (!QFileInfo::exists(junto))
        return QDir::cleanPath(carpeta +
                               QStringLiteral("/" ZUVI_PLUGIN_RELATIVO "/ZuviProduccion.so"));
#endif
    return junto;
}

void registraComponente()
{
    llamaEntrada("ZuviRegistraServidor");
}

void desregistraComponente()
{
    llamaEntrada("ZuviDesregistraServidor");
}

bool componenteRegistrado()
{
    const QString biblioteca = components::libraryFor(QStringLiteral(ZUVI_PROG_ID));
    return !biblioteca.isEmpty() && QFileInfo::exists(biblioteca);
}

std::unique_ptr<QObject> creaProduccion(zuvi::Ambiente *ambiente, QObject *padre)
{
    if (!componenteRegistrado()) {
        registraComponente();
        std::fprintf(
            stderr, "%s\n",
            qUtf8Printable(QStringLiteral("El componente %1 no estaba registrado; se "
                                          "registró en %2.")
                               .arg(QStringLiteral(ZUVI_PROG_ID), components::registryFile())));
        std::fflush(stderr);
    }
    std::unique_ptr<QObject> objeto(components::createObject(QStringLiteral(ZUVI_PROG_ID)));
    // Set by name, as a late-bound host does.
    if (!objeto->setProperty("Ambiente", QVariant::fromValue<QObject *>(ambiente)))
        throw Error(QStringLiteral("El componente no acepta la propiedad Ambiente."));
    if (padre && !objeto->setProperty("Parent", QVariant::fromValue<QObject *>(padre)))
        throw Error(QStringLiteral("El componente no acepta la propiedad Parent."));
    return objeto;
}

QMetaMethod miembroPorNombre(const QObject *objeto, const QString &metodo, int argumentos)
{
    const QMetaObject *mo = objeto->metaObject();
    QList<QMetaMethod> candidatos;
    for (int i = 0; i < mo->methodCount(); ++i) {
        const QMetaMethod m = mo->method(i);
        if (m.access() == QMetaMethod::Public && m.methodType() != QMetaMethod::Signal &&
            QString::fromLatin1(m.name()) == metodo)
            candidatos << m;
    }
    if (candidatos.isEmpty())
        throw Error(
            QStringLiteral("El componente no tiene un método llamado \"%1\".").arg(eco(metodo)));
    for (const QMetaMethod &m : candidatos)
        if (m.parameterCount() == argumentos) {
            if (argumentos > 10)
                throw Error(QStringLiteral("Demasiados argumentos para %1.").arg(metodo));
            return m;
        }
    throw Error(QStringLiteral("%1 no admite %2 argumento(s); firmas: %3")
                    .arg(metodo)
                    .arg(argumentos)
                    .arg(firmas(candidatos)));
}

QVariantList convierteArgumentos(const QMetaMethod &m, const QStringList &argumentos)
{
    QVariantList valores;
    const QList<QByteArray> nombres = m.parameterNames();
    for (int i = 0; i < argumentos.size(); ++i) {
        const QString que = QStringLiteral("El argumento %1 (%2)")
                                .arg(i + 1)
                                .arg(QString::fromLatin1(nombres.value(i)));
        valores << convierte(argumentos.at(i), m.parameterMetaType(i), que);
    }
    return valores;
}

Resultado invocaMiembro(QObject *objeto, const QMetaMethod &m, QVariantList valores)
{
    std::array<QGenericArgument, 10> args{};
    const QList<QByteArray> tipos = m.parameterTypes();
    for (int i = 0; i < valores.size() && i < 10; ++i) {
        if (valores[i].metaType() != m.parameterMetaType(i) &&
            !valores[i].convert(m.parameterMetaType(i)))
            throw Error(QStringLiteral("El argumento %1 de %2 no es del tipo %3.")
                            .arg(i + 1)
                            .arg(QString::fromLatin1(m.name()), QString::fromLatin1(tipos.at(i))));
        args[size_t(i)] = QGenericArgument(tipos.at(i).constData(), valores.at(i).constData());
    }

    Resultado r;
    QGenericReturnArgument ret;
    if (m.returnMetaType().id() != QMetaType::Void) {
        r.valor = QVariant(m.returnMetaType());
        r.hayValor = true;
        ret = QGenericReturnArgument(m.typeName(), r.valor.data());
    }
    const bool ok = m.invoke(objeto, Qt::DirectConnection, ret, args[0], args[1], args[2], args[3],
                             args[4], args[5], args[6], args[7], args[8], args[9]);
    if (!ok)
        throw Error(QStringLiteral("No se pudo llamar a %1.")
                        .arg(QString::fromLatin1(m.methodSignature())));
    return r;
}

Resultado invocaPorNombre(QObject *objeto, const QString &metodo, const QStringList &argumentos)
{
    const QMetaMethod m = miembroPorNombre(objeto, metodo, int(argumentos.size()));
    return invocaMiembro(objeto, m, convierteArgumentos(m, argumentos));
}

bool abreVentana(const QString &metodo)
{
    static const QStringList ventanas = {
        QStringLiteral("MuestraCapturaDeFracciones"), QStringLiteral("MuestraTurnos"),
        QStringLiteral("NuevaOp"), QStringLiteral("ModificaOp"), QStringLiteral("ConsultaOp")};
    return ventanas.contains(metodo);
}

} // namespace zuvi::app
