#include "host/interaccion/Interaccion.h"

#include "host/interaccion/TeclasRetenidas.h"

#include "runtime/Error.h"

#include <QApplication>
#include <QFileInfo>
#include <QLabel>
#include <QLayout>
#include <QMessageBox>
#include <QMovie>
#include <QPointer>
#include <QProgressDialog>
#include <QPushButton>
#include <QRegularExpression>
#include <QStringList>
#include <QVBoxLayout>

#include <cstdio>
#include <iostream>
#include <mutex>
#include <string>
#include <unistd.h>

namespace zuvi::anfitrion {

namespace {

std::mutex &cerrojo()
{
    static std::mutex m;
    return m;
}

std::shared_ptr<Interaccion> &actual()
{
    static std::shared_ptr<Interaccion> i;
    return i;
}

QString prefijoEstilo(int estilo)
{
    switch (estilo & 0x70) {
    case 16:
        return QStringLiteral("ERROR: ");
    case 48:
        return QStringLiteral("AVISO: ");
    default:
        return QString();
    }
}

void escribeError(const QString &texto)
{
    const QByteArray bytes = texto.toLocal8Bit();
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stderr);
    std::fflush(stderr);
}

// ---- terminal ----

class ProgresoTerminal : public IndicadorProgreso
{
public:
    ~ProgresoTerminal() override { cierra(); }

    void inicia(int total, const QString &titulo, const QString &) override
    {
        m_total = total > 0 ? total : 0;
        m_abierto = true;
        escribeError(titulo + QLatin1Char('\n'));
        dibuja(0, QString());
    }

    void avanza(int paso, const QString &linea1, const QString &linea2) override
    {
        if (!m_abierto)
            return;
        QString texto = linea1;
        if (!linea2.isEmpty())
            texto += (texto.isEmpty() ? QString() : QStringLiteral(" ")) + linea2;
        dibuja(paso, texto);
    }

    void cierra() override
    {
        if (!m_abierto)
            return;
        m_abierto = false;
        escribeError(QStringLiteral("\n"));
    }

private:
    void dibuja(int paso, const QString &texto)
    {
        constexpr int ancho = 30;
        const int llenos =
            m_total > 0 ? int(qBound(0LL, qint64(paso) * ancho / m_total, qint64(ancho))) : 0;
        QString barra = QStringLiteral("\r[") + QString(llenos, QLatin1Char('#')) +
                        QString(ancho - llenos, QLatin1Char('.')) + QStringLiteral("] ") +
                        QStringLiteral("%1/%2 ").arg(paso).arg(m_total) + texto.left(40);
        escribeError(barra.leftJustified(int(m_ultimoLargo), QLatin1Char(' ')));
        m_ultimoLargo = barra.size();
    }

    int m_total = 0;
    bool m_abierto = false;
    qsizetype m_ultimoLargo = 0;
};

class InteraccionTerminal : public Interaccion
{
public:
    explicit InteraccionTerminal(bool siATodo) : m_siATodo(siATodo) {}

    void mensaje(const QString &texto, int estilo) override
    {
        escribeError(prefijoEstilo(estilo) + texto + QLatin1Char('\n'));
    }

    void reporte(const QString &, const QString &texto) override
    {
        QString plano = texto;
        plano.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
        escribeError(plano + QLatin1Char('\n'));
    }

    bool pregunta(const QString &texto) override
    {
        if (m_siATodo) {
            escribeError(texto + QStringLiteral(" [s/n] s\n"));
            return true;
        }
        if (!isatty(STDIN_FILENO)) {
            // Nobody can answer: a script never says yes by accident.
            escribeError(texto + QStringLiteral(" [s/n] n (sin terminal)\n"));
            return false;
        }
        escribeError(texto + QStringLiteral(" [s/n] "));
        std::string linea;
        if (!std::getline(std::cin, linea))
            return false;
        const QString r = QString::fromLocal8Bit(linea.c_str()).trimmed().toLower();
        return r == QLatin1String("s") || r == QLatin1String("si") || r == QStringLiteral("sí") ||
               r == QLatin1String("y") || r == QLatin1String("yes");
    }

