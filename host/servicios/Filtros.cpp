#include "host/servicios/Filtros.h"

#include <QRegularExpression>

#include <cmath>

namespace zuvi::anfitrion {

namespace {

bool esControl(int tecla)
{
    return tecla >= 0 && tecla < 32;
}

bool admite(const QString &etiqueta, const QString &resultado)
{
    static const QRegularExpression numero(QStringLiteral("^-?[0-9]*\\.?[0-9]*$"));
    static const QRegularExpression digitos(QStringLiteral("^[0-9]*$"));
    static const QRegularExpression fecha(QStringLiteral("^[0-9/\\-]{0,10}$"));
    if (etiqueta == QLatin1String("N"))
        return numero.match(resultado).hasMatch();
    if (etiqueta == QLatin1String("SN") || etiqueta == QLatin1String("SD"))
        return digitos.match(resultado).hasMatch();
    if (etiqueta == QLatin1String("D"))
        return fecha.match(resultado).hasMatch();
    return true;
}

QString numeroPlano(double d)
{
    if (d == 0.0)
        return QStringLiteral("0"); // no "-0"
    return QString::number(d, 'g', 15);
}

} // namespace

int filtraTecla(const QString &etiqueta, const QString &texto, int inicioSeleccion,
                int largoSeleccion, int tecla)
{
    if (esControl(tecla))
        return tecla;
    if (tecla < 0 || tecla > 0xFFFF)
        return 0;
    const int inicio = qBound(0, inicioSeleccion, int(texto.size()));
    const int largo = qBound(0, largoSeleccion, int(texto.size()) - inicio);
    QString resultado = texto;
    resultado.replace(inicio, largo, QChar(char16_t(tecla)));
    return admite(etiqueta, resultado) ? tecla : 0;
}

int mayuscula(int tecla)
{
    if (esControl(tecla) || tecla < 0 || tecla > 0xFFFF)
        return tecla;
    const QString arriba = QString(QChar(char16_t(tecla))).toUpper();
    // A character whose upper case is two characters (the German sharp s)
    // stays as typed: a key stands for one character.
    return arriba.size() == 1 ? arriba.at(0).unicode() : tecla;
}

QDate leeFecha(const QString &texto)
{
    const QString t = texto.trimmed();
    if (t.isEmpty())
        return {};
    static const QRegularExpression partes(
        QStringLiteral("^([0-9]{1,2})[/\\-]([0-9]{1,2})[/\\-]([0-9]{2}|[0-9]{4})$"));
    static const QRegularExpression iso(QStringLiteral("^([0-9]{4})-([0-9]{1,2})-([0-9]{1,2})$"));
    static const QRegularExpression corrida(QStringLiteral("^([0-9]{2})([0-9]{2})([0-9]{4})$"));
    int d = 0, m = 0, a = 0;
    if (const auto ri = iso.match(t); ri.hasMatch()) {
        a = ri.captured(1).toInt();
        m = ri.captured(2).toInt();
        d = ri.captured(3).toInt();
    } else if (const auto rp = partes.match(t); rp.hasMatch()) {
        d = rp.captured(1).toInt();
        m = rp.captured(2).toInt();
        a = rp.captured(3).toInt();
        if (rp.captured(3).size() == 2)
            a += a < 70 ? 2000 : 1900;
    } else if (const auto rc = corrida.match(t); rc.hasMatch()) {
        d = rc.captured(1).toInt();
        m = rc.captured(2).toInt();
        a = rc.captured(3).toInt();
    } else {
        return {};
    }
    return QDate(a, m, d); // invalid when the day or month is impossible
}

QString formateaTexto(const QString &etiqueta, const QString &texto)
{
    if (etiqueta == QLatin1String("U"))
        return texto.toUpper();
    if (etiqueta == QLatin1String("N")) {
        QString t = texto.trimmed();
        if (t.isEmpty())
            return t;
        t.remove(QLatin1Char(','));
        bool ok = false;
        const double d = t.toDouble(&ok);
        return ok && std::isfinite(d) ? numeroPlano(d) : texto;
    }
    if (etiqueta == QLatin1String("SN")) {
        const QString t = texto.trimmed();
        if (t.isEmpty())
            return t;
        bool ok = false;
        const qlonglong n = t.toLongLong(&ok);
        return ok ? QString::number(n) : texto;
    }
    if (etiqueta == QLatin1String("SD"))
        return texto.trimmed();
    if (etiqueta == QLatin1String("D")) {
        if (texto.trimmed().isEmpty())
            return QString();
        const QDate f = leeFecha(texto);
        return f.isValid() ? f.toString(QStringLiteral("dd/MM/yyyy")) : texto;
    }
    return texto;
}

} // namespace zuvi::anfitrion
