// The component as a host sees it: found through the registration file, driven by name.

#include "app/Componente.h"
#include "component/Produccion.h"
#include "runtime/ComponentRegistry.h"
#include "runtime/Error.h"
#include "tests/support/BaseDePrueba.h"
#include "tests/support/CapturaReportes.h"

#include <QLibrary>
#include <QSettings>
#include <QTemporaryDir>
#include <QtTest>

using namespace zuvi;

const QString kProgId = QStringLiteral(ZUVI_PROG_ID);

class TstComponente : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    const QString m_registro = m_dir.filePath(QStringLiteral("componentes.ini"));
    QLibrary m_plugin{QStringLiteral(ZUVI_BIN_DIR "/ZuviProduccion.so")};

    int llamaEntrada(const char *nombre, const QString &archivo)
    {
        auto entrada = reinterpret_cast<int (*)(const char *)>(m_plugin.resolve(nombre));
        return entrada ? entrada(QFile::encodeName(archivo).constData()) : -1;
    }

private slots:
    void initTestCase()
    {
        QVERIFY2(m_plugin.load(), qPrintable(m_plugin.errorString()));
        QCOMPARE(llamaEntrada("ZuviRegistraServidor", m_registro), 0);
    }

    void registroIdaYVuelta()
    {
        const QString archivo = m_dir.filePath(QStringLiteral("ida-y-vuelta.ini"));
        QSettings(archivo, QSettings::IniFormat).setValue("ProgID/Otra.Clase/CLSID", "{X}");
        QCOMPARE(llamaEntrada("ZuviRegistraServidor", archivo), 0);
        // By name in any case, by class id with or without braces; always the very class the host
        // links against for early binding (one set of meta-objects).
        for (const QString &nombre :
             {kProgId, QStringLiteral("zuviproduccion.PRODUCCION"), QStringLiteral(ZUVI_CLASS_ID),
              QStringLiteral(ZUVI_CLASS_ID).mid(1, 36).toLower()}) {
            std::unique_ptr<QObject> objeto(components::createObject(nombre, archivo));
            QVERIFY2(qobject_cast<Produccion *>(objeto.get()), qPrintable(nombre));
        }
        QCOMPARE(llamaEntrada("ZuviDesregistraServidor", archivo), 0);
        QVERIFY(components::libraryFor(QStringLiteral(ZUVI_CLASS_ID), archivo).isEmpty());
        QVERIFY_THROWS_EXCEPTION(Error, delete components::createObject(kProgId, archivo));
        // Other entries of the file stay.
        QCOMPARE(QSettings(archivo, QSettings::IniFormat).value("ProgID/Otra.Clase/CLSID"), "{X}");
    }

    void identidadYMiembrosPublicados()
    {
        std::unique_ptr<QObject> objeto(components::createObject(kProgId, m_registro));
        const QMetaObject *mo = objeto->metaObject();
        // Hosts bind to these; a change here breaks every installed host.
        QStringList info;
        for (int i = mo->classInfoOffset(); i < mo->classInfoCount(); ++i)
            info << QString::fromLatin1(mo->classInfo(i).name()) + u'=' + mo->classInfo(i).value();
        QCOMPARE(info.join(' '),
                 "LibraryName=ZuviProduccion LibraryID={6C1E8F3A-2B47-4D59-9E0C-7A35B1D2E864} "
                 "InterfaceName=_Produccion InterfaceID={A9D4C2E1-5F38-4B6A-8C17-0E2F9B3D5A71} "
                 "ClassName=Produccion ClassID={3F7B9D15-C8E2-4A06-B9D3-61E4F0A8C257} "
                 "ProgID=ZuviProduccion.Produccion ImportsLibrary=ZuviEnviroment");

        // Called by name without Ambiente: silent (CancelaOp false) but for these reports.
        const QHash<QString, QString> reportes = {
            {"Ensamble", "Module: Produccion\r\nFunction: Ensamble"},
            {"Desensamble", "Module: Produccion\r\nFunction: Desensamble"},
            {"MuestraCapturaDeFracciones", "Module: frmFracciones\r\nFunction: Form_Load"},
            {"MuestraTurnos", "Module: frmTurnos\r\nFunction: LLenaTurnos|Module: frmTurnos\r\n"
                              "Function: Form_Load"}};
        QStringList miembros;
        pruebas::CapturaReportes capturados;
        for (int i = mo->propertyOffset(); i < mo->propertyCount(); ++i)
            miembros << QByteArray(mo->property(i).typeName()) + ' ' + mo->property(i).name();
        for (int i = mo->methodOffset(); i < mo->methodCount(); ++i) {
            const QMetaMethod m = mo->method(i);
            const QString nombre = QString::fromLatin1(m.name());
            QStringList firma;
            for (int k = 0; k < m.parameterCount(); ++k)
                firma << m.parameterTypes().at(k) + ' ' + m.parameterNames().at(k);
            miembros << QString("%1 %2(%3)").arg(m.typeName(), nombre, firma.join(','));
            const QStringList unos(m.parameterCount(), QStringLiteral("1"));
            QCOMPARE(app::invocaPorNombre(objeto.get(), nombre, unos).valor,
                     nombre == u"CancelaOp" ? QVariant::fromValue(VFalse) : QVariant());
            QStringList textos = capturados.toma();
            for (QString &t : textos)
                t = t.section("\r\n", 1, 2);
            QCOMPARE(textos.join(u'|'), reportes.value(nombre));
        }
        // In published order; the optional order of the kit operations may be left out.
        QCOMPARE(miembros.join("; "),
                 "QObject* Ambiente; QObject* Parent; void NuevaOp(); void ModificaOp(int nOp); "
                 "void ConsultaOp(int nOp); void EntregaProductoTerminado(int nOp); "
                 "void Ensamble(QString Articulo,int nAlmacen,int nCantidad,int nOp); "
                 "void Ensamble(QString Articulo,int nAlmacen,int nCantidad); "
                 "void Desensamble(QString Articulo,double nCantidad,int nAlmacen,int nOp); "
                 "void Desensamble(QString Articulo,double nCantidad,int nAlmacen); "
                 "zuvi::VBool CancelaOp(int nOp); void MuestraCapturaDeFracciones(); "
                 "void MuestraTurnos()");
    }

    // Something that is not an environment is not taken for one; a released environment reads
    // back as empty, not as a dangling pointer.
    void ambientePuestoPorNombre()
    {
        std::unique_ptr<QObject> objeto(components::createObject(kProgId, m_registro));
        auto base = std::make_unique<pruebas::BaseDePrueba>(false);
        QObject cualquiera, *ambiente = base->ambiente();
        QVERIFY(objeto->setProperty("Ambiente", QVariant::fromValue(ambiente)));
        QCOMPARE(qobject_cast<InterfazProduccion *>(objeto.get())->Ambiente(), base->ambiente());
        objeto->setProperty("Ambiente", QVariant::fromValue(&cualquiera));
        QCOMPARE(objeto->property("Ambiente").value<QObject *>(), nullptr);
        objeto->setProperty("Ambiente", QVariant::fromValue(ambiente));
        base.reset();
        QCOMPARE(objeto->property("Ambiente").value<QObject *>(), nullptr);
    }
};

QTEST_MAIN(TstComponente)
#include "tst_componente.moc"
