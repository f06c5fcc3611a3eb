#include "host/servicios/CapturaNumericaAnfitrion.h"

#include "host/servicios/Filtros.h"
#include "runtime/Error.h"

#include <QApplication>
#include <QGridLayout>
#include <QKeyEvent>
#include <QPushButton>
#include <QRegularExpression>

namespace zuvi::anfitrion {

namespace {

constexpr int kMaximoDigitos = 15;
const QChar kBorra = u'C';
const QChar kAtras = u'<';

int digitos(const QString &texto)
{
    int n = 0;
    for (const QChar c : texto)
        n += c.isDigit() ? 1 : 0;
    return n;
}

} // namespace

QString textoInicialTeclado(const QString &texto)
{
    static const QRegularExpression numero(QStringLiteral("^-?[0-9]*\\.?[0-9]*$"));
    QString t = texto.trimmed();
    t.remove(QLatin1Char(','));
    if (!numero.match(t).hasMatch() || digitos(t) > kMaximoDigitos)
        return QString();
    return t;
}

TecladoNumerico::TecladoNumerico(const QString &inicial, int largoMaximo, QWidget *padre)
    : QDialog(padre), m_largoMaximo(largoMaximo)
{
    setWindowTitle(QStringLiteral("Captura numérica"));
    setObjectName(QStringLiteral("CapturaNumerica"));
    setFocusPolicy(Qt::StrongFocus);

    QFont grande = font();
    grande.setPointSizeF(grande.pointSizeF() * 1.8);

    m_pantalla = new QLineEdit(textoInicialTeclado(inicial), this);
    m_pantalla->setObjectName(QStringLiteral("txtValor"));
    m_pantalla->setReadOnly(true);
    m_pantalla->setFocusPolicy(Qt::NoFocus);
    m_pantalla->setAlignment(Qt::AlignRight);
    m_pantalla->setFont(grande);
    m_pantalla->setMinimumHeight(56);

    auto *rejilla = new QGridLayout(this);
    rejilla->setSpacing(6);
    rejilla->addWidget(m_pantalla, 0, 0, 1, 3);

    // Buttons take no focus: every key goes to the dialog, which reads it.
    const auto boton = [&](const QString &texto, const QString &nombre) {
        auto *b = new QPushButton(texto, this);
        b->setObjectName(nombre);
        b->setFocusPolicy(Qt::NoFocus);
        b->setAutoDefault(false);
        b->setFont(grande);
        b->setMinimumSize(72, 64);
        b->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
        return b;
    };
    const auto tecla = [&](QChar c, const QString &texto, const QString &nombre, int fila,
                           int columna) {
        QPushButton *b = boton(texto, nombre);
        connect(b, &QPushButton::clicked, this, [this, c] { pulsa(c); });
        rejilla->addWidget(b, fila, columna);
    };
    for (int d = 1; d <= 9; ++d)
        tecla(QChar(u'0' + d), QString::number(d), QStringLiteral("cmdDigito_%1").arg(d),
              1 + (9 - d) / 3, (d - 1) % 3);
    tecla(u'0', QStringLiteral("0"), QStringLiteral("cmdDigito_0"), 4, 0);
    tecla(u'.', QStringLiteral("."), QStringLiteral("cmdPunto"), 4, 1);
    tecla(kAtras, QStringLiteral("\u2190"), QStringLiteral("cmdAtras"), 4, 2);
    tecla(kBorra, QStringLiteral("C"), QStringLiteral("cmdBorra"), 5, 0);

    QPushButton *aceptar = boton(QStringLiteral("Aceptar"), QStringLiteral("cmdAceptar"));
    QPushButton *cancelar = boton(QStringLiteral("Cancelar"), QStringLiteral("cmdCancelar"));
    connect(aceptar, &QPushButton::clicked, this, &QDialog::accept);
    connect(cancelar, &QPushButton::clicked, this, &QDialog::reject);
    rejilla->addWidget(aceptar, 5, 1);
    rejilla->addWidget(cancelar, 5, 2);
    setMinimumSize(300, 420);
}

QString TecladoNumerico::texto() const
{
    return m_pantalla->text();
}

QString TecladoNumerico::numero() const
{
    return formateaTexto(QStringLiteral("N"), texto());
}

bool TecladoNumerico::pulsa(QChar tecla)
{
    QString t = texto();
    if (tecla == kBorra) {
        t.clear();
    } else if (tecla == kAtras) {
        t.chop(1);
    } else if (tecla == u'.') {
        if (t.contains(u'.'))
            return false;
        t += t.isEmpty() || t == QLatin1String("-") ? QStringLiteral("0.") : QStringLiteral(".");
    } else if (tecla.isDigit() && tecla.unicode() < 128) {
        if (digitos(t) >= kMaximoDigitos)
            return false;
        if (t == QLatin1String("0"))
            t.clear(); // a lone zero is replaced, not followed
        t += tecla;
    } else {
        return false;
    }
    if (t.size() > m_largoMaximo)
        return false;
    m_pantalla->setText(t);
    return true;
}

void TecladoNumerico::keyPressEvent(QKeyEvent *evento)
{
    switch (evento->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        accept();
        return;
    case Qt::Key_Escape:
        reject();
        return;
    case Qt::Key_Backspace:
        pulsa(kAtras);
        return;
    case Qt::Key_Delete:
        pulsa(kBorra);
        return;
    default:
        break;
    }
    const QString t = evento->text();
    if (t.size() == 1 && (t.at(0).isDigit() || t.at(0) == u'.' || t.at(0) == u',')) {
        if (!pulsa(t.at(0) == u',' ? QChar(u'.') : t.at(0)))
            QApplication::beep();
        return;
    }
    QDialog::keyPressEvent(evento);
}

void CapturaNumericaAnfitrion::Muestra()
{
    if (!m_destino)
        throw Error(QStringLiteral("La captura numérica no tiene caja destino."));
    muestraYEscribe(
        new TecladoNumerico(m_destino->text(), m_destino->maxLength(), m_destino->window()),
        [](const TecladoNumerico &t) { return t.numero(); });
}

} // namespace zuvi::anfitrion
