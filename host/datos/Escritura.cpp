#include "host/datos/Importador.h"

#include "runtime/Error.h"

namespace zuvi::anfitrion::datos {

namespace detalle {

// Inserts or updates one row with the file's columns given by their index.
void Importador::guarda(const QString &tabla, const QList<int> &columnas, const Fila &f,
                        bool existe)
{
    QStringList nombres, asignaciones, condicion;
    QVariantList valores, claves;
    for (int i : columnas) {
        const Columna *c = m_columnas.at(i);
        if (c->clave || !f.valores.at(i).isNull())
            nombres << c->nombre;
        if (c->clave) {
            condicion << c->nombre + QStringLiteral(" = ?");
            claves << f.valores.at(i);
        } else if (!f.valores.at(i).isNull()) {
            asignaciones << c->nombre + QStringLiteral(" = ?");
            valores << f.valores.at(i);
        }
    }
    try {
        if (!existe) {
            ejecutaAccion(m_db,
                          QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)")
                              .arg(tabla, nombres.join(u','),
                                   QStringList(nombres.size(), QStringLiteral("?")).join(u',')),
                          claves + valores); // the keys come first among the names
            ++m_r.insertadas;
        } else {
            if (!asignaciones.isEmpty())
                ejecutaAccion(m_db,
                              QStringLiteral("UPDATE %1 SET %2 WHERE %3")
                                  .arg(tabla, asignaciones.join(u','),
                                       condicion.join(QStringLiteral(" AND "))),
                              valores + claves);
            ++m_r.actualizadas;
        }
    } catch (const Error &e) {
        rechaza(f.linea, -1, e.description());
    }
}

void Importador::escribe()
{
    if (m_kits) {
        escribeKits();
        return;
    }
    // Keys first, so the insert's values are the keys and then the rest.
    QList<int> columnas;
    for (int i = 0; i < m_columnas.size(); ++i)
        if (m_columnas.at(i)->clave)
            columnas << i;
    for (int i = 0; i < m_columnas.size(); ++i)
        if (!m_columnas.at(i)->clave)
            columnas << i;
    const qint64 total = qint64(m_filas.size());
    for (qint64 n = 0; n < total; ++n) {
        const Fila &f = m_filas[size_t(n)];
        guarda(m_cat.tabla, columnas, f, m_existentes.contains(f.clave));
        m_existentes.insert(f.clave);
        avanza(QStringLiteral("Escribiendo"), n + 1, total);
    }
}

// A kit's rows: its recipe header (the yield) once, then each component line.
void Importador::escribeKits()
{
    const int kit = indice(QStringLiteral("articulo"));
    const int minimo = indice(QStringLiteral("Minimo"));
    QList<int> linea;
    for (int i = 0; i < m_columnas.size(); ++i)
        if (m_columnas.at(i)->clave)
            linea << i;
    for (int i = 0; i < m_columnas.size(); ++i)
        if (!m_columnas.at(i)->clave && i != minimo)
            linea << i;
    QSet<QString> cabeceras = clavesDe(m_db, QStringLiteral("SELECT articulo FROM componen"));
    QSet<QString> hechos;
    const qint64 total = qint64(m_filas.size());
    for (qint64 n = 0; n < total; ++n) {
        const Fila &f = m_filas[size_t(n)];
        const QVariant k = f.valores.at(kit);
        if (!hechos.contains(normal(k))) {
            hechos.insert(normal(k));
            if (!cabeceras.contains(normal(k)))
                ejecutaAccion(
                    m_db, QStringLiteral("INSERT INTO componen (articulo, Minimo) VALUES (?, ?)"),
                    {k, minimo >= 0 && !f.valores.at(minimo).isNull() ? f.valores.at(minimo)
                                                                      : QVariant(1.0)});
            else if (minimo >= 0 && !f.valores.at(minimo).isNull())
                ejecutaAccion(m_db,
                              QStringLiteral("UPDATE componen SET Minimo = ? WHERE articulo = ?"),
                              {f.valores.at(minimo), k});
            ejecutaAccion(m_db, QStringLiteral("UPDATE prods SET kit = 1 WHERE articulo = ?"), {k});
        }
        guarda(QStringLiteral("comppart"), linea, f, m_existentes.contains(f.clave));
        m_existentes.insert(f.clave);
        avanza(QStringLiteral("Escribiendo"), n + 1, total);
    }
}

QSet<QString> Importador::alcanzables(const QHash<QString, QStringList> &grafo,
                                      const QString &desde) const
{
    QSet<QString> vistos;
    QStringList pendientes{desde};
    while (!pendientes.isEmpty()) {
        const QString a = pendientes.takeLast();
        if (vistos.contains(a))
            continue;
        vistos.insert(a);
        pendientes += grafo.value(a);
    }
    return vistos;
}

// What only the whole can tell: one base currency, no kit inside itself.
void Importador::revisaDespues()
{
    if (m_cat.nombre == QLatin1String("monedas")) {
        const RecordsetPtr r =
            consulta(m_db, QStringLiteral("SELECT COUNT(*) FROM monedas WHERE Base <> 0"));
        const int bases = int(r->number(0));
        if (bases != 1)
            rechaza(m_filas.empty() ? 1 : m_filas.back().linea, -1,
                    QStringLiteral("debe haber exactamente una moneda base y con el archivo "
                                   "quedarían %1")
                        .arg(bases));
    }
    if (!m_kits)
        return;
    QHash<QString, QStringList> grafo;
    for (RecordsetPtr r =
             consulta(m_db, QStringLiteral("SELECT articulo, Componente FROM comppart"));
         !r->atEnd(); r->moveNext())
        grafo[normal(r->value(0))] << normal(r->value(1));
    const int kit = indice(QStringLiteral("articulo"));
    const int componente = indice(QStringLiteral("Componente"));
    for (const Fila &f : m_filas) {
        const QString k = normal(f.valores.at(kit));
        const QString c = normal(f.valores.at(componente));
        if (k != c && alcanzables(grafo, c).contains(k))
            rechaza(f.linea, componente,
                    QStringLiteral("el componente \"%1\" contiene al kit \"%2\": el kit se "
                                   "contendría a sí mismo")
                        .arg(f.valores.at(componente).toString(), f.valores.at(kit).toString()));
    }
}

} // namespace detalle

