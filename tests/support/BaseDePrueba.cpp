#include "tests/support/BaseDePrueba.h"

#include "host/servicios/AmbienteAnfitrion.h"
#include "host/sql/Sql.h"
#include "runtime/Error.h"

#include <QAtomicInt>
#include <QCoreApplication>
#include <QFile>
#include <QRandomGenerator>
#include <QSqlQuery>
#include <QTemporaryDir>

namespace zuvi::pruebas {

namespace {

const char kVariableUrl[] = "ZUVI_PRUEBA_MARIADB_URL_FILE";

void borraBaseMariaDB(const QString &nombre)
{
    const auto d = anfitrion::DestinoBase::lee(BaseDePrueba::urlServidorMariaDB());
    const QString conexion = "zuvi-prueba-borra-" + nombre;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(
            QSqlDatabase::isDriverAvailable("QMYSQL") ? "QMYSQL" : "QMARIADB", conexion);
        db.setHostName(d.servidor);
        db.setPort(d.puerto);
        db.setUserName(d.usuario);
        db.setPassword(d.clave);
        if (!db.open() || !QSqlQuery(db).exec("DROP DATABASE IF EXISTS `" + nombre + '`'))
            qWarning("No se pudo borrar la base de prueba %s", qPrintable(nombre));
    }
    QSqlDatabase::removeDatabase(conexion);
}

} // namespace

bool BaseDePrueba::enMariaDB()
{
    return !qEnvironmentVariable(kVariableUrl).isEmpty();
}

QString BaseDePrueba::urlServidorMariaDB()
{
    QFile f(qEnvironmentVariable(kVariableUrl));
    if (f.fileName().isEmpty())
        return QString();
    if (!f.open(QIODevice::ReadOnly))
        throw Error(QStringLiteral("No se puede leer la dirección del servidor MariaDB de prueba "
                                   "en \"%1\": %2")
                        .arg(f.fileName(), f.errorString()));
    const QString url = QString::fromUtf8(f.readAll()).trimmed();
    return url.endsWith('/') ? url : url + '/';
}

QStringList BaseDePrueba::otraCuenta(const QString &cuenta, const QString &rol)
{
    if (!enMariaDB())
        return {"--base", m_url, "--usuario", cuenta};
    ejecuta("CREATE USER IF NOT EXISTS '" + cuenta + "'@'%'");
    ejecuta("GRANT zuvi_" + rol + " TO '" + cuenta + "'@'%'");
    return {"--base", QString(m_url).replace("ADMIN@", cuenta + '@')};
}

BaseDePrueba::BaseDePrueba(bool demo)
{
    if (enMariaDB()) {
        static QAtomicInt contador;
        m_nombreMariaDB =
            QStringLiteral("zuvi_prueba_%1_%2_%3")
                .arg(QCoreApplication::applicationPid())
                .arg(contador.fetchAndAddRelaxed(1))
                .arg(QRandomGenerator::global()->bounded(1 << 24), 6, 16, QLatin1Char('0'));
        m_url = urlServidorMariaDB() + m_nombreMariaDB;
    } else {
        m_dir = std::make_unique<QTemporaryDir>();
        if (!m_dir->isValid())
            throw Error("No se pudo crear la carpeta temporal de la prueba: " +
                        m_dir->errorString());
        m_url = m_dir->filePath(QStringLiteral("prueba.db"));
    }
    anfitrion::Opciones opciones;
    opciones.base = m_url;
    try {
        m_sesion = anfitrion::Sesion::abre(opciones, demo);
    } catch (...) {
        if (!m_nombreMariaDB.isEmpty())
            borraBaseMariaDB(m_nombreMariaDB);
        throw;
    }
}

BaseDePrueba::~BaseDePrueba()
{
    m_sesion.reset();
    if (!m_nombreMariaDB.isEmpty())
        borraBaseMariaDB(m_nombreMariaDB);
}

QVariant BaseDePrueba::escalar(const QString &sql)
{
    QSqlQuery q = anfitrion::ejecuta(conexion(), sql);
    return q.next() ? q.value(0) : QVariant();
}

QStringList filas(const QSqlDatabase &conexion, const QString &sql, QChar separador)
{
    QStringList r;
    for (RecordsetPtr rs = anfitrion::consulta(conexion, sql); !rs->atEnd(); rs->moveNext()) {
        QStringList valores;
        for (int i = 0; i < rs->fieldCount(); ++i) {
            const QVariant v = rs->value(i);
            const int tipo = v.typeId();
            valores << (tipo == QMetaType::Double || tipo == QMetaType::Float
                            ? QString::number(v.toDouble())
                        : tipo == QMetaType::QDate ? v.toDate().toString(Qt::ISODate)
                                                   : v.toString());
        }
        r << valores.join(separador);
    }
    return r;
}

void BaseDePrueba::fijaReloj(const QDateTime &ahora)
{
    auto *ambiente = qobject_cast<anfitrion::AmbienteAnfitrion *>(m_sesion->ambiente());
    if (!ambiente)
        throw Error(QStringLiteral("El ambiente de la base de prueba no es el del anfitrión."));
    ambiente->ponAhora(ahora);
}

void BaseDePrueba::ejecuta(const QString &sql)
{
    anfitrion::ejecuta(conexion(), sql);
}

} // namespace zuvi::pruebas
