// The locale chosen before any window and Qt's own texts in Spanish: the
// distribution's translations and ours for what they lack.

#include "app/Idioma.h"
#include "runtime/Error.h"

#include <QAction>
#include <QLineEdit>
#include <QMenu>
#include <QtTest>

#include <memory>

using namespace zuvi;

class TstIdioma : public QObject
{
    Q_OBJECT

private slots:
    void eligeIdioma()
    {
        const struct
        {
            const char *opcion, *entorno, *esperado; // esperado empty: refused
        } casos[] = {
            {"", "", "es_MX"},   {"", "es_CO.UTF-8", "es_CO"}, {"es-AR", "es_CO", "es_AR"},
            {"es", "", "es_ES"}, {"en_US.UTF-8", "", ""},      {"pt_BR", "", ""},
            {"", "C", ""},
        };
        for (const auto &caso : casos) {
            qputenv("ZUVI_IDIOMA", caso.entorno);
            const QString opcion = QString::fromLatin1(caso.opcion);
            if (!*caso.esperado)
                QVERIFY_THROWS_EXCEPTION(Error, app::eligeIdioma(opcion));
            else
                QCOMPARE(app::eligeIdioma(opcion).name(), QString::fromLatin1(caso.esperado));
        }
    }

    // What a clerk meets: the buttons, the calendar, the print dialog (a text
    // of ours), a text field's menu.
    void textosDeQtEnEspanol()
    {
        QVERIFY(app::instalaIdioma(QLocale(QLocale::Spanish, QLocale::Mexico)));
        QCOMPARE(QLocale().monthName(11), QStringLiteral("noviembre"));
        QCOMPARE(QLocale().dayName(1, QLocale::ShortFormat).left(3), QStringLiteral("lun"));
        QCOMPARE(QCoreApplication::translate("QPlatformTheme", "OK"), QStringLiteral("Aceptar"));
        QCOMPARE(QCoreApplication::translate("QPrintSettingsOutput", "Double Sided Printing"),
                 QStringLiteral("Impresión a doble cara"));
        QLineEdit campo;
        std::unique_ptr<QMenu> menu(campo.createStandardContextMenu());
        QStringList textos;
        for (const QAction *a : menu->actions())
            textos << a->text().section(QLatin1Char('\t'), 0, 0); // without the shortcut
        QVERIFY2(textos.contains(QStringLiteral("&Deshacer")) &&
                     textos.contains(QStringLiteral("Seleccionar todo")),
                 qPrintable(textos.join(QLatin1Char('|'))));
    }
};

QTEST_MAIN(TstIdioma)
#include "tst_idioma.moc"
