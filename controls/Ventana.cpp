#include "controls/Ventana.h"

#include "controls/Teclas.h"

#include <QChildEvent>
#include <QCloseEvent>
#include <QCoreApplication>
#include <QEventLoop>
#include <QKeyEvent>
#include <QPaintEvent>

namespace zuvi {

Ventana::Ventana(const QString &modulo, QWidget *parent) : QWidget(parent), m_modulo(modulo)
{
    // A fresh instance per opening; closing it ends it.
    setAttribute(Qt::WA_DeleteOnClose);
    setObjectName(modulo);
    installEventFilter(this);
}

Ventana::~Ventana()
{
    // The controls outlive this part of the window by a moment: they must
    // not report their end to a table that is already gone.
    for (auto it = m_enlaces.cbegin(); it != m_enlaces.cend(); ++it)
        disconnect(it.key(), &QObject::destroyed, this, nullptr);
}

void Ventana::muestra(bool modal)
{
    if (!m_cargada) {
        m_cargada = true;
        try {
            Form_Load();
        } catch (...) {
            m_descargada = true;
            deleteLater();
            throw;
        }
    }
    if (m_descargada)
        return; // Form_Load unloaded the window itself
    vigila(this);
    if (!modal) {
        show();
        return;
    }
    QPointer<Ventana> yo(this);
    setWindowModality(Qt::ApplicationModal);
    QEventLoop bucle;
    connect(this, &Ventana::seDescargo, &bucle, &QEventLoop::quit);
    connect(this, &QObject::destroyed, &bucle, &QEventLoop::quit);
    show();
    if (yo && !m_descargada)
        bucle.exec(QEventLoop::DialogExec);
}

bool Ventana::descarga()
{
    if (m_descargada)
        return true;
    close();
    return m_descargada;
}

qint16 Ventana::WindowState() const
{
    const Qt::WindowStates estado = windowState();
    if (estado.testFlag(Qt::WindowMinimized))
        return Minimizada;
    if (estado.testFlag(Qt::WindowMaximized))
        return Maximizada;
    return Normal;
}

void Ventana::SetWindowState(qint16 estado)
{
    if (estado == WindowState())
        return; // no state change, no new paint
    Qt::WindowStates nuevo = windowState() & ~(Qt::WindowMinimized | Qt::WindowMaximized);
    if (estado == Minimizada)
        nuevo |= Qt::WindowMinimized;
    else if (estado == Maximizada)
        nuevo |= Qt::WindowMaximized;
    setWindowState(nuevo);
}

void Ventana::conectaTeclas(const QString &nombre, Teclas manejadores)
{
    const auto miembros = arreglo<QWidget>(nombre);
    for (int indice : miembros.indices())
        conectaTeclas(miembros(indice), nombre, manejadores, indice);
}

void Ventana::conectaTeclas(QWidget *control, const QString &nombre, Teclas manejadores, int indice)
{
    if (!control)
        return;
    m_enlaces.insert(control, Enlace{nombre, indice, std::move(manejadores)});
    connect(control, &QObject::destroyed, this,
            [this](QObject *objeto) { m_enlaces.remove(objeto); });
    vigila(control);
}

void Ventana::closeEvent(QCloseEvent *evento)
{
    if (m_descargada) {
        evento->accept();
        return;
    }
    // The window system's close request is the title bar or control menu;
    // close() called by the program is an unload from code.
    const qint16 modo = evento->spontaneous() ? DesdeMenuControl : DesdeCodigo;
    qint16 cancelar = 0;
    atrapa(QStringLiteral("Form_QueryUnload"), [&] { Form_QueryUnload(cancelar, modo); });
    if (cancelar != 0) {
        evento->ignore();
        return;
    }
    atrapa(QStringLiteral("Form_Unload"), [&] { Form_Unload(cancelar); });
    if (cancelar != 0) {
        evento->ignore();
        return;
    }
    m_descargada = true;
    evento->accept();
    Q_EMIT seDescargo();
}

void Ventana::paintEvent(QPaintEvent *evento)
{
    QWidget::paintEvent(evento);
    if (m_pintando || m_descargada)
        return; // what Form_Paint does must not paint its way back in here
    m_pintando = true;
    atrapa(QStringLiteral("Form_Paint"), [this] { Form_Paint(); });
    m_pintando = false;
}

void Ventana::vigila(QWidget *control)
{
    control->installEventFilter(this); // installing twice keeps one filter
    for (QWidget *hijo : control->findChildren<QWidget *>())
        hijo->installEventFilter(this);
}

bool Ventana::esDestinoDeTeclas(QWidget *control) const
{
    // A key the focused control leaves unaccepted travels up to its parents,
    // through this same filter: it is handled once, where it was aimed. The
    // window's own focus child counts, not the application's: a window that
    // is not the active one still receives the keys sent to it.
    if (control->window() != this)
        return false; // a dialog or box parented to this window
    QWidget *foco = focusWidget();
    if (!foco)
        return control == this;
    return control == foco;
}

bool Ventana::eventFilter(QObject *objeto, QEvent *evento)
{
    switch (evento->type()) {
    case QEvent::ChildAdded: {
        auto *hijo = qobject_cast<QWidget *>(static_cast<QChildEvent *>(evento)->child());
        if (hijo)
            vigila(hijo);
        return false;
    }
    case QEvent::KeyPress:
    case QEvent::KeyRelease: {
        auto *control = qobject_cast<QWidget *>(objeto);
        if (m_reenviando || !control || !esDestinoDeTeclas(control))
            return false;
        auto *tecla = static_cast<QKeyEvent *>(evento);
        return evento->type() == QEvent::KeyPress ? teclaAbajo(control, tecla)
                                                  : teclaArriba(control, tecla);
    }
    default:
        return false;
    }
}

bool Ventana::teclaAbajo(QWidget *control, QKeyEvent *evento)
{
    QPointer<QWidget> destino(control);
    const bool esVentana = control == this;
    const bool deVentana = esVentana || KeyPreview;
    const Enlace enlace = m_enlaces.value(control);
    const qint16 shift = teclas::estadoShift(evento->modifiers());

    qint16 codigo = teclas::codigoTecla(evento);
    if (codigo != 0) {
        if (deVentana)
            atrapa(QStringLiteral("Form_KeyDown"), [&] { Form_KeyDown(codigo, shift); });
        if (codigo != 0 && !esVentana && destino && enlace.manejadores.KeyDown)
            atrapa(enlace.nombre + QStringLiteral("_KeyDown"),
                   [&] { enlace.manejadores.KeyDown(enlace.indice, codigo, shift); });
        if (codigo == 0 || !destino)
            return true;
    }

    const qint16 original = teclas::codigoCaracter(evento);
    qint16 caracter = original;
    if (caracter != 0) {
        if (deVentana)
            atrapa(QStringLiteral("Form_KeyPress"), [&] { Form_KeyPress(caracter); });
        if (caracter != 0 && !esVentana && destino && enlace.manejadores.KeyPress)
            atrapa(enlace.nombre + QStringLiteral("_KeyPress"),
                   [&] { enlace.manejadores.KeyPress(enlace.indice, caracter); });
        if (caracter == 0 || !destino)
            return true;
        if (caracter != original) {
            // The handler typed another character: the control receives that.
            QKeyEvent cambiada(QEvent::KeyPress, teclas::teclaQtDeCaracter(caracter),
                               evento->modifiers() & ~Qt::ShiftModifier,
                               QString(QChar(ushort(caracter))));
            m_reenviando = true;
            QCoreApplication::sendEvent(destino, &cambiada);
            m_reenviando = false;
            return true;
        }
    }
    return false;
}

bool Ventana::teclaArriba(QWidget *control, QKeyEvent *evento)
{
    QPointer<QWidget> destino(control);
    const bool esVentana = control == this;
    const Enlace enlace = m_enlaces.value(control);
    const qint16 shift = teclas::estadoShift(evento->modifiers());
    qint16 codigo = teclas::codigoTecla(evento);
    if (codigo == 0)
        return false;
    if (esVentana || KeyPreview)
        atrapa(QStringLiteral("Form_KeyUp"), [&] { Form_KeyUp(codigo, shift); });
    if (codigo != 0 && !esVentana && destino && enlace.manejadores.KeyUp)
        atrapa(enlace.nombre + QStringLiteral("_KeyUp"),
               [&] { enlace.manejadores.KeyUp(enlace.indice, codigo, shift); });
    return codigo == 0;
}

} // namespace zuvi
