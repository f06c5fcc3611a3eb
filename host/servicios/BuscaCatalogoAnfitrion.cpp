#include "host/servicios/BuscaCatalogoAnfitrion.h"

#include "runtime/Error.h"

#include <QAbstractTableModel>
#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QTableView>
#include <QVBoxLayout>

namespace zuvi::anfitrion {

namespace {

bool esEnter(const QKeyEvent *tecla)
{
    return tecla->key() == Qt::Key_Return || tecla->key() == Qt::Key_Enter;
}

bool mueveEnLaTabla(const QKeyEvent *tecla)
{
    switch (tecla->key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
        return true;
    default:
        return false;
    }
}

} // namespace

// The rows the search leaves: over the rows read once, or (a big catalogue)
// as the database narrows them, a page at a time.
class ModeloCatalogo : public QAbstractTableModel
{
public:
    ModeloCatalogo(const DefinicionCatalogo &catalogo, FilasCatalogo filas, QObject *padre)
        : QAbstractTableModel(padre), m_catalogo(catalogo), m_memoria(std::move(filas))
    {
    }
    ModeloCatalogo(const DefinicionCatalogo &catalogo, std::unique_ptr<ConsultaCatalogo> consulta,
                   QObject *padre)
        : QAbstractTableModel(padre), m_catalogo(catalogo), m_consulta(std::move(consulta))
    {
    }

    int rowCount(const QModelIndex &padre = {}) const override
    {
        if (padre.isValid())
            return 0;
        return int(m_consulta ? m_filas.size() : m_visibles.size());
    }
    int columnCount(const QModelIndex &padre = {}) const override
    {
        return padre.isValid() ? 0 : int(m_catalogo.columnas.size());
    }
    QVariant data(const QModelIndex &indice, int rol) const override
    {
        if (!indice.isValid() || indice.row() >= rowCount())
            return {};
        if (rol == Qt::DisplayRole)
            return celdas(indice.row()).value(indice.column());
        return {};
    }
    QVariant headerData(int seccion, Qt::Orientation orientacion, int rol) const override
    {
        if (orientacion == Qt::Horizontal && rol == Qt::DisplayRole)
            return m_catalogo.encabezados.value(seccion);
        return QAbstractTableModel::headerData(seccion, orientacion, rol);
    }
    bool canFetchMore(const QModelIndex &padre) const override
    {
        return !padre.isValid() && m_consulta && m_consulta->hayMas();
    }
    void fetchMore(const QModelIndex &padre) override
    {
        if (!canFetchMore(padre))
            return;
        // Asked from the view's event loop: a failed read only ends the list.
        std::vector<QStringList> mas;
        swallowErrors([&] { mas = m_consulta->sigue(); });
        if (mas.empty())
            return;
        const int n = rowCount();
        beginInsertRows({}, n, n + int(mas.size()) - 1);
        std::move(mas.begin(), mas.end(), std::back_inserter(m_filas));
        endInsertRows();
    }

