#include "host/datos/Tablas.h"

#include "host/datos/Csv.h"
#include "host/sql/Sql.h"

namespace zuvi::anfitrion::datos {

namespace {

Columna clave(const QString &nombre, Tipo tipo, int largo, const QString &etiqueta,
              const QString &referencia = {})
{
    return {nombre, tipo, largo, etiqueta, referencia, true, true};
}

Columna texto(const QString &nombre, int largo, const QString &etiqueta)
{
    return {nombre, Tipo::Texto, largo, etiqueta, {}, false, false};
}

Columna de(const QString &nombre, Tipo tipo, const QString &etiqueta,
           const QString &referencia = {}, bool obligatoria = false)
{
    return {nombre, tipo, 0, etiqueta, referencia, false, obligatoria};
}

QList<Catalogo> describe()
{
    const QString a = QStringLiteral("articulos");
    const QString al = QStringLiteral("almacenes");
    return {
        {a,
         "prods",
         "Artículos",
         "el artículo",
         {clave("articulo", Tipo::Clave, 30, "Artículo"), texto("descrip", 100, "Descripción"),
          texto("unidad", 10, "Unidad"), de("costo_u", Tipo::Real, "Costo unitario"),
          texto("ubicacion", 30, "Ubicación"), de("kit", Tipo::Bandera, "Kit"),
          de("costo", Tipo::Real, "Costo"), de("precio", Tipo::Real, "Precio")},
         "articulo",
         "articulo,descrip"},
        {"claves",
         "clavesadd",
         "Claves adicionales",
         "la clave adicional",
         {clave("clave", Tipo::Clave, 30, "Clave"),
          {"Articulo", Tipo::Clave, 30, "Artículo", a, false, true},
          texto("Dato1", 60, "Dato 1"),
          texto("Dato2", 60, "Dato 2"),
          texto("unidad", 10, "Unidad")},
         "clave",
         "clave,Articulo"},
        {"kits",
         "comppart",
         "Kits",
         "el componente del kit",
         {clave("articulo", Tipo::Clave, 30, "Kit", a), de("Minimo", Tipo::Real, "Rendimiento"),
          clave("Componente", Tipo::Clave, 30, "Componente", a),
          de("Cantidad", Tipo::Real, "Cantidad por lote", {}, true),
          de("Almacen", Tipo::Entero, "Almacén de origen", al, true)},
         "articulo,Componente",
         "articulo,Componente"},
        {al,
         "almacen",
         "Almacenes",
         "el almacén",
         {clave("almacen", Tipo::Entero, 0, "Almacén"), texto("nombre", 60, "Nombre")},
         "almacen",
         "almacen,nombre"},
        {"monedas",
         "monedas",
         "Monedas",
         "la moneda",
         {clave("moneda", Tipo::Clave, 10, "Moneda"), texto("nombre", 40, "Nombre"),
          de("Tc", Tipo::Real, "Tipo de cambio"), de("Base", Tipo::Bandera, "Moneda base")},
         "moneda",
         "moneda,nombre"},
        {"vendedores",
         "vends",
         "Vendedores",
         "el vendedor",
         {clave("vend", Tipo::Clave, 10, "Vendedor"), texto("Nombre", 60, "Nombre")},
         "vend",
         "vend,Nombre"},
        {"empleados",
         "empleados",
         "Empleados",
         "el empleado",
         {clave("empleado", Tipo::Clave, 20, "Empleado"), texto("nombre", 60, "Nombre")},
         "empleado",
         "empleado,nombre"},
        {"conceptos",
         "conceptos",
         "Conceptos",
         "el concepto",
         {clave("concepto", Tipo::Clave, 4, "Concepto"), texto("descrip", 60, "Descripción")},
         "concepto",
         "concepto,descrip"},
        {"impuestos",
         "impuestos",
         "Impuestos",
         "el impuesto",
         {clave("impuesto", Tipo::Clave, 10, "Impuesto"), texto("descrip", 60, "Descripción"),
          de("porcentaje", Tipo::Real, "Porcentaje")},
         "impuesto",
         "impuesto,descrip"},
    };
}

QString bandera(const QString &t, QVariant &valor)
{
    static const QStringList si = {"1", "s", "si", "sí", "x", "verdadero", "true"};
    static const QStringList no = {"", "0", "n", "no", "falso", "false"};
    const QString v = t.trimmed().toLower();
    if (v.isEmpty()) {
        valor = QVariant();
        return {};
    }
    if (si.contains(v) || no.contains(v)) {
        valor = si.contains(v) ? 1 : 0;
        return {};
    }
    return QStringLiteral("debe ser 1 o 0 (sí o no); dice \"%1\"").arg(t);
}

// Where a row is used: a query of distinct values and how to say it.
struct Uso
{
    const char *catalogo;
    const char *sql;
    const char *donde;
};

const Uso kUsos[] = {
    {"articulos", "SELECT DISTINCT op FROM oppart WHERE articulo = ? ORDER BY op",
     "en las órdenes de producción"},
    {"articulos", "SELECT DISTINCT articulo FROM comppart WHERE Componente = ? ORDER BY articulo",
     "como componente de los kits"},
    {"articulos", "SELECT DISTINCT Componente FROM comppart WHERE articulo = ? ORDER BY 1",
     "como kit, con los componentes"},
    {"articulos", "SELECT clave FROM clavesadd WHERE Articulo = ? ORDER BY clave",
     "con las claves adicionales"},
    {"articulos",
     "SELECT DISTINCT almacen FROM existencias WHERE articulo = ? AND cantidad <> 0 ORDER BY 1",
     "con existencia en los almacenes"},
    {"articulos", "SELECT DISTINCT almacen FROM movimientos WHERE articulo = ? ORDER BY 1",
     "con movimientos de inventario en los almacenes"},
    {"almacenes",
     "SELECT DISTINCT articulo FROM existencias WHERE almacen = ? AND cantidad <> 0 ORDER BY 1",
     "con existencia de los artículos"},
    {"almacenes", "SELECT DISTINCT articulo FROM comppart WHERE Almacen = ? ORDER BY 1",
     "como almacén de origen en los kits"},
    {"almacenes", "SELECT DISTINCT op FROM op WHERE almacen = ? ORDER BY 1",
     "como almacén de entrega de las órdenes"},
    {"almacenes", "SELECT estacion FROM estaciones WHERE almacen = ? ORDER BY 1",
     "como almacén de las estaciones"},
    {"empleados", "SELECT DISTINCT turno FROM turnoempleado WHERE empleado = ? ORDER BY 1",
     "en los turnos"},
    {"empleados", "SELECT DISTINCT turno FROM horarios WHERE Empleado = ? ORDER BY 1",
     "en los horarios de los turnos"},
    {"monedas", "SELECT moneda FROM monedas WHERE moneda = ? AND Base <> 0",
     "como moneda base (marque otra como base primero)"},
    {"conceptos", "SELECT DISTINCT articulo FROM movimientos WHERE concepto = ? ORDER BY 1",
     "en los movimientos de inventario de los artículos"},
};

} // namespace

QStringList Catalogo::claves() const
{
    QStringList l;
    for (const Columna &c : columnas)
        if (c.clave)
            l << c.nombre;
    return l;
}

const Columna *Catalogo::columna(const QString &buscada) const
{
    for (const Columna &c : columnas)
        if (c.nombre.compare(buscada.trimmed(), Qt::CaseInsensitive) == 0)
            return &c;
    return nullptr;
}

const QList<Catalogo> &catalogos()
{
    static const QList<Catalogo> l = describe();
    return l;
}

const Catalogo *catalogo(const QString &nombre)
{
    for (const Catalogo &c : catalogos())
        if (c.nombre.compare(nombre.trimmed(), Qt::CaseInsensitive) == 0)
            return &c;
    return nullptr;
}

QStringList nombresCatalogos()
{
    QStringList l;
    for (const Catalogo &c : catalogos())
        l << c.nombre;
    return l;
}

QString convierte(const Columna &c, const QString &t, Motor motor, bool comaDecimal,
                  QVariant &valor)
{
    const QString v = c.clave || c.tipo == Tipo::Clave ? t.trimmed() : t;
    if (c.obligatoria && v.trimmed().isEmpty())
        return QStringLiteral("no puede quedar vacío");
    switch (c.tipo) {
    case Tipo::Clave:
        if (v.contains(u'\''))
            return QStringLiteral("no puede llevar comillas (') en \"%1\"").arg(v);
        if (motor == Motor::MariaDB && v.contains(u'\\'))
            return QStringLiteral("no puede llevar barras invertidas (\\) en \"%1\"").arg(v);
        [[fallthrough]];
    case Tipo::Texto:
        if (c.largo > 0 && v.size() > c.largo)
            return QStringLiteral("tiene %1 caracteres y caben %2").arg(v.size()).arg(c.largo);
        valor = v;
        return {};
    case Tipo::Entero: {
        if (v.trimmed().isEmpty()) { // not given: the column keeps its value
            valor = QVariant();
            return {};
        }
        bool ok = false;
        const int n = v.trimmed().toInt(&ok);
        if (!ok)
            return QStringLiteral("debe ser un número entero; dice \"%1\"").arg(v);
        valor = n;
        return {};
    }
    case Tipo::Real: {
        if (v.trimmed().isEmpty()) {
            valor = QVariant();
            return {};
        }
        bool ok = false;
        const double n = numeroCsv(v, comaDecimal, &ok);
        if (!ok)
            return QStringLiteral("debe ser un número; dice \"%1\"").arg(v);
        valor = n;
        return {};
    }
    case Tipo::Bandera:
        return bandera(v, valor);
    }
    return {};
}

bool existe(const QSqlDatabase &db, const QString &nombre, const QVariant &valor)
{
    const Catalogo *c = catalogo(nombre);
    if (!c)
        return false;
    const RecordsetPtr r = consulta(
        db,
        QStringLiteral("SELECT COUNT(*) FROM %1 WHERE %2 = ?")
            .arg(c->tabla == QLatin1String("comppart") ? QStringLiteral("componen") : c->tabla,
                 c->claves().first()),
        {valor});
    return !r->atEnd() && r->number(0) > 0;
}

QStringList usos(const QSqlDatabase &db, const QString &nombre, const QVariant &clave)
{
    QStringList l;
    for (const Uso &u : kUsos) {
        if (nombre != QLatin1String(u.catalogo))
            continue;
        QStringList valores;
        int total = 0;
        for (RecordsetPtr r = consulta(db, QLatin1String(u.sql), {clave}); !r->atEnd();
             r->moveNext()) {
            if (++total <= 5)
                valores << r->text(0);
        }
        if (total == 0)
            continue;
        if (total > 5)
            valores << QStringLiteral("y %1 más").arg(total - 5);
        l << QStringLiteral("%1 %2").arg(QString::fromUtf8(u.donde), valores.join(u", "));
    }
    return l;
}

} // namespace zuvi::anfitrion::datos
