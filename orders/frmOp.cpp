#include "orders/frmOp.h"
#include "ui_frmOp.h"

#include "controls/CampoFecha.h"
#include "controls/MultiCombo.h"
#include "controls/Rejilla.h"
#include "controls/Teclas.h"
#include "core/Modulo.h"
#include "orders/SentenciasOp.h"
#include "runtime/Text.h"

#include <QCheckBox>
#include <QDateEdit>
#include <QEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>
#include <QTextEdit>

namespace zuvi {

namespace {

struct ColumnaRejilla
{
    const char *titulo;
    int ancho; // twips
};

// The line columns; the hidden ones still hold what the procedures read.
const ColumnaRejilla kColumnas[] = {
    {"Artículo", 1800},    {"QTY", 1800},   {"Precio", 0},       {"Importe", 0},
    {"Descripción", 6000}, {"No de Op", 0}, {"Pr. Cantidad", 0}, {"Presentación", 0},
};

} // namespace

frmOp::frmOp(QWidget *parent)
    : Ventana(QStringLiteral("frmOp"), parent), ui(std::make_unique<Ui::frmOp>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("frmOp"));
    txtFields = arreglo<QLineEdit>(QStringLiteral("txtFields"));
    Label10 = arreglo<QLabel>(QStringLiteral("Label10"));
    DTPicker1 = ui->DTPicker1;
    DTPicker2 = ui->DTPicker2;
    RichTextBox2 = ui->RichTextBox2;
    Check1 = ui->Check1;
    Check2 = ui->Check2;
    Check3 = ui->Check3;
    Check4 = ui->Check4;
    Command1 = ui->Command1;
    Command2 = ui->Command2;
    Command5 = ui->Command5;
    Command6 = ui->Command6;
    fg2 = ui->fg2;
    txtEdit = ui->txtEdit;
    txtEdit->hide();

    MultiCombo1 = ui->MultiCombo1;
    MultiCombo1->PonCaja(txtFields(Campo::Articulo));
    KeyPreview = true; // F3, F6 and F9 work wherever the focus is

    conectaCampos();
    conectaRejilla();
    for (QDateEdit *fecha : {DTPicker1, DTPicker2})
        new CampoFecha(fecha, [this, fecha](const QString &texto) {
            atrapa(fecha->objectName() + QStringLiteral("_Validate"),
                   [&] { modulo::accesoDatos()->Mensaje(texto, 64, ambiente()); });
        });
    for (int i : Label10.indices())
        Label10(i)->installEventFilter(this);

    const auto boton = [this](QPushButton *b, const char *nombre, void (frmOp::*f)()) {
        connect(b, &QPushButton::clicked, this,
                [this, nombre, f] { atrapa(QString::fromLatin1(nombre), [&] { (this->*f)(); }); });
    };
    boton(Command1, "Command1_Click", &frmOp::Command1_Click);
    boton(Command2, "Command2_Click", &frmOp::Command2_Click);
    boton(Command5, "Command5_Click", &frmOp::Command5_Click);
    boton(Command6, "Command6_Click", &frmOp::Command6_Click);

    Timer1.setParent(this);
    Timer1.setSingleShot(false);
    connect(&Timer1, &QTimer::timeout, this,
            [this] { atrapa(QStringLiteral("Timer1_Timer"), [this] { Timer1_Timer(); }); });
}

frmOp::~frmOp() = default;

zuvi::Ambiente *frmOp::ambiente() const
{
    return modulo::requiere(Ambiente);
}

// No trap of its own: a failure reaches the opener, which discards the window.
void frmOp::Form_Load()
{
    zuvi::Ambiente *amb = ambiente();
    AccesoDatos *datos = modulo::accesoDatos();

    disenaRejilla();
    preparaConstructor(datos, amb);
    if (Modo != QLatin1String("ALTA"))
        cargaOrdenExistente(datos, amb);
    else
        iniciaOrdenNueva(datos, amb);
    fg2->SetRow(1);
    fg2->SetCol(0);

    // From here on a view-only window skips whatever fails.
    const bool consulta = Modo == QLatin1String("CONSULTA");
    const auto paso = [consulta](auto &&f) {
        if (consulta)
            swallowErrors(f);
        else
            f();
    };
    habilitaSegunModo(consulta);
    enlazaListaArticulos(amb);
    paso([&] {
        RecordsetPtr parametros = amb->ParametrosEstacion();
        Check4->setChecked(!parametros->atEnd() &&
                           variantToDouble(parametros->value(QStringLiteral("Lector"))) != 0);
    });
    paso([&] { registraVentana(datos, amb); });
    if (!consulta)
        txtFields(Campo::Articulo)->setFocus();
}

