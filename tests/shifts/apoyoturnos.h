#pragma once

// What the shift window tests share: opening the catalogue as the host does,
// driving the modal editor from inside its own event loop, and clicking list
// items and buttons with the mouse.

#include "component/Produccion.h"
#include "controls/Lista.h"
#include "shifts/frmTurno.h"
#include "shifts/frmTurnos.h"

#include <QAbstractButton>
#include <QApplication>
#include <QPointer>
#include <QTest>
#include <QTimer>

#include <functional>

namespace pruebasturnos {

inline QPointer<zuvi::frmTurnos> abreCatalogo(zuvi::Ambiente *ambiente)
{
    zuvi::Produccion produccion;
    produccion.SetAmbiente(ambiente);
    produccion.MuestraTurnos();
    for (QWidget *w : QApplication::topLevelWidgets()) {
        auto *f = qobject_cast<zuvi::frmTurnos *>(w);
        if (f && f->isVisible() && !f->descargada() && !f->property("vista").toBool()) {
            f->setProperty("vista", true);
            return QTest::qWaitForWindowActive(f) ? f : nullptr;
        }
    }
    return nullptr;
}

// Deletes every top-level window left over; a window's own popups go with it.
inline void cierraTodo()
{
    QList<QPointer<QWidget>> ventanas;
    for (QWidget *w : QApplication::topLevelWidgets())
        ventanas << w;
    for (const QPointer<QWidget> &w : ventanas)
        delete w.data();
}

inline zuvi::frmTurno *editorAbierto()
{
    for (QWidget *w : QApplication::topLevelWidgets())
        if (auto *e = qobject_cast<zuvi::frmTurno *>(w); e && e->isVisible() && !e->descargada())
            return e;
    return nullptr;
}

// Runs `pasos` on the editor as soon as it is open and active, from inside
// its modal loop; the editor is closed afterwards if the steps left it open,
// so a failing step cannot leave the loop waiting. `visto` tells whether the
// steps ran.
inline void enEditor(std::function<void(zuvi::frmTurno *)> pasos, bool *visto = nullptr)
{
    auto *reloj = new QTimer;
    reloj->setInterval(10);
    QObject::connect(reloj, &QTimer::timeout, [reloj, pasos, visto] {
        QPointer<zuvi::frmTurno> e(editorAbierto());
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
}

// A button's mnemonic: Alt and the letter, sent to the window; the button
// clicks itself a moment later (and a modal editor it opens runs meanwhile).
inline void atajo(QWidget *ventana, Qt::Key letra)
{
    QTest::keyClick(ventana->windowHandle(), letra, Qt::AltModifier);
    QTest::qWait(150);
}

inline void clic(QAbstractButton *boton)
{
    QTest::mouseClick(boton, Qt::LeftButton);
}

inline void clicEnElemento(zuvi::Lista *lista, QTreeWidgetItem *elemento)
{
    lista->scrollToItem(elemento);
    QTest::mouseClick(lista->viewport(), Qt::LeftButton, {},
                      lista->visualItemRect(elemento).center());
}

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
