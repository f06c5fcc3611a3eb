#include "host/servicios/Existencias.h"

#include "contract/Servicios.h"
#include "host/sql/Sql.h"
#include "runtime/Text.h"

#include <QMap>
#include <QSqlQuery>

#include <algorithm>
#include <cmath>

namespace zuvi::anfitrion {

namespace {

using Clave = std::pair<QString, qint32>; // article, warehouse

// What a run of batch operations does to the stock, one posting at a time.
class Simulacion
{
public:
    explicit Simulacion(const QSqlDatabase &db) : m_db(db) {}

    void saca(const QString &articulo, qint32 almacen, double cantidad)
    {
        const Clave clave{articulo, almacen};
        double &quedan = saldo(clave);
        auto it = m_lista.find(clave);
        if (it == m_lista.end())
            it = m_lista.insert(clave, nueva(clave));
        it->necesaria += cantidad;
        quedan -= cantidad;
        it->faltante = std::max(it->faltante, -quedan);
    }
    void mete(const QString &articulo, qint32 almacen, double cantidad)
    {
        saldo({articulo, almacen}) += cantidad;
    }
    // The components of cantidad kits out of their warehouses, as the
    // assembly posts them (per batch, divided by the batch's yield).
    void ensambla(const QString &kit, double cantidad)
    {
        QSqlQuery q = ejecutaConValores(
            m_db,
            QStringLiteral("SELECT comppart.Componente, comppart.Cantidad, comppart.Almacen, "
                           "componen.Minimo FROM comppart INNER JOIN componen ON "
                           "componen.articulo = comppart.articulo WHERE comppart.articulo = ? "
                           "ORDER BY comppart.id"),
            {kit});
        while (q.next()) {
            const double rinde = q.value(3).toDouble();
            if (rinde == 0)
                continue; // refused elsewhere: the recipe yields nothing
            saca(q.value(0).toString().trimmed(), q.value(2).toInt(),
                 q.value(1).toDouble() / rinde * cantidad);
        }
    }

    QList<Necesidad> lista() const
    {
        QList<Necesidad> r = m_lista.values();
        std::stable_sort(r.begin(), r.end(), [](const Necesidad &a, const Necesidad &b) {
            return (a.faltante > 0) > (b.faltante > 0);
        });
        return r;
    }

private:
    // The stock as the operations so far leave it, read on first use.
    double &saldo(const Clave &clave)
    {
        auto it = m_saldo.find(clave);
        if (it == m_saldo.end()) {
            const double inicial =
                primerValor(
                    QStringLiteral("SELECT SUM(cantidad) FROM existencias WHERE articulo = ? AND "
                                   "almacen = ?"),
                    {clave.first, clave.second})
                    .toDouble();
            m_inicial.insert(clave, inicial);
            it = m_saldo.insert(clave, inicial);
        }
        return it.value();
    }
    Necesidad nueva(const Clave &clave) const
    {
        Necesidad n;
        n.articulo = clave.first;
        n.almacen = clave.second;
        n.descripcion = primerValor(QStringLiteral("SELECT descrip FROM prods WHERE articulo = ?"),
                                    {clave.first})
                            .toString()
                            .trimmed();
        n.nombreAlmacen =
            primerValor(QStringLiteral("SELECT nombre FROM almacen WHERE almacen = ?"),
                        {clave.second})
                .toString()
                .trimmed();
        n.existencia = m_inicial.value(clave);
        return n;
    }
    QVariant primerValor(const QString &sql, const QVariantList &valores) const
    {
        QSqlQuery q = ejecutaConValores(m_db, sql, valores);
        return q.next() ? q.value(0) : QVariant();
    }

