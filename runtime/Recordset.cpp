#include "runtime/Recordset.h"

#include "runtime/Error.h"

#include <QDate>
#include <QDateTime>
#include <QSqlQuery>
#include <QSqlRecord>

#include <algorithm>
#include <cmath>

namespace zuvi {

Recordset::Recordset(QStringList columns, QList<QVariantList> rows)
    : m_columns(std::move(columns)), m_width(m_columns.size()), m_rowCount(rows.size())
{
    for (const QVariantList &row : std::as_const(rows))
        m_width = std::max(m_width, row.size());
    m_values.reserve(m_width * m_rowCount);
    for (QVariantList &row : rows) {
        const qsizetype n = row.size();
        for (QVariant &v : row)
            m_values.append(std::move(v));
        m_values.resize(m_values.size() + m_width - n); // a short row's missing fields
    }
}

std::shared_ptr<Recordset> Recordset::fromValues(QStringList columns, QVariantList values)
{
    auto r = std::make_shared<Recordset>();
    r->m_width = columns.size();
    r->m_rowCount = r->m_width ? values.size() / r->m_width : 0;
    r->m_columns = std::move(columns);
    r->m_values = std::move(values);
    return r;
}

std::shared_ptr<Recordset> Recordset::fromQuery(QSqlQuery &query)
{
    const QSqlRecord record = query.record();
    const int n = record.count();
    QStringList columns;
    columns.reserve(n);
    for (int i = 0; i < n; ++i)
        columns << record.fieldName(i);
    QVariantList values;
    while (query.next()) {
        for (int i = 0; i < n; ++i)
            values << query.value(i);
    }
    return fromValues(std::move(columns), std::move(values));
}

void Recordset::moveNext()
{
    if (atEnd())
        throw Error(QStringLiteral("No hay más registros: el conjunto ya está al final."));
    ++m_position;
}

bool Recordset::hasField(const QString &name) const
{
    return indexOf(name) >= 0;
}

namespace {

// Equal names regardless of case; plain ASCII is compared in place, anything
// else by Qt's case folding.
bool mismoNombre(const QString &a, const QString &b)
{
    if (a.size() != b.size())
        return false;
    const char16_t *x = reinterpret_cast<const char16_t *>(a.constData());
    const char16_t *y = reinterpret_cast<const char16_t *>(b.constData());
    for (qsizetype i = 0; i < a.size(); ++i) {
        char16_t c = x[i], d = y[i];
        if (c == d)
            continue;
        if (c >= 128 || d >= 128)
            return a.compare(b, Qt::CaseInsensitive) == 0;
        if (c >= u'A' && c <= u'Z')
            c = char16_t(c + 32);
        if (d >= u'A' && d <= u'Z')
            d = char16_t(d + 32);
        if (c != d)
            return false;
    }
    return true;
}

} // namespace

int Recordset::indexOf(const QString &name) const
{
    // A few columns, compared in place: cheaper than lowering the name for a
    // hash on every lookup. The first of two equal names wins, as in a join.
    for (qsizetype i = 0; i < m_columns.size(); ++i) {
        if (mismoNombre(m_columns.at(i), name))
            return int(i);
    }
    return -1;
}

int Recordset::requireIndex(const QString &name) const
{
    const int i = indexOf(name);
    if (i < 0)
        throw Error(QStringLiteral("No se encontró el campo \"%1\" en el conjunto de registros.")
                        .arg(name));
    return i;
}

const QVariant *Recordset::currentRow() const
{
    if (atEnd())
        throw Error(QStringLiteral(
            "No hay registro actual: el conjunto de registros está vacío o ya está al final."));
    return m_values.constData() + m_position * m_width;
}

QVariant Recordset::value(int ordinal) const
{
    const QVariant *row = currentRow();
    if (ordinal < 0 || ordinal >= m_width)
        throw Error(QStringLiteral("No existe el campo número %1 en el conjunto de registros.")
                        .arg(ordinal));
    return row[ordinal];
}

QVariant Recordset::value(const QString &name) const
{
    const int i = requireIndex(name);
    return currentRow()[i];
}

QString Recordset::text(const QString &name) const
{
    return variantToText(value(name));
}
QString Recordset::text(int ordinal) const
{
    return variantToText(value(ordinal));
}
double Recordset::number(const QString &name) const
{
    return variantToDouble(value(name));
}
double Recordset::number(int ordinal) const
{
    return variantToDouble(value(ordinal));
}

double variantToDouble(const QVariant &v)
{
    if (v.isNull() || !v.isValid())
        return 0.0;
    switch (v.typeId()) {
    // What a database hands back most: read in place, no conversion.
    case QMetaType::Double:
        return *static_cast<const double *>(v.constData());
    case QMetaType::LongLong:
        return double(*static_cast<const qlonglong *>(v.constData()));
    case QMetaType::Int:
        return *static_cast<const int *>(v.constData());
    case QMetaType::QString: {
        bool ok = false;
        const double d = v.toString().trimmed().toDouble(&ok);
        return ok ? d : 0.0;
    }
    case QMetaType::QByteArray: {
        bool ok = false;
        const double d = v.toByteArray().trimmed().toDouble(&ok);
        return ok ? d : 0.0;
    }
    case QMetaType::Bool:
        return v.toBool() ? -1.0 : 0.0;
    default: {
        bool ok = false;
        const double d = v.toDouble(&ok);
        return ok ? d : 0.0;
    }
    }
}

QString variantToText(const QVariant &v)
{
    if (v.isNull() || !v.isValid())
        return QString();
    switch (v.typeId()) {
    case QMetaType::QDate:
        return v.toDate().toString(QStringLiteral("yyyy-MM-dd"));
    case QMetaType::QDateTime:
        return v.toDateTime().toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"));
    case QMetaType::Double: {
        const double d = v.toDouble();
        // Fifteen digits, as a text box shows a number; at the very ends of
        // the range those round past the largest double, and the text would
        // no longer read back as a number: there all seventeen are kept.
        const QString texto = QString::number(d, 'g', 15);
        if (std::isfinite(d) && std::abs(d) > 1e308) {
            bool ok = false;
            texto.toDouble(&ok);
            if (!ok)
                return QString::number(d, 'g', 17);
        }
        return texto;
    }
    default:
        return v.toString();
    }
}

} // namespace zuvi
