// Two measurements of the shift module on SQLite files, each against a bare
// baseline in the same run that reads or writes the same rows:
//
// (a) the shift editor's employee lists (LLenaEmpleados, LLenaEmpleadosTurno,
//     RemueveEnTurno) over 10,000 employees, offscreen, against the same rows
//     read with the SQLite C API into plain QTreeWidgets (same items, same
//     removals);
// (b) "TURNOS003" generating a month for a shift of 2,000 employees, against
//     the same rows inserted bare in one transaction with a prepared
//     statement.
//
// The medians are printed and, last, "ratio listas: R" and "ratio
// TURNOS003: R" (module and host over bare, wall time; the same ratio of the
// thread's CPU time follows in parentheses, steadier on a shared machine).
//
// Usage: bench_turnos [runs=5] [folder for the database files]

#include "bench/Silencio.h"
#include "core/Modulo.h"
#include "host/base/Sesion.h"
#include "host/interaccion/Interaccion.h"
#include "host/procesos/Procesos.h"
#include "host/servicios/Registro.h"
#include "runtime/Error.h"
#include "shifts/frmTurno.h"

#include <QApplication>
#include <QCalendarWidget>
#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QHash>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <sqlite3.h>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <vector>

using namespace zuvi;

namespace {

constexpr int kEmpleados = 10000;
constexpr int kEnTurno = 2000;  // members of BENCH, the shift edited and generated
constexpr int kEnOtro = 3000;   // members of OTRO
const QDate kDesde(2024, 5, 1); // May 2024: 31 days, four Sundays

void ejecuta(QSqlQuery &q, const QString &sql, const QVariantList &valores = {})
{
    q.prepare(sql);
    for (int i = 0; i < valores.size(); ++i)
        q.bindValue(i, valores.at(i));
    if (!q.exec())
        throw Error(QStringLiteral("%1: %2").arg(sql, q.lastError().text()));
}

QString clave(int i)
{
    return QStringLiteral("E%1").arg(i, 5, 10, QLatin1Char('0'));
}

void creaPlantilla(const QString &ruta)
{
    anfitrion::Opciones o;
    o.base = ruta;
    std::unique_ptr<anfitrion::Sesion> s = anfitrion::Sesion::abre(o, false);
    QSqlDatabase db = s->conexion();
    db.transaction();
    QSqlQuery q(db);
    ejecuta(q, "INSERT INTO turnos (turno, entrada, comida, salida, descanso, regcomida) VALUES "
               "('BENCH', '22:00', '02:00', '06:00', 'Dimingo', '02:30')");
    ejecuta(q, "INSERT INTO turnos (turno, entrada, comida, salida, descanso, regcomida) VALUES "
               "('OTRO', '07:00', '11:00', '15:00', 'Sabado', '11:30')");
    for (int i = 1; i <= kEmpleados; ++i) {
        ejecuta(q, "INSERT INTO empleados (empleado, nombre) VALUES (?, ?)",
                {clave(i), QStringLiteral("Empleado número %1").arg(i)});
        if (i % 5 == 0 && i / 5 <= kEnTurno)
            ejecuta(q, "INSERT INTO turnoempleado (turno, empleado) VALUES ('BENCH', ?)",
                    {clave(i)});
        else if (i % 3 == 0 && i / 3 <= kEnOtro)
            ejecuta(q, "INSERT INTO turnoempleado (turno, empleado) VALUES ('OTRO', ?)",
                    {clave(i)});
    }
    db.commit();
}

QString copia(const QString &plantilla, const QDir &dir, int n)
{
    const QString ruta = dir.filePath(QStringLiteral("run%1.db").arg(n));
    for (const char *sufijo : {"", "-wal", "-shm", "-journal"})
        QFile::remove(ruta + QLatin1String(sufijo));
    if (!QFile::copy(plantilla, ruta))
        throw Error(QStringLiteral("No se pudo copiar la base a %1").arg(ruta));
    return ruta;
}

struct Medida
{
    double ms = 0;        // wall time
    double cpu = 0;       // CPU time of this thread, steadier on a busy machine
    long long cuenta = 0; // items left / rows written, to check both did the same
};

double cpuMs()
{
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return t.tv_sec * 1e3 + t.tv_nsec / 1e6;
}

// Wall and CPU time of f.
template <typename F> void mide(Medida &m, F &&f)
{
    QElapsedTimer t;
    const double c = cpuMs();
    t.start();
    f();
    m.ms = t.nsecsElapsed() / 1e6;
    m.cpu = cpuMs() - c;
}

// (a) through the window's own procedures.
Medida listasDelModulo(const QString &ruta)
{
    anfitrion::Opciones o;
    o.base = ruta;
    std::unique_ptr<anfitrion::Sesion> s = anfitrion::Sesion::abre(o, false);
    modulo::reinicia();
    Medida m;
    {
        frmTurno editor;
        editor.Ambiente = s->ambiente();
        editor.Modo = QStringLiteral("MODIFICACION");
        editor.Turno = QStringLiteral("BENCH");
        editor.cmbFields(0)->setEditText(QStringLiteral("BENCH"));
        mide(m, [&] {
            editor.LLenaEmpleados();
            editor.LLenaEmpleadosTurno();
            editor.RemueveEnTurno();
        });
        m.cuenta = editor.lv(0)->cuenta() * 100000LL + editor.lv(1)->cuenta();
    }
    modulo::reinicia();
    return m;
}

std::string columna(sqlite3_stmt *st, int i)
{
    const auto *p = reinterpret_cast<const char *>(sqlite3_column_text(st, i));
    return p ? std::string(p) : std::string();
}

sqlite3_stmt *prepara(sqlite3 *db, const char *sql)
{
    sqlite3_stmt *st = nullptr;
    if (sqlite3_prepare_v2(db, sql, -1, &st, nullptr) != SQLITE_OK)
        throw Error(QString::fromUtf8(sqlite3_errmsg(db)));
    return st;
}

// (a) bare: the same counts and rows, the same items and removals.
Medida listasBare(const QString &ruta)
{
    sqlite3 *db = nullptr;
    sqlite3_open(ruta.toUtf8().constData(), &db);
    Medida m;
    {
        QTreeWidget libres, miembros;
        libres.setColumnCount(2);
        miembros.setColumnCount(2);
        QHash<QString, QTreeWidgetItem *> porClave;
        const double c = cpuMs();
        QElapsedTimer t;
        t.start();
        const auto llena = [&](QTreeWidget &lista, const char *cuenta, const char *filas,
                               QHash<QString, QTreeWidgetItem *> *indice) {
            sqlite3_stmt *conteo = prepara(db, cuenta);
            sqlite3_step(conteo);
            sqlite3_finalize(conteo);
            sqlite3_stmt *f = prepara(db, filas);
            while (sqlite3_step(f) == SQLITE_ROW) {
                auto *el = new QTreeWidgetItem;
                const QString k = QString::fromStdString(columna(f, 0));
                el->setText(0, k);
                el->setText(1, QString::fromStdString(columna(f, 1)));
                lista.addTopLevelItem(el);
                if (indice)
                    indice->insert(QStringLiteral("P") + k, el);
            }
            sqlite3_finalize(f);
        };
        llena(libres, "SELECT COUNT( * ) FROM empleados",
              "SELECT * FROM empleados ORDER BY empleado", &porClave);
        llena(miembros, "SELECT COUNT( * ) FROM turnoempleado WHERE turno = 'BENCH'",
              "SELECT turnoempleado.empleado, empleados.nombre FROM turnoempleado LEFT JOIN "
              "empleados USING( empleado ) WHERE turno = 'BENCH' ORDER BY empleado",
              nullptr);
        sqlite3_stmt *todos = prepara(db, "SELECT * FROM turnoempleado");
        while (sqlite3_step(todos) == SQLITE_ROW)
            delete porClave.take(QStringLiteral("P") + QString::fromStdString(columna(todos, 1)));
        sqlite3_finalize(todos);
        m.ms = t.nsecsElapsed() / 1e6;
        m.cpu = cpuMs() - c;
        m.cuenta = libres.topLevelItemCount() * 100000LL + miembros.topLevelItemCount();
    }
    sqlite3_close(db);
    return m;
}

// (b) through the host's process, handed a window as the catalogue hands itself.
Medida generacionDelAnfitrion(const QString &ruta)
{
    anfitrion::Opciones o;
    o.base = ruta;
    std::unique_ptr<anfitrion::Sesion> s = anfitrion::Sesion::abre(o, false);
    QWidget ventana;
    auto *d = new QVBoxLayout(&ventana);
    auto *combo = new QComboBox;
    combo->setObjectName("Combo1");
    combo->addItems({QStringLiteral("Día"), QStringLiteral("Semana"), QStringLiteral("Mes")});
    combo->setCurrentIndex(2);
    auto *calendario = new QCalendarWidget;
    calendario->setObjectName("MonthView1");
    calendario->setSelectedDate(kDesde);
    auto *lista = new QTreeWidget;
    lista->setObjectName("lv_0");
    lista->setProperty("ClaveSeleccionada", QStringLiteral("PBENCH"));
    d->addWidget(combo);
    d->addWidget(calendario);
    d->addWidget(lista);
    ArgumentosProceso a;
    a.proceso = QStringLiteral("TURNOS003");
    a.objeto = &ventana;
    a.ambiente = s->ambiente();
    Medida m;
    mide(m, [&] { anfitrion::manejadorProceso(a.proceso)(a); });
    QSqlQuery q(s->conexion());
    ejecuta(q, "SELECT COUNT(*) FROM horarios");
    q.next();
    m.cuenta = q.value(0).toLongLong();
    return m;
}

// (b) bare: the members read, the same rows inserted in one transaction.
Medida generacionBare(const QString &ruta)
{
    sqlite3 *db = nullptr;
    sqlite3_open(ruta.toUtf8().constData(), &db);
    Medida m;
    const double c = cpuMs();
    QElapsedTimer t;
    t.start();
    std::vector<std::string> miembros;
    sqlite3_stmt *sel =
        prepara(db, "SELECT empleado FROM turnoempleado WHERE turno = 'BENCH' ORDER BY empleado");
    while (sqlite3_step(sel) == SQLITE_ROW)
        miembros.push_back(columna(sel, 0));
    sqlite3_finalize(sel);
    sqlite3_exec(db, "BEGIN", nullptr, nullptr, nullptr);
    sqlite3_stmt *ins = prepara(db, "INSERT INTO horarios (turno, fecha, Empleado, HoraEntrada, "
                                    "comida, HoraSalida) VALUES (?, ?, ?, ?, ?, ?)");
    const QDate hasta = kDesde.addMonths(1).addDays(-1);
    for (const std::string &e : miembros) {
        for (QDate f = kDesde; f <= hasta; f = f.addDays(1)) {
            if (f.dayOfWeek() == 7)
                continue;
            const std::string fecha = f.toString(Qt::ISODate).toStdString();
            sqlite3_bind_text(ins, 1, "BENCH", -1, SQLITE_STATIC);
            sqlite3_bind_text(ins, 2, fecha.c_str(), -1, SQLITE_TRANSIENT);
            sqlite3_bind_text(ins, 3, e.c_str(), -1, SQLITE_STATIC);
            sqlite3_bind_text(ins, 4, "22:00", -1, SQLITE_STATIC);
            sqlite3_bind_text(ins, 5, "02:00", -1, SQLITE_STATIC);
            sqlite3_bind_text(ins, 6, "06:00", -1, SQLITE_STATIC);
            if (sqlite3_step(ins) != SQLITE_DONE)
                throw Error(QString::fromUtf8(sqlite3_errmsg(db)));
            sqlite3_reset(ins);
            ++m.cuenta;
        }
    }
    sqlite3_finalize(ins);
    sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr);
    m.ms = t.nsecsElapsed() / 1e6;
    m.cpu = cpuMs() - c;
    sqlite3_close(db);
    return m;
}

