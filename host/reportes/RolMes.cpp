#include "host/reportes/RolMes.h"

#include "host/base/Rutas.h"
#include "host/procesos/Turnos.h"
#include "host/sql/Sql.h"
#include "runtime/Error.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QFont>
#include <QFontMetricsF>
#include <QGlyphRun>
#include <QLocale>
#include <QMap>
#include <QPageLayout>
#include <QPainter>
#include <QPdfWriter>
#include <QRawFont>
#include <QRegularExpression>
#include <QSqlQuery>

namespace zuvi::anfitrion {

namespace {

// Short codes for the cells: the first three letters of the key, made
// unique with a digit when two shifts share them.
QHash<QString, QString> codigos(const QStringList &turnos)
{
    QHash<QString, QString> r;
    QSet<QString> usados;
    for (const QString &t : turnos) {
        QString c = t.trimmed().left(3).toUpper();
        if (c.isEmpty())
            c = QStringLiteral("?");
        QString unico = c;
        for (int n = 2; usados.contains(unico); ++n)
            unico = c.left(2) + QString::number(n);
        usados.insert(unico);
        r.insert(t, unico);
    }
    return r;
}

} // namespace

void leeMes(const QString &texto, int &anio, int &mes)
{
    static const QRegularExpression patron(QStringLiteral("^(\\d{4})-(\\d{1,2})$"));
    const auto m = patron.match(texto.trimmed());
    if (!m.hasMatch() || m.captured(2).toInt() < 1 || m.captured(2).toInt() > 12)
        throw Error(QStringLiteral("El mes \"%1\" no tiene la forma AAAA-MM (por ejemplo 2024-05).")
                        .arg(texto));
    anio = m.captured(1).toInt();
    mes = m.captured(2).toInt();
}

RolMes leeRolMes(const QSqlDatabase &db, int anio, int mes, const QString &turno)
{
    RolMes rol;
    rol.anio = anio;
    rol.mes = mes;
    rol.turno = turno;
    const QDate desde(anio, mes, 1);
    if (!desde.isValid())
        throw Error(QStringLiteral("El mes %1-%2 no es válido.").arg(anio).arg(mes));
    const QDate hasta = desde.addDays(desde.daysInMonth() - 1);

    // The shifts, their rest days and their members.
    QMap<QString, QString> descripcion; // ordered by key
    QHash<QString, int> descanso;
    {
        RecordsetPtr rs = consulta(db, QStringLiteral("SELECT turno, entrada, salida, descanso "
                                                      "FROM turnos ORDER BY turno"));
        for (; !rs->atEnd(); rs->moveNext()) {
            const QString t = rs->text(0);
            descanso.insert(t, diaDescanso(rs->text(3)));
            descripcion.insert(t, QStringLiteral("%1  %2-%3, descansa %4")
                                      .arg(t, rs->text(1), rs->text(2), rs->text(3)));
        }
    }
    if (!turno.isEmpty() && !descripcion.contains(turno))
        throw Error(QStringLiteral("El turno «%1» no existe.").arg(turno));

    QHash<QString, int> indice; // employee -> row
    QHash<QString, QString> turnoDe;
    const auto fila = [&](const QString &empleado) -> RolMes::Fila & {
        auto it = indice.find(empleado);
        if (it == indice.end()) {
            it = indice.insert(empleado, int(rol.filas.size()));
            RolMes::Fila f;
            f.empleado = empleado;
            f.dias.resize(rol.diasDelMes());
            rol.filas << f;
        }
        return rol.filas[*it];
    };
    {
        RecordsetPtr rs = consulta(db, QStringLiteral("SELECT turno, empleado FROM turnoempleado "
                                                      "ORDER BY empleado"));
        for (; !rs->atEnd(); rs->moveNext()) {
            if (!turno.isEmpty() && rs->text(0) != turno)
                continue;
            turnoDe.insert(rs->text(1), rs->text(0));
            fila(rs->text(1));
        }
    }
    // The month's schedules in one forward pass over the index by date; each
    // shift's code is settled once every shift in use is known.
    QStringList usados;
    QList<std::tuple<int, int, int>> celdas; // row, day, shift in usados
    {
        QString sql = QStringLiteral("SELECT Empleado, fecha, turno FROM horarios WHERE fecha >= ? "
                                     "AND fecha <= ?");
        QVariantList valores{desde, hasta};
        if (!turno.isEmpty()) {
            sql += QStringLiteral(" AND turno = ?");
            valores << turno;
        }
        QSqlQuery q = ejecutaConValores(db, sql, valores);
        QHash<QString, int> posicion; // shift -> index in usados
        while (q.next()) {
            const QVariant v = q.value(1);
            const QDate f = v.typeId() == QMetaType::QDate
                                ? v.toDate()
                                : QDate::fromString(v.toString().left(10), Qt::ISODate);
            if (!f.isValid() || f < desde || f > hasta)
                continue;
            const QString t = q.value(2).toString();
            auto p = posicion.find(t);
            if (p == posicion.end()) {
                p = posicion.insert(t, int(usados.size()));
                usados << t;
            }
            const int renglon = int(&fila(q.value(0).toString()) - rol.filas.data());
            celdas << std::make_tuple(renglon, f.day() - 1, *p);
        }
    }
    const QStringList enHorarios = usados;
    for (const QString &t : descripcion.keys())
        if (!usados.contains(t) && (turno.isEmpty() || t == turno))
            usados << t;
    std::sort(usados.begin(), usados.end());
    const QHash<QString, QString> codigo = codigos(usados);
    for (const auto &[renglon, dia, t] : celdas)
        rol.filas[renglon].dias[dia] = codigo.value(enHorarios.at(t));
    for (RolMes::Fila &f : rol.filas) {
        const int libre = descanso.value(turnoDe.value(f.empleado), 0);
        if (libre == 0)
            continue;
        for (int d = 0; d < f.dias.size(); ++d)
            if (f.dias[d].isEmpty() && desde.addDays(d).dayOfWeek() == libre)
                f.dias[d] = QStringLiteral("D");
    }
    // Names, and the rows in key order.
    {
        RecordsetPtr rs = consulta(db, QStringLiteral("SELECT empleado, nombre FROM empleados"));
        QHash<QString, QString> nombres;
        for (; !rs->atEnd(); rs->moveNext())
            nombres.insert(rs->text(0), rs->text(1));
        for (RolMes::Fila &f : rol.filas)
            f.nombre = nombres.value(f.empleado);
    }
    std::sort(rol.filas.begin(), rol.filas.end(),
              [](const RolMes::Fila &a, const RolMes::Fila &b) { return a.empleado < b.empleado; });
    for (const QString &t : std::as_const(usados))
        rol.leyenda << qMakePair(codigo.value(t), descripcion.value(t, t));
    return rol;
}

void pintaRolMes(QPagedPaintDevice *dispositivo, const RolMes &rol)
{
    dispositivo->setPageLayout(
        QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Landscape, QMarginsF(10, 10, 10, 10)));
    QPainter p;
    if (!p.begin(dispositivo))
        throw Error(QStringLiteral("No se pudo abrir el dispositivo de impresión del rol."));
    const QRectF pagina(QPointF(0, 0), QSizeF(p.viewport().size()));
    const qreal ancho = pagina.width();
    const qreal alto = pagina.height();
    const int dias = rol.diasDelMes();
    const qreal colEmpleado = ancho * 0.08;
    const qreal colNombre = ancho * 0.17;
    const qreal colDia = (ancho - colEmpleado - colNombre) / dias;
    const qreal renglon = alto / 40.0;

