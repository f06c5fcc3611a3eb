#include "app/DialogoEntrada.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>

namespace zuvi::app {

bool pideEntradaVentana(QString &cuenta, QString &clave, const QString &motivo)
{
    QDialog dialogo;
    dialogo.setObjectName(QStringLiteral("dlgEntrada"));
    dialogo.setWindowTitle(QStringLiteral("ZuviProduccion - Entrar"));
    auto *forma = new QFormLayout(&dialogo);
    if (!motivo.isEmpty()) {
        auto *aviso = new QLabel(motivo, &dialogo);
        aviso->setWordWrap(true);
        forma->addRow(aviso);
    }
    auto *txtCuenta = new QLineEdit(cuenta, &dialogo);
    txtCuenta->setObjectName(QStringLiteral("txtCuenta"));
    auto *txtClave = new QLineEdit(&dialogo);
    txtClave->setObjectName(QStringLiteral("txtClave"));
    txtClave->setEchoMode(QLineEdit::Password);
    forma->addRow(QStringLiteral("&Cuenta:"), txtCuenta);
    forma->addRow(QStringLiteral("C&lave:"), txtClave);
    auto *botones = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, &dialogo);
    QObject::connect(botones, &QDialogButtonBox::accepted, &dialogo, &QDialog::accept);
    QObject::connect(botones, &QDialogButtonBox::rejected, &dialogo, &QDialog::reject);
    forma->addRow(botones);
    (cuenta.isEmpty() ? txtCuenta : txtClave)->setFocus();
    if (dialogo.exec() != QDialog::Accepted)
        return false;
    cuenta = txtCuenta->text().trimmed();
    clave = txtClave->text();
    txtClave->clear();
    return true;
}

} // namespace zuvi::app
