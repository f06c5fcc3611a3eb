#pragma once

// The production order editor. Its opener (Produccion::NuevaOp, ModificaOp,
// ConsultaOp) sets Modo, Op, Ambiente, Parent and the header record, then
// shows it. The class is split by concern: frmOp.cpp load, modes and closing;
// frmOp_Guarda.cpp saving; frmOp_Partidas.cpp line entry and lookups;
// frmOp_Comandos.cpp buttons and printing; frmOp_Campos.cpp the header
// fields' events and lookups; frmOp_Rejilla.cpp editing the grid in place.

#include "contract/Servicios.h"
#include "controls/Ventana.h"
#include "core/Exporta.h"

#include <QPointer>
#include <QTimer>

#include <memory>

class QCheckBox;
class QDateEdit;
class QLabel;
class QLineEdit;
class QPushButton;
class QTextEdit;

namespace Ui {
class frmOp;
}

namespace zuvi {

class MultiCombo;
class Rejilla;

class ZUVI_PRODUCCION_EXPORT frmOp : public Ventana
{
    Q_OBJECT
    Q_PROPERTY(QString Modo MEMBER Modo)
    Q_PROPERTY(qint32 Op MEMBER Op)
    Q_PROPERTY(QObject *Ambiente READ ambienteObjeto)

public:
    explicit frmOp(QWidget *parent = nullptr);
    ~frmOp() override;

    // The members of txtFields by what they hold; the value is the index, so
    // txtFields(Campo::Articulo) is txtFields(4). The fields named EncabezadoN
    // and Partida7 have no control of their own in this layout: they only
    // take part in the Enter/Tab and F8 navigation.
    struct Campo
    {
        enum : int {
            OrdenCompra = 0,
            Descripcion = 1,
            Articulo = 4,
            Cantidad = 5,
            Precio = 6,
            Partida7 = 7,
            Impuesto = 8,
            Importe = 11,
            Encabezado13 = 13,
            Almacen = 14,
            Moneda = 15,
            TipoCambio = 16,
            Encabezado17 = 17,
            Encabezado18 = 18,
            Encabezado19 = 19,
            Encabezado22 = 22,
            Encabezado23 = 23,
            ClaveAdicional = 24,
            ClaveDato1 = 25,
            ClaveDato2 = 26,
            Unidad = 27,
            ClaveDetalle = 28,
            ClaveUnidad = 29,
            Ultimo = ClaveUnidad,
        };
    };

    // --- set by the opener ---
    QString Modo;
    qint32 Op = 0;
    QPointer<zuvi::Ambiente> Ambiente;
    QPointer<QObject> Parent;
    RecordsetPtr rsOp; // the order's op row; unused in "ALTA"

    // --- what the window keeps ---
    RecordsetPtr rsPartidas; // the order's lines
    // Set by the host's process control to refuse the window's next guarded
    // step (closing, adding a line); each guarded step clears it.
    VBool Rechazo = VFalse;
    // Cost of the lines: the order's stored cost plus what this window added.
    double CostoTotal = 0;

    // --- controls ---
    ArregloControles<QLineEdit> txtFields;
    ArregloControles<QLabel> Label10;
    QDateEdit *DTPicker1 = nullptr;
    QDateEdit *DTPicker2 = nullptr;
    QTextEdit *RichTextBox2 = nullptr;
    QCheckBox *Check1 = nullptr;
    QCheckBox *Check2 = nullptr;
    QCheckBox *Check3 = nullptr;
    QCheckBox *Check4 = nullptr;
    QPushButton *Command1 = nullptr;
    QPushButton *Command2 = nullptr;
    QPushButton *Command5 = nullptr;
    QPushButton *Command6 = nullptr;
    MultiCombo *MultiCombo1 = nullptr; // hosts the article field with its list
    Rejilla *fg2 = nullptr;
    QLineEdit *txtEdit = nullptr;
    QTimer Timer1;

    QObject *ambienteObjeto() const { return Ambiente.data(); }
    ConstructorSql *constructorSql() const { return m_sql.get(); }

    // Saving (frmOp_Guarda.cpp).
    void CreaOp();
    void SalvaOp();
    void SalvaCambios();
    qint32 CuantasPartidas();
    bool SalvaPartidas();

    // Line entry (frmOp_Partidas.cpp).
    void LlenaPartida();
    void NuevaPartida();
    void PonDescripcion();
    void PonTC();
    bool ValidaTab1();
    QString TraeVends();

