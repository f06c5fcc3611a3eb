#include "orders/SentenciasOp.h"

namespace zuvi::sentenciasOp {

namespace {
QString n(qint32 numero)
{
    return QString::number(numero);
}
QString entreComillas(const QString &inicio, const QString &clave)
{
    return inicio + clave + QLatin1Char('\'');
}
} // namespace

QString plantillaOp()
{
    return QStringLiteral("SELECT * FROM op WHERE op = 0");
}

QString op(qint32 numero)
{
    return QStringLiteral("SELECT * FROM op WHERE op = ") + n(numero);
}

QString opParaPartida(qint32 numero)
{
    return QStringLiteral("SELECT * FROM op WHERE (((op) = ") + n(numero) + QStringLiteral("))");
}

QString partidasCarga(qint32 numero)
{
    return QStringLiteral("SELECT * FROM oppart WHERE Op = (") + n(numero) + QLatin1Char(')');
}

QString partidasGuardadas(qint32 numero)
{
    return QStringLiteral("SELECT * FROM oppart WHERE (((Op)=") + n(numero) + QStringLiteral("))");
}

QString borraPartida(const QString &idEntrada)
{
    return QStringLiteral("DELETE FROM oppart WHERE id_entrada = ") + idEntrada;
}

QString liberaOp(qint32 numero)
{
    return QStringLiteral("UPDATE Op SET ocupado = 0 WHERE Op = ") + n(numero);
}

QString ubicacion(const QString &articulo)
{
    return entreComillas(QStringLiteral("SELECT ubicacion FROM prods WHERE articulo = '"),
                         articulo);
}

QString descripcion(const QString &articulo)
{
    return entreComillas(
        QStringLiteral("SELECT descrip,unidad,costo_u FROM prods WHERE articulo = '"), articulo);
}

QString claveAdicional(const QString &clave)
{
    return entreComillas(QStringLiteral("SELECT * FROM clavesadd WHERE clave = '"), clave);
}

QString moneda(const QString &moneda)
{
    return entreComillas(QStringLiteral("SELECT * FROM monedas WHERE moneda = '"), moneda);
}

QString vendedor(const QString &vend)
{
    return entreComillas(QStringLiteral("SELECT * FROM vends WHERE vend = '"), vend);
}

QString listaArticulos()
{
    return QStringLiteral("SELECT articulo, descrip, unidad FROM prods ORDER BY articulo");
}

QString articuloDeClave(const QString &articulo)
{
    return entreComillas(QStringLiteral("SELECT articulo,descrip FROM prods WHERE articulo = '"),
                         articulo);
}

QString condicionOp(qint32 numero)
{
    return QStringLiteral("op = ") + n(numero);
}

QString condicionOpMayuscula(qint32 numero)
{
    return QStringLiteral("Op = ") + n(numero);
}

QString condicionPartida(const QString &idEntrada)
{
    return QStringLiteral("id_entrada = ") + idEntrada;
}

} // namespace zuvi::sentenciasOp
