// How the screens that read stored history grow with it: databases of 10x,
// 100x and 1000x a base size are built on tmpfs with plain SQL inserts in
// large transactions, and each operation is measured in a process of its own
// (so its memory is its own), at each size, in one run:
//
//   principal  the main window's first screen (built, shown, painted)
//   refresco   the list after an order's editor closes (what SetFocus does),
//              the median of 21
//   fecha      the list of every order by date of issue, scrolled two pages
//   f2         the article lookup opening on the first page
//   tecla      each key typed into the lookup's search box (the slowest key)
//   rol        the month roster of every employee, read and written as PDF
//
// The base sizes: 1,000 orders of 10 lines, 1,000 articles, 10 employees
// with three months of schedules; 1000x is a million orders (ten million
// lines), a million articles and 10,000 employees. Each line prints the wall
// time, the process's peak resident memory and what the operation added to
// it; the last line is the time at the largest size over the time at the
// smallest (for the roster, which prints every employee, the time per
// employee).
//
// Usage: bench_escala [--factores 10,100,1000] [--ordenes 1000]
//                     [--articulos 1000] [--empleados 10]
//                     [--operaciones principal,refresco,fecha,f2,tecla,rol]
//                     [--carpeta /dev/shm | --mariadb mariadb://root@127.0.0.1:PORT/]
//
// BENCH_ESCALA_DETALLE=1 prints each key's time and the roster's reading
// time; BENCH_ESCALA_CONSERVA=1 keeps the databases for a look afterwards.

#include "app/ModeloOrdenes.h"
#include "app/VentanaPrincipal.h"
#include "bench/Silencio.h"
#include "host/base/Sesion.h"
#include "host/interaccion/Interaccion.h"
#include "host/reportes/RolMes.h"
#include "host/servicios/BuscaCatalogoAnfitrion.h"
#include "host/servicios/Registro.h"
#include "runtime/Error.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QHeaderView>
#include <QLineEdit>
#include <QMap>
#include <QProcess>
#include <QSqlError>
#include <QSqlQuery>
#include <QTableView>
#include <QTimer>

#include <sqlite3.h>

#include <algorithm>
#include <cstdio>
#include <memory>

using namespace zuvi;

