#pragma once

// What the batch operations (delivery, assembly, disassembly, cancellation)
// share: the movement document kept per component object, the process gate,
// and value conversions that fail the way the operations expect (a null where
// a number is needed, a division by zero, a count that does not fit).

#include "contract/Servicios.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <QVariant>

namespace zuvi::lote {

// Per component object: the movement document in use. The one created here is
// a child of this object (so it goes with the component); one the host put in
// its place is only watched.
class EstadoLote : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    static EstadoLote *de(QObject *componente);

    // The document in use, created by name when there is none yet.
    DocumentoInventario *documento();
    // What the host left in argument (2) after IniciaProceso.
    void adopta(QObject *objeto);

private:
    QPointer<DocumentoInventario> m_documento;
};

// The process gate in two steps. iniciaProceso runs the key on behalf of
// objeto (updated with what the host left in argument (2)) and returns the
// veto flag as the host left it. consultaProceso lets the host update the
// flag; true means go ahead, otherwise CierraProceso(0) has been called.
VBool iniciaProceso(const QString &clave, QPointer<QObject> &objeto, Ambiente *ambiente);
bool consultaProceso(VBool bandera);

// The movement document's header, prepared the same way for assembly and
// disassembly but for the components' direction, the concepts and the
// numbering key: with an order, the order and conceptoConOrden; without one,
// a number drawn from claveFolio and conceptoSinOrden.
void preparaDocumento(DocumentoInventario *doc, Ambiente *ambiente, AccesoDatos *datos,
                      const QSqlDatabase &conexion, const QString &tipo, qint32 nOp,
                      const QString &conceptoConOrden, const QString &conceptoSinOrden,
                      const QString &claveFolio);

// The kit's own movement after its components, valued at their total.
void aplicaKit(DocumentoInventario *doc, const QString &concepto, const QString &tipo,
               qint32 almacen, const QString &articulo, double cantidad, double costo);

// A recordset from Consulta, never null.
RecordsetPtr consulta(AccesoDatos *datos, const QString &sql, const QSqlDatabase &conexion);

// A field as a number: null is an error, as is text that is not a number.
double numero(const QVariant &valor);
// A whole number that fits in 32 bits, rounded half to even; otherwise an
// overflow error.
qint32 entero32(double valor);
// A flag: non-zero is true, null is false.
bool verdadero(const QVariant &valor);
// a / b, refusing a zero divisor.
double divide(double a, double b);

} // namespace zuvi::lote
