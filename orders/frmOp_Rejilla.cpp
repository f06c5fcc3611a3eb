// Editing the lines grid in place: a floating text box over the current cell
// takes what is typed and is written back (and saved) when the user leaves
// it; the window-wide function keys.

#include "orders/frmOp.h"

#include "controls/Rejilla.h"
#include "controls/Teclas.h"
#include "core/Modulo.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>

namespace zuvi {

namespace {
// Columns edited in place: quantity and price.
constexpr int kUltimaEditable = 2;
// Columns whose editor takes every character: description and presentation.
bool tomaTodo(int columna)
{
    return columna == 4 || columna == 6;
}
// How a visited cell is shown.
constexpr int kAlineacionVisitada = 3;
} // namespace

void frmOp::conectaRejilla()
{
    conectaEventos(
        fg2, QStringLiteral("fg2"),
        {{},
         [this](int) { atrapa(QStringLiteral("Fg2_GotFocus"), [this] { Fg2_GotFocus(); }); },
         {},
         [this](int) { fg2_DblClick(); }});
    conectaTeclas(fg2, QStringLiteral("fg2"),
                  {[this](int, qint16 &KeyCode, qint16 Shift) { fg2_KeyDown(KeyCode, Shift); },
                   [this](int, qint16 &KeyAscii) {
                       atrapa(QStringLiteral("Fg2_KeyPress"), [&] { Fg2_KeyPress(KeyAscii); });
                       KeyAscii = 0; // the grid itself never takes a typed character
                   },
                   {}});
    conectaTeclas(txtEdit, QStringLiteral("txtEdit"),
                  {[this](int, qint16 &KeyCode, qint16 Shift) { txtEdit_KeyDown(KeyCode, Shift); },
                   [this](int, qint16 &KeyAscii) { txtEdit_KeyPress(KeyAscii); },
                   {}});
    connect(fg2, &Rejilla::saleDeCelda, this,
            [this] { atrapa(QStringLiteral("Fg2_LeaveCell"), [this] { Fg2_LeaveCell(); }); });
    connect(fg2, &Rejilla::cambiaCelda, this,
            [this] { atrapa(QStringLiteral("fg2_RowColChange"), [this] { fg2_RowColChange(); }); });
}

void frmOp::MSFlexGridEdit(Rejilla *grid, QLineEdit *editor, qint16 &KeyAscii)
{
    atrapa(QStringLiteral("MSFlexGridEdit"), [&] {
        if (KeyAscii < 0 || KeyAscii > teclas::Espacio) {
            if (vacio(grid->TextMatrix(grid->Row(), 0)))
                return; // a line without an article is not edited
            // The typed character replaces whatever the editor held.
            editor->selectAll();
            qint32 tecla = KeyAscii;
            const qint16 filtrada =
                qint16(modulo::accesoDatos()->FiltroTecla(VTrue, editor, tecla));
            if (filtrada != 0)
                editor->setText(QString(QChar(ushort(filtrada))));
            else if (grid->Col() == 6)
                editor->setText(QString(QChar(ushort(KeyAscii))));
            else
                return;
            editor->setCursorPosition(1);
        } else {
            // A double-click: the cell's text, the caret at its end.
            editor->setText(grid->Text());
            editor->setCursorPosition(1000);
        }
        if (grid->Col() == 0 || Modo == QLatin1String("CONSULTA") || grid->Col() > kUltimaEditable)
            return;
        editor->setGeometry(grid->rectanguloCelda());
        editor->raise();
        editor->show();
        if (editor->isEnabled())
            editor->setFocus(Qt::OtherFocusReason);
    });
}

void frmOp::EditKeyCode(Rejilla *grid, QLineEdit *editor, qint16 KeyCode,
                        [[maybe_unused]] qint16 Shift)
{
    atrapa(QStringLiteral("EditKeyCode"), [&] {
        switch (KeyCode) {
        case teclas::Enter:
            grid->setFocus(Qt::OtherFocusReason); // which writes the edit back
            break;
        case teclas::Escape:
            m_descartaEdicion = true;
            grid->setFocus(Qt::OtherFocusReason);
            m_descartaEdicion = false;
            editor->hide();
            break;
        case teclas::Arriba:
            grid->setFocus(Qt::OtherFocusReason);
            if (grid->Row() > grid->FixedRows())
                grid->SetRow(grid->Row() - 1);
            break;
        case teclas::Abajo:
            grid->setFocus(Qt::OtherFocusReason);
            if (grid->Row() < grid->Rows() - 1)
                grid->SetRow(grid->Row() + 1);
            break;
        default:
            break;
        }
    });
}

void frmOp::escribeEdicion()
{
    if (!txtEdit->isVisible() || m_descartaEdicion)
        return;
    fg2->SetText(txtEdit->text());
    txtEdit->clear();
    txtEdit->hide();
    SalvaCambios();
}

void frmOp::Fg2_KeyPress(qint16 &KeyAscii)
{
    MSFlexGridEdit(fg2, txtEdit, KeyAscii);
}

void frmOp::Fg2_GotFocus()
{
    escribeEdicion();
}

void frmOp::Fg2_LeaveCell()
{
    if (fg2->Row() > 0)
        fg2->SetCellAlignment(kAlineacionVisitada);
    escribeEdicion();
}

void frmOp::fg2_RowColChange()
{
    if (fg2->Row() >= 1)
        fg2->SetCellAlignment(kAlineacionVisitada);
}

void frmOp::fg2_DblClick()
{
    if (vacio(fg2->TextMatrix(fg2->Row(), 0)))
        return;
    qint16 espacio = teclas::Espacio;
    MSFlexGridEdit(fg2, txtEdit, espacio);
}

void frmOp::txtEdit_KeyPress(qint16 &KeyAscii)
{
    if (KeyAscii == teclas::Enter) {
        KeyAscii = 0; // txtEdit_KeyDown has handled it
        return;
    }
    if (!tomaTodo(fg2->Col())) {
        qint32 tecla = KeyAscii;
        KeyAscii = qint16(modulo::accesoDatos()->FiltroTecla(VTrue, txtEdit, tecla));
    }
}

void frmOp::txtEdit_KeyDown(qint16 &KeyCode, qint16 Shift)
{
    EditKeyCode(fg2, txtEdit, KeyCode, Shift);
    if (KeyCode == teclas::Enter || KeyCode == teclas::Escape || KeyCode == teclas::Arriba ||
        KeyCode == teclas::Abajo)
        KeyCode = 0;
}

void frmOp::Form_KeyDown(qint16 &KeyCode, [[maybe_unused]] qint16 Shift)
{
    switch (KeyCode) {
    case teclas::F3:
        KeyCode = 0;
        if (Check4->isChecked()) {
            Check4->setChecked(false);
        } else {
            Check4->setChecked(true);
            enfoca(Campo::Articulo);
        }
        break;
    case teclas::F6: // "&Generar códigos  (F6)", in every mode
        KeyCode = 0;
        Command1_Click();
        break;
    case teclas::F9:
        KeyCode = 0;
        LlenaPartida();
        break;
    default:
        break;
    }
}

} // namespace zuvi
