#pragma once

// The shift editor: one row of turnos, new ("ALTA") or modified
// ("MODIFICACION"), with the employees that belong to it. One list holds the
// employees of no shift, the other the members; nothing is written until
// "&Aceptar" saves. The opener sets Ambiente, Modo and, to modify, Turno,
// then shows it modally.

#include "contract/Servicios.h"
#include "controls/Lista.h"
#include "controls/Ventana.h"
#include "core/Exporta.h"

#include <QPointer>
#include <QStringList>

class QAbstractButton;
class QComboBox;
class QKeyEvent;
class QLabel;
class QProgressBar;

namespace Ui {
class frmTurno;
}

namespace zuvi {

class ZUVI_PRODUCCION_EXPORT frmTurno : public Ventana
{
    Q_OBJECT
    Q_PROPERTY(QObject *Ambiente READ ambienteObjeto)
    Q_PROPERTY(QString Modo MEMBER Modo)
    Q_PROPERTY(QString Turno MEMBER Turno)

public:
    explicit frmTurno(QWidget *parent = nullptr);
    ~frmTurno() override;

    QPointer<zuvi::Ambiente> Ambiente;
    QString Modo;  // "ALTA" or "MODIFICACION"
    QString Turno; // the key of the shift being modified

    // The members of the control arrays by what they are; the value is the
    // index (cmbFields(Campo::Entrada) is cmbFields(1)).
    struct Campo
    {
        enum : int { Turno, Entrada, Comida, Salida, Descanso, RegresoComida, Cuantos };
    };
    struct Boton
    {
        enum : int { Aceptar, Cancelar, AgregaTodos, Agrega, Quita, QuitaTodos };
    };
    struct Empleados
    {
        enum : int { SinTurno, DelTurno };
    };

    ArregloControles<QComboBox> cmbFields;
    ArregloControles<QAbstractButton> cmdButton;
    ArregloControles<QLabel> lblTurno;
    ArregloControles<Lista> lv;
    QProgressBar *ProgressBar1 = nullptr;

    QObject *ambienteObjeto() const { return Ambiente.data(); }

    // The text of a field as the procedures read it.
    QString texto(int indice) const;

    bool SalvaCambios();

    // Employee assignment (frmTurno_Empleados.cpp).
    void LLenaEmpleados();
    void LLenaEmpleadosTurno();
    void RemueveEnTurno();
    void Remueve(const QString &cKey);
    void Remueve2(const QString &cKey);
    void AgregaUsuario();
    void AgregaTodosLosUsuarios();
    void QuitarUsuario();
    void QuitaTodosLosUsuarios();

protected:
    void Form_Load() override;
    void Form_Unload(qint16 &Cancel) override;
    void keyPressEvent(QKeyEvent *evento) override;

private:
    void cmdButton_Click(int Index);
    // The steps of Form_Load and SalvaCambios.
    void llenaHorarios(AccesoDatos *datos);
    void cargaTurno(AccesoDatos *datos);
    // The first check that refuses the shift, with its message; false when
    // every check passed.
    bool rechaza(AccesoDatos *datos, const QSqlDatabase &conexion);
    void guardaTurno(ConstructorSql *sql);
    void guardaMiembros(ConstructorSql *sql, zuvi::Ambiente *ambiente);
    void PonFoco(QWidget *objControl);
    // What the fields and the member list hold, to tell whether "&Cancelar"
    // would lose changes; true when there are none or the user lets them go.
    QStringList estado() const;
    bool descartaCambios();
    QStringList m_alCargar;
    // Shows a message of the catalogue as information.
    void avisa(qint32 numero);
    // Moves one item from `de` to `a` after the empty-name test over `a`'s
    // items (AgregaUsuario, QuitarUsuario).
    void mueveUno(Lista *de, Lista *a);
    // Moves every item of `de` to `a`, then clears `de`.
    void mueveTodos(Lista *de, Lista *a);
    // Fills a list of employees with the count-then-rows pattern.
    void llenaEmpleados(Lista *lista, const QString &cuenta, const QString &filas);

    Ui::frmTurno *ui;
};

} // namespace zuvi