namespace {

struct Tamanos
{
    long long ordenes = 1000, articulos = 1000, empleados = 10;
};

// The process's resident memory now and at its peak, in kB.
long long memoria(const char *campo)
{
    QFile f(QStringLiteral("/proc/self/status"));
    if (!f.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray &linea : f.readAll().split('\n'))
        if (linea.startsWith(campo))
            return linea.mid(qstrlen(campo)).trimmed().split(' ').value(0).toLongLong();
    return 0;
}

// --- building the databases -------------------------------------------------

void sql(sqlite3 *db, const char *texto)
{
    char *error = nullptr;
    if (sqlite3_exec(db, texto, nullptr, nullptr, &error) != SQLITE_OK) {
        const QString e = QString::fromUtf8(error ? error : "?");
        sqlite3_free(error);
        throw Error(QStringLiteral("%1: %2").arg(QLatin1String(texto), e));
    }
}

class Insercion
{
public:
    Insercion(sqlite3 *db, const char *texto) : m_db(db)
    {
        if (sqlite3_prepare_v2(db, texto, -1, &m_st, nullptr) != SQLITE_OK)
            throw Error(QString::fromUtf8(sqlite3_errmsg(db)));
    }
    ~Insercion() { sqlite3_finalize(m_st); }
    Insercion &entero(int i, long long v)
    {
        sqlite3_bind_int64(m_st, i, v);
        return *this;
    }
    Insercion &real(int i, double v)
    {
        sqlite3_bind_double(m_st, i, v);
        return *this;
    }
    Insercion &texto(int i, const QByteArray &v)
    {
        sqlite3_bind_text(m_st, i, v.constData(), int(v.size()), SQLITE_TRANSIENT);
        return *this;
    }
    void corre()
    {
        if (sqlite3_step(m_st) != SQLITE_DONE)
            throw Error(QString::fromUtf8(sqlite3_errmsg(m_db)));
        sqlite3_reset(m_st);
    }

private:
    sqlite3 *m_db;
    sqlite3_stmt *m_st = nullptr;
};

const char *const kPalabras[] = {"Tornillo", "Ménsula",  "Repisa",   "Bisagra",   "Tuerca",
                                 "Arandela", "Escuadra", "Jaladera", "Riel",      "Perfil",
                                 "acero",    "latón",    "aluminio", "pintado",   "galvanizado",
                                 "cromado",  "negro",    "café",     "reforzado", "ligero"};

QByteArray descripcion(long long i)
{
    const int n = int(std::size(kPalabras));
    return QStringLiteral("%1 %2 %3 %4 mm")
        .arg(QString::fromUtf8(kPalabras[i % 10]), QString::fromUtf8(kPalabras[10 + (i / 10) % 10]),
             QString::fromUtf8(kPalabras[10 + (i / 100) % (n - 10)]))
        .arg(i % 97 + 3)
        .toUtf8();
}

void construye(const QString &ruta, const Tamanos &t)
{
    for (const char *sufijo : {"", "-wal", "-shm", "-journal"})
        QFile::remove(ruta + QLatin1String(sufijo));
    {
        anfitrion::Opciones o;
        o.base = ruta;
        anfitrion::Sesion::abre(o, false); // the schema and the base rows
    }
    sqlite3 *db = nullptr;
    if (sqlite3_open(ruta.toUtf8().constData(), &db) != SQLITE_OK)
        throw Error(QStringLiteral("No se pudo abrir %1").arg(ruta));
    sql(db, "PRAGMA journal_mode = OFF");
    sql(db, "PRAGMA synchronous = OFF");
    sql(db, "BEGIN");
    {
        Insercion op(db,
                     "INSERT INTO op (op, estado, f_emision, almacen, observ, cerrado, usuario, "
                     "importe) VALUES (?, ?, ?, 1, ?, ?, 'ADMIN', ?)");
        Insercion linea(db, "INSERT INTO oppart (id_entrada, op, articulo, cantidad, precio, "
                            "terminado, partida) VALUES (?, ?, ?, ?, 10, ?, ?)");
        const QDate hoy(2026, 11, 1);
        long long entrada = 0;
        for (long long i = 1; i <= t.ordenes; ++i) {
            // Oldest first; all but the last 2% closed.
            const bool cerrada = i <= t.ordenes * 98 / 100;
            const QDate fecha = hoy.addDays(-((t.ordenes - i) * 3650 / qMax(1LL, t.ordenes)));
            op.entero(1, i)
                .texto(2, cerrada ? "TE" : "PE")
                .texto(3, fecha.toString(Qt::ISODate).toUtf8())
                .texto(4, QByteArray("Pedido del cliente ") + QByteArray::number(i % 5000))
                .entero(5, cerrada ? 1 : 0)
                .real(6, double(i % 1000))
                .corre();
            for (int p = 1; p <= 10; ++p) {
                const double cantidad = 1 + (i + p) % 7;
                linea.entero(1, ++entrada)
                    .entero(2, i)
                    .texto(3, "A" + QByteArray::number((i * 7 + p) % qMax(1LL, t.articulos) + 1))
                    .real(4, cantidad)
                    .real(5, cerrada ? cantidad : 0)
                    .entero(6, p)
                    .corre();
            }
        }
    }
    {
        Insercion prod(db, "INSERT INTO prods (articulo, descrip, unidad, kit) VALUES (?, ?, "
                           "'PZA', ?)");
        for (long long i = 1; i <= t.articulos; ++i)
            prod.texto(1, "A" + QByteArray::number(i))
                .texto(2, descripcion(i))
                .entero(3, i % 10 == 0 ? 1 : 0)
                .corre();
    }
    {
        sql(db, "INSERT INTO turnos (turno, entrada, comida, salida, descanso, regcomida) VALUES "
                "('MATUTINO', '07:00', '11:00', '15:00', 'Domingo', '11:30'), "
                "('VESPERTINO', '15:00', '19:00', '23:00', 'Sabado', '19:30')");
        Insercion empleado(db, "INSERT INTO empleados (empleado, nombre) VALUES (?, ?)");
        Insercion miembro(db, "INSERT INTO turnoempleado (turno, empleado) VALUES (?, ?)");
        Insercion horario(db, "INSERT INTO horarios (turno, fecha, Empleado, HoraEntrada, comida, "
                              "HoraSalida) VALUES (?, ?, ?, ?, ?, ?)");
        QList<QByteArray> dias;
        for (QDate d(2024, 4, 1); d < QDate(2024, 7, 1); d = d.addDays(1))
            dias << d.toString(Qt::ISODate).toUtf8();
        for (long long i = 1; i <= t.empleados; ++i) {
            const QByteArray clave = "E" + QByteArray::number(i).rightJustified(6, '0');
            const QByteArray turno = i % 2 ? "MATUTINO" : "VESPERTINO";
            empleado.texto(1, clave).texto(2, "Empleado " + QByteArray::number(i)).corre();
            miembro.texto(1, turno).texto(2, clave).corre();
            for (const QByteArray &dia : std::as_const(dias))
                horario.texto(1, turno)
                    .texto(2, dia)
                    .texto(3, clave)
                    .texto(4, i % 2 ? "07:00" : "15:00")
                    .texto(5, i % 2 ? "11:00" : "19:00")
                    .texto(6, i % 2 ? "15:00" : "23:00")
                    .corre();
        }
    }
    sql(db, "COMMIT");
    sql(db, "ANALYZE");
    sqlite3_close(db);
}

// The same rows on a MariaDB server, made by the server from its sequence
// tables (INSERT ... SELECT) in one transaction per table.
void construyeMariaDB(const QString &url, const Tamanos &t)
{
    anfitrion::Opciones o;
    o.base = url;
    auto s = anfitrion::Sesion::abre(o, false);
    QSqlDatabase db = s->conexion();
    const auto sql = [&](const QString &texto) {
        QSqlQuery q(db);
        if (!q.exec(texto))
            throw Error(QStringLiteral("%1: %2").arg(texto, q.lastError().text()));
    };
    for (const char *tabla :
         {"oppart", "op", "prods", "horarios", "turnoempleado", "empleados", "turnos"})
        sql(QStringLiteral("DELETE FROM %1").arg(QLatin1String(tabla)));
    const long long cerradas = t.ordenes * 98 / 100;
    QStringList palabras;
    for (const char *p : kPalabras)
        palabras << QLatin1Char('\'') + QString::fromUtf8(p) + QLatin1Char('\'');
    const QString primeras = palabras.mid(0, 10).join(QLatin1Char(','));
    const QString segundas = palabras.mid(10).join(QLatin1Char(','));
    if (t.ordenes > 0) {
        sql(QStringLiteral("INSERT INTO op (op, estado, f_emision, almacen, observ, cerrado, "
                           "usuario, importe) SELECT seq, IF(seq <= %2, 'TE', 'PE'), "
                           "DATE_SUB('2026-11-01', INTERVAL (%1 - seq) * 3650 DIV %1 DAY), 1, "
                           "CONCAT('Pedido del cliente ', seq MOD 5000), IF(seq <= %2, 1, 0), "
                           "'ADMIN', seq MOD 1000 FROM seq_1_to_%1")
                .arg(t.ordenes)
                .arg(cerradas));
        sql(QStringLiteral("INSERT INTO oppart (id_entrada, op, articulo, cantidad, precio, "
                           "terminado, partida) SELECT seq, (seq - 1) DIV 10 + 1, CONCAT('A', "
                           "(((seq - 1) DIV 10 + 1) * 7 + (seq - 1) MOD 10 + 1) MOD %2 + 1), 1 + "
                           "seq MOD 7, 10, IF((seq - 1) DIV 10 + 1 <= %3, 1 + seq MOD 7, 0), "
                           "(seq - 1) MOD 10 + 1 FROM seq_1_to_%1")
                .arg(t.ordenes * 10)
                .arg(qMax(1LL, t.articulos))
                .arg(cerradas));
    }
    if (t.articulos > 0)
        sql(QStringLiteral("INSERT INTO prods (articulo, descrip, unidad, kit) SELECT CONCAT('A', "
                           "seq), CONCAT(ELT(seq MOD 10 + 1, %2), ' ', ELT((seq DIV 10) MOD 10 + "
                           "1, %3), ' ', ELT((seq DIV 100) MOD 10 + 1, %3), ' ', seq MOD 97 + 3, "
                           "' mm'), 'PZA', IF(seq MOD 10 = 0, 1, 0) FROM seq_1_to_%1")
                .arg(t.articulos)
                .arg(primeras, segundas));
    if (t.empleados > 0) {
        sql(QStringLiteral("INSERT INTO turnos (turno, entrada, comida, salida, descanso, "
                           "regcomida) VALUES ('MATUTINO', '07:00', '11:00', '15:00', 'Domingo', "
                           "'11:30'), ('VESPERTINO', '15:00', '19:00', '23:00', 'Sabado', "
                           "'19:30')"));
        sql(QStringLiteral("INSERT INTO empleados (empleado, nombre) SELECT CONCAT('E', "
                           "LPAD(seq, 6, '0')), CONCAT('Empleado ', seq) FROM seq_1_to_%1")
                .arg(t.empleados));
        sql(QStringLiteral("INSERT INTO turnoempleado (turno, empleado) SELECT IF(seq MOD 2, "
                           "'MATUTINO', 'VESPERTINO'), CONCAT('E', LPAD(seq, 6, '0')) FROM "
                           "seq_1_to_%1")
                .arg(t.empleados));
        sql(QStringLiteral("INSERT INTO horarios (turno, fecha, Empleado, HoraEntrada, comida, "
                           "HoraSalida) SELECT IF(e.seq MOD 2, 'MATUTINO', 'VESPERTINO'), "
                           "DATE_ADD('2024-04-01', INTERVAL d.seq DAY), CONCAT('E', LPAD(e.seq, "
                           "6, '0')), IF(e.seq MOD 2, '07:00', '15:00'), IF(e.seq MOD 2, '11:00', "
                           "'19:00'), IF(e.seq MOD 2, '15:00', '23:00') FROM seq_1_to_%1 e, "
                           "seq_0_to_90 d")
                .arg(t.empleados));
    }
    sql(QStringLiteral("ANALYZE TABLE op, oppart, prods, horarios"));
}

// --- one operation, in a process of its own ------------------------------------

struct Medida
{
    double ms = 0;
    long long pico = 0, agregado = 0; // kB
};

std::unique_ptr<anfitrion::Sesion> abre(const QString &ruta)
{
    anfitrion::Opciones o;
    o.base = ruta;
    return anfitrion::Sesion::abre(o, false);
}

template <typename F> Medida mide(F &&f)
{
    Medida m;
    const long long antes = memoria("VmRSS:");
    QElapsedTimer t;
    t.start();
    f();
    m.ms = t.nsecsElapsed() / 1e6;
    m.pico = memoria("VmHWM:");
    m.agregado = memoria("VmRSS:") - antes;
    return m;
}

void pinta(QWidget &w)
{
    w.show();
    w.repaint();
    QCoreApplication::processEvents();
}

Medida principal(const QString &ruta, bool refresco)
{
    auto sesion = abre(ruta);
    std::unique_ptr<app::VentanaPrincipal> ventana;
    Medida m = mide([&] {
        ventana = std::make_unique<app::VentanaPrincipal>(*sesion, nullptr);
        pinta(*ventana);
    });
    if (!refresco)
        return m;
    // The order an editor had open is the one selected.
    if (auto *lista = ventana->findChild<QTableView *>(QStringLiteral("lstOrdenes")))
        lista->selectRow(0);
    if (!ventana->ordenSeleccionada())
        throw Error(QStringLiteral("La lista de órdenes está vacía."));
    // A few milliseconds: the median of 21 refreshes, so that one hiccup of
    // the machine does not make the growth.
    QList<Medida> veces;
    for (int i = 0; i < 21; ++i)
        veces << mide([&] {
            ventana->SetFocus();
            QCoreApplication::processEvents();
        });
    std::sort(veces.begin(), veces.end(),
              [](const Medida &a, const Medida &b) { return a.ms < b.ms; });
    return veces.at(veces.size() / 2);
}

// The list of every order ordered by the date of issue (a click on its
// caption), then scrolled two pages further down.
Medida porFecha(const QString &ruta)
{
    auto sesion = abre(ruta);
    app::VentanaPrincipal ventana(*sesion, nullptr);
    pinta(ventana);
    auto *lista = ventana.findChild<QTableView *>(QStringLiteral("lstOrdenes"));
    auto *estado = ventana.findChild<QComboBox *>(QStringLiteral("cmbEstado"));
    if (!lista || !estado)
        throw Error(QStringLiteral("La ventana principal no tiene su lista de órdenes."));
    // Every order, so that each size has the three pages to read.
    estado->setCurrentText(QStringLiteral("Todas"));
    return mide([&] {
        emit lista->horizontalHeader()->sectionClicked(app::ModeloOrdenes::ColEmision);
        for (int i = 0; i < 2 && lista->model()->canFetchMore({}); ++i)
            lista->model()->fetchMore({});
        lista->scrollToBottom();
        lista->repaint();
        QCoreApplication::processEvents();
    });
}

// The lookup opened through the host's service, as the editor's F2 does; the
// dialog is measured from inside once it is up, then typed into.
Medida busca(const QString &ruta, bool teclas)
{
    auto sesion = abre(ruta);
    QWidget ventana;
    auto *caja = new QLineEdit(&ventana);
    pinta(ventana);
    anfitrion::BuscaCatalogoAnfitrion servicio;
    servicio.PonAmbiente(sesion->ambiente());
    servicio.PonDestino(caja);
    Medida abrir, tecla;
    QElapsedTimer t;
    const long long antes = memoria("VmRSS:");
    QTimer::singleShot(0, [&] {
        abrir.ms = t.nsecsElapsed() / 1e6;
        abrir.pico = memoria("VmHWM:");
        abrir.agregado = memoria("VmRSS:") - antes;
        QWidget *dialogo = QApplication::activeModalWidget();
        auto *buscador = dialogo ? dialogo->findChild<QLineEdit *>("txtBuscar") : nullptr;
        if (!buscador)
            throw Error(QStringLiteral("La búsqueda no abrió."));
        for (const QChar c : QStringLiteral("mensula acero 4")) {
            const Medida k = mide([&] {
                buscador->insert(QString(c));
                dialogo->repaint();
                QCoreApplication::processEvents();
            });
            if (k.ms > tecla.ms)
                tecla = k;
            if (qEnvironmentVariableIsSet("BENCH_ESCALA_DETALLE"))
                std::fprintf(stderr, "'%s' %.1f ms\n", qUtf8Printable(buscador->text()), k.ms);
        }
        tecla.pico = memoria("VmHWM:");
        dialogo->close();
    });
    t.start();
    servicio.Muestra(QStringLiteral("Articulos"));
    return teclas ? tecla : abrir;
}

Medida rol(const QString &ruta)
{
    auto sesion = abre(ruta);
    const QString pdf = QDir::temp().filePath(QStringLiteral("bench_escala_rol.pdf"));
    Medida m = mide([&] {
        QElapsedTimer t;
        t.start();
        const anfitrion::RolMes rol = anfitrion::leeRolMes(sesion->conexion(), 2024, 5);
        if (qEnvironmentVariableIsSet("BENCH_ESCALA_DETALLE"))
            std::fprintf(stderr, "read %lld ms\n", t.elapsed());
        anfitrion::escribeRolMesPdf(rol, pdf);
    });
    QFile::remove(pdf);
    return m;
}

int midUna(const QString &operacion, const QString &ruta)
{
    Medida m;
    if (operacion == QLatin1String("principal") || operacion == QLatin1String("refresco"))
        m = principal(ruta, operacion == QLatin1String("refresco"));
    else if (operacion == QLatin1String("f2") || operacion == QLatin1String("tecla"))
        m = busca(ruta, operacion == QLatin1String("tecla"));
    else if (operacion == QLatin1String("fecha"))
        m = porFecha(ruta);
    else if (operacion == QLatin1String("rol"))
        m = rol(ruta);
    else
        throw Error(QStringLiteral("No hay una operación llamada %1.").arg(operacion));
    std::printf("%.2f %lld %lld\n", m.ms, m.pico, m.agregado);
    return 0;
}

// --- the run --------------------------------------------------------------------

QString argumento(const QStringList &a, const char *nombre, const QString &omision)
{
    const int i = a.indexOf(QLatin1String(nombre));
    return i >= 0 && i + 1 < a.size() ? a.at(i + 1) : omision;
}

int corre(const QStringList &a)
{
    Tamanos base;
    base.ordenes = argumento(a, "--ordenes", QStringLiteral("1000")).toLongLong();
    base.articulos = argumento(a, "--articulos", QStringLiteral("1000")).toLongLong();
    base.empleados = argumento(a, "--empleados", QStringLiteral("10")).toLongLong();
    const QStringList factores =
        argumento(a, "--factores", QStringLiteral("10,100,1000")).split(QLatin1Char(','));
    const QStringList operaciones =
        argumento(a, "--operaciones", QStringLiteral("principal,refresco,fecha,f2,tecla,rol"))
            .split(QLatin1Char(','));
    const QDir carpeta(argumento(a, "--carpeta", QStringLiteral("/dev/shm")));
    // A server's address ("mariadb://root@127.0.0.1:PORT/") measures there.
    const QString mariadb = argumento(a, "--mariadb", QString());

    QMap<QString, QList<double>> tiempos;
    for (const QString &factor : factores) {
        const long long f = factor.toLongLong();
        const Tamanos t{base.ordenes * f, base.articulos * f, base.empleados * f};
        const QString ruta = mariadb.isEmpty()
                                 ? carpeta.filePath(QStringLiteral("bench_escala_%1.db").arg(f))
                                 : mariadb + QStringLiteral("bench_escala_%1").arg(f);
        QElapsedTimer reloj;
        reloj.start();
        if (mariadb.isEmpty())
            construye(ruta, t);
        else
            construyeMariaDB(ruta, t);
        std::printf("%sx: %lld orders (%lld lines), %lld articles, %lld employees; built in "
                    "%.1f s\n",
                    qPrintable(factor), t.ordenes, t.ordenes * 10, t.articulos, t.empleados,
                    reloj.elapsed() / 1e3);
        std::fflush(stdout);
        for (const QString &operacion : operaciones) {
            QProcess hijo;
            hijo.setProcessChannelMode(QProcess::ForwardedErrorChannel);
            hijo.start(QCoreApplication::applicationFilePath(),
                       {QStringLiteral("--mide"), operacion, ruta});
            hijo.waitForFinished(-1);
            const QStringList r =
                QString::fromUtf8(hijo.readAllStandardOutput()).trimmed().split(QLatin1Char(' '));
            if (hijo.exitCode() != 0 || r.size() != 3) {
                std::printf("  %-10s failed\n", qPrintable(operacion));
                continue;
            }
            // The roster prints every employee, so it can only grow with
            // them: its growth is compared per employee printed.
            tiempos[operacion] << (operacion == QLatin1String("rol")
                                       ? r[0].toDouble() / double(qMax(1LL, t.empleados))
                                       : r[0].toDouble());
            std::printf("  %-10s %10.1f ms  peak %7.1f MB  added %7.1f MB\n", qPrintable(operacion),
                        r[0].toDouble(), r[1].toDouble() / 1024, r[2].toDouble() / 1024);
            std::fflush(stdout);
        }
        if (mariadb.isEmpty() && !qEnvironmentVariableIsSet("BENCH_ESCALA_CONSERVA"))
            for (const char *sufijo : {"", "-wal", "-shm", "-journal"})
                QFile::remove(ruta + QLatin1String(sufijo));
    }
    std::printf("time at %sx over time at %sx:", qPrintable(factores.last()),
                qPrintable(factores.first()));
    for (const QString &operacion : operaciones) {
        const QList<double> &v = tiempos.value(operacion);
        if (v.size() == factores.size() && v.first() > 0)
            std::printf("  %s%s %.2f", qPrintable(operacion),
                        operacion == QLatin1String("rol") ? " (per employee)" : "",
                        v.last() / v.first());
    }
    std::printf("\n");
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    auto silencio = std::make_shared<bench::Silencio>(true);
    anfitrion::ponInteraccion(silencio);
    anfitrion::registraClasesAnfitrion();
    const QStringList a = app.arguments();
    try {
        if (a.size() == 4 && a.at(1) == QLatin1String("--mide")) {
            // The offscreen platform's notices would bury the figures.
            qInstallMessageHandler(
                [](QtMsgType tipo, const QMessageLogContext &, const QString &m) {
                    if (tipo >= QtCriticalMsg)
                        std::fprintf(stderr, "%s\n", qUtf8Printable(m));
                });
            return midUna(a.at(2), a.at(3));
        }
        return corre(a);
    } catch (...) {
        std::fprintf(stderr, "bench_escala: %s\n", qUtf8Printable(describeCurrentException()));
        return 1;
    }
}
