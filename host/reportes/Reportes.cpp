#include "host/reportes/Reportes.h"

#include "host/reportes/Impresion.h"
#include "host/sql/Sql.h"
#include "runtime/Error.h"
#include "runtime/Recordset.h"

#include <QDate>
#include <QDir>
#include <QFileInfo>
#include <QFontMetrics>
#include <QLocale>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QStandardPaths>

namespace zuvi::anfitrion {

namespace {

QString &carpetaFijada()
{
    static QString c;
    return c;
}

QString fecha(const QVariant &v)
{
    if (v.isNull())
        return QString();
    QDate d = v.toDate();
    if (!d.isValid())
        d = QDate::fromString(v.toString().left(10), QStringLiteral("yyyy-MM-dd"));
    return d.isValid() ? d.toString(QStringLiteral("dd/MM/yyyy")) : variantToText(v);
}

QString cifra(double d)
{
    return QLocale(QLocale::English).toString(d, 'f', 2);
}

// Lays out the report on the PDF page by page, in device units.
class Hoja
{
public:
    Hoja(QPagedPaintDevice &writer, const QString &titulo)
        : m_writer(writer), m_pintor(&writer), m_titulo(titulo)
    {
        if (!m_pintor.isActive())
            throw Error(QStringLiteral("No se pudo escribir el archivo del reporte."));
        m_ancho = writer.width();
        m_alto = writer.height();
        encabezado();
    }

    void texto(const QString &t, int pt = 10, bool negrita = false)
    {
        fuente(pt, negrita);
        const int alto = QFontMetrics(m_pintor.font(), &m_writer).height();
        espacio(alto);
        m_pintor.drawText(QRect(0, m_y, m_ancho, alto), Qt::AlignLeft | Qt::AlignVCenter, t);
        m_y += alto;
    }

