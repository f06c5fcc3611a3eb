#include "shifts/frmTurno.h"

#include "core/Modulo.h"
#include "runtime/Text.h"
#include "shifts/SentenciasTurnos.h"
#include "ui_frmTurno.h"

#include <QComboBox>
#include <QLineEdit>
#include <QProgressBar>
#include <QShortcut>
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

    for (int i = 0; i < 6; ++i) {
        QComboBox *campo = cmbFields(i);
        campo->lineEdit()->setMaxLength(kLargos[i]);
        campo->setEditText(QString());
    }
    // Picture buttons between the lists.
    const QStyle::StandardPixmap iconos[] = {QStyle::SP_MediaSeekForward, QStyle::SP_ArrowRight,
                                             QStyle::SP_ArrowLeft, QStyle::SP_MediaSeekBackward};
    for (int i = 2; i <= 5; ++i)
        cmdButton(i)->setIcon(style()->standardIcon(iconos[i - 2]));
    for (int i : cmdButton.indices())
        connect(cmdButton(i), &QAbstractButton::clicked, this, [this, i] { cmdButton_Click(i); });
    // Escape is "&Cancelar".
    auto *escape = new QShortcut(QKeySequence(Qt::Key_Escape), this);
    connect(escape, &QShortcut::activated, this, [this] { cmdButton_Click(1); });
}

frmTurno::~frmTurno()
{
    delete ui;
}

QString frmTurno::texto(int indice) const
{
    return cmbFields(indice)->currentText();
}

void frmTurno::Form_Load()
{
    atrapa(QStringLiteral("Form_Load"), [this] {
        for (const char *dia :
             {"Lunes", "Martes", "Miercoles", "Jueves", "Viernes", "Sabado", "Dimingo"})
            cmbFields(4)->addItem(QString::fromLatin1(dia));
        AccesoDatos *datos = modulo::accesoDatos();
        // No hour 0: the lists run from 01:00 to 24:30.
        for (int hora = 1; hora <= 24; ++hora) {
            const QString hh = datos->TextoConCeros(hora, 2);
            for (int campo : {1, 2, 3, 5}) {
                cmbFields(campo)->addItem(hh + QStringLiteral(":00"));
                cmbFields(campo)->addItem(hh + QStringLiteral(":30"));
            }
        }
        for (int i = 0; i < 6; ++i) {
            cmbFields(i)->setCurrentIndex(-1);
            cmbFields(i)->setEditText(QString());
        }
        if (Modo == u"MODIFICACION") {
            const QSqlDatabase conexion = modulo::requiere(Ambiente)->Conexion();
            RecordsetPtr rs = datos->Consulta(turnos::selectTurno(Turno), conexion, VTrue);
            const char *columnas[] = {"Turno",  "Entrada",  "comida",
                                      "Salida", "Descanso", "regcomida"};
            for (int i = 0; i < 6; ++i)
                cmbFields(i)->setEditText(rs->text(QString::fromLatin1(columnas[i])));
        }
        LLenaEmpleados();
        LLenaEmpleadosTurno();
        RemueveEnTurno();
        cmbFields(0)->setFocus(Qt::OtherFocusReason);
        datos->PreparaVentana(this, Ambiente, QString());
    });
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
        case 0:
            if (SalvaCambios())
                descarga();
            break;
        case 1:
            descarga();
            break;
        case 2:
            AgregaTodosLosUsuarios();
            break;
        case 3:
            AgregaUsuario();
            break;
        case 4:
            QuitarUsuario();
            break;
        case 5:
            QuitaTodosLosUsuarios();
            break;
        default:
            break;
        }
    });
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
        if (Modo == u"ALTA") {
            RecordsetPtr rs = datos->Consulta(turnos::existeTurno(Trim(texto(0))), conexion, VTrue);
            if (!rs->atEnd()) {
                avisa(832);
                PonFoco(cmbFields(0));
                return;
            }
        }
        // Fields in the order they are checked, with the message of each.
        const std::pair<int, qint32> obligatorios[] = {{0, 833}, {1, 834}, {2, 835},
                                                       {5, 836}, {3, 837}, {4, 838}};
        for (const auto &[campo, mensaje] : obligatorios) {
            if (fromVBool(datos->EstaVacio(texto(campo)))) {
                avisa(mensaje);
                PonFoco(cmbFields(campo));
                return;
            }
        }
        std::unique_ptr<ConstructorSql> sql(datos->NuevoConstructorSql());
        if (!sql)
            throw Error(QStringLiteral("El anfitrión no entregó un constructor de sentencias."));
        sql->PonConexion(conexion);
        if (Modo == u"MODIFICACION") {
            sql->Tipo(QStringLiteral("UPDATE"));
            sql->Condicion(turnos::condicionTurno(Turno));
        } else {
            sql->Tipo(QStringLiteral("INSERT"));
        }
        const QString tabla = QStringLiteral("turnos");
        sql->AgregaCampo(tabla, QStringLiteral("turno"), texto(0));
        sql->AgregaCampo(tabla, QStringLiteral("entrada"), texto(1));
        sql->AgregaCampo(tabla, QStringLiteral("comida"), texto(2));
        sql->AgregaCampo(tabla, QStringLiteral("salida"), texto(3));
        sql->AgregaCampo(tabla, QStringLiteral("descanso"), texto(4));
        sql->AgregaCampo(tabla, QStringLiteral("regcomida"), texto(5));
        sql->Genera(tabla);
        sql->Ejecuta();

        // The members go under the key as it stands in the field now.
        ambiente->EjecutaSQL(turnos::borraMiembros(texto(0)));
        Lista *miembros = lv(1);
        const QString turnoempleado = QStringLiteral("turnoempleado");
        for (int i = 1; i <= miembros->cuenta(); ++i) {
            sql->Limpia();
            sql->Tipo(QStringLiteral("INSERT"));
            sql->AgregaCampo(turnoempleado, QStringLiteral("turno"), texto(0));
            sql->AgregaCampo(turnoempleado, QStringLiteral("empleado"),
                             Trim(miembros->elemento(i)->text(0)));
            sql->Genera(turnoempleado);
            sql->Ejecuta();
        }
        salvado = true;
    });
    return salvado;
}

} // namespace zuvi
