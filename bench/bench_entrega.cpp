// Delivers one order of 1,000 lines, each a kit of five components, on an
// SQLite file database in WAL mode, two ways that read and write the same
// rows: through the component and the reference host, and bare, with the
// SQLite C API (prepared statements reused). The bare way groups its writes
// as the host does: one transaction per kit line, its components' exits and
// its entry with their stock changes. The two alternate on fresh copies of
// one database; the medians are printed and, last, "ratio: R" (component and
// host over bare).
//
// The files go to /dev/shm when there is one: on tmpfs a commit costs
// nothing, so the ratio shows the software's own cost and not the disk's.
//
// Usage: bench_entrega [runs=7] [folder] [--lineas N] [--por-escritura]
//                      [--traza file]
//   --lineas N       an order of N lines instead of 1,000
//   --por-escritura  also a bare way that commits every write on its own (the
//                    old baseline), with its ratio before the last line
//   --traza file     the component's statements, one a line, into file
//
// Under callgrind each side is counted on its own with
//   --toggle-collect='*entregaConComponente*' or --toggle-collect='*Bare::entrega*'

#include "bench/Silencio.h"
#include "component/Produccion.h"
#include "core/Modulo.h"
#include "host/base/Sesion.h"
#include "host/interaccion/Interaccion.h"
#include "host/servicios/Registro.h"
#include "host/sql/Sql.h"
#include "runtime/Error.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>

#include <sqlite3.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

using namespace zuvi;

namespace {

int lineasOrden = 1000; // --lineas
constexpr int kKits = 50;
constexpr int kComponentes = 5;
constexpr int kOrden = 7001;
constexpr int kAlmacen = 3;

void ejecuta(QSqlQuery &q, const QString &sql)
{
    if (!q.exec(sql))
        throw Error(QStringLiteral("%1: %2").arg(sql, q.lastError().text()));
}

// The template database: the host's schema, 50 kits of five components each
// (all in stock in warehouse 1) and one order of 1,000 lines over them.
void creaPlantilla(const QString &ruta)
{
    anfitrion::Opciones o;
    o.base = ruta;
    std::unique_ptr<anfitrion::Sesion> s = anfitrion::Sesion::abre(o, false);
    QSqlDatabase db = s->conexion();
    db.transaction();
    QSqlQuery q(db);
    for (int k = 0; k < kKits; ++k) {
        const QString kit = QStringLiteral("KIT-%1").arg(k, 3, 10, QLatin1Char('0'));
        ejecuta(q, QStringLiteral("INSERT INTO prods (articulo, descrip, kit, costo) VALUES "
                                  "('%1', 'Kit %1', 1, 0)")
                       .arg(kit));
        ejecuta(q, QStringLiteral("INSERT INTO componen (articulo, Minimo) VALUES ('%1', %2)")
                       .arg(kit)
                       .arg(1 + k % 3));
        for (int c = 0; c < kComponentes; ++c) {
            const QString comp = QStringLiteral("C-%1-%2").arg(k).arg(c);
            ejecuta(q, QStringLiteral("INSERT INTO prods (articulo, descrip, kit, costo) VALUES "
                                      "('%1', 'Pieza', 0, %2)")
                           .arg(comp)
                           .arg(0.25 * (c + 1)));
            ejecuta(q, QStringLiteral("INSERT INTO comppart (articulo, Componente, Cantidad, "
                                      "Almacen) VALUES ('%1', '%2', %3, 1)")
                           .arg(kit, comp)
                           .arg(c + 1));
            ejecuta(q, QStringLiteral("INSERT INTO existencias (articulo, almacen, cantidad) "
                                      "VALUES ('%1', 1, 1000000)")
                           .arg(comp));
        }
    }
    ejecuta(q, QStringLiteral("INSERT INTO op (op, estado, almacen) VALUES (%1, 'PE', %2)")
                   .arg(kOrden)
                   .arg(kAlmacen));
    for (int i = 0; i < lineasOrden; ++i)
        ejecuta(q, QStringLiteral("INSERT INTO oppart (id_entrada, op, articulo, cantidad) "
                                  "VALUES (%1, %2, 'KIT-%3', %4)")
                       .arg(i + 1)
                       .arg(kOrden)
                       .arg(i % kKits, 3, 10, QLatin1Char('0'))
                       .arg(1 + i % 4));
    db.commit();
}

QString copia(const QString &plantilla, const QDir &dir, int n)
{
    const QString ruta = dir.filePath(QStringLiteral("run%1.db").arg(n));
    for (const char *sufijo : {"", "-wal", "-shm"})
        QFile::remove(ruta + QLatin1String(sufijo));
    if (!QFile::copy(plantilla, ruta))
        throw Error(QStringLiteral("No se pudo copiar la base a %1").arg(ruta));
    return ruta;
}

struct Resultado
{
    double ms = 0;
    long long movimientos = 0;
    double existencias = 0;
};

// What a run left behind, to check that both ways did the same writes.
void revisa(const QString &ruta, Resultado &r)
{
    sqlite3 *db = nullptr;
    sqlite3_open(ruta.toUtf8().constData(), &db);
    sqlite3_stmt *st = nullptr;
    sqlite3_prepare_v2(db,
                       "SELECT (SELECT COUNT(*) FROM movimientos), (SELECT SUM(cantidad) FROM "
                       "existencias) + (SELECT SUM(terminado) FROM oppart)",
                       -1, &st, nullptr);
    if (sqlite3_step(st) == SQLITE_ROW) {
        r.movimientos = sqlite3_column_int64(st, 0);
        r.existencias = sqlite3_column_double(st, 1);
    }
    sqlite3_finalize(st);
    sqlite3_close(db);
}

// Apart, so that callgrind can count it alone.
[[gnu::noinline]] void entregaConComponente(Produccion &p)
{
    p.EntregaProductoTerminado(kOrden);
}

Resultado conComponente(const QString &ruta, const QString &traza)
{
    Resultado r;
    {
        anfitrion::Opciones o;
        o.base = ruta;
        o.trazaSql = traza;
        std::unique_ptr<anfitrion::Sesion> s = anfitrion::Sesion::abre(o, false);
        int errores = 0;
        setReportSink([&](const QString &, const QString &t) {
            ++errores;
            std::fprintf(stderr, "%s\n", qUtf8Printable(t));
        });
        modulo::reinicia();
        Produccion p;
        p.SetAmbiente(s->ambiente());
        QElapsedTimer t;
        t.start();
        entregaConComponente(p);
        r.ms = t.nsecsElapsed() / 1e6;
        modulo::reinicia();
        setReportSink(nullptr);
        anfitrion::ponTraza(QString());
        if (errores)
            throw Error(QStringLiteral("La entrega reportó %1 errores").arg(errores));
    }
    revisa(ruta, r);
    return r;
}

// The bare way: the same statements, prepared once and reused. Grouped, a
// kit line's movements (its components' exits and its entry, each with its
// stock change) go in one transaction, as the host's movement document posts
// them; otherwise every write commits on its own.
class Bare
{
public:
    Bare(const QString &ruta, bool agrupa) : m_agrupa(agrupa)
    {
        if (sqlite3_open(ruta.toUtf8().constData(), &m_db) != SQLITE_OK)
            falla("open");
        sqlite3_busy_timeout(m_db, 10000);
        exec("PRAGMA journal_mode=WAL");
    }
    ~Bare()
    {
        for (sqlite3_stmt *s : m_todas)
            sqlite3_finalize(s);
        sqlite3_close(m_db);
    }

