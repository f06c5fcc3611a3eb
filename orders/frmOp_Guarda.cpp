// Saving: the order's header and the write-back of an edited grid cell.

#include "orders/frmOp.h"

#include "controls/Rejilla.h"
#include "core/Modulo.h"
#include "orders/SentenciasOp.h"

#include <QCheckBox>
#include <QDateEdit>
#include <QLineEdit>
#include <QTextEdit>
#include <QTime>

namespace zuvi {

namespace {
const QString kOp = QStringLiteral("op");

QString horaActual()
{
    return QTime::currentTime().toString(QStringLiteral("hh:mm:ss"));
}
} // namespace

// A new order takes its number here, and its statement is an INSERT that
// starts with it; false for an order that already has one.
bool frmOp::numeraSiEsAlta(AccesoDatos *datos, zuvi::Ambiente *amb)
{
    if (property("Modo").toString() != QLatin1String("ALTA"))
        return false;
    qint32 documento = 0;
    const qint32 numero =
        datos->SiguienteFolio(QStringLiteral("Op"), amb->Conexion(), documento, nullptr);
    setProperty("Op", numero);
    m_sql->Tipo(QStringLiteral("INSERT"));
    m_sql->AgregaCampo(kOp, QStringLiteral("op"), qint32(Op));
    return true;
}

void frmOp::CreaOp()
{
    atrapa(QStringLiteral("CreaOp"), [this] {
        zuvi::Ambiente *amb = ambiente();
        AccesoDatos *datos = modulo::accesoDatos();
        m_sql->Limpia();
        if (!numeraSiEsAlta(datos, amb))
            m_sql->Tipo(QStringLiteral("UPDATE"));
        if (Modo == QLatin1String("MODIFICACION") || Modo == QLatin1String("ALTA")) {
            m_sql->AgregaCampo(kOp, QStringLiteral("ocupado"), QVariant::fromValue(qint16(1)));
            m_sql->AgregaCampo(kOp, QStringLiteral("f_emision"), DTPicker1->date());
            m_sql->AgregaCampo(kOp, QStringLiteral("importe"),
                               datos->ValorNumerico(txtFields(Campo::Importe)->text()));
            m_sql->AgregaCampo(kOp, QStringLiteral("costo"), QVariant::fromValue(qint16(0)));
            m_sql->AgregaCampo(kOp, QStringLiteral("almacen"),
                               datos->ValorTexto(txtFields(Campo::Almacen)->text()));
            m_sql->AgregaCampo(kOp, QStringLiteral("estado"), QStringLiteral("PE"));
            m_sql->AgregaCampo(kOp, QStringLiteral("observ"), RichTextBox2->toPlainText());
            m_sql->AgregaCampo(kOp, QStringLiteral("usuario"), amb->UsuarioActual());
            m_sql->AgregaCampo(kOp, QStringLiteral("usufecha"), QDate::currentDate());
            m_sql->AgregaCampo(kOp, QStringLiteral("usuhora"), horaActual());
            m_sql->AgregaCampo(kOp, QStringLiteral("fechaEntrega"), DTPicker2->date());
            m_sql->AgregaCampo(kOp, QStringLiteral("ordencompra"),
                               datos->ValorNumerico(txtFields(Campo::OrdenCompra)->text()));
            m_sql->Condicion(sentenciasOp::condicionOp(Op));
            m_sql->Genera(kOp);
            m_sql->Ejecuta();
        }
        rsOp = datos->Consulta(sentenciasOp::op(Op), amb->Conexion());
        cargaEncabezado(rsOp);
        setProperty("Modo", QStringLiteral("MODIFICACION"));
        setWindowTitle(QStringLiteral("Op: ") + QString::number(Op));
    });
}

void frmOp::SalvaOp()
{
    atrapa(QStringLiteral("SalvaOp"), [this] {
        zuvi::Ambiente *amb = ambiente();
        AccesoDatos *datos = modulo::accesoDatos();
        m_sql->Limpia();
        if (!numeraSiEsAlta(datos, amb)) {
            m_sql->Tipo(QStringLiteral("UPDATE"));
            m_sql->Condicion(sentenciasOp::condicionOpMayuscula(Op));
        }
        m_sql->AgregaCampo(kOp, QStringLiteral("ocupado"), QVariant::fromValue(qint16(0)));
        m_sql->AgregaCampo(kOp, QStringLiteral("f_emision"), DTPicker1->date());
        m_sql->AgregaCampo(kOp, QStringLiteral("fechaEntrega"), DTPicker2->date());
        m_sql->AgregaCampo(kOp, QStringLiteral("importe"),
                           datos->ValorNumerico(txtFields(Campo::Importe)->text()));
        m_sql->AgregaCampo(kOp, QStringLiteral("costo"), CostoTotal);
        m_sql->AgregaCampo(kOp, QStringLiteral("almacen"),
                           datos->ValorNumerico(txtFields(Campo::Almacen)->text()));
        if (!Check3->isChecked()) {
            m_sql->AgregaCampo(kOp, QStringLiteral("estado"), QStringLiteral("CO"));
            if (Check1->isChecked())
                m_sql->AgregaCampo(kOp, QStringLiteral("automatico"),
                                   QVariant::fromValue(qint16(1)));
        } else {
            m_sql->AgregaCampo(kOp, QStringLiteral("estado"), QStringLiteral("PE"));
        }
        m_sql->AgregaCampo(kOp, QStringLiteral("observ"), RichTextBox2->toPlainText());
        m_sql->AgregaCampo(kOp, QStringLiteral("usuario"), amb->UsuarioActual());
        m_sql->AgregaCampo(kOp, QStringLiteral("usufecha"), QDate::currentDate());
        m_sql->AgregaCampo(kOp, QStringLiteral("usuhora"), horaActual());
        m_sql->AgregaCampo(kOp, QStringLiteral("ordencompra"),
                           datos->ValorNumerico(txtFields(Campo::OrdenCompra)->text()));
        m_sql->Genera(kOp);
        m_sql->Ejecuta();
    });
}

void frmOp::SalvaCambios()
{
    atrapa(QStringLiteral("SalvaCambios"), [this] {
        AccesoDatos *datos = modulo::accesoDatos();
        const QString oppart = QStringLiteral("oppart");
        m_sql->Limpia();
        m_sql->Tipo(QStringLiteral("UPDATE"));
        const int fila = fg2->Row();
        m_sql->Condicion(sentenciasOp::condicionPartida(fg2->TextMatrix(fila, 5)));
        switch (fg2->Col()) {
        case 1:
        case 2:
            m_sql->AgregaCampo(oppart, QStringLiteral("cantidad"),
                               datos->ValorNumerico(fg2->Text()));
            break;
        case 5:
            m_sql->AgregaCampo(oppart, QStringLiteral("impuesto"),
                               datos->ValorNumerico(fg2->Text()));
            break;
        case 6:
            m_sql->AgregaCampo(oppart, QStringLiteral("observ"), fg2->Text());
            break;
        default:
            break;
        }
        m_sql->Genera(oppart);
        m_sql->Ejecuta();
    });
}

qint32 frmOp::CuantasPartidas()
{
    qint32 i = 0;
    atrapa(QStringLiteral("CuantasPartidas"), [&] {
        const int n = fg2->Rows() - fg2->FixedRows();
        for (i = 1; i <= n; ++i)
            if (vacio(fg2->TextMatrix(i, 0)))
                break;
    });
    return i - 1;
}

bool frmOp::SalvaPartidas()
{
    bool hay = false;
    atrapa(QStringLiteral("SalvaPartidas"), [&] {
        rsPartidas = modulo::accesoDatos()->Consulta(sentenciasOp::partidasGuardadas(Op),
                                                     ambiente()->Conexion());
        hay = !rsPartidas->atEnd();
    });
    return hay;
}

} // namespace zuvi
