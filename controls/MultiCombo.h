#pragma once

// A text box with a table of rows that drops down under it: the container of
// the editor's article field. ShowData reads the rows of its source from the
// connection, through the query function the window hands it, shows those
// that match what the box holds and keeps narrowing them as the user types
// (any column, ignoring case and accents). While the list is down the box
// keeps the keyboard: Down and Up move through the rows, Enter or a click
// writes the chosen row's first column into the box, Escape closes the list,
// and so does leaving the box. The button beside the box drops it down too.

#include "core/Exporta.h"
#include "runtime/Recordset.h"

#include <QLineEdit>
#include <QPointer>
#include <QSqlDatabase>
#include <QTableWidget>
#include <QWidget>

#include <functional>

class QKeyEvent;

class QToolButton;

namespace zuvi {

class ZUVI_PRODUCCION_EXPORT MultiCombo : public QWidget
{
    Q_OBJECT

public:
    using FuncionConsulta =
        std::function<RecordsetPtr(const QString &sql, const QSqlDatabase &conexion)>;

    // Rows shown at most; narrowing the text finds the others.
    static constexpr int MaximoFilas = 200;

    explicit MultiCombo(QWidget *parent = nullptr);
    ~MultiCombo() override;

    // The box it hosts; the drop button goes beside it in the container's layout.
    void PonCaja(QLineEdit *caja);
    QLineEdit *caja() const { return m_caja; }

    void PonConexion(const QSqlDatabase &conexion) { m_conexion = conexion; }
    void PonConsulta(FuncionConsulta consulta) { m_consulta = std::move(consulta); }
    // The row source: a SELECT whose first column is the key written into the
    // box, and the headings of its columns.
    void PonOrigen(const QString &sql, const QStringList &titulos);

    // Reads the rows (an error of the query reaches the caller) and drops the
    // list down under the box.
    void ShowData();
    void cierraLista();
    bool listaVisible() const;
    QTableWidget *lista() const { return m_lista; }

    // A key aimed at the box: true when the open list took it.
    bool teclaDeLista(QKeyEvent *evento);

protected:
    bool eventFilter(QObject *objeto, QEvent *evento) override;

private:
    void filtra();
    void elige(int fila);
    void coloca();

    QPointer<QLineEdit> m_caja;
    QToolButton *m_boton = nullptr;
    QPointer<QTableWidget> m_lista;
    QSqlDatabase m_conexion;
    FuncionConsulta m_consulta;
    QString m_origen;
    QStringList m_titulos;
    QList<QStringList> m_filas;
    QList<QString> m_claves; // each row, folded for matching
};

} // namespace zuvi