namespace {

QString enTexto(const QVariant &v, Tipo tipo)
{
    if (v.isNull())
        return {};
    switch (tipo) {
    case Tipo::Real:
        return textoNumero(v.toDouble());
    case Tipo::Entero:
    case Tipo::Bandera:
        return QString::number(v.toLongLong());
    default:
        return v.toString();
    }
}

} // namespace

QByteArray exporta(const QSqlDatabase &db, const Catalogo &catalogo)
{
    QStringList nombres;
    for (const Columna &c : catalogo.columnas)
        nombres << c.nombre;
    const QString sql =
        catalogo.nombre == QLatin1String("kits")
            ? QStringLiteral("SELECT c.articulo, k.Minimo, c.Componente, c.Cantidad, c.Almacen "
                             "FROM comppart c LEFT JOIN componen k ON k.articulo = c.articulo "
                             "ORDER BY c.articulo, c.id")
            : QStringLiteral("SELECT %1 FROM %2 ORDER BY %3")
                  .arg(nombres.join(u','), catalogo.tabla, catalogo.orden);
    QByteArray salida = lineaCsv(nombres);
    for (RecordsetPtr r = consulta(db, sql); !r->atEnd(); r->moveNext()) {
        QStringList campos;
        for (int i = 0; i < catalogo.columnas.size(); ++i)
            campos << enTexto(r->value(i), catalogo.columnas.at(i).tipo);
        salida += lineaCsv(campos);
    }
    return salida;
}

QByteArray comoCsv(const QStringList &encabezado, const QList<QStringList> &filas)
{
    QByteArray salida = lineaCsv(encabezado);
    for (const QStringList &f : filas)
        salida += lineaCsv(f);
    return salida;
}

} // namespace zuvi::anfitrion::datos
