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
        if (vacio(txtFields(Campo::Articulo)->text())) {
            mensaje(234);
            txtFields(Campo::Articulo)->setFocus();
            return;
        }
        if (!fromVBool(datos->ExisteClave(txtFields(Campo::Articulo)->text(),
                                          QStringLiteral("prods"), QStringLiteral("articulo"),
                                          amb->Conexion(), VTrue))) {
            mensaje(235);
            txtFields(Campo::Articulo)->setFocus();
            return;
        }
        if (!(datos->ValorNumerico(txtFields(Campo::Cantidad)->text()) > 0)) {
            mensaje(236);
            enfoca(Campo::Cantidad);
            return;
        }
        const QString articulo = Trim(txtFields(Campo::Articulo)->text());
        RecordsetPtr rs = datos->Consulta(sentenciasOp::ubicacion(articulo), amb->Conexion());
        if (!rs->atEnd())
            rs->value(QStringLiteral("ubicacion"));
        const qint16 almacen = qint16(datos->ValorNumerico(txtFields(Campo::Almacen)->text()));
        if (!fromVBool(datos->UbicacionRestringida(articulo, almacen, amb->Conexion()))) {
            NuevaPartida();
            enfoca(Campo::Articulo);
            for (int i : {Campo::Descripcion, Campo::Articulo, Campo::Cantidad, Campo::Precio})
                txtFields(i)->clear();
        } else {
            mensaje(703);
            enfoca(Campo::Articulo);
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
        const double cantidad = datos->ValorNumerico(txtFields(Campo::Cantidad)->text());
        const double precio = datos->ValorNumerico(txtFields(Campo::Precio)->text());
        m_sql->AgregaCampo(oppart, QStringLiteral("id_entrada"), id);
        m_sql->AgregaCampo(oppart, QStringLiteral("op"), qint32(Op));
        m_sql->AgregaCampo(oppart, QStringLiteral("tipo_doc"),
                           rsOp->value(QStringLiteral("Tipo_doc")));
        m_sql->AgregaCampo(oppart, QStringLiteral("no_referen"), rsOp->value(QStringLiteral("Op")));
        m_sql->AgregaCampo(oppart, QStringLiteral("articulo"), txtFields(Campo::Articulo)->text());
        m_sql->AgregaCampo(oppart, QStringLiteral("cantidad"), cantidad);
        m_sql->AgregaCampo(oppart, QStringLiteral("precio"), precio);
        m_sql->AgregaCampo(oppart, QStringLiteral("observ"), txtFields(Campo::Descripcion)->text());
        m_sql->AgregaCampo(oppart, QStringLiteral("partida"), QVariant::fromValue(qint16(0)));
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
        fg2->SetTextMatrix(i, 0, txtFields(Campo::Articulo)->text());
        fg2->SetTextMatrix(i, 1, txtFields(Campo::Cantidad)->text());
        fg2->SetTextMatrix(i, 3, importe(cantidad * precio));
        fg2->SetTextMatrix(i, 4, txtFields(Campo::Descripcion)->text());
        fg2->SetTextMatrix(i, 5, QString::number(id));
        fg2->SetRow(i);
    });
}

void frmOp::PonDescripcion()
{
    atrapa(QStringLiteral("PonDescripcion"), [this] {
        zuvi::Ambiente *amb = ambiente();
        AccesoDatos *datos = modulo::accesoDatos();
        RecordsetPtr rs = datos->Consulta(
            sentenciasOp::descripcion(txtFields(Campo::Articulo)->text()), amb->Conexion());
        if (rs->atEnd()) {
            RecordsetPtr clave = datos->Consulta(
                sentenciasOp::claveAdicional(txtFields(Campo::Articulo)->text()), amb->Conexion());
            if (!clave->atEnd()) {
                txtFields(Campo::Articulo)->setText(clave->text(QStringLiteral("Articulo")));
                txtFields(Campo::ClaveAdicional)->setText(clave->text(QStringLiteral("Clave")));
                txtFields(Campo::ClaveDato1)->setText(Trim(clave->text(QStringLiteral("Dato1"))));
                txtFields(Campo::ClaveDato2)->setText(Trim(clave->text(QStringLiteral("Dato2"))));
                txtFields(Campo::ClaveUnidad)->setText(Trim(clave->text(QStringLiteral("unidad"))));
                txtFields(Campo::ClaveDetalle)->setText(Trim(clave->text(QStringLiteral("Dato1"))));
                // The main article's own description and unit.
                rs = datos->Consulta(sentenciasOp::descripcion(txtFields(Campo::Articulo)->text()),
                                     amb->Conexion());
            }
        }
        m_costoArticulo = 0;
        if (!rs->atEnd()) {
            txtFields(Campo::Descripcion)
                ->setText(Trim(datos->ValorTexto(rs->value(QStringLiteral("descrip")))));
            txtFields(Campo::Unidad)
                ->setText(Trim(datos->ValorTexto(rs->value(QStringLiteral("unidad")))));
            m_costoArticulo = datos->ValorNumerico(rs->value(QStringLiteral("costo_u")));
        }
        // With the barcode reader each scanned code is one piece unless a
        // quantity was typed.
        if (Check4->isChecked() &&
            !(datos->ValorNumerico(txtFields(Campo::Cantidad)->text()) > 0) && !rs->atEnd())
            txtFields(Campo::Cantidad)->setText(QStringLiteral("1"));
    });
}

void frmOp::PonTC()
{
    atrapa(QStringLiteral("PonTC"), [this] {
        RecordsetPtr rs = modulo::accesoDatos()->Consulta(
            sentenciasOp::moneda(txtFields(Campo::Moneda)->text()), ambiente()->Conexion());
        if (rs->atEnd()) {
            txtFields(Campo::TipoCambio)->setText(QString(""));
            return;
        }
        txtFields(Campo::TipoCambio)->setText(rs->text(QStringLiteral("Tc")));
        if (variantToDouble(rs->value(QStringLiteral("Base"))) != 0)
            txtFields(Campo::TipoCambio)->setEnabled(false);
    });
}

bool frmOp::ValidaTab1()
{
    bool valido = true;
    atrapa(QStringLiteral("ValidaTab1"), [&] {
        if (vacio(txtFields(Campo::Almacen)->text())) {
            mensaje(240);
            txtFields(Campo::Almacen)->setFocus();
            valido = false;
        } else if (!fromVBool(modulo::accesoDatos()->ExisteClave(
                       txtFields(Campo::Almacen)->text(), QStringLiteral("almacen"),
                       QStringLiteral("almacen"), ambiente()->Conexion(), VTrue))) {
            mensaje(241);
            txtFields(Campo::Almacen)->setFocus();
            valido = false;
        }
    });
    return valido;
}

QString frmOp::TraeVends()
{
    QString nombre;
    atrapa(QStringLiteral("TraeVends"), [&] {
        if (vacio(txtFields(Campo::OrdenCompra)->text()))
            return;
        RecordsetPtr rs = modulo::accesoDatos()->Consulta(
            sentenciasOp::vendedor(txtFields(Campo::Descripcion)->text()), ambiente()->Conexion());
        nombre = rs->atEnd() ? QString("") : rs->text(QStringLiteral("Nombre"));
    });
    return nombre;
}

void frmOp::fg2_KeyDown(qint16 &KeyCode, [[maybe_unused]] qint16 Shift)
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