    QFont titulo(QStringLiteral("Sans Serif"));
    titulo.setPixelSize(int(renglon * 0.9));
    titulo.setBold(true);
    QFont normal(QStringLiteral("Sans Serif"));
    normal.setPixelSize(int(renglon * 0.55));
    QFont negrita = normal;
    negrita.setBold(true);

    // Ten thousand employees make some 300,000 cells of a handful of short
    // codes: each code is shaped once, and a row's cells go out as one run of
    // glyphs (laying out each cell's text was most of the roster's time). A
    // code the font has no glyph for is drawn as plain text.
    const QFontMetricsF medidas(normal);
    const QRawFont crudo = QRawFont::fromFont(normal);
    struct Forma
    {
        QList<quint32> glifos;
        QList<QPointF> avances;
        qreal ancho = 0;
        bool directa = false;
    };
    QHash<QString, Forma> formas;
    const auto forma = [&](const QString &texto) -> const Forma & {
        auto it = formas.find(texto);
        if (it == formas.end()) {
            Forma fm;
            fm.glifos = crudo.glyphIndexesForString(texto);
            fm.avances = crudo.advancesForGlyphIndexes(fm.glifos);
            for (const QPointF &a : std::as_const(fm.avances))
                fm.ancho += a.x();
            fm.directa = crudo.isValid() && !fm.glifos.isEmpty() && !fm.glifos.contains(0);
            it = formas.insert(texto, fm);
        }
        return *it;
    };
    // A key or name wider than its column is cut with "…"; measuring first
    // spares the elision's layout for the names that fit.
    const auto recorta = [&](const QString &texto, qreal anchoMaximo) {
        return medidas.horizontalAdvance(texto) <= anchoMaximo
                   ? texto
                   : medidas.elidedText(texto, Qt::ElideRight, anchoMaximo);
    };

