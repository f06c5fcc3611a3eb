#pragma once

// A date picker as the clerk uses it: Alt+Down or F4 drops its calendar down
// (the spin box alone would step the year), and a date typed that does not
// exist (31/02/2024) is refused with a message instead of being moved to a
// nearby day; the picker keeps its former date and the focus.

#include <QDate>
#include <QObject>
#include <QString>

#include <functional>

class QDateEdit;

namespace zuvi {

class CampoFecha : public QObject
{
    Q_OBJECT
public:
    // avisa shows the refusal; the helper lives as long as the picker.
    CampoFecha(QDateEdit *fecha, std::function<void(const QString &)> avisa);

    // Drops the picker's calendar down, as a click on its arrow does.
    static void abreCalendario(QDateEdit *fecha);

protected:
    bool eventFilter(QObject *objeto, QEvent *evento) override;

private:
    // False, after the message, when the text typed is not a date.
    bool aceptaTexto();
    // The text the clerk typed, with the day asked for where the spin box
    // lowered it to fit a shorter month.
    QString textoTecleado() const;
    void anotaCambio(QDate nueva);

    QDateEdit *m_fecha;
    std::function<void(const QString &)> m_avisa;
    bool m_avisando = false;
    // While a typed key is being handled: the day shown before it and whether it
    // went into the day itself.
    bool m_tecleando = false, m_enElDia = false;
    bool m_enSeccion = false; // the last key typed a digit into the part shown
    int m_diaAntes = 0;
    int m_diaPedido = 0; // a day the month or year typed has no room for
    QDate m_fechaPrevia; // the date before the clerk started typing
};

} // namespace zuvi
