// Runs on SQLite and again on the MariaDB test server.

#include "host/Esquema.h"
#include "tests/support/BaseDePrueba.h"

#include <QSqlRecord>
#include <QTest>

using namespace zuvi;
using pruebas::BaseDePrueba;

class TstEsquema : public QObject
{
    Q_OBJECT

    static int cuenta(BaseDePrueba &base, const QString &desde)
    {
        return base.escalar("SELECT COUNT(*) FROM " + desde).toInt();
    }

private Q_SLOTS:
    // Every column the module's statements and the host's services name ("table: columns; ").
    void columnasDelModulo()
    {
        BaseDePrueba base(false);
        const QString tablas = QStringLiteral(
            "op: op estado ocupado usuario usufecha usuhora f_emision fechaEntrega importe costo "
            "almacen observ automatico ordencompra cerrado Tipo_doc; oppart: id_entrada op "
            "tipo_doc no_referen articulo cantidad precio impuesto observ partida terminado "
            "usuario usufecha usuhora; movimientos: id tipo concepto orden folio usuario fecha "
            "almacen articulo cantidad costo importe; prods: articulo descrip unidad costo_u "
            "ubicacion kit costo; clavesadd: clave Articulo Dato1 Dato2 unidad; monedas: moneda "
            "Tc Base; vends: vend Nombre; almacen: almacen; componen: articulo Minimo; comppart: "
            "articulo Componente Cantidad Almacen; turnos: turno entrada comida salida descanso "
            "regcomida; turnoempleado: turno empleado; horarios: id turno fecha Empleado "
            "HoraEntrada comida HoraSalida; empleados: empleado nombre; mensajes: numero texto; "
            "folios: clave ultimo; estaciones: estacion almacen lector; existencias: articulo "
            "almacen cantidad; fracciones: id codigo articulo usuario fecha hora estacion");
        for (const QString &linea : tablas.split(QStringLiteral("; "))) {
            const QSqlRecord columnas = base.conexion().record(linea.section(':', 0, 0));
            for (const QString &c : linea.section(": ", 1).split(' '))
                QVERIFY2(columnas.indexOf(c) >= 0, qPrintable(c + " en " + linea));
        }
        // A trimmed text (it goes between blanks) for each number the module asks for, only those.
        const QString pedidos = "numero IN (1, 72, 74, 75, 76, 224, 234, 235, 236, 240, 241, 343, "
                                "703, 753, 754, 755, 756, 757, 758, 759, 832, 833, 834, 835, 836, "
                                "837, 838, 839)";
        QCOMPARE(cuenta(base, "mensajes WHERE texto <> '' AND texto = TRIM(texto) AND " + pedidos),
                 28);
        QCOMPARE(cuenta(base, "mensajes"), 28);
    }

    // The demo holds together (no reference without its row, every kit with a recipe that
    // prices it), has at least one of each case a user tries, answers the module's texts, and
    // creating it again changes nothing.
    void demoCoherenteYCreacionIdempotente()
    {
        BaseDePrueba base(true);
        const char *nunca[] = {
            "prods WHERE kit <> 0 AND articulo NOT IN (SELECT articulo FROM componen)",
            "componen WHERE articulo NOT IN (SELECT articulo FROM prods WHERE kit <> 0)",
            "comppart WHERE articulo NOT IN (SELECT articulo FROM componen)",
            "comppart WHERE Componente NOT IN (SELECT articulo FROM prods)",
            "comppart WHERE Almacen NOT IN (SELECT almacen FROM almacen)",
            "op WHERE almacen NOT IN (SELECT almacen FROM almacen)",
            "oppart WHERE op NOT IN (SELECT op FROM op)",
            "oppart WHERE articulo NOT IN (SELECT articulo FROM prods)",
            "clavesadd WHERE Articulo NOT IN (SELECT articulo FROM prods)",
            "estaciones WHERE almacen NOT IN (SELECT almacen FROM almacen)",
            "existencias WHERE articulo NOT IN (SELECT articulo FROM prods)",
            "turnoempleado WHERE empleado NOT IN (SELECT empleado FROM empleados)",
            "turnoempleado WHERE turno NOT IN (SELECT turno FROM turnos)",
            "horarios WHERE turno NOT IN (SELECT turno FROM turnos)",
            "horarios WHERE Empleado NOT IN (SELECT empleado FROM empleados)",
            "prods k JOIN componen c ON c.articulo = k.articulo WHERE ABS(k.costo * c.Minimo - "
            "(SELECT SUM(r.Cantidad * p.costo) FROM comppart r JOIN prods p ON p.articulo = "
            "r.Componente WHERE r.articulo = k.articulo)) > 1e-9",
        };
        for (const char *desde : nunca)
            QVERIFY2(cuenta(base, desde) == 0, desde);
        const char *alguno[] = {
            // A kit inside a kit, a kit made in batches, orders in both states, a base currency.
            "comppart WHERE Componente IN (SELECT articulo FROM prods WHERE kit <> 0)",
            "componen WHERE Minimo > 1",
            "op WHERE estado = 'CO'",
            "op WHERE estado = 'PE' AND op IN (SELECT op FROM oppart)",
            "monedas WHERE Base <> 0",
            "turnoempleado",
            // The module's texts: parentheses, capitals, two blanks, keys in any case.
            "oppart WHERE (((Op)=1))",
            "comppart WHERE articulo =  'REPISA'",
            "prods WHERE articulo = 'soporte' AND kit <> 0",
        };
        for (const char *desde : alguno)
            QVERIFY2(cuenta(base, desde) > 0, desde);

        QHash<QString, int> antes;
        for (const QString &t : anfitrion::tablasEsquema())
            antes.insert(t, cuenta(base, t));
        // A row edited by hand survives; a deleted base row comes back.
        base.ejecuta("UPDATE mensajes SET texto = 'Propio' WHERE numero = 72");
        base.ejecuta("DELETE FROM mensajes WHERE numero = 834");
        base.sesion().creaBase(true);
        for (const QString &t : anfitrion::tablasEsquema())
            QCOMPARE(cuenta(base, t), antes.value(t));
        QCOMPARE(base.escalar("SELECT texto FROM mensajes WHERE numero = 72").toString(), "Propio");
    }
};

QTEST_GUILESS_MAIN(TstEsquema)
#include "tst_esquema.moc"
