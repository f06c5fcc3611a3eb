#include "host/servicios/ConsultaCatalogo.h"

#include "host/base/Esquema.h"
#include "host/sql/Sql.h"

#include <QRegularExpression>
#include <QSqlQuery>

#include <utility>

namespace zuvi::anfitrion {

namespace {

// What MariaDB's LIKE would read as a wildcard or an escape, taken literally.
QString literalLike(QString palabra)
{
    palabra.replace(QLatin1Char('\\'), QStringLiteral("\\\\"));
    palabra.replace(QLatin1Char('%'), QStringLiteral("\\%"));
    palabra.replace(QLatin1Char('_'), QStringLiteral("\\_"));
    return QLatin1Char('%') + palabra + QLatin1Char('%');
}

} // namespace

BusquedaEnIndice::BusquedaEnIndice(const QString &texto)
{
    QStringList frases;
    for (const QString &w : sinAcentosDeBusqueda(texto).split(
             QRegularExpression(QStringLiteral("\\s+")), Qt::SkipEmptyParts)) {
        if (w.size() >= 3)
            frases << QLatin1Char('"') +
                          QString(w).replace(QLatin1Char('"'), QStringLiteral("\"\"")) +
                          QLatin1Char('"');
        else
            cortas << literalLike(w);
    }
    piezas = frases.join(QLatin1Char(' '));
}

QString BusquedaEnIndice::condicion(bool literales) const
{
    const auto valor = [literales](const QString &v) {
        return literales ? literalSql(v, Motor::SQLite) : QStringLiteral("?");
    };
    const QString indice = QLatin1String(kBusquedaArticulos);
    QStringList l;
    if (!piezas.isEmpty())
        l << indice + QStringLiteral(" MATCH ") + valor(piezas);
    for (const QString &c : cortas)
        l << indice + QStringLiteral(".texto LIKE %1 ESCAPE '\\'").arg(valor(c));
    return l.join(QStringLiteral(" AND "));
}

QVariantList BusquedaEnIndice::valores() const
{
    QVariantList v;
    if (!piezas.isEmpty())
        v << piezas;
    for (const QString &c : cortas)
        v << c;
    return v;
}

ConsultaCatalogo::ConsultaCatalogo(const DefinicionCatalogo &catalogo, const QString &filtro,
                                   QSqlDatabase conexion)
    : m_catalogo(catalogo), m_db(std::move(conexion)), m_filtro(leeFiltro(catalogo, filtro))
{
    // Counted up to a bound: counting a million rows would cost more than
    // the page shown.
    QString sql = QStringLiteral("SELECT 1 FROM ") + catalogo.tabla;
    QVariantList valores;
    if (!m_filtro.columna.isEmpty()) {
        sql += QStringLiteral(" WHERE %1 %2 ?").arg(m_filtro.columna, m_filtro.operador);
        valores << m_filtro.valor;
    }
    QSqlQuery q = ejecutaConValores(
        m_db, QStringLiteral("SELECT COUNT(*) FROM (%1 LIMIT %2) cuenta").arg(sql).arg(kCuenta + 1),
        valores);
    m_total = q.next() ? q.value(0).toInt() : 0;
    m_totalExacto = m_total <= kCuenta;
    m_total = qMin(m_total, kCuenta);
    // Without its full-text index (it could not be made) SQLite searches the
    // columns as MariaDB does, only slower and with accents as typed.
    m_indice = hayBusquedaArticulos(m_db);
}

QString ConsultaCatalogo::columnas(const QString &prefijo) const
{
    QStringList l;
    for (const QString &c : m_catalogo.columnas)
        l << prefijo + c;
    return l.join(QStringLiteral(", "));
}

std::vector<QStringList> ConsultaCatalogo::busca(const QString &texto)
{
    m_filas.clear();
    m_ultima = QVariant();
    m_porAlta = false;
    m_busqueda = BusquedaEnIndice();
    m_palabras.clear();
    if (m_indice)
        m_busqueda = BusquedaEnIndice(texto);
    else
        m_palabras = texto.split(QRegularExpression(QStringLiteral("\\s+")), Qt::SkipEmptyParts);
    m_coincidencias = m_busqueda.vacia() && m_palabras.isEmpty() && m_totalExacto ? m_total : -1;
    if (!m_busqueda.vacia()) {
        // How many match, up to a bound the entry numbers tell without sorting.
        QSqlQuery q = ejecutaConValores(
            m_db,
            QStringLiteral("SELECT rowid FROM %1 WHERE %2 ORDER BY rowid LIMIT %3")
                .arg(QLatin1String(kBusquedaArticulos), m_busqueda.condicion())
                .arg(kExactas + 1),
            m_busqueda.valores());
        QStringList numeros;
        while (q.next())
            numeros << q.value(0).toString();
        m_porAlta = numeros.size() > kExactas;
        if (!m_porAlta) {
            // Few enough to read whole, in the catalogue's order.
            QString sql = QStringLiteral("SELECT %1 FROM %2 WHERE rowid IN (%3)")
                              .arg(columnas(), m_catalogo.tabla, numeros.join(QLatin1Char(',')));
            QVariantList valores;
            if (!m_filtro.columna.isEmpty()) {
                sql += QStringLiteral(" AND %1 %2 ?").arg(m_filtro.columna, m_filtro.operador);
                valores << m_filtro.valor;
            }
            q = ejecutaConValores(m_db, sql + QStringLiteral(" ORDER BY ") + m_catalogo.orden,
                                  valores);
            while (q.next()) {
                QStringList fila;
                for (int i = 0; i < m_catalogo.columnas.size(); ++i)
                    fila << q.value(i).toString();
                m_filas.push_back(fila);
            }
            m_coincidencias = int(m_filas.size());
            m_hayMas = false;
            return std::exchange(m_filas, {});
        }
    }
    m_hayMas = true;
    leePagina();
    return std::exchange(m_filas, {});
}

std::vector<QStringList> ConsultaCatalogo::sigue()
{
    if (m_hayMas)
        leePagina();
    return std::exchange(m_filas, {});
}

void ConsultaCatalogo::leePagina()
{
    QStringList condiciones;
    QVariantList valores;
    QString sql;
    const QString t = m_catalogo.tabla;
    if (m_porAlta) {
        // Many matches: in the order they were entered, straight from the index.
        const QString indice = QLatin1String(kBusquedaArticulos);
        // Ordered by the index's own numbers, so it hands them over in order.
        sql = QStringLiteral("SELECT %1, %3.rowid FROM %2 JOIN %3 ON %3.rowid = %2.rowid")
                  .arg(columnas(t + QLatin1Char('.')), t, indice);
        condiciones << m_busqueda.condicion();
        valores << m_busqueda.valores();
        if (m_ultima.isValid()) {
            condiciones << indice + QStringLiteral(".rowid > ?");
            valores << m_ultima;
        }
    } else {
        sql = QStringLiteral("SELECT %1, %2 FROM %3").arg(columnas(), m_catalogo.orden, t);
        // MariaDB escapes with a backslash by itself; SQLite is told to.
        const QString escape =
            motorDe(m_db) == Motor::SQLite ? QStringLiteral(" ESCAPE '\\'") : QString();
        for (const QString &p : std::as_const(m_palabras)) {
            condiciones << QStringLiteral("(%1 LIKE ?%3 OR %2 LIKE ?%3)")
                               .arg(m_catalogo.columnas.at(0), m_catalogo.columnas.at(1), escape);
            valores << literalLike(p) << literalLike(p);
        }
        if (m_ultima.isValid()) {
            condiciones << m_catalogo.orden + QStringLiteral(" > ?");
            valores << m_ultima;
        }
    }
    if (!m_filtro.columna.isEmpty()) {
        condiciones << QStringLiteral("%1.%2 %3 ?").arg(t, m_filtro.columna, m_filtro.operador);
        valores << m_filtro.valor;
    }
    if (!condiciones.isEmpty())
        sql += QStringLiteral(" WHERE ") + condiciones.join(QStringLiteral(" AND "));
    sql += m_porAlta ? QStringLiteral(" ORDER BY %1.rowid").arg(QLatin1String(kBusquedaArticulos))
                     : QStringLiteral(" ORDER BY ") + m_catalogo.orden;
    sql += QStringLiteral(" LIMIT %1").arg(kPagina + 1);
    QSqlQuery q = ejecutaConValores(m_db, sql, valores);
    const int n = int(m_catalogo.columnas.size());
    int leidas = 0;
    while (q.next()) {
        if (++leidas > kPagina)
            break;
        QStringList fila;
        for (int i = 0; i < n; ++i)
            fila << q.value(i).toString();
        m_ultima = q.value(n);
        m_filas.push_back(fila);
    }
    m_hayMas = leidas > kPagina;
}

} // namespace zuvi::anfitrion
