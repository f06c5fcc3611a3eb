// Values written into a statement text as the engine reads them back: what
// the trace shows for a statement with bound values.

#include "host/sql/Sql.h"

#include <QDate>
#include <QDateTime>
#include <QTime>

namespace zuvi::anfitrion {

QString literalSql(const QVariant &v, [[maybe_unused]] Motor motor)
{
    if (!v.isValid() || v.isNull())
        return QStringLiteral("NULL");
    const auto citado = [](const QString &t) { return QLatin1Char('\'') + t + QLatin1Char('\''); };
    switch (v.typeId()) {
    case QMetaType::Bool:
        return v.toBool() ? QStringLiteral("1") : QStringLiteral("0");
    case QMetaType::Double:
    case QMetaType::Float:
        return QString::number(v.toDouble(), 'g', 15);
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::UChar:
        return v.toString();
    case QMetaType::QDate:
        return citado(v.toDate().toString(QStringLiteral("yyyy-MM-dd")));
    case QMetaType::QTime:
        return citado(v.toTime().toString(QStringLiteral("hh:mm:ss")));
    case QMetaType::QDateTime:
        return citado(v.toDateTime().toString(QStringLiteral("yyyy-MM-dd hh:mm:ss")));
    default: {
        QString t = v.toString();
        t.replace(QLatin1Char('\''), QStringLiteral("''"));
        return citado(t);
    }
    }
}

QString textoConValores(const QString &sql, const QVariantList &valores, Motor motor)
{
    QString texto;
    texto.reserve(sql.size() + 16 * valores.size());
    qsizetype siguiente = 0;
    QChar comilla;
    for (const QChar c : sql) {
        if (!comilla.isNull()) {
            if (c == comilla)
                comilla = QChar();
        } else if (c == QLatin1Char('\'') || c == QLatin1Char('"')) {
            comilla = c;
        } else if (c == QLatin1Char('?') && siguiente < valores.size()) {
            texto += literalSql(valores.at(siguiente++), motor);
            continue;
        }
        texto += c;
    }
    return texto;
}

} // namespace zuvi::anfitrion
