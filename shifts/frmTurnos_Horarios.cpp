// The lower half of the catalogue: the schedule of the selected shift on the
// calendar's date.

#include "shifts/frmTurnos.h"

#include "component/Modulo.h"
#include "runtime/Text.h"
#include "shifts/SentenciasTurnos.h"

#include <QCalendarWidget>
#include <QProgressBar>

namespace zuvi {

void frmTurnos::LLenaHorarios()
{
    atrapa(QStringLiteral("LLenaHorarios"), [this] {
        const QDate fecha = MonthView1->selectedDate();
        Lista *lista = lv(1);
        lista->ponColumnas({{"id", "id"},
                            {"Empleado", "Empleado"},
                            {"Fecha", "Fecha"},
                            {"HoraEntrada", "Hora Entrada"},
                            {"Comida", "Comnida"},
                            {"HoraSalida", "Hora Salida"}});
        QTreeWidgetItem *seleccionado = lv(0)->seleccionado();
        if (!seleccionado)
            return;
        AccesoDatos *datos = modulo::accesoDatos();
        const QSqlDatabase conexion = modulo::requiere(Ambiente)->Conexion();
        const QString literal = datos->FechaSQL(conexion, fecha);
        const QString turno = Lista::clave(seleccionado).mid(1);
        RecordsetPtr rs = datos->Consulta(turnos::cuentaHorarios(literal, turno), conexion, VTrue);
        const double total = datos->ValorNumerico(rs->value(0));
        rs = datos->Consulta(turnos::selectHorarios(literal, turno), conexion, VTrue);
        lista->limpia();
        if (total > 0)
            ProgressBar1->setMaximum(int(total));
        int contador = 0;
        while (!rs->atEnd()) {
            Lista::avanzaBarra(ProgressBar1, ++contador);
            const QString id = rs->text(QStringLiteral("Id"));
            lista->agrega(QStringLiteral("P") + id, id,
                          {Trim(turnos::formatoFecha(rs->value(QStringLiteral("Empleado")))),
                           Trim(rs->text(QStringLiteral("Fecha"))),
                           Trim(rs->text(QStringLiteral("HoraEntrada"))),
                           Trim(rs->text(QStringLiteral("comida"))),
                           Trim(rs->text(QStringLiteral("HoraSalida")))});
            Lista::dejaCorrerEventos();
            rs->moveNext();
        }
        ProgressBar1->setValue(0);
    });
}

} // namespace zuvi
