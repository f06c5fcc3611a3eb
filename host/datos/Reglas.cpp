#include "host/datos/Reglas.h"

#include "host/base/Esquema.h"
#include "host/servicios/Catalogos.h"
#include "host/servicios/ConsultaCatalogo.h"
#include "host/sql/Sql.h"

#include <QSqlDriver>

#include <sqlite3.h>

#include <functional>

namespace zuvi::anfitrion::datos {

namespace {

QString normal(const QVariant &v)
{
    return v.toString().trimmed().toCaseFolded();
}

QHash<QString, QStringList> grafoKits(const QSqlDatabase &db)
{
    QHash<QString, QStringList> g;
    for (RecordsetPtr r = consulta(db, QStringLiteral("SELECT articulo, Componente FROM comppart"));
         !r->atEnd(); r->moveNext())
        g[normal(r->value(0))] << normal(r->value(1));
    return g;
}

// The folded form of a text as SQLite's own function, so a search ignores
// accents there too (MariaDB's collation already does).
void pliega(sqlite3_context *contexto, int, sqlite3_value **argumentos)
{
    const auto *t = reinterpret_cast<const char *>(sqlite3_value_text(argumentos[0]));
    const QByteArray forma = formaDeBusqueda(QString::fromUtf8(t ? t : "")).toUtf8();
    sqlite3_result_text(contexto, forma.constData(), int(forma.size()), SQLITE_TRANSIENT);
}

void registraPliega(const QSqlDatabase &db)
{
    const QVariant h = db.driver()->handle();
    if (qstrcmp(h.typeName(), "sqlite3*") != 0)
        return;
    if (auto *s = *static_cast<sqlite3 *const *>(h.data()))
        sqlite3_create_function(s, "zuvi_pliega", 1, SQLITE_UTF8 | SQLITE_DETERMINISTIC, nullptr,
                                pliega, nullptr, nullptr);
}

QString revisaKit(const QSqlDatabase &db, const QVariantMap &v)
{
    const QString kit = v.value(QStringLiteral("articulo")).toString();
    const QString comp = v.value(QStringLiteral("Componente")).toString();
    if (normal(kit) == normal(comp))
        return QStringLiteral("Componente: un kit no puede ser componente de sí mismo.");
    if (contiene(db, comp, kit))
        return QStringLiteral("Componente: \"%1\" contiene al kit \"%2\"; el kit se contendría a "
                              "sí mismo.")
            .arg(comp, kit);
    return {};
}

QString revisaMoneda(const QSqlDatabase &db, const QVariantMap &v)
{
    const RecordsetPtr r =
        consulta(db, QStringLiteral("SELECT moneda FROM monedas WHERE Base <> 0 AND moneda <> ?"),
                 {v.value(QStringLiteral("moneda"))});
    const int otras = r->rowCount();
    const bool base = v.value(QStringLiteral("Base")).toInt() != 0;
    if (base && otras > 0)
        return QStringLiteral("Moneda base: ya es base \"%1\"; quítele la marca primero (solo "
                              "puede haber una).")
            .arg(r->text(0));
    if (!base && otras == 0)
        return QStringLiteral("Moneda base: debe haber una moneda base; márquela en otra antes.");
    return {};
}

} // namespace

const Catalogo &cabeceraKits()
{
    static const Catalogo c{QStringLiteral("recetas"),
                            QStringLiteral("componen"),
                            QStringLiteral("Kits"),
                            QStringLiteral("el kit"),
                            {{QStringLiteral("articulo"), Tipo::Clave, 30, QStringLiteral("Kit"),
                              QStringLiteral("articulos"), true, true},
                             {QStringLiteral("Minimo"),
                              Tipo::Real,
                              0,
                              QStringLiteral("Rendimiento del lote"),
                              {},
                              false,
                              true}},
                            QStringLiteral("articulo"),
                            QStringLiteral("articulo")};
    return c;
}

QString revisaFila(const QSqlDatabase &db, const Catalogo &c, const QVariantMap &valores,
                   bool nueva)
{
    const Motor motor = motorDe(db);
    QVariantMap v;
    for (const Columna &col : c.columnas) {
        QVariant valor;
        const QString motivo =
            convierte(col, valores.value(col.nombre).toString(), motor, true, valor);
        if (!motivo.isEmpty())
            return QStringLiteral("%1: %2.").arg(col.etiqueta, motivo);
        if (!col.referencia.isEmpty() && !valor.isNull() && !existe(db, col.referencia, valor))
            return QStringLiteral("%1: no existe %2 \"%3\".")
                .arg(col.etiqueta, catalogo(col.referencia)->singular, valor.toString());
        v.insert(col.nombre, valor);
    }
    if (nueva && c.claves().size() == 1 && existe(db, c.nombre, v.value(c.claves().first())))
        return QStringLiteral("%1: ya existe %2 \"%3\".")
            .arg(c.columnas.first().etiqueta, c.singular, v.value(c.claves().first()).toString());
    if (c.tabla == QLatin1String("componen") && v.value(QStringLiteral("Minimo")).toDouble() <= 0)
        return QStringLiteral("Rendimiento del lote: debe ser mayor que cero.");
    if (c.nombre == QLatin1String("kits"))
        return revisaKit(db, v);
    if (c.nombre == QLatin1String("monedas"))
        return revisaMoneda(db, v);
    return {};
}

QSet<QString> kitsConReceta(const QSqlDatabase &db)
{
    QSet<QString> s;
    for (RecordsetPtr r = consulta(db, QStringLiteral("SELECT DISTINCT articulo FROM comppart"));
         !r->atEnd(); r->moveNext())
        s.insert(normal(r->value(0)));
    return s;
}

bool contiene(const QSqlDatabase &db, const QString &componente, const QString &kit)
{
    const QHash<QString, QStringList> g = grafoKits(db);
    QSet<QString> vistos;
    QStringList pendientes{normal(componente)};
    while (!pendientes.isEmpty()) {
        const QString a = pendientes.takeLast();
        if (a == normal(kit))
            return true;
        if (!vistos.contains(a)) {
            vistos.insert(a);
            pendientes += g.value(a);
        }
    }
    return false;
}

double costoKit(const QSqlDatabase &db, const QString &kit)
{
    QSet<QString> enCurso; // a cycle written before these checks adds nothing twice
    std::function<double(const QString &)> costo = [&](const QString &k) -> double {
        if (enCurso.contains(normal(k)))
            return 0.0;
        enCurso.insert(normal(k));
        const RecordsetPtr m =
            consulta(db, QStringLiteral("SELECT Minimo FROM componen WHERE articulo = ?"), {k});
        const double minimo = m->atEnd() || m->number(0) <= 0 ? 1.0 : m->number(0);
        double total = 0;
        for (RecordsetPtr r = consulta(db,
                                       QStringLiteral("SELECT c.Componente, c.Cantidad, p.costo, "
                                                      "(SELECT COUNT(*) FROM comppart s WHERE "
                                                      "s.articulo = c.Componente) FROM comppart c "
                                                      "LEFT JOIN prods p ON p.articulo = "
                                                      "c.Componente WHERE c.articulo = ?"),
                                       {k});
             !r->atEnd(); r->moveNext())
            total += (r->number(3) > 0 ? costo(r->text(0)) : r->number(2)) * r->number(1);
        enCurso.remove(normal(k));
        return total / minimo;
    };
    return costo(kit);
}

QString condicionBusqueda(const QSqlDatabase &db, const QStringList &columnas,
                          const QString &busqueda)
{
    const Motor motor = motorDe(db);
    if (motor == Motor::SQLite)
        registraPliega(db);
    QStringList condiciones;
    for (const QString &palabra : formaDeBusqueda(busqueda).split(u' ', Qt::SkipEmptyParts)) {
        QString patron = palabra;
        if (motor == Motor::SQLite) // a '%' or '_' typed is searched as such
            patron.replace(u'%', QStringLiteral("\\%")).replace(u'_', QStringLiteral("\\_"));
        const QString literal = literalSql(QStringLiteral("%") + patron + u'%', motor);
        QStringList alguna;
        for (const QString &c : columnas)
            alguna << (motor == Motor::SQLite
                           ? QStringLiteral("zuvi_pliega(%1) LIKE %2 ESCAPE '\\'").arg(c, literal)
                           : QStringLiteral("%1 LIKE %2").arg(c, literal));
        condiciones << QLatin1Char('(') + alguna.join(QStringLiteral(" OR ")) + QLatin1Char(')');
    }
    return condiciones.join(QStringLiteral(" AND "));
}

QString condicionBusquedaArticulos(const QSqlDatabase &db, const QString &numero,
                                   const QStringList &columnas, const QString &busqueda)
{
    if (!hayBusquedaArticulos(db))
        return condicionBusqueda(db, columnas, busqueda);
    const BusquedaEnIndice b(busqueda);
    if (b.vacia())
        return {};
    return QStringLiteral("%1 IN (SELECT rowid FROM %2 WHERE %3)")
        .arg(numero, QLatin1String(kBusquedaArticulos), b.condicion(true));
}

} // namespace zuvi::anfitrion::datos