    const QLocale es(QLocale::Spanish, QLocale::Mexico);
    const QDate primero(rol.anio, rol.mes, 1);
    const QString encabezado =
        QStringLiteral("Rol de turnos de %1 de %2%3")
            .arg(es.standaloneMonthName(rol.mes, QLocale::LongFormat))
            .arg(rol.anio)
            .arg(rol.turno.isEmpty() ? QString() : QStringLiteral(" — turno %1").arg(rol.turno));
    const int filasPorPagina = qMax(1, int((alto - renglon * 6) / renglon) - 1);
    const int paginas = qMax(1, int((rol.filas.size() + filasPorPagina - 1) / filasPorPagina));
    const QString letras = QStringLiteral("LMMJVSD");

    for (int pag = 0; pag < paginas; ++pag) {
        if (pag > 0)
            dispositivo->newPage();
        qreal y = 0;
        p.setFont(titulo);
        p.drawText(QRectF(0, y, ancho, renglon * 1.4), Qt::AlignLeft | Qt::AlignVCenter,
                   encabezado);
        p.setFont(normal);
        p.drawText(QRectF(0, y, ancho, renglon * 1.4), Qt::AlignRight | Qt::AlignVCenter,
                   QStringLiteral("Página %1 de %2").arg(pag + 1).arg(paginas));
        y += renglon * 1.8;

        // Header row: the days with their weekday letter.
        p.setFont(negrita);
        p.fillRect(QRectF(0, y, ancho, renglon * 1.4), QColor(225, 230, 240));
        p.drawText(QRectF(2, y, colEmpleado, renglon * 1.4), Qt::AlignVCenter,
                   QStringLiteral("Empleado"));
        p.drawText(QRectF(colEmpleado + 2, y, colNombre, renglon * 1.4), Qt::AlignVCenter,
                   QStringLiteral("Nombre"));
        for (int d = 0; d < dias; ++d) {
            const QDate f = primero.addDays(d);
            const QRectF celda(colEmpleado + colNombre + d * colDia, y, colDia, renglon * 1.4);
            if (f.dayOfWeek() == 7)
                p.fillRect(celda, QColor(205, 212, 228));
            p.drawText(celda, Qt::AlignCenter,
                       QStringLiteral("%1\n%2").arg(f.day()).arg(letras.at(f.dayOfWeek() - 1)));
        }
        y += renglon * 1.4;

        p.setFont(normal);
        const int desde = pag * filasPorPagina;
        const int hasta = qMin(int(rol.filas.size()), desde + filasPorPagina);
        for (int i = desde; i < hasta; ++i) {
            const RolMes::Fila &f = rol.filas.at(i);
            if ((i - desde) % 2 == 1)
                p.fillRect(QRectF(0, y, ancho, renglon), QColor(244, 246, 250));
            const qreal base = y + (renglon + medidas.ascent() - medidas.descent()) / 2;
            p.drawText(QPointF(2, base), recorta(f.empleado, colEmpleado - 4));
            p.drawText(QPointF(colEmpleado + 2, base), recorta(f.nombre, colNombre - 4));
            QList<quint32> glifos;
            QList<QPointF> posiciones;
            for (int d = 0; d < dias; ++d) {
                const QString &texto = f.dias.at(d);
                if (texto.isEmpty())
                    continue;
                const QRectF celda(colEmpleado + colNombre + d * colDia, y, colDia, renglon);
                if (texto == u"D")
                    p.fillRect(celda.adjusted(1, 1, -1, -1), QColor(255, 236, 200));
                const Forma &fm = forma(texto);
                if (!fm.directa) {
                    p.drawText(celda, Qt::AlignCenter, texto);
                    continue;
                }
                qreal x = celda.left() + (colDia - fm.ancho) / 2;
                for (qsizetype k = 0; k < fm.glifos.size(); ++k) {
                    glifos << fm.glifos.at(k);
                    posiciones << QPointF(x, base);
                    x += fm.avances.at(k).x();
                }
            }
            if (!glifos.isEmpty()) {
                QGlyphRun corrida;
                corrida.setRawFont(crudo);
                corrida.setGlyphIndexes(glifos);
                corrida.setPositions(posiciones);
                p.drawGlyphRun(QPointF(0, 0), corrida);
            }
            p.setPen(QColor(200, 200, 200));
            p.drawLine(QPointF(0, y + renglon), QPointF(ancho, y + renglon));
            p.setPen(Qt::black);
            y += renglon;
        }
        if (rol.filas.isEmpty()) {
            p.drawText(QRectF(0, y, ancho, renglon * 2), Qt::AlignCenter,
                       QStringLiteral("No hay horarios ni empleados en turno para este mes."));
            y += renglon * 2;
        }
        // Grid lines of the day columns.
        p.setPen(QColor(180, 180, 180));
        const qreal arriba = renglon * 1.8;
        for (int d = 0; d <= dias; ++d) {
            const qreal x = colEmpleado + colNombre + d * colDia;
            p.drawLine(QPointF(x, arriba), QPointF(x, y));
        }
        p.setPen(Qt::black);

        // Legend on every page.
        y += renglon * 0.6;
        QStringList partes;
        for (const auto &[codigo, texto] : rol.leyenda)
            partes << codigo + QStringLiteral(" = ") + texto;
        partes << QStringLiteral("D = descanso");
        p.drawText(QRectF(0, y, ancho, alto - y), Qt::TextWordWrap | Qt::AlignTop,
                   partes.join(QStringLiteral(";   ")));
    }
    p.end();
}

