#include "tests/support/AnfitrionGuionado.h"

#include "component/Modulo.h"
#include "runtime/ClassRegistry.h"
#include "runtime/Error.h"

#include <QRegularExpression>

namespace zuvi::pruebas {

namespace {

const QStringList kClases = {QStringLiteral("AccesoDatos"), QStringLiteral("ControlProcesos"),
                             QStringLiteral("DocumentoInventario"),
                             QStringLiteral("VentanaProgreso")};

QString nombre(const QObject *o)
{
    if (!o)
        return QStringLiteral("nada");
    return o->objectName().isEmpty() ? o->metaObject()->className() : o->objectName();
}

QString texto(const QString &s)
{
    return s.isNull() ? QStringLiteral("nulo") : s.isEmpty() ? QStringLiteral("''") : s;
}

QString valor(const QVariant &v)
{
    return QString::fromLatin1(v.typeName()) + QLatin1Char(':') + texto(v.toString());
}

QString numero(double d)
{
    return QString::number(d, 'g', 15);
}

// Every scripted class reports to the one host.
template <typename Base> struct Guionado : Base
{
    explicit Guionado(AnfitrionGuionado *a) : m(a) {}
    AnfitrionGuionado *m;
};

struct AmbienteGuionado : Guionado<zuvi::Ambiente>
{
    explicit AmbienteGuionado(AnfitrionGuionado *a) : Guionado(a) { setObjectName("Ambiente"); }

    QSqlDatabase Conexion() const override { return QSqlDatabase(); }
    QString UsuarioActual() const override { return QStringLiteral("PRUEBA"); }
    QString RutaAplicacion() const override { return QStringLiteral("/opt/zuvi"); }
    QVariant EjecutaSQL(const QString &sql) override
    {
        m->anota(QStringLiteral("EjecutaSQL"), {sql});
        return QVariant();
    }
    qint32 DatoFechaA() const override { return 11; }
    qint32 DatoFechaB() const override { return 22; }
    QVariant DatoDocumento() const override { return QStringLiteral("DOC"); }
    RecordsetPtr ParametrosEstacion() override { return std::make_shared<Recordset>(); }
    QObject *ContenedorRutas() override { return nullptr; }
};

// Only what the batch operations call is logged; the rest is inert.
struct AccesoDatosGuionado : Guionado<AccesoDatos>
{
    using Guionado::Guionado;

    RecordsetPtr Consulta(const QString &sql, const QSqlDatabase &, VBool) override
    {
        return m->consulta(sql);
    }
    double ValorNumerico(const QVariant &v) override { return variantToDouble(v); }
    QString ValorTexto(const QVariant &v) override { return variantToText(v); }
    VBool EstaVacio(const QString &t) override { return toVBool(t.trimmed().isEmpty()); }
    QString TraeMensaje(qint32 n, zuvi::Ambiente *) override
    {
        return QString("Mensaje %1").arg(n);
    }
    void Mensaje(const QString &, qint32, zuvi::Ambiente *) override {}
    VBool Pregunta(const QString &t, qint32 valor) override
    {
        m->anota("Pregunta", {texto(t), QString::number(valor)});
        return toVBool(m->pregunta());
    }
    // Returns 500 and leaves 77 as the document number.
    qint32 SiguienteFolio(const QString &clave, const QSqlDatabase &, qint32 &documento,
                          ConstructorSql *constructor) override
    {
        m->anota("SiguienteFolio", {clave, QString::number(documento), nombre(constructor)});
        documento = 77;
        return 500;
    }
    QDate ComponeFecha(qint32 a, qint32 b) override
    {
        m->anota("ComponeFecha", {QString::number(a), QString::number(b)});
        return QDate(2024, 5, 17);
    }
    ConstructorSql *NuevoConstructorSql() override { throw Error(QStringLiteral("sin SQL")); }
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
    QString TextoConCeros(double, qint32) override { return QString(); }
    QString FechaSQL(const QSqlDatabase &, const QDate &) override { return QString(); }
};

struct ControlProcesosGuionado : Guionado<ControlProcesos>
{
    using Guionado::Guionado;

    void IniciaProceso(ArgumentosProceso &a) override
    {
        m->anota("IniciaProceso", {a.proceso, nombre(a.objeto), nombre(a.ambiente), valor(a.valor),
                                   nombre(a.referencia), QString::number(a.bandera),
                                   QString::number(a.numero), texto(a.texto), texto(a.textoNulo),
                                   texto(a.textoFinal), nombre(a.referenciaFinal)});
        m_ultima = a.proceso;
    }
    void ConsultaProceso(VBool &bandera) override
    {
        m->anota("ConsultaProceso", {QString::number(bandera)});
        bandera = m->vetada(m_ultima) ? VTrue : VFalse;
    }
    void ImprimeReporte(const QString &, qint32, zuvi::Ambiente *, QObject *) override {}
    void CierraProceso(qint32 v) override { m->anota("CierraProceso", {QString::number(v)}); }

private:
    QString m_ultima;
};

struct VentanaProgresoGuionada : Guionado<VentanaProgreso>
{
    explicit VentanaProgresoGuionada(AnfitrionGuionado *a) : Guionado(a) { m->nace(kClases[3]); }
    ~VentanaProgresoGuionada() override { m->muere(kClases[3]); }

