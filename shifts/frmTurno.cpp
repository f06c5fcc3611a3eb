#include "shifts/frmTurno.h"

#include "core/Modulo.h"
#include "runtime/Text.h"
#include "shifts/SentenciasTurnos.h"
#include "ui_frmTurno.h"

#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QProgressBar>
#include <QStyle>
#include <QToolButton>

#include <memory>

namespace zuvi {

namespace {

// The column lengths of turnos, by field: turno, entrada, comida, salida,
// descanso, regcomida.
constexpr int kLargos[] = {40, 5, 5, 5, 10, 5};

} // namespace

frmTurno::frmTurno(QWidget *parent)
    : Ventana(QStringLiteral("frmTurno"), parent), ui(new Ui::frmTurno)
{
    ui->setupUi(this);
    cmbFields = arreglo<QComboBox>(QStringLiteral("cmbFields"));
    cmdButton = arreglo<QAbstractButton>(QStringLiteral("cmdButton"));
    lblTurno = arreglo<QLabel>(QStringLiteral("lblTurno"));
    lv = arreglo<Lista>(QStringLiteral("lv"));
    ProgressBar1 = ui->ProgressBar1;

    for (int i = 0; i < Campo::Cuantos; ++i) {
        QComboBox *campo = cmbFields(i);
        campo->lineEdit()->setMaxLength(kLargos[i]);
        campo->setEditText(QString());
    }
    // Picture buttons between the lists.
    const QStyle::StandardPixmap iconos[] = {QStyle::SP_MediaSeekForward, QStyle::SP_ArrowRight,
                                             QStyle::SP_ArrowLeft, QStyle::SP_MediaSeekBackward};
    for (int i = Boton::AgregaTodos; i <= Boton::QuitaTodos; ++i)
        cmdButton(i)->setIcon(style()->standardIcon(iconos[i - Boton::AgregaTodos]));
    for (int i : cmdButton.indices())
        connect(cmdButton(i), &QAbstractButton::clicked, this, [this, i] { cmdButton_Click(i); });
}

frmTurno::~frmTurno()
{
    delete ui;
}

// Escape is "&Cancelar". It arrives here only when no control took it: an
// open drop-down list is a window of its own, and closes with it alone.
void frmTurno::keyPressEvent(QKeyEvent *evento)
{
    if (evento->key() == Qt::Key_Escape && evento->modifiers() == Qt::NoModifier) {
        evento->accept();
        cmdButton_Click(Boton::Cancelar);
        return;
    }
    Ventana::keyPressEvent(evento);
}

QString frmTurno::texto(int indice) const
{
    return cmbFields(indice)->currentText();
}

void frmTurno::Form_Load()
{
    atrapa(QStringLiteral("Form_Load"), [this] {
        AccesoDatos *datos = modulo::accesoDatos();
        llenaHorarios(datos);
        if (Modo == u"MODIFICACION")
            cargaTurno(datos);
        LLenaEmpleados();
        LLenaEmpleadosTurno();
        RemueveEnTurno();
        cmbFields(Campo::Turno)->setFocus(Qt::OtherFocusReason);
        m_alCargar = estado();
        datos->PreparaVentana(this, Ambiente, QString());
    });
}

// The rest days and the half hours; every field starts empty.
void frmTurno::llenaHorarios(AccesoDatos *datos)
{
    for (const char *dia :
         {"Lunes", "Martes", "Miercoles", "Jueves", "Viernes", "Sabado", "Dimingo"})
        cmbFields(Campo::Descanso)->addItem(QString::fromLatin1(dia));
    // No hour 0: the lists run from 01:00 to 24:30.
    for (int hora = 1; hora <= 24; ++hora) {
        const QString hh = datos->TextoConCeros(hora, 2);
        for (int campo : {Campo::Entrada, Campo::Comida, Campo::Salida, Campo::RegresoComida}) {
            cmbFields(campo)->addItem(hh + QStringLiteral(":00"));
            cmbFields(campo)->addItem(hh + QStringLiteral(":30"));
        }
    }
    for (int i = 0; i < Campo::Cuantos; ++i) {
        cmbFields(i)->setCurrentIndex(-1);
        cmbFields(i)->setEditText(QString());
    }
}

void frmTurno::cargaTurno(AccesoDatos *datos)
{
    const QSqlDatabase conexion = modulo::requiere(Ambiente)->Conexion();
    RecordsetPtr rs = datos->Consulta(turnos::selectTurno(Turno), conexion, VTrue);
    const char *columnas[] = {"Turno", "Entrada", "comida", "Salida", "Descanso", "regcomida"};
    for (int i = 0; i < Campo::Cuantos; ++i)
        cmbFields(i)->setEditText(rs->text(QString::fromLatin1(columnas[i])));
}

void frmTurno::Form_Unload(qint16 &)
{
    atrapa(QStringLiteral("Form_Unload"), [this] {
        modulo::accesoDatos()->LiberaVentana(this, Ambiente, QStringLiteral("frmMaster"));
    });
}

void frmTurno::cmdButton_Click(int Index)
{
    atrapa(QStringLiteral("cmdButton_Click"), [this, Index] {
        switch (Index) {
        case Boton::Aceptar:
            if (SalvaCambios())
                descarga();
            break;
        case Boton::Cancelar:
            if (descartaCambios())
                descarga();
            break;
        case Boton::AgregaTodos:
            AgregaTodosLosUsuarios();
            break;
        case Boton::Agrega:
            AgregaUsuario();
            break;
        case Boton::Quita:
            QuitarUsuario();
            break;
        case Boton::QuitaTodos:
            QuitaTodosLosUsuarios();
            break;
        default:
            break;
        }
    });
}

QStringList frmTurno::estado() const
{
    QStringList valores;
    for (int i = 0; i < Campo::Cuantos; ++i)
        valores << texto(i);
    Lista *miembros = lv(Empleados::DelTurno);
    for (int i = 1; i <= miembros->cuenta(); ++i)
        valores << miembros->elemento(i)->text(0);
    return valores;
}

bool frmTurno::descartaCambios()
{
    if (estado() == m_alCargar)
        return true;
    const QString nombre = Trim(texto(Campo::Turno));
    const QString pregunta =
        nombre.isEmpty()
            ? QStringLiteral("El turno nuevo no se ha guardado. ¿Cerrar sin guardarlo?")
            : QStringLiteral("El turno «%1» tiene cambios sin guardar. ¿Cerrar sin guardarlos?")
                  .arg(nombre);
    return fromVBool(modulo::accesoDatos()->Pregunta(pregunta, 2));
}

void frmTurno::PonFoco(QWidget *objControl)
{
    atrapa(QStringLiteral("PonFoco"), [objControl] {
        if (objControl)
            objControl->setFocus(Qt::OtherFocusReason);
    });
}

void frmTurno::avisa(qint32 numero)
{
    AccesoDatos *datos = modulo::accesoDatos();
    zuvi::Ambiente *ambiente = modulo::requiere(Ambiente);
    datos->Mensaje(datos->TraeMensaje(numero, ambiente), 64, ambiente);
}

bool frmTurno::SalvaCambios()
{
    bool salvado = false;
    atrapa(QStringLiteral("SalvaCambios"), [this, &salvado] {
        AccesoDatos *datos = modulo::accesoDatos();
        zuvi::Ambiente *ambiente = modulo::requiere(Ambiente);
        const QSqlDatabase conexion = ambiente->Conexion();
        if (rechaza(datos, conexion))
            return;
        std::unique_ptr<ConstructorSql> sql(datos->NuevoConstructorSql());
        if (!sql)
            throw Error(QStringLiteral("El anfitrión no entregó un constructor de sentencias."));
        sql->PonConexion(conexion);
        guardaTurno(sql.get());
        guardaMiembros(sql.get(), ambiente);
        salvado = true;
    });
    return salvado;
}

bool frmTurno::rechaza(AccesoDatos *datos, const QSqlDatabase &conexion)
{
    if (Modo == u"ALTA") {
        RecordsetPtr rs =
            datos->Consulta(turnos::existeTurno(Trim(texto(Campo::Turno))), conexion, VTrue);
        if (!rs->atEnd()) {
            avisa(832);
            PonFoco(cmbFields(Campo::Turno));
            return true;
        }
    }
    // Fields in the order they are checked, with the message of each.
    const std::pair<int, qint32> obligatorios[] = {
        {Campo::Turno, 833},         {Campo::Entrada, 834}, {Campo::Comida, 835},
        {Campo::RegresoComida, 836}, {Campo::Salida, 837},  {Campo::Descanso, 838}};
    for (const auto &[campo, mensaje] : obligatorios) {
        if (fromVBool(datos->EstaVacio(texto(campo)))) {
            avisa(mensaje);
            PonFoco(cmbFields(campo));
            return true;
        }
    }
    return false;
}

void frmTurno::guardaTurno(ConstructorSql *sql)
{
    if (Modo == u"MODIFICACION") {
        sql->Tipo(QStringLiteral("UPDATE"));
        sql->Condicion(turnos::condicionTurno(Turno));
    } else {
        sql->Tipo(QStringLiteral("INSERT"));
    }
    const QString tabla = QStringLiteral("turnos");
    sql->AgregaCampo(tabla, QStringLiteral("turno"), texto(Campo::Turno));
    sql->AgregaCampo(tabla, QStringLiteral("entrada"), texto(Campo::Entrada));
    sql->AgregaCampo(tabla, QStringLiteral("comida"), texto(Campo::Comida));
    sql->AgregaCampo(tabla, QStringLiteral("salida"), texto(Campo::Salida));
    sql->AgregaCampo(tabla, QStringLiteral("descanso"), texto(Campo::Descanso));
    sql->AgregaCampo(tabla, QStringLiteral("regcomida"), texto(Campo::RegresoComida));
    sql->Genera(tabla);
    sql->Ejecuta();
}

// The members go under the key as it stands in the field now.
void frmTurno::guardaMiembros(ConstructorSql *sql, zuvi::Ambiente *ambiente)
{
    ambiente->EjecutaSQL(turnos::borraMiembros(texto(Campo::Turno)));
    Lista *miembros = lv(Empleados::DelTurno);
    const QString turnoempleado = QStringLiteral("turnoempleado");
    for (int i = 1; i <= miembros->cuenta(); ++i) {
        sql->Limpia();
        sql->Tipo(QStringLiteral("INSERT"));
        sql->AgregaCampo(turnoempleado, QStringLiteral("turno"), texto(Campo::Turno));
        sql->AgregaCampo(turnoempleado, QStringLiteral("empleado"),
                         Trim(miembros->elemento(i)->text(0)));
        sql->Genera(turnoempleado);
        sql->Ejecuta();
    }
}

} // namespace zuvi
