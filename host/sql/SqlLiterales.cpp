// The literal scanner: a statement text written with its values in becomes
// one text with '?' in their place and the values apart, so that the texts of
// many rows share one prepared statement. It reads the text once, character
// by character, and gives up (the text then runs as it is) on anything it
// does not fully understand.

#include "host/sql/Sql.h"
#include "host/sql/SqlCaracteres.h"
#include "host/sql/SqlInterno.h"

#include <QVarLengthArray>

namespace zuvi::anfitrion {

using interno::Clave;
using interno::digitosSignificativos;
using interno::esBlanco;
using interno::esDeNombre;
using interno::esDigito;
using interno::esLetra;
using interno::Literal;
using interno::Literales;
using interno::Normalizacion;
using interno::Palabra;
using interno::palabraClave;

namespace {

// Where in the statement a literal stands: only in a condition, an assignment
// or a row of values may it become a bound value.
enum class Clausula { Otra, Condicion, Asignacion, Valores };

struct Nivel
{
    Clausula clausula = Clausula::Otra;
    bool patron = false; // after LIKE and its kin, until the next AND, OR or ','
};

// The scan itself: one pass over the UTF-16 text, the output written into
// the caller's buffer and the literals kept as views of the text.
class Lector
{
public:
    Lector(const QString &sql, Motor motor, Normalizacion &salida)
        : m_s(reinterpret_cast<const char16_t *>(sql.constData())), m_n(sql.size()), m_motor(motor),
          m_salida(salida.texto), m_literales(salida.literales)
    {
        m_salida.clear();
        m_literales.clear();
        m_niveles.append(Nivel{});
    }

    bool lee()
    {
        const qsizetype n = m_n;
        qsizetype i = 0;
        qsizetype blancos = -1; // where the blanks before this token start
        while (i < n) {
            const char16_t c = m_s[i];
            if (esBlanco(c)) {
                if (blancos < 0)
                    blancos = i;
                ++i;
                continue;
            }
            if (blancos >= 0 && m_escrito) {
                // One blank stays as it is; a run of them becomes one.
                if (i - blancos == 1 && m_s[blancos] == u' ')
                    copia(blancos, i);
                else
                    escribe(u' ');
            }
            blancos = -1;
            const bool literalAntes = m_literalAntes;
            m_literalAntes = false;
            m_trasPunto = m_anterior == u'.';
            m_anterior = 0;
            const bool tipo = m_tipo;
            m_tipo = false;
            if (c == u'\'') {
                if (literalAntes || (i > 0 && esDeNombre(m_s[i - 1])))
                    return false; // 'a' 'b', X'0A', N'texto', _utf8'texto'
                if (!texto(i))
                    return false;
                m_literalAntes = true;
            } else if (c == u'"' || c == u'`' || (c == u'[' && m_motor == Motor::SQLite)) {
                if (!entreComillas(i, c == u'[' ? u']' : c))
                    return false;
            } else if (esDigito(c) || (c == u'.' && i + 1 < n && esDigito(m_s[i + 1]))) {
                if (!numero(i))
                    return false;
            } else if (esLetra(c)) {
                if (!palabra(i))
                    return false;
            } else if (!signo(c, i, tipo)) {
                return false;
            }
        }
        vuelca();
        return m_niveles.size() == 1;
    }

private:
    bool subible() const
    {
        const Nivel &nivel = m_niveles.last();
        return nivel.clausula != Clausula::Otra && !nivel.patron && !m_noSubir;
    }

    // What is copied as it is accumulates as one run of the original text and
    // is written when something else must be written, or at the end.
    void copia(qsizetype desde, qsizetype hasta)
    {
        m_escrito = true;
        if (m_desde >= 0 && m_hasta == desde) {
            m_hasta = hasta;
            return;
        }
        vuelca();
        m_desde = desde;
        m_hasta = hasta;
    }
    void vuelca()
    {
        if (m_desde < 0)
            return;
        m_salida.append(m_s + m_desde, size_t(m_hasta - m_desde));
        m_desde = -1;
    }
    void escribe(char16_t c)
    {
        vuelca();
        m_salida.push_back(c);
        m_escrito = true;
    }
    void sube(const Literal &l)
    {
        m_literales.append(l);
        escribe(u'?');
    }

