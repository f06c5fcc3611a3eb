// The arrows between the folders run one way: nothing in the module reaches
// into the host or the shell, the contract sees only the runtime, and the
// runtime has no widgets. Inside the module: core <- controls <- the windows
// (fractions, orders, shifts, none over another) <- component <- its plugin.

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QTest>

namespace {

struct Inclusion
{
    QString archivo;
    int linea = 0;
    QString cabecera;
    QString texto() const
    {
        return QStringLiteral("%1:%2 includes %3").arg(archivo).arg(linea).arg(cabecera);
    }
};

// "component/x.h" -> "component"; the plugin is a layer of its own, and a
// header without a folder has none.
QString carpetaDe(const QString &ruta)
{
    if (ruta.startsWith(QLatin1String("component/plugin/")))
        return QStringLiteral("component/plugin");
    const qsizetype barra = ruta.indexOf(u'/');
    return barra < 0 ? QString() : ruta.left(barra);
}

// Every include of the folder's own sources (not of a folder inside it that
// is a layer of its own).
QList<Inclusion> inclusionesDe(const QString &carpeta)
{
    static const QRegularExpression directiva(
        QStringLiteral("^\\s*#\\s*include\\s*[<\"]([^>\"]+)[>\"]"));
    QList<Inclusion> lista;
    const QString raiz = QStringLiteral(ZUVI_SOURCE_DIR "/") + carpeta;
    QDirIterator it(raiz, {"*.h", "*.cpp", "*.ui"}, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        QFile f(it.next());
        const QString archivo =
            QDir(QStringLiteral(ZUVI_SOURCE_DIR)).relativeFilePath(f.fileName());
        if (carpetaDe(archivo) != carpeta || !f.open(QIODevice::ReadOnly | QIODevice::Text))
            continue;
        int n = 0;
        while (!f.atEnd()) {
            ++n;
            const auto m = directiva.match(QString::fromUtf8(f.readLine()));
            if (m.hasMatch())
                lista.append({archivo, n, m.captured(1)});
        }
    }
    return lista;
}

} // namespace

class TstCapas : public QObject
{
    Q_OBJECT

private slots:
    void carpetasPermitidas_data()
    {
        QTest::addColumn<QString>("carpeta");
        QTest::addColumn<QStringList>("permitidas");
        const QStringList core = {"runtime", "contract", "core"};
        const QStringList controls = core + QStringList{"controls"};
        const QStringList component =
            controls + QStringList{"fractions", "orders", "shifts", "component"};
        QTest::newRow("runtime") << "runtime" << QStringList{"runtime"};
        QTest::newRow("contract") << "contract" << QStringList{"runtime", "contract"};
        QTest::newRow("core") << "core" << core;
        QTest::newRow("controls") << "controls" << controls;
        for (const char *ventanas : {"fractions", "orders", "shifts"})
            QTest::newRow(ventanas) << QString::fromLatin1(ventanas)
                                    << controls + QStringList{QString::fromLatin1(ventanas)};
        QTest::newRow("component") << "component" << component;
        QTest::newRow("component/plugin")
            << "component/plugin" << component + QStringList{"component/plugin"};
        QTest::newRow("host") << "host" << QStringList{"runtime", "contract", "host"};
        QTest::newRow("app") << "app" << QStringList{"runtime", "contract", "host", "app"};
    }

    // Our own headers are named by folder; Qt's and the system's are not (or
    // are named by their Qt module, which the next test looks at).
    void carpetasPermitidas()
    {
        QFETCH(QString, carpeta);
        QFETCH(QStringList, permitidas);
        static const QStringList nuestras = {"runtime",          "contract", "core",   "controls",
                                             "fractions",        "orders",   "shifts", "component",
                                             "component/plugin", "host",     "app",    "tests"};
        QStringList fuera;
        const QList<Inclusion> inclusiones = inclusionesDe(carpeta);
        QVERIFY2(!inclusiones.isEmpty() || carpeta == u"orders" || carpeta == u"shifts",
                 qPrintable(carpeta + " has no sources to read"));
        for (const Inclusion &i : inclusiones) {
            const QString destino = carpetaDe(i.cabecera);
            if (nuestras.contains(destino) && !permitidas.contains(destino))
                fuera << i.texto();
        }
        QVERIFY2(fuera.isEmpty(), qPrintable(fuera.join(u'\n')));
    }

    void runtimeSinWidgets()
    {
        const QDir widgets(QStringLiteral(ZUVI_QTWIDGETS_DIR));
        QVERIFY2(widgets.exists(QStringLiteral("QWidget")), ZUVI_QTWIDGETS_DIR);
        QStringList fuera;
        for (const Inclusion &i : inclusionesDe(QStringLiteral("runtime"))) {
            const QString nombre = i.cabecera.section(u'/', -1);
            if (i.cabecera.startsWith(QLatin1String("QtWidgets")) || widgets.exists(nombre))
                fuera << i.texto();
        }
        QVERIFY2(fuera.isEmpty(), qPrintable(fuera.join(u'\n')));
    }
};

QTEST_GUILESS_MAIN(TstCapas)
#include "tst_capas.moc"