    // One row of columns at the given fractions of the width; numbers right-aligned.
    void fila(const QStringList &celdas, const QList<double> &posiciones,
              const QList<bool> &derecha, bool negrita = false)
    {
        fuente(9, negrita);
        const int alto = QFontMetrics(m_pintor.font(), &m_writer).height();
        espacio(alto);
        for (int i = 0; i < celdas.size(); ++i) {
            const int x0 = int(posiciones.at(i) * m_ancho);
            const int x1 = int((i + 1 < posiciones.size() ? posiciones.at(i + 1) : 1.0) * m_ancho);
            const QRect r(x0, m_y, x1 - x0 - m_ancho / 100, alto);
            const QString t = QFontMetrics(m_pintor.font(), &m_writer)
                                  .elidedText(celdas.at(i), Qt::ElideRight, r.width());
            m_pintor.drawText(
                r, (derecha.value(i) ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter, t);
        }
        m_y += alto;
    }

    void linea()
    {
        espacio(m_alto / 200);
        m_pintor.drawLine(0, m_y, m_ancho, m_y);
        m_y += m_alto / 200;
    }

    void salto(int veces = 1) { m_y += veces * m_alto / 100; }

private:
    void fuente(int pt, bool negrita)
    {
        QFont f(QStringLiteral("Sans Serif"), pt);
        f.setBold(negrita);
        m_pintor.setFont(f);
    }

    void espacio(int alto)
    {
        if (m_y + alto <= m_alto)
            return;
        m_writer.newPage();
        m_y = 0;
        ++m_pagina;
        encabezado();
    }

    void encabezado()
    {
        fuente(8, false);
        const int alto = QFontMetrics(m_pintor.font(), &m_writer).height();
        m_pintor.drawText(QRect(0, m_y, m_ancho, alto), Qt::AlignRight,
                          QStringLiteral("%1 - página %2").arg(m_titulo).arg(m_pagina));
        m_y += 2 * alto;
    }

    QPagedPaintDevice &m_writer;
    QPainter m_pintor;
    QString m_titulo;
    int m_ancho = 0, m_alto = 0, m_y = 0, m_pagina = 1;
};

} // namespace

QString carpetaReportes()
{
    if (!carpetaFijada().isEmpty())
        return carpetaFijada();
    const QString documentos = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    if (!documentos.isEmpty() && QFileInfo(documentos).isDir())
        return documentos;
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
}

void ponCarpetaReportes(const QString &carpeta)
{
    carpetaFijada() = carpeta;
}

QString publicaOrdenProduccion(const QSqlDatabase &db, qint32 op, const QString &archivo)
{
    QSqlQuery qc = ejecutaConValores(db, QStringLiteral("SELECT * FROM op WHERE op = ?"), {op},
                                     QStringLiteral("SELECT * FROM op WHERE op = %1").arg(op));
    const RecordsetPtr cab = Recordset::fromQuery(qc);
    if (cab->atEnd())
        throw Error(QStringLiteral("La orden de producción %1 no existe.").arg(op));
    const QString sqlPartidas =
        QStringLiteral("SELECT oppart.articulo, prods.descrip, oppart.cantidad, oppart.precio, "
                       "oppart.observ FROM oppart LEFT JOIN prods ON prods.articulo = "
                       "oppart.articulo WHERE oppart.op = ");
    const QString orden = QStringLiteral(" ORDER BY oppart.id_entrada");
    QSqlQuery qp = ejecutaConValores(db, sqlPartidas + QLatin1Char('?') + orden, {op},
                                     sqlPartidas + QString::number(op) + orden);
    const RecordsetPtr partidas = Recordset::fromQuery(qp);

    const QString titulo = QStringLiteral("Orden de producción %1").arg(op);
    return publica(titulo, archivo, QMarginsF(15, 15, 15, 15), [&](QPagedPaintDevice &writer) {
        cab->moveFirst();
        partidas->moveFirst();
        Hoja hoja(writer, titulo);

        hoja.texto(titulo, 16, true);
        hoja.salto();
        const QString estado = cab->text(QStringLiteral("estado"));
        hoja.texto(QStringLiteral("Estado: %1")
                       .arg(estado == QLatin1String("CO") ? QStringLiteral("Confirmada")
                                                          : QStringLiteral("Pendiente")));
        hoja.texto(QStringLiteral("Fecha del documento: %1")
                       .arg(fecha(cab->value(QStringLiteral("f_emision")))));
        hoja.texto(QStringLiteral("Fecha de entrega: %1")
                       .arg(fecha(cab->value(QStringLiteral("fechaEntrega")))));
        hoja.texto(
            QStringLiteral("Entregar en almacén: %1").arg(cab->text(QStringLiteral("almacen"))));
        hoja.texto(QStringLiteral("No. de orden de compra: %1")
                       .arg(cab->text(QStringLiteral("ordencompra"))));
        hoja.texto(QStringLiteral("Capturó: %1  %2 %3")
                       .arg(cab->text(QStringLiteral("usuario")),
                            fecha(cab->value(QStringLiteral("usufecha"))),
                            cab->text(QStringLiteral("usuhora"))));
        const QString observ = cab->text(QStringLiteral("observ")).trimmed();
        if (!observ.isEmpty())
            for (const QString &l : observ.split(QLatin1Char('\n')))
                hoja.texto(l);
        hoja.salto();

        const QList<double> pos = {0.0, 0.16, 0.52, 0.64, 0.76, 0.88};
        const QList<bool> der = {false, false, true, true, true, false};
        hoja.fila({QStringLiteral("Artículo"), QStringLiteral("Descripción"),
                   QStringLiteral("Cantidad"), QStringLiteral("Precio"), QStringLiteral("Importe"),
                   QStringLiteral("Observ.")},
                  pos, der, true);
        hoja.linea();
        double total = 0;
        int n = 0;
        for (; !partidas->atEnd(); partidas->moveNext(), ++n) {
            const double cantidad = partidas->number(2);
            const double precio = partidas->number(3);
            total += cantidad * precio;
            hoja.fila({partidas->text(0), partidas->text(1), cifra(cantidad), cifra(precio),
                       cifra(cantidad * precio), partidas->text(4)},
                      pos, der);
        }
        hoja.linea();
        hoja.fila({QStringLiteral("%1 partida(s)").arg(n), QString(), QString(), QString(),
                   cifra(total), QString()},
                  pos, der, true);
    });
}

void escribeOrdenProduccion(const QSqlDatabase &db, qint32 op, const QString &archivo)
{
    const bool previa = vistaPrevia();
    ponVistaPrevia(false);
    try {
        publicaOrdenProduccion(db, op, archivo);
    } catch (...) {
        ponVistaPrevia(previa);
        throw;
    }
    ponVistaPrevia(previa);
}

} // namespace zuvi::anfitrion
