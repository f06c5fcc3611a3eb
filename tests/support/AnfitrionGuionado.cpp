#include "tests/support/AnfitrionGuionado.h"

#include "core/Modulo.h"
#include "host/servicios/AccesoDatosAnfitrion.h"
#include "runtime/ClassRegistry.h"
#include "runtime/Error.h"

#include <QRegularExpression>

namespace zuvi::pruebas {

namespace {

const QStringList kClases = {"AccesoDatos", "ControlProcesos", "DocumentoInventario",
                             "VentanaProgreso"};

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

struct AccesoDatosGuionado : Guionado<anfitrion::AccesoDatosAnfitrion>
{
    using Guionado::Guionado;

    RecordsetPtr Consulta(const QString &sql, const QSqlDatabase &, VBool) override
    {
        m->anota(QStringLiteral("Consulta"), {sql});
        auto falla = m->fallas.find(sql);
        if (falla != m->fallas.end() && falla->first-- <= 0)
            throw Error(falla->second);
        return std::make_shared<Recordset>(m->respuestas.value(sql));
    }
    QString TraeMensaje(qint32 n, zuvi::Ambiente *) override
    {
        return QString("Mensaje %1").arg(n);
    }
    VBool Pregunta(const QString &t, qint32 valor) override
    {
        m->anota("Pregunta", {texto(t), QString::number(valor)});
        const bool si = m->si.startsWith('s');
        m->si.remove(0, 1);
        return toVBool(si);
    }
    // Returns 500 and leaves 77 as the document number.
    qint32 SiguienteFolio(const QString &clave, const QSqlDatabase &, qint32 &documento,
                          ConstructorSql *constructor) override
    {
        m->anota("SiguienteFolio", {clave, QString::number(documento), nombre(constructor)});
        documento = 77;
        return 500;
    }
    QDate ComponeFecha(qint32, qint32) override { return QDate(2024, 5, 17); }
};

struct ControlProcesosGuionado : Guionado<ControlProcesos>
{
    using Guionado::Guionado;

    void IniciaProceso(ArgumentosProceso &a) override
    {
        m->anota("IniciaProceso", {a.proceso, nombre(a.objeto)});
        m_ultima = a.proceso;
        if (m->sinObjeto)
            a.objeto = nullptr;
    }
    void ConsultaProceso(VBool &bandera) override
    {
        m->anota("ConsultaProceso", {QString::number(bandera)});
        bandera = toVBool(m->vetadas.contains(m_ultima));
    }
    void ImprimeReporte(const QString &, qint32, zuvi::Ambiente *, QObject *) override {}
    void CierraProceso(qint32 v) override { m->anota("CierraProceso", {QString::number(v)}); }

    QString m_ultima;
};

struct VentanaProgresoGuionada : Guionado<VentanaProgreso>
{
    using Guionado::Guionado;
    ~VentanaProgresoGuionada() override { m->anota("Libera"); }

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
        setObjectName(QStringLiteral("Documento%1").arg(++m->documentos));
    }

    void PonAmbiente(zuvi::Ambiente *a) override { pon("Ambiente", nombre(a)); }
    void PonDatoDocumento(const QVariant &d) override { pon("DatoDocumento", valor(d)); }
    void PonDatoFecha(qint32 d) override { pon("DatoFecha", QString::number(d)); }
    void PonFecha(const QDate &f) override { pon("Fecha", f.toString(Qt::ISODate)); }
    void PonTipo(const QString &t) override { pon("Tipo", texto(t)); }
    void PonConcepto(const QString &c) override { pon("Concepto", texto(c)); }
    void PonOrden(qint32 o) override { pon("Orden", QString::number(o)); }
    void PonFolio(const QString &f) override { pon("Folio", texto(f)); }
    void PonUsuario(const QString &u) override { pon("Usuario", texto(u)); }
    void PonAlmacen(double a) override { pon("Almacen", QString::number(a)); }
    void PonArticulo(const QString &a) override { pon("Articulo", texto(a)); }
    void PonCantidad(double c) override { pon("Cantidad", QString::number(c)); }
    void PonCosto(double c) override { pon("Costo", QString::number(c)); }
    double AplicaMovimiento(qint32 &) override
    {
        QStringList movimiento{objectName()};
        for (const char *campo : {"Tipo", "Orden", "Almacen", "Articulo", "Cantidad"})
            movimiento << m_campos.value(campo);
        m->movimientos << movimiento.join(QLatin1Char(' '));
        return m_campos.value("Cantidad").toDouble() * m_campos.value("Costo").toDouble();
    }

private:
    void pon(const char *campo, const QString &v) { m_campos.insert(campo, v); }

    QHash<QString, QString> m_campos; // as last set, for the movement line
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
    m_reportes = std::make_unique<CapturaReportes>(
        [this](const QString &t) { anota(QStringLiteral("ReportaError"), {t}); });
}

AnfitrionGuionado::~AnfitrionGuionado()
{
    modulo::reinicia();
    for (const QString &c : kClases)
        ClassRegistry::instance().remove(c);
}

void AnfitrionGuionado::anota(const QString &operacion, const QStringList &argumentos)
{
    registro << (argumentos.isEmpty()
                     ? operacion
                     : operacion + QStringLiteral(": ") + argumentos.join(QStringLiteral(" | ")));
}

QStringList AnfitrionGuionado::registroDe(const QStringList &operaciones) const
{
    return registro.filter(QRegularExpression("^(" + operaciones.join('|') + ")(:|$)"));
}

} // namespace zuvi::pruebas