void escribeRolMesPdf(const RolMes &rol, const QString &archivo)
{
    creaCarpetaPrivada(QFileInfo(archivo).absolutePath());
    {
        QFile prueba(archivo);
        if (!prueba.open(QIODevice::WriteOnly))
            throw Error(QStringLiteral("No se pudo escribir el archivo %1: %2")
                            .arg(archivo, prueba.errorString()));
    }
    QPdfWriter pdf(archivo);
    pdf.setTitle(
        QStringLiteral("Rol de turnos %1-%2").arg(rol.anio).arg(rol.mes, 2, 10, QLatin1Char('0')));
    pdf.setCreator(QStringLiteral("ZuviProduccion"));
    pdf.setResolution(150);
    pintaRolMes(&pdf, rol);
}

QString nombreArchivoRol(const RolMes &rol)
{
    QString nombre =
        QStringLiteral("RolMes-%1-%2").arg(rol.anio).arg(rol.mes, 2, 10, QLatin1Char('0'));
    if (!rol.turno.isEmpty()) {
        QString t = rol.turno;
        t.replace(QRegularExpression(QStringLiteral("[^A-Za-z0-9_-]")), QStringLiteral("_"));
        nombre += QLatin1Char('-') + t;
    }
    return nombre + QStringLiteral(".pdf");
}

} // namespace zuvi::anfitrion
