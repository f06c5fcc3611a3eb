#include "host/datos/Importacion.h"

#include "host/datos/Importador.h"

namespace zuvi::anfitrion::datos {

namespace detalle {

bool Importador::leeEncabezado(const ArchivoCsv &a)
{
    m_encabezado = a.encabezado;
    QStringList nombres;
    for (const Columna &c : m_cat.columnas)
        nombres << c.nombre;
    for (int i = 0; i < m_encabezado.size(); ++i) {
        const Columna *c = m_cat.columna(m_encabezado.at(i));
        if (!c)
            rechaza(a.lineaEncabezado, i,
                    QStringLiteral("%1 no tiene esa columna; las suyas son %2")
                        .arg(m_cat.titulo, nombres.join(u", ")));
        else if (m_columnas.contains(c))
            rechaza(a.lineaEncabezado, i, QStringLiteral("la columna viene dos veces"));
        m_columnas << c;
    }
    for (const Columna &c : m_cat.columnas)
        if (c.clave && !m_columnas.contains(&c))
            rechaza(a.lineaEncabezado, -1,
                    QStringLiteral("falta la columna %1 (%2), que identifica %3")
                        .arg(c.nombre, c.etiqueta, m_cat.singular));
    return m_r.rechazos.empty();
}

void Importador::revisa(const FilaCsv &f)
{
    Fila fila{f.linea, {}, {}};
    if (f.campos.size() > m_columnas.size())
        rechaza(f.linea, -1,
                QStringLiteral("la fila tiene %1 campos y el encabezado %2 columnas")
                    .arg(f.campos.size())
                    .arg(m_columnas.size()));
    QStringList clave;
    for (int i = 0; i < m_columnas.size(); ++i) {
        const Columna &c = *m_columnas.at(i);
        QVariant valor;
        const QString texto = i < f.campos.size() ? f.campos.at(i) : QString();
        const QString motivo = convierte(c, texto, m_motor, m_comaDecimal, valor);
        if (!motivo.isEmpty())
            rechaza(f.linea, i, QStringLiteral("%1 %2").arg(c.etiqueta, motivo));
        else if (!c.referencia.isEmpty() && !m_referidos[c.referencia].contains(normal(valor)))
            rechaza(f.linea, i,
                    QStringLiteral("no existe %1 \"%2\"")
                        .arg(catalogo(c.referencia)->singular, valor.toString()));
        fila.valores << valor;
    }
    for (const Columna &c : m_cat.columnas)
        if (c.clave)
            clave << normal(fila.valores.value(indice(c.nombre)));
    fila.clave = clave.join(u'\x1f');
    if (m_lineaDeClave.contains(fila.clave))
        rechaza(f.linea, -1,
                QStringLiteral("%1 \"%2\" ya viene en la línea %3")
                    .arg(m_cat.singular, clave.join(u' '))
                    .arg(m_lineaDeClave.value(fila.clave)));
    m_lineaDeClave.insert(fila.clave, f.linea);
    if (m_kits)
        revisaKit(fila, f.linea);
    m_filas.push_back(fila);
}

void Importador::revisaKit(const Fila &f, int linea)
{
    const int kit = indice(QStringLiteral("articulo"));
    const int componente = indice(QStringLiteral("Componente"));
    const int minimo = indice(QStringLiteral("Minimo"));
    const QString k = normal(f.valores.at(kit));
    if (k == normal(f.valores.at(componente)))
        rechaza(linea, componente, QStringLiteral("un kit no puede ser componente de sí mismo"));
    if (minimo < 0)
        return;
    const QVariant m = f.valores.at(minimo);
    if (m.isNull())
        return;
    if (m.toDouble() <= 0)
        rechaza(linea, minimo, QStringLiteral("el rendimiento del lote debe ser mayor que cero"));
    else if (m_minimoDeKit.contains(k) && m_minimoDeKit.value(k).toDouble() != m.toDouble())
        rechaza(linea, minimo,
                QStringLiteral("el kit ya trae otro rendimiento (%1) en la línea %2")
                    .arg(m_minimoDeKit.value(k).toString())
                    .arg(m_lineaDeKit.value(k)));
    if (!m_minimoDeKit.contains(k)) {
        m_minimoDeKit.insert(k, m);
        m_lineaDeKit.insert(k, linea);
    }
}

ResultadoImportacion Importador::corre(const QByteArray &bytes, bool simula)
{
    const ArchivoCsv a = leeCsv(bytes, [this](qint64 hecho, qint64 total) {
        if (m_avance)
            m_avance(QStringLiteral("Leyendo"), hecho, total);
    });
    m_r.separador = a.separador;
    m_r.utf8 = a.utf8;
    m_r.filas = int(a.filas.size());
    m_comaDecimal = a.comaDecimal;
    if (a.encabezado.isEmpty()) {
        rechaza(1, -1, QStringLiteral("el archivo está vacío: falta la fila de encabezado"));
        return m_r;
    }
    if (!leeEncabezado(a))
        return m_r;
    m_existentes = clavesCatalogo(m_db, m_cat.nombre);
    for (const Columna *c : std::as_const(m_columnas))
        if (!c->referencia.isEmpty() && !m_referidos.contains(c->referencia))
            m_referidos.insert(c->referencia, clavesCatalogo(m_db, c->referencia));
    const qint64 total = qint64(a.filas.size());
    for (qint64 i = 0; i < total; ++i) {
        revisa(a.filas[size_t(i)]);
        avanza(QStringLiteral("Revisando"), i + 1, total);
    }
    if (!m_r.rechazos.empty())
        return m_r;
    Transaccion transaccion(m_db);
    escribe();
    revisaDespues();
    if (m_r.rechazos.empty() && !simula) {
        transaccion.confirma();
        m_r.escrito = true;
    }
    return m_r;
}

} // namespace detalle

ResultadoImportacion importa(const QSqlDatabase &db, const Catalogo &catalogo,
                             const QByteArray &archivo, bool simula, const Avance &avance)
{
    detalle::Importador importador(db, catalogo, avance);
    return importador.corre(archivo, simula);
}

QString Rechazo::texto() const
{
    if (columna.isEmpty())
        return QStringLiteral("Línea %1: %2").arg(linea).arg(motivo);
    return QStringLiteral("Línea %1, columna %2: %3").arg(linea).arg(columna, motivo);
}

} // namespace zuvi::anfitrion::datos
