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
    void pad_data()
    {
        QTest::addColumn<QString>("inicial"); // the box's text
        QTest::addColumn<int>("largo");       // the box's maximum length
        QTest::addColumn<QString>("teclas");
        QTest::addColumn<bool>("teclado");  // keyboard instead of buttons
        QTest::addColumn<QString>("final"); // the box's text afterwards
        struct Caso
        {
            const char *nombre, *inicial;
            int largo;
            const char *teclas, *final;
        };
        const Caso casos[] = {
            {"vacia", "", 32767, "12.5A", "12.5"},
            {"sigue al texto de la caja", "7", 32767, "5A", "75"},
            {"un cero solo se reemplaza", "0", 32767, "05A", "5"},
            {"segundo punto rechazado", "", 32767, "1.2.3A", "1.23"},
            {"punto primero", "", 32767, ".5A", "0.5"},
            {"punto al final", "", 32767, "5.A", "5"},
            {"atras", "123", 32767, "<<4A", "14"},
            {"borra", "123", 32767, "C9A", "9"},
            {"borra y acepta deja vacia", "12", 32767, "CA", ""},
            {"cancelar deja la caja", "123", 32767, "45X", "123"},
            {"quince digitos y no mas", "", 32767, "1234567890.123456A", "1234567890.12345"},
            {"texto que no es numero empieza vacio", "abc", 32767, "3A", "3"},
            {"comas de miles", "1,234.50", 32767, "A", "1234.5"},
            {"largo maximo de la caja", "", 3, "1234A", "123"},
        };
        for (const Caso &c : casos)
            for (const bool teclado : {false, true})
                QTest::addRow("%s, %s", c.nombre, teclado ? "teclado" : "botones")
                    << c.inicial << c.largo << c.teclas << teclado << c.final;
        QTest::newRow("coma como punto, teclado") << "" << 32767 << "1,5A" << true << "1.5";
    }
    void pad()
    {
        QFETCH(QString, inicial);
        QFETCH(int, largo);
        QFETCH(QString, teclas);
        QFETCH(bool, teclado);
        QFETCH(QString, final);
        QLineEdit caja(inicial);
        caja.setMaxLength(largo);
        CapturaNumericaAnfitrion captura;
        captura.PonDestino(&caja);
        const auto r = conDialogoModal<TecladoNumerico>([&] { captura.Muestra(); },
                                                        [&](TecladoNumerico *t) {
                                                            if (teclado)
                                                                pulsaConTeclado(t, teclas);
                                                            else
                                                                pulsaConBotones(t, teclas);
                                                        });
        QVERIFY(r.abrio);
        QVERIFY(!r.seguiaAbierto);
        QCOMPARE(caja.text(), final);
    }

    void sinCajaNoAbre()
    {
        CapturaNumericaAnfitrion captura;
        QVERIFY_THROWS_EXCEPTION(Error, captura.Muestra());
    }
};

QTEST_MAIN(TstCapturaNumerica)
#include "tst_capturanumerica.moc"
