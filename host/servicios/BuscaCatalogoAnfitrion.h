#pragma once

// The host's catalogue lookup: a dialog with the catalogue's caption, a search
// box that narrows the rows as the user types, and the table of matches.
//
// Keys: typing goes to the search box; Down, Up, PageDown and PageUp move in
// the table from there; Enter (or a double click on a row) writes the chosen
// row's key into the target box and closes; Escape closes and writes nothing.
// Typing while the table has the focus goes back to the search box.
//
// Muestra throws Error, before anything opens, for a caption that names no
// catalogue, a filter that is not a simple comparison (host/servicios/Catalogos.h), a
// lookup with no environment or no target box, and a failed query. An empty
// catalogue, or one the filter leaves empty, opens with no rows and a label
// that says so. The three further arguments of Muestra are accepted and
// unused: the editor always passes them empty.

#include "contract/Servicios.h"
#include "host/interaccion/DialogoDestino.h"
#include "host/servicios/Catalogos.h"
#include "host/servicios/ConsultaCatalogo.h"

#include <QDialog>
#include <QLineEdit>

#include <memory>

class QLabel;
class QTableView;

namespace zuvi::anfitrion {

class ModeloCatalogo;

class DialogoCatalogo : public QDialog
{
    Q_OBJECT
public:
    DialogoCatalogo(const DefinicionCatalogo &catalogo, FilasCatalogo filas, const QString &filtro,
                    QWidget *padre = nullptr);
    // Over the database, which narrows the rows and hands them a page at a time.
    DialogoCatalogo(const DefinicionCatalogo &catalogo, std::unique_ptr<ConsultaCatalogo> consulta,
                    const QString &filtro, QWidget *padre = nullptr);
    ~DialogoCatalogo() override;

    // The key of the row chosen with Enter or a double click; empty before.
    QString claveElegida() const { return m_clave; }
    int filasVisibles() const;
    QString estado() const; // the text of the label under the table

protected:
    bool eventFilter(QObject *objeto, QEvent *evento) override;

private:
    void construye();
    void busca(const QString &texto);
    void elige();

    const DefinicionCatalogo &m_catalogo;
    QString m_filtro;
    ModeloCatalogo *m_modelo = nullptr;
    QLineEdit *m_buscador = nullptr;
    QTableView *m_tabla = nullptr;
    QLabel *m_estado = nullptr;
    QString m_clave;
};

class BuscaCatalogoAnfitrion : public ServicioConDestino<zuvi::BuscaCatalogo>
{
    Q_OBJECT
public:
    using ServicioConDestino::ServicioConDestino;

    void Muestra(const QString &titulo, const QString &filtro = QString(),
                 const QString &texto2 = QString(), const QString &texto3 = QString(),
                 const QVariant &omitido = QVariant()) override;
};

} // namespace zuvi::anfitrion
