// The demo database: a small furniture-hardware workshop.
//
// Warehouses: 1 "Almacén general" (raw material), 2 "Producción",
//   3 "Producto terminado". Station "1" defaults to warehouse 1, no reader.
// Currencies: MN (pesos, the base currency, Tc 1), USD (Tc 17.50),
//   EUR (Tc 19.20). Salespeople: V01 Laura Méndez, V02 Jorge Salas.
// Articles (prods; costo = costo_u):
//   TORN-01 Tornillo 1/4" (PZA, 0.50), TUER-01 Tuerca 1/4" (PZA, 0.30),
//   PLAC-01 Placa de acero 10x10 (PZA, 12.00, ubicacion "SOLO 1,2"),
//   TAB-01 Tablero MDF 60 cm (PZA, 45.00), PINT-01 Pintura negra (LT, 80.00,
//   ubicacion "SOLO 1");
//   kits (kit = 1): SOPORTE Soporte metálico, REPISA Repisa flotante,
//   PAQ-TORN Paquete de tornillería.
// Recipes (componen / comppart, components taken from warehouse 1):
//   SOPORTE, Minimo 1: 4 TORN-01, 4 TUER-01, 1 PLAC-01.
//   REPISA, Minimo 1: 1 TAB-01, 2 SOPORTE (a kit inside a kit, taken from
//     warehouse 3), 0.25 PINT-01.
//   PAQ-TORN, Minimo 10 (one batch yields ten packs): 100 TORN-01, 100 TUER-01.
// Secondary keys (clavesadd): 7501000000011 -> TORN-01 (caja de 100),
//   7501000000028 -> TUER-01, REP-NEGRA -> REPISA.
// Stock (existencias): raw material in warehouse 1, a few SOPORTE in 3.
// Employees E001-E006; shifts MATUTINO (07:00-15:00, meal 11:00-11:30, rest
//   "Dimingo") with E001, E002, E003 and VESPERTINO (15:00-23:00, meal
//   19:00-19:30, rest "Sabado") with E004, E005; E006 has no shift. Two
//   schedule rows of MATUTINO on 2024-05-06.
// More employees E007-E012 and the night shift NOCHE (22:00-06:00, past
//   midnight; meal 02:00-02:30, rest "Viernes") with E008, E009, E010;
//   E006, E007, E011 and E012 belong to no shift.
// Inventory concepts (conceptos): OP, EN, DE, COP, DES, DEN, the concepts the
//   module posts movements with. Taxes (impuestos): IVA16 16 %, IVA8 8 %,
//   IVA0 0 %, EXENTO 0 %.
// Orders (Tipo_doc "OP", user ADMIN, none busy):
//   1 "PE" for warehouse 3: 10 SOPORTE, 2 REPISA;
//   2 "CO" for warehouse 3: 5 PAQ-TORN, automatico 1;
//   3 "PE" for warehouse 2 without lines.

#include "host/base/Demo.h"
#include "host/base/Esquema.h"
#include "host/sql/Sql.h"

