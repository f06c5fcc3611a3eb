#include "app/catalogos/Listados.h"
#include "app/catalogos/VentanasInventario.h"
#include "host/datos/Inventario.h"
#include "host/datos/Reglas.h"
#include "host/sql/Sql.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QShortcut>
#include <QSqlQuery>
#include <QSqlQueryModel>
#include <QTableView>
#include <QVBoxLayout>

namespace zuvi::app {

namespace {

// Numbers to the right and in the user's format.
class ModeloExistencias : public QSqlQueryModel
{
public:
    using QSqlQueryModel::QSqlQueryModel;
    QVariant data(const QModelIndex &i, int rol) const override
    {
        const bool numero = i.column() >= 4 || i.column() == 2;
        if (rol == Qt::TextAlignmentRole)
            return QVariant::fromValue(Qt::AlignVCenter |
                                       (numero ? Qt::AlignRight : Qt::AlignLeft));
        const QVariant v = QSqlQueryModel::data(i, rol);
        if (rol == Qt::DisplayRole && i.column() >= 4)
            return QLocale().toString(v.toDouble(), 'f', 2);
        return v;
    }
};

const char *const kColumnas[] = {"Artículo",   "Descripción", "Almacén", "Nombre del almacén",
                                 "Existencia", "Costo",       "Valor"};

} // namespace

void llenaAlmacenes(QComboBox *combo, const QSqlDatabase &db)
{
    combo->addItem(QStringLiteral("Todos los almacenes"), 0);
    for (RecordsetPtr r = anfitrion::consulta(
             db, QStringLiteral("SELECT almacen, nombre FROM almacen ORDER BY almacen"));
         !r->atEnd(); r->moveNext())
        combo->addItem(QStringLiteral("%1 %2").arg(r->text(0), r->text(1)), int(r->number(0)));
}

VentanaExistencias::VentanaExistencias(const QSqlDatabase &db, QWidget *padre)
    : QWidget(padre, Qt::Window), m_db(db)
{
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(QStringLiteral("Existencias"));
    resize(950, 600);
    auto *capas = new QVBoxLayout(this);
    auto *arriba = new QHBoxLayout;
    m_almacen = new QComboBox(this);
    llenaAlmacenes(m_almacen, db);
    m_buscador = new QLineEdit(this);
    m_buscador->setPlaceholderText(QStringLiteral("Buscar (Ctrl+F): artículo o descripción"));
    m_buscador->setClearButtonEnabled(true);
    auto *vista = new QPushButton(QStringLiteral("&Vista previa"), this);
    auto *pdf = new QPushButton(QStringLiteral("&PDF..."), this);
    arriba->addWidget(m_almacen);
    arriba->addWidget(m_buscador, 1);
    arriba->addWidget(vista);
    arriba->addWidget(pdf);
    capas->addLayout(arriba);
    m_modelo = new ModeloExistencias(this);
    auto *tabla = new QTableView(this);
    tabla->setModel(m_modelo);
    tabla->setSelectionBehavior(QAbstractItemView::SelectRows);
    tabla->horizontalHeader()->setStretchLastSection(true);
    capas->addWidget(tabla, 1);
    m_totales = new QLabel(this);
    capas->addWidget(m_totales);
    connect(m_buscador, &QLineEdit::textChanged, this, &VentanaExistencias::actualiza);
    connect(m_almacen, &QComboBox::currentIndexChanged, this, &VentanaExistencias::actualiza);
    auto imprimeLista = [this](bool comoPdf) {
        const auto l = anfitrion::datos::existencias(m_db, almacen(), m_buscador->text());
        QStringList encabezado;
        for (const char *c : kColumnas)
            encabezado << QString::fromUtf8(c);
        imprime(this,
                htmlListado(QStringLiteral("Existencias: %1").arg(m_almacen->currentText()),
                            encabezado, anfitrion::datos::filasExistencias(l), {2, 4, 5, 6},
                            totales()),
                comoPdf);
    };
    connect(vista, &QPushButton::clicked, this, [imprimeLista] { imprimeLista(false); });
    connect(pdf, &QPushButton::clicked, this, [imprimeLista] { imprimeLista(true); });
    auto *buscar = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_F), this);
    connect(buscar, &QShortcut::activated, m_buscador, qOverload<>(&QWidget::setFocus));
    auto *cerrar = new QShortcut(QKeySequence(Qt::Key_Escape), this);
    connect(cerrar, &QShortcut::activated, this, &QWidget::close);
    actualiza();
}

int VentanaExistencias::almacen() const
{
    return m_almacen->currentData().toInt();
}

QString VentanaExistencias::totales() const
{
    return m_totales->text();
}

void VentanaExistencias::actualiza()
{
    QStringList condiciones;
    if (almacen() > 0)
        condiciones << QStringLiteral("e.almacen = %1").arg(almacen());
    const QString busqueda = anfitrion::datos::condicionBusquedaArticulos(
        m_db, QStringLiteral("p.rowid"),
        {QStringLiteral("e.articulo"), QStringLiteral("p.descrip")}, m_buscador->text());
    if (!busqueda.isEmpty())
        condiciones << busqueda;
    const QString donde =
        QStringLiteral(" FROM existencias e LEFT JOIN prods p ON p.articulo = "
                       "e.articulo LEFT JOIN almacen a ON a.almacen = e.almacen") +
        (condiciones.isEmpty()
             ? QString()
             : QStringLiteral(" WHERE ") + condiciones.join(QStringLiteral(" AND ")));
    // Only the rows scrolled to are fetched; the totals come from the engine.
    m_modelo->setQuery(QStringLiteral("SELECT e.articulo, p.descrip, e.almacen, a.nombre, "
                                      "e.cantidad, p.costo, e.cantidad * p.costo") +
                           donde + QStringLiteral(" ORDER BY e.articulo, e.almacen"),
                       m_db);
    for (int i = 0; i < 7; ++i)
        m_modelo->setHeaderData(i, Qt::Horizontal, QString::fromUtf8(kColumnas[i]));
    QSqlQuery suma(m_db);
    suma.exec(QStringLiteral("SELECT COUNT(*), SUM(e.cantidad), SUM(e.cantidad * p.costo)") +
              donde);
    suma.next();
    m_totales->setText(QStringLiteral("Total: %1 renglones, existencia %2, valor %3")
                           .arg(suma.value(0).toInt())
                           .arg(QLocale().toString(suma.value(1).toDouble(), 'f', 2),
                                QLocale().toString(suma.value(2).toDouble(), 'f', 2)));
}

} // namespace zuvi::app
