// The command buttons: finishing, code generation, adding a line, closing,
// and printing the order.

#include "orders/frmOp.h"

#include "core/Modulo.h"

#include <QCheckBox>
#include <QDateEdit>
#include <QPushButton>

namespace zuvi {

void frmOp::Command5_Click()
{
    if (!ValidaTab1())
        return;
    if (Modo == QLatin1String("CONSULTA")) {
        descarga();
        return;
    }
    AccesoDatos *datos = modulo::accesoDatos();
    zuvi::Ambiente *amb = ambiente();
    if (!Check3->isChecked() && !fromVBool(datos->Pregunta(datos->TraeMensaje(759, amb), 2)))
        return;
    if (!DTPicker1->date().isValid() || DTPicker1->date() < QDate(1900, 1, 1)) {
        mensaje(224);
        DTPicker1->setFocus();
        return;
    }
    Command5->setEnabled(false);
    if (CuantasPartidas() == 0) {
        if (!Check3->isChecked())
            mensaje(343);
        if (Check3->isEnabled())
            Check3->setChecked(true);
    }
    SalvaOp();
    if (!SalvaPartidas())
        return;
    if (!Check3->isChecked()) {
        VBool bandera = VTrue;
        iniciaProceso(QStringLiteral("OP007"), bandera);
        if (Check2->isChecked())
            ImprimeOp();
    } else if (Check2->isChecked()) {
        ImprimeOp();
    }
    descarga();
}

void frmOp::Command1_Click()
{
    VBool bandera = VTrue;
    iniciaProceso(QStringLiteral("OP007"), bandera);
}

void frmOp::Command6_Click()
{
    LlenaPartida();
}

void frmOp::Command2_Click()
{
    descarga();
}

void frmOp::ImprimeOp()
{
    atrapa(QStringLiteral("ImprimeOp"), [this] {
        modulo::controlProcesos()->ImprimeReporte(QStringLiteral("ORDENP"), Op, ambiente(), this);
    });
}

} // namespace zuvi
