#pragma once

// The host services the module calls. Each is an abstract QObject so that a
// host implements it, the component reaches it only through these operations,
// and a released host object shows up as a null QPointer instead of a crash.
// Failing operations throw zuvi::Error with a description.

#include "contract/Export.h"
#include "runtime/Recordset.h"
#include "runtime/VBool.h"

#include <QDate>
#include <QObject>
#include <QPointer>
#include <QSqlDatabase>
#include <QString>
#include <QVariant>

class QLineEdit;
class QWidget;

namespace zuvi {

class ConstructorSql;

// The host environment handed to the component through the property Ambiente.
class ZUVI_CONTRATO_EXPORT Ambiente : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    virtual QSqlDatabase Conexion() const = 0;
    virtual QString UsuarioActual() const = 0;
    // The application folder, without a trailing separator.
    virtual QString RutaAplicacion() const = 0;
    // Runs an action statement; the value returned is the host's and unused.
    virtual QVariant EjecutaSQL(const QString &sql) = 0;
    virtual qint32 DatoFechaA() const = 0;
    virtual qint32 DatoFechaB() const = 0;
    virtual QVariant DatoDocumento() const = 0;
    // The station's settings: at least the fields Almacen and Lector.
    virtual RecordsetPtr ParametrosEstacion() = 0;
    // An object with a member "PathCollection", or nullptr.
    virtual QObject *ContenedorRutas() = 0;
};

// The statement builder: INSERT and UPDATE assembled column by column.
class ZUVI_CONTRATO_EXPORT ConstructorSql : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    virtual void PonConexion(const QSqlDatabase &conexion) = 0;
    virtual void PonRutas(const QVariant &coleccion) = 0;
    virtual void Limpia() = 0;
    virtual void Tipo(const QString &tipo) = 0; // "INSERT" or "UPDATE"
    // The value's own type is kept (qint32, qint16, double, QString, QDate);
    // a QObject* stands for its default text.
    virtual void AgregaCampo(const QString &tabla, const QString &columna,
                             const QVariant &valor) = 0;
    virtual void Condicion(const QString &condicion) = 0;
    // Builds the statement and returns its text (with the values in place).
    virtual QString Genera(const QString &tabla) = 0;
    virtual void Ejecuta() = 0;
};

// The module-wide data-access object.
class ZUVI_CONTRATO_EXPORT AccesoDatos : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    // A recordset positioned on the first row.
    virtual RecordsetPtr Consulta(const QString &sql, const QSqlDatabase &conexion,
                                  VBool bandera = VTrue) = 0;
    virtual double ValorNumerico(const QVariant &valor) = 0;
    virtual QString ValorTexto(const QVariant &valor) = 0;
    virtual VBool EstaVacio(const QString &texto) = 0;
    virtual QString TraeMensaje(qint32 numero, Ambiente *ambiente) = 0;
    // estilo: 16 error icon, 64 information icon.
    virtual void Mensaje(const QString &texto, qint32 estilo, Ambiente *ambiente) = 0;
    virtual VBool Pregunta(const QString &texto, qint32 valor) = 0;
    // documento is in/out: the caller sets 0, the host may leave a document
    // number in it. The result is the next number of the key.
    virtual qint32 SiguienteFolio(const QString &clave, const QSqlDatabase &conexion,
                                  qint32 &documento, ConstructorSql *constructor) = 0;
    virtual QDate ComponeFecha(qint32 datoA, qint32 datoB) = 0;
    // A new builder; the caller owns it.
    virtual ConstructorSql *NuevoConstructorSql() = 0;

    virtual void PreparaVentana(QWidget *ventana, Ambiente *ambiente, const QString &texto) = 0;
    virtual void LiberaVentana(QWidget *ventana, Ambiente *ambiente, const QString &principal) = 0;
    virtual VBool ExisteClave(const QString &valor, const QString &tabla, const QString &columna,
                              const QSqlDatabase &conexion, VBool bandera = VTrue) = 0;
    virtual VBool UbicacionRestringida(const QString &articulo, qint16 almacen,
                                       const QSqlDatabase &conexion) = 0;
    // Text boxes carry their tag ("U", "N", "D", "SD", "SN") in the dynamic
    // property "Tag".
    virtual QString FormateaCampo(QLineEdit *caja, Ambiente *ambiente) = 0;
    virtual qint32 FiltroMayusculas(QLineEdit *caja, qint32 &tecla) = 0;
    virtual qint32 FiltroTecla(VBool bandera, QLineEdit *caja, qint32 &tecla) = 0;
    virtual QString TextoConCeros(double numero, qint32 ancho) = 0;
    virtual QString FechaSQL(const QSqlDatabase &conexion, const QDate &fecha) = 0;
};

