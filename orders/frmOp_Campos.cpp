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

using Campo = frmOp::Campo;

// The catalogue each field below the currency opens; empty for the others.
QString catalogoDe(int indice)
{
    switch (indice) {
    case Campo::OrdenCompra:
        return QStringLiteral("Conceptos de Op al inventario");
    case Campo::Articulo:
        return QStringLiteral("Articulos");
    case Campo::Impuesto:
        return QStringLiteral("Impuestos por porcentaje");
    case Campo::Almacen:
        return QStringLiteral("Almacenes");
    default:
        return QString();
    }
}

// Where a key sends the focus from a field, when that field is enabled.
struct Salto
{
    int desde;
    int hacia;
};

// F8 from a line field goes to the secondary key, and through its details
// back to the price. The secondary key itself also fetches its article.
constexpr Salto kSaltosF8[] = {
    {Campo::Articulo, Campo::ClaveAdicional},     {Campo::Cantidad, Campo::ClaveAdicional},
    {Campo::Precio, Campo::ClaveAdicional},       {Campo::Partida7, Campo::ClaveAdicional},
    {Campo::Impuesto, Campo::ClaveAdicional},     {Campo::Encabezado22, Campo::ClaveAdicional},
    {Campo::Encabezado23, Campo::ClaveAdicional}, {Campo::ClaveDetalle, Campo::ClaveUnidad},
    {Campo::ClaveUnidad, Campo::Precio},
};

// Enter or Tab in the header; the article, the quantity and the currency
// have their own handling.
constexpr Salto kSaltosEnter[] = {
    {Campo::OrdenCompra, Campo::Almacen},       {Campo::Encabezado13, Campo::Encabezado17},
    {Campo::Almacen, Campo::Articulo},          {Campo::TipoCambio, Campo::Articulo},
    {Campo::Encabezado18, Campo::Encabezado19}, {Campo::ClaveDetalle, Campo::ClaveUnidad},
    {Campo::ClaveUnidad, Campo::Precio},
};

template <std::size_t N> const Salto *saltoDesde(const Salto (&tabla)[N], int indice)
{
    for (const Salto &s : tabla)
        if (s.desde == indice)
            return &s;
    return nullptr;
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
    if (Index == Campo::Articulo)
        PonDescripcion();
    formatea(txtFields(Index));
}

void frmOp::enfocaSiExiste(int indice)
{
    if (txtFields.existe(indice))
        enfoca(indice);
}

void frmOp::txtFields_KeyDown(int Index, qint16 &KeyCode, qint16 Shift)
{
    if (KeyCode == teclas::F2)
        enfocaSiExiste(Campo::Articulo);
    if (KeyCode == teclas::F5) {
        KeyCode = 0;
        // As the button: a finished or view-only order is not finished again.
        if (Command5->isEnabled())
            atrapa(QStringLiteral("Command5_Click"), [this] { Command5_Click(); });
        return;
    }
    if (KeyCode == teclas::Abajo && Index == Campo::Articulo) {
        KeyCode = 0;
        abreCatalogo(txtFields(Campo::Articulo), catalogoDe(Campo::Articulo),
                     QStringLiteral("kit <> 0"));
        enfoca(Campo::Articulo);
        return;
    }
    if (KeyCode == teclas::F8) {
        saltaConF8(Index, KeyCode);
        return;
    }
    if (KeyCode == teclas::F2) {
        KeyCode = 0;
        txtFields_DblClick(Index);
        return;
    }
    if (KeyCode != teclas::Tabulador && KeyCode != teclas::Enter)
        return;
    if (Index < 0 || Index > Campo::Ultimo)
        return;
    if (KeyCode == teclas::Tabulador && Shift != 0)
        return; // Shift+Tab goes back as the toolkit moves it; Shift+Enter is Enter
    avanzaConEnter(Index, KeyCode);
}

void frmOp::saltaConF8(int Index, qint16 &KeyCode)
{
    if (Index == Campo::ClaveAdicional) {
        KeyCode = 0;
        enfocaSiExiste(Campo::ClaveDetalle);
        TraeSegundaClave();
        return;
    }
    if (const Salto *salto = saltoDesde(kSaltosF8, Index))
        enfocaSiExiste(salto->hacia);
}

// The fields that move on by themselves keep the toolkit from moving the
// focus a second time.
void frmOp::avanzaConEnter(int Index, qint16 &KeyCode)
{
    switch (Index) {
    case Campo::Articulo:
        KeyCode = 0;
        // Leaving the field fills the description; a window that is not the
        // active one gets no focus events, so it is done here.
        if (!isActiveWindow())
            PonDescripcion();
        if (txtFields(Campo::Cantidad)->isEnabled()) {
            txtFields(Campo::Cantidad)->setFocus(Qt::OtherFocusReason);
            txtFields(Campo::Cantidad)->selectAll();
        }
        // A scanned code and the scanner's Enter add the line at once.
        if (Check4->isChecked())
            LlenaPartida();
        return;
    case Campo::Cantidad:
        KeyCode = 0;
        LlenaPartida();
        return;
    case Campo::Moneda:
        KeyCode = 0;
        if (txtFields(Campo::TipoCambio)->isEnabled())
            txtFields(Campo::TipoCambio)->setFocus(Qt::OtherFocusReason);
        else
            enfoca(Campo::Articulo);
        return;
    default:
        break;
    }
    if (const Salto *salto = saltoDesde(kSaltosEnter, Index)) {
        KeyCode = 0;
        enfocaSiExiste(salto->hacia);
    }
}

void frmOp::txtFields_KeyUp(int Index, qint16 &KeyCode, [[maybe_unused]] qint16 Shift)
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
    if (Index < Campo::Moneda) {
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
            for (int i :
                 {Campo::ClaveDato1, Campo::ClaveDato2, Campo::ClaveDetalle, Campo::ClaveUnidad})
                txtFields(i)->clear();
        };
        const QString clave = txtFields(Campo::ClaveAdicional)->text();
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
        txtFields(Campo::Articulo)
            ->setText(datos->ValorTexto(prods->value(QStringLiteral("Articulo"))));
        txtFields(Campo::Descripcion)
            ->setText(datos->ValorTexto(prods->value(QStringLiteral("descrip"))));
        PonDescripcion();
    });
}

void frmOp::RichTextBox1_KeyDown(qint16 &KeyCode, [[maybe_unused]] qint16 Shift)
{
    if (KeyCode == teclas::F8 && txtFields(Campo::Articulo)->isEnabled()) {
        KeyCode = 0;
        txtFields(Campo::Articulo)->setFocus(Qt::OtherFocusReason);
    }
}

} // namespace zuvi
