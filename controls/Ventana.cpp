#include "controls/Ventana.h"

#include "controls/MultiCombo.h"
#include "controls/Teclas.h"

#include <QAbstractScrollArea>
#include <QAction>
#include <QApplication>
#include <QChildEvent>
#include <QClipboard>
#include <QCloseEvent>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QCoreApplication>
#include <QDialog>
#include <QEventLoop>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QPaintEvent>
#include <QScreen>
#include <QTextEdit>

#include <algorithm>

namespace zuvi {

namespace {

// A key that does nothing but type its character into a plain text box: no
// Control, Alt or Meta, not an editing or function key, one printable
// character, and a box that takes it as typed (writable, shown as typed, no
// completion). Such a key is never one of the box's editing shortcuts. A
// disabled box takes no keys at all.
QLineEdit *cajaQueSoloEscribe(QObject *objeto, const QKeyEvent *tecla)
{
    auto *caja = qobject_cast<QLineEdit *>(objeto);
    if (!caja || caja->metaObject() != &QLineEdit::staticMetaObject || !caja->isEnabled() ||
        caja->isReadOnly() || caja->echoMode() != QLineEdit::Normal || caja->completer())
        return nullptr;
    const Qt::KeyboardModifiers m = tecla->modifiers();
    if (m != Qt::NoModifier && m != Qt::ShiftModifier && m != Qt::KeypadModifier)
        return nullptr;
    const QString texto = tecla->text();
    if (tecla->key() >= Qt::Key_Escape || texto.size() != 1 || !texto.at(0).isPrint())
        return nullptr;
    return caja;
}

} // namespace

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
        disconnect(it.key(), nullptr, this, nullptr);
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
    acomodaEnPantalla();
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

void Ventana::acomodaEnPantalla()
{
    QScreen *pantalla = screen();
    if (!pantalla || testAttribute(Qt::WA_Moved))
        return; // its opener placed it
    // Room for the title bar and borders the window manager adds.
    constexpr int kTitulo = 32, kBorde = 8;
    const QRect libre = pantalla->availableGeometry();
    resize(size().boundedTo(QSize(libre.width() - 2 * kBorde, libre.height() - kTitulo - kBorde)));
    move(libre.x() + std::max(0, (libre.width() - width()) / 2),
         libre.y() + std::max(0, (libre.height() - height() - kTitulo) / 2));
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
    enlaza(control, nombre, indice).manejadores = std::move(manejadores);
    if (auto *caja = qobject_cast<QLineEdit *>(control))
        caja->setAcceptDrops(false); // a drop would skip KeyPress; pasting does not
}

Ventana::Enlace &Ventana::enlaza(QWidget *control, const QString &nombre, int indice)
{
    if (!m_enlaces.contains(control)) {
        connect(control, &QObject::destroyed, this,
                [this](QObject *objeto) { m_enlaces.remove(objeto); });
        vigila(control);
    }
    Enlace &enlace = m_enlaces[control];
    enlace.nombre = nombre;
    enlace.indice = indice;
    return enlace;
}

void Ventana::conectaEventos(const QString &nombre, Eventos manejadores)
{
    const auto miembros = arreglo<QWidget>(nombre);
    for (int indice : miembros.indices())
        conectaEventos(miembros(indice), nombre, manejadores, indice);
}

void Ventana::conectaEventos(QWidget *control, const QString &nombre, Eventos manejadores,
                             int indice)
{
    if (!control)
        return;
    Enlace &enlace = enlaza(control, nombre, indice);
    const bool conCambio = manejadores.Change && !enlace.eventos.Change;
    enlace.eventos = std::move(manejadores);
    if (!conCambio)
        return;
    const auto cambio = [this, control] {
        const auto it = m_enlaces.constFind(control);
        if (it != m_enlaces.cend() && !m_descargada)
            lanza(*it, "_Change", it->eventos.Change);
    };
    if (auto *caja = qobject_cast<QLineEdit *>(control))
        connect(caja, &QLineEdit::textChanged, this, cambio);
    else if (auto *texto = qobject_cast<QTextEdit *>(control))
        connect(texto, &QTextEdit::textChanged, this, cambio);
    else if (auto *combo = qobject_cast<QComboBox *>(control))
        connect(combo, &QComboBox::currentTextChanged, this, cambio);
}

void Ventana::lanza(const Enlace &enlace, const char *evento,
                    const std::function<void(int)> &manejador)
{
    if (!manejador)
        return;
    const int indice = enlace.indice;
    const auto copia = manejador; // the handler may rebind or destroy the control
    atrapa(enlace.nombre + QLatin1String(evento), [&] { copia(indice); });
}

void Ventana::pegaFiltrado(QLineEdit *caja)
{
    QPointer<QLineEdit> destino(caja);
    const QString texto = QGuiApplication::clipboard()->text();
    const Enlace enlace = m_enlaces.value(caja);
    for (const QChar c : texto) {
        if (!destino || destino->isReadOnly() || !destino->isEnabled() ||
            destino->text().size() >= destino->maxLength() || focusWidget() != destino)
            return;
        // Undecodable bytes arrive as the replacement character; halves of a
        // pair and the other non-printing code points cannot be typed either.
        if (!c.isPrint() || c == QChar::ReplacementCharacter)
            continue;
        qint16 caracter = qint16(c.unicode());
        if (enlace.manejadores.KeyPress)
            atrapa(enlace.nombre + QStringLiteral("_KeyPress"),
                   [&] { enlace.manejadores.KeyPress(enlace.indice, caracter); });
        if (caracter != 0 && destino)
            destino->insert(QString(QChar(ushort(caracter))));
    }
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

bool Ventana::eventoDeControl(QObject *objeto, QEvent *evento)
{
    auto it = m_enlaces.constFind(objeto);
    if (it == m_enlaces.cend() && evento->type() == QEvent::MouseButtonDblClick) {
        // A double-click on a list or grid lands on its viewport.
        auto *area = qobject_cast<QAbstractScrollArea *>(objeto->parent());
        if (area && area->viewport() == objeto)
            it = m_enlaces.constFind(area);
    }
    if (it == m_enlaces.cend() || m_descargada)
        return false;
    const Enlace enlace = *it;
    switch (evento->type()) {
    case QEvent::FocusIn:
    case QEvent::FocusOut: {
        const Qt::FocusReason razon = static_cast<QFocusEvent *>(evento)->reason();
        // Switching windows is not entering a control, except coming back
        // from a message or dialog of this window: the control the focus
        // returns to is entered again.
        const bool vuelve = razon == Qt::ActiveWindowFocusReason &&
                            evento->type() == QEvent::FocusIn && m_trasDialogo;
        if (vuelve)
            m_trasDialogo = false;
        else if (razon == Qt::ActiveWindowFocusReason || razon == Qt::PopupFocusReason)
            return false;
        if (evento->type() == QEvent::FocusIn)
            lanza(enlace, "_GotFocus", enlace.eventos.GotFocus);
        else
            lanza(enlace, "_LostFocus", enlace.eventos.LostFocus);
        return false;
    }
    case QEvent::MouseButtonDblClick:
        lanza(enlace, "_DblClick", enlace.eventos.DblClick);
        return false;
    case QEvent::ContextMenu: {
        auto *caja = qobject_cast<QLineEdit *>(objeto);
        if (!caja || !enlace.manejadores.KeyPress)
            return false;
        // The box's own menu, with its Paste going through the key filter.
        const std::unique_ptr<QMenu> menu(caja->createStandardContextMenu());
        if (auto *pegar = menu->findChild<QAction *>(QStringLiteral("edit-paste"))) {
            disconnect(pegar, &QAction::triggered, nullptr, nullptr);
            connect(pegar, &QAction::triggered, this, [this, caja] { pegaFiltrado(caja); });
        }
        menu->exec(static_cast<QContextMenuEvent *>(evento)->globalPos());
        return true;
    }
    default:
        return false;
    }
}

bool Ventana::eventFilter(QObject *objeto, QEvent *evento)
{
    switch (evento->type()) {
    case QEvent::WindowDeactivate: {
        // A message or dialog takes the focus: modal, or a dialog the host shows
        // without Qt's modality and blocks the other windows for itself.
        QWidget *modal = QApplication::activeModalWidget();
        QWidget *activa = QApplication::activeWindow();
        if (objeto == this && ((modal && modal != this) ||
                               (activa && activa != this && qobject_cast<QDialog *>(activa))))
            m_trasDialogo = true;
        return false;
    }
    case QEvent::FocusIn:
    case QEvent::FocusOut:
    case QEvent::MouseButtonDblClick:
    case QEvent::ContextMenu:
        return eventoDeControl(objeto, evento);
    case QEvent::ChildAdded: {
        auto *hijo = qobject_cast<QWidget *>(static_cast<QChildEvent *>(evento)->child());
        if (hijo)
            vigila(hijo);
        return false;
    }
    case QEvent::ShortcutOverride: {
        // Before a key press the box is asked whether it keeps the key from
        // the shortcuts; it keeps every key that only types, and answering
        // for it here spares it looking the key up among all its editing
        // keys on every keystroke.
        auto *control = qobject_cast<QWidget *>(objeto);
        if (!control || !m_enlaces.contains(objeto) || !esDestinoDeTeclas(control) ||
            !cajaQueSoloEscribe(objeto, static_cast<QKeyEvent *>(evento)))
            return false;
        evento->accept();
        return true;
    }
    case QEvent::KeyPress:
    case QEvent::KeyRelease: {
        auto *control = qobject_cast<QWidget *>(objeto);
        if (m_reenviando || !control || !esDestinoDeTeclas(control))
            return false;
        auto *tecla = static_cast<QKeyEvent *>(evento);
        // A drop-down list open under a box moves with the keys first.
        if (auto *combo = qobject_cast<MultiCombo *>(control->parentWidget());
            combo && combo->caja() == control && combo->teclaDeLista(tecla))
            return true;
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

    // Looking up the paste keys is dear: only V and Insert can be one.
    const bool puedePegar = evento->key() == Qt::Key_V || evento->key() == Qt::Key_Insert;
    if (auto *caja = qobject_cast<QLineEdit *>(control);
        caja && puedePegar && enlace.manejadores.KeyPress && evento->matches(QKeySequence::Paste)) {
        pegaFiltrado(caja);
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
            if (!escribe(destino, &cambiada)) {
                m_reenviando = true;
                QCoreApplication::sendEvent(destino, &cambiada);
                m_reenviando = false;
            }
            return true;
        }
        return escribe(destino, evento);
    }
    return false;
}

bool Ventana::escribe(QWidget *control, QKeyEvent *evento)
{
    // What the box itself does with such a key, after trying it against
    // every editing shortcut of the platform: insert the character in place
    // of the selection. Its cursor starts blinking again on the key's
    // release.
    QLineEdit *caja = cajaQueSoloEscribe(control, evento);
    if (!caja || !m_enlaces.contains(control))
        return false;
    caja->insert(evento->text());
    evento->accept();
    return true;
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