// The eleven in/out arguments of IniciaProceso, one field per position.
struct ArgumentosProceso
{
    QString proceso;                   // (1) the process key
    QPointer<QObject> objeto;          // (2) on whose behalf; the host may replace it
    QPointer<Ambiente> ambiente;       // (3)
    QVariant valor = QString("");      // (4) a tagged value holding the empty text
    QPointer<QObject> referencia;      // (5) empty
    VBool bandera = VTrue;             // (6) the veto flag, true before the call
    qint32 numero = 0;                 // (7)
    QString texto = QString("");       // (8) the empty text
    QString textoNulo;                 // (9) a null text
    QString textoFinal = QString("");  // (10) the empty text
    QPointer<QObject> referenciaFinal; // (11) empty
};

class ZUVI_CONTRATO_EXPORT ControlProcesos : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    virtual void IniciaProceso(ArgumentosProceso &argumentos) = 0;
    virtual void ConsultaProceso(VBool &bandera) = 0;
    virtual void ImprimeReporte(const QString &reporte, qint32 numero, Ambiente *ambiente,
                                QObject *ventana) = 0;
    virtual void CierraProceso(qint32 valor) = 0;
};

class ZUVI_CONTRATO_EXPORT VentanaProgreso : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    virtual void Inicia(const QVariant &total, const QString &titulo, const QString &animacion) = 0;
    virtual void Avanza(const QVariant &paso, const QString &linea1, const QString &linea2) = 0;
    // Harmless without Inicia.
    virtual void Cierra() = 0;
};

// The inventory movement document: values are set one by one, then
// AplicaMovimiento posts one movement line and returns its valued amount.
class ZUVI_CONTRATO_EXPORT DocumentoInventario : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    virtual void PonAmbiente(Ambiente *ambiente) = 0;
    virtual void PonDatoDocumento(const QVariant &dato) = 0;
    virtual void PonDatoFecha(qint32 dato) = 0;
    virtual void PonFecha(const QDate &fecha) = 0;
    virtual void PonTipo(const QString &tipo) = 0; // "S" out, "E" in
    virtual void PonConcepto(const QString &concepto) = 0;
    virtual void PonOrden(qint32 orden) = 0;
    virtual void PonFolio(const QString &folio) = 0;
    virtual void PonUsuario(const QString &usuario) = 0;
    virtual void PonAlmacen(double almacen) = 0;
    virtual void PonArticulo(const QString &articulo) = 0;
    virtual void PonCantidad(double cantidad) = 0;
    virtual void PonCosto(double costo) = 0;
    // numero is in/out and set to 0 by the caller before every call.
    virtual double AplicaMovimiento(qint32 &numero) = 0;
};

// A host dialog created per use by the order editor's fields, bound to the
// environment and to the text box it writes its result into.
class ZUVI_CONTRATO_EXPORT DialogoConDestino : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    virtual void PonAmbiente(Ambiente *ambiente) = 0;
    virtual void PonDestino(QLineEdit *destino) = 0;
};

// Catalogue lookup.
class ZUVI_CONTRATO_EXPORT BuscaCatalogo : public DialogoConDestino
{
    Q_OBJECT
public:
    using DialogoConDestino::DialogoConDestino;

    // Shows the catalogue with the caption; the chosen key is written into the
    // target box. filtro narrows the rows (for example "kit <> 0").
    virtual void Muestra(const QString &titulo, const QString &filtro = QString(),
                         const QString &texto2 = QString(), const QString &texto3 = QString(),
                         const QVariant &omitido = QVariant()) = 0;
};

// Numeric-entry pad bound to a text box.
class ZUVI_CONTRATO_EXPORT CapturaNumerica : public DialogoConDestino
{
    Q_OBJECT
public:
    using DialogoConDestino::DialogoConDestino;

    virtual void Muestra() = 0;
};

} // namespace zuvi
