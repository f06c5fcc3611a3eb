#include "app/DialogoKit.h"

#include "host/interaccion/Interaccion.h"
#include "host/servicios/Comprobaciones.h"
#include "host/sql/Sql.h"
#include "runtime/Error.h"

#include <QButtonGroup>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QSqlQuery>
#include <QVBoxLayout>

#include <limits>

namespace zuvi::app {

DialogoKit::DialogoKit(const QSqlDatabase &db, Operacion operacion, QWidget *padre)
    : QDialog(padre), m_db(db)
{
    setObjectName(QStringLiteral("dlgKit"));
    setWindowTitle(QStringLiteral("Kits"));

    m_ensamble = new QRadioButton(QStringLiteral("&Ensamblar"), this);
    m_desensamble = new QRadioButton(QStringLiteral("&Desensamblar"), this);
    auto *grupo = new QButtonGroup(this);
    grupo->addButton(m_ensamble);
    grupo->addButton(m_desensamble);
    auto *fila = new QHBoxLayout;
    fila->addWidget(m_ensamble);
    fila->addWidget(m_desensamble);
    fila->addStretch();

    m_articulo = new QComboBox(this);
    m_articulo->setObjectName(QStringLiteral("cmbArticulo"));
    m_articulo->setEditable(true);
    m_articulo->setInsertPolicy(QComboBox::NoInsert);
    m_almacen = new QComboBox(this);
    m_almacen->setObjectName(QStringLiteral("cmbAlmacen"));
    m_almacen->setEditable(true);
    m_almacen->setInsertPolicy(QComboBox::NoInsert);
    m_cantidad = new QDoubleSpinBox(this);
    m_cantidad->setObjectName(QStringLiteral("spnCantidad"));
    m_cantidad->setRange(0, 1e9);
    m_cantidad->setValue(1);
    m_orden = new QSpinBox(this);
    m_orden->setObjectName(QStringLiteral("spnOrden"));
    m_orden->setRange(0, std::numeric_limits<qint32>::max());
    m_orden->setSpecialValueText(QStringLiteral("(ninguna)"));

    auto *forma = new QFormLayout;
    forma->addRow(QStringLiteral("&Artículo (kit):"), m_articulo);
    forma->addRow(QStringLiteral("A&lmacén:"), m_almacen);
    forma->addRow(QStringLiteral("&Cantidad:"), m_cantidad);
    forma->addRow(QStringLiteral("&Orden de producción:"), m_orden);

    auto *botones = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    botones->button(QDialogButtonBox::Ok)->setText(QStringLiteral("Aceptar"));
    botones->button(QDialogButtonBox::Cancel)->setText(QStringLiteral("Cancelar"));
    connect(botones, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(botones, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto *capa = new QVBoxLayout(this);
    capa->addLayout(fila);
    capa->addLayout(forma);
    capa->addWidget(botones);

    (operacion == Operacion::Ensamble ? m_ensamble : m_desensamble)->setChecked(true);
    connect(m_ensamble, &QRadioButton::toggled, this, [this] { cambiaOperacion(); });
    cambiaOperacion();
    llenaListas(db);
}

void DialogoKit::llenaListas(const QSqlDatabase &db)
{
    // The lists only help to choose; a failing read leaves them empty and the
    // user can still type the keys.
    swallowErrors([&] {
        QSqlQuery q = anfitrion::ejecuta(
            db, QStringLiteral("SELECT articulo, descrip FROM prods WHERE kit <> 0 "
                               "ORDER BY articulo"));
        while (q.next()) {
            const QString clave = q.value(0).toString().trimmed();
            m_articulo->addItem(clave + QStringLiteral(" - ") + q.value(1).toString().trimmed(),
                                clave);
        }
    });
    swallowErrors([&] {
        QSqlQuery q =
            anfitrion::ejecuta(db, QStringLiteral("SELECT almacen FROM almacen ORDER BY almacen"));
        while (q.next())
            m_almacen->addItem(q.value(0).toString().trimmed());
    });
}

void DialogoKit::cambiaOperacion()
{
    // Assembly takes whole kits; disassembly may take a fraction of one.
    const bool ensambla = m_ensamble->isChecked();
    m_cantidad->setDecimals(ensambla ? 0 : 4);
    setWindowTitle(ensambla ? QStringLiteral("Ensamblar kit") : QStringLiteral("Desensamblar kit"));
}

DialogoKit::Operacion DialogoKit::operacion() const
{
    return m_ensamble->isChecked() ? Operacion::Ensamble : Operacion::Desensamble;
}

QString DialogoKit::articulo() const
{
    const int i = m_articulo->findText(m_articulo->currentText(), Qt::MatchExactly);
    if (i >= 0 && m_articulo->itemData(i).isValid())
        return m_articulo->itemData(i).toString();
    // Typed by hand: the key is what comes before " - ", if anything.
    return m_articulo->currentText().section(QStringLiteral(" - "), 0, 0).trimmed();
}

qint32 DialogoKit::almacen() const
{
    return m_almacen->currentText().trimmed().toInt();
}

double DialogoKit::cantidad() const
{
    return m_cantidad->value();
}

qint32 DialogoKit::orden() const
{
    return m_orden->value();
}

void DialogoKit::accept()
{
    // The same checks as every other door, so the dialog closes only on what
    // the call will take.
    QString falta;
    bool ok = false;
    m_almacen->currentText().trimmed().toInt(&ok);
    if (!ok) {
        falta = QStringLiteral("El almacén debe ser un número entero.");
    } else {
        try {
            if (operacion() == Operacion::Ensamble)
                anfitrion::compruebaEnsamble(m_db, articulo(), almacen(), qRound(cantidad()),
                                             orden());
            else
                anfitrion::compruebaDesensamble(m_db, articulo(), cantidad(), almacen(), orden());
        } catch (...) {
            falta = describeCurrentException();
        }
    }
    if (!falta.isEmpty()) {
        anfitrion::interaccion().mensaje(falta, 48);
        return;
    }
    QDialog::accept();
}

} // namespace zuvi::app