    std::unique_ptr<IndicadorProgreso> progreso() override
    {
        return std::make_unique<ProgresoTerminal>();
    }

private:
    bool m_siATodo;
};

// ---- desktop ----

bool hayVentanas()
{
    return qobject_cast<QApplication *>(QCoreApplication::instance()) != nullptr;
}

const QString &tituloAplicacion()
{
    static const QString t = QStringLiteral("ZuviProduccion");
    return t;
}

// QProgressDialog lays out a single QLabel; this one carries a layout with
// the animation and the two text lines, and reports that layout's size.
class EtiquetaCompuesta : public QLabel
{
public:
    using QLabel::QLabel;
    QSize sizeHint() const override { return layout() ? layout()->sizeHint() : QLabel::sizeHint(); }
    QSize minimumSizeHint() const override
    {
        return layout() ? layout()->minimumSize() : QLabel::minimumSizeHint();
    }
};

class ProgresoVentana : public IndicadorProgreso
{
public:
    ~ProgresoVentana() override { cierra(); }

    void inicia(int total, const QString &titulo, const QString &animacion) override
    {
        cierra();
        auto *dialogo = new QProgressDialog;
        dialogo->setAttribute(Qt::WA_DeleteOnClose);
        dialogo->setWindowTitle(titulo);
        dialogo->setCancelButton(nullptr);
        dialogo->setMinimumDuration(0);
        dialogo->setAutoClose(false);
        dialogo->setAutoReset(false);
        dialogo->setRange(0, total > 0 ? total : 0);

        auto *etiqueta = new EtiquetaCompuesta;
        auto *capas = new QVBoxLayout(etiqueta);
        capas->setContentsMargins(0, 0, 0, 0);
        if (!animacion.isEmpty() && QFileInfo::exists(animacion)) {
            auto *pelicula = new QMovie(animacion, QByteArray(), etiqueta);
            if (pelicula->isValid()) {
                auto *cuadro = new QLabel;
                cuadro->setAlignment(Qt::AlignCenter);
                cuadro->setMovie(pelicula);
                capas->addWidget(cuadro);
                pelicula->start();
            } else {
                delete pelicula; // a format Qt cannot play: a plain dialog
            }
        }
        m_linea1 = new QLabel(titulo);
        m_linea2 = new QLabel;
        capas->addWidget(m_linea1);
        capas->addWidget(m_linea2);
        dialogo->setLabel(etiqueta);
        dialogo->setValue(0);
        dialogo->show();
        m_dialogo = dialogo;
        QCoreApplication::processEvents();
    }

    void avanza(int paso, const QString &linea1, const QString &linea2) override
    {
        if (!m_dialogo)
            return;
        if (m_linea1)
            m_linea1->setText(linea1);
        if (m_linea2)
            m_linea2->setText(linea2);
        const QSize deseado = m_dialogo->sizeHint();
        if (deseado.width() > m_dialogo->width() || deseado.height() > m_dialogo->height())
            m_dialogo->resize(m_dialogo->size().expandedTo(deseado));
        if (m_dialogo->maximum() > 0)
            m_dialogo->setValue(qBound(0, paso, m_dialogo->maximum()));
        QCoreApplication::processEvents();
    }

    void cierra() override
    {
        if (m_dialogo)
            m_dialogo->close();
        m_dialogo = nullptr;
    }

private:
    QPointer<QProgressDialog> m_dialogo;
    QPointer<QLabel> m_linea1;
    QPointer<QLabel> m_linea2;
};

class InteraccionVentanas : public Interaccion
{
public:
    explicit InteraccionVentanas(bool siATodo) : m_siATodo(siATodo), m_terminal(siATodo) {}

    void mensaje(const QString &texto, int estilo) override
    {
        if (!hayVentanas()) {
            m_terminal.mensaje(texto, estilo);
            return;
        }
        QMessageBox caja;
        caja.setWindowTitle(tituloAplicacion());
        caja.setText(texto);
        caja.setIcon(icono(estilo));
        caja.setStandardButtons(QMessageBox::Ok);
        TeclasRetenidas(&caja).espera();
    }