    [[gnu::noinline]] void entrega(int op)
    {
        sqlite3_stmt *inicia = prepara("BEGIN");
        sqlite3_stmt *confirma = prepara("COMMIT");
        sqlite3_stmt *cuenta = prepara("SELECT COUNT( * ) FROM oppart WHERE op = ?");
        sqlite3_stmt *lineas = prepara("SELECT oppart.articulo, oppart.cantidad, op.almacen FROM "
                                       "oppart INNER JOIN op USING(op) WHERE op.op = ?");
        sqlite3_stmt *partes = prepara("SELECT * FROM comppart WHERE articulo = ?");
        sqlite3_stmt *receta = prepara("SELECT * FROM componen WHERE articulo = ?");
        sqlite3_stmt *prod = prepara("SELECT kit, costo FROM prods WHERE articulo = ?");
        sqlite3_stmt *mov = prepara(
            "INSERT INTO movimientos (tipo, concepto, orden, folio, usuario, fecha, almacen, "
            "articulo, cantidad, costo, importe) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
        sqlite3_stmt *exis =
            prepara("INSERT INTO existencias (articulo, almacen, cantidad) VALUES (?, ?, ?) "
                    "ON CONFLICT (articulo, almacen) DO UPDATE SET cantidad = cantidad + "
                    "excluded.cantidad");
        sqlite3_stmt *terminado = prepara("UPDATE oppart SET terminado = cantidad WHERE op = ?");

        sqlite3_bind_int(cuenta, 1, op);
        leeTodo(cuenta);
        struct Linea
        {
            std::string articulo;
            double cantidad;
            int almacen;
        };
        std::vector<Linea> ls;
        sqlite3_bind_int(lineas, 1, op);
        while (paso(lineas))
            ls.push_back({texto(lineas, 0), sqlite3_column_double(lineas, 1),
                          sqlite3_column_int(lineas, 2)});
        sqlite3_reset(lineas);

        const std::string folio = "45429";
        for (const Linea &l : ls) {
            const int kits = int(std::nearbyint(l.cantidad));
            struct Parte
            {
                std::string componente;
                double cantidad;
                int almacen;
            };
            std::vector<Parte> ps;
            sqlite3_bind_text(partes, 1, l.articulo.c_str(), -1, SQLITE_TRANSIENT);
            while (paso(partes)) {
                for (int i = 0; i < sqlite3_column_count(partes); ++i)
                    sqlite3_column_value(partes, i);
                ps.push_back({texto(partes, 2), sqlite3_column_double(partes, 3),
                              sqlite3_column_int(partes, 4)});
            }
            sqlite3_reset(partes);
            sqlite3_bind_text(receta, 1, l.articulo.c_str(), -1, SQLITE_TRANSIENT);
            double minimo = 1;
            if (paso(receta))
                minimo = sqlite3_column_double(receta, 1);
            leeTodo(receta);
            if (ps.empty())
                continue;
            double total = 0;
            if (m_agrupa)
                leeTodo(inicia);
            for (const Parte &p : ps) {
                sqlite3_bind_text(prod, 1, p.componente.c_str(), -1, SQLITE_TRANSIENT);
                double costo = 0;
                if (paso(prod))
                    costo = sqlite3_column_double(prod, 1);
                leeTodo(prod);
                const double cantidad = p.cantidad / minimo * kits;
                total +=
                    movimiento(mov, exis, "S", op, folio, p.almacen, p.componente, cantidad, costo);
            }
            movimiento(mov, exis, "E", op, folio, l.almacen, l.articulo, kits, total);
            if (m_agrupa)
                leeTodo(confirma);
        }
        sqlite3_bind_int(terminado, 1, op);
        leeTodo(terminado);
    }

private:
    double movimiento(sqlite3_stmt *mov, sqlite3_stmt *exis, const char *tipo, int op,
                      const std::string &folio, int almacen, const std::string &articulo,
                      double cantidad, double costo)
    {
        const double importe = cantidad * costo;
        sqlite3_bind_text(mov, 1, tipo, -1, SQLITE_STATIC);
        sqlite3_bind_text(mov, 2, "OP", -1, SQLITE_STATIC);
        sqlite3_bind_int(mov, 3, op);
        sqlite3_bind_text(mov, 4, folio.c_str(), -1, SQLITE_STATIC);
        sqlite3_bind_text(mov, 5, "ADMIN", -1, SQLITE_STATIC);
        sqlite3_bind_text(mov, 6, "2024-05-17", -1, SQLITE_STATIC);
        sqlite3_bind_int(mov, 7, almacen);
        sqlite3_bind_text(mov, 8, articulo.c_str(), -1, SQLITE_STATIC);
        sqlite3_bind_double(mov, 9, cantidad);
        sqlite3_bind_double(mov, 10, costo);
        sqlite3_bind_double(mov, 11, importe);
        leeTodo(mov);
        sqlite3_bind_text(exis, 1, articulo.c_str(), -1, SQLITE_STATIC);
        sqlite3_bind_int(exis, 2, almacen);
        sqlite3_bind_double(exis, 3, tipo[0] == 'E' ? cantidad : -cantidad);
        leeTodo(exis);
        return importe;
    }

    sqlite3_stmt *prepara(const char *sql)
    {
        sqlite3_stmt *s = nullptr;
        if (sqlite3_prepare_v2(m_db, sql, -1, &s, nullptr) != SQLITE_OK)
            falla(sql);
        m_todas.push_back(s);
        return s;
    }
    bool paso(sqlite3_stmt *s)
    {
        const int rc = sqlite3_step(s);
        if (rc == SQLITE_ROW)
            return true;
        if (rc != SQLITE_DONE)
            falla(sqlite3_sql(s));
        return false;
    }
    void leeTodo(sqlite3_stmt *s)
    {
        while (paso(s)) {
        }
        sqlite3_reset(s);
    }
    static std::string texto(sqlite3_stmt *s, int i)
    {
        const unsigned char *t = sqlite3_column_text(s, i);
        return t ? reinterpret_cast<const char *>(t) : "";
    }
    void exec(const char *sql) { sqlite3_exec(m_db, sql, nullptr, nullptr, nullptr); }
    [[noreturn]] void falla(const char *que)
    {
        throw Error(QStringLiteral("SQLite: %1: %2")
                        .arg(QString::fromUtf8(que), QString::fromUtf8(sqlite3_errmsg(m_db))));
    }

    sqlite3 *m_db = nullptr;
    std::vector<sqlite3_stmt *> m_todas;
    bool m_agrupa = true;
};

Resultado bare(const QString &ruta, bool agrupa)
{
    Resultado r;
    {
        Bare b(ruta, agrupa);
        QElapsedTimer t;
        t.start();
        b.entrega(kOrden);
        r.ms = t.nsecsElapsed() / 1e6;
    }
    revisa(ruta, r);
    return r;
}

double mediana(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    const size_t n = v.size();
    return n % 2 ? v[n / 2] : (v[n / 2 - 1] + v[n / 2]) / 2;
}

void comparaEscrituras(const Resultado &a, const Resultado &b)
{
    if (a.movimientos != b.movimientos || std::abs(a.existencias - b.existencias) > 1e-6)
        throw Error(QStringLiteral("Las dos formas no escribieron lo mismo: %1/%2 movimientos, "
                                   "%3/%4 existencias")
                        .arg(a.movimientos)
                        .arg(b.movimientos)
                        .arg(a.existencias)
                        .arg(b.existencias));
}

struct Argumentos
{
    int corridas = 7;
    QString carpeta;
    bool porEscritura = false;
    QString traza;
};

Argumentos leeArgumentos(const QStringList &lista)
{
    Argumentos a;
    int posicion = 0;
    for (qsizetype i = 1; i < lista.size(); ++i) {
        const QString &x = lista.at(i);
        const auto siguiente = [&] {
            if (i + 1 >= lista.size())
                throw Error(QStringLiteral("Falta el valor de %1").arg(x));
            return lista.at(++i);
        };
        if (x == QLatin1String("--lineas"))
            lineasOrden = std::max(1, siguiente().toInt());
        else if (x == QLatin1String("--por-escritura"))
            a.porEscritura = true;
        else if (x == QLatin1String("--traza"))
            a.traza = siguiente();
        else if (x.startsWith(QLatin1String("--")))
            throw Error(QStringLiteral("Opción desconocida: %1").arg(x));
        else if (posicion++ == 0)
            a.corridas = std::max(1, x.toInt());
        else
            a.carpeta = x;
    }
    if (a.carpeta.isEmpty())
        a.carpeta = QDir(QStringLiteral("/dev/shm")).exists() ? QStringLiteral("/dev/shm")
                                                              : QDir::tempPath();
    return a;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    try {
        const Argumentos args = leeArgumentos(app.arguments());
        QTemporaryDir temporal(args.carpeta + QStringLiteral("/bench-XXXXXX"));
        if (!temporal.isValid())
            throw Error(QStringLiteral("No se pudo crear la carpeta en %1").arg(args.carpeta));
        const QDir dir(temporal.path());
        const QString plantilla = dir.filePath(QStringLiteral("plantilla.db"));
        anfitrion::registraClasesAnfitrion();
        anfitrion::ponInteraccion(std::make_shared<bench::Silencio>());
        creaPlantilla(plantilla);
        std::printf("%d lines on %s\n", lineasOrden, qUtf8Printable(args.carpeta));

        std::vector<double> comp, base, suelta;
        Resultado rc, rb;
        for (int i = 0; i < args.corridas; ++i) {
            rc = conComponente(copia(plantilla, dir, 0), i == 0 ? args.traza : QString());
            rb = bare(copia(plantilla, dir, 1), true);
            comparaEscrituras(rc, rb);
            comp.push_back(rc.ms);
            base.push_back(rb.ms);
            std::printf("run %d: component+host %.1f ms, bare %.1f ms", i + 1, rc.ms, rb.ms);
            if (args.porEscritura) {
                const Resultado rs = bare(copia(plantilla, dir, 2), false);
                comparaEscrituras(rc, rs);
                suelta.push_back(rs.ms);
                std::printf(", bare committing every write %.1f ms", rs.ms);
            }
            std::printf("\n");
        }
        const double mc = mediana(comp), mb = mediana(base);
        std::printf("movements per run: %lld\n", rc.movimientos);
        std::printf("median component+host: %.1f ms\n", mc);
        std::printf("median bare: %.1f ms\n", mb);
        if (args.porEscritura) {
            const double ms = mediana(suelta);
            std::printf("median bare committing every write: %.1f ms\n", ms);
            std::printf("ratio against committing every write: %.2f\n", mc / ms);
        }
        std::printf("ratio: %.2f\n", mc / mb);
    } catch (...) {
        std::fprintf(stderr, "%s\n", qUtf8Printable(describeCurrentException()));
        return 1;
    }
    return 0;
}
