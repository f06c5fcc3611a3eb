#include "app/catalogos/OrdenesDatos.h"

#include "app/Comandos.h"
#include "host/datos/Csv.h"
#include "host/datos/Importacion.h"
#include "host/datos/Inventario.h"
#include "runtime/Error.h"

#include <QElapsedTimer>
#include <QFile>
#include <QSet>

#include <cstdio>
#include <unistd.h>

namespace zuvi::app {

namespace {

using namespace anfitrion::datos;

class MalArgumento : public Error
{
public:
    using Error::Error;
};

void exige(const LineaComandos &lc, int minimo, int maximo, const QString &forma)
{
    const auto n = lc.argumentos.size();
    if (n < minimo || n > maximo)
        throw MalArgumento(
            QStringLiteral("%1 argumentos. Uso: zuvi-produccion %2")
                .arg(n < minimo ? QStringLiteral("Faltan") : QStringLiteral("Sobran"), forma));
}

const Catalogo &catalogoDe(const QString &nombre)
{
    const Catalogo *c = catalogo(nombre);
    if (!c)
        throw MalArgumento(QStringLiteral("No hay una tabla \"%1\". Las tablas son: %2.")
                               .arg(nombre, nombresCatalogos().join(QStringLiteral(", "))));
    return *c;
}

void escribe(const QByteArray &bytes, FILE *f = stdout)
{
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), f);
    std::fflush(f);
}

// A bar on the terminal's error stream, redrawn when the percentage moves.
class Barra
{
public:
    Barra() : m_activa(isatty(fileno(stderr)) != 0) {}
    ~Barra()
    {
        if (m_activa && m_dibujada)
            std::fputs("\n", stderr);
    }
    void operator()(const QString &fase, qint64 hecho, qint64 total)
    {
        const int pct = total > 0 ? int(hecho * 100 / total) : 100;
        if (!m_activa || (fase == m_fase && pct == m_pct))
            return;
        m_fase = fase;
        m_pct = pct;
        m_dibujada = true;
        const QString barra = QString(pct / 4, u'#') + QString(25 - pct / 4, u'.');
        std::fprintf(stderr, "\r%-12s [%s] %3d%%", qUtf8Printable(fase), qUtf8Printable(barra),
                     pct);
        std::fflush(stderr);
    }

private:
    bool m_activa;
    bool m_dibujada = false;
    QString m_fase;
    int m_pct = -1;
};

int importaArchivo(const LineaComandos &lc)
{
    exige(lc, 2, 2, QStringLiteral("importa TABLA ARCHIVO [--simula]"));
    const Catalogo &c = catalogoDe(lc.argumentos.at(0));
    QFile f(lc.argumentos.at(1));
    if (!f.open(QIODevice::ReadOnly))
        throw MalArgumento(QStringLiteral("No se pudo abrir el archivo %1: %2")
                               .arg(lc.argumentos.at(1), f.errorString()));
    const QByteArray bytes = f.readAll();
    auto sesion = abreSesion(lc);
    QElapsedTimer reloj;
    reloj.start();
    ResultadoImportacion r;
    {
        Barra barra;
        r = importa(sesion->conexion(), c, bytes, lc.simula, std::ref(barra));
    }
    for (const Rechazo &x : r.rechazos)
        avisa(x.texto());
    const QString formato =
        QStringLiteral("%1, separador %2")
            .arg(r.utf8 ? QStringLiteral("UTF-8") : QStringLiteral("Windows-1252"),
                 r.separador == u'\t' ? QStringLiteral("tabulador")
                                      : QStringLiteral("\"%1\"").arg(r.separador));
    if (!r.rechazos.empty()) {
        QSet<int> lineas;
        for (const Rechazo &x : r.rechazos)
            lineas.insert(x.linea);
        avisa(QStringLiteral("%1: %2 filas rechazadas de %3; no se escribió nada (%4).")
                  .arg(c.titulo)
                  .arg(lineas.size())
                  .arg(r.filas)
                  .arg(formato));
        return Fallo;
    }
    std::printf(
        "%s\n",
        qUtf8Printable(
            QStringLiteral("%1: %2 filas revisadas, %3 nuevas y %4 actualizadas%5 "
                           "en %6 s (%7).")
                .arg(c.titulo)
                .arg(r.filas)
                .arg(r.insertadas)
                .arg(r.actualizadas)
                .arg(lc.simula ? QStringLiteral(" (simulación: no se escribió nada)") : QString())
                .arg(double(reloj.elapsed()) / 1000.0, 0, 'f', 1)
                .arg(formato)));
    return Exito;
}

int exportaArchivo(const LineaComandos &lc)
{
    exige(lc, 1, 2, QStringLiteral("exporta TABLA [ARCHIVO]"));
    const Catalogo &c = catalogoDe(lc.argumentos.at(0));
    auto sesion = abreSesion(lc);
    const QByteArray csv = exporta(sesion->conexion(), c);
    if (lc.argumentos.size() == 1) {
        escribe(csv);
        return Exito;
    }
    QFile f(lc.argumentos.at(1));
    if (!f.open(QIODevice::WriteOnly | QIODevice::Truncate) || f.write(csv) != csv.size())
        throw Error(QStringLiteral("No se pudo escribir el archivo %1: %2")
                        .arg(lc.argumentos.at(1), f.errorString()));
    std::printf(
        "%s\n",
        qUtf8Printable(QStringLiteral("%1 escritos en %2.").arg(c.titulo, lc.argumentos.at(1))));
    return Exito;
}

} // namespace

