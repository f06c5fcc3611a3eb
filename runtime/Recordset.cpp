#include "runtime/Recordset.h"

#include "runtime/Error.h"

#include <QDate>
#include <QDateTime>
#include <QSqlQuery>
#include <QSqlRecord>

namespace zuvi {

Recordset::Recordset(QStringList columns, QList<QVariantList> rows)
    : m_columns(std::move(columns)), m_rows(std::move(rows))
{
    for (int i = 0; i < m_columns.size(); ++i) {
        const QString key = m_columns.at(i).toLower();
        if (!m_index.contains(key)) // the first of two equal names wins, as in a join
            m_index.insert(key, i);
    }
}

std::shared_ptr<Recordset> Recordset::fromQuery(QSqlQuery &query)
{
    const QSqlRecord record = query.record();
    const int n = record.count();
    QStringList columns;
    columns.reserve(n);
    for (int i = 0; i < n; ++i)
        columns << record.fieldName(i);
    QList<QVariantList> rows;
    while (query.next()) {
        QVariantList row;
        row.reserve(n);
        for (int i = 0; i < n; ++i)
            row << query.value(i);
        rows << std::move(row);
    }
    return std::make_shared<Recordset>(std::move(columns), std::move(rows));
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

int Recordset::indexOf(const QString &name) const
{
    return m_index.value(name.toLower(), -1);
}

int Recordset::requireIndex(const QString &name) const
{
    const int i = indexOf(name);
    if (i < 0)
        throw Error(QStringLiteral("No se encontró el campo \"%1\" en el conjunto de registros.")
                        .arg(name));
    return i;
}

const QVariantList &Recordset::currentRow() const
{
    if (atEnd())
        throw Error(QStringLiteral(
            "No hay registro actual: el conjunto de registros está vacío o ya está al final."));
    return m_rows.at(m_position);
}

QVariant Recordset::value(int ordinal) const
{
    const QVariantList &row = currentRow();
    if (ordinal < 0 || ordinal >= row.size())
        throw Error(QStringLiteral("No existe el campo número %1 en el conjunto de registros.")
                        .arg(ordinal));
    return row.at(ordinal);
}

QVariant Recordset::value(const QString &name) const
{
    const int i = requireIndex(name);
    return currentRow().at(i);
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
        return QString::number(d, 'g', 15);
    }
    default:
        return v.toString();
    }
}

} // namespace zuvi
