#pragma once

// The shift catalogue: the shifts with their hours, the dated schedule of the
// selected shift for the calendar's date, and the start of the schedule
// generation, which the host's process control runs under "TURNOS003"
// reading Combo1, MonthView1 and the list of shifts from this window.

#include "contract/Servicios.h"
#include "controls/Lista.h"
#include "controls/Ventana.h"
#include "core/Exporta.h"

#include <QPointer>

class QCalendarWidget;
class QComboBox;
class QLabel;
class QProgressBar;
class QPushButton;

namespace Ui {
class frmTurnos;
}

namespace zuvi {

class ZUVI_PRODUCCION_EXPORT frmTurnos : public Ventana
{
    Q_OBJECT
    Q_PROPERTY(QObject *Ambiente READ ambienteObjeto)

public:
    explicit frmTurnos(QWidget *parent = nullptr);
    ~frmTurnos() override;

    QPointer<zuvi::Ambiente> Ambiente;

    QPushButton *cmdTurnos = nullptr;
    QPushButton *cmdModificar = nullptr;
    QPushButton *cmdEliminar = nullptr;
    QPushButton *Command1 = nullptr;
    QLabel *Label1 = nullptr;
    QComboBox *Combo1 = nullptr;
    QCalendarWidget *MonthView1 = nullptr;
    QProgressBar *ProgressBar1 = nullptr;
    // The two lists by what they show; the value is the index.
    struct Listas
    {
        enum : int { Turnos, Horarios };
    };
    ArregloControles<Lista> lv;

    QObject *ambienteObjeto() const { return Ambiente.data(); }

    void LLenaTurnos();
    void LLenaHorarios();

protected:
    void Form_Load() override;
    void Form_Unload(qint16 &Cancel) override;

private:
    void cmdTurnos_Click();
    void cmdModificar_Click();
    void cmdEliminar_Click();
    void Command1_Click();
    void MonthView1_DateClick(const QDate &DateClicked);
    // Opens the editor modally in the mode given, then refreshes both lists.
    void abreEditor(const QString &modo, const QString &turno);

    Ui::frmTurnos *ui;
};

} // namespace zuvi
