// Opening an order in the editor: new, to change, to view.

#include "component/Produccion.h"
#include "core/Modulo.h"
#include "orders/SentenciasOp.h"
#include "orders/frmOp.h"

#include "runtime/Error.h"
#include "runtime/Text.h"

#include <memory>

namespace zuvi {

namespace {

// An editor not yet shown; discarded unless handed over to the screen.
using Editor = std::unique_ptr<frmOp>;

void muestra(Editor &editor)
{
    editor.release()->muestra(false);
}

void mensaje(qint32 numero, qint32 estilo, zuvi::Ambiente *ambiente)
{
    AccesoDatos *datos = modulo::accesoDatos();
    datos->Mensaje(datos->TraeMensaje(numero, ambiente), estilo, ambiente);
}

struct MensajesApertura
{
    qint32 noExiste;
    qint32 ocupadaPorMi;
    qint32 ocupadaPorOtro;
};

// ModificaOp and ConsultaOp: the same steps, the state test only to change.
void abre(InterfazProduccion &componente, qint32 nOp, bool modifica,
          const MensajesApertura &mensajes)
{
    Editor editor(new frmOp);
    editor->Ambiente = componente.Ambiente();
    editor->Parent = componente.Parent();
    zuvi::Ambiente *ambiente = modulo::requiere(editor->Ambiente);
    RecordsetPtr rs = modulo::accesoDatos()->Consulta(sentenciasOp::op(nOp), ambiente->Conexion());
    if (rs->atEnd()) {
        mensaje(mensajes.noExiste, 16, ambiente);
        return;
    }
    if (modifica) {
        if (rs->value(QStringLiteral("Estado")).toString() == QLatin1String("CO")) {
            mensaje(753, 64, ambiente);
            editor->setProperty("Modo", QStringLiteral("CONSULTA"));
        } else {
            editor->setProperty("Modo", QStringLiteral("MODIFICACION"));
        }
    } else {
        editor->setProperty("Modo", QStringLiteral("CONSULTA"));
    }
    const QVariant ocupado = rs->value(QStringLiteral("Ocupado"));
    if (!ocupado.isNull() && variantToDouble(ocupado) != 0 &&
        editor->property("Modo").toString() == QLatin1String("MODIFICACION")) {
        const QString usuario = rs->text(QStringLiteral("Usuario"));
        if (usuario == ambiente->UsuarioActual()) {
            mensaje(mensajes.ocupadaPorMi, 64, ambiente);
        } else {
            AccesoDatos *datos = modulo::accesoDatos();
            const QString texto = datos->TraeMensaje(mensajes.ocupadaPorOtro, ambiente) +
                                  QLatin1Char(' ') + Trim(usuario) + QLatin1Char(' ') +
                                  datos->TraeMensaje(76, ambiente);
            datos->Mensaje(texto, 64, ambiente);
        }
        return;
    }
    editor->rsOp = rs;
    editor->Op = nOp;
    editor->setWindowTitle(QStringLiteral("Orden de fabricación: ") +
                           rs->text(QStringLiteral("Op")));
    muestra(editor);
}

} // namespace

void Produccion::NuevaOp()
{
    swallowErrors([this] {
        zuvi::Ambiente *ambiente = modulo::requiere(Ambiente());
        RecordsetPtr rs =
            modulo::accesoDatos()->Consulta(sentenciasOp::plantillaOp(), ambiente->Conexion());
        Editor editor(new frmOp);
        editor->rsOp = rs;
        editor->Ambiente = Ambiente();
        editor->Parent = Parent();
        editor->setProperty("Modo", QStringLiteral("ALTA"));
        muestra(editor);
    });
}

void Produccion::ModificaOp(qint32 nOp)
{
    swallowErrors([&] { abre(*this, nOp, true, {754, 755, 756}); });
}

void Produccion::ConsultaOp(qint32 nOp)
{
    swallowErrors([&] { abre(*this, nOp, false, {72, 74, 75}); });
}

} // namespace zuvi
