#include "app/Cuentas.h"

#include "app/Comandos.h"
#include "host/base/Cuentas.h"
#include "runtime/Error.h"
#include "runtime/Text.h"

#include <cstdio>
#include <iostream>
#include <string>

#include <termios.h>
#include <unistd.h>

namespace zuvi::app {

namespace {

void salida(const QString &texto)
{
    std::fprintf(stdout, "%s\n", qUtf8Printable(texto));
    std::fflush(stdout);
}

// The password twice: a typing mistake would lock the person out.
QString claveNueva(const QString &cuenta)
{
    const std::optional<QString> una =
        leeClave(QStringLiteral("Clave nueva de la cuenta %1: ").arg(cuenta));
    const std::optional<QString> otra = leeClave(QStringLiteral("Repita la clave: "));
    if (!una || !otra)
        throw Error(QStringLiteral("No se escribió la clave nueva de la cuenta \"%1\"; no se "
                                   "cambió nada.")
                        .arg(eco(cuenta)));
    if (*una != *otra)
        throw Error(QStringLiteral("Las dos claves escritas no son iguales; no se cambió nada."));
    if (una->isEmpty())
        throw Error(QStringLiteral("La clave no puede quedar vacía; no se cambió nada."));
    return *una;
}

} // namespace

std::optional<QString> leeClave(const QString &pregunta)
{
    const bool terminal = ::isatty(STDIN_FILENO);
    termios antes{};
    if (terminal) {
        std::fputs(qUtf8Printable(pregunta), stderr);
        std::fflush(stderr);
        ::tcgetattr(STDIN_FILENO, &antes);
        termios sinEco = antes;
        sinEco.c_lflag &= ~tcflag_t(ECHO);
        ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &sinEco);
    }
    std::string linea;
    const bool leida = bool(std::getline(std::cin, linea));
    if (terminal) {
        ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &antes);
        std::fputs("\n", stderr);
    }
    if (!leida)
        return std::nullopt;
    return QString::fromStdString(linea);
}

bool pideEntradaTerminal(QString &cuenta, QString &clave, const QString &motivo)
{
    if (!motivo.isEmpty())
        avisa(motivo);
    const std::optional<QString> leida =
        leeClave(QStringLiteral("Clave de la cuenta %1: ").arg(eco(cuenta)));
    if (!leida)
        return false;
    clave = *leida;
    return true;
}

int ordenUsuario(const LineaComandos &lc, bool &malUso)
{
    const QStringList &a = lc.argumentos;
    const QString que = a.value(0);
    const auto uso = [&](const QString &texto) {
        malUso = true;
        throw Error(texto);
    };
    const int esperados = que == QLatin1String("lista") ? 1 : 2;
    if (!QStringList{"alta", "baja", "roles", "clave", "lista"}.contains(que) ||
        a.size() != esperados)
        uso(QStringLiteral("Uso: zuvi-produccion usuario alta NOMBRE --rol ROL | baja NOMBRE | "
                           "roles NOMBRE --rol ROL | clave NOMBRE | lista"));
    const bool conRol = que == QLatin1String("alta") || que == QLatin1String("roles");
    if (conRol != !lc.roles.isEmpty())
        uso(conRol ? QStringLiteral("Falta el rol: --rol consulta, captura, produccion, "
                                    "supervisor o admin.")
                   : QStringLiteral("La opción --rol sólo vale con usuario alta y usuario roles."));
    // Each role holds the ones below it: the highest named is the one given.
    anfitrion::Rol rol = anfitrion::Rol::Ninguno;
    for (const QString &r : lc.roles) {
        const anfitrion::Rol leido = anfitrion::rolDeNombre(r);
        if (leido == anfitrion::Rol::Ninguno)
            uso(QStringLiteral("No existe el rol \"%1\": use consulta, captura, produccion, "
                               "supervisor o admin.")
                    .arg(eco(r)));
        rol = std::max(rol, leido);
    }
    auto sesion = abreSesion(lc);
    if (sesion->motor() != anfitrion::Motor::MariaDB)
        throw Error(QStringLiteral("Las cuentas y sus roles son del servidor MariaDB; en una base "
                                   "SQLite los permisos del archivo son la protección."));
    const QSqlDatabase db = sesion->conexion();
    const QString nombre = a.value(1);
    if (que == QLatin1String("alta")) {
        anfitrion::altaCuenta(db, nombre, rol, claveNueva(nombre));
        salida(QStringLiteral("Cuenta %1 dada de alta con el rol %2.")
                   .arg(nombre, anfitrion::nombreRol(rol)));
    } else if (que == QLatin1String("baja")) {
        anfitrion::bajaCuenta(db, nombre);
        salida(QStringLiteral("Cuenta %1 dada de baja.").arg(nombre));
    } else if (que == QLatin1String("roles")) {
        anfitrion::cambiaRol(db, nombre, rol);
        salida(QStringLiteral("La cuenta %1 tiene ahora el rol %2.")
                   .arg(nombre, anfitrion::nombreRol(rol)));
    } else if (que == QLatin1String("clave")) {
        anfitrion::cambiaClave(db, nombre, claveNueva(nombre));
        salida(QStringLiteral("Clave de la cuenta %1 cambiada.").arg(nombre));
    } else {
        for (const anfitrion::Cuenta &c : anfitrion::listaCuentas(db))
            salida(c.nombre + u'\t' + c.roles.join(QStringLiteral(", ")));
    }
    return Exito;
}

} // namespace zuvi::app
