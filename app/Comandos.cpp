#include "app/Comandos.h"

#include "app/Componente.h"
#include "app/Cuentas.h"
#include "app/Lotes.h"
#include "app/Materiales.h"
#include "app/catalogos/OrdenesDatos.h"
#include "host/base/Direccion.h"
#include "host/interaccion/Interaccion.h"
#include "host/reportes/Reportes.h"
#include "host/reportes/RolMes.h"
#include "host/servicios/Comprobaciones.h"
#include "host/servicios/Existencias.h"
#include "host/servicios/Registro.h"
#include "runtime/ComponentRegistry.h"
#include "runtime/Error.h"
#include "runtime/Text.h"

#include <QApplication>
#include <QDir>
#include <QGuiApplication>
#include <QMetaObject>
#include <QWidget>

#include <algorithm>
#include <cstdio>

#include <pwd.h>
#include <unistd.h>

namespace zuvi::app {

namespace {

// An argument error found before anything is opened or run.
class ErrorDeUso : public Error
{
public:
    using Error::Error;
};

void salida(const QString &texto)
{
    std::fprintf(stdout, "%s\n", qUtf8Printable(texto));
    std::fflush(stdout);
}

void exigeArgumentos(const LineaComandos &lc, int minimo, int maximo, const QString &forma)
{
    const int n = int(lc.argumentos.size());
    if (n < minimo)
        throw ErrorDeUso(QStringLiteral("Faltan argumentos. Uso: zuvi-produccion %1").arg(forma));
    if (n > maximo)
        throw ErrorDeUso(QStringLiteral("Sobran argumentos. Uso: zuvi-produccion %1").arg(forma));
}

qint32 entero(const QString &texto, const QString &que)
{
    try {
        return enteroDe(texto, que);
    } catch (const Error &e) {
        throw ErrorDeUso(e.description());
    }
}

double real(const QString &texto, const QString &que)
{
    try {
        return realDe(texto, que);
    } catch (const Error &e) {
        throw ErrorDeUso(e.description());
    }
}

bool &huboReporte()
{
    static bool b = false;
    return b;
}

// Error reports of the component go to standard error and make the run fail.
void instalaSalidaDeReportes()
{
    setReportSink([](const QString &titulo, const QString &texto) {
        anfitrion::interaccion().reporte(titulo, texto);
        huboReporte() = true;
    });
}

bool sinPantallaReal()
{
    const QString p = QGuiApplication::platformName();
    return p == QLatin1String("offscreen") || p == QLatin1String("minimal");
}

// Windows opened by the component live until the user closes the last one.
// Without a real display nobody can, so they are closed at once, which still
// runs their unload (and releases what they hold).
void esperaVentanas()
{
    if (!qobject_cast<QApplication *>(QCoreApplication::instance()))
        return;
    QCoreApplication::processEvents();
    bool hayVisibles = false;
    for (QWidget *w : QApplication::topLevelWidgets())
        hayVisibles = hayVisibles || w->isVisible();
    if (!hayVisibles)
        return;
    if (sinPantallaReal()) {
        avisa(QStringLiteral("Sin pantalla: la ventana abierta se cierra sin esperar al usuario."));
        QApplication::closeAllWindows();
        QCoreApplication::processEvents();
        return;
    }
    QApplication::setQuitOnLastWindowClosed(true);
    QApplication::exec();
}

// For a window opened from the terminal: while one of the component's
// windows is on screen its questions and messages come up in boxes over it
// (and messages are echoed on the terminal); otherwise, as a refusal before
// any window opens, they go to the terminal. Printed documents are still
// written as PDF files.
class InteraccionMixta : public anfitrion::Interaccion
{
public:
    explicit InteraccionMixta(bool si)
        : m_terminal(anfitrion::interaccionTerminal(si)),
          m_ventanas(anfitrion::interaccionVentanas(si))
    {
    }
    void mensaje(const QString &texto, int estilo) override
    {
        if (hayVentana())
            m_ventanas->mensaje(texto, estilo);
        m_terminal->mensaje(texto, estilo);
    }
    bool pregunta(const QString &texto) override
    {
        return (hayVentana() ? m_ventanas : m_terminal)->pregunta(texto);
    }
    void reporte(const QString &titulo, const QString &texto) override
    {
        if (hayVentana())
            m_ventanas->reporte(titulo, texto);
        m_terminal->reporte(titulo, texto);
    }
    std::unique_ptr<anfitrion::IndicadorProgreso> progreso() override
    {
        return (hayVentana() ? m_ventanas : m_terminal)->progreso();
    }

private:
    static bool hayVentana()
    {
        const QWidgetList lista = QApplication::topLevelWidgets();
        return std::any_of(lista.begin(), lista.end(),
                           [](const QWidget *w) { return w->isVisible(); });
    }
    std::shared_ptr<anfitrion::Interaccion> m_terminal, m_ventanas;
};

// A member through the host's door; a refusal of its checks is a usage error,
// a shortage of stock a failure of the run.
Desenlace llamaLote(anfitrion::Sesion &sesion, QObject *produccion, const QMetaMethod &miembro,
                    const QVariantList &valores)
{
    try {
        return llamaMiembro(produccion, sesion.conexion(), miembro, valores);
    } catch (const anfitrion::Faltante &e) {
        throw Error(e.description());
    } catch (const anfitrion::Rechazo &e) {
        throw ErrorDeUso(e.description());
    }
}

Desenlace llamaLote(anfitrion::Sesion &sesion, QObject *produccion, const QString &metodo,
                    const QVariantList &valores)
{
    return llamaLote(sesion, produccion, miembroPorNombre(produccion, metodo, int(valores.size())),
                     valores);
}

// How a call ends the run: what was left undone is said, and the line that
// says it was done is printed only when it was. exigeCompleto: a member that
// answers no (CancelaOp) fails the run too.
int termina(const Desenlace &d, const QString &hecho, bool exigeCompleto = true)
{
    if (d.rehusado) {
        avisa(QStringLiteral("No se entregó: la orden ya tiene producto terminado entregado y la "
                             "nueva entrega no se confirmó (use --si para confirmar sin "
                             "preguntar)."));
        return Fallo;
    }
    if (!d.resumen.isEmpty())
        anfitrion::interaccion().mensaje(d.resumen, d.completo ? 64 : 16);
    if (huboReporte() || !d.resumen.isEmpty() || (exigeCompleto && !d.completo))
        return Fallo;
    if (!hecho.isEmpty())
        salida(hecho);
    return Exito;
}

int invoca(const LineaComandos &lc)
{
    if (lc.argumentos.isEmpty())
        throw ErrorDeUso(
            QStringLiteral("Falta el método. Uso: zuvi-produccion invoca METODO [ARG...]"));
    const QString metodo = lc.argumentos.first();
    if (abreVentana(metodo) && qobject_cast<QApplication *>(QCoreApplication::instance()) &&
        !sinPantallaReal())
        anfitrion::ponInteraccion(std::make_shared<InteraccionMixta>(lc.opciones.si));
    auto sesion = abreSesion(lc);
    auto produccion = creaProduccion(sesion->ambiente());
    QMetaMethod miembro;
    QVariantList valores;
    try {
        miembro = miembroPorNombre(produccion.get(), metodo, int(lc.argumentos.size() - 1));
        valores = convierteArgumentos(miembro, lc.argumentos.mid(1));
    } catch (const Error &e) {
        throw ErrorDeUso(e.description());
    }
    const Desenlace d = llamaLote(*sesion, produccion.get(), miembro, valores);
    if (d.valor.isValid())
        salida(d.valor.toString());
    if (abreVentana(metodo))
        esperaVentanas();
    return termina(d, QString(), false);
}

int entrega(const LineaComandos &lc)
{
    exigeArgumentos(lc, 1, 1, QStringLiteral("entrega OP [--resto] [--si]"));
    const qint32 op = entero(lc.argumentos.at(0), QStringLiteral("La orden"));
    auto sesion = abreSesion(lc);
    auto produccion = creaProduccion(sesion->ambiente());
    Desenlace d;
    if (lc.resto) {
        try {
            d = entregaResto(produccion.get(), sesion->conexion(), op);
        } catch (const anfitrion::Faltante &e) {
            throw Error(e.description());
        } catch (const anfitrion::Rechazo &e) {
            throw ErrorDeUso(e.description());
        }
    } else {
        d = llamaLote(*sesion, produccion.get(), QStringLiteral("EntregaProductoTerminado"), {op});
    }
    return termina(d, lc.resto ? d.hecho
                               : QStringLiteral("Producto terminado de la orden %1 entregado. %2")
                                     .arg(op)
                                     .arg(d.hecho));
}

int ensamble(const LineaComandos &lc)
{
    const QString forma = QStringLiteral("ensamble ARTICULO ALMACEN CANTIDAD [OP]");
    exigeArgumentos(lc, 3, 4, forma);
    const QString articulo = lc.argumentos.at(0).trimmed();
    const qint32 almacen = entero(lc.argumentos.at(1), QStringLiteral("El almacén"));
    const qint32 cantidad = entero(lc.argumentos.at(2), QStringLiteral("La cantidad"));
    const qint32 op =
        lc.argumentos.size() > 3 ? entero(lc.argumentos.at(3), QStringLiteral("La orden")) : 0;
    auto sesion = abreSesion(lc);
    auto produccion = creaProduccion(sesion->ambiente());
    const Desenlace d = llamaLote(*sesion, produccion.get(), QStringLiteral("Ensamble"),
                                  {articulo, almacen, cantidad, op});
    return termina(d, QStringLiteral("Ensamble de %1 %2 en el almacén %3 terminado.")
                          .arg(cantidad)
                          .arg(eco(articulo))
                          .arg(almacen));
}

int desensamble(const LineaComandos &lc)
{
    const QString forma = QStringLiteral("desensamble ARTICULO CANTIDAD ALMACEN [OP]");
    exigeArgumentos(lc, 3, 4, forma);
    const QString articulo = lc.argumentos.at(0).trimmed();
    const double cantidad = real(lc.argumentos.at(1), QStringLiteral("La cantidad"));
    const qint32 almacen = entero(lc.argumentos.at(2), QStringLiteral("El almacén"));
    const qint32 op =
        lc.argumentos.size() > 3 ? entero(lc.argumentos.at(3), QStringLiteral("La orden")) : 0;
    auto sesion = abreSesion(lc);
    auto produccion = creaProduccion(sesion->ambiente());
    const Desenlace d = llamaLote(*sesion, produccion.get(), QStringLiteral("Desensamble"),
                                  {articulo, cantidad, almacen, op});
    return termina(d, QStringLiteral("Desensamble de %1 %2 del almacén %3 terminado.")
                          .arg(cantidad)
                          .arg(eco(articulo))
                          .arg(almacen));
}

int cancela(const LineaComandos &lc)
{
    exigeArgumentos(lc, 1, 1, QStringLiteral("cancela OP [--si]"));
    const qint32 op = entero(lc.argumentos.at(0), QStringLiteral("La orden"));
    auto sesion = abreSesion(lc);
    auto produccion = creaProduccion(sesion->ambiente());
    const Desenlace d = llamaLote(*sesion, produccion.get(), QStringLiteral("CancelaOp"), {op});
    if (!d.completo && d.resumen.isEmpty())
        avisa(QStringLiteral("La orden %1 no se canceló (no se confirmó la cancelación; use --si "
                             "para confirmar sin preguntar).")
                  .arg(op));
    return termina(d, QStringLiteral("Orden %1 cancelada.").arg(op));
}

int materiales(const LineaComandos &lc)
{
    exigeArgumentos(lc, 1, 1, QStringLiteral("materiales OP [--csv]"));
    const qint32 op = entero(lc.argumentos.at(0), QStringLiteral("La orden"));
    auto sesion = abreSesion(lc);
    try {
        salida(lc.csv ? materialesCsv(sesion->conexion(), op)
                      : materialesTexto(sesion->conexion(), op));
    } catch (const anfitrion::Rechazo &e) {
        throw ErrorDeUso(e.description());
    }
    return Exito;
}

int rol(const LineaComandos &lc)
{
    exigeArgumentos(lc, 1, 1, QStringLiteral("rol AAAA-MM [--turno T]"));
    int anio = 0, mes = 0;
    try {
        anfitrion::leeMes(lc.argumentos.at(0), anio, mes);
    } catch (const Error &e) {
        throw ErrorDeUso(e.description());
    }
    auto sesion = abreSesion(lc);
    const anfitrion::RolMes datos =
        anfitrion::leeRolMes(sesion->conexion(), anio, mes, lc.turno.trimmed());
    const QString archivo =
        QDir(anfitrion::carpetaReportes()).filePath(anfitrion::nombreArchivoRol(datos));
    anfitrion::escribeRolMesPdf(datos, archivo);
    salida(QStringLiteral("Rol de turnos (%1 empleados) escrito en %2")
               .arg(datos.filas.size())
               .arg(QDir::toNativeSeparators(archivo)));
    return Exito;
}

int ejecuta(const LineaComandos &lc)
{
    const QString &o = lc.orden;
    if (o == QLatin1String("crea-base")) {
        exigeArgumentos(lc, 0, 0, QStringLiteral("crea-base [--demo]"));
        auto sesion = abreSesion(lc);
        if (!sesion->creadaAlAbrir()) // an existing base gets what it lacks
            sesion->creaBase(lc.demo);
        salida(QStringLiteral("Base de datos lista%1: %2")
                   .arg(lc.demo ? QStringLiteral(" con datos de demostración") : QString(),
                        sesion->opciones().base));
        return Exito;
    }
    if (o == QLatin1String("registra") || o == QLatin1String("desregistra")) {
        exigeArgumentos(lc, 0, 0, o);
        if (o == QLatin1String("registra")) {
            registraComponente();
            salida(QStringLiteral("Componente registrado en %1").arg(components::registryFile()));
        } else {
            desregistraComponente();
            salida(QStringLiteral("Componente quitado de %1").arg(components::registryFile()));
        }
        return Exito;
    }
    if (o == QLatin1String("invoca"))
        return invoca(lc);
    if (o == QLatin1String("entrega"))
        return entrega(lc);
    if (o == QLatin1String("ensamble"))
        return ensamble(lc);
    if (o == QLatin1String("desensamble"))
        return desensamble(lc);
    if (o == QLatin1String("cancela"))
        return cancela(lc);
    if (o == QLatin1String("rol"))
        return rol(lc);
    if (o == QLatin1String("materiales"))
        return materiales(lc);
    if (o == QLatin1String("usuario")) {
        bool malUso = false;
        try {
            return ordenUsuario(lc, malUso);
        } catch (const Error &e) {
            if (malUso)
                throw ErrorDeUso(e.description());
            throw;
        }
    }
    if (esOrdenDeDatos(o))
        return ordenDeDatos(lc);
    throw ErrorDeUso(QStringLiteral("Orden desconocida: %1").arg(o));
}

} // namespace

void avisa(const QString &texto)
{
    std::fprintf(stderr, "zuvi-produccion: %s\n", qUtf8Printable(texto));
    std::fflush(stderr);
}

std::unique_ptr<anfitrion::Sesion> abreSesion(const LineaComandos &lc)
{
    anfitrion::Opciones opciones = lc.opciones;
    // On one machine whoever runs the program is who saves.
    if (!opciones.usuarioDado)
        if (const struct passwd *p = ::getpwuid(::getuid()))
            opciones.usuario = QString::fromLocal8Bit(p->pw_name);
    if (!opciones.pideEntrada)
        opciones.pideEntrada = pideEntradaTerminal;
    bool demo = lc.demo;
    if (!lc.baseDada) {
        opciones.base = anfitrion::basePorOmision();
        // The default database is meant to be tried out: demo data from the start.
        demo = lc.orden != QLatin1String("crea-base") || lc.demo;
    }
    static bool clasesRegistradas = false;
    if (!clasesRegistradas) {
        anfitrion::registraClasesAnfitrion();
        clasesRegistradas = true;
    }
    return anfitrion::Sesion::abre(opciones, demo);
}

int ejecutaOrden(const LineaComandos &lc)
{
    anfitrion::ponInteraccion(anfitrion::interaccionTerminal(lc.opciones.si));
    instalaSalidaDeReportes();
    try {
        return ejecuta(lc);
    } catch (const ErrorDeUso &e) {
        avisa(e.description());
        return MalUso;
    } catch (...) {
        avisa(describeCurrentException());
        return Fallo;
    }
}

} // namespace zuvi::app
