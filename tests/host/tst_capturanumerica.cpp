// The host's numeric pad, shown through the service and driven by its buttons
// or by the keyboard.

#include "host/servicios/CapturaNumericaAnfitrion.h"
#include "runtime/Error.h"
#include "tests/support/DialogoModal.h"

#include <QPushButton>
#include <QtTest>

using namespace zuvi;
using namespace zuvi::anfitrion;
using zuvi::pruebas::conDialogoModal;

namespace {

// One character per key: a digit or '.', 'C' clear, '<' back, 'A' Aceptar,
// 'X' Cancelar.
void pulsaConBotones(TecladoNumerico *t, const QString &teclas)
{
    for (const QChar c : teclas) {
        QString nombre;
        if (c.isDigit())
            nombre = QStringLiteral("cmdDigito_") + c;
        else
            nombre = c == u'.'   ? QStringLiteral("cmdPunto")
                     : c == u'C' ? QStringLiteral("cmdBorra")
                     : c == u'<' ? QStringLiteral("cmdAtras")
                     : c == u'A' ? QStringLiteral("cmdAceptar")
                                 : QStringLiteral("cmdCancelar");
        QTest::mouseClick(t->findChild<QPushButton *>(nombre), Qt::LeftButton);
    }
}

void pulsaConTeclado(TecladoNumerico *t, const QString &teclas)
{
    for (const QChar c : teclas) {
        if (c.isDigit() || c == u'.' || c == u',')
            QTest::keyClick(t, c.toLatin1());
        else
            QTest::keyClick(t, c == u'C'   ? Qt::Key_Delete
                               : c == u'<' ? Qt::Key_Backspace
                               : c == u'A' ? Qt::Key_Return
                                           : Qt::Key_Escape);
    }
}

} // namespace

class TstCapturaNumerica : public QObject
{
    Q_OBJECT

private slots:
    void pad()
    {
        const struct
        {
            const char *inicial; // the box's text
            int largo;           // the box's maximum length
            const char *teclas, *final;
            bool soloTeclado = false; // otherwise typed with the buttons and with the keyboard
        } casos[] = {
            {"", 32767, "12.5A", "12.5"},
            {"7", 32767, "5A", "75"}, // goes on from the box's text
            {"0", 32767, "05A", "5"}, // a lone zero is replaced
            {"", 32767, "1.2.3A", "1.23"},
            {"", 32767, ".5A", "0.5"},
            {"", 32767, "5.A", "5"},
            {"123", 32767, "<<4A", "14"},
            {"123", 32767, "C9A", "9"},
            {"12", 32767, "CA", ""},
            {"123", 32767, "45X", "123"}, // cancel leaves the box
            {"", 32767, "1234567890.123456A", "1234567890.12345"},
            {"abc", 32767, "3A", "3"}, // a text that is not a number starts empty
            {"1,234.50", 32767, "A", "1234.5"},
            {"", 3, "1234A", "123"},
            {"", 32767, "1,5A", "1.5", true}, // a comma as the point
        };
        for (const auto &caso : casos) {
            for (const bool teclado : {false, true}) {
                if (caso.soloTeclado && !teclado)
                    continue;
                const QString teclas = QString::fromLatin1(caso.teclas);
                QLineEdit caja(QString::fromLatin1(caso.inicial));
                caja.setMaxLength(caso.largo);
                CapturaNumericaAnfitrion captura;
                captura.PonDestino(&caja);
                const auto r = conDialogoModal<TecladoNumerico>(
                    [&] { captura.Muestra(); },
                    [&](TecladoNumerico *t) {
                        teclado ? pulsaConTeclado(t, teclas) : pulsaConBotones(t, teclas);
                    });
                QVERIFY(r.abrio);
                QVERIFY(!r.seguiaAbierto);
                QVERIFY2(caja.text() == QString::fromLatin1(caso.final),
                         qPrintable(caso.teclas + QStringLiteral(" -> ") + caja.text()));
            }
        }
    }

    void sinCajaNoAbre()
    {
        CapturaNumericaAnfitrion captura;
        QVERIFY_THROWS_EXCEPTION(Error, captura.Muestra());
    }
};

QTEST_MAIN(TstCapturaNumerica)
#include "tst_capturanumerica.moc"
