#include "app/Materiales.h"

#include "runtime/Text.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace zuvi::app {

namespace {

const QStringList kTitulos{QStringLiteral("Artículo"),   QStringLiteral("Descripción"),
                           QStringLiteral("Almacén"),    QStringLiteral("Necesario"),
                           QStringLiteral("Existencia"), QStringLiteral("Faltante")};

QList<anfitrion::Necesidad> necesidades(const QSqlDatabase &db, qint32 op)
{
    anfitrion::compruebaOrden(db, op);
    return anfitrion::necesidadesOrden(db, op);
}

QStringList celdas(const anfitrion::Necesidad &n)
{
    return {n.articulo,
            n.descripcion,
            n.nombreAlmacen.isEmpty() ? QString::number(n.almacen)
                                      : QStringLiteral("%1 %2").arg(n.almacen).arg(n.nombreAlmacen),
            anfitrion::cifra(n.necesaria),
            anfitrion::cifra(n.existencia),
            n.faltante > 0 ? anfitrion::cifra(n.faltante) : QString()};
}

QString resumen(qint32 op, const QList<anfitrion::Necesidad> &lista)
{
    if (lista.isEmpty())
        return QStringLiteral("La orden %1 no lleva kits: no necesita materiales.").arg(op);
    const auto faltan =
        std::count_if(lista.cbegin(), lista.cend(), [](const auto &n) { return n.faltante > 0; });
    return faltan == 0
               ? QStringLiteral("Materiales de la orden %1: hay existencias de todo.").arg(op)
               : QStringLiteral("Materiales de la orden %1: faltan %2 de %3 componentes.")
                     .arg(op)
                     .arg(faltan)
                     .arg(lista.size());
}

QString csv(const QString &valor)
{
    if (!valor.contains(u',') && !valor.contains(u'"') && !valor.contains(u'\n'))
        return valor;
    return u'"' + QString(valor).replace(u'"', QStringLiteral("\"\"")) + u'"';
}

QString plano(double valor)
{
    return QString::number(valor, 'g', 15);
}

} // namespace

QString materialesTexto(const QSqlDatabase &db, qint32 op)
{
    const QList<anfitrion::Necesidad> lista = necesidades(db, op);
    QList<QStringList> filas{kTitulos};
    for (const auto &n : lista)
        filas << celdas(n);
    QList<qsizetype> ancho(kTitulos.size(), 0);
    for (const QStringList &f : filas)
        for (int i = 0; i < f.size(); ++i)
            ancho[i] = std::max(ancho[i], f.at(i).size());
    QStringList lineas{resumen(op, lista)};
    for (const QStringList &f : lista.isEmpty() ? QList<QStringList>() : filas) {
        QString linea;
        for (int i = 0; i < f.size(); ++i)
            linea += i < 3 ? f.at(i).leftJustified(ancho[i] + 2)
                           : f.at(i).rightJustified(ancho[i]) + QStringLiteral("  ");
        lineas << eco(linea.trimmed(), 400);
    }
    return lineas.join(u'\n');
}

QString materialesCsv(const QSqlDatabase &db, qint32 op)
{
    QStringList lineas{QStringLiteral("articulo,descripcion,almacen,nombre_almacen,necesario,"
                                      "existencia,faltante")};
    for (const auto &n : necesidades(db, op))
        lineas << QStringList{csv(n.articulo),      csv(n.descripcion), QString::number(n.almacen),
                              csv(n.nombreAlmacen), plano(n.necesaria), plano(n.existencia),
                              plano(n.faltante)}
                      .join(u',');
    return lineas.join(u'\n');
}

void muestraMateriales(QWidget *padre, const QSqlDatabase &db, qint32 op)
{
    const QList<anfitrion::Necesidad> lista = necesidades(db, op);
    QDialog dialogo(padre);
    dialogo.setObjectName(QStringLiteral("dlgMateriales"));
    dialogo.setWindowTitle(QStringLiteral("Materiales de la orden %1").arg(op));
    auto *capa = new QVBoxLayout(&dialogo);
    capa->addWidget(new QLabel(resumen(op, lista), &dialogo));
    auto *tabla = new QTableWidget(int(lista.size()), int(kTitulos.size()), &dialogo);
    tabla->setObjectName(QStringLiteral("tablaMateriales"));
    tabla->setHorizontalHeaderLabels(kTitulos);
    tabla->setEditTriggers(QAbstractItemView::NoEditTriggers);
    tabla->verticalHeader()->hide();
    for (int f = 0; f < lista.size(); ++f) {
        const QStringList c = celdas(lista.at(f));
        for (int i = 0; i < c.size(); ++i) {
            auto *item = new QTableWidgetItem(c.at(i));
            if (i >= 3)
                item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
            if (lista.at(f).faltante > 0)
                item->setForeground(Qt::darkRed);
            tabla->setItem(f, i, item);
        }
    }
    tabla->resizeColumnsToContents();
    capa->addWidget(tabla);
    auto *botones = new QDialogButtonBox(QDialogButtonBox::Close, &dialogo);
    botones->button(QDialogButtonBox::Close)->setText(QStringLiteral("Cerrar"));
    QObject::connect(botones, &QDialogButtonBox::rejected, &dialogo, &QDialog::reject);
    capa->addWidget(botones);
    dialogo.resize(760, 360);
    dialogo.exec();
}

} // namespace zuvi::app