namespace {

// A table for the terminal: columns as wide as their widest cell, the numeric
// ones to the right.
void imprimeTabla(const QStringList &encabezado, const QList<QStringList> &filas,
                  const QList<int> &numericas, const QStringList &pie = {})
{
    QList<qsizetype> ancho;
    for (const QString &e : encabezado)
        ancho << e.size();
    for (const QStringList &f : filas + QList<QStringList>{pie})
        for (int i = 0; i < f.size() && i < ancho.size(); ++i)
            ancho[i] = std::max(ancho[i], f.at(i).size());
    auto linea = [&](const QStringList &f) {
        QStringList celdas;
        for (int i = 0; i < ancho.size(); ++i) {
            const QString t = f.value(i);
            celdas << (numericas.contains(i) ? t.rightJustified(ancho[i])
                                             : t.leftJustified(ancho[i]));
        }
        QString texto = celdas.join(QStringLiteral("  "));
        while (texto.endsWith(u' ')) // only the right: an empty first cell keeps its place
            texto.chop(1);
        std::printf("%s\n", qUtf8Printable(texto));
    };
    linea(encabezado);
    for (const QStringList &f : filas)
        linea(f);
    if (!pie.isEmpty())
        linea(pie);
}

int almacenDe(const LineaComandos &lc)
{
    if (lc.almacen.isEmpty())
        return 0;
    try {
        return enteroDe(lc.almacen, QStringLiteral("El almacén"));
    } catch (const Error &e) {
        throw MalArgumento(e.description());
    }
}

QDate fechaDe(const QString &texto, const QString &opcion)
{
    if (texto.isEmpty())
        return {};
    const QDate d = QDate::fromString(texto.trimmed(), Qt::ISODate);
    if (!d.isValid())
        throw MalArgumento(QStringLiteral("La fecha de %1 debe escribirse AAAA-MM-DD; se recibió "
                                          "\"%2\".")
                               .arg(opcion, texto));
    return d;
}

int listaExistencias(const LineaComandos &lc)
{
    exige(lc, 0, 0, QStringLiteral("existencias [--almacen N] [--csv]"));
    const int almacen = almacenDe(lc);
    auto sesion = abreSesion(lc);
    const QList<Existencia> l = existencias(sesion->conexion(), almacen);
    if (lc.csv) {
        escribe(comoCsv(encabezadoExistencias(), filasExistencias(l)));
        return Exito;
    }
    double cantidad = 0, valor = 0;
    for (const Existencia &e : l) {
        cantidad += e.cantidad;
        valor += e.valor;
    }
    imprimeTabla({QStringLiteral("Artículo"), QStringLiteral("Descripción"), QStringLiteral("Alm."),
                  QStringLiteral("Almacén"), QStringLiteral("Existencia"), QStringLiteral("Costo"),
                  QStringLiteral("Valor")},
                 filasExistencias(l), {2, 4, 5, 6},
                 QStringList{QStringLiteral("Total"), QStringLiteral("%1 renglones").arg(l.size()),
                             QString(), QString(), textoNumero(cantidad), QString(),
                             QString::number(valor, 'f', 2)});
    return Exito;
}

int listaMovimientos(const LineaComandos &lc)
{
    exige(lc, 1, 1,
          QStringLiteral("movimientos ARTICULO [--almacen N] [--desde AAAA-MM-DD] "
                         "[--hasta AAAA-MM-DD] [--csv]"));
    const int almacen = almacenDe(lc);
    const QDate desde = fechaDe(lc.desde, QStringLiteral("--desde"));
    const QDate hasta = fechaDe(lc.hasta, QStringLiteral("--hasta"));
    auto sesion = abreSesion(lc);
    const QString articulo = lc.argumentos.at(0).trimmed();
    if (!existe(sesion->conexion(), QStringLiteral("articulos"), articulo))
        throw MalArgumento(QStringLiteral("No existe el artículo \"%1\".").arg(articulo));
    const QList<Movimiento> l = movimientos(sesion->conexion(), articulo, almacen, desde, hasta);
    if (lc.csv) {
        escribe(comoCsv(encabezadoMovimientos(), filasMovimientos(l)));
        return Exito;
    }
    imprimeTabla({QStringLiteral("Fecha"), QStringLiteral("Tipo"), QStringLiteral("Concepto"),
                  QStringLiteral("Orden"), QStringLiteral("Folio"), QStringLiteral("Usuario"),
                  QStringLiteral("Alm."), QStringLiteral("Entrada"), QStringLiteral("Salida"),
                  QStringLiteral("Costo"), QStringLiteral("Valor"), QStringLiteral("Saldo")},
                 filasMovimientos(l), {3, 6, 7, 8, 9, 10, 11});
    return Exito;
}

} // namespace

bool esOrdenDeDatos(const QString &orden)
{
    static const QStringList ordenes = {QStringLiteral("importa"), QStringLiteral("exporta"),
                                        QStringLiteral("existencias"),
                                        QStringLiteral("movimientos")};
    return ordenes.contains(orden);
}

int ordenDeDatos(const LineaComandos &lc)
{
    try {
        if (lc.orden == QLatin1String("importa"))
            return importaArchivo(lc);
        if (lc.orden == QLatin1String("exporta"))
            return exportaArchivo(lc);
        if (lc.orden == QLatin1String("existencias"))
            return listaExistencias(lc);
        return listaMovimientos(lc);
    } catch (const MalArgumento &e) {
        avisa(e.description());
        return MalUso;
    }
}

} // namespace zuvi::app
