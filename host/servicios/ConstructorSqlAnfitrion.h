#pragma once

// The host's statement builder. Columns are collected with their values and
// the statement is run with '?' placeholders and bound values, so nothing is
// quoted by hand; Genera returns the same statement with the values written
// in, which is what the statement trace records.
//
// Rules the builder keeps:
// - Tipo takes "INSERT" or "UPDATE" (any case); anything else is an Error.
// - Columns belong to the table handed to Genera; a column added for another
//   table is an Error, as is a column or table name that is not a plain name.
// - An UPDATE with no columns generates nothing and Ejecuta then succeeds
//   without touching the database. An UPDATE with columns needs a condition
//   (a whole-table UPDATE is never what the module means); the condition text
//   is appended after WHERE as handed over.
// - An INSERT with no columns is an Error; an INSERT ignores the condition.
// - Ejecuta without a Genera since the last change, or without a connection,
//   is an Error.
// - A quantity of an order line (oppart.cantidad) that is not a number above
//   zero is not written (host/CantidadPartida.h).
// - Values keep their type: whole numbers, reals, texts, dates, times, date
//   times, booleans (as 1/0) and null; a QObject* stands for its default text.

#include "contract/Servicios.h"

#include <QList>
#include <QVariantList>

namespace zuvi::anfitrion {

// The default text of an object handed over as a value: its "Text" or "text"
// property, otherwise its object name.
QString textoPorOmision(const QObject *objeto);

// A value with a QObject* replaced by its default text; other values as they are.
QVariant valorSimple(const QVariant &valor);

class ConstructorSqlAnfitrion : public zuvi::ConstructorSql
{
    Q_OBJECT
public:
    using zuvi::ConstructorSql::ConstructorSql;

    void PonConexion(const QSqlDatabase &conexion) override;
    void PonRutas(const QVariant &coleccion) override;
    void Limpia() override;
    void Tipo(const QString &tipo) override;
    void AgregaCampo(const QString &tabla, const QString &columna, const QVariant &valor) override;
    void Condicion(const QString &condicion) override;
    QString Genera(const QString &tabla) override;
    void Ejecuta() override;

    // What Genera prepared: the statement with placeholders and its values.
    QString sentencia() const { return m_sentencia; }
    QVariantList valores() const { return m_valores; }

private:
    struct Campo
    {
        QString tabla, columna;
        QVariant valor;
    };

    void invalida() { m_generado = false; }
    struct MarcaOcupada
    {
        qint32 op = 0; // the order whose busy mark the statement sets, or 0
        bool ocupada = false;
    };
    MarcaOcupada marcaOcupada() const;
    void reclamaParaEditar(qint32 op);

    QSqlDatabase m_conexion;
    bool m_hayConexion = false;
    QVariant m_rutas;
    QString m_tipo;
    QList<Campo> m_campos;
    QString m_condicion;

    bool m_generado = false;
    QString m_sentencia; // empty when there is nothing to run
    QVariantList m_valores;
    QString m_texto;
    QString m_tabla; // of the last Genera
};

} // namespace zuvi::anfitrion
