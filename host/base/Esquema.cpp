#include "host/base/Esquema.h"
#include "host/base/Mensajes.h"

#include "host/sql/Sql.h"

#include <QRegularExpression>

#include <QSqlQuery>
#include <iterator>
#include <utility>

namespace zuvi::anfitrion {

namespace {

// Column types are written once with markers that each engine spells its own
// way: "@ID" an auto-numbered key, "@T(n)" a text of up to n characters,
// "@K(n)" such a text that is also a key the module writes between quotes
// into its statements, so it may not hold a quote (nor, on MariaDB, a
// backslash). Text compares without regard to case on both engines, as the
// module's lookups expect (MariaDB's default collation does so already).
//
// Every text column carries a named check of its length, and every key one a
// named check against quotes, so a text that does not fit is refused instead
// of cut or stored over-long, and the host can say which column refused it.
struct Tabla
{
    const char *nombre;
    const char *columnas;
};

const Tabla kTablas[] = {
    // Orders and their lines.
    {"op", "op INT NOT NULL PRIMARY KEY,"
           " estado @T(2) NOT NULL DEFAULT 'PE',"
           " ocupado SMALLINT NOT NULL DEFAULT 0,"
           " usuario @T(30) DEFAULT '',"
           " usufecha DATE,"
           " usuhora @T(8) DEFAULT '',"
           " f_emision DATE,"
           " fechaEntrega DATE,"
           " importe DOUBLE DEFAULT 0,"
           " costo DOUBLE DEFAULT 0,"
           " almacen INT DEFAULT 0,"
           " observ TEXT,"
           " automatico SMALLINT DEFAULT 0,"
           " ordencompra DOUBLE DEFAULT 0,"
           " cerrado SMALLINT NOT NULL DEFAULT 0,"
           " Tipo_doc @T(10) DEFAULT ''"},
    {"oppart", "id_entrada INT NOT NULL PRIMARY KEY,"
               " op INT NOT NULL,"
               " tipo_doc @T(10) DEFAULT '',"
               " no_referen INT DEFAULT 0,"
               " articulo @K(30) NOT NULL,"
               " cantidad DOUBLE DEFAULT 0,"
               " precio DOUBLE DEFAULT 0,"
               " impuesto DOUBLE DEFAULT 0,"
               " observ TEXT,"
               " partida SMALLINT DEFAULT 0,"
               " terminado DOUBLE DEFAULT 0,"
               " usuario @T(30) DEFAULT '',"
               " usufecha DATE,"
               " usuhora @T(8) DEFAULT ''"},
    // Catalogues other modules of the suite own.
    {"prods", "articulo @K(30) NOT NULL PRIMARY KEY,"
              " descrip @T(100) DEFAULT '',"
              " unidad @T(10) DEFAULT '',"
              " costo_u DOUBLE DEFAULT 0,"
              " ubicacion @T(30) DEFAULT '',"
              " kit SMALLINT NOT NULL DEFAULT 0,"
              " costo DOUBLE DEFAULT 0,"
              " precio DOUBLE DEFAULT 0"},
    {"clavesadd", "clave @K(30) NOT NULL PRIMARY KEY,"
                  " Articulo @K(30) NOT NULL,"
                  " Dato1 @T(60) DEFAULT '',"
                  " Dato2 @T(60) DEFAULT '',"
                  " unidad @T(10) DEFAULT ''"},
    {"monedas", "moneda @K(10) NOT NULL PRIMARY KEY,"
                " nombre @T(40) DEFAULT '',"
                " Tc DOUBLE NOT NULL DEFAULT 1,"
                " Base SMALLINT NOT NULL DEFAULT 0"},
    {"vends", "vend @K(10) NOT NULL PRIMARY KEY,"
              " Nombre @T(60) DEFAULT ''"},
    {"almacen", "almacen INT NOT NULL PRIMARY KEY,"
                " nombre @T(60) DEFAULT ''"},
    // Kit recipes: one header per kit, one line per component.
    {"componen", "articulo @K(30) NOT NULL PRIMARY KEY,"
                 " Minimo DOUBLE NOT NULL DEFAULT 1"},
    {"comppart", "id @ID,"
                 " articulo @K(30) NOT NULL,"
                 " Componente @K(30) NOT NULL,"
                 " Cantidad DOUBLE NOT NULL DEFAULT 0,"
                 " Almacen INT NOT NULL DEFAULT 1"},
    // Shifts and schedules.
    {"turnos", "turno @K(40) NOT NULL PRIMARY KEY,"
               " entrada @T(5) DEFAULT '',"
               " comida @T(5) DEFAULT '',"
               " salida @T(5) DEFAULT '',"
               " descanso @T(10) DEFAULT '',"
               " regcomida @T(5) DEFAULT ''"},
    {"turnoempleado", "turno @K(40) NOT NULL,"
                      " empleado @K(20) NOT NULL,"
                      " PRIMARY KEY (turno, empleado)"},
    {"horarios", "id @ID,"
                 " turno @K(40) NOT NULL,"
                 " fecha DATE NOT NULL,"
                 " Empleado @K(20) NOT NULL,"
                 " HoraEntrada @T(5) DEFAULT '',"
                 " comida @T(5) DEFAULT '',"
                 " HoraSalida @T(5) DEFAULT ''"},
    {"empleados", "empleado @K(20) NOT NULL PRIMARY KEY,"
                  " nombre @T(60) DEFAULT ''"},
    // The host's own tables.
    {"mensajes", "numero INT NOT NULL PRIMARY KEY,"
                 " texto @T(255) NOT NULL"},
    {"folios", "clave @T(20) NOT NULL PRIMARY KEY,"
               " ultimo INT NOT NULL DEFAULT 0"},
    {"estaciones", "estacion @T(20) NOT NULL PRIMARY KEY,"
                   " almacen INT NOT NULL DEFAULT 1,"
                   " lector SMALLINT NOT NULL DEFAULT 0,"
                   // Shops that post first and count later let stock go below zero.
                   " existencianegativa SMALLINT NOT NULL DEFAULT 0,"
                   // Shops that list materials on their orders take lines that are not kits.
                   " lineassinkit SMALLINT NOT NULL DEFAULT 0"},
    {"movimientos", "id @ID,"
                    " tipo @T(1) NOT NULL,"
                    " concepto @T(4) DEFAULT '',"
                    " orden INT DEFAULT 0,"
                    " folio @T(20) DEFAULT '',"
                    " usuario @T(30) DEFAULT '',"
                    " fecha DATE,"
                    " almacen INT NOT NULL DEFAULT 0,"
                    " articulo @T(30) NOT NULL,"
                    " cantidad DOUBLE NOT NULL DEFAULT 0,"
                    " costo DOUBLE NOT NULL DEFAULT 0,"
                    " importe DOUBLE NOT NULL DEFAULT 0"},
    {"existencias", "articulo @T(30) NOT NULL,"
                    " almacen INT NOT NULL,"
                    " cantidad DOUBLE NOT NULL DEFAULT 0,"
                    " PRIMARY KEY (articulo, almacen)"},
    {"fracciones", "id @ID,"
                   " codigo @T(40) NOT NULL,"
                   " articulo @T(30) DEFAULT '',"
                   " usuario @T(30) DEFAULT '',"
                   " fecha DATE,"
                   " hora @T(8) DEFAULT '',"
                   " estacion @T(20) DEFAULT ''"},
    // Catalogues the editor's lookups offer: inventory concepts of orders and
    // taxes by percentage (the percentage is what a line's tax takes).
    {"conceptos", "concepto @T(4) NOT NULL PRIMARY KEY,"
                  " descrip @T(60) DEFAULT ''"},
    {"impuestos", "impuesto @T(10) NOT NULL PRIMARY KEY,"
                  " descrip @T(60) DEFAULT '',"
                  " porcentaje DOUBLE NOT NULL DEFAULT 0"},
    // Who holds an order (host/base/Reclamos.h): one row per order held.
    {"reclamos", "op INT NOT NULL PRIMARY KEY,"
                 " usuario @T(30) DEFAULT '',"
                 " estacion @T(20) DEFAULT '',"
                 " equipo @T(60) DEFAULT '',"
                 " proceso BIGINT NOT NULL DEFAULT 0,"
                 " conexion BIGINT NOT NULL DEFAULT 0,"
                 " desde @T(19) NOT NULL,"
                 " motivo @T(10) DEFAULT ''"},
    // The version of this schema the database holds (one row).
    {"versionbase", "clave SMALLINT NOT NULL PRIMARY KEY,"
                    " version INT NOT NULL"},
};

const char *const kIndices[] = {
    "CREATE INDEX IF NOT EXISTS oppart_op ON oppart (op)",
    "CREATE INDEX IF NOT EXISTS comppart_articulo ON comppart (articulo)",
    "CREATE INDEX IF NOT EXISTS clavesadd_articulo ON clavesadd (Articulo)",
    "CREATE INDEX IF NOT EXISTS horarios_turno_fecha ON horarios (turno, fecha)",
    "CREATE INDEX IF NOT EXISTS horarios_empleado_fecha ON horarios (Empleado, fecha)",
    "CREATE INDEX IF NOT EXISTS movimientos_articulo ON movimientos (articulo, almacen)",
};

// Indexes that keep the screens over years of history as fast as over a
// month: the main window's list of orders (not closed or all, by number or
// by date of issue), and the month roster's schedules by date. Every opening makes sure they exist,
// so a database of any version gets them.
const char *const kIndicesHistoria[] = {
    "CREATE INDEX IF NOT EXISTS op_cerrado_op ON op (cerrado, op)",
    "CREATE INDEX IF NOT EXISTS op_cerrado_emision ON op (cerrado, f_emision, op)",
    "CREATE INDEX IF NOT EXISTS op_emision ON op (f_emision, op)",
    "CREATE INDEX IF NOT EXISTS horarios_fecha ON horarios (fecha, Empleado, turno)",
};

// The first capture of a pattern in the text, or empty.
QString primeraCaptura(const QString &texto, const char *patron)
{
    const QRegularExpression r(QLatin1String(patron), QRegularExpression::CaseInsensitiveOption);
    return r.match(texto).captured(1);
}

const QRegularExpression &columnaTexto()
{
    static const QRegularExpression r(QStringLiteral("(\\w+) @([TK])\\((\\d+)\\)"));
    return r;
}

QString escribeTipos(const QString &columnas, Motor motor)
{
    const bool lite = motor == Motor::SQLite;
    QString salida = columnas;
    salida.replace(QStringLiteral("@ID"),
                   lite ? QStringLiteral("INTEGER PRIMARY KEY AUTOINCREMENT")
                        : QStringLiteral("INT NOT NULL AUTO_INCREMENT PRIMARY KEY"));
    // MariaDB cuts a text to its column before a check sees it: one spare
    // character lets the length check see that it was longer.
    QString resultado;
    qsizetype desde = 0;
    for (const QRegularExpressionMatch &m : columnaTexto().globalMatch(salida)) {
        const int largo = m.captured(3).toInt();
        resultado += salida.mid(desde, m.capturedStart() - desde);
        resultado +=
            lite ? QStringLiteral("%1 VARCHAR(%2) COLLATE NOCASE").arg(m.captured(1)).arg(largo)
                 : QStringLiteral("%1 VARCHAR(%2)").arg(m.captured(1)).arg(largo + 1);
        desde = m.capturedEnd();
    }
    return resultado + salida.mid(desde);
}

} // namespace

QList<Restriccion> restriccionesDe(const QString &tabla, Motor motor)
{
    QList<Restriccion> r;
    for (const Tabla &t : kTablas) {
        if (tabla.compare(QLatin1String(t.nombre), Qt::CaseInsensitive) != 0)
            continue;
        const QString columnas = QLatin1String(t.columnas);
        for (const QRegularExpressionMatch &m : columnaTexto().globalMatch(columnas)) {
            const QString columna = m.captured(1);
            const int largo = m.captured(3).toInt();
            const QString base = QStringLiteral("%1_%2_").arg(QLatin1String(t.nombre), columna);
            const QString mide = motor == Motor::SQLite ? QStringLiteral("length(%1) <= %2")
                                                        : QStringLiteral("CHAR_LENGTH(%1) <= %2");
            r.append({base + QStringLiteral("largo"), QLatin1String(t.nombre), columna, largo,
                      mide.arg(columna).arg(largo), false});
            if (m.captured(2) != QLatin1String("K"))
                continue;
            const QString sinComilla =
                motor == Motor::SQLite
                    ? QStringLiteral("instr(%1, '''') = 0")
                    : QStringLiteral("LOCATE('''', %1) = 0 AND LOCATE(CHAR(92), %1) = 0");
            r.append({base + QStringLiteral("comilla"), QLatin1String(t.nombre), columna, largo,
                      sinComilla.arg(columna), true});
        }
    }
    return r;
}

std::optional<Restriccion> restriccionLlamada(const QString &nombre)
{
    static const QList<Restriccion> todas = [] {
        QList<Restriccion> l;
        for (const Tabla &t : kTablas)
            l += restriccionesDe(QLatin1String(t.nombre), Motor::SQLite);
        return l;
    }();
    for (const Restriccion &r : todas)
        if (r.nombre.compare(nombre, Qt::CaseInsensitive) == 0)
            return r;
    return std::nullopt;
}

int largoColumna(const QString &tabla, const QString &columna)
{
    for (const Restriccion &r : restriccionesDe(tabla, Motor::SQLite))
        if (r.columna.compare(columna, Qt::CaseInsensitive) == 0)
            return r.largo;
    return 0;
}

QString sentenciaTabla(const QString &tabla, Motor motor, const QString &nombreNuevo)
{
    for (const Tabla &t : kTablas) {
        if (tabla.compare(QLatin1String(t.nombre), Qt::CaseInsensitive) != 0)
            continue;
        QString columnas = escribeTipos(QLatin1String(t.columnas), motor);
        for (const Restriccion &r : restriccionesDe(tabla, motor))
            columnas += QStringLiteral(", CONSTRAINT %1 CHECK (%2)").arg(r.nombre, r.condicion);
        return QStringLiteral("CREATE TABLE IF NOT EXISTS %1 (%2%3")
            .arg(nombreNuevo.isEmpty() ? QLatin1String(t.nombre) : nombreNuevo, columnas,
                 motor == Motor::MariaDB ? QStringLiteral(") ENGINE=InnoDB DEFAULT CHARSET=utf8mb4")
                                         : QStringLiteral(")"));
    }
    return {};
}

QStringList sentenciasIndices()
{
    QStringList r;
    for (const char *indice : kIndices)
        r << QLatin1String(indice);
    for (const char *indice : kIndicesHistoria)
        r << QLatin1String(indice);
    return r;
}

QStringList sentenciasEsquema(Motor motor)
{
    QStringList sentencias;
    for (const QString &t : tablasEsquema())
        sentencias << sentenciaTabla(t, motor);
    return sentencias + sentenciasIndices();
}

QStringList tablasEsquema()
{
    QStringList nombres;
    for (const Tabla &t : kTablas)
        nombres << QLatin1String(t.nombre);
    return nombres;
}

void creaEsquema(const QSqlDatabase &db, Motor motor)
{
    for (const QString &sql : sentenciasEsquema(motor))
        ejecuta(db, sql);
    aseguraBusquedaArticulos(db, motor);
}

// --- Searching the articles in the database ---------------------------------

namespace {

// The accented letters the articles' search reads as their plain letter. The
// index's triggers fold them in SQL (any program that writes prods keeps the
// index right, no function of ours needed) and a search folds its words with
// the same list; the index folds case by itself.
constexpr std::pair<char16_t, char16_t> kSinAcento[] = {
    {u'á', u'a'}, {u'à', u'a'}, {u'â', u'a'}, {u'ä', u'a'}, {u'ã', u'a'}, {u'å', u'a'},
    {u'é', u'e'}, {u'è', u'e'}, {u'ê', u'e'}, {u'ë', u'e'}, {u'í', u'i'}, {u'ì', u'i'},
    {u'î', u'i'}, {u'ï', u'i'}, {u'ó', u'o'}, {u'ò', u'o'}, {u'ô', u'o'}, {u'ö', u'o'},
    {u'õ', u'o'}, {u'ú', u'u'}, {u'ù', u'u'}, {u'û', u'u'}, {u'ü', u'u'}, {u'ñ', u'n'},
    {u'ç', u'c'}, {u'ý', u'y'}, {u'ÿ', u'y'}, {u'Á', u'A'}, {u'À', u'A'}, {u'Â', u'A'},
    {u'Ä', u'A'}, {u'Ã', u'A'}, {u'Å', u'A'}, {u'É', u'E'}, {u'È', u'E'}, {u'Ê', u'E'},
    {u'Ë', u'E'}, {u'Í', u'I'}, {u'Ì', u'I'}, {u'Î', u'I'}, {u'Ï', u'I'}, {u'Ó', u'O'},
    {u'Ò', u'O'}, {u'Ô', u'O'}, {u'Ö', u'O'}, {u'Õ', u'O'}, {u'Ú', u'U'}, {u'Ù', u'U'},
    {u'Û', u'U'}, {u'Ü', u'U'}, {u'Ñ', u'N'}, {u'Ç', u'C'}, {u'Ý', u'Y'},
};

// "SELECT n, t": the row's number and its text folded. Fifty-odd nested
// replace() calls are too deep for SQLite's parser, so the folding goes in
// steps, each a query over the one before.
QString seleccionSinAcentos(const QString &numero, const QString &texto, const QString &origen)
{
    constexpr qsizetype kPaso = 12;
    const qsizetype total = qsizetype(std::size(kSinAcento));
    QString sql;
    for (qsizetype i = 0; i < total; i += kPaso) {
        QString e = i == 0 ? texto : QStringLiteral("t");
        for (qsizetype j = i; j < qMin(total, i + kPaso); ++j)
            e = QStringLiteral("replace(%1, '%2', '%3')")
                    .arg(e, QString(QChar(kSinAcento[j].first)),
                         QString(QChar(kSinAcento[j].second)));
        sql = i == 0 ? QStringLiteral("SELECT %1 AS n, %2 AS t%3")
                           .arg(numero, e,
                                origen.isEmpty() ? QString() : QStringLiteral(" FROM ") + origen)
                     : QStringLiteral("SELECT n, %1 AS t FROM (%2)").arg(e, sql);
    }
    return sql;
}

} // namespace

QString sinAcentosDeBusqueda(QString texto)
{
    for (const auto &[con, sin] : kSinAcento)
        texto.replace(QChar(con), QChar(sin));
    return texto;
}

bool hayBusquedaArticulos(const QSqlDatabase &db)
{
    return motorDe(db) == Motor::SQLite &&
           db.tables().contains(QLatin1String(kBusquedaArticulos), Qt::CaseInsensitive);
}

void aseguraBusquedaArticulos(const QSqlDatabase &db, Motor motor)
{
    if (motor != Motor::SQLite)
        return;
    // The triggers go with prods when an upgrade rebuilds it: their absence
    // says the index must be made or filled again; an index of words (before
    // searches found any part of a word) is made again as one of pieces.
    // The host's own reading: it stays out of the statement trace.
    {
        QSqlQuery q(db);
        if (q.exec(QStringLiteral("SELECT COUNT(*) FROM sqlite_master WHERE (type = 'trigger' "
                                  "AND name = 'prods_busqueda_cambia') OR (name = "
                                  "'prods_busqueda' AND sql LIKE '%trigram%')")) &&
            q.next() && q.value(0).toInt() == 2)
            return;
    } // a reading left open would lock the index against being dropped
    const QString inserta = QStringLiteral("INSERT INTO prods_busqueda (rowid, texto) ");
    const QString nuevo = inserta + seleccionSinAcentos(QStringLiteral("new.rowid"),
                                                        QStringLiteral("new.articulo || ' ' || "
                                                                       "COALESCE(new.descrip, '')"),
                                                        {});
    const QStringList sentencias = {
        QStringLiteral("DROP TRIGGER IF EXISTS prods_busqueda_alta"),
        QStringLiteral("DROP TRIGGER IF EXISTS prods_busqueda_baja"),
        QStringLiteral("DROP TRIGGER IF EXISTS prods_busqueda_cambia"),
        QStringLiteral("DROP TABLE IF EXISTS prods_busqueda"),
        QStringLiteral("CREATE VIRTUAL TABLE prods_busqueda USING fts5(texto, "
                       "tokenize = 'trigram case_sensitive 0')"),
        inserta + seleccionSinAcentos(QStringLiteral("rowid"),
                                      QStringLiteral("articulo || ' ' || COALESCE(descrip, '')"),
                                      QStringLiteral("prods")),
        QStringLiteral("CREATE TRIGGER prods_busqueda_alta AFTER INSERT ON prods BEGIN %1; END")
            .arg(nuevo),
        QStringLiteral("CREATE TRIGGER prods_busqueda_baja AFTER DELETE ON prods "
                       "BEGIN DELETE FROM prods_busqueda WHERE rowid = old.rowid; END"),
        QStringLiteral("CREATE TRIGGER prods_busqueda_cambia AFTER UPDATE ON prods "
                       "BEGIN DELETE FROM prods_busqueda WHERE rowid = old.rowid; "
                       "%1; END")
            .arg(nuevo),
    };
    Transaccion t(db);
    for (const QString &sql : sentencias)
        ejecuta(db, sql);
    t.confirma();
}

QString causaDeRestriccion(const QString &texto)
{
    // SQLite: "CHECK constraint failed: nombre"; MariaDB: "CONSTRAINT `nombre` failed for ...".
    QString nombre = primeraCaptura(texto, "CHECK constraint failed: *(\\w+)");
    const bool mariadb = nombre.isEmpty();
    if (mariadb)
        nombre = primeraCaptura(texto, "CONSTRAINT `(\\w+)` failed");
    const std::optional<Restriccion> r = restriccionLlamada(nombre);
    if (!r)
        return {};
    if (r->comilla)
        return QStringLiteral("la clave de la columna %1 de la tabla %2 no puede llevar comillas "
                              "(')%3; quítelas de la clave")
            .arg(r->columna, r->tabla,
                 mariadb ? QStringLiteral(" ni barras invertidas (\\)") : QString());
    return QStringLiteral("el texto es demasiado largo para la columna %1 de la tabla %2, que "
                          "admite a lo más %3 caracteres")
        .arg(r->columna, r->tabla)
        .arg(r->largo);
}

QString insertaSiFalta(Motor motor)
{
    return motor == Motor::SQLite ? QStringLiteral("INSERT OR IGNORE INTO")
                                  : QStringLiteral("INSERT IGNORE INTO");
}

void insertaFilasBase(const QSqlDatabase &db, Motor motor)
{
    const QString inserta = insertaSiFalta(motor);
    for (const auto &[numero, texto] : catalogoMensajes()) {
        const QString sql = inserta + QStringLiteral(" mensajes (numero, texto) VALUES (?, ?)");
        ejecutaConValores(db, sql, {numero, texto});
    }
    // The station a fresh installation runs as: the first warehouse, no
    // barcode reader.
    ejecuta(db,
            inserta + QStringLiteral(" estaciones (estacion, almacen, lector) VALUES ('1', 1, 0)"));
    ejecutaConValores(db, inserta + QStringLiteral(" versionbase (clave, version) VALUES (1, ?)"),
                      {kVersionEsquema});
}

} // namespace zuvi::anfitrion
