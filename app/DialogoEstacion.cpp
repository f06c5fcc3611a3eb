#include "app/DialogoEstacion.h"

#include "host/interaccion/Interaccion.h"
#include "host/sql/Sql.h"
#include "runtime/Error.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QPushButton>
#include <QSpinBox>
#include <QSqlQuery>

namespace zuvi::app {

DialogoEstacion::DialogoEstacion(const QSqlDatabase &db, const QString &estacion, QWidget *padre)
    : QDialog(padre), m_db(db), m_estacion(estacion)
{
    setObjectName(QStringLiteral("dlgEstacion"));
    setWindowTitle(QStringLiteral("Configuración de la estación %1").arg(estacion));
    auto *forma = new QFormLayout(this);
    m_almacen = new QSpinBox(this);
    m_almacen->setRange(1, 999999);
    forma->addRow(QStringLiteral("&Almacén de las órdenes nuevas:"), m_almacen);
    m_lector = new QCheckBox(QStringLiteral("&Lector de códigos encendido al abrir"), this);
    m_negativa = new QCheckBox(
        QStringLiteral("Permitir existencias &negativas (registrar primero, contar después)"),
        this);
    m_sinKit = new QCheckBox(
        QStringLiteral("Permitir en las órdenes artículos que no son &kits (materiales)"), this);
    for (QCheckBox *c : {m_lector, m_negativa, m_sinKit})
        forma->addRow(c);
    m_negativa->setObjectName(QStringLiteral("chkExistenciaNegativa"));
    m_sinKit->setObjectName(QStringLiteral("chkLineasSinKit"));
    auto *botones = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    botones->button(QDialogButtonBox::Ok)->setText(QStringLiteral("Aceptar"));
    botones->button(QDialogButtonBox::Cancel)->setText(QStringLiteral("Cancelar"));
    connect(botones, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(botones, &QDialogButtonBox::rejected, this, &QDialog::reject);
    forma->addRow(botones);

    QSqlQuery q = anfitrion::ejecutaConValores(
        db,
        QStringLiteral("SELECT almacen, lector, existencianegativa, lineassinkit FROM estaciones "
                       "WHERE estacion = ?"),
        {estacion});
    m_existe = q.next();
    m_almacen->setValue(m_existe ? q.value(0).toInt() : 1);
    m_lector->setChecked(m_existe && q.value(1).toInt() != 0);
    m_negativa->setChecked(m_existe && q.value(2).toInt() != 0);
    m_sinKit->setChecked(m_existe && q.value(3).toInt() != 0);
}

void DialogoEstacion::accept()
{
    const QVariantList valores{m_almacen->value(), m_lector->isChecked() ? 1 : 0,
                               m_negativa->isChecked() ? 1 : 0, m_sinKit->isChecked() ? 1 : 0,
                               m_estacion};
    try {
        anfitrion::ejecutaConValores(
            m_db,
            m_existe
                ? QStringLiteral("UPDATE estaciones SET almacen = ?, lector = ?, "
                                 "existencianegativa = ?, lineassinkit = ? WHERE estacion = ?")
                : QStringLiteral("INSERT INTO estaciones (almacen, lector, existencianegativa, "
                                 "lineassinkit, estacion) VALUES (?, ?, ?, ?, ?)"),
            valores);
    } catch (const Error &e) {
        anfitrion::interaccion().mensaje(
            QStringLiteral("No se guardó la configuración de la estación %1: %2")
                .arg(m_estacion, e.description()),
            16);
        return;
    }
    QDialog::accept();
}

} // namespace zuvi::app