    // A quoted text; its quote is written twice inside it.
    bool texto(qsizetype &i)
    {
        const qsizetype desde = i;
        bool dobles = false;
        for (++i; i < m_n; ++i) {
            const char16_t c = m_s[i];
            if (c == u'\\' && m_motor == Motor::MariaDB)
                return false; // an escape the server reads its own way
            if (c != u'\'')
                continue;
            if (i + 1 < m_n && m_s[i + 1] == u'\'') {
                dobles = true;
                ++i;
                continue;
            }
            ++i;
            if (subible()) {
                Literal l;
                l.tipo = Literal::Tipo::Texto;
                l.comillaDoble = dobles;
                l.texto = QStringView(m_s + desde + 1, i - desde - 2);
                l.desde = desde;
                l.hasta = i;
                sube(l);
            } else {
                copia(desde, i);
            }
            m_noSubir = false;
            return true;
        }
        return false; // not closed
    }

    bool entreComillas(qsizetype &i, char16_t cierre)
    {
        const qsizetype desde = i;
        qsizetype fin = i + 1;
        while (fin < m_n && m_s[fin] != cierre)
            ++fin;
        if (fin >= m_n)
            return false;
        i = fin + 1;
        copia(desde, i);
        return true;
    }

    bool numero(qsizetype &i)
    {
        const qsizetype desde = i;
        const qsizetype n = m_n;
        if (m_s[i] == u'0' && i + 1 < n && (m_s[i + 1] == u'x' || m_s[i + 1] == u'X'))
            return false; // hexadecimal
        bool decimal = false;
        qint64 entero = 0;
        while (i < n && esDigito(m_s[i])) {
            if (i - desde < 18) // beyond that the value is not kept (see largo)
                entero = entero * 10 + (m_s[i] - u'0');
            ++i;
        }
        const bool largo = i - desde > 18; // more than a 64-bit integer surely holds
        if (i < n && m_s[i] == u'.') {
            decimal = true;
            ++i;
            while (i < n && esDigito(m_s[i]))
                ++i;
        }
        if (i < n && (m_s[i] == u'e' || m_s[i] == u'E')) {
            decimal = true;
            ++i;
            if (i < n && (m_s[i] == u'+' || m_s[i] == u'-'))
                ++i;
            if (i >= n || !esDigito(m_s[i]))
                return false;
            while (i < n && esDigito(m_s[i]))
                ++i;
        }
        if (i < n && (esDeNombre(m_s[i]) || m_s[i] == u'.'))
            return false; // 5abc, 1.2.3
        const QStringView texto(m_s + desde, i - desde);
        Literal l;
        bool ok = false;
        if (!decimal) {
            ok = true;
            l.entero = largo ? texto.toLongLong(&ok) : entero;
        } else if (m_motor == Motor::SQLite && digitosSignificativos(texto) <= 15) {
            // The server keeps decimal literals exact; only SQLite reads them
            // as the double a bound value is.
            l.tipo = Literal::Tipo::Real;
            l.real = texto.toDouble(&ok);
        }
        l.desde = desde;
        l.hasta = i;
        if (ok && subible())
            sube(l);
        else
            copia(desde, i);
        m_noSubir = false;
        return true;
    }

