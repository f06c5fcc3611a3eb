#pragma once

// What the command line asked for. Options may come before or after the
// sub-command; everything that is not an option is a positional argument.

#include "host/base/Sesion.h"

#include <QString>
#include <QStringList>

namespace zuvi::app {

struct LineaComandos
{
    anfitrion::Opciones opciones;
    bool baseDada = false; // --base was given (otherwise the default file)
    bool demo = false;     // --demo (crea-base)
    bool ayuda = false;    // --help / -h
    bool version = false;  // --version
    QString idioma;        // --idioma (a Spanish locale; empty: ZUVI_IDIOMA or es_MX)
    QString turno;         // --turno (rol)
    bool simula = false;   // --simula (importa)
    bool resto = false;    // --resto (entrega)
    bool csv = false;      // --csv (materiales, existencias, movimientos)
    QString almacen;       // --almacen (existencias, movimientos)
    QStringList roles;     // --rol (usuario)
    QString desde, hasta;  // --desde, --hasta (movimientos)
    QString orden;         // the sub-command; empty opens the main window
    QStringList argumentos;

    // Throws Error with a Spanish description on an unknown option, an option
    // without its value or an unknown sub-command.
    static LineaComandos lee(const QStringList &argumentosPrograma);
};

QString textoAyuda();

// Strict conversions of command-line values. Throw Error naming the value
// (que: "la orden", "la cantidad"...) when the text is not such a number.
qint32 enteroDe(const QString &texto, const QString &que);
double realDe(const QString &texto, const QString &que);

} // namespace zuvi::app
