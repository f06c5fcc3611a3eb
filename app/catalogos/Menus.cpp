#include "app/catalogos/Menus.h"

#include "app/catalogos/VentanaCatalogo.h"
#include "app/catalogos/VentanasInventario.h"

#include <QMainWindow>
#include <QMenuBar>
#include <QSqlDatabase>

namespace zuvi::app {

void agregaMenusDeDatos(QMainWindow *ventana, const QSqlDatabase &db, QMenu *antes)
{
    auto *catalogos = new QMenu(QStringLiteral("&Catálogos"), ventana);
    const struct
    {
        const char *texto, *nombre;
    } kEntradas[] = {{"&Artículos", "articulos"},   {"&Kits", "kits"},
                     {"A&lmacenes", "almacenes"},   {"&Monedas", "monedas"},
                     {"&Vendedores", "vendedores"}, {"&Empleados", "empleados"},
                     {"&Conceptos", "conceptos"},   {"&Impuestos", "impuestos"}};
    for (const auto &e : kEntradas) {
        const QString nombre = QString::fromLatin1(e.nombre);
        catalogos->addAction(QString::fromUtf8(e.texto), ventana, [ventana, db, nombre] {
            (new VentanaCatalogo(nombre, db, ventana))->show();
        });
    }
    auto *inventario = new QMenu(QStringLiteral("&Inventario"), ventana);
    inventario->addAction(QStringLiteral("&Existencias"), ventana,
                          [ventana, db] { (new VentanaExistencias(db, ventana))->show(); });
    inventario->addAction(QStringLiteral("&Movimientos"), ventana,
                          [ventana, db] { (new VentanaMovimientos(db, ventana))->show(); });
    QAction *ante = antes ? antes->menuAction() : nullptr;
    ventana->menuBar()->insertMenu(ante, catalogos);
    ventana->menuBar()->insertMenu(ante, inventario);
}

} // namespace zuvi::app
