#include "host/servicios/Catalogos.h"

#include "host/sql/Sql.h"
#include "runtime/Error.h"
#include "runtime/Recordset.h"

#include <QRegularExpression>

namespace zuvi::anfitrion {

namespace {

QString l1(const char *texto)
{
    return QString::fromUtf8(texto);
}

QStringList lista(std::initializer_list<const char *> textos)
{
    QStringList l;
    for (const char *t : textos)
        l << QString::fromUtf8(t);
    return l;
}

const std::vector<DefinicionCatalogo> &catalogos()
{
    static const std::vector<DefinicionCatalogo> todos = {
        {l1("Conceptos de Op al inventario"), l1("conceptos"), lista({"concepto", "descrip"}),
         lista({"Concepto", "Descripción"}), 0, l1("concepto"), lista({"concepto", "descrip"})},
        {l1("Articulos"), l1("prods"), lista({"articulo", "descrip", "unidad"}),
         lista({"Artículo", "Descripción", "Unidad"}), 0, l1("articulo"),
         lista(
             {"articulo", "descrip", "unidad", "costo_u", "ubicacion", "kit", "costo", "precio"})},
        {l1("Impuestos por porcentaje"), l1("impuestos"),
         lista({"impuesto", "descrip", "porcentaje"}),
         lista({"Clave", "Descripción", "Porcentaje"}), 2, l1("porcentaje, impuesto"),
         lista({"impuesto", "descrip", "porcentaje"})},
        {l1("Almacenes"), l1("almacen"), lista({"almacen", "nombre"}), lista({"Almacén", "Nombre"}),
         0, l1("almacen"), lista({"almacen", "nombre"})},
    };
    return todos;
}

} // namespace

const DefinicionCatalogo *definicionCatalogo(const QString &titulo)
{
    for (const DefinicionCatalogo &c : catalogos())
        if (c.titulo == titulo)
            return &c;
    return nullptr;
}

QStringList titulosCatalogos()
{
    QStringList titulos;
    for (const DefinicionCatalogo &c : catalogos())
        titulos << c.titulo;
    return titulos;
}

FiltroCatalogo leeFiltro(const DefinicionCatalogo &catalogo, const QString &texto)
{
    if (texto.trimmed().isEmpty())
        return {};
    // column, operator, then a number or a text between single quotes (a quote
    // inside doubled), and nothing after it.
    static const QRegularExpression comparacion(
        QStringLiteral("^\\s*([A-Za-z_][A-Za-z0-9_]*)\\s*(<>|!=|<=|>=|=|<|>)\\s*"
                       "(?:(-?[0-9]+(?:\\.[0-9]+)?)|'((?:[^']|'')*)')\\s*$"));
    const QRegularExpressionMatch m = comparacion.match(texto);
    const auto rechazo = [&](const QString &motivo) {
        return Error(QStringLiteral("El filtro \"%1\" no se puede aplicar al catálogo \"%2\": %3")
                         .arg(texto, catalogo.titulo, motivo));
    };
    if (!m.hasMatch())
        throw rechazo(QStringLiteral("solo se admite una comparación de una columna con un "
                                     "número o un texto entre comillas, como \"kit <> 0\"."));
    FiltroCatalogo filtro;
    for (const QString &c : catalogo.filtrables)
        if (c.compare(m.captured(1), Qt::CaseInsensitive) == 0)
            filtro.columna = c;
    if (filtro.columna.isEmpty())
        throw rechazo(QStringLiteral("la tabla %1 no tiene la columna \"%2\".")
                          .arg(catalogo.tabla, m.captured(1)));
    filtro.operador = m.captured(2) == QLatin1String("!=") ? QStringLiteral("<>") : m.captured(2);
    if (m.hasCaptured(3)) {
        const QString numero = m.captured(3);
        if (numero.contains(QLatin1Char('.')))
            filtro.valor = numero.toDouble();
        else
            filtro.valor = numero.toLongLong();
    } else {
        filtro.valor = m.captured(4).replace(QStringLiteral("''"), QStringLiteral("'"));
    }
    return filtro;
}

QString formaDeBusqueda(const QString &texto)
{
    const QString descompuesto = texto.normalized(QString::NormalizationForm_D);
    QString forma;
    forma.reserve(descompuesto.size());
    for (const QChar c : descompuesto) {
        const QChar::Category cat = c.category();
        if (cat != QChar::Mark_NonSpacing && cat != QChar::Mark_SpacingCombining &&
            cat != QChar::Mark_Enclosing)
            forma.append(c);
    }
    return forma.toCaseFolded();
}

FilasCatalogo FilasCatalogo::lee(const DefinicionCatalogo &catalogo, const QString &filtro,
                                 const QSqlDatabase &conexion)
{
    const FiltroCatalogo f = leeFiltro(catalogo, filtro);
    QString sql =
        QStringLiteral("SELECT %1 FROM %2").arg(catalogo.columnas.join(u", "), catalogo.tabla);
    QVariantList valores;
    if (!f.columna.isEmpty()) {
        sql += QStringLiteral(" WHERE %1 %2 ?").arg(f.columna, f.operador);
        valores << f.valor;
    }
    sql += QStringLiteral(" ORDER BY ") + catalogo.orden;

    FilasCatalogo filas;
    const RecordsetPtr rs = consulta(conexion, sql, valores);
    for (; !rs->atEnd(); rs->moveNext()) {
        FilaCatalogo fila;
        for (int i = 0; i < catalogo.columnas.size(); ++i)
            fila.celdas << rs->text(i);
        fila.busqueda =
            formaDeBusqueda(fila.celdas.value(0) + QLatin1Char('\n') + fila.celdas.value(1));
        filas.m_filas.push_back(std::move(fila));
    }
    return filas;
}

std::vector<int> FilasCatalogo::busca(const QString &texto) const
{
    const QStringList palabras = formaDeBusqueda(texto).split(
        QRegularExpression(QStringLiteral("\\s+")), Qt::SkipEmptyParts);
    std::vector<int> posiciones;
    posiciones.reserve(m_filas.size());
    for (int i = 0; i < total(); ++i) {
        bool coincide = true;
        for (const QString &p : palabras)
            if (!m_filas[size_t(i)].busqueda.contains(p)) {
                coincide = false;
                break;
            }
        if (coincide)
            posiciones.push_back(i);
    }
    return posiciones;
}

} // namespace zuvi::anfitrion
