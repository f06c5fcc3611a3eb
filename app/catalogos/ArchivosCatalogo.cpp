// The catalogue window's "Importar..." and "Exportar...".

#include "app/catalogos/Listados.h"
#include "app/catalogos/ModeloTabla.h"
#include "app/catalogos/VentanaCatalogo.h"
#include "host/datos/Importacion.h"
#include "runtime/Error.h"

#include <QApplication>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QProgressDialog>

namespace zuvi::app {

using namespace anfitrion::datos;

void VentanaCatalogo::importa()
{
    const QString archivo = QFileDialog::getOpenFileName(
        this, QStringLiteral("Importar %1").arg(m_catalogo.titulo), {},
        QStringLiteral("Archivos CSV (*.csv *.txt);;Todos los archivos (*)"));
    if (archivo.isEmpty())
        return;
    QFile f(archivo);
    if (!f.open(QIODevice::ReadOnly))
        return avisa(QStringLiteral("No se pudo abrir %1: %2").arg(archivo, f.errorString()));
    QProgressDialog progreso(QStringLiteral("Importando..."), QString(), 0, 100, this);
    progreso.setWindowModality(Qt::WindowModal);
    progreso.setMinimumDuration(300);
    ResultadoImportacion r;
    try {
        r = anfitrion::datos::importa(m_db, m_catalogo, f.readAll(), false,
                                      [&](const QString &fase, qint64 hecho, qint64 total) {
                                          progreso.setLabelText(fase + QStringLiteral("..."));
                                          progreso.setValue(total ? int(hecho * 100 / total) : 100);
                                          QApplication::processEvents();
                                      });
    } catch (const Error &e) {
        return avisa(e.description());
    }
    progreso.close();
    if (!r.rechazos.empty()) {
        QStringList lineas;
        for (const Rechazo &x : r.rechazos)
            lineas << x.texto();
        aviso(
            this, windowTitle(),
            QStringLiteral("No se importó nada: %1 errores en el archivo.").arg(r.rechazos.size()),
            lineas);
        return;
    }
    m_maestro->select();
    busca(m_buscador->text());
    aviso(this, windowTitle(),
          QStringLiteral("Importados: %1 nuevos y %2 actualizados.")
              .arg(r.insertadas)
              .arg(r.actualizadas));
}

void VentanaCatalogo::exporta()
{
    const QString archivo = QFileDialog::getSaveFileName(
        this, QStringLiteral("Exportar %1").arg(m_catalogo.titulo), m_catalogo.nombre + ".csv",
        QStringLiteral("Archivos CSV (*.csv)"));
    if (archivo.isEmpty())
        return;
    try {
        const QByteArray csv = anfitrion::datos::exporta(m_db, m_catalogo);
        QFile f(archivo);
        if (!f.open(QIODevice::WriteOnly | QIODevice::Truncate) || f.write(csv) != csv.size())
            return avisa(
                QStringLiteral("No se pudo escribir %1: %2").arg(archivo, f.errorString()));
    } catch (const Error &e) {
        return avisa(e.description());
    }
}

} // namespace zuvi::app
