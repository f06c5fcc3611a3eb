// The header fields: selection on entry, key filters by tag, formatting,
// moving on when full, Enter/Tab and function-key navigation, the catalogue
// lookups and numeric pad, the article list, secondary keys, and F8 in the
// observations box.

#include "orders/frmOp.h"

#include "controls/MultiCombo.h"
#include "controls/Teclas.h"
#include "core/Modulo.h"
#include "orders/SentenciasOp.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTextEdit>

#include <memory>

namespace zuvi {

namespace {

QString etiqueta(const QLineEdit *caja)
{
    return caja->property("Tag").toString();
}

// The catalogue each field below 15 opens; empty for the others.
QString catalogoDe(int indice)
{
    switch (indice) {
    case 0:
        return QStringLiteral("Conceptos de Op al inventario");
    case 4:
        return QStringLiteral("Articulos");
    case 8:
        return QStringLiteral("Impuestos por porcentaje");
    case 14:
        return QStringLiteral("Almacenes");
    default:
        return QString();
    }
}

} // namespace

void frmOp::conectaCampos()
{
    conectaTeclas(QStringLiteral("txtFields"),
                  {[this](int Index, qint16 &KeyCode, qint16 Shift) {
                       txtFields_KeyDown(Index, KeyCode, Shift);
                   },
                   [this](int Index, qint16 &KeyAscii) { txtFields_KeyPress(Index, KeyAscii); },
                   [this](int Index, qint16 &KeyCode, qint16 Shift) {
                       txtFields_KeyUp(Index, KeyCode, Shift);
                   }});
    conectaEventos(QStringLiteral("txtFields"), {[this](int Index) { txtFields_Change(Index); },
                                                 [this](int Index) { txtFields_GotFocus(Index); },
                                                 [this](int Index) { txtFields_LostFocus(Index); },
                                                 [this](int Index) { txtFields_DblClick(Index); }});
    conectaTeclas(
        RichTextBox2, QStringLiteral("RichTextBox1"),
        {[this](int, qint16 &KeyCode, qint16 Shift) { RichTextBox1_KeyDown(KeyCode, Shift); },
         {},
         {}});
}

void frmOp::txtFields_GotFocus(int Index)
{
    QLineEdit *caja = txtFields(Index);
    caja->setSelection(0, int(caja->text().size()));
}

void frmOp::txtFields_KeyPress(int Index, qint16 &KeyAscii)
{
    QLineEdit *caja = txtFields(Index);
    const QString tag = etiqueta(caja);
    qint32 tecla = KeyAscii;
    if (tag == QLatin1String("U"))
        KeyAscii = qint16(modulo::accesoDatos()->FiltroMayusculas(caja, tecla));
    else if (tag == QLatin1String("N") || tag == QLatin1String("D") || tag == QLatin1String("SD") ||
             tag == QLatin1String("SN"))
        KeyAscii = qint16(modulo::accesoDatos()->FiltroTecla(VTrue, caja, tecla));
}

void frmOp::formatea(QLineEdit *caja)
{
    const QString formateado = modulo::accesoDatos()->FormateaCampo(caja, ambiente());
    if (formateado != caja->text())
        caja->setText(formateado);
}

void frmOp::txtFields_Change(int Index)
{
    QLineEdit *caja = txtFields(Index);
    // Filled by code while loading: shown formatted.
    if (!isVisible())
        formatea(caja);
    // Full: moves on as Enter would (a scanner, a fixed-width code, a paste).
    if (caja->text().size() == caja->maxLength() && !caja->text().isEmpty() && isVisible()) {
        qint16 enter = teclas::Enter;
        txtFields_KeyDown(Index, enter, 0);
    }
}

void frmOp::txtFields_LostFocus(int Index)
{
    if (!isVisible() || descargada())
        return;
    if (Index == 4)
        PonDescripcion();
    formatea(txtFields(Index));
}

void frmOp::txtFields_KeyDown(int Index, qint16 &KeyCode, qint16 Shift)
{
    const auto enfocaSiExiste = [this](int destino) {
        if (txtFields.existe(destino))
            enfoca(destino);
    };
    if (KeyCode == teclas::F2)
        enfocaSiExiste(4);
    if (KeyCode == teclas::F5) {
        KeyCode = 0;
        // As the button: a finished or view-only order is not finished again.
        if (Command5->isEnabled())
            atrapa(QStringLiteral("Command5_Click"), [this] { Command5_Click(); });
        return;
    }
    if (KeyCode == teclas::Abajo && Index == 4) {
        KeyCode = 0;
        abreCatalogo(txtFields(4), catalogoDe(4), QStringLiteral("kit <> 0"));
        enfoca(4);
        return;
    }
    if (KeyCode == teclas::F8) {
        switch (Index) {
        case 4:
        case 5:
        case 6:
        case 7:
        case 8:
        case 22:
        case 23:
            enfocaSiExiste(24);
            break;
        case 24:
            KeyCode = 0;
            enfocaSiExiste(28);
            TraeSegundaClave();
            return;
        case 28:
            enfocaSiExiste(29);
            break;
        case 29:
            enfocaSiExiste(6);
            break;
        default:
            break;
        }
    }
    if (KeyCode == teclas::F2) {
        KeyCode = 0;
        txtFields_DblClick(Index);
        return;
    }
    if (KeyCode != teclas::Tabulador && KeyCode != teclas::Enter)
        return;
    if (Index < 0 || Index > 29 || Shift != 0)
        return; // Shift+Tab goes back as the toolkit moves it
    // The fields that move on by themselves keep the toolkit from moving the
    // focus a second time.
    const auto siguiente = [&](int destino) {
        KeyCode = 0;
        enfocaSiExiste(destino);
    };
    switch (Index) {
    case 0:
        siguiente(14);
        break;
    case 4:
        KeyCode = 0;
        // Leaving the field fills the description; a window that is not the
        // active one gets no focus events, so it is done here.
        if (!isActiveWindow())
            PonDescripcion();
        if (txtFields(5)->isEnabled()) {
            txtFields(5)->setFocus(Qt::OtherFocusReason);
            txtFields(5)->selectAll();
        }
        // A scanned code and the scanner's Enter add the line at once.
        if (Check4->isChecked())
            LlenaPartida();
        break;
    case 5:
        KeyCode = 0;
        LlenaPartida();
        break;
    case 13:
        siguiente(17);
        break;
    case 14:
    case 16:
        siguiente(4);
        break;
    case 15:
        KeyCode = 0;
        if (txtFields(16)->isEnabled())
            txtFields(16)->setFocus(Qt::OtherFocusReason);
        else
            enfoca(4);
        break;
    case 18:
        siguiente(19);
        break;
    case 28:
        siguiente(29);
        break;
    case 29:
        siguiente(6);
        break;
    default:
        break;
    }
}

void frmOp::txtFields_KeyUp(int Index, qint16 &KeyCode, qint16 Shift)
{
    if (KeyCode != teclas::Abajo)
        return;
    QLineEdit *caja = txtFields(Index);
    auto *combo = qobject_cast<MultiCombo *>(caja->parentWidget());
    if (!combo)
        return; // a field without a list
    combo->ShowData();
    caja->setCursorPosition(0);
}

void frmOp::txtFields_DblClick(int Index)
{
    QLineEdit *caja = txtFields(Index);
    if (Index < 15) {
        const QString titulo = catalogoDe(Index);
        if (!titulo.isEmpty())
            abreCatalogo(caja, titulo, QString());
        return;
    }
    if (etiqueta(caja) != QLatin1String("N"))
        return;
    const std::unique_ptr<CapturaNumerica> teclado(
        modulo::crea<CapturaNumerica>(QStringLiteral("CapturaNumerica")));
    teclado->PonAmbiente(ambiente());
    teclado->PonDestino(caja);
    teclado->Muestra();
}

void frmOp::abreCatalogo(QLineEdit *destino, const QString &titulo, const QString &filtro)
{
    const std::unique_ptr<BuscaCatalogo> busca(
        modulo::crea<BuscaCatalogo>(QStringLiteral("BuscaCatalogo")));
    busca->PonAmbiente(ambiente());
    busca->PonDestino(destino);
    busca->Muestra(titulo, filtro, QString(""), QString(""), QVariant());
}

void frmOp::TraeSegundaClave()
{
    atrapa(QStringLiteral("TraeSegundaClave"), [this] {
        AccesoDatos *datos = modulo::accesoDatos();
        zuvi::Ambiente *amb = ambiente();
        const auto limpiaDetalles = [this] {
            for (int i : {25, 26, 28, 29})
                txtFields(i)->clear();
        };
        const QString clave = txtFields(24)->text();
        if (clave.isEmpty()) {
            limpiaDetalles();
            return;
        }
        RecordsetPtr rs = datos->Consulta(sentenciasOp::claveAdicional(clave), amb->Conexion());
        if (rs->atEnd()) {
            limpiaDetalles();
            return;
        }
        const QString articulo = datos->ValorTexto(rs->value(QStringLiteral("Articulo")));
        RecordsetPtr prods =
            datos->Consulta(sentenciasOp::articuloDeClave(articulo), amb->Conexion());
        if (prods->atEnd())
            throw Error(QStringLiteral("La clave adicional %1 es del artículo %2, que no existe.")
                            .arg(clave, articulo));
        txtFields(4)->setText(datos->ValorTexto(prods->value(QStringLiteral("Articulo"))));
        txtFields(1)->setText(datos->ValorTexto(prods->value(QStringLiteral("descrip"))));
        PonDescripcion();
    });
}

void frmOp::RichTextBox1_KeyDown(qint16 &KeyCode, qint16 Shift)
{
    if (KeyCode == teclas::F8 && txtFields(4)->isEnabled()) {
        KeyCode = 0;
        txtFields(4)->setFocus(Qt::OtherFocusReason);
    }
}

} // namespace zuvi