namespace zuvi::anfitrion {

namespace {

const char *const kFilas[] = {
    "almacen (almacen, nombre) VALUES (1, 'Almacén general')",
    "almacen (almacen, nombre) VALUES (2, 'Producción')",
    "almacen (almacen, nombre) VALUES (3, 'Producto terminado')",

    "monedas (moneda, nombre, Tc, Base) VALUES ('MN', 'Pesos', 1, 1)",
    "monedas (moneda, nombre, Tc, Base) VALUES ('USD', 'Dólares', 17.5, 0)",
    "monedas (moneda, nombre, Tc, Base) VALUES ('EUR', 'Euros', 19.2, 0)",

    "vends (vend, Nombre) VALUES ('V01', 'Laura Méndez')",
    "vends (vend, Nombre) VALUES ('V02', 'Jorge Salas')",

    "prods (articulo, descrip, unidad, costo_u, ubicacion, kit, costo, precio) VALUES "
    "('TORN-01', 'Tornillo 1/4\"', 'PZA', 0.5, '', 0, 0.5, 1)",
    "prods (articulo, descrip, unidad, costo_u, ubicacion, kit, costo, precio) VALUES "
    "('TUER-01', 'Tuerca 1/4\"', 'PZA', 0.3, '', 0, 0.3, 0.6)",
    "prods (articulo, descrip, unidad, costo_u, ubicacion, kit, costo, precio) VALUES "
    "('PLAC-01', 'Placa de acero 10x10', 'PZA', 12, 'SOLO 1,2', 0, 12, 20)",
    "prods (articulo, descrip, unidad, costo_u, ubicacion, kit, costo, precio) VALUES "
    "('TAB-01', 'Tablero MDF 60 cm', 'PZA', 45, '', 0, 45, 70)",
    "prods (articulo, descrip, unidad, costo_u, ubicacion, kit, costo, precio) VALUES "
    "('PINT-01', 'Pintura negra', 'LT', 80, 'SOLO 1', 0, 80, 120)",
    "prods (articulo, descrip, unidad, costo_u, ubicacion, kit, costo, precio) VALUES "
    "('SOPORTE', 'Soporte metálico', 'PZA', 15.2, '', 1, 15.2, 35)",
    "prods (articulo, descrip, unidad, costo_u, ubicacion, kit, costo, precio) VALUES "
    "('REPISA', 'Repisa flotante', 'PZA', 95.4, '', 1, 95.4, 180)",
    "prods (articulo, descrip, unidad, costo_u, ubicacion, kit, costo, precio) VALUES "
    "('PAQ-TORN', 'Paquete de tornillería', 'PAQ', 8, '', 1, 8, 15)",

    "componen (articulo, Minimo) VALUES ('SOPORTE', 1)",
    "componen (articulo, Minimo) VALUES ('REPISA', 1)",
    "componen (articulo, Minimo) VALUES ('PAQ-TORN', 10)",
    "comppart (id, articulo, Componente, Cantidad, Almacen) VALUES (1, 'SOPORTE', 'TORN-01', 4, 1)",
    "comppart (id, articulo, Componente, Cantidad, Almacen) VALUES (2, 'SOPORTE', 'TUER-01', 4, 1)",
    "comppart (id, articulo, Componente, Cantidad, Almacen) VALUES (3, 'SOPORTE', 'PLAC-01', 1, 1)",
    "comppart (id, articulo, Componente, Cantidad, Almacen) VALUES (4, 'REPISA', 'TAB-01', 1, 1)",
    "comppart (id, articulo, Componente, Cantidad, Almacen) VALUES (5, 'REPISA', 'SOPORTE', 2, 3)",
    "comppart (id, articulo, Componente, Cantidad, Almacen) VALUES (6, 'REPISA', 'PINT-01', 0.25, "
    "1)",
    "comppart (id, articulo, Componente, Cantidad, Almacen) VALUES "
    "(7, 'PAQ-TORN', 'TORN-01', 100, 1)",
    "comppart (id, articulo, Componente, Cantidad, Almacen) VALUES "
    "(8, 'PAQ-TORN', 'TUER-01', 100, 1)",

    "clavesadd (clave, Articulo, Dato1, Dato2, unidad) VALUES "
    "('7501000000011', 'TORN-01', 'Caja de 100', 'Proveedor Herrajes del Norte', 'CJA')",
    "clavesadd (clave, Articulo, Dato1, Dato2, unidad) VALUES "
    "('7501000000028', 'TUER-01', 'Bolsa de 50', 'Proveedor Herrajes del Norte', 'BOL')",
    "clavesadd (clave, Articulo, Dato1, Dato2, unidad) VALUES "
    "('REP-NEGRA', 'REPISA', 'Color negro', '', 'PZA')",

    "existencias (articulo, almacen, cantidad) VALUES ('TORN-01', 1, 5000)",
    "existencias (articulo, almacen, cantidad) VALUES ('TUER-01', 1, 5000)",
    "existencias (articulo, almacen, cantidad) VALUES ('PLAC-01', 1, 200)",
    "existencias (articulo, almacen, cantidad) VALUES ('TAB-01', 1, 80)",
    "existencias (articulo, almacen, cantidad) VALUES ('PINT-01', 1, 40)",
    "existencias (articulo, almacen, cantidad) VALUES ('SOPORTE', 3, 12)",

    "empleados (empleado, nombre) VALUES ('E001', 'Ana Torres')",
    "empleados (empleado, nombre) VALUES ('E002', 'Benito Ruiz')",
    "empleados (empleado, nombre) VALUES ('E003', 'Carmen Díaz')",
    "empleados (empleado, nombre) VALUES ('E004', 'Daniel Ochoa')",
    "empleados (empleado, nombre) VALUES ('E005', 'Elena Vargas')",
    "empleados (empleado, nombre) VALUES ('E006', 'Fernando Lara')",

    "turnos (turno, entrada, comida, salida, descanso, regcomida) VALUES "
    "('MATUTINO', '07:00', '11:00', '15:00', 'Dimingo', '11:30')",
    "turnos (turno, entrada, comida, salida, descanso, regcomida) VALUES "
    "('VESPERTINO', '15:00', '19:00', '23:00', 'Sabado', '19:30')",
    "turnoempleado (turno, empleado) VALUES ('MATUTINO', 'E001')",
    "turnoempleado (turno, empleado) VALUES ('MATUTINO', 'E002')",
    "turnoempleado (turno, empleado) VALUES ('MATUTINO', 'E003')",
    "turnoempleado (turno, empleado) VALUES ('VESPERTINO', 'E004')",
    "turnoempleado (turno, empleado) VALUES ('VESPERTINO', 'E005')",
    "horarios (id, turno, fecha, Empleado, HoraEntrada, comida, HoraSalida) VALUES "
    "(1, 'MATUTINO', '2024-05-06', 'E001', '07:00', '11:00', '15:00')",
    "horarios (id, turno, fecha, Empleado, HoraEntrada, comida, HoraSalida) VALUES "
    "(2, 'MATUTINO', '2024-05-06', 'E002', '07:00', '11:00', '15:00')",

    "empleados (empleado, nombre) VALUES ('E007', 'Gabriela Ríos')",
    "empleados (empleado, nombre) VALUES ('E008', 'Hugo Medina')",
    "empleados (empleado, nombre) VALUES ('E009', 'Irene Castro')",
    "empleados (empleado, nombre) VALUES ('E010', 'Jorge Núñez')",
    "empleados (empleado, nombre) VALUES ('E011', 'Karla Soto')",
    "empleados (empleado, nombre) VALUES ('E012', 'Luis Peña')",
    "turnos (turno, entrada, comida, salida, descanso, regcomida) VALUES "
    "('NOCHE', '22:00', '02:00', '06:00', 'Viernes', '02:30')",
    "turnoempleado (turno, empleado) VALUES ('NOCHE', 'E008')",
    "turnoempleado (turno, empleado) VALUES ('NOCHE', 'E009')",
    "turnoempleado (turno, empleado) VALUES ('NOCHE', 'E010')",

    "op (op, estado, ocupado, usuario, usufecha, usuhora, f_emision, fechaEntrega, importe, costo,"
    " almacen, observ, automatico, ordencompra, cerrado, Tipo_doc) VALUES (1, 'PE', 0, 'ADMIN',"
    " '2024-05-02', '09:15:00', '2024-05-02', '2024-05-09', 710, 0, 3,"
    " 'Soportes y repisas para la tienda centro', 0, 4501, 0, 'OP')",
    "op (op, estado, ocupado, usuario, usufecha, usuhora, f_emision, fechaEntrega, importe, costo,"
    " almacen, observ, automatico, ordencompra, cerrado, Tipo_doc) VALUES (2, 'CO', 0, 'ADMIN',"
    " '2024-05-03', '12:40:10', '2024-05-03', '2024-05-04', 75, 40, 3,"
    " 'Paquetes de tornillería', 1, 0, 0, 'OP')",
    "op (op, estado, ocupado, usuario, usufecha, usuhora, f_emision, fechaEntrega, importe, costo,"
    " almacen, observ, automatico, ordencompra, cerrado, Tipo_doc) VALUES (3, 'PE', 0, 'ADMIN',"
    " '2024-05-06', '08:00:00', '2024-05-06', '2024-05-13', 0, 0, 2, '', 0, 0, 0, 'OP')",
    "oppart (id_entrada, op, tipo_doc, no_referen, articulo, cantidad, precio, impuesto, observ,"
    " partida, terminado, usuario, usufecha, usuhora) VALUES (1, 1, 'OP', 1, 'SOPORTE', 10, 35, 0,"
    " 'Soporte metálico', 0, 0, 'ADMIN', '2024-05-02', '09:15:00')",
    "oppart (id_entrada, op, tipo_doc, no_referen, articulo, cantidad, precio, impuesto, observ,"
    " partida, terminado, usuario, usufecha, usuhora) VALUES (2, 1, 'OP', 1, 'REPISA', 2, 180, 0,"
    " 'Repisa flotante', 0, 0, 'ADMIN', '2024-05-02', '09:16:30')",
    "oppart (id_entrada, op, tipo_doc, no_referen, articulo, cantidad, precio, impuesto, observ,"
    " partida, terminado, usuario, usufecha, usuhora) VALUES (3, 2, 'OP', 2, 'PAQ-TORN', 5, 15, 0,"
    " 'Paquete de tornillería', 0, 5, 'ADMIN', '2024-05-03', '12:41:00')",

    "conceptos (concepto, descrip) VALUES ('OP', 'Orden de producción')",
    "conceptos (concepto, descrip) VALUES ('EN', 'Ensamble: salida de componentes')",
    "conceptos (concepto, descrip) VALUES ('DE', 'Ensamble: entrada del kit')",
    "conceptos (concepto, descrip) VALUES ('COP', 'Desensamble de orden de producción')",
    "conceptos (concepto, descrip) VALUES ('DES', 'Desensamble: entrada de componentes')",
    "conceptos (concepto, descrip) VALUES ('DEN', 'Desensamble: salida del kit')",
    "impuestos (impuesto, descrip, porcentaje) VALUES ('IVA16', 'IVA tasa general', 16)",
    "impuestos (impuesto, descrip, porcentaje) VALUES ('IVA8', 'IVA región fronteriza', 8)",
    "impuestos (impuesto, descrip, porcentaje) VALUES ('IVA0', 'IVA tasa cero', 0)",
    "impuestos (impuesto, descrip, porcentaje) VALUES ('EXENTO', 'Exento de impuesto', 0)",
};

} // namespace

void insertaDemo(const QSqlDatabase &db, Motor motor)
{
    const QString inserta = insertaSiFalta(motor) + QLatin1Char(' ');
    for (const char *fila : kFilas)
        ejecuta(db, inserta + QString::fromUtf8(fila));
}

} // namespace zuvi::anfitrion
