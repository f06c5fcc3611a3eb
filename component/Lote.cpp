#include "component/Lote.h"

#include "core/Modulo.h"
#include "runtime/Error.h"

#include <cmath>
#include <limits>

namespace zuvi::lote {

EstadoLote *EstadoLote::de(QObject *componente)
{
    if (auto *estado = componente->findChild<EstadoLote *>(QString(), Qt::FindDirectChildrenOnly))
        return estado;
    return new EstadoLote(componente);
}

DocumentoInventario *EstadoLote::documento()
{
    if (!m_documento) {
        DocumentoInventario *nuevo =
            modulo::crea<DocumentoInventario>(QStringLiteral("DocumentoInventario"));
        if (!nuevo->parent())
            nuevo->setParent(this);
        m_documento = nuevo;
    }
    return m_documento.data();
}

void EstadoLote::adopta(QObject *objeto)
{
    if (!objeto)
        throw Error(QStringLiteral(
            "El proceso no devolvió el documento de inventario: la variable de objeto no "
            "está establecida."));
    auto *documento = qobject_cast<DocumentoInventario *>(objeto);
    if (!documento)
        throw Error(QStringLiteral("El proceso devolvió un objeto de la clase \"%1\" en lugar "
                                   "del documento de inventario.")
                        .arg(QString::fromLatin1(objeto->metaObject()->className())));
    m_documento = documento;
}

VBool iniciaProceso(const QString &clave, QPointer<QObject> &objeto, Ambiente *ambiente)
{
    ArgumentosProceso argumentos;
    argumentos.proceso = clave;
    argumentos.objeto = objeto;
    argumentos.ambiente = ambiente;
    argumentos.bandera = VTrue;
    modulo::controlProcesos()->IniciaProceso(argumentos);
    objeto = argumentos.objeto;
    return argumentos.bandera;
}

bool consultaProceso(VBool bandera)
{
    ControlProcesos *procesos = modulo::controlProcesos();
    procesos->ConsultaProceso(bandera);
    if (fromVBool(bandera)) {
        procesos->CierraProceso(0);
        return false;
    }
    return true;
}

void preparaDocumento(DocumentoInventario *doc, Ambiente *ambiente, AccesoDatos *datos,
                      const QSqlDatabase &conexion, const QString &tipo, qint32 nOp,
                      const QString &conceptoConOrden, const QString &conceptoSinOrden,
                      const QString &claveFolio)
{
    doc->PonAmbiente(ambiente);
    doc->PonDatoDocumento(ambiente->DatoDocumento());
    doc->PonTipo(tipo);
    qint32 dato = ambiente->DatoFechaA();
    const qint32 datoB = ambiente->DatoFechaB();
    doc->PonFecha(datos->ComponeFecha(dato, datoB));
    if (nOp != 0) {
        doc->PonOrden(nOp);
        doc->PonConcepto(conceptoConOrden);
    } else {
        // The numbering may leave a document number in dato; it becomes the folio.
        dato = 0;
        doc->PonOrden(datos->SiguienteFolio(claveFolio, conexion, dato, nullptr));
        doc->PonConcepto(conceptoSinOrden);
    }
    doc->PonUsuario(ambiente->UsuarioActual());
    doc->PonDatoFecha(dato);
    doc->PonFolio(QString::number(dato));
}

void aplicaKit(DocumentoInventario *doc, const QString &concepto, const QString &tipo,
               qint32 almacen, const QString &articulo, double cantidad, double costo)
{
    doc->PonConcepto(concepto);
    doc->PonTipo(tipo);
    doc->PonAlmacen(double(almacen));
    doc->PonArticulo(articulo);
    doc->PonCantidad(cantidad);
    doc->PonCosto(costo);
    qint32 numero = 0;
    doc->AplicaMovimiento(numero);
}

RecordsetPtr consulta(AccesoDatos *datos, const QString &sql, const QSqlDatabase &conexion)
{
    RecordsetPtr rs = datos->Consulta(sql, conexion, VTrue);
    if (!rs)
        throw Error(
            QStringLiteral("La consulta no devolvió un conjunto de registros: %1").arg(sql));
    return rs;
}

double numero(const QVariant &valor)
{
    if (!valor.isValid() || valor.isNull())
        throw Error(QStringLiteral("Uso no válido de Null."));
    switch (valor.typeId()) {
    case QMetaType::Bool:
        return valor.toBool() ? -1.0 : 0.0;
    case QMetaType::QString:
    case QMetaType::QByteArray: {
        bool ok = false;
        const double d = valor.toString().trimmed().toDouble(&ok);
        if (!ok)
            throw Error(QStringLiteral("No coinciden los tipos: \"%1\" no es un número.")
                            .arg(valor.toString()));
        return d;
    }
    default: {
        bool ok = false;
        const double d = valor.toDouble(&ok);
        if (!ok)
            throw Error(QStringLiteral("No coinciden los tipos: el valor no es un número."));
        return d;
    }
    }
}

qint32 entero32(double valor)
{
    // nearbyint rounds half to even under the default rounding mode.
    const double r = std::nearbyint(valor);
    if (!std::isfinite(r) || r < double(std::numeric_limits<qint32>::min()) ||
        r > double(std::numeric_limits<qint32>::max()))
        throw Error(QStringLiteral("Desbordamiento: %1 no cabe en un entero de 32 bits.")
                        .arg(valor, 0, 'g', 17));
    return qint32(r);
}

bool verdadero(const QVariant &valor)
{
    if (!valor.isValid() || valor.isNull())
        return false;
    if (valor.typeId() == QMetaType::Bool)
        return valor.toBool();
    return numero(valor) != 0.0;
}

double divide(double a, double b)
{
    if (b == 0.0)
        throw Error(QStringLiteral("División por cero."));
    return a / b;
}

} // namespace zuvi::lote
