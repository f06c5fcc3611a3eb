#include "app/catalogos/Listados.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLabel>
#include <QLocale>
#include <QPageLayout>
#include <QPlainTextEdit>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QPushButton>
#include <QTextDocument>
#include <QVBoxLayout>

namespace zuvi::app {

ModeloFilas::ModeloFilas(QStringList encabezado, QList<int> numericas, QObject *padre)
    : QAbstractTableModel(padre), m_encabezado(std::move(encabezado)),
      m_numericas(std::move(numericas))
{
}

void ModeloFilas::pon(QList<QStringList> filas)
{
    beginResetModel();
    m_filas = std::move(filas);
    endResetModel();
}

int ModeloFilas::rowCount(const QModelIndex &padre) const
{
    return padre.isValid() ? 0 : int(m_filas.size());
}

int ModeloFilas::columnCount(const QModelIndex &padre) const
{
    return padre.isValid() ? 0 : int(m_encabezado.size());
}

QVariant ModeloFilas::data(const QModelIndex &i, int rol) const
{
    const bool numero = m_numericas.contains(i.column());
    if (rol == Qt::TextAlignmentRole)
        return QVariant::fromValue(Qt::AlignVCenter | (numero ? Qt::AlignRight : Qt::AlignLeft));
    if (rol != Qt::DisplayRole)
        return {};
    const QString t = m_filas.at(i.row()).value(i.column());
    bool ok = false;
    const double n = numero ? t.toDouble(&ok) : 0.0;
    if (!ok)
        return t;
    // Whole numbers (an order number) stay whole; amounts get two decimals.
    return t.contains(u'.') || i.column() >= 7 ? QLocale().toString(n, 'f', 2)
                                               : QLocale().toString(qlonglong(n));
}

QVariant ModeloFilas::headerData(int seccion, Qt::Orientation o, int rol) const
{
    if (o == Qt::Horizontal && rol == Qt::DisplayRole)
        return m_encabezado.value(seccion);
    return QAbstractTableModel::headerData(seccion, o, rol);
}

QString htmlListado(const QString &titulo, const QStringList &encabezado,
                    const QList<QStringList> &filas, const QList<int> &numericas,
                    const QString &pie)
{
    QString h = QStringLiteral("<h3>%1</h3><table border=1 cellspacing=0 cellpadding=2 width=100%>"
                               "<tr>")
                    .arg(titulo.toHtmlEscaped());
    for (const QString &e : encabezado)
        h += QStringLiteral("<th>%1</th>").arg(e.toHtmlEscaped());
    h += QStringLiteral("</tr>");
    for (const QStringList &f : filas) {
        h += QStringLiteral("<tr>");
        for (int i = 0; i < encabezado.size(); ++i)
            h += QStringLiteral("<td%1>%2</td>")
                     .arg(numericas.contains(i) ? QStringLiteral(" align=right") : QString(),
                          f.value(i).toHtmlEscaped());
        h += QStringLiteral("</tr>");
    }
    return h + QStringLiteral("</table><p>%1</p>").arg(pie.toHtmlEscaped());
}

void aviso(QWidget *padre, const QString &titulo, const QString &texto, const QStringList &detalle)
{
    QDialog caja(padre);
    caja.setWindowTitle(titulo);
    auto *capas = new QVBoxLayout(&caja);
    auto *etiqueta = new QLabel(texto, &caja);
    etiqueta->setWordWrap(true);
    capas->addWidget(etiqueta);
    if (!detalle.isEmpty()) {
        auto *lista = new QPlainTextEdit(detalle.join(u'\n'), &caja);
        lista->setReadOnly(true);
        lista->setMinimumSize(640, 240);
        capas->addWidget(lista);
    }
    auto *botones = new QDialogButtonBox(&caja);
    botones->addButton(QStringLiteral("&Aceptar"), QDialogButtonBox::AcceptRole)->setDefault(true);
    QObject::connect(botones, &QDialogButtonBox::accepted, &caja, &QDialog::accept);
    capas->addWidget(botones);
    caja.exec();
}

void imprime(QWidget *padre, const QString &html, bool pdf)
{
    QTextDocument documento;
    documento.setHtml(html);
    QPrinter impresora(QPrinter::HighResolution);
    impresora.setPageOrientation(QPageLayout::Landscape);
    if (pdf) {
        const QString archivo = QFileDialog::getSaveFileName(
            padre, QStringLiteral("Guardar en PDF"), QStringLiteral("listado.pdf"),
            QStringLiteral("PDF (*.pdf)"));
        if (archivo.isEmpty())
            return;
        impresora.setOutputFormat(QPrinter::PdfFormat);
        impresora.setOutputFileName(archivo);
        documento.print(&impresora);
        return;
    }
    QPrintPreviewDialog vista(&impresora, padre);
    vista.setWindowTitle(QStringLiteral("Vista previa"));
    QObject::connect(&vista, &QPrintPreviewDialog::paintRequested, padre,
                     [&documento](QPrinter *p) { documento.print(p); });
    vista.exec();
}

} // namespace zuvi::app
