#include "app/LineaComandos.h"

#include "runtime/Error.h"

#include <QLocale>

namespace zuvi::app {

namespace {

const QStringList &ordenesConocidas()
{
    static const QStringList o = {
        QStringLiteral("crea-base"),   QStringLiteral("registra"),   QStringLiteral("desregistra"),
        QStringLiteral("invoca"),      QStringLiteral("entrega"),    QStringLiteral("ensamble"),
        QStringLiteral("desensamble"), QStringLiteral("cancela"),    QStringLiteral("rol"),
        QStringLiteral("importa"),     QStringLiteral("exporta"),    QStringLiteral("existencias"),
        QStringLiteral("movimientos"), QStringLiteral("materiales"), QStringLiteral("usuario")};
    return o;
}

// An option that only some sub-commands take.
void exigeOrden(bool dada, const QString &opcion, const QString &orden, const QStringList &validas)
{
    if (dada && !validas.contains(orden))
        throw Error(QStringLiteral("La opción %1 solo vale con la orden %2.")
                        .arg(opcion, validas.join(QStringLiteral(" o la orden "))));
}

} // namespace

LineaComandos LineaComandos::lee(const QStringList &argumentosPrograma)
{
    LineaComandos lc;
    bool soloPosicionales = false;
    bool ordenLeida = false;
    for (int i = 0; i < argumentosPrograma.size(); ++i) {
        const QString arg = argumentosPrograma.at(i);
        // Only "--name" and "-h" are options, so a negative number such as
        // "-1" stays a positional argument.
        const bool esOpcion = !soloPosicionales &&
                              (arg.startsWith(QLatin1String("--")) || arg == QLatin1String("-h"));
        if (!esOpcion) {
            if (!ordenLeida) {
                if (!ordenesConocidas().contains(arg))
                    throw Error(QStringLiteral("Orden desconocida: \"%1\". Use --help para ver "
                                               "las órdenes disponibles.")
                                    .arg(arg));
                lc.orden = arg;
                ordenLeida = true;
            } else {
                lc.argumentos << arg;
            }
            continue;
        }
        if (arg == QLatin1String("--")) {
            soloPosicionales = true;
            continue;
        }
        QString nombre = arg;
        QString valor;
        bool valorEnLinea = false;
        const int igual = arg.indexOf(QLatin1Char('='));
        if (igual > 0) {
            nombre = arg.left(igual);
            valor = arg.mid(igual + 1);
            valorEnLinea = true;
        }
        auto valorDe = [&]() -> QString {
            if (valorEnLinea)
                return valor;
            if (i + 1 >= argumentosPrograma.size())
                throw Error(QStringLiteral("Falta el valor de la opción %1.").arg(nombre));
            return argumentosPrograma.at(++i);
        };
        auto sinValor = [&]() {
            if (valorEnLinea)
                throw Error(QStringLiteral("La opción %1 no lleva valor.").arg(nombre));
        };
        if (nombre == QLatin1String("--help") || nombre == QLatin1String("-h")) {
            sinValor();
            lc.ayuda = true;
        } else if (nombre == QLatin1String("--version")) {
            sinValor();
            lc.version = true;
        } else if (nombre == QLatin1String("--idioma")) {
            lc.idioma = valorDe();
            if (lc.idioma.trimmed().isEmpty())
                throw Error(QStringLiteral("La opción --idioma necesita un idioma, como es_MX."));
        } else if (nombre == QLatin1String("--base")) {
            lc.opciones.base = valorDe();
            if (lc.opciones.base.trimmed().isEmpty())
                throw Error(QStringLiteral("La opción --base necesita una ruta o un URL."));
            lc.baseDada = true;
        } else if (nombre == QLatin1String("--usuario")) {
            lc.opciones.usuario = valorDe();
            lc.opciones.usuarioDado = true;
        } else if (nombre == QLatin1String("--estacion")) {
            lc.opciones.estacion = valorDe();
        } else if (nombre == QLatin1String("--traza-sql")) {
            lc.opciones.trazaSql = valorDe();
        } else if (nombre == QLatin1String("--si")) {
            sinValor();
            lc.opciones.si = true;
        } else if (nombre == QLatin1String("--demo")) {
            sinValor();
            lc.demo = true;
        } else if (nombre == QLatin1String("--csv")) {
            sinValor();
            lc.csv = true;
        } else if (nombre == QLatin1String("--turno")) {
            lc.turno = valorDe();
            if (lc.turno.trimmed().isEmpty())
                throw Error(QStringLiteral("La opción --turno necesita la clave de un turno."));
        } else if (nombre == QLatin1String("--simula")) {
            sinValor();
            lc.simula = true;
        } else if (nombre == QLatin1String("--resto")) {
            sinValor();
            lc.resto = true;
        } else if (nombre == QLatin1String("--rol")) {
            lc.roles << valorDe();
        } else if (nombre == QLatin1String("--almacen")) {
            lc.almacen = valorDe();
        } else if (nombre == QLatin1String("--desde")) {
            lc.desde = valorDe();
        } else if (nombre == QLatin1String("--hasta")) {
            lc.hasta = valorDe();
        } else {
            throw Error(QStringLiteral("Opción desconocida: %1. Use --help para ver las opciones.")
                            .arg(nombre));
        }
    }
    if (lc.demo && lc.orden != QLatin1String("crea-base"))
        throw Error(QStringLiteral("La opción --demo solo vale con la orden crea-base."));
    if (!lc.turno.isEmpty() && lc.orden != QLatin1String("rol"))
        throw Error(QStringLiteral("La opción --turno solo vale con la orden rol."));
    exigeOrden(lc.simula, QStringLiteral("--simula"), lc.orden, {QStringLiteral("importa")});
    exigeOrden(lc.resto, QStringLiteral("--resto"), lc.orden, {QStringLiteral("entrega")});
    exigeOrden(!lc.roles.isEmpty(), QStringLiteral("--rol"), lc.orden, {QStringLiteral("usuario")});
    const QStringList inventario = {QStringLiteral("existencias"), QStringLiteral("movimientos")};
    exigeOrden(lc.csv, QStringLiteral("--csv"), lc.orden,
               inventario + QStringList{QStringLiteral("materiales")});
    exigeOrden(!lc.almacen.isEmpty(), QStringLiteral("--almacen"), lc.orden, inventario);
    exigeOrden(!lc.desde.isEmpty() || !lc.hasta.isEmpty(), QStringLiteral("--desde y --hasta"),
               lc.orden, {QStringLiteral("movimientos")});
    // A mistyped --base must not become a new empty database: only crea-base
    // makes one (and the default file, made with demo data on first use).
    lc.opciones.creaSiFalta = !lc.baseDada || lc.orden == QLatin1String("crea-base");
    return lc;
}

qint32 enteroDe(const QString &texto, const QString &que)
{
    bool ok = false;
    const qint32 n = texto.trimmed().toInt(&ok, 10);
    if (!ok)
        throw Error(
            QStringLiteral("%1 debe ser un número entero; se recibió \"%2\".").arg(que, texto));
    return n;
}

double realDe(const QString &texto, const QString &que)
{
    QString t = texto.trimmed();
    // A decimal comma is what a Spanish keyboard gives.
    if (!t.contains(QLatin1Char('.')) && t.count(QLatin1Char(',')) == 1)
        t.replace(QLatin1Char(','), QLatin1Char('.'));
    bool ok = false;
    const double n = QLocale::c().toDouble(t, &ok);
    if (!ok || !qIsFinite(n))
        throw Error(QStringLiteral("%1 debe ser un número; se recibió \"%2\".").arg(que, texto));
    return n;
}

QString textoAyuda()
{
    return QStringLiteral(
        "Uso: zuvi-produccion [OPCIONES] [ORDEN [ARGUMENTOS...]]\n"
        "\n"
        "Módulo de producción: órdenes de producción, entrega de producto terminado,\n"
        "ensamble y desensamble de kits, captura de fracciones y turnos.\n"
        "Sin ORDEN abre la ventana principal sobre la base de datos.\n"
        "\n"
        "Órdenes:\n"
        "  crea-base [--demo]          crea el esquema y los datos base (y los de\n"
        "                              demostración con --demo)\n"
        "  registra                    registra el componente ZuviProduccion.Produccion\n"
        "  desregistra                 quita el componente del registro\n"
        "  invoca METODO [ARG...]      llama a un método del componente por su nombre\n"
        "                              e imprime su resultado, si lo tiene\n"
        "  entrega OP [--resto]        entrega el producto terminado de la orden OP; con\n"
        "                              --resto, solo las líneas que aún no tienen entrada\n"
        "                              (una entrega que se cortó a la mitad)\n"
        "  ensamble ARTICULO ALMACEN CANTIDAD [OP]\n"
        "                              ensambla CANTIDAD kits ARTICULO en ALMACEN\n"
        "  desensamble ARTICULO CANTIDAD ALMACEN [OP]\n"
        "                              desensambla CANTIDAD kits ARTICULO de ALMACEN\n"
        "  cancela OP                  cancela (borra o cierra) la orden OP\n"
        "  materiales OP [--csv]       lo que necesita la orden OP de cada componente,\n"
        "                              lo que hay en su almacén y lo que falta\n"
        "  rol AAAA-MM [--turno T]     escribe en PDF el rol de turnos del mes (de un\n"
        "                              turno con --turno) en la carpeta de reportes\n"
        "  importa TABLA ARCHIVO [--simula]\n"
        "                              lleva a la base un archivo CSV (todo o nada;\n"
        "                              con --simula solo lo revisa)\n"
        "  exporta TABLA [ARCHIVO]     escribe la tabla en CSV (a la salida sin ARCHIVO)\n"
        "                              TABLA: articulos, claves, kits, almacenes, monedas,\n"
        "                              vendedores, empleados, conceptos o impuestos\n"
        "  usuario alta NOMBRE --rol ROL  (MariaDB) crea la cuenta NOMBRE en el servidor\n"
        "                              con el rol ROL; la clave se pide dos veces\n"
        "  usuario baja NOMBRE         borra la cuenta NOMBRE del servidor\n"
        "  usuario roles NOMBRE --rol ROL  cambia el rol de la cuenta\n"
        "  usuario clave NOMBRE        cambia la clave de la cuenta (se pide dos veces)\n"
        "  usuario lista               las cuentas y sus roles\n"
        "                              ROL: consulta, captura, produccion, supervisor o\n"
        "                              admin; cada uno incluye los anteriores\n"
        "  existencias [--almacen N] [--csv]\n"
        "                              existencia y valor por artículo y almacén\n"
        "  movimientos ARTICULO [--almacen N] [--desde AAAA-MM-DD] [--hasta AAAA-MM-DD]\n"
        "              [--csv]         tarjeta de almacén: movimientos y saldo\n"
        "\n"
        "Opciones (antes o después de la orden):\n"
        "  --base BASE         archivo SQLite, o mariadb://cuenta@servidor:puerto/nombre\n"
        "                      [?opciones=archivo.cnf] (por omisión, la base local con\n"
        "                      datos de demostración). En MariaDB la clave se pide en la\n"
        "                      terminal o viene del archivo de opciones ([client]\n"
        "                      password=...) o de ~/.my.cnf, sólo legibles por su dueño\n"
        "  --usuario USUARIO   SQLite: quien trabaja (por omisión, el usuario del sistema);\n"
        "                      MariaDB: la cuenta con que se entra si la dirección no la da\n"
        "  --estacion ESTACION estación de trabajo (por omisión 1)\n"
        "  --traza-sql ARCHIVO escribe en ARCHIVO cada sentencia SQL ejecutada\n"
        "  --si                responde que sí a todas las preguntas\n"
        "  --idioma IDIOMA     variante del español de fechas, números y diálogos, como\n"
        "                      es_ES (por omisión ZUVI_IDIOMA o, sin ella, es_MX)\n"
        "  --version           muestra la versión\n"
        "  -h, --help          muestra esta ayuda\n"
        "\n"
        "Ejemplos:\n"
        "  zuvi-produccion crea-base --demo --base /tmp/prueba.db\n"
        "  zuvi-produccion invoca CancelaOp 3 --si\n"
        "  zuvi-produccion invoca NuevaOp          (abre el editor de órdenes y espera)\n"
        "  zuvi-produccion invoca ModificaOp 1\n"
        "  zuvi-produccion desensamble KIT-01 1.5 1\n"
        "  zuvi-produccion rol 2024-05 --turno NOCHE\n");
}

} // namespace zuvi::app
