#pragma once

// The station's settings, as the person at it sees them: its default
// warehouse and barcode reader, and the two rules a shop may relax (stock
// below zero, order lines that are not kits). Saved when accepted.

#include <QDialog>
#include <QSqlDatabase>
#include <QString>

class QCheckBox;
class QSpinBox;

namespace zuvi::app {

class DialogoEstacion : public QDialog
{
    Q_OBJECT
public:
    // Reads the station's row (defaults when it has none); throws Error.
    DialogoEstacion(const QSqlDatabase &db, const QString &estacion, QWidget *padre = nullptr);

    void accept() override;

private:
    QSqlDatabase m_db;
    QString m_estacion;
    bool m_existe = false;
    QSpinBox *m_almacen = nullptr;
    QCheckBox *m_lector = nullptr;
    QCheckBox *m_negativa = nullptr;
    QCheckBox *m_sinKit = nullptr;
};

} // namespace zuvi::app
