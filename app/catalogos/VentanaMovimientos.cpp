#include "app/catalogos/Listados.h"
#include "app/catalogos/VentanasInventario.h"
#include "host/datos/Inventario.h"
#include "host/datos/Tablas.h"
#include "host/servicios/BuscaCatalogoAnfitrion.h"
#include "runtime/Error.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>
#include <QTableView>
#include <QVBoxLayout>

namespace zuvi::app {

namespace {

const QList<int> kNumericas = {3, 7, 8, 9, 10, 11};

QStringList encabezado()
{
    return {QStringLiteral("Fecha"),    QStringLiteral("Tipo"),    QStringLiteral("Concepto"),
            QStringLiteral("Orden"),    QStringLiteral("Folio"),   QStringLiteral("Usuario"),
            QStringLiteral("Almacén"),  QStringLiteral("Entrada"), QStringLiteral("Salida"),
            QStringLiteral("Costo u."), QStringLiteral("Valor"),   QStringLiteral("Saldo")};
}

QDateEdit *fecha(QWidget *padre, const QDate &d)
{
    auto *e = new QDateEdit(d, padre);
    e->setCalendarPopup(true);
    e->setDisplayFormat(QStringLiteral("dd/MM/yyyy"));
    return e;
}

} // namespace

VentanaMovimientos::VentanaMovimientos(const QSqlDatabase &db, QWidget *padre)
    : QWidget(padre, Qt::Window), m_db(db)
{
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(QStringLiteral("Movimientos (tarjeta de almacén)"));
    resize(1100, 600);
    auto *capas = new QVBoxLayout(this);
    auto *arriba = new QHBoxLayout;
    m_articulo = new QLineEdit(this);
    m_articulo->setPlaceholderText(QStringLiteral("Artículo (F2 busca)"));
    m_articulo->installEventFilter(this);
    m_almacen = new QComboBox(this);
    llenaAlmacenes(m_almacen, db);
    const QDate hoy = QDate::currentDate();
    m_conDesde = new QCheckBox(QStringLiteral("&Desde"), this);
    m_desde = fecha(this, QDate(hoy.year(), 1, 1));
    m_conHasta = new QCheckBox(QStringLiteral("&Hasta"), this);
    m_hasta = fecha(this, hoy);
    auto *ver = new QPushButton(QStringLiteral("&Mostrar"), this);
    auto *vista = new QPushButton(QStringLiteral("&Vista previa"), this);
    auto *pdf = new QPushButton(QStringLiteral("&PDF..."), this);
    for (QWidget *w : std::initializer_list<QWidget *>{m_articulo, m_almacen, m_conDesde, m_desde,
                                                       m_conHasta, m_hasta, ver, vista, pdf})
        arriba->addWidget(w);
    capas->addLayout(arriba);
    m_modelo = new ModeloFilas(encabezado(), kNumericas, this);
    auto *tabla = new QTableView(this);
    tabla->setModel(m_modelo);
    tabla->horizontalHeader()->setStretchLastSection(true);
    capas->addWidget(tabla, 1);
    m_estado = new QLabel(this);
    capas->addWidget(m_estado);
    connect(ver, &QPushButton::clicked, this, &VentanaMovimientos::actualiza);
    connect(m_articulo, &QLineEdit::returnPressed, this, &VentanaMovimientos::actualiza);
    auto imprimeTarjeta = [this](bool comoPdf) {
        imprime(this,
                htmlListado(QStringLiteral("Tarjeta de almacén de %1").arg(m_articulo->text()),
                            encabezado(), m_modelo->filas(), kNumericas, m_estado->text()),
                comoPdf);
    };
    connect(vista, &QPushButton::clicked, this, [imprimeTarjeta] { imprimeTarjeta(false); });
    connect(pdf, &QPushButton::clicked, this, [imprimeTarjeta] { imprimeTarjeta(true); });
    auto *cerrar = new QShortcut(QKeySequence(Qt::Key_Escape), this);
    connect(cerrar, &QShortcut::activated, this, &QWidget::close);
}

void VentanaMovimientos::actualiza()
{
    const QString articulo = m_articulo->text().trimmed();
    if (articulo.isEmpty())
        return;
    if (!anfitrion::datos::existe(m_db, QStringLiteral("articulos"), articulo)) {
        m_modelo->pon({});
        m_estado->setText(QStringLiteral("No existe el artículo \"%1\".").arg(articulo));
        return;
    }
    const auto l =
        anfitrion::datos::movimientos(m_db, articulo, m_almacen->currentData().toInt(),
                                      m_conDesde->isChecked() ? m_desde->date() : QDate(),
                                      m_conHasta->isChecked() ? m_hasta->date() : QDate());
    m_modelo->pon(anfitrion::datos::filasMovimientos(l));
    m_estado->setText(QStringLiteral("%1 movimientos; saldo anterior %2, saldo final %3")
                          .arg(l.size() - 1)
                          .arg(QLocale().toString(l.first().saldo, 'f', 2),
                               QLocale().toString(l.last().saldo, 'f', 2)));
}

bool VentanaMovimientos::eventFilter(QObject *objeto, QEvent *evento)
{
    if (objeto != m_articulo || evento->type() != QEvent::KeyPress ||
        static_cast<QKeyEvent *>(evento)->key() != Qt::Key_F2)
        return QWidget::eventFilter(objeto, evento);
    const anfitrion::DefinicionCatalogo *def =
        anfitrion::definicionCatalogo(QStringLiteral("Articulos"));
    try {
        anfitrion::DialogoCatalogo d(*def, anfitrion::FilasCatalogo::lee(*def, {}, m_db), {}, this);
        d.exec();
        if (!d.claveElegida().isEmpty()) {
            m_articulo->setText(d.claveElegida());
            actualiza();
        }
    } catch (const Error &e) {
        m_estado->setText(e.description());
    }
    return true;
}

} // namespace zuvi::app
