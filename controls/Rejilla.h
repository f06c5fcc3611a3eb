#pragma once

// The lines grid of the order editor (fg2) with the vocabulary its
// procedures use: rows counted with the fixed header row (row 0), a current
// row and column, the text of any cell, column widths in twips (0 hides the
// column while its cells keep their data) and the current cell's geometry.
// Built on QTableWidget: the fixed row is the horizontal header.

#include "core/Exporta.h"

#include <QRect>
#include <QTableWidget>

namespace zuvi {

class ZUVI_PRODUCCION_EXPORT Rejilla : public QTableWidget
{
    Q_OBJECT

public:
    // Screen pixels at 96 dots per inch: 1440 twips an inch.
    static constexpr int TwipsPorPixel = 15;

    explicit Rejilla(QWidget *parent = nullptr);

    int Rows() const;
    void SetRows(int filas);
    int Cols() const { return columnCount(); }
    void SetCols(int columnas);
    int FixedRows() const { return m_fijas; }
    void SetFixedRows(int fijas); // 0 or 1
    int FixedCols() const { return 0; }
    void SetFixedCols(int fijas); // only 0: the editor never fixes a column

    int Row() const { return m_fila; }
    void SetRow(int fila);
    int Col() const { return m_columna; }
    void SetCol(int columna);

    // Out of range is an error ("Subscript out of range"), as it is for the
    // procedures that walk the grid.
    QString TextMatrix(int fila, int columna) const;
    void SetTextMatrix(int fila, int columna, const QString &texto);
    QString Text() const { return TextMatrix(m_fila, m_columna); }
    void SetText(const QString &texto) { SetTextMatrix(m_fila, m_columna, texto); }

    // A column beyond the last one is ignored.
    int ColWidth(int columna) const;
    void SetColWidth(int columna, int twips);

    // The current cell, in twips relative to the grid, and in pixels relative
    // to the grid's parent (where a floating editor is placed).
    int CellLeft() const;
    int CellTop() const;
    int CellWidth() const;
    int CellHeight() const;
    QRect rectanguloCelda() const;

    // Takes a line row out; the grid has one row fewer.
    void RemoveItem(int fila);

    // Alignment of the current cell's text: 0-2 left, 3-5 centred, 6-8
    // right; within each, vertically centred, top, bottom (3 is centred both
    // ways).
    int CellAlignment() const;
    void SetCellAlignment(int alineacion);

Q_SIGNALS:
    // The current cell is about to change: Row() and Col() are still the cell
    // being left. Then the change has happened. Both for the user's moves and
    // for SetRow/SetCol.
    void saleDeCelda();
    void cambiaCelda();

private:
    void exigeCelda(int fila, int columna) const;
    // A move of the current cell from code; the view follows it later.
    void mueveActual(int fila, int columna);
    // Scrolls the current cell into view when a move left it pending.
    void muestraActual();
    QRect rectanguloPropio() const;

    int m_fijas = 1;
    int m_fila = 0;
    int m_columna = 0;
    bool m_moviendo = false;
    bool m_desplazamientoPendiente = false;
};

} // namespace zuvi
