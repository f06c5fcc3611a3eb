#include "tests/support/AnfitrionGuionado.h"

#include "component/Modulo.h"
#include "runtime/ClassRegistry.h"
#include "runtime/Error.h"

#include <algorithm>

namespace zuvi::pruebas {

namespace {

const QStringList kClases = {QStringLiteral("AccesoDatos"), QStringLiteral("ControlProcesos"),
                             QStringLiteral("DocumentoInventario"),
                             QStringLiteral("VentanaProgreso")};

QString nombre(const QObject *o)
{
    if (!o)
        return QStringLiteral("nada");
    return o->objectName().isEmpty() ? QString::fromLatin1(o->metaObject()->className())
                                     : o->objectName();
}

class AmbienteGuionado : public zuvi::Ambiente
{
public:
    explicit AmbienteGuionado(AnfitrionGuionado *a) : m(a) { setObjectName("Ambiente"); }

    QSqlDatabase Conexion() const override { return QSqlDatabase(); }
    QString UsuarioActual() const override { return QStringLiteral("PRUEBA"); }
    QString RutaAplicacion() const override { return QStringLiteral("/opt/zuvi"); }
    QVariant EjecutaSQL(const QString &sql) override
    {
        m->ejecutaSQL(sql);
        return QVariant();
    }
    qint32 DatoFechaA() const override { return 11; }
    qint32 DatoFechaB() const override { return 22; }
    QVariant DatoDocumento() const override { return QStringLiteral("DOC"); }
    RecordsetPtr ParametrosEstacion() override
    {
        return std::make_shared<Recordset>(QStringList{"Almacen", "Lector"},
                                           QList<QVariantList>{{1, 0}});
    }
    QObject *ContenedorRutas() override { return nullptr; }

private:
    AnfitrionGuionado *m;
};

class AccesoDatosGuionado : public AccesoDatos
{
public:
    explicit AccesoDatosGuionado(AnfitrionGuionado *a) : m(a) {}

    RecordsetPtr Consulta(const QString &sql, const QSqlDatabase &, VBool) override
    {
        return m->consulta(sql);
    }
    double ValorNumerico(const QVariant &v) override { return variantToDouble(v); }
    QString ValorTexto(const QVariant &v) override { return variantToText(v); }
    VBool EstaVacio(const QString &t) override { return toVBool(t.trimmed().isEmpty()); }
    QString TraeMensaje(qint32 numero, zuvi::Ambiente *) override
    {
        m->anota("TraeMensaje", {QString::number(numero)});
        return QStringLiteral("Mensaje %1").arg(numero);
    }
    void Mensaje(const QString &texto, qint32 estilo, zuvi::Ambiente *) override
    {
        m->anota("Mensaje", {AnfitrionGuionado::texto(texto), QString::number(estilo)});
    }
    VBool Pregunta(const QString &texto, qint32 valor) override
    {
        m->anota("Pregunta", {AnfitrionGuionado::texto(texto), QString::number(valor)});
        return toVBool(m->pregunta());
    }
    qint32 SiguienteFolio(const QString &clave, const QSqlDatabase &, qint32 &documento,
                          ConstructorSql *constructor) override
    {
        m->anota("SiguienteFolio", {clave, QString::number(documento), nombre(constructor)});
        documento = m->documentoFolio();
        return m->folio();
    }
    QDate ComponeFecha(qint32 a, qint32 b) override
    {
        m->anota("ComponeFecha", {QString::number(a), QString::number(b)});
        return QDate(2024, 5, 17);
    }
    ConstructorSql *NuevoConstructorSql() override
    {
        throw Error(QStringLiteral("El anfitrión de prueba no construye sentencias."));
    }
    void PreparaVentana(QWidget *, zuvi::Ambiente *, const QString &) override {}
    void LiberaVentana(QWidget *, zuvi::Ambiente *, const QString &) override {}
    VBool ExisteClave(const QString &, const QString &, const QString &, const QSqlDatabase &,
                      VBool) override
    {
        return VFalse;
    }
    VBool UbicacionRestringida(const QString &, qint16, const QSqlDatabase &) override
    {
        return VFalse;
    }
    QString FormateaCampo(QLineEdit *, zuvi::Ambiente *) override { return QString(); }
    qint32 FiltroMayusculas(QLineEdit *, qint32 &tecla) override { return tecla; }
    qint32 FiltroTecla(VBool, QLineEdit *, qint32 &tecla) override { return tecla; }
    QString TextoConCeros(double n, qint32 ancho) override
    {
        return QStringLiteral("%1").arg(qint64(n), ancho, 10, QLatin1Char('0'));
    }
    QString FechaSQL(const QSqlDatabase &, const QDate &f) override
    {
        return f.toString(QStringLiteral("'yyyy-MM-dd'"));
    }

private:
    AnfitrionGuionado *m;
};

class ControlProcesosGuionado : public ControlProcesos
{
public:
    explicit ControlProcesosGuionado(AnfitrionGuionado *a) : m(a) {}

