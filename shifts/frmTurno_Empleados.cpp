// The shift editor's two employee lists, the employees of no shift and the
// members of this one, and the four buttons between them.

#include "shifts/frmTurno.h"

#include "core/Modulo.h"
#include "runtime/Text.h"
#include "shifts/LlenaLista.h"
#include "shifts/SentenciasTurnos.h"

#include <QComboBox>
#include <QProgressBar>

namespace zuvi {

namespace {

// The position of a column, or the error reading it by name would give.
int columna(const Recordset &rs, const QString &nombre)
{
    const int i = rs.indexOf(nombre);
    if (i < 0)
        rs.value(nombre); // raises the recordset's own error for a missing column
    return i;
}

} // namespace

void frmTurno::llenaEmpleados(Lista *lista, const QString &cuenta, const QString &filas)
{
    lista->ponColumnas({{"Empleado", "Empleado"}, {"Nombre", "Nombre"}});
    // The columns by name once, then by position for every row.
    int empleado = -1;
    int nombre = -1;
    const QString p = QStringLiteral("P");
    llenaLista(Ambiente, lista, ProgressBar1, cuenta, filas, [&](Recordset &rs) {
        if (empleado < 0) {
            empleado = columna(rs, QStringLiteral("Empleado"));
            nombre = columna(rs, QStringLiteral("Nombre"));
        }
        const QString clave = Trim(rs.text(empleado));
        lista->agrega(p + clave, clave, {Trim(rs.text(nombre))});
    });
}

void frmTurno::LLenaEmpleados()
{
    atrapa(QStringLiteral("LLenaEmpleados"), [this] {
        llenaEmpleados(lv(Empleados::SinTurno), turnos::cuentaEmpleados(),
                       turnos::selectEmpleados());
    });
}

void frmTurno::LLenaEmpleadosTurno()
{
    atrapa(QStringLiteral("LLenaEmpleadosTurno"), [this] {
        llenaEmpleados(lv(Empleados::DelTurno), turnos::cuentaMiembros(texto(Campo::Turno)),
                       turnos::selectMiembros(texto(Campo::Turno)));
    });
}

void frmTurno::RemueveEnTurno()
{
    atrapa(QStringLiteral("RemueveEnTurno"), [this] {
        RecordsetPtr rs = modulo::accesoDatos()->Consulta(
            turnos::selectTodosLosMiembros(), modulo::requiere(Ambiente)->Conexion(), VTrue);
        const int empleado = rs->atEnd() ? -1 : columna(*rs, QStringLiteral("empleado"));
        while (!rs->atEnd()) {
            Remueve(QStringLiteral("P") + Trim(rs->text(empleado)));
            rs->moveNext();
        }
    });
}

void frmTurno::Remueve(const QString &cKey)
{
    atrapa(QStringLiteral("Remueve"), [this, &cKey] { lv(Empleados::SinTurno)->quita(cKey); });
}

void frmTurno::Remueve2(const QString &cKey)
{
    atrapa(QStringLiteral("Remueve2"), [this, &cKey] { lv(Empleados::DelTurno)->quita(cKey); });
}

void frmTurno::mueveUno(Lista *de, Lista *a)
{
    QTreeWidgetItem *seleccionado = de->seleccionado();
    if (!seleccionado)
        return;
    // Only a listed employee with no name (not in the catalogue) stops the move.
    for (int i = 1; i <= a->cuenta(); ++i) {
        if (Lista::subElemento(a->elemento(i), 1).isEmpty()) {
            avisa(839);
            return;
        }
    }
    const QString clave = Lista::clave(seleccionado);
    const int fila = de->indexOfTopLevelItem(seleccionado);
    a->agrega(clave, seleccionado->text(0), {Lista::subElemento(seleccionado, 1)});
    if (de == lv(Empleados::SinTurno))
        Remueve(clave);
    else
        Remueve2(clave);
    // The next employee is ready for the next move.
    if (de->cuenta() > 0)
        de->selecciona(de->topLevelItem(qMin(fila, de->cuenta() - 1)));
}

void frmTurno::mueveTodos(Lista *de, Lista *a)
{
    for (int i = 1; i <= de->cuenta(); ++i) {
        QTreeWidgetItem *origen = de->elemento(i);
        a->agrega(Lista::clave(origen), origen->text(0), {Lista::subElemento(origen, 1)});
    }
    de->limpia();
}

void frmTurno::AgregaUsuario()
{
    atrapa(QStringLiteral("AgregaUsuario"),
           [this] { mueveUno(lv(Empleados::SinTurno), lv(Empleados::DelTurno)); });
}

void frmTurno::QuitarUsuario()
{
    atrapa(QStringLiteral("QuitarUsuario"),
           [this] { mueveUno(lv(Empleados::DelTurno), lv(Empleados::SinTurno)); });
}

void frmTurno::AgregaTodosLosUsuarios()
{
    atrapa(QStringLiteral("AgregaTodosLosUsuarios"),
           [this] { mueveTodos(lv(Empleados::SinTurno), lv(Empleados::DelTurno)); });
}

void frmTurno::QuitaTodosLosUsuarios()
{
    atrapa(QStringLiteral("QuitaTodosLosUsuarios"),
           [this] { mueveTodos(lv(Empleados::DelTurno), lv(Empleados::SinTurno)); });
}

} // namespace zuvi
