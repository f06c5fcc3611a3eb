#pragma once

// The fraction capture window: the user types a code and presses Enter; the
// host's process control does the work under the keys "FRACCIONES001" (on
// load) and "FRACCIONES", reading Codigo and Estado through the window object.

#include "contract/Servicios.h"
#include "controls/Ventana.h"
#include "core/Exporta.h"

#include <QPointer>

class QLineEdit;
class QTextBrowser;

namespace zuvi {

class ZUVI_PRODUCCION_EXPORT frmFracciones : public Ventana
{
    Q_OBJECT
    Q_PROPERTY(QString Codigo MEMBER Codigo)
    Q_PROPERTY(QString Estado MEMBER Estado)
    Q_PROPERTY(QObject *Ambiente READ ambienteObjeto)

public:
    explicit frmFracciones(QWidget *parent = nullptr);

    QPointer<zuvi::Ambiente> Ambiente;
    QString Codigo;
    QString Estado;

    // Its one field, the code read or typed; the value is the index.
    struct Campo
    {
        enum : int { Codigo };
    };
    ArregloControles<QLineEdit> txtFields;
    QTextBrowser *wb = nullptr;

    QObject *ambienteObjeto() const { return Ambiente.data(); }

protected:
    void Form_Load() override;
    void Form_Paint() override;

private:
    void txtFields_KeyDown(int Index, qint16 &KeyCode, qint16 Shift);
    void iniciaProceso(const QString &clave);
};

} // namespace zuvi
