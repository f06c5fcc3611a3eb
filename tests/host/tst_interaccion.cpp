// The interaction seam: the terminal of the command line and the desktop shell's dialogs.

#include "host/Interaccion.h"

#include <QtTest>
#include <QtWidgets>

#include <fcntl.h>
#include <unistd.h>

using namespace zuvi::anfitrion;

namespace {

// Runs f with standard error going to a file; gives back what was written to it.
template <typename F> QString enTerminal(F &&f)
{
    QTemporaryFile archivo;
    archivo.open();
    std::fflush(stderr);
    const int error = dup(STDERR_FILENO);
    dup2(archivo.handle(), STDERR_FILENO);
    f();
    std::fflush(stderr);
    dup2(error, STDERR_FILENO);
    ::close(error);
    archivo.seek(0);
    return QString::fromLocal8Bit(archivo.readAll());
}

// Answers the next message box with the button given; vista receives its text, title and icon.
void respondeCaja(QStringList *vista, QMessageBox::StandardButton boton)
{
    QTimer::singleShot(0, [vista, boton] {
        if (auto *caja = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
            *vista = {caja->text(), caja->windowTitle(), QString::number(caja->icon())};
            caja->button(boton)->click();
        }
    });
}

} // namespace

class TstInteraccion : public QObject
{
    Q_OBJECT

private slots:
    void terminalPreguntaMensajesYProgreso()
    {
        dup2(::open("/dev/null", O_RDONLY), STDIN_FILENO); // no terminal to answer from
        const QString salida = enTerminal([] {
            // Nobody can answer: never a yes by accident, unless yes to everything was asked.
            QVERIFY(!interaccionTerminal(false)->pregunta(QStringLiteral("¿Borrar todo?")));
            QVERIFY(interaccionTerminal(true)->pregunta(QStringLiteral("¿Seguir?")));
            ponInteraccion(nullptr); // until something is installed: the terminal
            QVERIFY(!interaccion().pregunta(QStringLiteral("¿Confirmar?")));
            interaccion().mensaje(QStringLiteral("No se encontró la orden."), 16);
            interaccion().mensaje(QStringLiteral("Listo."), 64);
            auto progreso = interaccion().progreso();
            progreso->inicia(4, QStringLiteral("Generando horarios"), QString());
            progreso->avanza(2, QStringLiteral("Turno A"), QStringLiteral("Empleado 7"));
            progreso->avanza(4, QStringLiteral("Turno B"), QString());
        });
        for (const char *texto :
             {"¿Borrar todo?", "¿Seguir?", "¿Confirmar?", "ERROR: No se encontró la orden.\n",
              "\nListo.\n", "Generando horarios\n", "2/4 Turno A Empleado 7"})
            QVERIFY2(salida.contains(QString::fromUtf8(texto)), qPrintable(salida));
        // Half way is half the bar; the end is a full one.
        QVERIFY(salida.contains('[' + QString(15, '#') + QString(15, '.') + ']'));
        QVERIFY(salida.contains(QString(30, '#') + "] 4/4 Turno B"));
    }

    void ventanas()
    {
        auto ventanas = interaccionVentanas(false);
        const std::pair<int, QMessageBox::Icon> estilos[] = {{16, QMessageBox::Critical},
                                                             {64 + 4, QMessageBox::Information}};
        QStringList vista;
        for (const auto &[estilo, icono] : estilos) {
            respondeCaja(&vista, QMessageBox::Ok);
            ventanas->mensaje(QStringLiteral("Texto"), estilo);
            QCOMPARE(vista, QStringList({"Texto", "ZuviProduccion", QString::number(icono)}));
        }
        for (bool si : {true, false}) {
            respondeCaja(&vista, si ? QMessageBox::Yes : QMessageBox::No);
            QCOMPARE(ventanas->pregunta(QStringLiteral("¿Cancelar?")), si);
            QCOMPARE(vista.value(0), QStringLiteral("¿Cancelar?"));
        }
        respondeCaja(&vista, QMessageBox::No); // would say no, had a box been shown
        QVERIFY(interaccionVentanas(true)->pregunta(QStringLiteral("¿Cancelar?")));

        auto p = ventanas->progreso();
        p->inicia(10, QStringLiteral("Entregando"), QStringLiteral("/no/hay.avi"));
        QPointer<QProgressDialog> dialogo;
        for (QWidget *w : QApplication::topLevelWidgets())
            if (auto *d = qobject_cast<QProgressDialog *>(w); d && d->isVisible())
                dialogo = d;
        QVERIFY(dialogo);
        p->avanza(4, QStringLiteral("Orden 120"), QStringLiteral("Artículo KIT-01"));
        QCOMPARE(dialogo->value(), 4);
        QStringList textos;
        for (QLabel *l : dialogo->findChildren<QLabel *>())
            textos << l->text();
        QVERIFY2(textos.contains("Orden 120") && textos.contains("Artículo KIT-01"),
                 qPrintable(textos.join('|')));
        p->cierra();
        QTRY_VERIFY(!dialogo || !dialogo->isVisible());
    }
};

QTEST_MAIN(TstInteraccion)
#include "tst_interaccion.moc"
