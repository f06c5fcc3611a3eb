// Who signs in and what each account may do: on SQLite the files are private
// to their owner; on MariaDB the server checks the accounts and their roles.

#include "app/Componente.h"
#include "app/VentanaPrincipal.h"
#include "host/reportes/RolMes.h"
#include "tests/support/BaseDePrueba.h"
#include "tests/support/Corrida.h"

#include <QAction>
#include <QDirIterator>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <pwd.h>
#include <unistd.h>

using namespace zuvi;
using pruebas::corre;
using pruebas::Corrida;

class TstCuentas : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;

    static bool privado(const QString &ruta)
    {
        return !(QFileInfo(ruta).permissions() &
                 (QFile::ReadGroup | QFile::ReadOther | QFile::WriteGroup | QFile::WriteOther |
                  QFile::ExeGroup | QFile::ExeOther));
    }

private slots:
    void sqliteArchivosPrivados()
    {
        if (pruebas::BaseDePrueba::enMariaDB())
            QSKIP("Sólo SQLite.");
        const QString base = m_dir.filePath("nueva/sub/prod.db");
        const Corrida c = corre({"crea-base", "--demo", "--base", base});
        QVERIFY2(c.codigo == 0, c.dice());
        for (const QString &r : {base, m_dir.filePath("nueva"), m_dir.filePath("nueva/sub")})
            QVERIFY2(privado(r), qPrintable(r));
        // Without --usuario, who saves is the system's user.
        const Corrida e = corre({"entrega", "1", "--si", "--base", base});
        QVERIFY2(e.codigo == 0, e.dice());
        anfitrion::Opciones o;
        o.base = base;
        auto s = anfitrion::Sesion::abre(o, false);
        QCOMPARE(pruebas::filas(s->conexion(), "SELECT DISTINCT usuario FROM movimientos"),
                 QStringList{QString::fromLocal8Bit(getpwuid(getuid())->pw_name)});
        const QString pdf = m_dir.filePath("reportes/mayo/rol.pdf");
        anfitrion::escribeRolMesPdf(anfitrion::leeRolMes(s->conexion(), 2024, 5), pdf);
        QVERIFY(privado(m_dir.filePath("reportes")) && privado(m_dir.filePath("reportes/mayo")));
    }

    void mariadbRolesDelServidor()
    {
        if (!pruebas::BaseDePrueba::enMariaDB())
            QSKIP("Sólo MariaDB.");
        pruebas::preparaRegistro();
        pruebas::BaseDePrueba base;
        const QString admin = base.url();
        const QString sufijo = QString::number(QCoreApplication::applicationPid());
        const QString traza = m_dir.filePath("traza.sql");
        QStringList claves;
        // A private option file per account: the password never on a command line.
        const auto direccion = [&](const QString &cuenta, const QString &clave) {
            const QString cnf = m_dir.filePath(cuenta + ".cnf");
            QFile f(cnf);
            f.open(QIODevice::WriteOnly);
            f.write("[client]\npassword=" + clave.toUtf8() + "\n");
            f.close();
            f.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
            return QString(admin).replace("ADMIN@", cuenta + '@') + "?opciones=" + cnf;
        };
        const auto comoAdmin = [&](const QStringList &args, const QByteArray &entrada = {}) {
            bool visible = false;
            const Corrida c = corre(
                args + QStringList{"--base", admin},
                [&] {
                    QProcess ps;
                    ps.start("ps", {"-eo", "args"});
                    ps.waitForFinished();
                    const QByteArray procesos = ps.readAllStandardOutput();
                    for (const QString &clave : claves)
                        visible = visible || procesos.contains(clave.toUtf8());
                },
                entrada);
            QVERIFY2(!visible, "La clave se vio en la lista de procesos.");
            QVERIFY2(c.codigo == 0, c.dice());
        };
        struct Caso
        {
            const char *rol;
            QStringList orden; // what the role may not do
            const char *hace_falta;
        };
        const Caso casos[] = {
            {"consulta", {"entrega", "1", "--si"}, "hace falta el rol zuvi_"},
            {"captura", {"cancela", "3", "--si"}, "hace falta el rol zuvi_supervisor"},
            {"produccion", {"cancela", "3", "--si"}, "hace falta el rol zuvi_supervisor"},
            {"supervisor",
             {"usuario", "alta", "otro" + sufijo, "--rol", "consulta"},
             "hace falta el rol zuvi_admin"},
        };
        const QString antes = base.filas("SELECT op, estado, cerrado FROM op").join(';') +
                              base.filas("SELECT COUNT(*) FROM movimientos").join(';');
        for (const Caso &c : casos) {
            const QString cuenta = QString(c.rol) + sufijo, clave = "Cl4ve'" + cuenta;
            claves << clave;
            comoAdmin({"usuario", "alta", cuenta, "--rol", c.rol},
                      (clave + '\n' + clave + '\n').toUtf8());
            const Corrida r = corre(
                c.orden + QStringList{"--base", direccion(cuenta, clave), "--traza-sql", traza}, {},
                "x\nx\n");
            QVERIFY2(r.codigo == 1 && r.error.contains(c.hace_falta), r.dice());
        }
        QCOMPARE(base.filas("SELECT op, estado, cerrado FROM op").join(';') +
                     base.filas("SELECT COUNT(*) FROM movimientos").join(';'),
                 antes);

        const QString cap = "captura" + sufijo, url = direccion(cap, "Cl4ve'" + cap);
        {
            // The shell offers what the role allows.
            anfitrion::Opciones o;
            o.base = url;
            auto sesion = anfitrion::Sesion::abre(o, false);
            auto produccion = app::creaProduccion(sesion->ambiente());
            app::VentanaPrincipal ventana(*sesion, produccion.get());
            QCOMPARE(sesion->opciones().usuario, cap);
            QVERIFY(ventana.findChild<QAction *>("actNueva")->isEnabled());
            QVERIFY(!ventana.findChild<QAction *>("actTurnos")->isEnabled());
        }
        // The same account with zuvi_supervisor cancels; what it saves carries its name.
        comoAdmin({"usuario", "roles", cap, "--rol", "supervisor"});
        QVERIFY(corre({"usuario", "lista", "--base", admin})
                    .salida.contains(cap + "\tzuvi_supervisor"));
        Corrida r = corre({"cancela", "3", "--si", "--base", url, "--traza-sql", traza});
        QVERIFY2(r.codigo == 0, r.dice());
        r = corre({"entrega", "1", "--si", "--base", url, "--traza-sql", traza});
        QVERIFY2(r.codigo == 0, r.dice());
        QCOMPARE(base.filas("SELECT COUNT(*) FROM op WHERE op = 3"), QStringList{"0"});
        QCOMPARE(base.filas("SELECT DISTINCT usuario FROM movimientos"), QStringList{cap});

        // A wrong password is refused; a file others may read is refused by name.
        r = corre({"entrega", "1", "--base", QString(admin).replace("ADMIN@", cap + '@')}, {},
                  "mala\n");
        QVERIFY2(r.codigo == 1 && r.error.contains("rechazó la cuenta") &&
                     !r.error.contains("mala"),
                 r.dice());
        QFile(m_dir.filePath(cap + ".cnf")).setPermissions(QFile::ReadOwner | QFile::ReadOther);
        r = corre({"entrega", "1", "--base", url});
        QVERIFY2(r.codigo == 1 && r.error.contains(cap + ".cnf") && r.error.contains("otros"),
                 r.dice());

        for (const Caso &c : casos)
            comoAdmin({"usuario", "baja", QString(c.rol) + sufijo});
        // No password in the trace nor in the program's own files.
        QDirIterator archivos(QFileInfo(qEnvironmentVariable("XDG_DATA_HOME")).path(), QDir::Files,
                              QDirIterator::Subdirectories);
        QStringList revisados{traza};
        while (archivos.hasNext())
            revisados << archivos.next();
        for (const QString &ruta : revisados) {
            QFile f(ruta);
            QVERIFY(f.open(QIODevice::ReadOnly));
            const QByteArray texto = f.read(1 << 22);
            for (const QString &clave : claves)
                QVERIFY2(!texto.contains(clave.toUtf8()), qPrintable(ruta));
        }
        QVERIFY(QFileInfo(traza).size() > 0);
    }
};

QTEST_MAIN(TstCuentas)
#include "tst_cuentas.moc"
