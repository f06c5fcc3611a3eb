#include "app/ModeloOrdenes.h"

#include "host/sql/Sql.h"
#include "runtime/Error.h"

#include <QRegularExpression>
#include <QSqlQuery>

#include <algorithm>

namespace zuvi::app {

namespace {

// Who holds a busy order, the one place that says so: the station's claim,
// or, for a mark with no claim, whoever last saved the order. Both NULL when
// it is free.
constexpr const char *kOcupadaPor =
    "CASE WHEN op.ocupado <> 0 THEN COALESCE(op.usuario, '') END, "
    "(SELECT reclamos.usuario FROM reclamos WHERE reclamos.op = op.op), "
    "(SELECT reclamos.estacion FROM reclamos WHERE reclamos.op = op.op)";

// The line count comes from the index on oppart (op), one order at a time.
QString seleccion()
{
    return QStringLiteral("SELECT op.op, op.estado, op.f_emision, op.almacen, op.observ, "
                          "op.cerrado, (SELECT COUNT(*) FROM oppart WHERE oppart.op = op.op), "
                          "%1 FROM op")
        .arg(QLatin1String(kOcupadaPor));
}

QString textoFecha(const QVariant &v)
{
    const QDate d = v.toDate();
    return d.isValid() ? d.toString(QStringLiteral("dd/MM/yyyy")) : v.toString();
}

// The filter as conditions with '?' and their values.
QStringList condiciones(const FiltroOrdenes &f, QVariantList &valores)
{
    QStringList c;
    if (f.estado == FiltroOrdenes::Estado::SinCerrar)
        c << QStringLiteral("op.cerrado = 0");
    else if (f.estado == FiltroOrdenes::Estado::Cerradas)
        c << QStringLiteral("op.cerrado <> 0");
    if (f.desde.isValid()) {
        c << QStringLiteral("op.f_emision >= ?");
        valores << f.desde;
    }
    if (f.hasta.isValid()) {
        c << QStringLiteral("op.f_emision <= ?");
        valores << f.hasta;
    }
    static const QRegularExpression espacios(QStringLiteral("\\s+"));
    const QStringList palabras = f.texto.trimmed().split(espacios, Qt::SkipEmptyParts);
    bool esNumero = false;
    const int numero = palabras.size() == 1 ? palabras.first().toInt(&esNumero) : 0;
    if (esNumero) {
        c << QStringLiteral("(op.op = ? OR op.observ LIKE ?)");
        valores << numero << QStringLiteral("%%1%").arg(palabras.first());
    } else {
        for (const QString &p : palabras) {
            c << QStringLiteral("op.observ LIKE ?");
            valores << QStringLiteral("%%1%").arg(p);
        }
    }
    return c;
}

} // namespace

ModeloOrdenes::ModeloOrdenes(QSqlDatabase db, QObject *padre)
    : QAbstractTableModel(padre), m_db(std::move(db))
{
}

std::vector<ModeloOrdenes::Fila> ModeloOrdenes::lee(const QString &condicionExtra,
                                                    const QVariantList &valoresExtra,
                                                    int limite) const
{
    QVariantList valores;
    QStringList c = condiciones(m_filtro, valores);
    if (!condicionExtra.isEmpty()) {
        c << condicionExtra;
        valores += valoresExtra;
    }
    QString sql = seleccion();
    if (!c.isEmpty())
        sql += QStringLiteral(" WHERE ") + c.join(QStringLiteral(" AND "));
    const QString sentido = m_filtro.ascendente ? QString() : QStringLiteral(" DESC");
    sql += m_filtro.porEmision ? QStringLiteral(" ORDER BY op.f_emision%1, op.op%1").arg(sentido)
                               : QStringLiteral(" ORDER BY op.op") + sentido;
    if (limite > 0)
        sql += QStringLiteral(" LIMIT %1").arg(limite);
    QSqlQuery q = anfitrion::ejecutaConValores(m_db, sql, valores);
    std::vector<Fila> filas;
    while (q.next()) {
        Fila f;
        f.op = q.value(0).toInt();
        f.estado = q.value(1).toString().trimmed();
        f.emision = textoFecha(q.value(2));
        if (!q.value(2).isNull())
            f.fecha = q.value(2).typeId() == QMetaType::QDate
                          ? q.value(2).toDate().toString(Qt::ISODate)
                          : q.value(2).toString();
        f.almacen = q.value(3);
        f.observ = q.value(4).toString().trimmed();
        f.cerrado = q.value(5).toInt() != 0;
        f.partidas = q.value(6).toLongLong();
        if (!q.value(8).isNull()) {
            f.ocupadaNula = false;
            f.ocupada = QStringLiteral("%1 (estación %2)")
                            .arg(q.value(8).toString().trimmed(), q.value(9).toString().trimmed());
        } else {
            f.ocupadaNula = q.value(7).isNull();
            f.ocupada = q.value(7).toString().trimmed();
        }
        filas.push_back(std::move(f));
    }
    return filas;
}

void ModeloOrdenes::anotaMayor()
{
    QSqlQuery q = anfitrion::ejecuta(m_db, QStringLiteral("SELECT MAX(op) FROM op"));
    m_mayor = q.next() ? q.value(0).toInt() : 0;
}

void ModeloOrdenes::ponFiltro(const FiltroOrdenes &filtro)
{
    m_filtro = filtro;
    leeDesdeElPrincipio(kPagina);
}

void ModeloOrdenes::recarga()
{
    leeDesdeElPrincipio(std::max(kPagina, int(m_filas.size())));
}

// The first rows of the list again, as many as asked for.
void ModeloOrdenes::leeDesdeElPrincipio(int cuantas)
{
    std::vector<Fila> filas = lee({}, {}, cuantas + 1);
    m_hayMas = filas.size() > size_t(cuantas);
    if (m_hayMas)
        filas.pop_back();
    beginResetModel();
    m_filas = std::move(filas);
    endResetModel();
    anotaMayor();
}

bool ModeloOrdenes::antesQue(const Fila &a, const Fila &b) const
{
    // A missing date goes below every date, as both engines sort it.
    if (m_filtro.porEmision && a.fecha != b.fecha) {
        const bool menor =
            a.fecha.isNull() || (!b.fecha.isNull() && a.fecha.toString() < b.fecha.toString());
        return m_filtro.ascendente == menor;
    }
    return m_filtro.ascendente ? a.op < b.op : a.op > b.op;
}

void ModeloOrdenes::refrescaOrden(qint32 op)
{
    std::vector<Fila> leida = lee(QStringLiteral("op.op = ?"), {op}, 1);
    const int fila = filaDe(op);
    if (fila >= 0 && leida.empty()) {
        beginRemoveRows({}, fila, fila);
        m_filas.erase(m_filas.begin() + fila);
        endRemoveRows();
    } else if (fila >= 0) {
        m_filas[size_t(fila)] = std::move(leida.front());
        emit dataChanged(index(fila, 0), index(fila, Columnas - 1));
    } else if (!leida.empty()) {
        // Where it belongs, when that is among the rows loaded (past the last
        // one it comes with the next page).
        const auto donde = std::find_if(m_filas.begin(), m_filas.end(),
                                        [&](const Fila &f) { return antesQue(leida.front(), f); });
        if (donde == m_filas.end() && m_hayMas)
            return;
        const int n = int(donde - m_filas.begin());
        beginInsertRows({}, n, n);
        m_filas.insert(donde, std::move(leida.front()));
        endInsertRows();
    }
}

void ModeloOrdenes::refrescaNuevas()
{
    std::vector<Fila> nuevas = lee(QStringLiteral("op.op > ?"), {m_mayor}, kPagina);
    anotaMayor();
    for (const Fila &f : nuevas)
        if (filaDe(f.op) < 0)
            refrescaOrden(f.op);
}

int ModeloOrdenes::filaDe(qint32 op) const
{
    for (size_t i = 0; i < m_filas.size(); ++i)
        if (m_filas[i].op == op)
            return int(i);
    return -1;
}

qint32 ModeloOrdenes::orden(int fila) const
{
    return fila >= 0 && fila < rowCount() ? m_filas[size_t(fila)].op : 0;
}

QString ModeloOrdenes::ocupadaPor(int fila) const
{
    return data(index(fila, ColOcupada)).toString();
}

int ModeloOrdenes::rowCount(const QModelIndex &padre) const
{
    return padre.isValid() ? 0 : int(m_filas.size());
}

int ModeloOrdenes::columnCount(const QModelIndex &padre) const
{
    return padre.isValid() ? 0 : Columnas;
}

QVariant ModeloOrdenes::data(const QModelIndex &indice, int rol) const
{
    if (!indice.isValid() || indice.row() >= rowCount())
        return {};
    const Fila &f = m_filas[size_t(indice.row())];
    const int c = indice.column();
    if (rol == Qt::TextAlignmentRole)
        return c == ColOp || c == ColAlmacen || c == ColPartidas
                   ? QVariant(Qt::AlignRight | Qt::AlignVCenter)
                   : QVariant();
    if (rol != Qt::DisplayRole)
        return {};
    switch (c) {
    case ColOp:
        return QString::number(f.op);
    case ColEstado:
        return f.estado;
    case ColEmision:
        return f.emision;
    case ColAlmacen:
        return f.almacen.toString();
    case ColObserv:
        return f.observ;
    case ColCerrado:
        return f.cerrado ? QStringLiteral("Sí") : QString();
    case ColPartidas:
        return QString::number(f.partidas);
    case ColOcupada:
        return f.ocupadaNula         ? QString()
               : f.ocupada.isEmpty() ? QStringLiteral("(sin usuario)")
                                     : f.ocupada;
    default:
        return {};
    }
}

QVariant ModeloOrdenes::headerData(int seccion, Qt::Orientation orientacion, int rol) const
{
    static const char *const kTitulos[] = {"Orden",         "Estado",  "Emisión",  "Almacén",
                                           "Observaciones", "Cerrada", "Partidas", "Ocupada por"};
    if (orientacion == Qt::Horizontal && rol == Qt::DisplayRole && seccion >= 0 &&
        seccion < Columnas)
        return QString::fromUtf8(kTitulos[seccion]);
    return QAbstractTableModel::headerData(seccion, orientacion, rol);
}

bool ModeloOrdenes::canFetchMore(const QModelIndex &padre) const
{
    return !padre.isValid() && m_hayMas;
}

void ModeloOrdenes::fetchMore(const QModelIndex &padre)
{
    if (padre.isValid() || !m_hayMas || m_filas.empty())
        return;
    // The view asks from its event loop: a failed read ends the list there.
    try {
        sigue();
    } catch (...) {
        m_hayMas = false;
        emit falloLectura(describeCurrentException());
    }
}

void ModeloOrdenes::sigue()
{
    // The next page after the last row loaded: each condition below lets the
    // index go straight there, however deep the list has been scrolled. By
    // date, the rows after it are those of its date and a higher (lower)
    // number, then those of a later (earlier) date; the orders without a date
    // sort below every date, so they come first going up and last going
    // down, read by a condition of their own.
    const Fila &ultima = m_filas.back();
    const bool sube = m_filtro.ascendente;
    const QString mas = sube ? QStringLiteral(">") : QStringLiteral("<");
    std::vector<std::pair<QString, QVariantList>> tramos;
    if (!m_filtro.porEmision) {
        tramos.push_back({QStringLiteral("op.op %1 ?").arg(mas), {ultima.op}});
    } else if (ultima.fecha.isNull()) {
        tramos.push_back(
            {QStringLiteral("op.f_emision IS NULL AND op.op %1 ?").arg(mas), {ultima.op}});
        if (sube)
            tramos.push_back({QStringLiteral("op.f_emision IS NOT NULL"), {}});
    } else {
        tramos.push_back(
            {QStringLiteral("op.f_emision %1= ? AND (op.f_emision %1 ? OR op.op %1 ?)").arg(mas),
             {ultima.fecha, ultima.fecha, ultima.op}});
        if (!sube)
            tramos.push_back({QStringLiteral("op.f_emision IS NULL"), {}});
    }
    std::vector<Fila> filas;
    for (const auto &[condicion, valores] : tramos) {
        std::vector<Fila> leidas = lee(condicion, valores, kPagina + 1 - int(filas.size()));
        std::move(leidas.begin(), leidas.end(), std::back_inserter(filas));
        if (filas.size() > size_t(kPagina))
            break;
    }
    m_hayMas = filas.size() > size_t(kPagina);
    if (m_hayMas)
        filas.pop_back();
    if (filas.empty())
        return;
    const int n = rowCount();
    beginInsertRows({}, n, n + int(filas.size()) - 1);
    std::move(filas.begin(), filas.end(), std::back_inserter(m_filas));
    endInsertRows();
}

} // namespace zuvi::app
