#include "host/servicios/AccesoDatosAnfitrion.h"

#include "host/servicios/ClavesSentencia.h"

#include "host/base/Folios.h"
#include "host/interaccion/Interaccion.h"
#include "host/servicios/AmbienteAnfitrion.h"
#include "host/servicios/ConstructorSqlAnfitrion.h"
#include "host/servicios/Filtros.h"
#include "host/sql/Sql.h"
#include "runtime/Error.h"

#include <QApplication>
#include <QLineEdit>
#include <QRegularExpression>
#include <QWidget>

#include <cmath>

namespace zuvi::anfitrion {

namespace {

void exigeNombre(const QString &nombre, const QString &que)
{
    static const QRegularExpression patron(QStringLiteral("^[A-Za-z_][A-Za-z0-9_]*$"));
    if (!patron.match(nombre).hasMatch())
        throw Error(QStringLiteral("El nombre de %1 \"%2\" no es válido.").arg(que, nombre));
}

QString etiquetaDe(const QLineEdit *caja)
{
    return caja ? caja->property("Tag").toString() : QString();
}

} // namespace

bool ubicacionRestringe(const QString &ubicacion, int almacen)
{
    static const QRegularExpression solo(QStringLiteral("^S[OÓoó]LO(?:\\s+|$|(?=[0-9,]))(.*)$"),
                                         QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch m = solo.match(ubicacion.trimmed());
    if (!m.hasMatch())
        return false;
    static const QRegularExpression separador(QStringLiteral("[,;\\s]+"));
    const QStringList partes = m.captured(1).split(separador, Qt::SkipEmptyParts);
    for (const QString &parte : partes) {
        bool ok = false;
        const int n = parte.toInt(&ok);
        if (ok && n == almacen)
            return false;
    }
    return true;
}

RecordsetPtr AccesoDatosAnfitrion::Consulta(const QString &sql, const QSqlDatabase &conexion, VBool)
{
    compruebaClaveEnSentencia(sql);
    return consulta(conexion, sql);
}

double AccesoDatosAnfitrion::ValorNumerico(const QVariant &valor)
{
    return variantToDouble(valorSimple(valor));
}

QString AccesoDatosAnfitrion::ValorTexto(const QVariant &valor)
{
    return variantToText(valorSimple(valor));
}

VBool AccesoDatosAnfitrion::EstaVacio(const QString &texto)
{
    return toVBool(texto.trimmed().isEmpty());
}

QString AccesoDatosAnfitrion::TraeMensaje(qint32 numero, Ambiente *ambiente)
{
    if (!ambiente)
        throw Error(QStringLiteral("No hay ambiente para leer el mensaje %1.").arg(numero));
    QSqlQuery q = ejecutaConValores(
        ambiente->Conexion(), QStringLiteral("SELECT texto FROM mensajes WHERE numero = ?"),
        {numero}, QStringLiteral("SELECT texto FROM mensajes WHERE numero = %1").arg(numero));
    if (!q.next())
        return QStringLiteral("Mensaje %1 no encontrado").arg(numero);
    return variantToText(q.value(0));
}

void AccesoDatosAnfitrion::Mensaje(const QString &texto, qint32 estilo, Ambiente *)
{
    interaccion().mensaje(texto, estilo);
}

VBool AccesoDatosAnfitrion::Pregunta(const QString &texto, qint32)
{
    return toVBool(interaccion().pregunta(texto));
}

qint32 AccesoDatosAnfitrion::SiguienteFolio(const QString &clave, const QSqlDatabase &conexion,
                                            qint32 &documento, ConstructorSql *)
{
    const qint32 folio = siguienteFolio(conexion, clave);
    documento = folio;
    return folio;
}

QDate AccesoDatosAnfitrion::ComponeFecha(qint32 datoA, qint32 datoB)
{
    return fechaDeDatos(datoA, datoB);
}

ConstructorSql *AccesoDatosAnfitrion::NuevoConstructorSql()
{
    return new ConstructorSqlAnfitrion;
}

void AccesoDatosAnfitrion::PreparaVentana(QWidget *ventana, Ambiente *, const QString &)
{
    if (!ventana)
        return;
    ventana->show();
    ventana->raise();
    ventana->activateWindow();
}

void AccesoDatosAnfitrion::LiberaVentana(QWidget *ventana, Ambiente *, const QString &principal)
{
    if (principal.isEmpty() || !qobject_cast<QApplication *>(QCoreApplication::instance()))
        return;
    const QWidget *propia = ventana ? ventana->window() : nullptr;
    const QWidgetList lista = QApplication::topLevelWidgets();
    for (QWidget *w : lista) {
        if (w == propia || w->objectName() != principal || !w->isVisible())
            continue;
        w->raise();
        w->activateWindow();
        w->setFocus(Qt::OtherFocusReason);
        return;
    }
}

VBool AccesoDatosAnfitrion::ExisteClave(const QString &valor, const QString &tabla,
                                        const QString &columna, const QSqlDatabase &conexion, VBool)
{
    exigeNombre(tabla, QStringLiteral("tabla"));
    exigeNombre(columna, QStringLiteral("columna"));
    const QString sql = QStringLiteral("SELECT COUNT(*) FROM %1 WHERE %2 = ?").arg(tabla, columna);
    QSqlQuery q = ejecutaConValores(conexion, sql, {valor});
    return toVBool(q.next() && variantToDouble(q.value(0)) > 0);
}

VBool AccesoDatosAnfitrion::UbicacionRestringida(const QString &articulo, qint16 almacen,
                                                 const QSqlDatabase &conexion)
{
    QSqlQuery q = ejecutaConValores(
        conexion, QStringLiteral("SELECT ubicacion FROM prods WHERE articulo = ?"),
        {articulo.trimmed()});
    if (!q.next())
        return VFalse;
    return toVBool(ubicacionRestringe(variantToText(q.value(0)), almacen));
}

QString AccesoDatosAnfitrion::FormateaCampo(QLineEdit *caja, Ambiente *)
{
    if (!caja)
        return QString();
    return formateaTexto(etiquetaDe(caja), caja->text());
}

qint32 AccesoDatosAnfitrion::FiltroMayusculas(QLineEdit *, qint32 &tecla)
{
    tecla = mayuscula(tecla);
    return tecla;
}

qint32 AccesoDatosAnfitrion::FiltroTecla(VBool bandera, QLineEdit *caja, qint32 &tecla)
{
    if (!fromVBool(bandera) || !caja)
        return tecla;
    int inicio = caja->cursorPosition();
    int largo = 0;
    if (caja->hasSelectedText()) {
        inicio = caja->selectionStart();
        largo = int(caja->selectedText().size());
    }
    tecla = filtraTecla(etiquetaDe(caja), caja->text(), inicio, largo, tecla);
    return tecla;
}

QString AccesoDatosAnfitrion::TextoConCeros(double numero, qint32 ancho)
{
    const qint64 n = qint64(std::llround(numero));
    const QString digitos = QString::number(n < 0 ? -n : n);
    if (n < 0)
        return QLatin1Char('-') + digitos.rightJustified(qMax(0, ancho - 1), QLatin1Char('0'));
    return digitos.rightJustified(qMax(0, ancho), QLatin1Char('0'));
}

QString AccesoDatosAnfitrion::FechaSQL(const QSqlDatabase &conexion, const QDate &fecha)
{
    if (!fecha.isValid())
        return QStringLiteral("NULL");
    // Both engines read the quoted ISO form: SQLite keeps dates as that very
    // text (so text comparison orders them), MariaDB converts it to DATE when it
    // meets a date column. No driver needs anything else.
    Q_UNUSED(conexion);
    return QLatin1Char('\'') + fecha.toString(QStringLiteral("yyyy-MM-dd")) + QLatin1Char('\'');
}

} // namespace zuvi::anfitrion