    void IniciaProceso(ArgumentosProceso &a) override
    {
        m->anota("IniciaProceso",
                 {a.proceso, nombre(a.objeto), nombre(a.ambiente),
                  AnfitrionGuionado::valor(a.valor), nombre(a.referencia),
                  QString::number(a.bandera), QString::number(a.numero),
                  AnfitrionGuionado::texto(a.texto), AnfitrionGuionado::texto(a.textoNulo),
                  AnfitrionGuionado::texto(a.textoFinal), nombre(a.referenciaFinal)});
        m_ultima = a.proceso;
        m->iniciando(a);
    }
    void ConsultaProceso(VBool &bandera) override
    {
        m->anota("ConsultaProceso", {QString::number(bandera)});
        bandera = m->vetada(m_ultima) ? VTrue : VFalse;
    }
    void ImprimeReporte(const QString &reporte, qint32 numero, zuvi::Ambiente *, QObject *) override
    {
        m->anota("ImprimeReporte", {reporte, QString::number(numero)});
    }
    void CierraProceso(qint32 valor) override
    {
        m->anota("CierraProceso", {QString::number(valor)});
    }

private:
    AnfitrionGuionado *m;
    QString m_ultima;
};

class VentanaProgresoGuionada : public VentanaProgreso
{
public:
    explicit VentanaProgresoGuionada(AnfitrionGuionado *a) : m(a)
    {
        m->nace(QStringLiteral("VentanaProgreso"));
    }
    ~VentanaProgresoGuionada() override { m->muere(QStringLiteral("VentanaProgreso")); }

    void Inicia(const QVariant &total, const QString &titulo, const QString &animacion) override
    {
        m->anota("Inicia", {AnfitrionGuionado::valor(total), AnfitrionGuionado::texto(titulo),
                            AnfitrionGuionado::texto(animacion)});
    }
    void Avanza(const QVariant &paso, const QString &l1, const QString &l2) override
    {
        m->anota("Avanza", {AnfitrionGuionado::valor(paso), AnfitrionGuionado::texto(l1),
                            AnfitrionGuionado::texto(l2)});
    }
    void Cierra() override { m->anota("Cierra"); }

private:
    AnfitrionGuionado *m;
};

class DocumentoGuionado : public DocumentoInventario
{
public:
    explicit DocumentoGuionado(AnfitrionGuionado *a) : m(a)
    {
        m->nace(QStringLiteral("DocumentoInventario"));
        setObjectName(
            QStringLiteral("Documento%1").arg(m->creados(QStringLiteral("DocumentoInventario"))));
    }
    ~DocumentoGuionado() override { m->muere(QStringLiteral("DocumentoInventario")); }

