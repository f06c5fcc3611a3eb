// A keyboard session in the order editor: a new order and 100 lines added in
// barcode-reader mode, each an article code typed and Enter, through real key
// events (offscreen), on an SQLite file database. The baseline, in the same
// run, is the bare statements of those same lines: every statement the
// editor's run sent to SQLite, recorded by the library's trace hook, replayed
// in the same order and with the same transaction grouping (autocommit, and
// the numbering's own short transactions) through the SQLite C API on the
// same database, after the editor's rows were taken out again. The two
// alternate; the medians are printed and, last, "ratio: R" (editor over
// bare).
//
// Usage: bench_teclado [runs=9] [folder for the database file]

#include "bench/Comun.h"
#include "component/Produccion.h"
#include "core/Modulo.h"
#include "host/base/Sesion.h"
#include "host/interaccion/Interaccion.h"
#include "orders/frmOp.h"
#include "runtime/Error.h"

#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>

#include <sqlite3.h>

#include <algorithm>
#include <cstdio>
#include <vector>

using namespace zuvi;

namespace {

constexpr int kLineas = 100;

void ejecuta(const QSqlDatabase &db, const QString &sql)
{
    QSqlQuery q(db);
    if (!q.exec(sql))
        throw Error(QStringLiteral("%1: %2").arg(sql, q.lastError().text()));
}

QString codigo(int i)
{
    return QStringLiteral("ART-%1").arg(i, 3, 10, QLatin1Char('0'));
}

void preparaArticulos(const QSqlDatabase &db)
{
    QSqlDatabase(db).transaction();
    for (int i = 0; i < kLineas; ++i)
        // An order lists what is made: the typed articles are kits.
        ejecuta(db, QStringLiteral("INSERT INTO prods (articulo, descrip, unidad, costo_u, kit) "
                                   "VALUES ('%1', 'Artículo número %2', 'PZA', 1.5, 1)")
                        .arg(codigo(i))
                        .arg(i));
    ejecuta(db, QStringLiteral("UPDATE estaciones SET lector = 1"));
    QSqlDatabase(db).commit();
}

sqlite3 *manejador(const QSqlDatabase &db)
{
    const QVariant h = db.driver()->handle();
    if (!h.isValid() || qstrcmp(h.typeName(), "sqlite3*") != 0)
        throw Error(QStringLiteral("La conexión no es de SQLite."));
    return *static_cast<sqlite3 *const *>(h.constData());
}

// Every statement the connection starts, with its bound values.
int anota(unsigned, void *lista, void *sentencia, void *)
{
    char *sql = sqlite3_expanded_sql(static_cast<sqlite3_stmt *>(sentencia));
    if (sql)
        static_cast<std::vector<QByteArray> *>(lista)->emplace_back(sql);
    sqlite3_free(sql);
    return 0;
}

struct Sesion
{
    Produccion &p;
    sqlite3 *db;
    std::vector<QByteArray> sentencias; // the last editor run's
};

// Each key goes to the control with the focus as the window system would
// deliver it; the window repaints when the event loop runs, once at the end,
// as it does when keys arrive faster than the screen refreshes.
[[gnu::noinline]] double tecleaLineas()
{
    QElapsedTimer t;
    t.start();
    for (int i = 0; i < kLineas; ++i) {
        QTest::keyClicks(QApplication::focusWidget(), codigo(i));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    }
    QCoreApplication::processEvents();
    return t.nsecsElapsed() / 1e6;
}

// The new order, then 100 codes and Enter; only the lines are timed.
[[gnu::noinline]] double conEditor(Sesion &s)
{
    s.p.NuevaOp();
    frmOp *f = nullptr;
    for (QWidget *w : QApplication::topLevelWidgets())
        if (auto *e = qobject_cast<frmOp *>(w); e && !e->descargada())
            f = e;
    if (!f || !QTest::qWaitForWindowActive(f) || !f->Check4->isChecked())
        throw Error(QStringLiteral("El editor no se abrió en modo lector."));
    s.sentencias.clear();
    sqlite3_trace_v2(s.db, SQLITE_TRACE_STMT, anota, &s.sentencias);
    const double ms = tecleaLineas();
    sqlite3_trace_v2(s.db, 0, nullptr, nullptr);
    if (f->CuantasPartidas() != kLineas)
        throw Error(QStringLiteral("El editor agregó %1 líneas.").arg(f->CuantasPartidas()));
    if (!f->descarga())
        throw Error(QStringLiteral("El editor no se cerró."));
    return ms;
}

class Bare
{
public:
    explicit Bare(const QString &ruta)
    {
        if (sqlite3_open(ruta.toUtf8().constData(), &m_db) != SQLITE_OK)
            throw Error(QStringLiteral("No se pudo abrir %1").arg(ruta));
        sqlite3_busy_timeout(m_db, 10000);
    }
    ~Bare() { sqlite3_close(m_db); }

