// Opens an existing order of 100 lines in the order editor to change it
// (load, busy mark, grid fill; offscreen) and closes it again (release), on
// an SQLite file database, against a bare baseline in the same run: the same
// statements through the SQLite C API and the same 101 x 8 cells set in a
// plain QTableWidget. The two alternate; the medians are printed and, last,
// "ratio: R" (editor over bare).
//
// Usage: bench_editor [runs=50] [folder for the database file]

#include "bench/Comun.h"
#include "component/Produccion.h"
#include "core/Modulo.h"
#include "host/base/Sesion.h"
#include "host/interaccion/Interaccion.h"
#include "orders/frmOp.h"
#include "runtime/Error.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QSqlError>
#include <QSqlQuery>
#include <QTableWidget>
#include <QTemporaryDir>

#include <sqlite3.h>

#include <algorithm>
#include <cstdio>
#include <vector>

using namespace zuvi;

namespace {

constexpr int kLineas = 100;
constexpr int kOrden = 5001;

void ejecuta(QSqlQuery &q, const QString &sql)
{
    if (!q.exec(sql))
        throw Error(QStringLiteral("%1: %2").arg(sql, q.lastError().text()));
}

void creaOrden(const QSqlDatabase &db)
{
    QSqlDatabase(db).transaction();
    QSqlQuery q(db);
    ejecuta(q, QStringLiteral("INSERT INTO op (op, estado, almacen, f_emision, fechaEntrega, "
                              "usuario, Tipo_doc) VALUES (%1, 'PE', 1, '2024-05-17', "
                              "'2024-05-20', 'ADMIN', 'OP')")
                   .arg(kOrden));
    for (int i = 0; i < kLineas; ++i) {
        ejecuta(q, QStringLiteral("INSERT INTO prods (articulo, descrip, unidad) VALUES "
                                  "('ART-%1', 'Artículo número %1', 'PZA')")
                       .arg(i));
        ejecuta(q, QStringLiteral("INSERT INTO oppart (id_entrada, op, tipo_doc, no_referen, "
                                  "articulo, cantidad, precio, observ) VALUES (%1, %2, 'OP', %2, "
                                  "'ART-%3', %4, 10.5, 'Artículo número %3')")
                       .arg(i + 1)
                       .arg(kOrden)
                       .arg(i)
                       .arg(1 + i % 7));
    }
    QSqlDatabase(db).commit();
}

double conEditor(Produccion &p)
{
    QElapsedTimer t;
    t.start();
    p.ModificaOp(kOrden);
    frmOp *editor = nullptr;
    for (QWidget *w : QApplication::topLevelWidgets())
        if (auto *f = qobject_cast<frmOp *>(w); f && !f->descargada())
            editor = f;
    if (!editor || editor->fg2 == nullptr)
        throw Error(QStringLiteral("El editor no se abrió."));
    if (!editor->descarga())
        throw Error(QStringLiteral("El editor no se cerró."));
    return t.nsecsElapsed() / 1e6;
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

    double abreYCierra()
    {
        QElapsedTimer t;
        t.start();
        const QByteArray n = QByteArray::number(kOrden);
        leeTodo("SELECT * FROM op WHERE op = " + n);
        leeTodo("UPDATE Op SET ocupado = 1 WHERE Op = " + n);
        QTableWidget rejilla(100, 8);
        for (int c = 0; c < 8; ++c)
            rejilla.setHorizontalHeaderItem(c, new QTableWidgetItem(QStringLiteral("Columna")));
        int fila = 0;
        leeTodo("SELECT * FROM oppart WHERE Op = (" + n + ")", [&](sqlite3_stmt *s) {
            for (int c = 0; c < 8 && fila < 100; ++c)
                rejilla.setItem(
                    fila, c,
                    new QTableWidgetItem(QString::fromUtf8(reinterpret_cast<const char *>(
                        sqlite3_column_text(s, c % sqlite3_column_count(s))))));
            ++fila;
        });
        leeTodo("SELECT estacion AS Estacion, almacen AS Almacen, lector AS Lector FROM "
                "estaciones WHERE estacion = '1'");
        leeTodo("UPDATE Op SET ocupado = 0 WHERE Op = " + n);
        return t.nsecsElapsed() / 1e6;
    }

private:
    template <typename F = void (*)(sqlite3_stmt *)>
    void leeTodo(
        const QByteArray &sql, F porFila = [](sqlite3_stmt *) {})
    {
        sqlite3_stmt *s = nullptr;
        if (sqlite3_prepare_v2(m_db, sql.constData(), -1, &s, nullptr) != SQLITE_OK)
            throw Error(QString::fromUtf8(sqlite3_errmsg(m_db)));
        int r;
        while ((r = sqlite3_step(s)) == SQLITE_ROW) {
            for (int i = 0; i < sqlite3_column_count(s); ++i)
                sqlite3_column_value(s, i);
            porFila(s);
        }
        sqlite3_finalize(s);
        if (r != SQLITE_DONE)
            throw Error(QString::fromUtf8(sqlite3_errmsg(m_db)));
    }

    sqlite3 *m_db = nullptr;
};

} // namespace

int main(int argc, char **argv)
{
    return bench::principal(
        argc, argv, "bench_editor", 50, [](int corridas, const QString &carpeta) {
            bench::Banco banco = bench::abreBanco(carpeta, QStringLiteral("editor.db"));
            const auto &silencio = banco.silencio;
            const QString &ruta = banco.ruta;
            const auto &s = banco.sesion;
            creaOrden(s->conexion());
            modulo::reinicia();
            Produccion p;
            p.SetAmbiente(s->ambiente());
            Bare bare(ruta);
            conEditor(p); // first use: the shared objects, fonts, styles
            QCoreApplication::sendPostedEvents();
            bare.abreYCierra();
            std::vector<double> editor, base;
            // What the event loop would do between two openings (deferred deletes,
            // layout and paint requests) runs outside the timing, for both ways.
            for (int i = 0; i < corridas; ++i) {
                editor.push_back(conEditor(p));
                bench::vaciaEventos();
                base.push_back(bare.abreYCierra());
                bench::vaciaEventos();
            }
            if (silencio->errores)
                throw Error(QStringLiteral("El editor reportó %1 errores").arg(silencio->errores));
            const double me = bench::mediana(editor), mb = bench::mediana(base);
            std::printf("editor (componente y anfitrión): mediana %.3f ms en %d corridas\n", me,
                        corridas);
            std::printf("base (API C de SQLite y QTableWidget): mediana %.3f ms\n", mb);
            std::printf("ratio: %.2f\n", me / mb);
        });
}