    // The module's error report: a plain box, OK only, no icon.
    void reporte(const QString &titulo, const QString &texto) override
    {
        if (!hayVentanas()) {
            m_terminal.reporte(titulo, texto);
            return;
        }
        QMessageBox caja(QMessageBox::NoIcon, titulo, texto, QMessageBox::Ok);
        caja.exec();
    }

    bool pregunta(const QString &texto) override
    {
        if (m_siATodo)
            return true;
        if (!hayVentanas())
            return m_terminal.pregunta(texto);
        QMessageBox caja;
        caja.setWindowTitle(tituloAplicacion());
        caja.setText(texto);
        caja.setIcon(QMessageBox::Question);
        caja.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
        caja.button(QMessageBox::Yes)->setText(QStringLiteral("&Sí"));
        caja.button(QMessageBox::No)->setText(QStringLiteral("&No"));
        caja.setDefaultButton(QMessageBox::No);
        return caja.exec() == QMessageBox::Yes;
    }

    std::unique_ptr<IndicadorProgreso> progreso() override
    {
        if (!hayVentanas())
            return m_terminal.progreso();
        return std::make_unique<ProgresoVentana>();
    }

private:
    static QMessageBox::Icon icono(int estilo)
    {
        switch (estilo & 0x70) {
        case 16:
            return QMessageBox::Critical;
        case 32:
            return QMessageBox::Question;
        case 48:
            return QMessageBox::Warning;
        case 64:
            return QMessageBox::Information;
        default:
            return QMessageBox::NoIcon;
        }
    }

    bool m_siATodo;
    InteraccionTerminal m_terminal;
};

} // namespace

Interaccion &interaccion()
{
    std::lock_guard<std::mutex> g(cerrojo());
    std::shared_ptr<Interaccion> &i = actual();
    if (!i)
        i = interaccionTerminal(false);
    return *i;
}

void ponInteraccion(std::shared_ptr<Interaccion> nueva)
{
    {
        std::lock_guard<std::mutex> g(cerrojo());
        actual() = std::move(nueva);
    }
    // The component's error reports take the same way out as every message,
    // without the statement a database error carries for the trace: the person
    // reads the cause.
    setReportSink([](const QString &titulo, const QString &texto) {
        static const QRegularExpression sentencia(
            QStringLiteral("(Description: Error de base de datos: .*?) \\[.*\\]$"),
            QRegularExpression::DotMatchesEverythingOption);
        interaccion().reporte(titulo, QString(texto).replace(sentencia, QStringLiteral("\\1")));
    });
}

LoteDeReportes::LoteDeReportes() : m_anterior(reportSink())
{
    setReportSink([this](const QString &titulo, const QString &texto) {
        if (m_mostrados > 0 && texto == m_ultimo) {
            ++m_repetidos;
            return;
        }
        if (m_primero.isEmpty()) {
            // "Error occured:", "Module: ", "Function: ", "Description: ".
            const QStringList lineas = texto.split(QStringLiteral("\r\n"));
            m_primero = lineas.size() >= 4
                            ? lineas[2].section(QStringLiteral(": "), 1, -1) +
                                  QStringLiteral(": ") +
                                  lineas.mid(3).join(u' ').section(QStringLiteral(": "), 1, -1)
                            : texto;
        }
        m_ultimo = texto;
        ++m_mostrados;
        m_anterior(titulo, texto);
    });
}

LoteDeReportes::~LoteDeReportes()
{
    setReportSink(m_anterior);
}

QString LoteDeReportes::avisoRepetidos() const
{
    if (m_repetidos == 0)
        return QString();
    return m_repetidos == 1 ? QStringLiteral("Un informe de error igual al anterior no se volvió "
                                             "a mostrar.")
                            : QStringLiteral("%1 informes de error iguales al anterior no se "
                                             "volvieron a mostrar.")
                                  .arg(m_repetidos);
}

std::shared_ptr<Interaccion> interaccionTerminal(bool siATodo)
{
    return std::make_shared<InteraccionTerminal>(siATodo);
}

std::shared_ptr<Interaccion> interaccionVentanas(bool siATodo)
{
    return std::make_shared<InteraccionVentanas>(siATodo);
}

} // namespace zuvi::anfitrion
