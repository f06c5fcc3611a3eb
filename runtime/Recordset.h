#pragma once

#include "runtime/Export.h"

#include <QHash>
#include <QList>
#include <QStringList>
#include <QVariant>

#include <memory>

class QSqlQuery;

namespace zuvi {

// The rows of one SELECT, read in full when it is opened and positioned on the
// first row. Reading everything up front keeps the connection free for the
// statements a caller runs while it walks the rows (MariaDB's client cannot
// interleave an unread result with new statements).
//
// Fields are found by name without regard to case ("Estado" and "estado" are
// one column) or by ordinal. Reading a field while at the end raises an Error,
// as reading past the last row does.
class ZUVI_RUNTIME_EXPORT Recordset
{
public:
    Recordset() = default;
    Recordset(QStringList columns, QList<QVariantList> rows);
    // The rows one after another in one list, as many values each as there
    // are columns.
    static std::shared_ptr<Recordset> fromValues(QStringList columns, QVariantList values);

    // Runs nothing: reads the rows of an executed query.
    static std::shared_ptr<Recordset> fromQuery(QSqlQuery &query);

    bool atEnd() const { return m_position >= m_rowCount; }
    void moveNext();
    void moveFirst() { m_position = 0; }

    int rowCount() const { return int(m_rowCount); }
    int position() const { return int(m_position); }
    int fieldCount() const { return int(m_columns.size()); }
    const QStringList &fieldNames() const { return m_columns; }
    bool hasField(const QString &name) const;
    int indexOf(const QString &name) const; // -1 when there is no such column

    QVariant value(int ordinal) const;
    QVariant value(const QString &name) const;

    // Null-safe reads: a null field gives the empty text, 0 or false.
    QString text(const QString &name) const;
    QString text(int ordinal) const;
    double number(const QString &name) const;
    double number(int ordinal) const;
    bool isNull(const QString &name) const { return value(name).isNull(); }

private:
    const QVariant *currentRow() const;
    int requireIndex(const QString &name) const;

    QStringList m_columns;
    // The values row after row, m_width of them a row.
    QVariantList m_values;
    qsizetype m_width = 0;
    qsizetype m_rowCount = 0;
    qsizetype m_position = 0;
};

using RecordsetPtr = std::shared_ptr<Recordset>;

// Converts a field value to a number the way the host's conversions do: null
// and empty text are 0, text is read in the C locale, anything unreadable is 0.
ZUVI_RUNTIME_EXPORT double variantToDouble(const QVariant &v);
ZUVI_RUNTIME_EXPORT QString variantToText(const QVariant &v);

} // namespace zuvi
