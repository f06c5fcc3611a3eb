#pragma once

// A catalogue table as the windows edit it: Qt's SQL table model over the
// open connection (rows fetched as they are scrolled to), with the Spanish
// headers of the catalogue's description, flags shown as "Sí", numbers to the
// right, and components that are kits themselves marked.

#include "host/datos/Tablas.h"

#include <QSet>
#include <QSqlTableModel>

namespace zuvi::app {

class ModeloTabla : public QSqlTableModel
{
    Q_OBJECT
public:
    ModeloTabla(const anfitrion::datos::Catalogo &catalogo, const QSqlDatabase &db,
                QObject *padre = nullptr);

    const anfitrion::datos::Catalogo &catalogo() const { return m_catalogo; }
    const anfitrion::datos::Columna &columna(int i) const { return m_catalogo.columnas.at(i); }
    int indice(const QString &columna) const;

    // Narrows to the rows of a search, and (a detail list) to those of the
    // master row: enlace = valor.
    void filtra(const QString &busqueda, const QString &enlace = {}, const QVariant &valor = {});

    // The row's values by column name.
    QVariantMap valores(int fila) const;

    QVariant data(const QModelIndex &i, int rol = Qt::DisplayRole) const override;
    bool select() override;

private:
    const anfitrion::datos::Catalogo &m_catalogo;
    QSet<QString> m_kits; // articles that have a recipe
};

} // namespace zuvi::app
