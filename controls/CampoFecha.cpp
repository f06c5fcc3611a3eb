#include "controls/CampoFecha.h"

#include <QCoreApplication>
#include <QDateEdit>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QStyle>
#include <QStyleOptionComboBox>

namespace zuvi {

CampoFecha::CampoFecha(QDateEdit *fecha, std::function<void(const QString &)> avisa)
    : QObject(fecha), m_fecha(fecha), m_avisa(std::move(avisa))
{
    fecha->installEventFilter(this);
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
    const QString texto = caja->text().trimmed();
    if (QDate::fromString(texto, m_fecha->displayFormat()).isValid())
        return true;
    m_avisando = true;
    const QDate anterior = m_fecha->date();
    m_fecha->setDate(anterior); // the text typed gives way to the former date
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
        return false;
    }
    if (evento->type() == QEvent::FocusOut) {
        const auto razon = static_cast<QFocusEvent *>(evento)->reason();
        if (razon != Qt::ActiveWindowFocusReason && razon != Qt::PopupFocusReason)
            aceptaTexto();
    }
    return false;
}

} // namespace zuvi