double mediana(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const int corridas = argc > 1 ? qMax(1, atoi(argv[1])) : 5;
    QTemporaryDir temporal;
    const QDir dir(argc > 2 ? QString::fromLocal8Bit(argv[2]) : temporal.path());
    try {
        auto silencio = std::make_shared<bench::Silencio>();
        anfitrion::ponInteraccion(silencio);
        anfitrion::registraClasesAnfitrion();
        const QString plantilla = dir.filePath(QStringLiteral("plantilla.db"));
        QFile::remove(plantilla);
        creaPlantilla(plantilla);

        std::vector<double> listas, listasB, gen, genB, cListas, cListasB, cGen, cGenB;
        for (int i = 0; i < corridas; ++i) {
            const Medida a = listasDelModulo(copia(plantilla, dir, 1));
            const Medida b = listasBare(copia(plantilla, dir, 2));
            if (a.cuenta != b.cuenta)
                throw Error(
                    QStringLiteral("Las listas difieren: %1 y %2").arg(a.cuenta).arg(b.cuenta));
            const Medida c = generacionDelAnfitrion(copia(plantilla, dir, 3));
            const Medida d = generacionBare(copia(plantilla, dir, 4));
            if (c.cuenta != d.cuenta)
                throw Error(
                    QStringLiteral("Los horarios difieren: %1 y %2").arg(c.cuenta).arg(d.cuenta));
            listas.push_back(a.ms);
            listasB.push_back(b.ms);
            gen.push_back(c.ms);
            genB.push_back(d.ms);
            cListas.push_back(a.cpu);
            cListasB.push_back(b.cpu);
            cGen.push_back(c.cpu);
            cGenB.push_back(d.cpu);
            std::printf("corrida %d: listas %.1f ms (bare %.1f), TURNOS003 %.1f ms (bare %.1f), "
                        "%lld horarios\n",
                        i + 1, a.ms, b.ms, c.ms, d.ms, c.cuenta);
        }
        if (silencio->errores)
            throw Error(QStringLiteral("Hubo %1 reportes de error").arg(silencio->errores));
        std::printf("listas: mediana %.1f ms (CPU %.1f), bare %.1f ms (CPU %.1f)\n",
                    mediana(listas), mediana(cListas), mediana(listasB), mediana(cListasB));
        std::printf("TURNOS003: mediana %.1f ms (CPU %.1f), bare %.1f ms (CPU %.1f)\n",
                    mediana(gen), mediana(cGen), mediana(genB), mediana(cGenB));
        std::printf("ratio listas: %.2f (CPU %.2f)\n", mediana(listas) / mediana(listasB),
                    mediana(cListas) / mediana(cListasB));
        std::printf("ratio TURNOS003: %.2f (CPU %.2f)\n", mediana(gen) / mediana(genB),
                    mediana(cGen) / mediana(cGenB));
    } catch (...) {
        std::fprintf(stderr, "bench_turnos: %s\n", qUtf8Printable(describeCurrentException()));
        return 1;
    }
    return 0;
}