void frmOp::disenaRejilla()
{
    fg2->SetRows(101);
    fg2->SetCols(8);
    fg2->SetFixedRows(1);
    fg2->SetFixedCols(0);
    fg2->SetRow(0);
    fg2->SetCol(0);
    for (int c = 0; c < 8; ++c) {
        fg2->SetCol(c);
        fg2->SetColWidth(c, kColumnas[c].ancho);
        fg2->SetText(QString::fromUtf8(kColumnas[c].titulo));
    }
    // The presentation columns get their final headings in a second pass.
    fg2->SetCol(6);
    fg2->SetText(QStringLiteral("Presentación"));
    fg2->SetCol(7);
    fg2->SetText(QStringLiteral("Pr. QTY"));
    fg2->SetColWidth(8, 0);
    fg2->SetColWidth(9, 0);
}

// The statement builder, kept for the window's life.
void frmOp::preparaConstructor(AccesoDatos *datos, zuvi::Ambiente *amb)
{
    m_sql.reset(datos->NuevoConstructorSql());
    m_sql->PonConexion(amb->Conexion());
    if (QObject *rutas = amb->ContenedorRutas())
        m_sql->PonRutas(rutas->property("PathCollection"));
}

// The header and the lines of the order; opened to change it, the order is
// marked busy until the window goes.
void frmOp::cargaOrdenExistente(AccesoDatos *datos, zuvi::Ambiente *amb)
{
    cargaEncabezado(rsOp);
    CostoTotal = rsOp->number(QStringLiteral("costo"));
    if (Modo == QLatin1String("MODIFICACION")) {
        m_sql->Limpia();
        m_sql->Tipo(QStringLiteral("UPDATE"));
        m_sql->AgregaCampo(QStringLiteral("Op"), QStringLiteral("ocupado"),
                           QVariant::fromValue(qint16(1)));
        m_sql->Condicion(sentenciasOp::condicionOpMayuscula(Op));
        m_sql->Genera(QStringLiteral("Op"));
        m_sql->Ejecuta();
    }
    const qint32 numero = rsOp->value(QStringLiteral("Op")).toInt();
    rsPartidas = datos->Consulta(sentenciasOp::partidasCarga(numero), amb->Conexion());
    llenaRejilla();
}

// Today's date in both pickers and the station's warehouse.
void frmOp::iniciaOrdenNueva(AccesoDatos *datos, zuvi::Ambiente *amb)
{
    DTPicker1->setDate(datos->ComponeFecha(amb->DatoFechaA(), amb->DatoFechaB()));
    DTPicker2->setDate(datos->ComponeFecha(amb->DatoFechaA(), amb->DatoFechaB()));
    RecordsetPtr parametros = amb->ParametrosEstacion();
    txtFields(Campo::Almacen)->setText(parametros->text(QStringLiteral("Almacen")));
}

// A viewed order can still generate codes but cannot be finished; every other
// control of it is disabled.
void frmOp::habilitaSegunModo(bool consulta)
{
    if (!consulta) {
        Command1->setEnabled(false);
        Command5->setEnabled(true);
    } else {
        for (QWidget *control : findChildren<QWidget *>()) {
            const bool esControl = qobject_cast<QLineEdit *>(control) ||
                                   qobject_cast<QAbstractButton *>(control) ||
                                   qobject_cast<QDateEdit *>(control) ||
                                   qobject_cast<QTextEdit *>(control) || control == fg2;
            if (esControl && control->parentWidget() && control->objectName().size() > 0 &&
                !control->objectName().startsWith(QLatin1String("qt_")))
                control->setEnabled(false);
        }
        Command1->setEnabled(true);
        Command5->setEnabled(false);
    }
    Command2->setEnabled(true);
}

// The article list under the article field reads the order's connection.
void frmOp::enlazaListaArticulos(zuvi::Ambiente *amb)
{
    MultiCombo1->PonConexion(amb->Conexion());
    MultiCombo1->PonConsulta([](const QString &sql, const QSqlDatabase &conexion) {
        return modulo::accesoDatos()->Consulta(sql, conexion);
    });
    MultiCombo1->PonOrigen(
        sentenciasOp::listaArticulos(),
        {QStringLiteral("Artículo"), QStringLiteral("Descripción"), QStringLiteral("Unidad")});
}

// Process Op001; unless it refused the window, the host prepares the window.
void frmOp::registraVentana(AccesoDatos *datos, zuvi::Ambiente *amb)
{
    iniciaProceso(QStringLiteral("Op001"), Rechazo);
    if (!fromVBool(Rechazo)) {
        datos->PreparaVentana(this, amb, QString(""));
        Rechazo = VFalse;
    }
}

