#include "host/interaccion/TeclasRetenidas.h"

#include <QApplication>
#include <QDialog>
#include <QEventLoop>
#include <QPointer>
#include <QTimer>
#include <QWindow>

#include <memory>
#include <utility>

namespace zuvi::anfitrion {

namespace {

bool esEnter(int codigo)
{
    return codigo == Qt::Key_Return || codigo == Qt::Key_Enter;
}

bool esDeEntrada(QEvent::Type tipo)
{
    switch (tipo) {
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::ShortcutOverride:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel:
    case QEvent::Close:
        return true;
    default:
        return false;
    }
}

// To the focus, or, while the window manager has not yet given the window back
// its focus, to the control that will have it.
void envia(QWidget *ventana, QEvent::Type tipo, int codigo, Qt::KeyboardModifiers mods,
           const QString &texto)
{
    QWidget *destino = QApplication::focusWidget();
    if (!destino && ventana)
        destino = ventana->focusWidget();
    if (destino) {
        QKeyEvent tecla(tipo, codigo, mods, texto);
        QCoreApplication::sendEvent(destino, &tecla);
    }
}

} // namespace

TeclasRetenidas::TeclasRetenidas(QDialog *caja) : m_caja(caja)
{
    qApp->installEventFilter(this);
}

TeclasRetenidas::~TeclasRetenidas()
{
    qApp->removeEventFilter(this);
}

void TeclasRetenidas::espera()
{
    QPointer<QWidget> delante = QApplication::activeWindow();
    m_caja->setWindowModality(Qt::NonModal);
    m_caja->winId();
    if (delante && delante->windowHandle())
        m_caja->windowHandle()->setTransientParent(delante->windowHandle());
    QEventLoop bucle;
    connect(m_caja, &QDialog::finished, &bucle, &QEventLoop::quit);
    m_caja->show();
    m_caja->raise();
    m_caja->activateWindow();
    if (m_caja->isVisible())
        bucle.exec(QEventLoop::DialogExec);
    qApp->removeEventFilter(this);
    if (delante)
        delante->activateWindow();
    repite(delante);
}

bool TeclasRetenidas::eventFilter(QObject *objeto, QEvent *evento)
{
    if (!esDeEntrada(evento->type()) || !objeto->isWidgetType())
        return false;
    auto *w = static_cast<QWidget *>(objeto);
    const bool enLaCaja = w->window() == m_caja;
    if (evento->type() == QEvent::Close)
        return !enLaCaja && w->isWindow() ? (evento->ignore(), true) : false;
    if (evento->type() == QEvent::ShortcutOverride) {
        if (enLaCaja)
            return false;
        evento->accept(); // as a key, for the filter, not as another window's shortcut
        return true;
    }
    const bool esTecla = evento->type() == QEvent::KeyPress || evento->type() == QEvent::KeyRelease;
    if (esTecla && teclaRetenida(evento))
        return true;
    return !enLaCaja; // the box is modal in effect
}

bool TeclasRetenidas::teclaRetenida(QEvent *evento)
{
    const auto *tecla = static_cast<QKeyEvent *>(evento);
    const QString texto = tecla->text();
    const bool imprimible = !texto.isEmpty() && texto.front().isPrint() &&
                            !texto.front().isSpace() &&
                            !(tecla->modifiers() & (Qt::ControlModifier | Qt::AltModifier));
    if (imprimible) {
        if (evento->type() == QEvent::KeyPress)
            m_teclas.append({tecla->key(), tecla->modifiers(), texto});
        return true;
    }
    if (evento->type() == QEvent::KeyPress && esEnter(tecla->key()) && !m_teclas.isEmpty()) {
        m_completas = true;
        m_caja->accept();
        return true;
    }
    return false;
}

void TeclasRetenidas::repite(QWidget *ventana)
{
    if (!m_completas || m_teclas.isEmpty())
        return;
    const auto teclea = [teclas = m_teclas, v = QPointer<QWidget>(ventana)] {
        for (const Tecla &t : teclas) {
            envia(v, QEvent::KeyPress, t.codigo, t.modificadores, t.texto);
            envia(v, QEvent::KeyRelease, t.codigo, t.modificadores, t.texto);
        }
        envia(v, QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, QStringLiteral("\r"));
        envia(v, QEvent::KeyRelease, Qt::Key_Return, Qt::NoModifier, QStringLiteral("\r"));
    };
    if (!ventana || ventana->isActiveWindow()) {
        QTimer::singleShot(0, qApp, teclea);
        return;
    }
    // The window's controls react to the focus coming back (a code field selects
    // its text for the next code): the keys wait for it, or for a moment at most.
    auto *espera = new QTimer(qApp);
    espera->setSingleShot(true);
    const auto una = std::make_shared<bool>(false);
    const auto lanza = [espera, una, teclea] {
        if (std::exchange(*una, true))
            return;
        espera->deleteLater();
        QTimer::singleShot(0, qApp, teclea);
    };
    connect(espera, &QTimer::timeout, qApp, lanza);
    connect(qApp, &QApplication::focusChanged, espera,
            [ventana = QPointer<QWidget>(ventana), lanza](QWidget *, QWidget *ahora) {
                if (ahora && ventana && ahora->window() == ventana)
                    lanza();
            });
    espera->start(500);
}

} // namespace zuvi::anfitrion
