#pragma once

// One window for every catalogue, built from its description: a search box,
// the list (and, for articles and kits, the list that belongs to the chosen
// row: its additional keys, its components), and the same keys everywhere:
// Ctrl+N new row, Enter or Ctrl+S saves, Supr deletes after a question,
// Ctrl+F the search box, Escape discards the edit in progress or closes, F2
// the lookup of a column that names an article or a warehouse, F6 between the
// two lists.

#include "host/datos/Tablas.h"

#include <QSqlDatabase>
#include <QWidget>

class QLabel;
class QLineEdit;
class QTableView;

namespace zuvi::app {

class ModeloTabla;

class VentanaCatalogo : public QWidget
{
    Q_OBJECT
public:
    // nombre: a catalogue of anfitrion::datos::catalogos() ("kits" opens the
    // recipes with their components).
    VentanaCatalogo(const QString &nombre, const QSqlDatabase &db, QWidget *padre = nullptr);

    ModeloTabla *maestro() const { return m_maestro; }
    ModeloTabla *detalle() const { return m_detalle; }
    QTableView *vistaMaestro() const { return m_vista; }
    QTableView *vistaDetalle() const { return m_vistaDetalle; }
    QString costoMostrado() const;

    void nuevo();
    bool guarda();
    void borra();
    void busca(const QString &texto);

protected:
    bool eventFilter(QObject *objeto, QEvent *evento) override;
    void keyPressEvent(QKeyEvent *evento) override;
    void closeEvent(QCloseEvent *evento) override;

private:
    void creaAcciones();
    QTableView *creaVista(ModeloTabla *modelo);
    ModeloTabla *activo() const;
    QTableView *vistaDe(ModeloTabla *m) const;
    bool guardaModelo(ModeloTabla *m);
    void muestraDetalle();
    void busquedaF2(QTableView *vista);
    void importa();
    void exporta();
    void avisa(const QString &texto);

    QSqlDatabase m_db;
    const anfitrion::datos::Catalogo &m_catalogo; // what import and export take
    const anfitrion::datos::Catalogo *m_catDetalle = nullptr;
    QString m_enlace; // the detail's column that holds the master's key
    ModeloTabla *m_maestro = nullptr;
    ModeloTabla *m_detalle = nullptr;
    QTableView *m_vista = nullptr;
    QTableView *m_vistaDetalle = nullptr;
    QLineEdit *m_buscador = nullptr;
    QLabel *m_costo = nullptr;
    QLabel *m_estado = nullptr;
};

} // namespace zuvi::app
