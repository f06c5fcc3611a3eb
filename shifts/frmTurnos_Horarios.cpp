// The lower half of the catalogue: the schedule of the selected shift on the
// calendar's date.

#include "shifts/frmTurnos.h"

#include "core/Modulo.h"
#include "runtime/Text.h"
#include "shifts/LlenaLista.h"
#include "shifts/SentenciasTurnos.h"

#include <QCalendarWidget>

namespace zuvi {

void frmTurnos::LLenaHorarios()
{
    atrapa(QStringLiteral("LLenaHorarios"), [this] {
        const QDate fecha = MonthView1->selectedDate();
        Lista *lista = lv(Listas::Horarios);
        lista->ponColumnas({{"id", "id"},
                            {"Empleado", "Empleado"},
                            {"Fecha", "Fecha"},
                            {"HoraEntrada", "Hora Entrada"},
                            {"Comida", "Comnida"},
                            {"HoraSalida", "Hora Salida"}});
        QTreeWidgetItem *seleccionado = lv(Listas::Turnos)->seleccionado();
        if (!seleccionado)
            return;
        AccesoDatos *datos = modulo::accesoDatos();
        const QString literal = datos->FechaSQL(modulo::requiere(Ambiente)->Conexion(), fecha);
        const QString turno = Lista::clave(seleccionado).mid(1);
        llenaLista(Ambiente, lista, ProgressBar1, turnos::cuentaHorarios(literal, turno),
                   turnos::selectHorarios(literal, turno), [lista](Recordset &rs) {
                       const QString id = rs.text(QStringLiteral("Id"));
                       lista->agrega(
                           QStringLiteral("P") + id, id,
                           {Trim(turnos::formatoFecha(rs.value(QStringLiteral("Empleado")))),
                            Trim(rs.text(QStringLiteral("Fecha"))),
                            Trim(rs.text(QStringLiteral("HoraEntrada"))),
                            Trim(rs.text(QStringLiteral("comida"))),
                            Trim(rs.text(QStringLiteral("HoraSalida")))});
                   });
    });
}

} // namespace zuvi
