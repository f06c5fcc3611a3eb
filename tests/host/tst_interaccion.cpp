// The interaction seam: the terminal of the command line and the desktop shell's dialogs.

#include "host/interaccion/Interaccion.h"
#include "tests/support/InteraccionGuionada.h"
#include "tests/support/Ventanas.h"

#include <QLineEdit>
#include <QtTest>
#include <QtWidgets>

#include <fcntl.h>
#include <unistd.h>

using namespace zuvi::anfitrion;

using zuvi::pruebas::visibles;

class TstInteraccion : public QObject
{
    Q_OBJECT

private slots:
    void terminalPreguntaMensajesYProgreso()
    {
        dup2(::open("/dev/null", O_RDONLY), STDIN_FILENO); // no terminal to answer from
        QTemporaryFile salida; // standard error, while the terminal writes
        QVERIFY(salida.open());
        const int error = dup(STDERR_FILENO);
        dup2(salida.handle(), STDERR_FILENO);
        auto repon = qScopeGuard([error] {
            dup2(error, STDERR_FILENO);
            ::close(error);
        });
        ponInteraccion(nullptr); // the terminal, until something is installed
        // Nobody can answer: never a yes by accident, unless yes to everything was asked.
        QVERIFY(!interaccion().pregunta(QStringLiteral("¿Borrar todo?")));
        QVERIFY(interaccionTerminal(true)->pregunta(QStringLiteral("¿Seguir?")));
        interaccion().mensaje(QStringLiteral("No se encontró la orden."), 16);
        interaccion().mensaje(QStringLiteral("Listo."), 64);
        auto progreso = interaccion().progreso();
        progreso->inicia(4, QStringLiteral("Generando horarios"), QString());
        progreso->avanza(2, QStringLiteral("Turno A"), QStringLiteral("Empleado 7"));
        progreso->avanza(4, QStringLiteral("Turno B"), QString());
        salida.seek(0);
        const QString texto = QString::fromLocal8Bit(salida.readAll());
        for (const char *parte :
             {"¿Borrar todo?", "¿Seguir?", "\nListo.\n", "ERROR: No se encontró la orden.\n",
              "Generando horarios\n", "[###############...............] 2/4 Turno A Empleado 7",
              "[##############################] 4/4 Turno B"})
            QVERIFY2(texto.contains(QString::fromUtf8(parte)), qPrintable(texto));
    }

    void ventanas()
    {
        QStringList vista; // text, title and icon of the last box answered
        const auto responde = [&vista](QMessageBox::StandardButton boton) {
            QTimer::singleShot(0, [&vista, boton] {
                // A question is modal; a message is modal in effect only.
                if (auto *caja = visibles<QMessageBox>().value(0)) {
                    vista = {caja->text(), caja->windowTitle(), QString::number(caja->icon())};
                    caja->button(boton)->click();
                }
            });
        };
        auto ventanas = interaccionVentanas(false);
        const std::pair<int, QMessageBox::Icon> estilos[] = {{16, QMessageBox::Critical},
                                                             {64 + 4, QMessageBox::Information}};
        for (const auto &[estilo, icono] : estilos) {
            responde(QMessageBox::Ok);
            ventanas->mensaje(QStringLiteral("Texto"), estilo);
            QCOMPARE(vista, QStringList({"Texto", "ZuviProduccion", QString::number(icono)}));
        }
        for (bool si : {true, false}) {
            responde(si ? QMessageBox::Yes : QMessageBox::No);
            QCOMPARE(ventanas->pregunta(QStringLiteral("¿Cancelar?")), si);
            QCOMPARE(vista.value(0), QStringLiteral("¿Cancelar?"));
        }
        responde(QMessageBox::No); // would say no, had a box been shown
        QVERIFY(interaccionVentanas(true)->pregunta(QStringLiteral("¿Cancelar?")));

        auto p = ventanas->progreso();
        p->inicia(10, QStringLiteral("Entregando"), QStringLiteral("/no/hay.avi"));
        QPointer<QProgressDialog> dialogo = visibles<QProgressDialog>().value(0);
        QVERIFY(dialogo);
        p->avanza(4, QStringLiteral("Orden 120"), QStringLiteral("Artículo KIT-01"));
        QCOMPARE(dialogo->value(), 4);
        QStringList textos;
        for (QLabel *l : dialogo->findChildren<QLabel *>())
            textos << l->text();
        QVERIFY(textos.contains("Orden 120") && textos.contains("Artículo KIT-01"));
        p->cierra();
        QTRY_VERIFY(!dialogo || !dialogo->isVisible());
    }

    // A report shows a database error's cause, not the statement it carries for the trace.
    void reporteSinSentencia()
    {
        auto guion = zuvi::pruebas::InteraccionGuionada::instala();
        const QString inicio = QStringLiteral("Error occured:\r\nModule: frmOp\r\nFunction: "
                                              "Guarda\r\nDescription: Error de base de datos: ");
        zuvi::reportSink()(QStringLiteral("ZuviProduccion"),
                           inicio + "ya existe [INSERT INTO op (op) VALUES (1)]");
        QCOMPARE(guion->reportes(), QStringList{inicio + "ya existe"});
    }

    // What a scanner types while a message is shown, before and after the box has the focus,
    // is typed again with its Enter where the focus returns; a plain Enter only closes the box.
    void escanerSobreUnMensaje()
    {
        QLineEdit campo;
        int enters = 0;
        QObject::connect(&campo, &QLineEdit::returnPressed, [&enters] { ++enters; });
        campo.show();
        QApplication::setActiveWindow(&campo);
        campo.setFocus();
        auto ventanas = interaccionVentanas(false);
        for (const char *tecleado : {"AB-1", ""}) {
            campo.clear();
            enters = 0;
            QTimer::singleShot(0, [&campo, tecleado] {
                QWidget *caja = visibles<QMessageBox>().value(0);
                if (!caja)
                    return; // no box: the counts below fail
                const QString todo = QString::fromLatin1(tecleado);
                QTest::keyClicks(&campo, todo.left(2)); // before the box had the focus
                QTest::keyClicks(caja, todo.mid(2));
                QTest::keyClick(caja, Qt::Key_Return);
            });
            ventanas->mensaje(QStringLiteral("El artículo no existe."), 64);
            QTRY_COMPARE(enters, *tecleado ? 1 : 0);
            QCoreApplication::processEvents();
            QCOMPARE(campo.text(), QString::fromLatin1(tecleado));
            QCOMPARE(enters, *tecleado ? 1 : 0);
        }
    }
};

QTEST_MAIN(TstInteraccion)
#include "tst_interaccion.moc"
