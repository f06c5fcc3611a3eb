// "OP007": the product labels of an order, one per unit to produce (a
// fractional quantity takes one more), each with the article code as a Code
// 128 barcode, its description, the order number and the order's date, three
// across and ten down on letter-size sheets. In the desktop shell the sheet
// opens in the print preview; otherwise it is written as a PDF in the reports
// folder and the user is told where.

#include "host/procesos/Etiquetas.h"
#include "host/interaccion/Interaccion.h"
#include "host/reportes/Impresion.h"
#include "host/reportes/Reportes.h"
#include "host/sql/Sql.h"
#include "runtime/Error.h"

#include <QDate>
#include <QDir>
#include <QFontMetrics>
#include <QPagedPaintDevice>
#include <QPainter>

#include <zint.h>

#include <cmath>
#include <memory>

namespace zuvi::anfitrion {

namespace {

constexpr int kColumnas = 3;
constexpr int kFilas = 10;
// Label and gaps in inches, inside the printable area of the sheet.
constexpr double kAnchoEtiqueta = 2.625;
constexpr double kAltoEtiqueta = 1.0;
constexpr double kSeparacion = 0.125;

struct Etiqueta
{
    QString articulo, descripcion;
};

struct Simbolo
{
    std::unique_ptr<zint_symbol, void (*)(zint_symbol *)> s{ZBarcode_Create(), ZBarcode_Delete};
};

// Draws the Code 128 of the text scaled into the rectangle.
void dibujaCodigo(QPainter &pintor, const QRectF &destino, const QString &texto)
{
    Simbolo simbolo;
    if (!simbolo.s)
        throw Error(QStringLiteral("No hay memoria para el código de barras."));
    zint_symbol *s = simbolo.s.get();
    s->symbology = BARCODE_CODE128;
    s->input_mode = UNICODE_MODE;
    s->show_hrt = 0;
    const QByteArray datos = texto.toUtf8();
    const int r = ZBarcode_Encode_and_Buffer_Vector(
        s, reinterpret_cast<const unsigned char *>(datos.constData()), int(datos.size()), 0);
    if (r >= ZINT_ERROR || !s->vector)
        throw Error(QStringLiteral("No se pudo formar el código de barras de \"%1\": %2")
                        .arg(texto, QString::fromLatin1(s->errtxt)));
    // As wide as the label allows; the bars take the whole height given.
    const double escala = destino.width() / s->vector->width;
    pintor.save();
    pintor.setPen(Qt::NoPen);
    pintor.setBrush(Qt::black);
    for (zint_vector_rect *b = s->vector->rectangles; b; b = b->next)
        pintor.drawRect(QRectF(destino.left() + b->x * escala, destino.top(), b->width * escala,
                               destino.height()));
    pintor.restore();
}

void dibujaHoja(QPagedPaintDevice &hoja, const QList<Etiqueta> &etiquetas, qint32 op,
                const QString &fecha)
{
    QPainter pintor(&hoja);
    if (!pintor.isActive())
        throw Error(QStringLiteral("No se pudo preparar la hoja de etiquetas."));
    const double ppp = hoja.logicalDpiX();
    const double ancho = kAnchoEtiqueta * ppp, alto = kAltoEtiqueta * ppp;
    const double sep = kSeparacion * ppp;
    const double margen = 0.06 * ppp;
    QFont normal(QStringLiteral("Sans Serif"), 7);
    QFont negrita(QStringLiteral("Sans Serif"), 8);
    negrita.setBold(true);
    const double renglon = QFontMetricsF(normal, &hoja).height();
    const double renglonNegrita = QFontMetricsF(negrita, &hoja).height();
    const QString pie = QStringLiteral("Orden %1   %2").arg(op).arg(fecha);

    for (int i = 0; i < etiquetas.size(); ++i) {
        const int enHoja = i % (kColumnas * kFilas);
        if (i > 0 && enHoja == 0)
            hoja.newPage();
        const int c = enHoja % kColumnas, f = enHoja / kColumnas;
        const QRectF caja(c * (ancho + sep), f * alto, ancho, alto);
        const QRectF dentro = caja.adjusted(margen, margen, -margen, -margen);
        const Etiqueta &e = etiquetas.at(i);

        pintor.setFont(negrita);
        pintor.drawText(QRectF(dentro.left(), dentro.top(), dentro.width(), renglonNegrita),
                        Qt::AlignLeft | Qt::AlignVCenter,
                        QFontMetricsF(negrita, &hoja)
                            .elidedText(e.descripcion, Qt::ElideRight, dentro.width()));
        const double abajo = dentro.bottom() - 2 * renglon;
        const QRectF barras(dentro.left(), dentro.top() + renglonNegrita + margen / 2,
                            dentro.width(), abajo - dentro.top() - renglonNegrita - margen);
        dibujaCodigo(pintor, barras, e.articulo);
        pintor.setFont(normal);
        pintor.drawText(QRectF(dentro.left(), abajo, dentro.width(), renglon), Qt::AlignHCenter,
                        e.articulo);
        pintor.drawText(QRectF(dentro.left(), abajo + renglon, dentro.width(), renglon),
                        Qt::AlignHCenter, pie);
    }
}

void generaEtiquetas(ArgumentosProceso &a)
{
    if (!a.ambiente)
        throw Error(QStringLiteral("El proceso \"OP007\" no recibió el ambiente."));
    const qint32 op = a.objeto ? a.objeto->property("Op").toInt() : 0;
    if (op <= 0)
        throw Error(QStringLiteral("El proceso \"OP007\" no recibió una orden guardada."));
    const QSqlDatabase db = a.ambiente->Conexion();

    RecordsetPtr cab = consulta(db, QStringLiteral("SELECT f_emision FROM op WHERE op = ?"), {op},
                                QStringLiteral("SELECT f_emision FROM op WHERE op = %1").arg(op));
    if (cab->atEnd())
        throw Error(QStringLiteral("La orden de producción %1 no existe.").arg(op));
    QDate dia = cab->value(0).toDate();
    if (!dia.isValid())
        dia = QDate::fromString(cab->text(0).left(10), Qt::ISODate);
    const QString fecha = dia.isValid() ? dia.toString(QStringLiteral("dd/MM/yyyy")) : QString();

    const QString sql = QStringLiteral(
        "SELECT oppart.articulo, prods.descrip, oppart.cantidad FROM oppart LEFT JOIN prods ON "
        "prods.articulo = oppart.articulo WHERE oppart.op = %1 ORDER BY oppart.id_entrada");
    QList<Etiqueta> etiquetas;
    for (RecordsetPtr rs = consulta(db, sql.arg(QLatin1Char('?')), {op}, sql.arg(op)); !rs->atEnd();
         rs->moveNext()) {
        const double unidades = std::ceil(rs->number(2) - 1e-9);
        for (int i = 0; i < int(unidades); ++i)
            etiquetas.append({rs->text(0).trimmed(), rs->text(1).trimmed()});
    }
    a.bandera = VFalse;
    if (etiquetas.isEmpty()) {
        interaccion().mensaje(
            QStringLiteral("La orden %1 no tiene unidades que etiquetar.").arg(op), 64);
        return;
    }
    const QString archivo =
        QDir(carpetaReportes()).filePath(QStringLiteral("Etiquetas-Orden-%1.pdf").arg(op));
    const QString escrito = publica(QStringLiteral("Etiquetas de la orden %1").arg(op), archivo,
                                    QMarginsF(4.8, 12.7, 4.8, 12.7), [&](QPagedPaintDevice &hoja) {
                                        dibujaHoja(hoja, etiquetas, op, fecha);
                                    });
    if (!escrito.isEmpty())
        interaccion().mensaje(QStringLiteral("%1 etiqueta(s) de la orden %2 se guardaron en %3")
                                  .arg(etiquetas.size())
                                  .arg(op)
                                  .arg(escrito),
                              64);
}

} // namespace

QList<ProcesoAnfitrion> procesosEtiquetas()
{
    return {{"OP007", generaEtiquetas}};
}

} // namespace zuvi::anfitrion
