#include "host/servicios/AmbienteAnfitrion.h"

#include "host/base/Reclamos.h"
#include "host/servicios/ClavesSentencia.h"

#include "host/sql/Sql.h"
#include "runtime/Error.h"

#include <QCoreApplication>
#include <QDir>
#include <QRegularExpression>

namespace zuvi::anfitrion {

namespace {

const QDate kOrigen(1899, 12, 30);
constexpr qint32 kSegundosDia = 86400;

} // namespace

qint32 datoFechaA(const QDate &fecha)
{
    if (!fecha.isValid())
        throw Error(QStringLiteral("No se puede convertir una fecha no válida en dato de fecha."));
    return qint32(kOrigen.daysTo(fecha));
}

qint32 datoFechaB(const QTime &hora)
{
    return hora.isValid() ? hora.msecsSinceStartOfDay() / 1000 : 0;
}

QDate fechaDeDatos(qint32 a, qint32 b)
{
    qint64 dias = a;
    dias += b / kSegundosDia;
    if (b % kSegundosDia < 0)
        --dias;
    return kOrigen.addDays(dias);
}

AmbienteAnfitrion::AmbienteAnfitrion(const QSqlDatabase &conexion, const Opciones &opciones,
                                     Motor motor, QObject *parent)
    : zuvi::Ambiente(parent), m_conexion(conexion), m_opciones(opciones), m_motor(motor)
{
    setObjectName(QStringLiteral("Ambiente"));
    ponIdentidad(m_conexion, m_opciones.usuario, m_opciones.estacion);
}

AmbienteAnfitrion::~AmbienteAnfitrion()
{
    quitaIdentidad(m_conexion);
}

QSqlDatabase AmbienteAnfitrion::Conexion() const
{
    return m_conexion;
}

QString AmbienteAnfitrion::UsuarioActual() const
{
    return m_opciones.usuario;
}

QString AmbienteAnfitrion::RutaAplicacion() const
{
    QString ruta =
        QCoreApplication::instance() ? QCoreApplication::applicationDirPath() : QDir::currentPath();
    ruta = QDir::toNativeSeparators(QDir::cleanPath(ruta));
    while (ruta.endsWith(QDir::separator()))
        ruta.chop(1);
    return ruta;
}

QVariant AmbienteAnfitrion::EjecutaSQL(const QString &sql)
{
    compruebaClaveEnSentencia(sql);
    // An editor that closes clears the busy mark only when the order is its own.
    static const QRegularExpression libera(
        QStringLiteral(
            "^\\s*UPDATE\\s+op\\s+SET\\s+ocupado\\s*=\\s*0\\s+WHERE\\s+op\\s*=\\s*(\\d+)\\s*$"),
        QRegularExpression::CaseInsensitiveOption);
    if (const QRegularExpressionMatch m = libera.match(sql); m.hasMatch())
        if (!suelta(m_conexion, m.captured(1).toInt()))
            return 0;
    return ejecutaAccion(m_conexion, sql).filas;
}

QDateTime AmbienteAnfitrion::ahora() const
{
    return m_ahora.isValid() ? m_ahora : QDateTime::currentDateTime();
}

// The date data count whole seconds: the local time of the current second
// serves every call within it, so the time zone is looked up once a second,
// not on every call.
QDateTime AmbienteAnfitrion::ahoraEnSegundos() const
{
    if (m_ahora.isValid())
        return m_ahora;
    const qint64 segundo = QDateTime::currentMSecsSinceEpoch() / 1000;
    if (segundo != m_segundo || !m_horaSegundo.isValid()) {
        m_segundo = segundo;
        m_horaSegundo = QDateTime::fromSecsSinceEpoch(segundo);
    }
    return m_horaSegundo;
}

qint32 AmbienteAnfitrion::DatoFechaA() const
{
    return datoFechaA(ahoraEnSegundos().date());
}

qint32 AmbienteAnfitrion::DatoFechaB() const
{
    return datoFechaB(ahoraEnSegundos().time());
}

QVariant AmbienteAnfitrion::DatoDocumento() const
{
    return m_opciones.estacion;
}

RecordsetPtr AmbienteAnfitrion::ParametrosEstacion()
{
    // The station's own row, else the default station's, else the first
    // warehouse with no reader: a new order always gets a warehouse.
    const QString sql = QStringLiteral(
        "SELECT estacion AS Estacion, almacen AS Almacen, lector AS Lector, existencianegativa AS "
        "ExistenciaNegativa, lineassinkit AS LineasSinKit FROM estaciones WHERE estacion = ?");
    for (const QString &estacion : {m_opciones.estacion, QStringLiteral("1")}) {
        QSqlQuery q = ejecutaConValores(m_conexion, sql, {estacion});
        RecordsetPtr rs = Recordset::fromQuery(q);
        if (!rs->atEnd())
            return rs;
    }
    return std::make_shared<Recordset>(
        QStringList{QStringLiteral("Estacion"), QStringLiteral("Almacen"), QStringLiteral("Lector"),
                    QStringLiteral("ExistenciaNegativa"), QStringLiteral("LineasSinKit")},
        QList<QVariantList>{{m_opciones.estacion, 1, 0, 0, 0}});
}

QObject *AmbienteAnfitrion::ContenedorRutas()
{
    return nullptr;
}

} // namespace zuvi::anfitrion