    void Inicia(const QVariant &total, const QString &titulo, const QString &animacion) override
    {
        m->anota("Inicia", {valor(total), texto(titulo), texto(animacion)});
    }
    void Avanza(const QVariant &paso, const QString &l1, const QString &l2) override
    {
        m->anota("Avanza", {valor(paso), texto(l1), texto(l2)});
    }
    void Cierra() override { m->anota("Cierra"); }
};

struct DocumentoGuionado : Guionado<DocumentoInventario>
{
    explicit DocumentoGuionado(AnfitrionGuionado *a) : Guionado(a)
    {
        m->nace(kClases[2]);
        setObjectName(QStringLiteral("Documento%1").arg(m->creados(kClases[2])));
    }
    ~DocumentoGuionado() override { m->muere(kClases[2]); }

    void PonAmbiente(zuvi::Ambiente *a) override { pon("Ambiente", nombre(a)); }
    void PonDatoDocumento(const QVariant &d) override { pon("DatoDocumento", valor(d)); }
    void PonDatoFecha(qint32 d) override { pon("DatoFecha", QString::number(d)); }
    void PonFecha(const QDate &f) override { pon("Fecha", f.toString(Qt::ISODate)); }
    void PonTipo(const QString &t) override { pon("Tipo", texto(m_tipo = t)); }
    void PonConcepto(const QString &c) override { pon("Concepto", texto(c)); }
    void PonOrden(qint32 o) override { pon("Orden", QString::number(m_orden = o)); }
    void PonFolio(const QString &f) override { pon("Folio", texto(f)); }
    void PonUsuario(const QString &u) override { pon("Usuario", texto(u)); }
    void PonAlmacen(double a) override { pon("Almacen", numero(m_almacen = a)); }
    void PonArticulo(const QString &a) override { pon("Articulo", texto(m_articulo = a)); }
    void PonCantidad(double c) override { pon("Cantidad", numero(m_cantidad = c)); }
    void PonCosto(double c) override { pon("Costo", numero(m_costo = c)); }
    double AplicaMovimiento(qint32 &n) override
    {
        pon("Aplica", QString::number(n));
        m->movimiento(QStringList{objectName(), m_tipo, QString::number(m_orden), numero(m_almacen),
                                  m_articulo, numero(m_cantidad)}
                          .join(QLatin1Char(' ')));
        return m_cantidad * m_costo;
    }

private:
    void pon(const char *campo, const QString &v) { m->pon(objectName(), campo, v); }

    QString m_tipo, m_articulo;
    qint32 m_orden = 0;
    double m_almacen = 0, m_cantidad = 0, m_costo = 0;
};

} // namespace

AnfitrionGuionado::AnfitrionGuionado() : m_ambiente(std::make_unique<AmbienteGuionado>(this))
{
    modulo::reinicia();
    ClassRegistry &r = ClassRegistry::instance();
    r.add(kClases.at(0), [this] { return new AccesoDatosGuionado(this); });
    r.add(kClases.at(1), [this] { return new ControlProcesosGuionado(this); });
    r.add(kClases.at(2), [this] { return new DocumentoGuionado(this); });
    r.add(kClases.at(3), [this] { return new VentanaProgresoGuionada(this); });
    setReportSink([this](const QString &, const QString &t) {
        m_reportes << t;
        anota(QStringLiteral("ReportaError"), {t});
    });
}

AnfitrionGuionado::~AnfitrionGuionado()
{
    modulo::reinicia();
    for (const QString &c : kClases)
        ClassRegistry::instance().remove(c);
    setReportSink(nullptr);
}

void AnfitrionGuionado::anota(const QString &operacion, const QStringList &argumentos)
{
    m_registro << (argumentos.isEmpty()
                       ? operacion
                       : operacion + QStringLiteral(": ") + argumentos.join(QStringLiteral(" | ")));
}

QStringList AnfitrionGuionado::registro(const QStringList &operaciones) const
{
    return m_registro.filter(QRegularExpression("^(" + operaciones.join('|') + ")(:|$)"));
}

RecordsetPtr AnfitrionGuionado::consulta(const QString &sql)
{
    anota(QStringLiteral("Consulta"), {sql});
    auto falla = m_fallas.find(sql);
    if (falla != m_fallas.end() && falla->first-- <= 0)
        throw Error(falla->second);
    return std::make_shared<Recordset>(m_respuestas.value(sql));
}

void AnfitrionGuionado::pon(const QString &documento, const QString &campo, const QString &v)
{
    const QString prefijo = documento + QStringLiteral(": ");
    const QString entrada = campo + QLatin1Char('=') + v;
    if (!m_registro.isEmpty() && m_registro.last().startsWith(prefijo) &&
        !m_registro.last().contains(QStringLiteral(" Aplica=")))
        m_registro.last() += QLatin1Char(' ') + entrada;
    else
        m_registro << prefijo + entrada;
}

} // namespace zuvi::pruebas
