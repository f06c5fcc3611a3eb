#pragma once

// Driving windows as a person does: finding the window a call opened, typing
// key scripts, pressing a button's mnemonic, clicking, and a statement that
// the database refuses (for failures half-way through a write).

#include "tests/support/BaseDePrueba.h"

#include <QAbstractButton>
#include <QApplication>
#include <QHash>
#include <QPointer>
#include <QSqlError>
#include <QSqlQuery>
#include <QTest>
#include <QTreeWidget>
#include <QWindow>

#include <algorithm>

namespace zuvi::pruebas {

// The visible top-level windows of class T; a window of ours counts until it is unloaded.
template <typename T> QList<T *> visibles()
{
    QList<T *> lista;
    for (QWidget *w : QApplication::topLevelWidgets()) {
        auto *v = qobject_cast<T *>(w);
        bool vale = v && v->isVisible();
        if constexpr (requires { v->descargada(); })
            vale = vale && !v->descargada();
        if (vale)
            lista << v;
    }
    return lista;
}

// The first of those windows, once it is active; null when there is none.
template <typename T> QPointer<T> ventanaAbierta()
{
    const QList<T *> lista = visibles<T>();
    return !lista.isEmpty() && QTest::qWaitForWindowActive(lista.first()) ? lista.first() : nullptr;
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

// Types a key script into the window, each key to whatever has the focus at
// that moment: ⏎ Enter, ⇥ Tab, ⎋ Escape, ↑ ↓ the arrows, ⌫ Backspace,
// ⌦ Delete, {F1}..{F12} a function key; any other character as itself.
inline void teclea(QWidget *ventana, const QString &guion)
{
    static const QHash<QChar, Qt::Key> especiales{{u'⏎', Qt::Key_Return}, {u'⇥', Qt::Key_Tab},
                                                  {u'⎋', Qt::Key_Escape}, {u'↑', Qt::Key_Up},
                                                  {u'↓', Qt::Key_Down},   {u'⌫', Qt::Key_Backspace},
                                                  {u'⌦', Qt::Key_Delete}, {u'⇱', Qt::Key_End}};
    QWindow *w = ventana->window()->windowHandle();
    for (qsizetype i = 0; i < guion.size(); ++i) {
        const QChar c = guion.at(i);
        if (c == u'{' && guion.indexOf(u'}', i) > i + 1 && guion.at(i + 1) == u'F') {
            const qsizetype fin = guion.indexOf(u'}', i);
            const int n = guion.mid(i + 2, fin - i - 2).toInt();
            QTest::keyClick(w, Qt::Key(Qt::Key_F1 + n - 1));
            i = fin;
        } else if (especiales.contains(c)) {
            QTest::keyClick(w, especiales.value(c));
        } else if (c.unicode() < 128) {
            QTest::keyClick(w, char(c.unicode()));
        } else {
            QTest::keyClicks(QApplication::focusWidget(), QString(c));
        }
    }
}

// A button's mnemonic, Alt and the letter: the button clicks itself a moment
// later, and this returns once it has (a modal dialog it opens runs meanwhile).
inline void atajo(QWidget *ventana, Qt::Key letra)
{
    QList<QPointer<QAbstractButton>> botones;
    for (QAbstractButton *b : ventana->findChildren<QAbstractButton *>())
        botones << b;
    QTest::keyClick(ventana->windowHandle(), letra, Qt::AltModifier);
    // A button's click may close and delete its own window.
    QVERIFY(QTest::qWaitFor([&] {
        return std::none_of(botones.begin(), botones.end(),
                            [](const QPointer<QAbstractButton> &b) { return b && b->isDown(); });
    }));
}

inline void clic(QAbstractButton *boton)
{
    QTest::mouseClick(boton, Qt::LeftButton);
}

inline void clicEnElemento(QTreeWidget *lista, QTreeWidgetItem *elemento)
{
    lista->scrollToItem(elemento);
    QTest::mouseClick(lista->viewport(), Qt::LeftButton, {},
                      lista->visualItemRect(elemento).center());
}

// Makes the database refuse, with "La base se perdio", every `suceso`
// ("INSERT" or "UPDATE") on `tabla` whose row meets `condicion` (on NEW).
inline bool fallaAl(BaseDePrueba &base, const QString &suceso, const QString &tabla,
                    const QString &condicion = QStringLiteral("1 = 1"))
{
    QSqlQuery q(base.conexion());
    const QString sql = BaseDePrueba::enMariaDB()
                            ? QStringLiteral("CREATE TRIGGER falla BEFORE %1 ON %2 FOR EACH ROW "
                                             "BEGIN IF %3 THEN SIGNAL SQLSTATE '45000' SET "
                                             "MESSAGE_TEXT = 'La base se perdio'; END IF; END")
                            : QStringLiteral("CREATE TRIGGER falla BEFORE %1 ON %2 WHEN %3 "
                                             "BEGIN SELECT RAISE(ABORT, 'La base se perdio'); END");
    const bool ok = q.exec(sql.arg(suceso, tabla, condicion));
    if (!ok)
        qWarning("%s", qPrintable(q.lastError().text()));
    return ok;
}

} // namespace zuvi::pruebas
