#pragma once

// The main window's menus "Catálogos" and "Inventario".

class QMainWindow;
class QMenu;
class QSqlDatabase;

namespace zuvi::app {

// Adds both menus to the window's menu bar, before the menu antes (or at the
// end when it is null).
void agregaMenusDeDatos(QMainWindow *ventana, const QSqlDatabase &db, QMenu *antes = nullptr);

} // namespace zuvi::app
