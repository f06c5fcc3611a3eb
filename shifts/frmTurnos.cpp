#include "shifts/frmTurnos.h"

#include "core/Modulo.h"
#include "runtime/Text.h"
#include "shifts/LlenaLista.h"
#include "shifts/SentenciasTurnos.h"
#include "shifts/frmTurno.h"
#include "ui_frmTurnos.h"

#include <QCalendarWidget>
#include <QComboBox>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>

namespace zuvi {

frmTurnos::frmTurnos(QWidget *parent)
    : Ventana(QStringLiteral("frmTurnos"), parent), ui(new Ui::frmTurnos)
{
    ui->setupUi(this);
    cmdTurnos = ui->cmdTurnos;
    cmdModificar = ui->cmdModificar;
    cmdEliminar = ui->cmdEliminar;
    Command1 = ui->Command1;
    Label1 = ui->Label1;
    Combo1 = ui->Combo1;
    MonthView1 = ui->MonthView1;
    ProgressBar1 = ui->ProgressBar1;
    lv = arreglo<Lista>(QStringLiteral("lv"));

    connect(cmdTurnos, &QPushButton::clicked, this, [this] { cmdTurnos_Click(); });
    connect(cmdModificar, &QPushButton::clicked, this, [this] { cmdModificar_Click(); });
    connect(cmdEliminar, &QPushButton::clicked, this, [this] { cmdEliminar_Click(); });
    connect(Command1, &QPushButton::clicked, this, [this] { Command1_Click(); });
    // A date chosen with the mouse, or with the keyboard and Enter.
    connect(MonthView1, &QCalendarWidget::clicked, this,
            [this](QDate fecha) { MonthView1_DateClick(fecha); });
    connect(MonthView1, &QCalendarWidget::activated, this,
            [this](QDate fecha) { MonthView1_DateClick(fecha); });
}

frmTurnos::~frmTurnos()
{
    delete ui;
}

void frmTurnos::Form_Load()
{
    atrapa(QStringLiteral("Form_Load"), [this] {
        Combo1->clear();
        Combo1->addItem(QStringLiteral("Día"));
        Combo1->addItem(QStringLiteral("Semana"));
        Combo1->addItem(QStringLiteral("Mes"));
        Combo1->setCurrentIndex(0);
        MonthView1->setSelectedDate(QDate::currentDate());
        LLenaTurnos();
        LLenaHorarios();
        lv(Listas::Turnos)->setFocus(Qt::OtherFocusReason);
        modulo::accesoDatos()->PreparaVentana(this, Ambiente, QString());
    });
}

void frmTurnos::Form_Unload(qint16 &)
{
    atrapa(QStringLiteral("Form_Unload"), [this] {
        modulo::accesoDatos()->LiberaVentana(this, Ambiente, QStringLiteral("frmMaster"));
    });
}

void frmTurnos::LLenaTurnos()
{
    atrapa(QStringLiteral("LLenaTurnos"), [this] {
        Lista *lista = lv(Listas::Turnos);
        lista->ponColumnas({{"Turno", "Turno"},
                            {"Entrada", "Entrada"},
                            {"Comida", "Comida"},
                            {"RegComida", "Regreso de Comida"},
                            {"Salida", "Salida"}});
        llenaLista(Ambiente, lista, ProgressBar1, turnos::cuentaTurnos(), turnos::selectTurnos(),
                   [lista](Recordset &rs) {
                       const QString turno = rs.text(QStringLiteral("Turno"));
                       lista->agrega(QStringLiteral("P") + turno, turno,
                                     {Trim(rs.text(QStringLiteral("Entrada"))),
                                      Trim(rs.text(QStringLiteral("comida"))),
                                      Trim(rs.text(QStringLiteral("regcomida"))),
                                      Trim(rs.text(QStringLiteral("Salida")))});
                   });
    });
}

void frmTurnos::cmdTurnos_Click()
{
    atrapa(QStringLiteral("cmdTurnos_Click"),
           [this] { abreEditor(QStringLiteral("ALTA"), QString()); });
}

void frmTurnos::cmdModificar_Click()
{
    atrapa(QStringLiteral("cmdModificar_Click"), [this] {
        QTreeWidgetItem *seleccionado = lv(Listas::Turnos)->seleccionado();
        if (!seleccionado)
            return;
        // The key as the item holds it, untrimmed.
        abreEditor(QStringLiteral("MODIFICACION"), Lista::clave(seleccionado).mid(1));
    });
}

void frmTurnos::abreEditor(const QString &modo, const QString &turno)
{
    auto *editor = new frmTurno;
    editor->Ambiente = Ambiente;
    editor->Modo = modo;
    editor->Turno = turno;
    // Modal before it is first shown: the load shows it already.
    editor->setWindowModality(Qt::ApplicationModal);
    editor->muestra(true);
    LLenaTurnos();
    LLenaHorarios();
    // The editor handed the focus to the main window as it closed; the user
    // goes on in the catalogue.
    raise();
    activateWindow();
    lv(Listas::Turnos)->setFocus(Qt::OtherFocusReason);
}

void frmTurnos::cmdEliminar_Click()
{
    atrapa(QStringLiteral("cmdEliminar_Click"), [this] {
        QTreeWidgetItem *seleccionado = lv(Listas::Turnos)->seleccionado();
        if (!seleccionado)
            return;
        zuvi::Ambiente *ambiente = modulo::requiere(Ambiente);
        AccesoDatos *datos = modulo::accesoDatos();
        const QString pregunta = datos->TraeMensaje(1, ambiente);
        if (!fromVBool(datos->Pregunta(pregunta, 1)))
            return;
        const QString turno = Trim(Lista::clave(seleccionado).mid(1));
        ambiente->EjecutaSQL(turnos::borraTurno(turno));
        ambiente->EjecutaSQL(turnos::borraMiembros(turno));
        ambiente->EjecutaSQL(turnos::borraHorarios(turno));
        LLenaTurnos();
        LLenaHorarios();
    });
}

void frmTurnos::Command1_Click()
{
    atrapa(QStringLiteral("Command1_Click"), [this] {
        ArgumentosProceso argumentos;
        argumentos.proceso = QStringLiteral("TURNOS003");
        argumentos.objeto = this;
        argumentos.ambiente = Ambiente;
        modulo::controlProcesos()->IniciaProceso(argumentos);
    });
}

void frmTurnos::MonthView1_DateClick(const QDate &)
{
    atrapa(QStringLiteral("MonthView1_DateClick"), [this] { LLenaHorarios(); });
}

} // namespace zuvi
