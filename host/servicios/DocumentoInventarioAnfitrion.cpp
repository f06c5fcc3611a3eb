#include "host/servicios/DocumentoInventarioAnfitrion.h"

#include "host/sql/Sql.h"
#include "runtime/Error.h"
#include "runtime/Text.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>

#include <cmath>

namespace zuvi::anfitrion {

namespace {

const QString kInserta = QStringLiteral(
    "INSERT INTO movimientos (tipo, concepto, orden, folio, usuario, fecha, almacen, articulo, "
    "cantidad, costo, importe) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
// One statement moves the stock whether or not the row exists yet.
const QString kExistenciasSQLite = QStringLiteral(
    "INSERT INTO existencias (articulo, almacen, cantidad) VALUES (?, ?, ?) "
    "ON CONFLICT (articulo, almacen) DO UPDATE SET cantidad = cantidad + excluded.cantidad");
const QString kExistenciasMariaDB =
    QStringLiteral("INSERT INTO existencias (articulo, almacen, cantidad) VALUES (?, ?, ?) "
                   "ON DUPLICATE KEY UPDATE cantidad = cantidad + VALUES(cantidad)");

} // namespace

DocumentoInventarioAnfitrion::~DocumentoInventarioAnfitrion()
{
    descartaTanda();
}

bool DocumentoInventarioAnfitrion::descartaTanda()
{
    m_tanda = Tanda();
    m_externas.clear();
    if (!m_transaccion)
        return false;
    m_transaccion.reset(); // rolls back
    return true;
}

void DocumentoInventarioAnfitrion::PonAmbiente(Ambiente *ambiente)
{
    m_ambiente = ambiente;
    // A new header: a batch already under way is an outer one.
    if (!m_tanda.tipo.isEmpty())
        m_externas.append(m_tanda);
    m_tanda = Tanda();
}
void DocumentoInventarioAnfitrion::PonDatoDocumento(const QVariant &dato)
{
    m_datoDocumento = dato;
}
void DocumentoInventarioAnfitrion::PonDatoFecha(qint32 dato)
{
    m_datoFecha = dato;
}
void DocumentoInventarioAnfitrion::PonFecha(const QDate &fecha)
{
    m_fecha = fecha;
}
void DocumentoInventarioAnfitrion::PonTipo(const QString &tipo)
{
    m_tipo = tipo;
}
void DocumentoInventarioAnfitrion::PonConcepto(const QString &concepto)
{
    m_concepto = concepto;
}
void DocumentoInventarioAnfitrion::PonOrden(qint32 orden)
{
    m_orden = orden;
}
void DocumentoInventarioAnfitrion::PonFolio(const QString &folio)
{
    m_folio = folio;
}
void DocumentoInventarioAnfitrion::PonUsuario(const QString &usuario)
{
    m_usuario = usuario;
}
void DocumentoInventarioAnfitrion::PonAlmacen(double almacen)
{
    m_almacen = almacen;
}
void DocumentoInventarioAnfitrion::PonArticulo(const QString &articulo)
{
    m_articulo = articulo;
}
void DocumentoInventarioAnfitrion::PonCantidad(double cantidad)
{
    m_cantidad = cantidad;
}
void DocumentoInventarioAnfitrion::PonCosto(double costo)
{
    m_costo = costo;
}

double DocumentoInventarioAnfitrion::AplicaMovimiento(qint32 &numero)
{
    if (!m_ambiente)
        throw Error(QStringLiteral(
            "El documento de inventario no tiene ambiente: falta llamar a PonAmbiente."));
    const QString tipo = m_tipo.trimmed().toUpper();
    if (tipo.isEmpty())
        throw Error(QStringLiteral("Falta el tipo del movimiento de inventario (E o S)."));
    if (tipo != QLatin1String("E") && tipo != QLatin1String("S"))
        throw Error(QStringLiteral("Tipo de movimiento de inventario no válido: \"%1\" (se "
                                   "espera E o S).")
                        .arg(m_tipo));
    if (m_articulo.trimmed().isEmpty())
        throw Error(QStringLiteral("Falta el artículo del movimiento de inventario."));
    // Nothing that is not a finite number is posted: an infinite value would
    // poison every total of the article from then on.
    if (!std::isfinite(m_cantidad) || !std::isfinite(m_costo) ||
        !std::isfinite(m_cantidad * m_costo) || !std::isfinite(m_almacen))
        throw Error(QStringLiteral("El movimiento de %1 no se registró: la cantidad (%2), el "
                                   "costo (%3) o su importe no es un número finito.")
                        .arg(eco(m_articulo))
                        .arg(m_cantidad, 0, 'g', 15)
                        .arg(m_costo, 0, 'g', 15));

    const QSqlDatabase db = m_ambiente->Conexion();
    const auto [importe, costo] = valora(tipo);
    const qint64 almacen = std::llround(m_almacen);
    const QVariant fecha =
        m_fecha.isValid() ? QVariant(m_fecha) : QVariant(QMetaType::fromType<QDate>());
    const QVariantList fila{tipo,    m_concepto, m_orden,    m_folio, m_usuario, fecha,
                            almacen, m_articulo, m_cantidad, costo,   importe};
    const double cambio = tipo == QLatin1String("E") ? m_cantidad : -m_cantidad;
    const bool lite = motorDe(db) == Motor::SQLite;

    // The row and the stock, and every movement of the batch, go together or
    // not at all. A caller that already holds a transaction keeps it; the
    // batch then joins it.
    if (!m_transaccion)
        m_transaccion = std::make_unique<Transaccion>(db);
    QVariant id;
    try {
        id = ejecutaAccion(db, kInserta, fila).ultimoId;
        ejecutaAccion(db, lite ? kExistenciasSQLite : kExistenciasMariaDB,
                      {m_articulo, almacen, cambio});
    } catch (const Error &e) {
        const bool aMedias = !m_tanda.tipo.isEmpty(); // movements of it came before
        descartaTanda();
        if (!aMedias)
            throw;
        throw Error(e.description() + QStringLiteral(" Los movimientos anteriores de este kit "
                                                     "se deshicieron: no quedó a medias."),
                    e.number());
    }
    numero = id.isValid() ? id.toInt() : 0;
    // Only what was posted counts toward the batch.
    if (m_tanda.tipo.isEmpty() || m_tanda.tipo == tipo) {
        m_tanda.tipo = tipo;
        m_tanda.valor += importe;
    } else {
        m_tanda = m_externas.isEmpty() ? Tanda() : m_externas.takeLast();
        if (m_tanda.tipo.isEmpty()) {
            // The outermost batch is closed by its kit.
            const std::unique_ptr<Transaccion> transaccion = std::move(m_transaccion);
            transaccion->confirma();
        }
    }
    return importe;
}

std::pair<double, double> DocumentoInventarioAnfitrion::valora(const QString &tipo)
{
    if (m_tanda.tipo.isEmpty() || m_tanda.tipo == tipo)
        return {m_cantidad * m_costo, m_costo};
    // The kit: worth its components.
    const double importe = m_tanda.valor;
    return {importe, m_cantidad != 0 ? importe / m_cantidad : 0.0};
}

} // namespace zuvi::anfitrion
