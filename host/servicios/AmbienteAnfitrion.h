#pragma once

// The environment object the host hands to the component.
//
// Date parts: DatoFechaA is the day as a serial number, the count of days
// since 1899-12-30 (so 1 is 1899-12-31 and 45414 is 2024-05-02); DatoFechaB is
// the time of day in seconds since midnight (0 to 86399). fechaDeDatos(a, b)
// gives back the day; b only moves it when it lies outside one day (whole
// days of b carry over, a negative b borrows).
//
// DatoDocumento is the station key (text), which the movement document keeps
// as the origin of the movements it posts.

#include "contract/Servicios.h"
#include "host/base/Sesion.h"

#include <QDate>
#include <QDateTime>
#include <QSqlDatabase>

namespace zuvi::anfitrion {

qint32 datoFechaA(const QDate &fecha);
qint32 datoFechaB(const QTime &hora);
QDate fechaDeDatos(qint32 a, qint32 b);

class AmbienteAnfitrion : public zuvi::Ambiente
{
    Q_OBJECT
public:
    AmbienteAnfitrion(const QSqlDatabase &conexion, const Opciones &opciones, Motor motor,
                      QObject *parent = nullptr);
    ~AmbienteAnfitrion() override;

    QSqlDatabase Conexion() const override;
    QString UsuarioActual() const override;
    QString RutaAplicacion() const override;
    QVariant EjecutaSQL(const QString &sql) override;
    qint32 DatoFechaA() const override;
    qint32 DatoFechaB() const override;
    QVariant DatoDocumento() const override;
    RecordsetPtr ParametrosEstacion() override;
    QObject *ContenedorRutas() override;

    // Not part of the component's view of the environment.
    QString estacion() const { return m_opciones.estacion; }
    Motor motor() const { return m_motor; }
    // Tests fix "now"; an invalid value returns to the clock.
    void ponAhora(const QDateTime &ahora) { m_ahora = ahora; }
    QDateTime ahora() const;

private:
    QSqlDatabase m_conexion;
    Opciones m_opciones;
    Motor m_motor;
    QDateTime m_ahora;
    QDateTime ahoraEnSegundos() const;
    mutable qint64 m_segundo = -1;
    mutable QDateTime m_horaSegundo;
};

} // namespace zuvi::anfitrion
