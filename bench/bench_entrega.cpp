// Delivers one order of 1,000 lines, each a kit of five components, on an
// SQLite file database in WAL mode, two ways that read and write the same
// rows: through the component and the reference host, and bare, with the
// SQLite C API (prepared statements reused, one autocommitted statement per
// write). The two alternate on fresh copies of one database; the medians are
// printed and, last, "ratio: R" (component and host over bare).
//
// Usage: bench_entrega [runs=7] [folder for the database files]

#include "component/Modulo.h"
#include "component/Produccion.h"
#include "host/Anfitrion.h"
#include "host/Interaccion.h"
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

constexpr int kLineas = 1000;
constexpr int kKits = 50;
constexpr int kComponentes = 5;
constexpr int kOrden = 7001;
constexpr int kAlmacen = 3;

// Progress and messages go nowhere: the benchmark measures the work.
class Silencio : public anfitrion::Interaccion
{
    class Nada : public anfitrion::IndicadorProgreso
    {
    public:
        void inicia(int, const QString &, const QString &) override {}
        void avanza(int, const QString &, const QString &) override {}
        void cierra() override {}
    };

public:
    void mensaje(const QString &, int) override {}
    bool pregunta(const QString &) override { return false; }
    void reporte(const QString &, const QString &) override {}
    std::unique_ptr<anfitrion::IndicadorProgreso> progreso() override
    {
        return std::make_unique<Nada>();
    }
};

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
    for (int i = 0; i < kLineas; ++i)
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

Resultado conComponente(const QString &ruta)
{
    Resultado r;
    {
        anfitrion::Opciones o;
        o.base = ruta;
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
        p.EntregaProductoTerminado(kOrden);
        r.ms = t.nsecsElapsed() / 1e6;
        modulo::reinicia();
        setReportSink(nullptr);
        if (errores)
            throw Error(QStringLiteral("La entrega reportó %1 errores").arg(errores));
    }
    revisa(ruta, r);
    return r;
}

// The bare way: the same statements, prepared once and reused.
class Bare
{
public:
    explicit Bare(const QString &ruta)
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

    void entrega(int op)
    {
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
};

Resultado bare(const QString &ruta)
{
    Resultado r;
    {
        Bare b(ruta);
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

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const int corridas = argc > 1 ? std::max(1, atoi(argv[1])) : 7;
    try {
        QTemporaryDir temporal(argc > 2 ? QString::fromLocal8Bit(argv[2]) + "/bench-XXXXXX"
                                        : QDir::tempPath() + "/bench-XXXXXX");
        const QDir dir(temporal.path());
        const QString plantilla = dir.filePath(QStringLiteral("plantilla.db"));
        anfitrion::registraClasesAnfitrion();
        anfitrion::ponInteraccion(std::make_shared<Silencio>());
        creaPlantilla(plantilla);

        std::vector<double> comp, base;
        Resultado rc, rb;
        for (int i = 0; i < corridas; ++i) {
            rc = conComponente(copia(plantilla, dir, 2 * i));
            rb = bare(copia(plantilla, dir, 2 * i + 1));
            comp.push_back(rc.ms);
            base.push_back(rb.ms);
            std::printf("run %d: component+host %.1f ms, bare %.1f ms\n", i + 1, rc.ms, rb.ms);
            if (rc.movimientos != rb.movimientos ||
                std::abs(rc.existencias - rb.existencias) > 1e-6)
                throw Error(QStringLiteral("Las dos formas no escribieron lo mismo: %1/%2 "
                                           "movimientos, %3/%4 existencias")
                                .arg(rc.movimientos)
                                .arg(rb.movimientos)
                                .arg(rc.existencias)
                                .arg(rb.existencias));
        }
        const double mc = mediana(comp), mb = mediana(base);
        std::printf("movements per run: %lld\n", rc.movimientos);
        std::printf("median component+host: %.1f ms\n", mc);
        std::printf("median bare: %.1f ms\n", mb);
        std::printf("ratio: %.2f\n", mc / mb);
    } catch (...) {
        std::fprintf(stderr, "%s\n", qUtf8Printable(describeCurrentException()));
        return 1;
    }
    return 0;
}
