#pragma once

// What the shift window tests share: opening the catalogue as the host does,
// driving the modal editor from inside its own event loop, and reading lists.

#include "component/Produccion.h"
#include "controls/Lista.h"
#include "shifts/frmTurno.h"
#include "shifts/frmTurnos.h"
#include "tests/support/Ventanas.h"

#include <QTimer>

#include <functional>

namespace pruebasturnos {

using namespace zuvi::pruebas;

inline QPointer<zuvi::frmTurnos> abreCatalogo(zuvi::Ambiente *ambiente)
{
    zuvi::Produccion produccion;
    produccion.SetAmbiente(ambiente);
    produccion.MuestraTurnos();
    return ventanaAbierta<zuvi::frmTurnos>();
}

// Runs `pasos` on the editor as soon as it is open and active, from inside
// its modal loop; the editor is closed afterwards if the steps left it open,
// so a failing step cannot leave the loop waiting. `visto` tells whether the
// steps ran. The watch ends when the editor shows up or the caller deletes it.
inline QTimer *enEditor(std::function<void(zuvi::frmTurno *)> pasos, bool *visto = nullptr)
{
    auto *reloj = new QTimer;
    reloj->setInterval(10);
    QObject::connect(reloj, &QTimer::timeout, [reloj, pasos, visto] {
        QPointer<zuvi::frmTurno> e = visibles<zuvi::frmTurno>().value(0);
        if (!e)
            return;
        reloj->stop();
        reloj->deleteLater();
        if (!QTest::qWaitForWindowActive(e)) {
            e->descarga();
            return;
        }
        if (visto)
            *visto = true;
        pasos(e);
        if (e && !e->descargada())
            e->descarga();
    });
    reloj->start();
    return reloj;
}

// Each row of the list: its key, then the texts of its first `columnas` columns, joined by '|'.
inline QStringList textos(zuvi::Lista *lista, int columnas)
{
    QStringList filas;
    for (int i = 1; i <= lista->cuenta(); ++i) {
        QStringList celdas{zuvi::Lista::clave(lista->elemento(i))};
        for (int c = 0; c < columnas; ++c)
            celdas << lista->elemento(i)->text(c);
        filas << celdas.join(QLatin1Char('|'));
    }
    return filas;
}

} // namespace pruebasturnos
