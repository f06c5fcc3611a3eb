// Line entry: checking and adding a line, the article's description, the
// exchange rate, the header check before finishing, deleting a stored line.

#include "orders/frmOp.h"

#include "controls/Rejilla.h"
#include "controls/Teclas.h"
#include "core/Modulo.h"
#include "orders/SentenciasOp.h"
#include "runtime/Text.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QLocale>
#include <QTime>

namespace zuvi {

namespace {

// "####,####,###0.00": thousands grouped by commas, two decimals.
QString importe(double valor)
{
    return QLocale(QLocale::English).toString(valor, 'f', 2);
}

} // namespace

void frmOp::LlenaPartida()
{
    atrapa(QStringLiteral("LlenaPartida"), [this] {
        zuvi::Ambiente *amb = ambiente();
        AccesoDatos *datos = modulo::accesoDatos();
        if (vacio(txtFields(4)->text())) {
            mensaje(234);
            txtFields(4)->setFocus();
            return;
        }
        if (!fromVBool(datos->ExisteClave(txtFields(4)->text(), QStringLiteral("prods"),
                                          QStringLiteral("articulo"), amb->Conexion(), VTrue))) {
            mensaje(235);
            txtFields(4)->setFocus();
            return;
        }
        if (!(datos->ValorNumerico(txtFields(5)->text()) > 0)) {
            mensaje(236);
            enfoca(5);
            return;
        }
        const QString articulo = Trim(txtFields(4)->text());
        RecordsetPtr rs = datos->Consulta(sentenciasOp::ubicacion(articulo), amb->Conexion());
        if (!rs->atEnd())
            rs->value(QStringLiteral("ubicacion"));
        const qint16 almacen = qint16(datos->ValorNumerico(txtFields(14)->text()));
        if (!fromVBool(datos->UbicacionRestringida(articulo, almacen, amb->Conexion()))) {
            NuevaPartida();
            enfoca(4);
            for (int i : {1, 4, 5, 6})
                txtFields(i)->clear();
        } else {
            mensaje(703);
            enfoca(4);
        }
    });
}

void frmOp::NuevaPartida()
{
    atrapa(QStringLiteral("NuevaPartida"), [this] {
        zuvi::Ambiente *amb = ambiente();
        AccesoDatos *datos = modulo::accesoDatos();
        iniciaProceso(QStringLiteral("Op005"), Rechazo);
        if (fromVBool(Rechazo)) {
            Rechazo = VFalse;
            return;
        }
        if (Modo == QLatin1String("ALTA")) {
            CreaOp();
            if (Modo == QLatin1String("ALTA"))
                return; // the header could not be written (already reported)
        }
        rsOp = datos->Consulta(sentenciasOp::opParaPartida(Op), amb->Conexion());
        const QString oppart = QStringLiteral("oppart");
        m_sql->Limpia();
        m_sql->Tipo(QStringLiteral("INSERT"));
        qint32 documento = 0;
        const qint32 id =
            datos->SiguienteFolio(QStringLiteral("oppart"), amb->Conexion(), documento, nullptr);
        const double cantidad = datos->ValorNumerico(txtFields(5)->text());
        const double precio = datos->ValorNumerico(txtFields(6)->text());
        m_sql->AgregaCampo(oppart, QStringLiteral("id_entrada"), id);
        m_sql->AgregaCampo(oppart, QStringLiteral("op"), qint32(Op));
        m_sql->AgregaCampo(oppart, QStringLiteral("tipo_doc"),
                           rsOp->value(QStringLiteral("Tipo_doc")));
        m_sql->AgregaCampo(oppart, QStringLiteral("no_referen"), rsOp->value(QStringLiteral("Op")));
        m_sql->AgregaCampo(oppart, QStringLiteral("articulo"), txtFields(4)->text());
        m_sql->AgregaCampo(oppart, QStringLiteral("cantidad"), cantidad);
        m_sql->AgregaCampo(oppart, QStringLiteral("precio"), precio);
        m_sql->AgregaCampo(oppart, QStringLiteral("observ"), txtFields(1)->text());
        m_sql->AgregaCampo(oppart, QStringLiteral("partida"), qint16(0));
        m_sql->AgregaCampo(oppart, QStringLiteral("usuario"), amb->UsuarioActual());
        m_sql->AgregaCampo(oppart, QStringLiteral("usufecha"), QDate::currentDate());
        m_sql->AgregaCampo(oppart, QStringLiteral("usuhora"),
                           QTime::currentTime().toString(QStringLiteral("hh:mm:ss")));
        m_sql->Genera(oppart);
        m_sql->Ejecuta();
        CostoTotal += cantidad * m_costoArticulo;

        const int n = fg2->Rows() - fg2->FixedRows();
        int i = 1;
        for (; i <= n; ++i)
            if (vacio(fg2->TextMatrix(i, 0)))
                break;
        if (i > n)
            return; // stored, not shown: the grid is full
        fg2->SetTextMatrix(i, 0, txtFields(4)->text());
        fg2->SetTextMatrix(i, 1, txtFields(5)->text());
        fg2->SetTextMatrix(i, 3, importe(cantidad * precio));
        fg2->SetTextMatrix(i, 4, txtFields(1)->text());
        fg2->SetTextMatrix(i, 5, QString::number(id));
        fg2->SetRow(i);
    });
}

void frmOp::PonDescripcion()
{
    atrapa(QStringLiteral("PonDescripcion"), [this] {
        zuvi::Ambiente *amb = ambiente();
        AccesoDatos *datos = modulo::accesoDatos();
        RecordsetPtr rs =
            datos->Consulta(sentenciasOp::descripcion(txtFields(4)->text()), amb->Conexion());
        if (rs->atEnd()) {
            RecordsetPtr clave = datos->Consulta(sentenciasOp::claveAdicional(txtFields(4)->text()),
                                                 amb->Conexion());
            if (!clave->atEnd()) {
                txtFields(4)->setText(clave->text(QStringLiteral("Articulo")));
                txtFields(24)->setText(clave->text(QStringLiteral("Clave")));
                txtFields(25)->setText(Trim(clave->text(QStringLiteral("Dato1"))));
                txtFields(26)->setText(Trim(clave->text(QStringLiteral("Dato2"))));
                txtFields(29)->setText(Trim(clave->text(QStringLiteral("unidad"))));
                txtFields(28)->setText(Trim(clave->text(QStringLiteral("Dato1"))));
                // The main article's own description and unit.
                rs = datos->Consulta(sentenciasOp::descripcion(txtFields(4)->text()),
                                     amb->Conexion());
            }
        }
        m_costoArticulo = 0;
        if (!rs->atEnd()) {
            txtFields(1)->setText(Trim(datos->ValorTexto(rs->value(QStringLiteral("descrip")))));
            txtFields(27)->setText(Trim(datos->ValorTexto(rs->value(QStringLiteral("unidad")))));
            m_costoArticulo = datos->ValorNumerico(rs->value(QStringLiteral("costo_u")));
        }
        // With the barcode reader each scanned code is one piece unless a
        // quantity was typed.
        if (Check4->isChecked() && !(datos->ValorNumerico(txtFields(5)->text()) > 0) &&
            !rs->atEnd())
            txtFields(5)->setText(QStringLiteral("1"));
    });
}

void frmOp::PonTC()
{
    atrapa(QStringLiteral("PonTC"), [this] {
        RecordsetPtr rs = modulo::accesoDatos()->Consulta(
            sentenciasOp::moneda(txtFields(15)->text()), ambiente()->Conexion());
        if (rs->atEnd()) {
            txtFields(16)->setText(QString(""));
            return;
        }
        txtFields(16)->setText(rs->text(QStringLiteral("Tc")));
        if (variantToDouble(rs->value(QStringLiteral("Base"))) != 0)
            txtFields(16)->setEnabled(false);
    });
}

bool frmOp::ValidaTab1()
{
    bool valido = true;
    atrapa(QStringLiteral("ValidaTab1"), [&] {
        if (vacio(txtFields(14)->text())) {
            mensaje(240);
            txtFields(14)->setFocus();
            valido = false;
        } else if (!fromVBool(modulo::accesoDatos()->ExisteClave(
                       txtFields(14)->text(), QStringLiteral("almacen"), QStringLiteral("almacen"),
                       ambiente()->Conexion(), VTrue))) {
            mensaje(241);
            txtFields(14)->setFocus();
            valido = false;
        }
    });
    return valido;
}

QString frmOp::TraeVends()
{
    QString nombre;
    atrapa(QStringLiteral("TraeVends"), [&] {
        if (vacio(txtFields(0)->text()))
            return;
        RecordsetPtr rs = modulo::accesoDatos()->Consulta(
            sentenciasOp::vendedor(txtFields(1)->text()), ambiente()->Conexion());
        nombre = rs->atEnd() ? QString("") : rs->text(QStringLiteral("Nombre"));
    });
    return nombre;
}

void frmOp::fg2_KeyDown(qint16 &KeyCode, qint16 Shift)
{
    if (Modo == QLatin1String("CONSULTA") || KeyCode != teclas::Suprimir)
        return;
    const int fila = fg2->Row();
    if (fila < fg2->FixedRows() || vacio(fg2->TextMatrix(fila, 0)))
        return;
    ambiente()->EjecutaSQL(sentenciasOp::borraPartida(fg2->TextMatrix(fila, 5)));
    fg2->RemoveItem(fila);
}

} // namespace zuvi
