// The component as a host sees it: a plugin found through the registration
// file, created by name, driven through its meta-object.

#include "component/Identidad.h"
#include "component/Produccion.h"
#include "runtime/ComponentRegistry.h"
#include "runtime/Error.h"

#include <QFileInfo>
#include <QLibrary>
#include <QMetaMethod>
#include <QMetaProperty>
#include <QSettings>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

using namespace zuvi;

namespace {

const QString kProgId = QStringLiteral("ZuviProduccion.Produccion");

QString rutaPlugin()
{
    return QStringLiteral(ZUVI_BIN_DIR "/ZuviProduccion.so");
}

// Only the type matters here: the tests never reach the database.
class AmbienteVacio : public Ambiente
{
public:
    QSqlDatabase Conexion() const override { return {}; }
    QString UsuarioActual() const override { return QStringLiteral("PRUEBA"); }
    QString RutaAplicacion() const override { return QString(); }
    QVariant EjecutaSQL(const QString &) override { return {}; }
    qint32 DatoFechaA() const override { return 0; }
    qint32 DatoFechaB() const override { return 0; }
    QVariant DatoDocumento() const override { return {}; }
    RecordsetPtr ParametrosEstacion() override { return {}; }
    QObject *ContenedorRutas() override { return nullptr; }
};

using Entrada = int (*)(const char *);

Entrada entrada(QLibrary &biblioteca, const char *nombre)
{
    return reinterpret_cast<Entrada>(biblioteca.resolve(nombre));
}

// Invokes a method by its normalized signature with arguments already of the
// declared types; returns the result (invalid for void).
QVariant invoca(QObject *objeto, const QByteArray &firma, const QVariantList &args)
{
    const QMetaObject *mo = objeto->metaObject();
    const int i = mo->indexOfMethod(QMetaObject::normalizedSignature(firma.constData()));
    if (i < 0)
        throw Error(QStringLiteral("sin método ") + QString::fromLatin1(firma));
    const QMetaMethod m = mo->method(i);
    QGenericArgument a[4];
    for (int k = 0; k < args.size(); ++k)
        a[k] = QGenericArgument(m.parameterTypes().at(k).constData(), args.at(k).constData());
    QVariant resultado;
    QGenericReturnArgument r;
    if (m.returnMetaType().id() != QMetaType::Void) {
        resultado = QVariant(m.returnMetaType());
        r = QGenericReturnArgument(m.typeName(), resultado.data());
    }
    if (!m.invoke(objeto, Qt::DirectConnection, r, a[0], a[1], a[2], a[3]))
        throw Error(QStringLiteral("no se pudo invocar ") + QString::fromLatin1(firma));
    return resultado;
}

} // namespace

