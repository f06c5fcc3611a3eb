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
    // statement up to its last quote as the key. Every statement the
    // component runs comes through here, so it is one pass by hand.
    const QStringView s(sentencia);
    // Column names are plain ASCII, as are the blanks between them.
    const auto palabra = [](QChar c) {
        return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9') ||
               c == u'_';
    };
    const auto blanco = [](QChar c) { return c == u' ' || (c >= u'\t' && c <= u'\r'); };
    qsizetype desde = -1;
    QStringView columna;
    bool dentro = false;
    for (qsizetype i = 0; i < s.size(); ++i) {
        if (s[i] != u'\'')
            continue;
        if (!dentro) {
            qsizetype j = i;
            while (j > 0 && blanco(s[j - 1]))
                --j;
            if (j > 0 && s[j - 1] == u'=') {
                --j;
                while (j > 0 && blanco(s[j - 1]))
                    --j;
                const qsizetype fin = j;
                while (j > 0 && palabra(s[j - 1]))
                    --j;
                if (j < fin) {
                    desde = i + 1;
                    columna = s.mid(j, fin - j);
                }
            }
        }
        dentro = !dentro;
    }
    if (desde < 0)
        return;
    const qsizetype cierre = s.lastIndexOf(u'\'');
    if (cierre < desde || !s.mid(cierre + 1).trimmed().isEmpty())
        return;
    const QStringView clave = s.mid(desde, cierre - desde);
    if (!clave.contains(u'\'') && !clave.contains(u'\\'))
        return;
    throw Rechazo(QStringLiteral("\"%1\" no es una clave válida de %2: una clave no puede llevar "
                                 "comillas ni barras inversas.")
                      .arg(clave.trimmed().toString(),
                           dicho(kClaves, columna.toString(), columna.toString())));
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
