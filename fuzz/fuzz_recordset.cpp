// Values through the SQLite statement path and back as a Recordset: what is
// bound comes back as it was (a text byte for byte, a number exactly), and
// the Recordset's conversions read every field without failing.

#include "Entrada.h"
#include "Exige.h"
#include "host/sql/SqlInterno.h"
#include "runtime/Error.h"
#include "runtime/Recordset.h"

#include <sqlite3.h>

#include <cmath>

using namespace zuvi;
using namespace zuvi::anfitrion;
using zuvi::fuzz::exige;

namespace {

sqlite3 *conexion()
{
    static sqlite3 *db = [] {
        sqlite3 *d = nullptr;
        sqlite3_open(":memory:", &d);
        return d;
    }();
    return db;
}

QVariant valorDe(fuzz::Entrada &e)
{
    switch (e.byte() % 7) {
    case 0:
        return e.texto(40);
    case 1:
        return e.valor<double>();
    case 2:
        return qint64(e.valor<int64_t>());
    case 3:
        return bool(e.byte() & 1);
    case 4:
        return QDate::fromJulianDay(e.valor<int32_t>() % 5000000);
    case 5:
        return QVariant(QMetaType::fromType<QString>()); // null
    default:
        return QByteArray::fromStdString(e.texto(16).toStdString());
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *datos, size_t largo)
{
    fuzz::Entrada e(datos, largo);
    QVariantList valores;
    QStringList marcas;
    while (!e.vacia() && valores.size() < 6) {
        valores << valorDe(e);
        marcas << QStringLiteral("? AS c%1").arg(valores.size());
    }
    if (valores.isEmpty())
        return 0;
    interno::FalloSql fallo;
    auto st =
        interno::preparaEnSQLite(conexion(), QStringLiteral("SELECT ") + marcas.join(u','), fallo);
    exige(bool(st), "la consulta se prepara");
    RecordsetPtr filas;
    exige(st->ejecuta(valores, &filas, nullptr, fallo), "la consulta corre");
    exige(filas && filas->rowCount() == 1 && filas->fieldCount() == valores.size(), "una fila");
    for (int i = 0; i < valores.size(); ++i) {
        const QVariant &dado = valores.at(i);
        const QVariant leido = filas->value(i);
        exige(filas->value(QStringLiteral("C%1").arg(i + 1)) == leido, "por nombre sin mayúsculas");
        switch (dado.typeId()) {
        case QMetaType::QString:
            exige(dado.isNull() ? leido.isNull() : leido.toString() == dado.toString(),
                  "un texto vuelve igual");
            break;
        case QMetaType::Double: {
            const double d = dado.toDouble();
            exige(std::isnan(d) ? leido.isNull() : leido.toDouble() == d, "un número vuelve igual");
            if (std::isfinite(d) && d != 0.0) {
                // Fifteen significant digits: what a text box shows and reads back.
                const double otra = variantToDouble(variantToText(leido));
                exige(std::abs(otra - d) <= std::abs(d) * 1e-14, "texto y número se corresponden");
            }
            break;
        }
        case QMetaType::LongLong:
            exige(leido.toLongLong() == dado.toLongLong(), "un entero vuelve igual");
            break;
        case QMetaType::QDate:
            if (dado.toDate().isValid() && dado.toDate().year() > 0)
                exige(QDate::fromString(leido.toString(), Qt::ISODate) == dado.toDate(),
                      "una fecha vuelve igual");
            break;
        default:
            break;
        }
        (void)filas->text(i);
        (void)filas->number(i);
    }
    try {
        filas->moveNext();
        (void)filas->value(0);
        exige(false, "leer al final falla");
    } catch (const Error &) {
    }
    return 0;
}
