#include "app/Kits.h"

#include "host/Sql.h"

#include <QSqlQuery>
#include <QStringList>
#include <QVariant>

namespace zuvi::app {

QString motivoParaNoDesensamblar(const QSqlDatabase &db, const QString &articulo)
{
    const QString sql = QStringLiteral(
        "SELECT comppart.componente FROM comppart INNER JOIN prods ON prods.articulo = "
        "comppart.componente WHERE comppart.articulo = ? AND prods.kit <> 0 "
        "ORDER BY comppart.componente");
    QSqlQuery q = anfitrion::ejecutaConValores(db, sql, {articulo});
    QStringList anidados;
    while (q.next()) {
        const QString componente = q.value(0).toString().trimmed();
        if (!anidados.contains(componente))
            anidados << componente;
    }
    if (anidados.isEmpty())
        return QString();
    return QStringLiteral("No se puede desensamblar el kit %1: %2 %3 a su vez un kit. "
                          "Desensamble primero %4 por separado.")
        .arg(articulo,
             anidados.size() == 1
                 ? QStringLiteral("su componente ") + anidados.first()
                 : QStringLiteral("sus componentes ") + anidados.join(QStringLiteral(", ")),
             anidados.size() == 1 ? QStringLiteral("es") : QStringLiteral("son"),
             anidados.size() == 1 ? QStringLiteral("ese kit") : QStringLiteral("esos kits"));
}

bool existeReceta(const QSqlDatabase &db, const QString &articulo)
{
    QSqlQuery q = anfitrion::ejecutaConValores(
        db, QStringLiteral("SELECT COUNT(*) FROM comppart WHERE articulo = ?"), {articulo});
    return q.next() && q.value(0).toLongLong() > 0;
}

bool existeOrden(const QSqlDatabase &db, qint32 op)
{
    QSqlQuery q =
        anfitrion::ejecutaConValores(db, QStringLiteral("SELECT op FROM op WHERE op = ?"), {op});
    return q.next();
}

} // namespace zuvi::app
