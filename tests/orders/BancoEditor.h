#pragma once

// What the editor's tests share: a fresh demo database per case, the
// scripted interaction, process handlers that record the keys (and refuse
// the ones in vetados), and helpers that read back the rows written and
// drive the window with real key events.

#include "component/Produccion.h"
#include "controls/Rejilla.h"
#include "core/Modulo.h"
#include "host/procesos/Procesos.h"
#include "host/reportes/Reportes.h"
#include "host/servicios/AmbienteAnfitrion.h"
#include "host/sql/Sql.h"
#include "orders/frmOp.h"
#include "tests/support/BaseDePrueba.h"
#include "tests/support/InteraccionGuionada.h"
#include "tests/support/Ventanas.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>

namespace zuvi::pruebas {

inline const QDate kHoy(2024, 5, 17);
inline const QString kCabecera =
    "SELECT op, estado, ocupado, almacen, f_emision, fechaEntrega, importe,"
    " costo, automatico, ordencompra, usuario, usufecha FROM op WHERE op = ";
inline const QString kPartidas =
    "SELECT id_entrada, op, tipo_doc, no_referen, articulo, cantidad, precio,"
    " observ, partida, usuario, usufecha FROM oppart WHERE op = %1"
    " ORDER BY id_entrada";

struct BancoEditor
{

    std::unique_ptr<BaseDePrueba> base;
    std::shared_ptr<InteraccionGuionada> ui;
    std::unique_ptr<Produccion> p;
    QStringList procesos; // process keys as the host received them
    QSet<QString> vetados;
    QString hoy;
    anfitrion::ManejadorProceso etiquetasReales; // the host's own "OP007"
    bool conEtiquetas = false;

    QString mensaje(int n) { return base->mensaje(n); }
    QStringList cabecera(qint32 op)
    {
        return filas(base->conexion(), kCabecera + QString::number(op), u'|');
    }
    QStringList partidas(qint32 op) { return filas(base->conexion(), kPartidas.arg(op), u'|'); }
    int cuenta(const QString &tabla) { return base->cuenta(tabla); }

    // The one editor the last call opened, active.
    QPointer<frmOp> editor()
    {
        return visibles<frmOp>().size() == 1 ? ventanaAbierta<frmOp>() : nullptr;
    }
    // A new order (0) or the order to change, in the editor.
    QPointer<frmOp> abre(qint32 op = 0)
    {
        op ? p->ModificaOp(op) : p->NuevaOp();
        return editor();
    }
    // The name of what has the focus in the widget's window.
    static QString foco(const QWidget *w)
    {
        const QWidget *f = w->window()->focusWidget();
        return f ? f->objectName() : QString();
    }

    void preparaClase()
    {
        preparaRegistro();
        etiquetasReales = anfitrion::manejadorProceso(QStringLiteral("OP007"));
    }
    void prepara()
    {
        modulo::reinicia();
        base = std::make_unique<BaseDePrueba>(true);
        base->fijaReloj(kHoy.startOfDay());
        ui = InteraccionGuionada::instala();
        procesos.clear();
        vetados.clear();
        for (const char *clave : {"Op001", "Op005", "Op006", "OP007"})
            anfitrion::ponManejadorProceso(
                QString::fromLatin1(clave), [this](ArgumentosProceso &a) {
                    procesos << a.proceso + ' ' + QString::number(a.bandera);
                    if (vetados.contains(a.proceso))
                        a.bandera = VTrue; // otherwise the flag stays as the editor passed it
                    else if (conEtiquetas && a.proceso == u"OP007")
                        etiquetasReales(a);
                });
        conEtiquetas = false;
        p = std::make_unique<Produccion>();
        p->SetAmbiente(base->ambiente());
        hoy = QDate::currentDate().toString(Qt::ISODate);
    }
    // A fresh database and editor state for the next case of a table.
    void deNuevo()
    {
        limpia();
        prepara();
    }
    void limpia()
    {
        cierraTodo();
        p.reset();
        modulo::reinicia();
        base.reset();
        for (const char *clave : {"Op001", "Op005", "Op006", "OP007"})
            anfitrion::ponManejadorProceso(QString::fromLatin1(clave), {});
    }
};

} // namespace zuvi::pruebas
