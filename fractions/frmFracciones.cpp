#include "fractions/frmFracciones.h"

#include "controls/Teclas.h"
#include "core/Modulo.h"
#include "runtime/Text.h"

#include <QLineEdit>
#include <QTextBrowser>
#include <QVBoxLayout>

namespace zuvi {

frmFracciones::frmFracciones(QWidget *parent) : Ventana(QStringLiteral("frmFracciones"), parent)
{
    setWindowTitle(QStringLiteral("Captura de fracciones"));
    resize(640, 480);

    auto *campo = new QLineEdit(this);
    campo->setObjectName(QStringLiteral("txtFields_0"));
    wb = new QTextBrowser(this);
    wb->setObjectName(QStringLiteral("wb"));
    wb->setOpenLinks(false);

    auto *disposicion = new QVBoxLayout(this);
    disposicion->addWidget(campo);
    disposicion->addWidget(wb, 1);

    txtFields = arreglo<QLineEdit>(QStringLiteral("txtFields"));
    conectaTeclas(QStringLiteral("txtFields"), {[this](int Index, qint16 &KeyCode, qint16 Shift) {
                                                    txtFields_KeyDown(Index, KeyCode, Shift);
                                                },
                                                {},
                                                {}});
}

void frmFracciones::Form_Load()
{
    atrapa(QStringLiteral("Form_Load"), [this] {
        Estado = QStringLiteral("ESPERANDO USUARIO");
        iniciaProceso(QStringLiteral("FRACCIONES001"));
    });
}

void frmFracciones::Form_Paint()
{
    atrapa(QStringLiteral("Form_Paint"), [this] {
        SetWindowState(Maximizada);
        txtFields(Campo::Codigo)->setFocus();
    });
}

void frmFracciones::txtFields_KeyDown([[maybe_unused]] int Index, qint16 &KeyCode,
                                      [[maybe_unused]] qint16 Shift)
{
    // Runs before the key reaches the field: on Enter, Codigo is the whole
    // line typed so far.
    Codigo = Trim(txtFields(Campo::Codigo)->text());
    if (KeyCode == teclas::Enter)
        iniciaProceso(QStringLiteral("FRACCIONES"));
}

void frmFracciones::iniciaProceso(const QString &clave)
{
    ArgumentosProceso argumentos;
    argumentos.proceso = clave;
    argumentos.objeto = this;
    argumentos.ambiente = Ambiente;
    modulo::controlProcesos()->IniciaProceso(argumentos);
}

} // namespace zuvi
