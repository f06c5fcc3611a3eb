#include "controls/CampoFecha.h"

#include <QCoreApplication>
#include <QDateEdit>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QStyle>
#include <QStyleOptionComboBox>
#include <algorithm>

namespace zuvi {

CampoFecha::CampoFecha(QDateEdit *fecha, std::function<void(const QString &)> avisa)
    : QObject(fecha), m_fecha(fecha), m_avisa(std::move(avisa))
{
    fecha->installEventFilter(this);
    m_fechaPrevia = fecha->date();
    connect(fecha, &QDateEdit::dateChanged, this, &CampoFecha::anotaCambio);
}

// The spin box keeps a date valid as it is typed: a month or year typed after
// day 31 lowers the day to the month's last. The clerk asked for that day all
// the same, and the date is refused when it is accepted.
void CampoFecha::anotaCambio(QDate nueva)
{
    if (!m_tecleando) {
        m_fechaPrevia = nueva;
        m_diaPedido = 0;
        return;
    }
    if (m_enElDia)
        m_diaPedido = 0;
    else if (nueva.day() < m_diaAntes && m_diaAntes > nueva.daysInMonth())
        m_diaPedido = std::max(m_diaPedido, m_diaAntes);
    else if (m_diaPedido > 0 && m_diaPedido <= nueva.daysInMonth())
        m_diaPedido = 0; // a later month has room for it
}

QString CampoFecha::textoTecleado() const
{
    const QLineEdit *caja = m_fecha->findChild<QLineEdit *>();
    const QString texto = caja ? caja->text().trimmed() : QString();
    if (m_diaPedido == 0)
        return texto;
    QString formato = m_fecha->displayFormat();
    const QString dia = m_fecha->sectionText(QDateTimeEdit::DaySection);
    const qsizetype donde = formato.indexOf(QStringLiteral("dd"));
    if (donde < 0 || dia.isEmpty())
        return texto;
    QString pedido = texto;
    return pedido.replace(donde, dia.size(), QString::number(m_diaPedido).rightJustified(2, u'0'));
}

void CampoFecha::abreCalendario(QDateEdit *fecha)
{
    if (!fecha->calendarPopup() || !fecha->isEnabled())
        return;
    QStyleOptionComboBox opcion;
    opcion.initFrom(fecha);
    opcion.editable = true;
    opcion.subControls = QStyle::SC_All;
    const QPoint flecha =
        fecha->style()
            ->subControlRect(QStyle::CC_ComboBox, &opcion, QStyle::SC_ComboBoxArrow, fecha)
            .center();
    QMouseEvent clic(QEvent::MouseButtonPress, flecha, fecha->mapToGlobal(flecha), Qt::LeftButton,
                     Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(fecha, &clic);
    QMouseEvent suelta(QEvent::MouseButtonRelease, flecha, fecha->mapToGlobal(flecha),
                       Qt::LeftButton, Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(fecha, &suelta);
}

bool CampoFecha::aceptaTexto()
{
    const QLineEdit *caja = m_fecha->findChild<QLineEdit *>();
    if (!caja || m_avisando)
        return true;
    const QString texto = textoTecleado();
    if (QDate::fromString(texto, m_fecha->displayFormat()).isValid()) {
        m_fechaPrevia = m_fecha->date();
        return true;
    }
    m_avisando = true;
    m_diaPedido = 0;
    // The text typed gives way to the date held before the typing began.
    m_fecha->setDate(m_fechaPrevia.isValid() ? m_fechaPrevia : m_fecha->date());
    m_fecha->setFocus(Qt::OtherFocusReason);
    m_avisa(QStringLiteral("La fecha \"%1\" no existe. Escriba el día, el mes y el año de una "
                           "fecha del calendario.")
                .arg(texto));
    m_fecha->setFocus(Qt::OtherFocusReason);
    m_avisando = false;
    return false;
}

bool CampoFecha::eventFilter(QObject *objeto, QEvent *evento)
{
    if (objeto != m_fecha)
        return false;
    if (evento->type() == QEvent::KeyPress) {
        const auto *tecla = static_cast<QKeyEvent *>(evento);
        const bool abre = tecla->key() == Qt::Key_F4 ||
                          (tecla->key() == Qt::Key_Down && tecla->modifiers() & Qt::AltModifier);
        if (abre) {
            abreCalendario(m_fecha);
            return true;
        }
        if (tecla->key() == Qt::Key_Return || tecla->key() == Qt::Key_Enter ||
            tecla->key() == Qt::Key_Tab || tecla->key() == Qt::Key_Backtab)
            return !aceptaTexto();
        m_tecleando = !tecla->text().isEmpty() && tecla->text().front().isDigit();
        // A digit typed where a click left the caret writes over that part of the
        // date, as in a masked field; the spin box alone would refuse it.
        if (const QLineEdit *caja = m_fecha->findChild<QLineEdit *>();
            m_tecleando && !m_enSeccion && caja && !caja->hasSelectedText())
            m_fecha->setSelectedSection(m_fecha->currentSection());
        m_enSeccion = m_tecleando;
        m_enElDia = m_fecha->currentSection() == QDateTimeEdit::DaySection;
        m_diaAntes = m_fecha->sectionText(QDateTimeEdit::DaySection).toInt();
        return false;
    }
    if (evento->type() == QEvent::KeyRelease)
        m_tecleando = false;
    if (evento->type() == QEvent::MouseButtonPress || evento->type() == QEvent::FocusIn)
        m_enSeccion = false;
    if (evento->type() == QEvent::FocusOut) {
        const auto razon = static_cast<QFocusEvent *>(evento)->reason();
        if (razon != Qt::ActiveWindowFocusReason && razon != Qt::PopupFocusReason)
            aceptaTexto();
    }
    return false;
}

} // namespace zuvi