    QSqlDatabase m_db;
    QMap<Clave, Necesidad> m_lista;
    QMap<Clave, double> m_saldo, m_inicial;
};

QString nombreDe(const QString &articulo, const QString &descripcion)
{
    return descripcion.isEmpty() ? eco(articulo)
                                 : QStringLiteral("%1 (%2)").arg(eco(articulo), eco(descripcion));
}

QString almacenDe(qint32 almacen, const QString &nombre)
{
    return nombre.isEmpty() ? QStringLiteral("el almacén %1").arg(almacen)
                            : QStringLiteral("el almacén %1 (%2)").arg(almacen).arg(eco(nombre));
}

QString almacenDe(const QSqlDatabase &db, qint32 almacen)
{
    QSqlQuery q = ejecutaConValores(
        db, QStringLiteral("SELECT nombre FROM almacen WHERE almacen = ?"), {almacen});
    return almacenDe(almacen, q.next() ? q.value(0).toString().trimmed() : QString());
}

QString articuloDe(const QSqlDatabase &db, const QString &articulo)
{
    QSqlQuery q = ejecutaConValores(
        db, QStringLiteral("SELECT descrip FROM prods WHERE articulo = ?"), {articulo});
    return nombreDe(articulo, q.next() ? q.value(0).toString().trimmed() : QString());
}

} // namespace

AjustesEstacion ajustesEstacion(zuvi::Ambiente *ambiente)
{
    AjustesEstacion a;
    if (!ambiente)
        return a;
    const RecordsetPtr rs = ambiente->ParametrosEstacion();
    if (!rs || rs->atEnd())
        return a;
    auto activo = [&](const QString &campo) {
        return rs->hasField(campo) && rs->number(campo) != 0;
    };
    a.existenciaNegativa = activo(QStringLiteral("ExistenciaNegativa"));
    a.lineasSinKit = activo(QStringLiteral("LineasSinKit"));
    return a;
}

QList<Necesidad> necesidadesEnsamble(const QSqlDatabase &db, const QString &articulo,
                                     double cantidad)
{
    Simulacion s(db);
    s.ensambla(articulo, cantidad);
    return s.lista();
}

QList<Necesidad> necesidadesDesensamble(const QSqlDatabase &db, const QString &articulo,
                                        double cantidad, qint32 almacen)
{
    Simulacion s(db);
    s.saca(articulo, almacen, cantidad);
    return s.lista();
}

QList<Necesidad> necesidadesOrden(const QSqlDatabase &db, qint32 op)
{
    Simulacion s(db);
    QSqlQuery q = ejecutaConValores(
        db,
        QStringLiteral("SELECT oppart.articulo, oppart.cantidad, op.almacen, prods.kit FROM "
                       "oppart INNER JOIN op ON op.op = oppart.op LEFT JOIN prods ON "
                       "prods.articulo = oppart.articulo WHERE op.op = ? ORDER BY "
                       "oppart.partida, oppart.id_entrada"),
        {op});
    while (q.next()) {
        if (q.value(3).toInt() == 0)
            continue;
        bool numerica = false;
        const double pedida = q.value(1).toString().trimmed().toDouble(&numerica);
        if (!numerica || !std::isfinite(pedida))
            break; // the delivery stops at such a line
        // Whole kits, rounded half to even, as the delivery assembles them.
        const double kits = std::nearbyint(pedida);
        const QString kit = q.value(0).toString().trimmed();
        s.ensambla(kit, kits);
        s.mete(kit, q.value(2).toInt(), kits);
    }
    return s.lista();
}

QString cifra(double valor)
{
    QString texto = QString::number(std::fabs(valor), 'f', 4);
    while (texto.endsWith(u'0'))
        texto.chop(1);
    if (texto.endsWith(u'.'))
        texto.chop(1);
    const qsizetype punto = texto.indexOf(u'.');
    for (qsizetype i = (punto < 0 ? texto.size() : punto) - 3; i > 0; i -= 3)
        texto.insert(i, u',');
    return (valor < 0 && texto != QLatin1String("0") ? QStringLiteral("-") : QString()) + texto;
}

QStringList describeFaltantes(const QList<Necesidad> &necesidades)
{
    QStringList lineas;
    for (const Necesidad &n : necesidades)
        if (n.faltante > 0)
            lineas << QStringLiteral("  %1 en %2: se necesitan %3, hay %4, faltan %5")
                          .arg(nombreDe(n.articulo, n.descripcion),
                               almacenDe(n.almacen, n.nombreAlmacen), cifra(n.necesaria),
                               cifra(n.existencia), cifra(n.faltante));
    return lineas;
}

QString compruebaExistencias(const QSqlDatabase &db, const AjustesEstacion &ajustes,
                             const QString &metodo, const QVariantList &a)
{
    QList<Necesidad> lista;
    QString que;
    if (metodo == QLatin1String("Ensamble") && a.size() >= 3) {
        const QString kit = a.at(0).toString().trimmed();
        lista = necesidadesEnsamble(db, kit, a.at(2).toInt());
        que = QStringLiteral("ensamblar %1 %2 en %3")
                  .arg(cifra(a.at(2).toInt()), articuloDe(db, kit), almacenDe(db, a.at(1).toInt()));
    } else if (metodo == QLatin1String("Desensamble") && a.size() >= 3) {
        const QString kit = a.at(0).toString().trimmed();
        lista = necesidadesDesensamble(db, kit, a.at(1).toDouble(), a.at(2).toInt());
        que = QStringLiteral("desensamblar %1 %2 de %3")
                  .arg(cifra(a.at(1).toDouble()), articuloDe(db, kit),
                       almacenDe(db, a.at(2).toInt()));
    } else if (metodo == QLatin1String("EntregaProductoTerminado") && a.size() == 1) {
        lista = necesidadesOrden(db, a.at(0).toInt());
        que = QStringLiteral("entregar la orden de producción %1").arg(a.at(0).toInt());
    } else {
        return QString();
    }
    const QStringList faltantes = describeFaltantes(lista);
    if (faltantes.isEmpty())
        return QString();
    if (ajustes.existenciaNegativa)
        return QStringLiteral("Aviso: al %1 quedan existencias negativas (la estación las "
                              "permite):\n%2")
            .arg(que, faltantes.join(u'\n'));
    throw Faltante(QStringLiteral("No se puede %1: no hay existencias suficientes y no se "
                                  "registró nada.\n%2\nSurta lo que falta o, si la estación "
                                  "registra primero y cuenta después, permita existencias "
                                  "negativas en su configuración (menú Órdenes, "
                                  "Configuración de la estación).")
                       .arg(que, faltantes.join(u'\n')));
}

} // namespace zuvi::anfitrion
