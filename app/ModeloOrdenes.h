#pragma once

// The main window's list of production orders, read a page at a time as the
// list scrolls: the database filters and orders by the order number or by
// the date of issue (indexes serve both), and a changed order is read again
// on its own instead of the whole list.

#include <QAbstractTableModel>
#include <QDate>
#include <QSqlDatabase>
#include <QVariantList>

#include <vector>

namespace zuvi::app {

struct FiltroOrdenes
{
    enum class Estado { SinCerrar, Cerradas, Todas };
    Estado estado = Estado::SinCerrar;
    QDate desde, hasta;      // of issue; an invalid date sets no bound
    QString texto;           // an order number, or words all found in the observations
    bool porEmision = false; // by the date of issue (then the number), not the number
    bool ascendente = false; // by default the newest first
};

class ModeloOrdenes : public QAbstractTableModel
{
    Q_OBJECT
public:
    enum Columna {
        ColOp,
        ColEstado,
        ColEmision,
        ColAlmacen,
        ColObserv,
        ColCerrado,
        ColPartidas,
        ColOcupada,
        Columnas
    };

    explicit ModeloOrdenes(QSqlDatabase db, QObject *padre = nullptr);

    const FiltroOrdenes &filtro() const { return m_filtro; }
    // Reads the first page under the new filter. Throws Error on a failed read.
    void ponFiltro(const FiltroOrdenes &filtro);
    // Reads again as many rows as are loaded (at least a page).
    void recarga();
    // Reads one order again: its row changes, leaves when it no longer passes
    // the filter (or was deleted), or comes in where it belongs when it now
    // passes and falls among the rows loaded.
    void refrescaOrden(qint32 op);
    // Orders numbered above the highest one known at the last reading.
    void refrescaNuevas();

    int filaDe(qint32 op) const;
    qint32 orden(int fila) const;
    // Who holds the order open; empty when it is free.
    QString ocupadaPor(int fila) const;

    int rowCount(const QModelIndex &padre = {}) const override;
    int columnCount(const QModelIndex &padre = {}) const override;
    QVariant data(const QModelIndex &indice, int rol = Qt::DisplayRole) const override;
    QVariant headerData(int seccion, Qt::Orientation orientacion, int rol) const override;
    bool canFetchMore(const QModelIndex &padre) const override;
    void fetchMore(const QModelIndex &padre) override;

    static constexpr int kPagina = 200;

signals:
    // A page could not be read while scrolling.
    void falloLectura(const QString &texto);

private:
    void sigue();
    struct Fila
    {
        qint32 op = 0;
        QString estado, emision, observ, ocupada;
        QVariant fecha; // the date of issue as stored (ISO text), null when it has none
        QVariant almacen;
        bool cerrado = false, ocupadaNula = true;
        qint64 partidas = 0;
    };

    // The rows passing the filter and the extra condition, in the list's
    // order, at most limite of them (0: all).
    std::vector<Fila> lee(const QString &condicionExtra, const QVariantList &valoresExtra,
                          int limite) const;
    bool antesQue(const Fila &a, const Fila &b) const; // a goes above b
    void anotaMayor();
    void leeDesdeElPrincipio(int cuantas);

    QSqlDatabase m_db;
    FiltroOrdenes m_filtro;
    std::vector<Fila> m_filas;
    bool m_hayMas = false;
    qint32 m_mayor = 0;
};

} // namespace zuvi::app
