// The interaction seam: terminal, desktop dialogs and the scripted one.

#include "host/Interaccion.h"
#include "tests/support/InteraccionGuionada.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFile>
#include <QLabel>
#include <QMessageBox>
#include <QMovie>
#include <QProgressDialog>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

using namespace zuvi::anfitrion;
using zuvi::pruebas::InteraccionGuionada;

namespace {

// Redirects standard error (and standard input from /dev/null) for one
// scope and gives back what was written.
class Terminal
{
public:
    Terminal()
    {
        std::fflush(stderr);
        m_error = dup(STDERR_FILENO);
        m_entrada = dup(STDIN_FILENO);
        m_archivo = m_dir.filePath(QStringLiteral("stderr.txt"));
        const int fd =
            ::open(QFile::encodeName(m_archivo).constData(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        dup2(fd, STDERR_FILENO);
        ::close(fd);
        const int nulo = ::open("/dev/null", O_RDONLY);
        dup2(nulo, STDIN_FILENO);
        ::close(nulo);
    }
    ~Terminal() { restaura(); }

    QString salida()
    {
        restaura();
        QFile f(m_archivo);
        if (!f.open(QIODevice::ReadOnly))
            return QString();
        return QString::fromLocal8Bit(f.readAll());
    }

private:
    void restaura()
    {
        if (m_error < 0)
            return;
        std::fflush(stderr);
        dup2(m_error, STDERR_FILENO);
        dup2(m_entrada, STDIN_FILENO);
        ::close(m_error);
        ::close(m_entrada);
        m_error = m_entrada = -1;
    }

    QTemporaryDir m_dir;
    QString m_archivo;
    int m_error = -1, m_entrada = -1;
};

// Runs accion on the next modal box and records what it showed.
struct CajaVista
{
    bool vista = false;
    QString texto, titulo;
    QMessageBox::Icon icono = QMessageBox::NoIcon;
};

void respondeCaja(CajaVista *vista, QMessageBox::StandardButton boton)
{
    QTimer::singleShot(0, [vista, boton] {
        auto *caja = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        if (!caja)
            return;
        vista->vista = true;
        vista->texto = caja->text();
        vista->titulo = caja->windowTitle();
        vista->icono = caja->icon();
        caja->button(boton)->click();
    });
}

} // namespace

class TstInteraccion : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { ponInteraccion(nullptr); }