void frmOp::cargaEncabezado(const RecordsetPtr &registro)
{
    AccesoDatos *datos = modulo::accesoDatos();
    txtFields(Campo::Almacen)->setText(registro->text(QStringLiteral("Almacen")));
    DTPicker1->setDate(registro->value(QStringLiteral("F_Emision")).toDate());
    const QVariant entrega = registro->value(QStringLiteral("fechaentrega"));
    DTPicker2->setDate(entrega.isNull() ? QDate::currentDate() : entrega.toDate());
    RichTextBox2->setPlainText(datos->ValorTexto(registro->value(QStringLiteral("Observ"))));
    Check1->setChecked(variantToDouble(registro->value(QStringLiteral("automatico"))) == 1);
}

void frmOp::llenaRejilla()
{
    AccesoDatos *datos = modulo::accesoDatos();
    // Lines beyond the grid's last row stay stored and are not shown, as a new
    // line is when the grid is full.
    for (int i = 1; !rsPartidas->atEnd() && i < fg2->Rows(); ++i, rsPartidas->moveNext()) {
        fg2->SetTextMatrix(i, 0, rsPartidas->text(QStringLiteral("Articulo")));
        fg2->SetTextMatrix(i, 1, rsPartidas->text(QStringLiteral("Cantidad")));
        fg2->SetTextMatrix(i, 2, rsPartidas->text(QStringLiteral("Precio")));
        fg2->SetTextMatrix(i, 4, QLatin1Char(' ') + rsPartidas->text(QStringLiteral("Observ")));
        fg2->SetTextMatrix(i, 5,
                           datos->ValorTexto(rsPartidas->value(QStringLiteral("id_entrada"))));
    }
}

void frmOp::showEvent(QShowEvent *evento)
{
    Ventana::showEvent(evento);
    // A scanner can be used as soon as the window shows.
    if (!m_enfocado && Modo != QLatin1String("CONSULTA") &&
        txtFields(Campo::Articulo)->isEnabled()) {
        m_enfocado = true;
        txtFields(Campo::Articulo)->setFocus(Qt::OtherFocusReason);
    }
}

void frmOp::Form_QueryUnload(qint16 &Cancel, qint16 UnloadMode)
{
    if (UnloadMode == DesdeMenuControl) {
        Cancel = -1;
        Timer1.setInterval(10);
        Timer1.start();
    }
}

void frmOp::Timer1_Timer()
{
    // The timer stays armed while the unload is refused: the next tick
    // tries again, and the window goes once the refusal is cleared.
    if (descarga())
        Timer1.stop();
}

void frmOp::Form_Unload(qint16 &Cancel)
{
    iniciaProceso(QStringLiteral("Op006"), Rechazo);
    if (fromVBool(Rechazo)) {
        Rechazo = VFalse;
        Cancel = -1;
        return;
    }
    zuvi::Ambiente *amb = ambiente();
    if (Modo == QLatin1String("MODIFICACION"))
        amb->EjecutaSQL(sentenciasOp::liberaOp(Op));
    if (Parent)
        QMetaObject::invokeMethod(Parent.data(), "SetFocus");
    modulo::accesoDatos()->LiberaVentana(this, amb, QStringLiteral("frmMaster"));
}

void frmOp::Label10_Click(int Index)
{
    QCheckBox *caja = Index == 1 ? Check3 : Index == 2 ? Check2 : nullptr;
    if (caja && caja->isEnabled())
        caja->setChecked(!caja->isChecked());
}

bool frmOp::eventFilter(QObject *objeto, QEvent *evento)
{
    if (evento->type() == QEvent::MouseButtonRelease &&
        static_cast<QMouseEvent *>(evento)->button() == Qt::LeftButton) {
        const int indice = Label10.indiceDe(objeto);
        if (indice >= 0)
            atrapa(QStringLiteral("Label10_Click"), [&] { Label10_Click(indice); });
    }
    return Ventana::eventFilter(objeto, evento);
}

void frmOp::iniciaProceso(const QString &clave, VBool &bandera)
{
    ArgumentosProceso argumentos;
    argumentos.proceso = clave;
    argumentos.objeto = this;
    argumentos.ambiente = Ambiente;
    argumentos.bandera = bandera;
    modulo::controlProcesos()->IniciaProceso(argumentos);
    bandera = argumentos.bandera;
}

void frmOp::enfoca(int indice)
{
    if (txtFields(indice)->isEnabled())
        txtFields(indice)->setFocus(Qt::OtherFocusReason);
}

void frmOp::mensaje(qint32 numero, qint32 estilo)
{
    AccesoDatos *datos = modulo::accesoDatos();
    zuvi::Ambiente *amb = ambiente();
    datos->Mensaje(datos->TraeMensaje(numero, amb), estilo, amb);
}

bool frmOp::vacio(const QString &texto)
{
    return fromVBool(modulo::accesoDatos()->EstaVacio(texto));
}

} // namespace zuvi
