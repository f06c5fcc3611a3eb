// The literal scanner: a statement text written with its values in becomes
// one text with '?' in their place and the values apart, so that the texts of
// many rows share one prepared statement. It reads the text once, character
// by character, and gives up (the text then runs as it is) on anything it
// does not fully understand.

#include "host/Anfitrion.h"
#include "host/Sql.h"

#include <QDate>
#include <QDateTime>
#include <QTime>
#include <QVarLengthArray>

namespace zuvi::anfitrion {

namespace {

// Where in the statement a literal stands: only in a condition, an assignment
// or a row of values may it become a bound value.
enum class Clausula { Otra, Condicion, Asignacion, Valores };

struct Nivel
{
    Clausula clausula = Clausula::Otra;
    bool patron = false; // after LIKE and its kin, until the next AND, OR or ','
};

bool esLetra(QChar c)
{
    return c.isLetter() || c == QLatin1Char('_');
}

bool esDeNombre(QChar c)
{
    return c.isLetterOrNumber() || c == QLatin1Char('_') || c == QLatin1Char('$');
}

bool esDigito(QChar c)
{
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

bool es(QStringView palabra, const char *clave)
{
    return palabra.compare(QLatin1String(clave), Qt::CaseInsensitive) == 0;
}

bool esPrimeraPalabra(QStringView p)
{
    return es(p, "SELECT") || es(p, "INSERT") || es(p, "UPDATE") || es(p, "DELETE") ||
           es(p, "REPLACE");
}

// How many significant digits a decimal literal carries.
int digitosSignificativos(QStringView numero)
{
    int n = 0;
    bool inicio = true;
    for (const QChar c : numero) {
        if (c == QLatin1Char('e') || c == QLatin1Char('E'))
            break;
        if (!esDigito(c))
            continue;
        if (inicio && c == QLatin1Char('0'))
            continue;
        inicio = false;
        ++n;
    }
    return n;
}

class Lector
{
public:
    Lector(const QString &sql, Motor motor) : m_sql(sql), m_motor(motor)
    {
        m_salida.reserve(sql.size());
        m_niveles.append(Nivel{});
    }

    bool lee()
    {
        const qsizetype n = m_sql.size();
        qsizetype i = 0;
        while (i < n) {
            const QChar c = m_sql.at(i);
            if (c.isSpace()) {
                m_blanco = true;
                ++i;
                continue;
            }
            if (m_blanco && !m_salida.isEmpty())
                m_salida += QLatin1Char(' ');
            m_blanco = false;
            const bool literalAntes = m_literalAntes;
            m_literalAntes = false;
            m_trasPunto = m_anterior == QLatin1Char('.');
            m_anterior = QChar();
            const bool tipo = m_tipo;
            m_tipo = false;
            if (c == QLatin1Char('\'')) {
                if (literalAntes || (i > 0 && esDeNombre(m_sql.at(i - 1))))
                    return false; // 'a' 'b', X'0A', N'texto', _utf8'texto'
                if (!texto(i))
                    return false;
                m_literalAntes = true;
            } else if (c == QLatin1Char('"') || c == QLatin1Char('`') ||
                       (c == QLatin1Char('[') && m_motor == Motor::SQLite)) {
                if (!entreComillas(i, c == QLatin1Char('[') ? QLatin1Char(']') : c))
                    return false;
            } else if (esDigito(c) ||
                       (c == QLatin1Char('.') && i + 1 < n && esDigito(m_sql.at(i + 1)))) {
                if (!numero(i))
                    return false;
            } else if (esLetra(c)) {
                if (!palabra(i))
                    return false;
            } else if (!signo(c, i, tipo)) {
                return false;
            }
        }
        return m_niveles.size() == 1;
    }

    QString m_salida;
    QVariantList m_valores;

private:
    bool subible() const
    {
        const Nivel &nivel = m_niveles.last();
        return nivel.clausula != Clausula::Otra && !nivel.patron && !m_noSubir;
    }

    void copia(qsizetype desde, qsizetype hasta)
    {
        m_salida += QStringView(m_sql).mid(desde, hasta - desde);
    }

    // A quoted text; its quote is written twice inside it.
    bool texto(qsizetype &i)
    {
        const qsizetype desde = i;
        QString valor;
        bool dobles = false;
        for (++i; i < m_sql.size(); ++i) {
            const QChar c = m_sql.at(i);
            if (c == QLatin1Char('\\') && m_motor == Motor::MariaDB)
                return false; // an escape the server reads its own way
            if (c == QLatin1Char('\'')) {
                if (i + 1 < m_sql.size() && m_sql.at(i + 1) == QLatin1Char('\'')) {
                    dobles = true;
                    ++i;
                    continue;
                }
                ++i;
                const QStringView dentro = QStringView(m_sql).mid(desde + 1, i - desde - 2);
                if (subible()) {
                    QString v = dentro.toString();
                    if (dobles)
                        v.replace(QStringLiteral("''"), QStringLiteral("'"));
                    m_valores.append(std::move(v));
                    m_salida += QLatin1Char('?');
                } else {
                    copia(desde, i);
                }
                m_noSubir = false;
                return true;
            }
        }
        return false; // not closed
    }

    bool entreComillas(qsizetype &i, QChar cierre)
    {
        const qsizetype desde = i;
        const qsizetype fin = m_sql.indexOf(cierre, i + 1);
        if (fin < 0)
            return false;
        i = fin + 1;
        copia(desde, i);
        return true;
    }

    bool numero(qsizetype &i)
    {
        const qsizetype desde = i;
        const qsizetype n = m_sql.size();
        if (m_sql.at(i) == QLatin1Char('0') && i + 1 < n &&
            (m_sql.at(i + 1) == QLatin1Char('x') || m_sql.at(i + 1) == QLatin1Char('X')))
            return false; // hexadecimal
        bool decimal = false;
        while (i < n && esDigito(m_sql.at(i)))
            ++i;
        if (i < n && m_sql.at(i) == QLatin1Char('.')) {
            decimal = true;
            ++i;
            while (i < n && esDigito(m_sql.at(i)))
                ++i;
        }
        if (i < n && (m_sql.at(i) == QLatin1Char('e') || m_sql.at(i) == QLatin1Char('E'))) {
            decimal = true;
            ++i;
            if (i < n && (m_sql.at(i) == QLatin1Char('+') || m_sql.at(i) == QLatin1Char('-')))
                ++i;
            if (i >= n || !esDigito(m_sql.at(i)))
                return false;
            while (i < n && esDigito(m_sql.at(i)))
                ++i;
        }
        if (i < n && (esDeNombre(m_sql.at(i)) || m_sql.at(i) == QLatin1Char('.')))
            return false; // 5abc, 1.2.3
        const QStringView texto = QStringView(m_sql).mid(desde, i - desde);
        QVariant valor;
        bool ok = false;
        if (!decimal) {
            const qint64 v = texto.toLongLong(&ok);
            if (ok)
                valor = v;
        } else if (m_motor == Motor::SQLite && digitosSignificativos(texto) <= 15) {
            // The server keeps decimal literals exact; only SQLite reads them
            // as the double a bound value is.
            const double v = texto.toDouble(&ok);
            if (ok)
                valor = v;
        }
        if (valor.isValid() && subible()) {
            m_valores.append(valor);
            m_salida += QLatin1Char('?');
        } else {
            copia(desde, i);
        }
        m_noSubir = false;
        return true;
    }

    bool palabra(qsizetype &i)
    {
        const qsizetype desde = i;
        while (i < m_sql.size() && esDeNombre(m_sql.at(i)))
            ++i;
        const QStringView p = QStringView(m_sql).mid(desde, i - desde);
        copia(desde, i);
        if (!m_primera) {
            m_primera = true;
            if (!esPrimeraPalabra(p))
                return false;
        }
        if (m_trasPunto)
            return true;
        Nivel &nivel = m_niveles.last();
        if (es(p, "WHERE")) {
            nivel = {Clausula::Condicion, false};
        } else if (es(p, "SET")) {
            nivel = {Clausula::Asignacion, false};
        } else if (es(p, "VALUES") || es(p, "VALUE")) {
            nivel = {Clausula::Valores, false};
        } else if (es(p, "SELECT") || es(p, "FROM") || es(p, "JOIN") || es(p, "ON") ||
                   es(p, "USING") || es(p, "INTO") || es(p, "UPDATE") || es(p, "GROUP") ||
                   es(p, "ORDER") || es(p, "HAVING") || es(p, "LIMIT") || es(p, "OFFSET") ||
                   es(p, "UNION") || es(p, "EXCEPT") || es(p, "INTERSECT") || es(p, "RETURNING") ||
                   es(p, "WINDOW") || es(p, "OVER") || es(p, "AS") || es(p, "PARTITION")) {
            // AS also ends a level inside CAST(x AS DECIMAL(10, 2)).
            nivel = {Clausula::Otra, false};
        } else if (es(p, "LIKE") || es(p, "GLOB") || es(p, "REGEXP") || es(p, "RLIKE") ||
                   es(p, "MATCH") || es(p, "ESCAPE")) {
            nivel.patron = true;
        } else if (es(p, "AND") || es(p, "OR") || es(p, "WHEN") || es(p, "THEN") || es(p, "ELSE") ||
                   es(p, "END")) {
            nivel.patron = false;
        } else if (es(p, "INTERVAL") || es(p, "DATE") || es(p, "TIME") || es(p, "TIMESTAMP") ||
                   es(p, "SEPARATOR")) {
            m_noSubir = true; // INTERVAL 5 DAY, DATE '2024-01-01'
            return true;
        } else if (es(p, "DECIMAL") || es(p, "DEC") || es(p, "NUMERIC") || es(p, "CHAR") ||
                   es(p, "VARCHAR") || es(p, "FLOAT") || es(p, "DOUBLE") || es(p, "BINARY")) {
            m_tipo = true; // the sizes of a type, as in CONVERT(x, DECIMAL(10, 2))
        }
        m_noSubir = false;
        return true;
    }

    bool signo(QChar c, qsizetype &i, bool trasTipo)
    {
        const QChar siguiente = i + 1 < m_sql.size() ? m_sql.at(i + 1) : QChar();
        if ((c == QLatin1Char('-') && siguiente == QLatin1Char('-')) ||
            (c == QLatin1Char('/') && siguiente == QLatin1Char('*')) || c == QLatin1Char('#'))
            return false; // a comment
        if (c == QLatin1Char(';') || c == QLatin1Char('?') || c == QLatin1Char(':') ||
            c == QLatin1Char('@') || c == QLatin1Char('$') || c == QLatin1Char('{') ||
            c == QLatin1Char('\\'))
            return false; // a second statement, a parameter, a variable
        if (c == QLatin1Char('(')) {
            const Nivel arriba = m_niveles.last();
            m_niveles.append(trasTipo ? Nivel{} : arriba);
        } else if (c == QLatin1Char(')')) {
            if (m_niveles.size() < 2)
                return false;
            m_niveles.removeLast();
        } else if (c == QLatin1Char(',')) {
            m_niveles.last().patron = false;
        }
        m_salida += c;
        m_anterior = c;
        if (c != QLatin1Char('.'))
            m_noSubir = false;
        ++i;
        return true;
    }

    const QString &m_sql;
    Motor m_motor;
    QVarLengthArray<Nivel, 8> m_niveles;
    QChar m_anterior;
    bool m_blanco = false;
    bool m_primera = false;
    bool m_literalAntes = false;
    bool m_noSubir = false;
    bool m_trasPunto = false;
    bool m_tipo = false;
};

} // namespace

QString literalSql(const QVariant &v, Motor motor)
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
        if (motor == Motor::MariaDB)
            t.replace(QLatin1Char('\\'), QStringLiteral("\\\\"));
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

SentenciaNormalizada normalizaSentencia(const QString &sql, Motor motor)
{
    Lector lector(sql, motor);
    SentenciaNormalizada r;
    if (!lector.lee())
        return r;
    r.texto = std::move(lector.m_salida);
    r.valores = std::move(lector.m_valores);
    r.entendida = true;
    return r;
}

} // namespace zuvi::anfitrion
