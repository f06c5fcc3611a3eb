#pragma once

// The host's inventory movement document. The Pon... operations collect the
// values of the next movement; AplicaMovimiento posts it: one row into
// movimientos (importe = cantidad x costo) and the stock of the article in the
// warehouse in existencias (in for "E", out for "S"; the stock row is created
// when missing), both in one transaction of their own. The values stay set
// for the next movement, so a caller changes only what differs.
//
// An assembly or a disassembly is one batch: its header (PonAmbiente onward),
// then the components all in one direction, then the kit in the other. The
// kit's movement is valued at what its components' movements were worth,
// whatever cost it was handed: importe = that value, costo = importe /
// cantidad. So what enters is worth what leaves. A batch opened inside
// another (a kit taken apart while its parent is) is closed by its own kit
// and the outer one goes on.
//
// A batch is posted whole or not at all: one transaction from its first
// movement to the kit that closes it. A movement that fails undoes the
// movements of its batch before them; a batch left without its kit (the
// caller stopped halfway) is undone by descartaTanda, or when the document
// goes. So a lost server or a full disk never leaves half a kit line.

#include "contract/Servicios.h"
#include "host/sql/Sql.h"

#include <QDate>
#include <QList>
#include <QPointer>
#include <QVariant>

#include <memory>
#include <utility>

namespace zuvi::anfitrion {

class DocumentoInventarioAnfitrion : public zuvi::DocumentoInventario
{
    Q_OBJECT
public:
    using zuvi::DocumentoInventario::DocumentoInventario;
    ~DocumentoInventarioAnfitrion() override;

    void PonAmbiente(Ambiente *ambiente) override;
    void PonDatoDocumento(const QVariant &dato) override;
    void PonDatoFecha(qint32 dato) override;
    void PonFecha(const QDate &fecha) override;
    void PonTipo(const QString &tipo) override;
    void PonConcepto(const QString &concepto) override;
    void PonOrden(qint32 orden) override;
    void PonFolio(const QString &folio) override;
    void PonUsuario(const QString &usuario) override;
    void PonAlmacen(double almacen) override;
    void PonArticulo(const QString &articulo) override;
    void PonCantidad(double cantidad) override;
    void PonCosto(double costo) override;
    // Leaves the new movement's id in numero; returns its importe.
    double AplicaMovimiento(qint32 &numero) override;

    // Undoes a batch begun and not closed by its kit; true when there was one.
    bool descartaTanda();

    // The origin values kept with the document (not posted).
    QVariant datoDocumento() const { return m_datoDocumento; }
    qint32 datoFecha() const { return m_datoFecha; }

private:
    // The batch being posted: its components' direction and their value.
    struct Tanda
    {
        QString tipo; // empty until its first movement
        double valor = 0;
    };
    // The value and unit cost of the movement about to be posted.
    std::pair<double, double> valora(const QString &tipo);

    Tanda m_tanda;
    std::unique_ptr<Transaccion> m_transaccion; // of the batch under way
    QList<Tanda> m_externas;
    QPointer<Ambiente> m_ambiente;
    QVariant m_datoDocumento;
    qint32 m_datoFecha = 0;
    QDate m_fecha;
    QString m_tipo, m_concepto, m_folio, m_usuario, m_articulo;
    qint32 m_orden = 0;
    double m_almacen = 0, m_cantidad = 0, m_costo = 0;
};

} // namespace zuvi::anfitrion
