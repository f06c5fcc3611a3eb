#include "host/reportes/Impresion.h"

#include "host/base/Rutas.h"
#include "runtime/Error.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QPageSize>
#include <QPdfWriter>
#include <QPrintPreviewDialog>
#include <QPrinter>

namespace zuvi::anfitrion {

namespace {
bool &activa()
{
    static bool b = false;
    return b;
}

void preparaHoja(QPagedPaintDevice &dispositivo, const QMarginsF &margenesMm)
{
    dispositivo.setPageSize(QPageSize(QPageSize::Letter));
    dispositivo.setPageMargins(margenesMm, QPageLayout::Millimeter);
}
} // namespace

void ponVistaPrevia(bool a)
{
    activa() = a;
}

bool vistaPrevia()
{
    return activa() && qobject_cast<QApplication *>(QCoreApplication::instance());
}

QString publica(const QString &titulo, const QString &archivo, const QMarginsF &margenesMm,
                const Dibujo &dibujo)
{
    if (vistaPrevia()) {
        QPrinter impresora(QPrinter::HighResolution);
        impresora.setDocName(titulo);
        impresora.setCreator(QStringLiteral("ZuviProduccion"));
        preparaHoja(impresora, margenesMm);
        QPrintPreviewDialog vista(&impresora, QApplication::activeWindow());
        vista.setWindowTitle(QStringLiteral("Vista previa - %1").arg(titulo));
        QString falla;
        QObject::connect(&vista, &QPrintPreviewDialog::paintRequested, &vista, [&](QPrinter *p) {
            if (!swallowErrors([&] { dibujo(*p); }))
                falla = QStringLiteral("No se pudo preparar \"%1\".").arg(titulo);
        });
        vista.resize(900, 700);
        vista.exec();
        if (!falla.isEmpty())
            throw Error(falla);
        return QString();
    }

    const QFileInfo destino(archivo);
    if (!creaCarpetaPrivada(destino.absolutePath()))
        throw Error(
            QStringLiteral("No se pudo crear la carpeta \"%1\".").arg(destino.absolutePath()));
    {
        QPdfWriter pdf(archivo);
        pdf.setTitle(titulo);
        pdf.setCreator(QStringLiteral("ZuviProduccion"));
        pdf.setResolution(300);
        preparaHoja(pdf, margenesMm);
        dibujo(pdf);
    }
    if (!QFileInfo(archivo).isFile() || QFileInfo(archivo).size() == 0)
        throw Error(QStringLiteral("No se pudo escribir \"%1\".").arg(archivo));
    return QDir::toNativeSeparators(archivo);
}

} // namespace zuvi::anfitrion
