#include "app/catalogos/ModeloTabla.h"

#include "host/datos/Reglas.h"
#include "host/sql/Sql.h"

#include <QLocale>
#include <QSqlRecord>

namespace zuvi::app {

using namespace anfitrion::datos;

ModeloTabla::ModeloTabla(const Catalogo &catalogo, const QSqlDatabase &db, QObject *padre)
    : QSqlTableModel(padre, db), m_catalogo(catalogo)
{
    setTable(catalogo.tabla);
    setEditStrategy(QSqlTableModel::OnManualSubmit);
    setSort(record().indexOf(catalogo.columnas.first().nombre), Qt::AscendingOrder);
}

int ModeloTabla::indice(const QString &nombre) const
{
    for (int i = 0; i < columnCount(); ++i)
        if (record().fieldName(i).compare(nombre, Qt::CaseInsensitive) == 0)
            return i;
    return -1;
}

void ModeloTabla::filtra(const QString &busqueda, const QString &enlace, const QVariant &valor)
{
    QStringList condiciones;
    const QStringList columnas = m_catalogo.busqueda.split(u',');
    const QString c =
        m_catalogo.tabla == QLatin1String("prods")
            ? condicionBusquedaArticulos(database(), QStringLiteral("rowid"), columnas, busqueda)
            : condicionBusqueda(database(), columnas, busqueda);
    if (!c.isEmpty())
        condiciones << c;
    if (!enlace.isEmpty())
        condiciones << QStringLiteral("%1 = %2").arg(
            enlace, anfitrion::literalSql(valor, anfitrion::motorDe(database())));
    setFilter(condiciones.join(QStringLiteral(" AND ")));
    select();
}

QVariantMap ModeloTabla::valores(int fila) const
{
    QVariantMap m;
    const QSqlRecord r = record(fila);
    for (const Columna &c : m_catalogo.columnas)
        m.insert(c.nombre, r.value(c.nombre));
    return m;
}

bool ModeloTabla::select()
{
    if (m_catalogo.nombre == QLatin1String("kits"))
        m_kits = kitsConReceta(database());
    const bool ok = QSqlTableModel::select();
    for (int i = 0; i < columnCount(); ++i) {
        const QString nombre = record().fieldName(i);
        for (const Columna &c : m_catalogo.columnas)
            if (c.nombre.compare(nombre, Qt::CaseInsensitive) == 0)
                setHeaderData(i, Qt::Horizontal, c.etiqueta);
    }
    return ok;
}

QVariant ModeloTabla::data(const QModelIndex &i, int rol) const
{
    const QVariant v = QSqlTableModel::data(i, rol == Qt::TextAlignmentRole ? Qt::EditRole : rol);
    const Columna *c = m_catalogo.columna(record().fieldName(i.column()));
    if (!c)
        return v;
    const bool numero = c->tipo == Tipo::Real || c->tipo == Tipo::Entero;
    if (rol == Qt::TextAlignmentRole)
        return QVariant::fromValue(Qt::AlignVCenter | (numero ? Qt::AlignRight : Qt::AlignLeft));
    if (rol != Qt::DisplayRole)
        return v;
    if (c->tipo == Tipo::Bandera)
        return v.toInt() != 0 ? QStringLiteral("Sí") : QString();
    if (c->tipo == Tipo::Real && !v.isNull())
        return QLocale().toString(v.toDouble(), 'g', 12);
    // A component that is a kit itself: disassembly refuses such a kit.
    if (c->nombre == QLatin1String("Componente") && m_kits.contains(v.toString().toCaseFolded()))
        return v.toString() + QStringLiteral("  (subkit)");
    return v;
}

} // namespace zuvi::app