    // Throws Error when the database could not search.
    void busca(const QString &texto)
    {
        beginResetModel();
        m_filas.clear();
        m_visibles.clear();
        try {
            if (m_consulta)
                m_filas = m_consulta->busca(texto);
            else
                m_visibles = m_memoria.busca(texto);
        } catch (...) {
            endResetModel();
            throw;
        }
        endResetModel();
    }
    const QStringList &celdas(int visible) const
    {
        return m_consulta ? m_filas[size_t(visible)]
                          : m_memoria.fila(m_visibles[size_t(visible)]).celdas;
    }
    int total() const { return m_consulta ? m_consulta->total() : m_memoria.total(); }
    // The total as the label says it: "más de N" when only counted up to N.
    QString totalTexto() const
    {
        return m_consulta && !m_consulta->totalExacto() ? QStringLiteral("más de %1").arg(total())
                                                        : QString::number(total());
    }
    // How many rows the search matches; -1 when not known.
    int coincidencias() const
    {
        return m_consulta ? m_consulta->coincidencias() : int(m_visibles.size());
    }
    bool enOrdenDeAlta() const { return m_consulta && m_consulta->enOrdenDeAlta(); }

private:
    const DefinicionCatalogo &m_catalogo;
    FilasCatalogo m_memoria;
    std::vector<int> m_visibles;
    std::unique_ptr<ConsultaCatalogo> m_consulta;
    std::vector<QStringList> m_filas;
};

DialogoCatalogo::DialogoCatalogo(const DefinicionCatalogo &catalogo, FilasCatalogo filas,
                                 const QString &filtro, QWidget *padre)
    : QDialog(padre), m_catalogo(catalogo), m_filtro(filtro.trimmed())
{
    m_modelo = new ModeloCatalogo(catalogo, std::move(filas), this);
    construye();
}

DialogoCatalogo::DialogoCatalogo(const DefinicionCatalogo &catalogo,
                                 std::unique_ptr<ConsultaCatalogo> consulta, const QString &filtro,
                                 QWidget *padre)
    : QDialog(padre), m_catalogo(catalogo), m_filtro(filtro.trimmed())
{
    m_modelo = new ModeloCatalogo(catalogo, std::move(consulta), this);
    construye();
}

void DialogoCatalogo::construye()
{
    const DefinicionCatalogo &catalogo = m_catalogo;
    setWindowTitle(catalogo.titulo);
    setObjectName(QStringLiteral("BuscaCatalogo"));

    auto *etiqueta = new QLabel(QStringLiteral("&Buscar (código o descripción):"), this);
    m_buscador = new QLineEdit(this);
    m_buscador->setObjectName(QStringLiteral("txtBuscar"));
    m_buscador->setClearButtonEnabled(true);
    etiqueta->setBuddy(m_buscador);

    m_tabla = new QTableView(this);
    m_tabla->setObjectName(QStringLiteral("tabla"));
    m_tabla->setModel(m_modelo);
    m_tabla->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_tabla->setSelectionMode(QAbstractItemView::SingleSelection);
    m_tabla->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_tabla->setTabKeyNavigation(false);
    m_tabla->setAlternatingRowColors(true);
    m_tabla->setWordWrap(false);
    m_tabla->verticalHeader()->hide();
    m_tabla->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    m_tabla->horizontalHeader()->setSectionResizeMode(QHeaderView::Interactive);
    m_tabla->horizontalHeader()->setStretchLastSection(false);
    m_tabla->horizontalHeader()->setSectionResizeMode(1, QHeaderView::Stretch);
    m_tabla->setColumnWidth(0, 140);

    m_estado = new QLabel(this);
    m_estado->setObjectName(QStringLiteral("lblEstado"));

    auto *botones = new QDialogButtonBox(this);
    QPushButton *elegir =
        botones->addButton(QStringLiteral("&Elegir"), QDialogButtonBox::AcceptRole);
    botones->addButton(QStringLiteral("&Cancelar"), QDialogButtonBox::RejectRole);
    elegir->setAutoDefault(false);
    connect(botones, &QDialogButtonBox::accepted, this, &DialogoCatalogo::elige);
    connect(botones, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto *capa = new QVBoxLayout(this);
    capa->addWidget(etiqueta);
    capa->addWidget(m_buscador);
    capa->addWidget(m_tabla, 1);
    capa->addWidget(m_estado);
    capa->addWidget(botones);
    resize(680, 440);

    connect(m_buscador, &QLineEdit::textChanged, this, &DialogoCatalogo::busca);
    connect(m_tabla, &QAbstractItemView::doubleClicked, this, &DialogoCatalogo::elige);
    m_buscador->installEventFilter(this);
    m_tabla->installEventFilter(this);
    busca(QString());
    m_buscador->setFocus();
}

DialogoCatalogo::~DialogoCatalogo() = default;

int DialogoCatalogo::filasVisibles() const
{
    return m_modelo->rowCount();
}

QString DialogoCatalogo::estado() const
{
    return m_estado->text();
}

void DialogoCatalogo::busca(const QString &texto)
{
    try {
        m_modelo->busca(texto);
    } catch (...) {
        m_estado->setText(
            QStringLiteral("No se pudo buscar en el catálogo: %1").arg(describeCurrentException()));
        return;
    }
    const int visibles = m_modelo->rowCount();
    const int total = m_modelo->total();
    const int coinciden = m_modelo->coincidencias();
    if (visibles > 0) {
        m_tabla->setCurrentIndex(m_modelo->index(0, 0));
        // "N registros", "M de N registros", or, where only the pages read
        // tell, "Más de M de N registros"; N may itself be "más de 10000".
        const QString todos = m_modelo->totalTexto();
        QString linea;
        if (coinciden >= 0 && coinciden == total)
            linea = QStringLiteral("%1 registros").arg(todos);
        else if (coinciden >= 0)
            linea = QStringLiteral("%1 de %2 registros").arg(coinciden).arg(todos);
        else if (texto.trimmed().isEmpty())
            linea = QStringLiteral("Más de %1 registros").arg(total);
        else
            linea = QStringLiteral("Más de %1 de %2 registros").arg(visibles).arg(todos);
        if (m_modelo->enOrdenDeAlta())
            linea += QStringLiteral(", en el orden en que se dieron de alta (escriba más para "
                                    "acotar)");
        if (!m_filtro.isEmpty())
            linea += QStringLiteral(" (solo %1)").arg(m_filtro);
        m_estado->setText(linea + QStringLiteral(". Enter elige, Esc cierra."));
    } else if (total == 0 && m_filtro.isEmpty()) {
        m_estado->setText(QStringLiteral("El catálogo está vacío: no hay nada que elegir."));
    } else if (total == 0) {
        m_estado->setText(
            QStringLiteral("Ningún registro del catálogo cumple \"%1\": no hay nada que elegir.")
                .arg(m_filtro));
    } else {
        m_estado->setText(
            QStringLiteral("Nada coincide con \"%1\". Cambie la búsqueda.").arg(texto.trimmed()));
    }
}

void DialogoCatalogo::elige()
{
    const QModelIndex actual = m_tabla->currentIndex();
    if (!actual.isValid() || actual.row() >= m_modelo->rowCount())
        return; // nothing to choose: the dialog stays open
    m_clave = m_modelo->celdas(actual.row()).value(m_catalogo.columnaClave);
    accept();
}

bool DialogoCatalogo::eventFilter(QObject *objeto, QEvent *evento)
{
    if (evento->type() != QEvent::KeyPress)
        return QDialog::eventFilter(objeto, evento);
    auto *tecla = static_cast<QKeyEvent *>(evento);
    if (esEnter(tecla)) {
        elige();
        return true;
    }
    if (objeto == m_buscador && mueveEnLaTabla(tecla)) {
        QCoreApplication::sendEvent(m_tabla, evento);
        return true;
    }
    // Typing over the table searches, as it would in the box.
    const bool conModificador = tecla->modifiers() & (Qt::ControlModifier | Qt::AltModifier);
    if (objeto == m_tabla && !conModificador && !tecla->text().isEmpty() &&
        tecla->text().at(0).isPrint()) {
        m_buscador->setFocus();
        QCoreApplication::sendEvent(m_buscador, evento);
        return true;
    }
    return QDialog::eventFilter(objeto, evento);
}

void BuscaCatalogoAnfitrion::Muestra(const QString &titulo, const QString &filtro, const QString &,
                                     const QString &, const QVariant &)
{
    const DefinicionCatalogo *catalogo = definicionCatalogo(titulo);
    if (!catalogo)
        throw Error(QStringLiteral("No hay un catálogo llamado \"%1\". Los catálogos son: \"%2\".")
                        .arg(titulo, titulosCatalogos().join(QStringLiteral("\", \""))));
    if (!m_ambiente)
        throw Error(QStringLiteral("El catálogo \"%1\" no tiene ambiente.").arg(titulo));
    if (!m_destino)
        throw Error(QStringLiteral("El catálogo \"%1\" no tiene caja destino.").arg(titulo));

    // The articles may be a million: the database narrows them. The other
    // catalogues are read once and narrowed in memory.
    DialogoCatalogo *dialogo = nullptr;
    if (catalogo->tabla == QLatin1String("prods"))
        dialogo = new DialogoCatalogo(
            *catalogo,
            std::make_unique<ConsultaCatalogo>(*catalogo, filtro, m_ambiente->Conexion()), filtro,
            m_destino->window());
    else
        dialogo = new DialogoCatalogo(*catalogo,
                                      FilasCatalogo::lee(*catalogo, filtro, m_ambiente->Conexion()),
                                      filtro, m_destino->window());
    muestraYEscribe(dialogo, [](const DialogoCatalogo &d) { return d.claveElegida(); });
}

} // namespace zuvi::anfitrion
