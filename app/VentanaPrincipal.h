#pragma once

// The host's main window "frmMaster": the list of production orders and the
// menus that drive the component by name.

#include <QMainWindow>
#include <QPointer>
#include <QVariantList>
#include <functional>

class QAction;
class QComboBox;
class QDateEdit;
class QLineEdit;
class QTableView;

namespace zuvi::anfitrion {
class Sesion;
}

namespace zuvi::app {

struct Desenlace;
class ModeloOrdenes;

class VentanaPrincipal : public QMainWindow
{
    Q_OBJECT
public:
    VentanaPrincipal(anfitrion::Sesion &sesion, QObject *produccion, QWidget *padre = nullptr);

    // Reads the orders again (as many as were loaded); keeps the selected
    // order selected.
    void actualiza();
    // Reads again only the orders this window acted on (the selected one and
    // those opened in an editor) and the orders made since the last reading.
    void refresca();
    void leeLista(const std::function<void()> &lectura);
    // The order of the selected row, or 0.
    qint32 ordenSeleccionada() const;
    bool seleccionaOrden(qint32 op);

    // The component's windows give the focus back through this member, called
    // by name.
    Q_INVOKABLE void SetFocus();

protected:
    void closeEvent(QCloseEvent *evento) override;
    void changeEvent(QEvent *evento) override;

private:
    void creaMenus();
    QWidget *creaFiltros();
    // Reads the list under what the filter bar holds; giraOrden turns the order.
    // columna: the caption clicked, which orders the list (again: the other way).
    void aplicaFiltro(int columna = -1);
    void ajustaAcciones();
    void ajustaPorRol();
    // Calls a member of the component by name inside an error boundary, then
    // refreshes the list. False when the call could not be made.
    template <typename... A> bool llama(const char *metodo, A... argumentos);

    // A member through the host's door: a refusal or what was left undone is
    // shown, then the list is read again.
    Desenlace lote(const QString &metodo, const QVariantList &valores);

    void nueva();
    void modifica();
    void consulta();
    void entrega();
    void cancela();
    void kits(bool desensamble);
    void fracciones();
    void turnos();
    // Asks for a month and a shift and shows the month roster in a print preview.
    void rolDelMes();
    void acercaDe();
    void muestraError(const QString &texto);
    // Clears the busy mark a station left behind (it crashed with the order
    // open), after a question that names who holds it.
    void liberaOcupada();

    anfitrion::Sesion &m_sesion;
    QPointer<QObject> m_produccion;
    QTableView *m_lista = nullptr;
    ModeloOrdenes *m_modelo = nullptr;
    QComboBox *m_estado = nullptr;
    QDateEdit *m_desde = nullptr;
    QDateEdit *m_hasta = nullptr;
    QLineEdit *m_texto = nullptr;
    QList<qint32> m_tocadas; // orders acted on here, read again by refresca()
    QAction *m_nueva = nullptr;
    QAction *m_modifica = nullptr;
    QAction *m_consulta = nullptr;
    QAction *m_entrega = nullptr;
    QAction *m_cancela = nullptr;
    QAction *m_turnos = nullptr;
    QAction *m_libera = nullptr;
    bool m_actualizando = false;
};

} // namespace zuvi::app
