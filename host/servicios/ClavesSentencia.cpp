#include "host/servicios/ClavesSentencia.h"

#include "host/servicios/Comprobaciones.h"

#include <QRegularExpression>
#include <QSqlIndex>
#include <QSqlQuery>

namespace zuvi::anfitrion {

namespace {

struct Nombre
{
    const char *columna; // or table
    const char *dicho;
};

// How the person calls the keys and the rows the component writes.
constexpr Nombre kClaves[] = {
    {"articulo", "artículo"}, {"clave", "clave adicional"}, {"turno", "turno"},
    {"moneda", "moneda"},     {"vend", "vendedor"},         {"empleado", "empleado"},
};
constexpr Nombre kRegistros[] = {
    {"turnos", "un turno"},
    {"turnoempleado", "ese empleado en el turno"},
    {"op", "una orden de producción"},
    {"oppart", "esa partida en la orden"},
};

template <std::size_t N>
QString dicho(const Nombre (&tabla)[N], const QString &nombre, const QString &otro)
{
    for (const Nombre &n : tabla)
        if (nombre.compare(QLatin1String(n.columna), Qt::CaseInsensitive) == 0)
            return QString::fromUtf8(n.dicho);
    return otro;
}

} // namespace

void compruebaClaveEnSentencia(const QString &sentencia)
{
    // The last "column = '" outside a quoted text, and the rest of the
    // statement up to its last quote as the key.
    static const QRegularExpression comparacion(QStringLiteral("(\\w+)\\s*=\\s*'"));
    QRegularExpressionMatch ultima;
    for (auto it = comparacion.globalMatch(sentencia); it.hasNext();) {
        const QRegularExpressionMatch m = it.next();
        if (sentencia.left(m.capturedStart()).count(QLatin1Char('\'')) % 2 == 0)
            ultima = m;
    }
    if (!ultima.hasMatch())
        return;
    const qsizetype desde = ultima.capturedEnd();
    const qsizetype cierre = sentencia.lastIndexOf(QLatin1Char('\''));
    if (cierre < desde || !sentencia.mid(cierre + 1).trimmed().isEmpty())
        return;
    const QString clave = sentencia.mid(desde, cierre - desde);
    if (!clave.contains(QLatin1Char('\'')) && !clave.contains(QLatin1Char('\\')))
        return;
    throw Rechazo(
        QStringLiteral("\"%1\" no es una clave válida de %2: una clave no puede llevar "
                       "comillas ni barras inversas.")
            .arg(clave.trimmed(), dicho(kClaves, ultima.captured(1), ultima.captured(1))));
}

void compruebaClaveNueva(const QSqlDatabase &db, const QString &tabla, const QStringList &columnas,
                         const QVariantList &valores)
{
    const QSqlIndex primaria = db.primaryIndex(tabla);
    if (primaria.isEmpty())
        return;
    QStringList condiciones, textos;
    QVariantList clave;
    for (int i = 0; i < primaria.count(); ++i) {
        qsizetype j = 0;
        while (j < columnas.size() &&
               columnas.at(j).compare(primaria.fieldName(i), Qt::CaseInsensitive) != 0)
            ++j;
        if (j >= columnas.size() || j >= valores.size())
            return;
        condiciones << primaria.fieldName(i) + QStringLiteral(" = ?");
        clave << valores.at(j);
        textos << valores.at(j).toString().trimmed();
    }
    // Run aside from the statement trace, which records the component's own.
    QSqlQuery q(db);
    q.prepare(QStringLiteral("SELECT COUNT(*) FROM %1 WHERE %2")
                  .arg(tabla, condiciones.join(QStringLiteral(" AND "))));
    for (const QVariant &v : std::as_const(clave))
        q.addBindValue(v);
    if (!q.exec())
        return; // the INSERT itself will say what is wrong
    if (q.next() && q.value(0).toLongLong() > 0)
        throw Rechazo(QStringLiteral("Ya existe %1 con la clave \"%2\".")
                          .arg(dicho(kRegistros, tabla, QStringLiteral("un registro")),
                               textos.join(QStringLiteral(", "))));
}

} // namespace zuvi::anfitrion
