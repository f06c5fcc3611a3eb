#include "tests/support/BaseDePrueba.h"

#include "host/Sql.h"
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

QString nombreUnico()
{
    static QAtomicInt contador;
    return QStringLiteral("zuvi_prueba_%1_%2_%3")
        .arg(QCoreApplication::applicationPid())
        .arg(contador.fetchAndAddRelaxed(1) + 1)
        .arg(QRandomGenerator::global()->bounded(1 << 24), 6, 16, QLatin1Char('0'));
}

void borraBaseMariaDB(const QString &nombre)
{
    const anfitrion::DestinoBase d =
        anfitrion::DestinoBase::lee(BaseDePrueba::urlServidorMariaDB());
    const QString conexion = QStringLiteral("zuvi-prueba-borra-") + nombre;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(
            QSqlDatabase::isDriverAvailable(QStringLiteral("QMYSQL")) ? QStringLiteral("QMYSQL")
                                                                      : QStringLiteral("QMARIADB"),
            conexion);
        db.setHostName(d.servidor);
        db.setPort(d.puerto);
        db.setUserName(d.usuario);
        db.setPassword(d.clave);
        if (db.open())
            QSqlQuery(db).exec(QStringLiteral("DROP DATABASE IF EXISTS `%1`").arg(nombre));
        else
            qWarning("No se pudo borrar la base de prueba %s", qPrintable(nombre));
        db.close();
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
    const QString archivo = qEnvironmentVariable(kVariableUrl);
    if (archivo.isEmpty())
        return QString();
    QFile f(archivo);
    if (!f.open(QIODevice::ReadOnly))
        throw Error(QStringLiteral("No se puede leer la dirección del servidor MariaDB de prueba "
                                   "en \"%1\": %2")
                        .arg(archivo, f.errorString()));
    QString url = QString::fromUtf8(f.readAll()).trimmed();
    if (!url.endsWith(QLatin1Char('/')))
        url += QLatin1Char('/');
    return url;
}

BaseDePrueba::BaseDePrueba(bool demo)
{
    if (enMariaDB()) {
        m_nombreMariaDB = nombreUnico();
        m_url = urlServidorMariaDB() + m_nombreMariaDB;
    } else {
        m_dir = std::make_unique<QTemporaryDir>();
        if (!m_dir->isValid())
            throw Error(QStringLiteral("No se pudo crear la carpeta temporal de la prueba: %1")
                            .arg(m_dir->errorString()));
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

anfitrion::Sesion &BaseDePrueba::sesion()
{
    return *m_sesion;
}
QSqlDatabase BaseDePrueba::conexion()
{
    return m_sesion->conexion();
}
zuvi::Ambiente *BaseDePrueba::ambiente()
{
    return m_sesion->ambiente();
}
QString BaseDePrueba::url() const
{
    return m_url;
}
anfitrion::Motor BaseDePrueba::motor() const
{
    return m_sesion->motor();
}

QVariant BaseDePrueba::escalar(const QString &sql)
{
    QSqlQuery q = anfitrion::ejecuta(conexion(), sql);
    return q.next() ? q.value(0) : QVariant();
}

void BaseDePrueba::ejecuta(const QString &sql)
{
    anfitrion::ejecuta(conexion(), sql);
}

void preparaRegistro()
{
    anfitrion::registraClasesAnfitrion();
}

} // namespace zuvi::pruebas
