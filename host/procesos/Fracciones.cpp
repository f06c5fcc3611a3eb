// The host's fraction capture: "FRACCIONES001" greets the user in the
// window's viewer, "FRACCIONES" resolves the code the window holds (an
// article or a secondary key), shows the article with its stock and records
// the capture in the table fracciones.

#include "host/procesos/Fracciones.h"
#include "host/servicios/AmbienteAnfitrion.h"
#include "host/sql/Sql.h"

#include "runtime/Error.h"
#include "runtime/Text.h"

#include <QLineEdit>
#include <QLocale>
#include <QSqlQuery>
#include <QTextBrowser>
#include <QTime>

namespace zuvi::anfitrion {

namespace {

QObject *ventanaDe(const ArgumentosProceso &a)
{
    if (!a.objeto)
        throw Error(
            QStringLiteral("El proceso \"%1\" no recibió la ventana de captura.").arg(a.proceso));
    return a.objeto.data();
}

QTextBrowser *visorDe(QObject *ventana)
{
    auto *wb = ventana->findChild<QTextBrowser *>(QStringLiteral("wb"));
    if (!wb)
        throw Error(QStringLiteral("La ventana de captura no tiene el visor \"wb\"."));
    return wb;
}

QString pagina(const QString &titulo, const QString &cuerpo)
{
    return QStringLiteral("<html><body style=\"font-family: sans-serif\">"
                          "<h2>%1</h2>%2</body></html>")
        .arg(titulo.toHtmlEscaped(), cuerpo);
}

QString aviso(const QString &texto, const QString &color)
{
    return QStringLiteral("<p style=\"color: %1; font-size: large\"><b>%2</b></p>")
        .arg(color, texto.toHtmlEscaped());
}

QSqlQuery consulta(const QSqlDatabase &db, const QString &sql, const QVariantList &valores)
{
    return ejecutaConValores(db, sql, valores);
}

struct Articulo
{
    QString articulo, descrip, unidad, clave;
};

// The article of a code: first as an article code, then as a secondary key.
bool resuelve(const QSqlDatabase &db, const QString &codigo, Articulo &a)
{
    const QString porArticulo =
        QStringLiteral("SELECT articulo, descrip, unidad FROM prods WHERE articulo = ?");
    QSqlQuery q = consulta(db, porArticulo, {codigo});
    if (!q.next()) {
        QSqlQuery c = consulta(db, QStringLiteral("SELECT Articulo FROM clavesadd WHERE clave = ?"),
                               {codigo});
        if (!c.next())
            return false;
        a.clave = codigo;
        q = consulta(db, porArticulo, {c.value(0).toString()});
        if (!q.next())
            return false; // a secondary key pointing at no article
    }
    a.articulo = q.value(0).toString();
    a.descrip = q.value(1).toString();
    a.unidad = q.value(2).toString();
    return true;
}

QString existencias(const QSqlDatabase &db, const Articulo &a)
{
    QSqlQuery q =
        consulta(db,
                 QStringLiteral("SELECT e.almacen, a.nombre, e.cantidad FROM existencias e"
                                " LEFT JOIN almacen a ON a.almacen = e.almacen"
                                " WHERE e.articulo = ? ORDER BY e.almacen"),
                 {a.articulo});
    const QLocale local(QLocale::Spanish, QLocale::Mexico);
    QString filas;
    double total = 0;
    while (q.next()) {
        const double cantidad = q.value(2).toDouble();
        total += cantidad;
        filas += QStringLiteral("<tr><td>%1</td><td>%2</td><td align=\"right\">%3</td></tr>")
                     .arg(q.value(0).toString(), q.value(1).toString().toHtmlEscaped(),
                          local.toString(cantidad, 'f', 2));
    }
    if (filas.isEmpty())
        return QStringLiteral("<p>Sin existencias registradas en ningún almacén.</p>");
    return QStringLiteral("<h3>Existencias</h3><table border=\"1\" cellpadding=\"4\" "
                          "cellspacing=\"0\"><tr><th>Almacén</th><th>Nombre</th>"
                          "<th>Cantidad</th></tr>%1<tr><td colspan=\"2\"><b>Total</b></td>"
                          "<td align=\"right\"><b>%2</b></td></tr></table>")
        .arg(filas, local.toString(total, 'f', 2));
}

void bienvenida(ArgumentosProceso &a)
{
    QTextBrowser *wb = visorDe(ventanaDe(a));
    wb->setHtml(
        pagina(QStringLiteral("Captura de fracciones"),
               QStringLiteral("<p>Escriba o lea con el lector el código del artículo (o una de sus "
                              "claves adicionales) y pulse <b>Enter</b>.</p><p>Cada captura queda "
                              "registrada con el usuario, la fecha, la hora y la estación.</p>")));
    a.bandera = VFalse;
}

void captura(ArgumentosProceso &a)
{
    QObject *ventana = ventanaDe(a);
    QTextBrowser *wb = visorDe(ventana);
    if (!a.ambiente)
        throw Error(QStringLiteral("No se ha establecido el objeto Ambiente."));
    Ambiente *ambiente = a.ambiente.data();
    a.bandera = VFalse;

    const QString codigo = Trim(ventana->property("Codigo").toString());
    auto *campo = ventana->findChild<QLineEdit *>(QStringLiteral("txtFields_0"));
    if (codigo.isEmpty()) {
        wb->setHtml(pagina(QStringLiteral("Captura de fracciones"),
                           aviso(QStringLiteral("Escriba un código de artículo y pulse Enter."),
                                 QStringLiteral("#1f4e99"))));
        ventana->setProperty("Estado", QStringLiteral("ESPERANDO USUARIO"));
        return;
    }

    const QSqlDatabase db = ambiente->Conexion();
    Articulo articulo;
    if (!resuelve(db, codigo, articulo)) {
        wb->setHtml(pagina(
            QStringLiteral("Captura de fracciones"),
            aviso(QStringLiteral("El código «%1» no corresponde a ningún artículo ni a ninguna "
                                 "clave adicional. No se registró nada.")
                      .arg(codigo),
                  QStringLiteral("#b00020"))));
        ventana->setProperty("Estado", QStringLiteral("CODIGO NO ENCONTRADO"));
        if (campo)
            campo->selectAll(); // the next scan replaces the wrong code
        return;
    }

    const qint32 datoB = ambiente->DatoFechaB();
    const QDate fecha = fechaDeDatos(ambiente->DatoFechaA(), datoB);
    const QString hora =
        QTime(0, 0).addSecs(((datoB % 86400) + 86400) % 86400).toString(QStringLiteral("hh:mm:ss"));
    const QString usuario = ambiente->UsuarioActual();
    const QString estacion = ambiente->DatoDocumento().toString();
    const QVariantList valores{codigo, articulo.articulo, usuario, fecha, hora, estacion};
    const QString sql = QStringLiteral("INSERT INTO fracciones (codigo, articulo, usuario, fecha, "
                                       "hora, estacion) VALUES (?, ?, ?, ?, ?, ?)");
    consulta(db, sql, valores);

    QString cuerpo = aviso(QStringLiteral("Fracción capturada"), QStringLiteral("#1b7a1b"));
    cuerpo += QStringLiteral("<table cellpadding=\"3\">"
                             "<tr><td>Artículo:</td><td><b>%1</b></td></tr>"
                             "<tr><td>Descripción:</td><td>%2</td></tr>"
                             "<tr><td>Unidad:</td><td>%3</td></tr>")
                  .arg(articulo.articulo.toHtmlEscaped(), articulo.descrip.toHtmlEscaped(),
                       articulo.unidad.toHtmlEscaped());
    if (!articulo.clave.isEmpty())
        cuerpo += QStringLiteral("<tr><td>Clave adicional:</td><td>%1</td></tr>")
                      .arg(articulo.clave.toHtmlEscaped());
    cuerpo += QStringLiteral("</table>") + existencias(db, articulo);
    cuerpo += QStringLiteral("<p><small>Registrada por %1 el %2 a las %3 en la estación %4."
                             "</small></p>")
                  .arg(usuario.toHtmlEscaped(), fecha.toString(QStringLiteral("dd/MM/yyyy")), hora,
                       estacion.toHtmlEscaped());
    wb->setHtml(pagina(QStringLiteral("Captura de fracciones"), cuerpo));
    ventana->setProperty("Estado", QStringLiteral("CAPTURADO"));
    if (campo)
        campo->clear();
}

} // namespace

QList<ProcesoAnfitrion> procesosFracciones()
{
    return {{"FRACCIONES001", bienvenida}, {"FRACCIONES", captura}};
}

} // namespace zuvi::anfitrion
