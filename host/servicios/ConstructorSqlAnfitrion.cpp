#include "host/servicios/ConstructorSqlAnfitrion.h"

#include "host/base/Reclamos.h"
#include "host/interaccion/Interaccion.h"
#include "host/servicios/CantidadPartida.h"
#include "host/servicios/ClavesSentencia.h"
#include "host/servicios/Comprobaciones.h"
#include "host/sql/Sql.h"
#include "runtime/Error.h"

#include <QDateTime>
#include <QRegularExpression>
#include <QTime>

namespace zuvi::anfitrion {

namespace {

bool esNombre(const QString &nombre)
{
    static const QRegularExpression patron(QStringLiteral("^[A-Za-z_][A-Za-z0-9_]*$"));
    return patron.match(nombre).hasMatch();
}

void exigeNombre(const QString &nombre, const QString &que)
{
    if (!esNombre(nombre))
        throw Error(QStringLiteral("El nombre de %1 \"%2\" no es válido.").arg(que, nombre));
}

// The value as the driver binds it: small integers widened, booleans as 1/0,
// times as text on SQLite (which keeps them as text anyway).
QVariant valorParaEnlazar(const QVariant &original, bool sqlite)
{
    const QVariant v = valorSimple(original);
    if (!v.isValid())
        return QVariant(QMetaType::fromType<QString>()); // a typed null
    if (v.isNull())
        return QVariant(v.metaType());
    switch (v.typeId()) {
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::UChar:
        return QVariant(v.toInt());
    case QMetaType::Long:
        return QVariant(v.toLongLong());
    case QMetaType::ULong:
        return QVariant(v.toULongLong());
    case QMetaType::Bool:
        return QVariant(v.toBool() ? 1 : 0);
    case QMetaType::Float:
        return QVariant(double(v.toFloat()));
    case QMetaType::QTime:
        return sqlite ? QVariant(v.toTime().toString(QStringLiteral("hh:mm:ss"))) : v;
    case QMetaType::QDateTime:
        return sqlite ? QVariant(v.toDateTime().toString(QStringLiteral("yyyy-MM-dd hh:mm:ss")))
                      : v;
    default:
        return v;
    }
}

// The order a condition names alone ("Op = 12"), or 0.
qint32 ordenDeCondicion(const QString &condicion)
{
    static const QRegularExpression patron(QStringLiteral("^\\s*op\\s*=\\s*(\\d+)\\s*$"),
                                           QRegularExpression::CaseInsensitiveOption);
    return patron.match(condicion).captured(1).toInt();
}

} // namespace

QString textoPorOmision(const QObject *objeto)
{
    if (!objeto)
        return QString();
    for (const char *propiedad : {"Text", "text"}) {
        const QVariant v = objeto->property(propiedad);
        if (v.isValid())
            return v.toString();
    }
    return objeto->objectName();
}

QVariant valorSimple(const QVariant &valor)
{
    if (valor.metaType().flags().testFlag(QMetaType::PointerToQObject))
        return QVariant(textoPorOmision(valor.value<QObject *>()));
    return valor;
}

void ConstructorSqlAnfitrion::PonConexion(const QSqlDatabase &conexion)
{
    m_conexion = conexion;
    m_hayConexion = conexion.isValid();
    invalida();
}

void ConstructorSqlAnfitrion::PonRutas(const QVariant &coleccion)
{
    // Kept for hosts that resolve paths in values; this host has none to resolve.
    m_rutas = coleccion;
}

void ConstructorSqlAnfitrion::Limpia()
{
    m_tipo.clear();
    m_campos.clear();
    m_condicion.clear();
    m_sentencia.clear();
    m_valores.clear();
    m_texto.clear();
    invalida();
}

void ConstructorSqlAnfitrion::Tipo(const QString &tipo)
{
    const QString t = tipo.trimmed().toUpper();
    if (t != QLatin1String("INSERT") && t != QLatin1String("UPDATE"))
        throw Error(QStringLiteral("Tipo de sentencia desconocido: \"%1\". Se espera INSERT o "
                                   "UPDATE.")
                        .arg(tipo));
    m_tipo = t;
    invalida();
}

void ConstructorSqlAnfitrion::AgregaCampo(const QString &tabla, const QString &columna,
                                          const QVariant &valor)
{
    exigeNombre(tabla, QStringLiteral("tabla"));
    exigeNombre(columna, QStringLiteral("columna"));
    m_campos.append({tabla, columna, valor});
    invalida();
}

void ConstructorSqlAnfitrion::Condicion(const QString &condicion)
{
    m_condicion = condicion;
    invalida();
}

QString ConstructorSqlAnfitrion::Genera(const QString &tabla)
{
    invalida();
    m_sentencia.clear();
    m_valores.clear();
    m_texto.clear();
    exigeNombre(tabla, QStringLiteral("tabla"));
    m_tabla = tabla;
    if (m_tipo.isEmpty())
        throw Error(QStringLiteral("No se indicó el tipo de sentencia (INSERT o UPDATE) para la "
                                   "tabla %1.")
                        .arg(tabla));
    for (const Campo &c : std::as_const(m_campos)) {
        if (c.tabla.compare(tabla, Qt::CaseInsensitive) != 0)
            throw Error(QStringLiteral("La columna %1 se agregó para la tabla %2, no para %3.")
                            .arg(c.columna, c.tabla, tabla));
    }

    const Motor motor = m_hayConexion ? motorDe(m_conexion) : Motor::SQLite;
    QStringList columnas, marcas, literales;
    for (const Campo &c : std::as_const(m_campos)) {
        columnas << c.columna;
        m_valores << valorParaEnlazar(c.valor, motor == Motor::SQLite);
        literales << literalSql(valorSimple(c.valor), motor);
    }

    if (m_tipo == QLatin1String("INSERT")) {
        if (columnas.isEmpty())
            throw Error(QStringLiteral("No hay columnas para insertar en la tabla %1.").arg(tabla));
        const QString cabeza = QStringLiteral("INSERT INTO %1 (%2) VALUES (")
                                   .arg(tabla, columnas.join(QStringLiteral(", ")));
        m_sentencia = cabeza +
                      QStringList(qsizetype(columnas.size()), QStringLiteral("?"))
                          .join(QStringLiteral(", ")) +
                      QLatin1Char(')');
        m_texto = cabeza + literales.join(QStringLiteral(", ")) + QLatin1Char(')');
    } else if (!columnas.isEmpty()) {
        if (m_condicion.trimmed().isEmpty())
            throw Error(QStringLiteral("Falta la condición del UPDATE de la tabla %1.").arg(tabla));
        QStringList conMarcas, conValores;
        for (qsizetype i = 0; i < columnas.size(); ++i) {
            conMarcas << columnas.at(i) + QStringLiteral(" = ?");
            conValores << columnas.at(i) + QStringLiteral(" = ") + literales.at(i);
        }
        const QString donde = QStringLiteral(" WHERE ") + m_condicion;
        m_sentencia = QStringLiteral("UPDATE %1 SET %2").arg(tabla, conMarcas.join(", ")) + donde;
        m_texto = QStringLiteral("UPDATE %1 SET %2").arg(tabla, conValores.join(", ")) + donde;
    }
    // An UPDATE with no columns leaves both texts empty: nothing to run.
    m_generado = true;
    return m_texto;
}

void ConstructorSqlAnfitrion::Ejecuta()
{
    if (!m_generado)
        throw Error(QStringLiteral("No hay sentencia que ejecutar: falta llamar a Genera después "
                                   "del último cambio."));
    if (m_sentencia.isEmpty())
        return;
    if (!m_hayConexion || !m_conexion.isValid())
        throw Error(QStringLiteral("El constructor de sentencias no tiene conexión con la base de "
                                   "datos."));
    for (const Campo &c : std::as_const(m_campos))
        if (c.tabla.compare(QLatin1String("oppart"), Qt::CaseInsensitive) == 0 &&
            c.columna.compare(QLatin1String("cantidad"), Qt::CaseInsensitive) == 0 &&
            rechazaCantidadPartida(m_conexion, m_tipo, c.valor, m_condicion))
            return;
    const MarcaOcupada marca = marcaOcupada();
    if (marca.op && m_tipo == QLatin1String("UPDATE")) {
        if (marca.ocupada)
            reclamaParaEditar(marca.op);
        else if (!suelta(m_conexion, marca.op) && m_campos.size() == 1)
            return; // the order is another's now: its mark stays
    }
    if (m_tipo == QLatin1String("INSERT")) {
        QStringList columnas;
        for (const Campo &c : std::as_const(m_campos))
            columnas << c.columna;
        compruebaClaveNueva(m_conexion, m_tabla, columnas, m_valores);
    } else {
        compruebaClaveEnSentencia(m_sentencia);
    }
    ejecutaAccion(m_conexion, m_sentencia, m_valores, m_texto);
    if (marca.op && marca.ocupada && m_tipo == QLatin1String("INSERT"))
        reclamaParaEditar(marca.op);
}

// Marking an order busy is where an editor takes it: the mark alone, read
// and then set, would let two stations in.
ConstructorSqlAnfitrion::MarcaOcupada ConstructorSqlAnfitrion::marcaOcupada() const
{
    MarcaOcupada marca;
    if (m_tabla.compare(QLatin1String("op"), Qt::CaseInsensitive) != 0)
        return marca;
    const Campo *ocupado = nullptr;
    for (const Campo &c : std::as_const(m_campos)) {
        if (c.columna.compare(QLatin1String("ocupado"), Qt::CaseInsensitive) == 0)
            ocupado = &c;
        else if (m_tipo == QLatin1String("INSERT") &&
                 c.columna.compare(QLatin1String("op"), Qt::CaseInsensitive) == 0)
            marca.op = valorSimple(c.valor).toInt();
    }
    if (!ocupado)
        return MarcaOcupada();
    if (m_tipo == QLatin1String("UPDATE"))
        marca.op = ordenDeCondicion(m_condicion);
    marca.ocupada = valorSimple(ocupado->valor).toInt() != 0;
    return marca;
}

void ConstructorSqlAnfitrion::reclamaParaEditar(qint32 op)
{
    try {
        const Reclamo r = reclama(m_conexion, op, kReclamoEdicion);
        if (!r.aviso.isEmpty())
            interaccion().mensaje(r.aviso, 64);
    } catch (const Rechazo &e) {
        // The editor that asked is discarded without a word of its own.
        interaccion().mensaje(e.description(), 48);
        throw;
    } catch (const Error &e) {
        // A database that cannot be written (another program holds it) says so too.
        interaccion().mensaje(e.description(), 16);
        throw;
    }
}

} // namespace zuvi::anfitrion