    bool palabra(qsizetype &i)
    {
        const qsizetype desde = i;
        while (i < m_n && esDeNombre(m_s[i]))
            ++i;
        copia(desde, i);
        const Palabra *clave = m_trasPunto ? nullptr : palabraClave(m_s + desde, i - desde);
        if (!m_primera) {
            m_primera = true;
            if (!clave || !clave->inicia)
                return false;
        }
        m_noSubir = false;
        if (!clave)
            return true;
        Nivel &nivel = m_niveles.last();
        switch (clave->clave) {
        case Clave::Condicion:
            nivel = {Clausula::Condicion, false};
            break;
        case Clave::Asignacion:
            nivel = {Clausula::Asignacion, false};
            break;
        case Clave::Valores:
            nivel = {Clausula::Valores, false};
            break;
        case Clave::Otra: // AS also ends a level inside CAST(x AS DECIMAL(10, 2))
            nivel = {Clausula::Otra, false};
            break;
        case Clave::Patron:
            nivel.patron = true;
            break;
        case Clave::Conector:
            nivel.patron = false;
            break;
        case Clave::NoSubir:
            m_noSubir = true;
            break;
        case Clave::Tipo:
            m_tipo = true;
            break;
        }
        return true;
    }

    bool signo(char16_t c, qsizetype &i, bool trasTipo)
    {
        const char16_t siguiente = i + 1 < m_n ? m_s[i + 1] : 0;
        if ((c == u'-' && siguiente == u'-') || (c == u'/' && siguiente == u'*') || c == u'#')
            return false; // a comment
        if (c == u';' || c == u'?' || c == u':' || c == u'@' || c == u'$' || c == u'{' ||
            c == u'\\')
            return false; // a second statement, a parameter, a variable
        if (c == u'(') {
            const Nivel arriba = m_niveles.last();
            m_niveles.append(trasTipo ? Nivel{} : arriba);
        } else if (c == u')') {
            if (m_niveles.size() < 2)
                return false;
            m_niveles.removeLast();
        } else if (c == u',') {
            m_niveles.last().patron = false;
        }
        copia(i, i + 1);
        m_anterior = c;
        if (c != u'.')
            m_noSubir = false;
        ++i;
        return true;
    }

    const char16_t *m_s; // the text the literals point into
    qsizetype m_n;
    Motor m_motor;
    std::u16string &m_salida;
    Literales &m_literales;
    QVarLengthArray<Nivel, 8> m_niveles;
    char16_t m_anterior = 0;
    bool m_escrito = false;
    qsizetype m_desde = -1, m_hasta = -1;
    bool m_primera = false;
    bool m_literalAntes = false;
    bool m_noSubir = false;
    bool m_trasPunto = false;
    bool m_tipo = false;
};

} // namespace

namespace interno {

bool normaliza(const QString &sql, Motor motor, Normalizacion &n)
{
    const auto *s = reinterpret_cast<const char16_t *>(sql.constData());
    Molde &molde = n.moldes[ranura(s, sql.size())];
    n.literales.clear();
    if (encaja(molde, s, sql.size(), motor, n.literales)) {
        n.texto.assign(molde.texto);
        return true;
    }
    if (!Lector(sql, motor, n).lee())
        return false;
    molde.original = sql;
    molde.texto.assign(n.texto);
    molde.motor = motor;
    molde.huecos.clear();
    for (const Literal &l : n.literales)
        molde.huecos.append({l.desde, l.hasta, l.tipo});
    return true;
}

QVariant valorDe(const Literal &l)
{
    switch (l.tipo) {
    case Literal::Tipo::Entero:
        return QVariant(l.entero);
    case Literal::Tipo::Real:
        return QVariant(l.real);
    case Literal::Tipo::Texto:
        break;
    }
    QString t = l.texto.toString();
    if (l.comillaDoble)
        t.replace(QStringLiteral("''"), QStringLiteral("'"));
    return QVariant(t);
}

} // namespace interno

SentenciaNormalizada normalizaSentencia(const QString &sql, Motor motor)
{
    interno::Normalizacion n;
    SentenciaNormalizada r;
    if (!interno::normaliza(sql, motor, n))
        return r;
    r.texto = n.vista().toString();
    for (const interno::Literal &l : n.literales)
        r.valores.append(interno::valorDe(l));
    r.entendida = true;
    return r;
}

} // namespace zuvi::anfitrion