class TstComponente : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    QString m_registro;
    QLibrary m_plugin{rutaPlugin()};

    std::unique_ptr<QObject> creaRegistrado()
    {
        return std::unique_ptr<QObject>(components::createObject(kProgId, m_registro));
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        m_registro = m_dir.filePath(QStringLiteral("componentes.ini"));
        QVERIFY2(m_plugin.load(), qPrintable(m_plugin.errorString()));
        Entrada registra = entrada(m_plugin, "ZuviRegistraServidor");
        QVERIFY(registra);
        QCOMPARE(registra(QFile::encodeName(m_registro).constData()), 0);
    }

    void registrationFileNamesThePlugin()
    {
        const QString esperada = QFileInfo(rutaPlugin()).canonicalFilePath();
        QCOMPARE(QFileInfo(components::libraryFor(kProgId, m_registro)).canonicalFilePath(),
                 esperada);
        // Hosts may also bind to the class id, with or without braces.
        const QString id = QStringLiteral(ZUVI_CLASS_ID);
        QCOMPARE(QFileInfo(components::libraryFor(id, m_registro)).canonicalFilePath(), esperada);
        QCOMPARE(QFileInfo(components::libraryFor(id.mid(1, 36).toLower(), m_registro))
                     .canonicalFilePath(),
                 esperada);
    }

    void createsByNameAndById_data()
    {
        QTest::addColumn<QString>("nombre");
        QTest::newRow("progid") << kProgId;
        QTest::newRow("class id") << QStringLiteral(ZUVI_CLASS_ID);
    }

    void createsByNameAndById()
    {
        QFETCH(QString, nombre);
        std::unique_ptr<QObject> objeto(components::createObject(nombre, m_registro));
        QVERIFY(objeto);
        QCOMPARE(objeto->metaObject()->className(), "zuvi::Produccion");
        // Early binding goes through the published interface of the same
        // module the host links against: one set of meta-objects.
        QVERIFY(qobject_cast<InterfazProduccion *>(objeto.get()));
        QVERIFY(qobject_cast<Produccion *>(objeto.get()));
    }

    void registrationRoundTrip()
    {
        const QString archivo = m_dir.filePath(QStringLiteral("ida-y-vuelta.ini"));
        const QByteArray ruta = QFile::encodeName(archivo);
        QCOMPARE(entrada(m_plugin, "ZuviRegistraServidor")(ruta.constData()), 0);
        delete components::createObject(kProgId, archivo);

        QCOMPARE(entrada(m_plugin, "ZuviDesregistraServidor")(ruta.constData()), 0);
        QVERIFY(components::libraryFor(kProgId, archivo).isEmpty());
        QVERIFY(components::libraryFor(QStringLiteral(ZUVI_CLASS_ID), archivo).isEmpty());
        try {
            delete components::createObject(kProgId, archivo);
            QFAIL("se creó un componente que ya no estaba registrado");
        } catch (const Error &e) {
            QVERIFY2(e.description().contains(QStringLiteral("no está registrado")),
                     qPrintable(e.description()));
            QVERIFY(e.description().contains(kProgId));
        }
        // Unregistering leaves other entries of the file alone.
        QSettings otro(archivo, QSettings::IniFormat);
        otro.setValue(QStringLiteral("ProgID/Otra.Clase/CLSID"), QStringLiteral("{X}"));
        otro.sync();
        QCOMPARE(entrada(m_plugin, "ZuviRegistraServidor")(ruta.constData()), 0);
        QCOMPARE(entrada(m_plugin, "ZuviDesregistraServidor")(ruta.constData()), 0);
        QSettings relee(archivo, QSettings::IniFormat);
        QCOMPARE(relee.value(QStringLiteral("ProgID/Otra.Clase/CLSID")).toString(),
                 QStringLiteral("{X}"));
    }

    void nullFileMeansTheEnvironmentsRegistry()
    {
        const QString archivo = m_dir.filePath(QStringLiteral("por-entorno.ini"));
        const QByteArray antes = qgetenv("ZUVI_REGISTRO");
        qputenv("ZUVI_REGISTRO", QFile::encodeName(archivo));
        const int r = entrada(m_plugin, "ZuviRegistraServidor")(nullptr);
        qputenv("ZUVI_REGISTRO", antes);
        QCOMPARE(r, 0);
        QVERIFY(!components::libraryFor(kProgId, archivo).isEmpty());
    }

    void classInfoCarriesTheFixedIds_data()
    {
        QTest::addColumn<QString>("clave");
        QTest::addColumn<QString>("valor");
        // Hosts bind to these; a change here breaks every installed host.
        QTest::newRow("biblioteca") << "LibraryName"
                                    << "ZuviProduccion";
        QTest::newRow("id biblioteca") << "LibraryID"
                                       << "{6C1E8F3A-2B47-4D59-9E0C-7A35B1D2E864}";
        QTest::newRow("interfaz") << "InterfaceName"
                                  << "_Produccion";
        QTest::newRow("id interfaz") << "InterfaceID"
                                     << "{A9D4C2E1-5F38-4B6A-8C17-0E2F9B3D5A71}";
        QTest::newRow("clase") << "ClassName"
                               << "Produccion";
        QTest::newRow("id clase") << "ClassID"
                                  << "{3F7B9D15-C8E2-4A06-B9D3-61E4F0A8C257}";
        QTest::newRow("progid") << "ProgID"
                                << "ZuviProduccion.Produccion";
        QTest::newRow("importa") << "ImportsLibrary"
                                 << "ZuviEnviroment";
    }

    void classInfoCarriesTheFixedIds()
    {
        QFETCH(QString, clave);
        QFETCH(QString, valor);
        auto objeto = creaRegistrado();
        const QMetaObject *mo = objeto->metaObject();
        const int i = mo->indexOfClassInfo(clave.toLatin1().constData());
        QVERIFY2(i >= 0, qPrintable(clave));
        QCOMPARE(QString::fromLatin1(mo->classInfo(i).value()), valor);
    }

    void publishedMembersInOrder()
    {
        auto objeto = creaRegistrado();
        const QMetaObject *mo = objeto->metaObject();

        // Members 1-4: the two properties, read and write, of object type.
        const int ambiente = mo->indexOfProperty("Ambiente");
        const int parent = mo->indexOfProperty("Parent");
        QVERIFY(ambiente >= 0 && parent > ambiente);
        for (int i : {ambiente, parent}) {
            const QMetaProperty p = mo->property(i);
            QVERIFY(p.isReadable() && p.isWritable());
            QCOMPARE(p.metaType(), QMetaType::fromType<QObject *>());
        }

        // Members 5-13, with their argument types and names.
        struct Miembro
        {
            const char *firma;
            QMetaType resultado;
            QList<QMetaType> tipos;
            QList<QByteArray> nombres;
        };
        const QMetaType i32 = QMetaType::fromType<qint32>();
        const QMetaType texto = QMetaType::fromType<QString>();
        const QMetaType vacio = QMetaType::fromType<void>();
        const QList<Miembro> miembros = {
            {"NuevaOp()", vacio, {}, {}},
            {"ModificaOp(qint32)", vacio, {i32}, {"nOp"}},
            {"ConsultaOp(qint32)", vacio, {i32}, {"nOp"}},
            {"EntregaProductoTerminado(qint32)", vacio, {i32}, {"nOp"}},
            {"Ensamble(QString,qint32,qint32,qint32)",
             vacio,
             {texto, i32, i32, i32},
             {"Articulo", "nAlmacen", "nCantidad", "nOp"}},
            {"Desensamble(QString,double,qint32,qint32)",
             vacio,
             {texto, QMetaType::fromType<double>(), i32, i32},
             {"Articulo", "nCantidad", "nAlmacen", "nOp"}},
            {"CancelaOp(qint32)", QMetaType::fromType<qint16>(), {i32}, {"nOp"}},
            {"MuestraCapturaDeFracciones()", vacio, {}, {}},
            {"MuestraTurnos()", vacio, {}, {}},
        };
        int anterior = -1;
        for (const Miembro &m : miembros) {
            const int i = mo->indexOfMethod(QMetaObject::normalizedSignature(m.firma));
            QVERIFY2(i >= 0, m.firma);
            QVERIFY2(i > anterior, m.firma); // published order
            anterior = i;
            const QMetaMethod metodo = mo->method(i);
            QCOMPARE(metodo.access(), QMetaMethod::Public);
            QCOMPARE(metodo.returnMetaType(), m.resultado);
            QCOMPARE(metodo.parameterCount(), int(m.tipos.size()));
            for (int k = 0; k < m.tipos.size(); ++k)
                QCOMPARE(metodo.parameterMetaType(k), m.tipos.at(k));
            QCOMPARE(metodo.parameterNames(), m.nombres);
        }
        // The optional order of the kit operations may be left out by name.
        QVERIFY(mo->indexOfMethod("Ensamble(QString,int,int)") >= 0);
        QVERIFY(mo->indexOfMethod("Desensamble(QString,double,int)") >= 0);
    }

    void ambienteSetByName()
    {
        auto objeto = creaRegistrado();
        auto *interfaz = qobject_cast<InterfazProduccion *>(objeto.get());
        QVERIFY(interfaz);
        auto ambiente = std::make_unique<AmbienteVacio>();
        QVERIFY(objeto->setProperty("Ambiente", QVariant::fromValue<QObject *>(ambiente.get())));
        QCOMPARE(objeto->property("Ambiente").value<QObject *>(), ambiente.get());
        QCOMPARE(interfaz->Ambiente(), ambiente.get());

        // Something that is not an environment is not taken for one.
        QObject cualquiera;
        objeto->setProperty("Ambiente", QVariant::fromValue<QObject *>(&cualquiera));
        QCOMPARE(interfaz->Ambiente(), nullptr);

        // A released environment reads back as empty, not as a dangling pointer.
        objeto->setProperty("Ambiente", QVariant::fromValue<QObject *>(ambiente.get()));
        ambiente.reset();
        QCOMPARE(objeto->property("Ambiente").value<QObject *>(), nullptr);

        QObject padre;
        QVERIFY(objeto->setProperty("Parent", QVariant::fromValue<QObject *>(&padre)));
        QCOMPARE(interfaz->Parent(), &padre);
    }

    void cancelaOpByNameReturnsAShortBoolean()
    {
        auto objeto = creaRegistrado();
        // Without an environment the method ends silently: false, as a qint16.
        qint16 hecho = 1;
        QVERIFY(QMetaObject::invokeMethod(objeto.get(), "CancelaOp",
                                          Q_RETURN_ARG(zuvi::VBool, hecho), Q_ARG(qint32, 5)));
        QCOMPARE(hecho, qint16(0));
        const QVariant r =
            invoca(objeto.get(), "CancelaOp(qint32)", {QVariant::fromValue(qint32(5))});
        QCOMPARE(r.metaType(), QMetaType::fromType<qint16>());
        QCOMPARE(r.value<qint16>(), qint16(0));
    }

    void methodsWithoutAmbiente_data()
    {
        QTest::addColumn<QByteArray>("firma");
        QTest::addColumn<QVariantList>("args");
        QTest::addColumn<bool>("reporta");
        const QVariant uno = QVariant::fromValue(qint32(1));
        const QVariant kit = QVariant::fromValue(QStringLiteral("SOPORTE"));
        QTest::newRow("NuevaOp") << QByteArray("NuevaOp()") << QVariantList{} << false;
        QTest::newRow("ModificaOp")
            << QByteArray("ModificaOp(qint32)") << QVariantList{uno} << false;
        QTest::newRow("ConsultaOp")
            << QByteArray("ConsultaOp(qint32)") << QVariantList{uno} << false;
        QTest::newRow("EntregaProductoTerminado")
            << QByteArray("EntregaProductoTerminado(qint32)") << QVariantList{uno} << false;
        QTest::newRow("CancelaOp") << QByteArray("CancelaOp(qint32)") << QVariantList{uno} << false;
        // Only the kit operations report their errors.
        QTest::newRow("Ensamble") << QByteArray("Ensamble(QString,qint32,qint32,qint32)")
                                  << QVariantList{kit, uno, uno, uno} << true;
        QTest::newRow("Desensamble")
            << QByteArray("Desensamble(QString,double,qint32,qint32)")
            << QVariantList{kit, QVariant::fromValue(1.5), uno, QVariant::fromValue(qint32(0))}
            << true;
    }

    void methodsWithoutAmbiente()
    {
        QFETCH(QByteArray, firma);
        QFETCH(QVariantList, args);
        QFETCH(bool, reporta);
        QStringList titulos, textos;
        setReportSink([&](const QString &titulo, const QString &texto) {
            titulos << titulo;
            textos << texto;
        });
        auto objeto = creaRegistrado();
        try {
            invoca(objeto.get(), firma, args);
        } catch (...) {
            setReportSink({});
            QFAIL(qPrintable(QStringLiteral("se escapó un error: ") + describeCurrentException()));
        }
        setReportSink({});
        if (!reporta) {
            QVERIFY2(textos.isEmpty(), qPrintable(textos.join(QLatin1Char('|'))));
            return;
        }
        QCOMPARE(textos.size(), 1);
        QCOMPARE(titulos.first(), QStringLiteral("ZuviProduccion"));
        const QString procedimiento = QString::fromLatin1(firma.left(firma.indexOf('(')));
        const QString cabeza =
            QStringLiteral("Error occured:\r\nModule: Produccion\r\nFunction: ") + procedimiento +
            QStringLiteral("\r\nDescription: ");
        QVERIFY2(textos.first().startsWith(cabeza), qPrintable(textos.first()));
        QVERIFY(textos.first().size() > cabeza.size()); // some description follows
    }
};

QTEST_MAIN(TstComponente)
#include "tst_componente.moc"
