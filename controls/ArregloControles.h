#pragma once

// A control array: the child widgets named "<name>_<index>" of a window,
// reached by the same index numbers (txtFields_14 is txtFields(14)).

#include "runtime/Error.h"

#include <QMap>
#include <QPointer>
#include <QRegularExpression>
#include <QWidget>

namespace zuvi {

template <typename T> class ArregloControles
{
public:
    ArregloControles() = default;
    ArregloControles(const QWidget *contenedor, const QString &nombre) : m_nombre(nombre)
    {
        const QRegularExpression patron(
            QStringLiteral("^%1_(\\d+)$").arg(QRegularExpression::escape(nombre)));
        for (T *control : contenedor->findChildren<T *>()) {
            const auto m = patron.match(control->objectName());
            if (m.hasMatch())
                m_controles.insert(m.captured(1).toInt(), control);
        }
    }

    const QString &nombre() const { return m_nombre; }

    // The member with this index; a missing or released member is an error,
    // so a handler that reaches for it ends in the error report.
    T *operator()(int indice) const
    {
        const QPointer<T> control = m_controles.value(indice);
        if (!control)
            throw Error(QStringLiteral("El elemento %1 del arreglo de controles %2 no existe.")
                            .arg(indice)
                            .arg(m_nombre));
        return control.data();
    }

    bool existe(int indice) const { return !m_controles.value(indice).isNull(); }
    int Count() const { return int(m_controles.size()); }
    int LBound() const { return m_controles.isEmpty() ? 0 : m_controles.firstKey(); }
    int UBound() const { return m_controles.isEmpty() ? -1 : m_controles.lastKey(); }
    QList<int> indices() const { return m_controles.keys(); }

    // The index of a member, or -1 when the widget does not belong to the array.
    int indiceDe(const QObject *control) const
    {
        for (auto it = m_controles.cbegin(); it != m_controles.cend(); ++it)
            if (it.value() == control)
                return it.key();
        return -1;
    }

private:
    QString m_nombre;
    QMap<int, QPointer<T>> m_controles;
};

} // namespace zuvi