    // Commands (frmOp_Comandos.cpp).
    void Command1_Click();
    void Command2_Click();
    void Command5_Click();
    void Command6_Click();
    void ImprimeOp();

    void Label10_Click(int Index);

    // Header fields (frmOp_Campos.cpp): fills the article and its description
    // from the secondary key typed.
    void TraeSegundaClave();

    // Grid editing (frmOp_Rejilla.cpp): starts an edit of the current cell
    // with a typed character; handles the editor's navigation keys.
    void MSFlexGridEdit(Rejilla *grid, QLineEdit *editor, qint16 &KeyAscii);
    void EditKeyCode(Rejilla *grid, QLineEdit *editor, qint16 KeyCode, qint16 Shift);

protected:
    void Form_Load() override;
    void Form_QueryUnload(qint16 &Cancel, qint16 UnloadMode) override;
    void Form_Unload(qint16 &Cancel) override;
    void Form_KeyDown(qint16 &KeyCode, qint16 Shift) override;
    bool eventFilter(QObject *objeto, QEvent *evento) override;
    void showEvent(QShowEvent *evento) override;

private:
    bool numeraSiEsAlta(AccesoDatos *datos, zuvi::Ambiente *amb);
    void Timer1_Timer();
    void fg2_KeyDown(qint16 &KeyCode, qint16 Shift);

    // Header fields (frmOp_Campos.cpp).
    void conectaCampos();
    void txtFields_GotFocus(int Index);
    void txtFields_KeyPress(int Index, qint16 &KeyAscii);
    void txtFields_Change(int Index);
    void txtFields_LostFocus(int Index);
    void txtFields_KeyDown(int Index, qint16 &KeyCode, qint16 Shift);
    void txtFields_KeyUp(int Index, qint16 &KeyCode, qint16 Shift);
    void txtFields_DblClick(int Index);
    // F8 and Enter/Tab in a header field; the jumps are tables in
    // frmOp_Campos.cpp.
    void saltaConF8(int Index, qint16 &KeyCode);
    void avanzaConEnter(int Index, qint16 &KeyCode);
    void enfocaSiExiste(int indice);
    void RichTextBox1_KeyDown(qint16 &KeyCode, qint16 Shift);
    // The catalogue lookup, with a target box, caption and row filter.
    void abreCatalogo(QLineEdit *destino, const QString &titulo, const QString &filtro);
    void formatea(QLineEdit *caja);

    // Grid editing (frmOp_Rejilla.cpp).
    void conectaRejilla();
    void Fg2_KeyPress(qint16 &KeyAscii);
    void Fg2_GotFocus();
    void Fg2_LeaveCell();
    void fg2_DblClick();
    void fg2_RowColChange();
    void txtEdit_KeyPress(qint16 &KeyAscii);
    void txtEdit_KeyDown(qint16 &KeyCode, qint16 Shift);
    // The edit written back into the current cell, when there is one.
    void escribeEdicion();

    // The steps of Form_Load (frmOp.cpp).
    void disenaRejilla();
    void preparaConstructor(AccesoDatos *datos, zuvi::Ambiente *amb);
    void cargaOrdenExistente(AccesoDatos *datos, zuvi::Ambiente *amb);
    void iniciaOrdenNueva(AccesoDatos *datos, zuvi::Ambiente *amb);
    void habilitaSegunModo(bool consulta);
    void enlazaListaArticulos(zuvi::Ambiente *amb);
    void registraVentana(AccesoDatos *datos, zuvi::Ambiente *amb);

    // The header controls from the order's row (after loading and CreaOp).
    void cargaEncabezado(const RecordsetPtr &registro);
    void llenaRejilla();
    void iniciaProceso(const QString &clave, VBool &bandera);
    // Focus a field when it is enabled.
    void enfoca(int indice);
    // Message n of the catalogue with style 64.
    void mensaje(qint32 numero, qint32 estilo = 64);
    bool vacio(const QString &texto);
    zuvi::Ambiente *ambiente() const;

    std::unique_ptr<Ui::frmOp> ui;
    std::unique_ptr<ConstructorSql> m_sql;
    double m_costoArticulo = 0; // unit cost of the article typed, for CostoTotal
    bool m_enfocado = false;
    bool m_descartaEdicion = false; // Escape: the grid takes the focus, not the edit
};

} // namespace zuvi