    void ejecuta(const QByteArray &sql)
    {
        sqlite3_stmt *s = nullptr;
        if (sqlite3_prepare_v2(m_db, sql.constData(), -1, &s, nullptr) != SQLITE_OK)
            throw Error(QString::fromUtf8(sqlite3_errmsg(m_db)) + ": " + QString::fromUtf8(sql));
        int r;
        while ((r = sqlite3_step(s)) == SQLITE_ROW)
            for (int i = 0; i < sqlite3_column_count(s); ++i)
                sqlite3_column_value(s, i);
        sqlite3_finalize(s);
        if (r != SQLITE_DONE)
            throw Error(QString::fromUtf8(sqlite3_errmsg(m_db)) + ": " + QString::fromUtf8(sql));
    }

    [[gnu::noinline]] double repite(const std::vector<QByteArray> &sentencias)
    {
        QElapsedTimer t;
        t.start();
        for (const QByteArray &sql : sentencias)
            ejecuta(sql);
        return t.nsecsElapsed() / 1e6;
    }

    // Takes out what a run wrote: the order, its lines, the numbering.
    void deshace(const QByteArray &folios)
    {
        ejecuta("DELETE FROM oppart"); // the database holds no other order
        ejecuta("DELETE FROM op");
        ejecuta("DELETE FROM folios");
        if (!folios.isEmpty())
            ejecuta("INSERT INTO folios (clave, ultimo) VALUES " + folios);
    }

    QByteArray folios()
    {
        QByteArray valores;
        sqlite3_stmt *s = nullptr;
        sqlite3_prepare_v2(m_db, "SELECT clave, ultimo FROM folios", -1, &s, nullptr);
        while (sqlite3_step(s) == SQLITE_ROW)
            valores += QByteArray(valores.isEmpty() ? "" : ", ") + "('" +
                       reinterpret_cast<const char *>(sqlite3_column_text(s, 0)) + "', " +
                       QByteArray::number(sqlite3_column_int(s, 1)) + ')';
        sqlite3_finalize(s);
        return valores;
    }

private:
    sqlite3 *m_db = nullptr;
};

} // namespace

int main(int argc, char **argv)
{
    return bench::principal(
        argc, argv, "bench_teclado", 9, [](int corridas, const QString &carpeta) {
            bench::Banco banco = bench::abreBanco(carpeta, QStringLiteral("teclado.db"));
            const auto &silencio = banco.silencio;
            const QString &ruta = banco.ruta;
            const auto &sesion = banco.sesion;
            preparaArticulos(sesion->conexion());
            modulo::reinicia();
            Produccion p;
            p.SetAmbiente(sesion->ambiente());
            Sesion s{p, manejador(sesion->conexion()), {}};
            Bare bare(ruta);
            const QByteArray folios = bare.folios();
            std::vector<double> editor, base;
            for (int i = 0; i <= corridas; ++i) { // the first of each is a warm-up
                const double e = conEditor(s);
                bench::vaciaEventos();
                bare.deshace(folios);
                const double b = bare.repite(s.sentencias);
                bare.deshace(folios);
                bench::vaciaEventos();
                if (i > 0) {
                    editor.push_back(e);
                    base.push_back(b);
                }
            }
            if (silencio->errores)
                throw Error(QStringLiteral("El editor reportó %1 errores").arg(silencio->errores));
            const double me = bench::mediana(editor), mb = bench::mediana(base);
            std::printf("editor (%d líneas tecleadas, lector de códigos): mediana %.3f ms en %d "
                        "corridas\n",
                        kLineas, me, corridas);
            std::printf("base (las mismas %zu sentencias, API C de SQLite): mediana %.3f ms\n",
                        s.sentencias.size(), mb);
            std::printf("ratio: %.2f\n", me / mb);
        });
}