    void terminalSinTerminalRespondeNo();
    void terminalSiATodoRespondeSi();
    void terminalMensajesYProgresoVanAError();
    void porOmisionEsLaTerminalQueDiceNo();
    void guionadaRespondeEnOrdenYRegistra();
    void ventanasMensajeConIconoPorEstilo_data();
    void ventanasMensajeConIconoPorEstilo();
    void ventanasPregunta_data();
    void ventanasPregunta();
    void ventanasProgreso();
};

void TstInteraccion::terminalSinTerminalRespondeNo()
{
    Terminal t;
    const bool respuesta = interaccionTerminal(false)->pregunta(QStringLiteral("¿Borrar todo?"));
    const QString salida = t.salida();
    QVERIFY(!respuesta);
    QVERIFY2(salida.contains(QStringLiteral("¿Borrar todo?")), qPrintable(salida));
}

void TstInteraccion::terminalSiATodoRespondeSi()
{
    Terminal t;
    QVERIFY(interaccionTerminal(true)->pregunta(QStringLiteral("¿Seguir?")));
    QVERIFY(t.salida().contains(QStringLiteral("¿Seguir?")));
}

void TstInteraccion::terminalMensajesYProgresoVanAError()
{
    Terminal t;
    auto terminal = interaccionTerminal(false);
    terminal->mensaje(QStringLiteral("No se encontró la orden."), 16);
    terminal->mensaje(QStringLiteral("Listo."), 64);
    {
        auto progreso = terminal->progreso();
        progreso->inicia(4, QStringLiteral("Generando horarios"), QString());
        progreso->avanza(2, QStringLiteral("Turno A"), QStringLiteral("Empleado 7"));
        progreso->avanza(4, QStringLiteral("Turno B"), QString());
        progreso->cierra();
        progreso->cierra(); // a second close writes nothing more
    }
    const QString salida = t.salida();
    QVERIFY2(salida.contains(QStringLiteral("ERROR: No se encontró la orden.\n")),
             qPrintable(salida));
    QVERIFY(salida.contains(QStringLiteral("Listo.\n")));
    QVERIFY(!salida.contains(QStringLiteral("ERROR: Listo.")));
    QVERIFY(salida.contains(QStringLiteral("Generando horarios\n")));
    QVERIFY(salida.contains(QStringLiteral("2/4 Turno A Empleado 7")));
    // Half way is half the bar; the end is a full one.
    QVERIFY(salida.contains(QStringLiteral("[") + QString(15, QLatin1Char('#')) +
                            QString(15, QLatin1Char('.')) + QStringLiteral("]")));
    QVERIFY(salida.contains(QString(30, QLatin1Char('#')) + QStringLiteral("] 4/4 Turno B")));
    QVERIFY(salida.endsWith(QLatin1Char('\n')));
}

void TstInteraccion::porOmisionEsLaTerminalQueDiceNo()
{
    ponInteraccion(nullptr);
    Terminal t;
    QVERIFY(!interaccion().pregunta(QStringLiteral("¿Confirmar?")));
    QVERIFY(t.salida().contains(QStringLiteral("¿Confirmar?")));
}

void TstInteraccion::guionadaRespondeEnOrdenYRegistra()
{
    auto guion = InteraccionGuionada::instala();
    guion->respuestas({true, false, true});
    interaccion().mensaje(QStringLiteral("uno"), 16);
    QCOMPARE(interaccion().pregunta(QStringLiteral("p1")), true);
    QCOMPARE(interaccion().pregunta(QStringLiteral("p2")), false);
    QCOMPARE(interaccion().pregunta(QStringLiteral("p3")), true);
    QCOMPARE(interaccion().pregunta(QStringLiteral("p4")), false); // queue empty: no
    {
        auto p = interaccion().progreso();
        p->inicia(3, QStringLiteral("Título"), QStringLiteral("/a/Gears.Avi"));
        p->avanza(1, QStringLiteral("l1"), QStringLiteral("l2"));
        p->cierra();
    }
    QCOMPARE(guion->preguntas(), QStringList({"p1", "p2", "p3", "p4"}));
    QCOMPARE(guion->mensajes().size(), 1);
    QCOMPARE(guion->mensajes().at(0).texto, QStringLiteral("uno"));
    QCOMPARE(guion->mensajes().at(0).estilo, 16);
    const auto &llamadas = guion->llamadasProgreso();
    QCOMPARE(llamadas.size(), 3);
    QCOMPARE(llamadas.at(0).operacion, QStringLiteral("inicia"));
    QCOMPARE(llamadas.at(0).numero, 3);
    QCOMPARE(llamadas.at(0).texto2, QStringLiteral("/a/Gears.Avi"));
    QCOMPARE(llamadas.at(1).texto1, QStringLiteral("l1"));
    QCOMPARE(llamadas.at(2).operacion, QStringLiteral("cierra"));
}

void TstInteraccion::ventanasMensajeConIconoPorEstilo_data()
{
    QTest::addColumn<int>("estilo");
    QTest::addColumn<int>("icono");
    QTest::newRow("error") << 16 << int(QMessageBox::Critical);
    QTest::newRow("pregunta") << 32 << int(QMessageBox::Question);
    QTest::newRow("aviso") << 48 << int(QMessageBox::Warning);
    QTest::newRow("informacion") << 64 << int(QMessageBox::Information);
    QTest::newRow("informacion con botones") << 64 + 4 << int(QMessageBox::Information);
    QTest::newRow("sin icono") << 0 << int(QMessageBox::NoIcon);
}

void TstInteraccion::ventanasMensajeConIconoPorEstilo()
{
    QFETCH(int, estilo);
    QFETCH(int, icono);
    CajaVista vista;
    respondeCaja(&vista, QMessageBox::Ok);
    interaccionVentanas(false)->mensaje(QStringLiteral("Texto del mensaje"), estilo);
    QVERIFY(vista.vista);
    QCOMPARE(vista.texto, QStringLiteral("Texto del mensaje"));
    QCOMPARE(vista.titulo, QStringLiteral("ZuviProduccion"));
    QCOMPARE(int(vista.icono), icono);
}

void TstInteraccion::ventanasPregunta_data()
{
    QTest::addColumn<bool>("siATodo");
    QTest::addColumn<int>("boton");
    QTest::addColumn<bool>("caja");
    QTest::addColumn<bool>("esperada");
    QTest::newRow("si") << false << int(QMessageBox::Yes) << true << true;
    QTest::newRow("no") << false << int(QMessageBox::No) << true << false;
    QTest::newRow("si a todo, sin caja") << true << int(QMessageBox::No) << false << true;
}

void TstInteraccion::ventanasPregunta()
{
    QFETCH(bool, siATodo);
    QFETCH(int, boton);
    QFETCH(bool, caja);
    QFETCH(bool, esperada);
    CajaVista vista;
    respondeCaja(&vista, QMessageBox::StandardButton(boton));
    QCOMPARE(interaccionVentanas(siATodo)->pregunta(QStringLiteral("¿Cancelar la orden?")),
             esperada);
    QCoreApplication::processEvents(); // let a timer with no box run out
    QCOMPARE(vista.vista, caja);
    if (caja)
        QCOMPARE(vista.texto, QStringLiteral("¿Cancelar la orden?"));
}

void TstInteraccion::ventanasProgreso()
{
    auto ventanas = interaccionVentanas(false);
    // cierra() and avanza() before inicia() are harmless.
    {
        auto p = ventanas->progreso();
        p->avanza(1, QStringLiteral("x"), QStringLiteral("y"));
        p->cierra();
    }
    QTemporaryDir dir;
    const QString animacion = dir.filePath(QStringLiteral("Gears.Avi"));
    {
        QFile f(animacion);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("RIFF not a movie Qt plays");
    }
    auto p = ventanas->progreso();
    p->inicia(10, QStringLiteral("Entregando producto terminado"), animacion);
    QPointer<QProgressDialog> dialogo;
    for (QWidget *w : QApplication::topLevelWidgets())
        if (auto *d = qobject_cast<QProgressDialog *>(w); d && d->isVisible())
            dialogo = d;
    QVERIFY(dialogo);
    QCOMPARE(dialogo->windowTitle(), QStringLiteral("Entregando producto terminado"));
    QCOMPARE(dialogo->maximum(), 10);
    // Unplayable animation: a plain dialog, no label carries a movie.
    for (QLabel *l : dialogo->findChildren<QLabel *>())
        QVERIFY(!l->movie());

    p->avanza(4, QStringLiteral("Orden 120"), QStringLiteral("Artículo KIT-01"));
    QCOMPARE(dialogo->value(), 4);
    QStringList textos;
    for (QLabel *l : dialogo->findChildren<QLabel *>())
        textos << l->text();
    QVERIFY2(textos.contains(QStringLiteral("Orden 120")), qPrintable(textos.join('|')));
    QVERIFY(textos.contains(QStringLiteral("Artículo KIT-01")));
    p->avanza(99, QString(), QString()); // past the end: clamped, not an error
    QCOMPARE(dialogo->value(), 10);

    p->cierra();
    QTRY_VERIFY(!dialogo || !dialogo->isVisible());
    p->cierra();
}

QTEST_MAIN(TstInteraccion)
#include "tst_interaccion.moc"
