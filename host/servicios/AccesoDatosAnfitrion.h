#pragma once

// The host's data-access object: SELECTs, conversions, the message catalogue,
// numbering, key filters and formatting, key existence and the location rule.
//
// Location rule (UbicacionRestringida): prods.ubicacion normally names a
// shelf or bin and restricts nothing. When it reads "SOLO" (or "SÓLO", any
// case) followed by warehouse numbers separated by commas or blanks, as in
// "SOLO 1,3", the article may only be entered in those warehouses: any other
// warehouse is refused. Empty, any other text, or an article that does not
// exist: not restricted. "SOLO" with no readable number refuses every
// warehouse (the location was meant to restrict and names none).
//
// SiguienteFolio leaves the in/out document number at the new number it
// returns, so a caller that reads either gets the same value.
//
// FiltroTecla filters by the box's tag (host/servicios/Filtros.h) when its flag is true
// and lets every key through when it is false. The flags of Consulta and
// ExisteClave are accepted and have no effect: the module always passes true.
//
// ValorNumerico and ValorTexto read a value that holds a QObject* (a text box
// handed over as a field) through its default text.

#include "contract/Servicios.h"

namespace zuvi::anfitrion {

class AccesoDatosAnfitrion : public zuvi::AccesoDatos
{
    Q_OBJECT
public:
    using zuvi::AccesoDatos::AccesoDatos;

    RecordsetPtr Consulta(const QString &sql, const QSqlDatabase &conexion,
                          VBool bandera = VTrue) override;
    double ValorNumerico(const QVariant &valor) override;
    QString ValorTexto(const QVariant &valor) override;
    VBool EstaVacio(const QString &texto) override;
    QString TraeMensaje(qint32 numero, Ambiente *ambiente) override;
    void Mensaje(const QString &texto, qint32 estilo, Ambiente *ambiente) override;
    VBool Pregunta(const QString &texto, qint32 valor) override;
    qint32 SiguienteFolio(const QString &clave, const QSqlDatabase &conexion, qint32 &documento,
                          ConstructorSql *constructor) override;
    QDate ComponeFecha(qint32 datoA, qint32 datoB) override;
    ConstructorSql *NuevoConstructorSql() override;

    void PreparaVentana(QWidget *ventana, Ambiente *ambiente, const QString &texto) override;
    void LiberaVentana(QWidget *ventana, Ambiente *ambiente, const QString &principal) override;
    VBool ExisteClave(const QString &valor, const QString &tabla, const QString &columna,
                      const QSqlDatabase &conexion, VBool bandera = VTrue) override;
    VBool UbicacionRestringida(const QString &articulo, qint16 almacen,
                               const QSqlDatabase &conexion) override;
    QString FormateaCampo(QLineEdit *caja, Ambiente *ambiente) override;
    qint32 FiltroMayusculas(QLineEdit *caja, qint32 &tecla) override;
    qint32 FiltroTecla(VBool bandera, QLineEdit *caja, qint32 &tecla) override;
    QString TextoConCeros(double numero, qint32 ancho) override;
    QString FechaSQL(const QSqlDatabase &conexion, const QDate &fecha) override;
};

// The location rule on its own: true when an article whose prods.ubicacion
// reads ubicacion must be refused in warehouse almacen.
bool ubicacionRestringe(const QString &ubicacion, int almacen);

} // namespace zuvi::anfitrion