    void PonAmbiente(zuvi::Ambiente *a) override { m->anota("PonAmbiente", {nombre(a)}); }
    void PonDatoDocumento(const QVariant &d) override
    {
        m->anota("PonDatoDocumento", {AnfitrionGuionado::valor(d)});
    }
    void PonDatoFecha(qint32 d) override
    {
        s.datoFecha = d;
        m->anota("PonDatoFecha", {QString::number(d)});
    }
    void PonFecha(const QDate &f) override { m->anota("PonFecha", {f.toString(Qt::ISODate)}); }
    void PonTipo(const QString &t) override
    {
        s.tipo = t;
        m->anota("PonTipo", {AnfitrionGuionado::texto(t)});
    }
    void PonConcepto(const QString &c) override
    {
        s.concepto = c;
        m->anota("PonConcepto", {AnfitrionGuionado::texto(c)});
    }
    void PonOrden(qint32 o) override
    {
        s.orden = o;
        m->anota("PonOrden", {QString::number(o)});
    }
    void PonFolio(const QString &f) override
    {
        s.folio = f;
        m->anota("PonFolio", {AnfitrionGuionado::texto(f)});
    }
    void PonUsuario(const QString &u) override
    {
        s.usuario = u;
        m->anota("PonUsuario", {AnfitrionGuionado::texto(u)});
    }
    void PonAlmacen(double a) override
    {
        s.almacen = a;
        m->anota("PonAlmacen", {AnfitrionGuionado::numero(a)});
    }
    void PonArticulo(const QString &a) override
    {
        s.articulo = a;
        m->anota("PonArticulo", {AnfitrionGuionado::texto(a)});
    }
    void PonCantidad(double c) override
    {
        s.cantidad = c;
        m->anota("PonCantidad", {AnfitrionGuionado::numero(c)});
    }
    void PonCosto(double c) override
    {
        s.costo = c;
        m->anota("PonCosto", {AnfitrionGuionado::numero(c)});
    }
    double AplicaMovimiento(qint32 &numero) override
    {
        m->anota("AplicaMovimiento", {QString::number(numero)});
        s.documento = objectName();
        m->movimiento(s);
        return s.cantidad * s.costo;
    }

private:
    AnfitrionGuionado *m;
    MovimientoGuionado s;
};

} // namespace

AnfitrionGuionado::AnfitrionGuionado() : m_ambiente(std::make_unique<AmbienteGuionado>(this))
{
    modulo::reinicia();
    ClassRegistry &r = ClassRegistry::instance();
    r.add(QStringLiteral("AccesoDatos"), [this] { return new AccesoDatosGuionado(this); });
    r.add(QStringLiteral("ControlProcesos"), [this] { return new ControlProcesosGuionado(this); });
    r.add(QStringLiteral("DocumentoInventario"), [this] { return new DocumentoGuionado(this); });
    r.add(QStringLiteral("VentanaProgreso"), [this] { return new VentanaProgresoGuionada(this); });
    setReportSink([this](const QString &, const QString &texto) {
        m_reportes << texto;
        anota(QStringLiteral("ReportaError"), {texto});
    });
}

AnfitrionGuionado::~AnfitrionGuionado()
{
    modulo::reinicia();
    for (const QString &c : kClases)
        ClassRegistry::instance().remove(c);
    setReportSink(nullptr);
}

zuvi::Ambiente *AnfitrionGuionado::ambiente() const
{
    return m_ambiente.get();
}

void AnfitrionGuionado::responde(const QString &sql, const Recordset &rs, bool prefijo)
{
    m_respuestas << Respuesta{sql, prefijo, rs};
}

void AnfitrionGuionado::fallaConsultaTras(const QString &prefijo, int veces,
                                          const QString &descripcion)
{
    m_fallasConsulta << Falla{prefijo, veces, descripcion, 0};
}

void AnfitrionGuionado::fallaEjecutaSQL(const QString &prefijo, const QString &descripcion)
{
    m_fallasEjecuta << qMakePair(prefijo, descripcion);
}

void AnfitrionGuionado::respuestas(std::initializer_list<bool> lista)
{
    for (bool b : lista)
        m_si.enqueue(b);
}

QStringList AnfitrionGuionado::registro(const QStringList &operaciones) const
{
    QStringList r;
    for (const QString &l : m_registro) {
        const QString op = l.section(QLatin1Char(':'), 0, 0);
        if (operaciones.contains(op))
            r << l;
    }
    return r;
}

void AnfitrionGuionado::olvida()
{
    m_registro.clear();
    m_movimientos.clear();
    m_reportes.clear();
}

DocumentoInventario *AnfitrionGuionado::nuevoDocumento()
{
    return new DocumentoGuionado(this);
}

void AnfitrionGuionado::anota(const QString &operacion, const QStringList &argumentos)
{
    m_registro << (argumentos.isEmpty()
                       ? operacion
                       : operacion + QStringLiteral(": ") + argumentos.join(QStringLiteral(" | ")));
}

RecordsetPtr AnfitrionGuionado::consulta(const QString &sql)
{
    anota(QStringLiteral("Consulta"), {sql});
    for (Falla &f : m_fallasConsulta) {
        if (sql.startsWith(f.prefijo) && ++f.vistas > f.veces)
            throw Error(f.descripcion);
    }
    const Respuesta *mejor = nullptr;
    // A later answer for the same text replaces an earlier one.
    for (auto it = m_respuestas.crbegin(); it != m_respuestas.crend(); ++it) {
        const Respuesta &r = *it;
        if (r.sql == sql && !r.prefijo)
            return std::make_shared<Recordset>(r.rs);
        if (r.prefijo && sql.startsWith(r.sql) && (!mejor || r.sql.size() > mejor->sql.size()))
            mejor = &r;
    }
    return mejor ? std::make_shared<Recordset>(mejor->rs) : std::make_shared<Recordset>();
}

bool AnfitrionGuionado::pregunta()
{
    return m_si.isEmpty() ? false : m_si.dequeue();
}

void AnfitrionGuionado::ejecutaSQL(const QString &sql)
{
    anota(QStringLiteral("EjecutaSQL"), {sql});
    for (const auto &f : std::as_const(m_fallasEjecuta)) {
        if (sql.startsWith(f.first))
            throw Error(f.second);
    }
}

void AnfitrionGuionado::nace(const QString &clase)
{
    ++m_vivos[clase];
    ++m_creados[clase];
}

QString AnfitrionGuionado::texto(const QString &s)
{
    if (s.isNull())
        return QStringLiteral("nulo");
    return s.isEmpty() ? QStringLiteral("''") : s;
}

QString AnfitrionGuionado::valor(const QVariant &v)
{
    if (!v.isValid())
        return QStringLiteral("vacío");
    const QString tipo = QString::fromLatin1(v.metaType().name());
    if (v.typeId() == QMetaType::QString)
        return tipo + QLatin1Char(':') + texto(v.toString());
    return tipo + QLatin1Char(':') + (v.isNull() ? QStringLiteral("nulo") : v.toString());
}

QString AnfitrionGuionado::numero(double d)
{
    return QString::number(d, 'g', 15);
}

} // namespace zuvi::pruebas
