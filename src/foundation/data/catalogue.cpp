// The 57 named commands of amb1. Report sources keep the text they were saved
// with, written for the store's SQL: "&" joins are "||" joins (with COALESCE,
// since "&" took a missing name as blank), "TOP n" is "LIMIT n", aliases are
// not reused inside the same select, and fixed dates are plain ISO text.
// Hierarchical sources are Shape structures with the same aliases and the
// same RELATE / COMPUTE BY columns.
#include "foundation/data/catalogue_p.h"

namespace tq::detail {

namespace {

using ShapePtr = std::shared_ptr<const Shape>;

ShapePtr rowsOf(const QString& alias, const QString& sql, QList<Shape::Relation> relations = {})
{
    auto s = std::make_shared<Shape>();
    s->alias = alias;
    s->sql = sql;
    s->relations = std::move(relations);
    return s;
}

ShapePtr groupsOf(const QString& alias, const QString& sql, const QStringList& by)
{
    auto s = std::make_shared<Shape>();
    s->alias = alias;
    s->sql = sql;
    s->computeBy = by;
    return s;
}

// APPEND (child AS name RELATE 'parentColumn' TO 'childColumn') AS name
Shape::Relation relate(const ShapePtr& child, const QString& parentColumn,
                       const QString& childColumn)
{
    return Shape::Relation{child->alias, child, parentColumn, childColumn};
}

CommandDef slot(const QString& name, LockType lock, const QString& serves)
{
    CommandDef d;
    d.name = name;
    d.lock = lock;
    d.kind = CommandKind::Slot;
    d.serves = serves;
    return d;
}

CommandDef table(const QString& name, const QString& tableName, const QString& serves)
{
    CommandDef d;
    d.name = name;
    d.lock = LockType::Optimistic;
    d.kind = CommandKind::Table;
    d.text = tableName;
    d.serves = serves;
    return d;
}

CommandDef query(const QString& name, LockType lock, const QString& sql, const QString& serves)
{
    CommandDef d;
    d.name = name;
    d.lock = lock;
    d.kind = CommandKind::Query;
    d.text = sql;
    d.serves = serves;
    return d;
}

CommandDef shaped(const QString& name, LockType lock, const ShapePtr& shape,
                  const QString& serves)
{
    CommandDef d;
    d.name = name;
    d.lock = lock;
    d.kind = CommandKind::Shaped;
    d.shape = shape;
    d.serves = serves;
    return d;
}

constexpr LockType RO = LockType::ReadOnly;
constexpr LockType OPT = LockType::Optimistic;

// Lines of every invoice, as the invoice print-outs and the totals listing read them.
const QString kInvoiceLines = QStringLiteral(
    "SELECT FacturaDetalle.factura, FacturaDetalle.cod_descripcionexamen, "
    "Examenes.cod_descripcionexamen AS EXPR1, Examenes.examen, Examenes.precio, "
    "FacturaDetalle.cantidad, FacturaDetalle.subtotal, Factura.factura AS EXPR2 "
    "FROM FacturaDetalle, Examenes, Factura "
    "WHERE FacturaDetalle.cod_descripcionexamen = Examenes.cod_descripcionexamen "
    "AND FacturaDetalle.factura = Factura.factura");

ShapePtr shapeRfact1()
{
    return rowsOf(
        QStringLiteral("rfact1"),
        QStringLiteral(
            "SELECT Factura.factura, Factura.fecha, Factura.cod_paciente, "
            "Pacientes.direccion_paciente, Factura.sub_total, Factura.total, Factura.faturado, "
            "Factura.tipo_factura, Pacientes.nombre_paciente, Pacientes.apellido_paciente, "
            "Factura.adicional, Factura.valadicional, Factura.anulada, Factura.abono, "
            "Factura.total - Factura.abono AS deuda, "
            "COALESCE(Pacientes.nombre_paciente, '') || ' ' || "
            "COALESCE(Pacientes.apellido_paciente, '') AS nombre "
            "FROM Factura, Pacientes WHERE Factura.cod_paciente = Pacientes.cod_paciente"),
        {relate(rowsOf(QStringLiteral("Command1"), kInvoiceLines), QStringLiteral("factura"),
                QStringLiteral("factura"))});
}

ShapePtr shapeRcorte()
{
    return groupsOf(
        QStringLiteral("rcorte"),
        QStringLiteral(
            "SELECT Factura.factura, Factura.fecha, Factura.cod_paciente, Factura.total, "
            "Factura.faturado, Factura.tipo_factura, Pacientes.nombre_paciente, "
            "Pacientes.apellido_paciente, Factura.anulada, Factura.tarjeta, Factura.efectivo, "
            "Factura.cheque, "
            "COALESCE(nombre_paciente, '') || ' ' || COALESCE(apellido_paciente, '') AS nombre "
            "FROM Factura, Pacientes WHERE Factura.cod_paciente = Pacientes.cod_paciente "
            "ORDER BY Factura.fecha, Factura.tipo_factura"),
        {QStringLiteral("fecha"), QStringLiteral("anulada")});
}

ShapePtr shapeRexamenes()
{
    return rowsOf(
        QStringLiteral("rexamenes"),
        QStringLiteral("SELECT cod_tipo_examen, tipo_examen FROM TipoExamen "
                       "ORDER BY cod_tipo_examen"),
        {relate(rowsOf(QStringLiteral("rlistaexamenes"),
                       QStringLiteral("SELECT cod_descripcionexamen, examen, precio, "
                                      "tiempo_entrega, cod_tipo_examen FROM Examenes "
                                      "ORDER BY cod_descripcionexamen")),
                QStringLiteral("cod_tipo_examen"), QStringLiteral("cod_tipo_examen"))});
}

ShapePtr shapeCommand2()
{
    const ShapePtr command4 = rowsOf(QStringLiteral("Command4"), kInvoiceLines);
    const ShapePtr command3 = rowsOf(
        QStringLiteral("Command3"),
        QStringLiteral(
            "SELECT Factura.factura, Factura.fecha, Factura.cod_paciente, "
            "Pacientes.direccion_paciente, Factura.total, Factura.faturado, "
            "Factura.tipo_factura, Pacientes.nombre_paciente, Pacientes.apellido_paciente "
            "FROM Factura, Pacientes WHERE Factura.cod_paciente = Pacientes.cod_paciente"),
        {relate(command4, QStringLiteral("factura"), QStringLiteral("factura"))});
    return rowsOf(QStringLiteral("Command2"), QStringLiteral("SELECT total FROM Factura"),
                  {relate(command3, QStringLiteral("total"), QStringLiteral("total"))});
}

ShapePtr shapeInsuProv()
{
    return groupsOf(
        QStringLiteral("InsuProv"),
        QStringLiteral(
            "SELECT proveedor.prvcod, proveedor.prvnom, proveedor.prvref, proveedor.prvdir, "
            "proveedor.prvtel, proveedor.prvcor, proveedoresinsumos.prvcod AS EXPR1, "
            "proveedoresinsumos.cod_item, Insumos.nombre_Item, Insumos.descripcion_Item, "
            "Insumos.precio_Item, Insumos.Cod_Item "
            "FROM proveedor, proveedoresinsumos, Insumos "
            "WHERE proveedor.prvcod = proveedoresinsumos.prvcod "
            "AND proveedoresinsumos.cod_item = Insumos.Cod_Item"),
        {QStringLiteral("prvcod"), QStringLiteral("prvnom"), QStringLiteral("prvref"),
         QStringLiteral("prvdir"), QStringLiteral("prvtel"), QStringLiteral("prvcor")});
}

ShapePtr shapeRepCompras()
{
    return groupsOf(
        QStringLiteral("RepCompras"),
        QStringLiteral(
            "SELECT compra.numcompra, compra.fecha, compra.prvcod, proveedor.prvnom, "
            "proveedor.prvref, proveedor.prvdir, proveedor.prvtel, proveedor.prvcor, "
            "compradetalle.cod_item, Insumos.nombre_Item, compradetalle.cantidad, "
            "compradetalle.preciodecompra, compradetalle.subtotal, compra.total "
            "FROM compra, compradetalle, proveedor, Insumos "
            "WHERE compra.numcompra = compradetalle.numcompra "
            "AND compra.prvcod = proveedor.prvcod "
            "AND compradetalle.cod_item = Insumos.Cod_Item"),
        {QStringLiteral("prvcod"), QStringLiteral("fecha"), QStringLiteral("numcompra"),
         QStringLiteral("prvnom"), QStringLiteral("prvref"), QStringLiteral("prvdir"),
         QStringLiteral("prvtel"), QStringLiteral("prvcor"), QStringLiteral("total")});
}

ShapePtr shapeRepcomp()
{
    return groupsOf(QStringLiteral("Repcomp"),
                    QStringLiteral("SELECT compra.fecha, compra.numcompra, compra.prvcod, "
                                   "proveedor.prvnom, compra.total FROM compra, proveedor "
                                   "WHERE compra.prvcod = proveedor.prvcod"),
                    {QStringLiteral("prvcod"), QStringLiteral("prvnom")});
}

ShapePtr shapeRepClienteexamen()
{
    return groupsOf(
        QStringLiteral("RepClienteexamen"),
        QStringLiteral(
            "SELECT Factura.fecha, Factura.cod_paciente, Pacientes.nombre_paciente, "
            "Pacientes.apellido_paciente, Factura.factura, FacturaDetalle.cod_descripcionexamen, "
            "Examenes.examen, Factura.anulada "
            "FROM Factura, FacturaDetalle, Pacientes, Examenes "
            "WHERE Factura.factura = FacturaDetalle.factura "
            "AND Factura.cod_paciente = Pacientes.cod_paciente "
            "AND FacturaDetalle.cod_descripcionexamen = Examenes.cod_descripcionexamen "
            "AND (Factura.anulada = FALSE) ORDER BY Factura.fecha"),
        {QStringLiteral("cod_paciente"), QStringLiteral("nombre_paciente"),
         QStringLiteral("apellido_paciente")});
}

const QString kInsurers =
    QStringLiteral("SELECT Cod_Seguro, Empresa, Contacto, Tel, Banco, Cuenta FROM seguros");

ShapePtr shapeRcuentas()
{
    return rowsOf(
        QStringLiteral("rcuentas"), kInsurers,
        {relate(rowsOf(QStringLiteral("rcuentasdetalle"),
                       QStringLiteral(
                           "SELECT DISTINCT cxc.factura, cxc.estado, Factura.fecha, "
                           "Factura.total, Factura.anulada, "
                           "COALESCE(Pacientes.nombre_paciente, '') || ' ' || "
                           "COALESCE(Pacientes.apellido_paciente, '') AS NOMBRE, "
                           "Pacientes.Cod_seguro FROM Factura, cxc, Pacientes "
                           "WHERE Factura.anulada = FALSE AND cxc.estado = FALSE "
                           "AND Factura.factura = cxc.factura "
                           "AND Factura.cod_paciente = Pacientes.cod_paciente")),
                QStringLiteral("Cod_Seguro"), QStringLiteral("Cod_seguro"))});
}

ShapePtr shapeRcpagadas()
{
    return rowsOf(
        QStringLiteral("rcpagadas"), kInsurers,
        {relate(rowsOf(QStringLiteral("rcuentaspagadas"),
                       QStringLiteral(
                           "SELECT DISTINCT cxc.factura, cxc.estado, Factura.fecha, "
                           "Factura.total, "
                           "COALESCE(Pacientes.nombre_paciente, '') || ' ' || "
                           "COALESCE(Pacientes.apellido_paciente, '') AS NOMBRE, "
                           "Pacientes.Cod_seguro FROM Factura, cxc, Pacientes "
                           "WHERE cxc.estado = TRUE AND Factura.factura = cxc.factura "
                           "AND Factura.cod_paciente = Pacientes.cod_paciente")),
                QStringLiteral("Cod_Seguro"), QStringLiteral("Cod_seguro"))});
}

ShapePtr shapeRepventastarjeta()
{
    // IST holds one row, so it joins with no condition.
    return groupsOf(
        QStringLiteral("repventastarjeta"),
        QStringLiteral(
            "SELECT Factura.fecha, Factura.factura, Factura.tarjeta, IST.IST, "
            "Factura.tarjeta * IST.IST AS SUB, Datostarjeta.num_autorizacion, "
            "Factura.tarjeta - (Factura.tarjeta * IST.IST) AS VALTOTAL, "
            "Datostarjeta.num_tarjeta, Datostarjeta.num_identidad, "
            "Datostarjeta.factura AS EXPR1, Factura.cod_paciente, "
            "Pacientes.cod_paciente AS EXPR2, Pacientes.nombre_paciente "
            "FROM Datostarjeta, Factura, Pacientes, IST "
            "WHERE Datostarjeta.factura = Factura.factura "
            "AND Factura.cod_paciente = Pacientes.cod_paciente"),
        {QStringLiteral("fecha")});
}

ShapePtr shapeRorden()
{
    return rowsOf(
        QStringLiteral("rorden"),
        QStringLiteral(
            "SELECT orden.orden, orden.fecha, orden.cod_paciente, Pacientes.direccion_paciente, "
            "orden.sub_total, orden.total, orden.faturado, Pacientes.nombre_paciente, "
            "Pacientes.apellido_paciente, orden.adicional, orden.valadicional, orden.anulada, "
            "COALESCE(Pacientes.nombre_paciente, '') || ' ' || "
            "COALESCE(Pacientes.apellido_paciente, '') AS nombre "
            "FROM orden, Pacientes WHERE orden.cod_paciente = Pacientes.cod_paciente"),
        {relate(rowsOf(QStringLiteral("Command7"),
                       QStringLiteral(
                           "SELECT ordenDetalle.orden, ordenDetalle.cod_descripcionexamen, "
                           "Examenes.cod_descripcionexamen AS EXPR1, Examenes.examen, "
                           "Examenes.precio, ordenDetalle.cantidad, ordenDetalle.subtotal, "
                           "orden.orden AS EXPR2 FROM ordenDetalle, Examenes, orden "
                           "WHERE ordenDetalle.cod_descripcionexamen = "
                           "Examenes.cod_descripcionexamen "
                           "AND ordenDetalle.orden = orden.orden")),
                QStringLiteral("orden"), QStringLiteral("Orden"))});
}

ShapePtr shapeComision()
{
    // Only invoices with a doctor; a doctor gets one group per day.
    return groupsOf(
        QStringLiteral("comision"),
        QStringLiteral(
            "SELECT Factura.factura, Factura.pagada_doc, Factura.fecha, Factura.total, "
            "Factura.tipo_factura, Factura.anulada, Factura.cod_doctor, Doctores.Nombre_doctor, "
            "Doctores.Apellido_doctor, Doctores.porsentaje, Factura.cod_paciente, "
            "Pacientes.nombre_paciente, Pacientes.apellido_paciente, "
            "Factura.total * (Doctores.porsentaje / 100.0) AS comi, "
            "COALESCE(Doctores.nombre_doctor, '') || ' ' || "
            "COALESCE(Doctores.apellido_doctor, '') AS nombre, "
            "COALESCE(Pacientes.nombre_paciente, '') || ' ' || "
            "COALESCE(Pacientes.apellido_paciente, '') AS nombrepac "
            "FROM Factura, Doctores, Pacientes "
            "WHERE Factura.cod_doctor = Doctores.Cod_doctor "
            "AND Factura.cod_paciente = Pacientes.cod_paciente "
            "AND (Factura.cod_doctor IS NOT NULL) AND (Factura.anulada = FALSE)"),
        {QStringLiteral("cod_doctor"), QStringLiteral("fecha"), QStringLiteral("nombre"),
         QStringLiteral("pagada_doc")});
}

ShapePtr shapeCuentascliente()
{
    return groupsOf(
        QStringLiteral("cuentascliente"),
        QStringLiteral(
            "SELECT cxc.factura, cxc.Cod_paciente, cxc.estado, Factura.fecha, Factura.total, "
            "Factura.anulada, Pacientes.nombre_paciente, Pacientes.apellido_paciente, "
            "Pacientes.Cod_seguro, seguros.Empresa, "
            "COALESCE(Pacientes.nombre_paciente, '') || ' ' || "
            "COALESCE(Pacientes.apellido_paciente, '') AS nombre "
            "FROM cxc, Factura, Pacientes, seguros "
            "WHERE cxc.factura = Factura.factura AND cxc.Cod_paciente = Pacientes.cod_paciente "
            "AND Pacientes.Cod_seguro = seguros.Cod_Seguro AND (cxc.estado = FALSE) "
            "AND (Factura.anulada = FALSE)"),
        {QStringLiteral("Empresa"), QStringLiteral("nombre"), QStringLiteral("cod_paciente")});
}

QList<CommandDef> build()
{
    QList<CommandDef> c;
    c << slot(QStringLiteral("rsempleado"), OPT,
              QStringLiteral("slot for Empleados in the employee screen, the password change "
                             "and sign-on"));
    c << table(QStringLiteral("rstipoexamen"), QStringLiteral("TipoExamen"),
               QStringLiteral("table TipoExamen; exam type screen and supplies relation; the "
                              "only slot opened with no text"));
    c << slot(QStringLiteral("rsFactura"), OPT,
              QStringLiteral("slot for Factura in the voiding, work-table and stock screens"));
    c << slot(QStringLiteral("rsPacientes"), OPT,
              QStringLiteral("slot for patient lists (Form30, cumples) and, oddly, write-offs "
                             "in descargo"));
    c << slot(QStringLiteral("rsExamenes"), OPT, QStringLiteral("slot for Examenes (form14)"));
    c << slot(QStringLiteral("rstipoexamen2"), OPT,
              QStringLiteral("spare slot; no screen opens it"));
    c << shaped(QStringLiteral("rsrfact1"), RO, shapeRfact1(),
                QStringLiteral("invoice header with its lines; invoice print-outs (DataReport1, "
                               "DataReport13, DataReport15, DataReport20); filtered with "
                               "factura ="));
    c << slot(QStringLiteral("rsacceso"), OPT, QStringLiteral("slot for the sign-on check"));
    c << shaped(QStringLiteral("rsrcorte_Grouping"), RO, shapeRcorte(),
                QStringLiteral("cash cut by date and voided state (DataReport2); filtered by "
                               "date"));
    c << shaped(QStringLiteral("rsrexamenes"), RO, shapeRexamenes(),
                QStringLiteral("exam list by type (DataReport3, DataReport14)"));
    c << slot(QStringLiteral("rsconsultas"), OPT, QStringLiteral("invoice search (Form9)"));
    c << shaped(QStringLiteral("rsCommand2"), RO, shapeCommand2(),
                QStringLiteral("totals with invoice listing (DataReport5)"));
    c << query(QStringLiteral("rsCommand5"), OPT,
               QStringLiteral("SELECT Examenes.cod_tipo_examen, Examenes.cod_descripcionexamen, "
                              "Examenes.examen, Examenes.precio, Examenes.tiempo_entrega "
                              "FROM Examenes ORDER BY Examenes.cod_descripcionexamen LIMIT 10"),
               QStringLiteral("slot used for datos look-ups at start; source of the blank "
                              "invoice (DataReport4)"));
    c << query(QStringLiteral("rsDetallefact"), RO,
               QStringLiteral("SELECT FacturaDetalle.cantidad, Examenes.examen, "
                              "FacturaDetalle.factura, Examenes.cod_descripcionexamen "
                              "FROM FacturaDetalle, Examenes "
                              "WHERE FacturaDetalle.cod_descripcionexamen = "
                              "Examenes.cod_descripcionexamen"),
               QStringLiteral("invoice lines of the search screen, and slot of respaldos in "
                              "frmBackup"));
    c << table(QStringLiteral("rsdetalle"), QStringLiteral("FacturaDetalle"),
               QStringLiteral("table FacturaDetalle"));
    c << table(QStringLiteral("rstarjeta"), QStringLiteral("tarjeta"),
               QStringLiteral("table tarjeta: the older card percentage, read at start"));
    c << slot(QStringLiteral("rsInsumos"), OPT, QStringLiteral("slot for Insumos"));
    c << slot(QStringLiteral("rsRelacion"), OPT, QStringLiteral("slot for Relacion"));
    c << slot(QStringLiteral("rssecexam"), OPT,
              QStringLiteral("second slot for Examenes in form14"));
    c << slot(QStringLiteral("rsmodulos"), OPT,
              QStringLiteral("slot for Select * from datos at the sign-on screen"));
    c << slot(QStringLiteral("rsusumodu"), OPT,
              QStringLiteral("slot for usuariosmodulos at sign-on"));
    c << slot(QStringLiteral("rsPendientes"), OPT,
              QStringLiteral("pending invoices of Form17"));
    c << slot(QStringLiteral("rsdefa"), OPT,
              QStringLiteral("general slot: invoice lines, result rows"));
    c << slot(QStringLiteral("rsplantillas"), OPT,
              QStringLiteral("slot for Plantilla and compra"));
    c << slot(QStringLiteral("rsResultados"), OPT, QStringLiteral("slot for resultados"));
    c << slot(QStringLiteral("rsshowresul"), OPT,
              QStringLiteral("formats of an invoice in result printing"));
    c << slot(QStringLiteral("rsblanco"), OPT,
              QStringLiteral("general slot: result and normal values"));
    c << slot(QStringLiteral("rsdecremento"), OPT, QStringLiteral("slot for decremento"));
    c << slot(QStringLiteral("rsdecredetalle"), OPT,
              QStringLiteral("slot for decrementodetalle"));
    c << shaped(QStringLiteral("rsInsuProv_Grouping"), OPT, shapeInsuProv(),
                QStringLiteral("supplies by supplier (DataReport6)"));
    c << shaped(QStringLiteral("rsRepCompras_Grouping"), RO, shapeRepCompras(),
                QStringLiteral("purchases in detail (DataReport7)"));
    c << query(QStringLiteral("rsRepInsumos"), RO,
               QStringLiteral("SELECT Cod_Item, nombre_Item, precio_Item, unidad, stock, cminima, "
                              "precio_Item * stock AS Invertido FROM Insumos"),
               QStringLiteral("stock list with Invertido (DataReport8)"));
    c << slot(QStringLiteral("rsconresul"), OPT,
              QStringLiteral("spare slot; no screen opens it"));
    c << slot(QStringLiteral("rsconcli"), RO,
              QStringLiteral("patient heading of the result print-out"));
    c << slot(QStringLiteral("rsprovinsumo"), OPT,
              QStringLiteral("spare slot; no screen opens it"));
    c << shaped(QStringLiteral("rsRepcomp_Grouping"), RO, shapeRepcomp(),
                QStringLiteral("purchases by supplier (DataReport9)"));
    c << slot(QStringLiteral("rsProveedores"), OPT,
              QStringLiteral("slot for proveedor (Form26)"));
    c << slot(QStringLiteral("rstemporal"), OPT,
              QStringLiteral("the busiest general slot: EvaluadoTemporal, settings look-ups"));
    c << query(QStringLiteral("rsRepFacgan"), RO,
               QStringLiteral(
                   "SELECT FacturaDetalle.factura, Factura.fecha, "
                   "FacturaDetalle.cod_descripcionexamen, Examenes.examen, "
                   "FacturaDetalle.cantidad, Examenes.precio, Examenes.valor, "
                   "FacturaDetalle.cantidad * Examenes.precio AS Expr1, "
                   "FacturaDetalle.cantidad * Examenes.valor AS Expr2, "
                   "(FacturaDetalle.cantidad * Examenes.precio) - "
                   "(FacturaDetalle.cantidad * Examenes.valor) AS Expr3, Factura.anulada "
                   "FROM Factura, Examenes, FacturaDetalle "
                   "WHERE Factura.factura = FacturaDetalle.factura "
                   "AND Examenes.cod_descripcionexamen = FacturaDetalle.cod_descripcionexamen"),
               QStringLiteral("profit per invoice line (DataReport10)"));
    c << shaped(QStringLiteral("rsRepClienteexamen_Grouping"), RO, shapeRepClienteexamen(),
                QStringLiteral("exams by patient (DataReport11)"));
    c << slot(QStringLiteral("rsRepAgotado"), OPT,
              QStringLiteral("stock-outs (DataReport12); opened at sign-on and in Form28"));
    c << table(QStringLiteral("rstempo"), QStringLiteral("Tempo"),
               QStringLiteral("table Tempo, and a general slot for datos, DTE and free formats"));
    c << shaped(QStringLiteral("rsrcuentas"), RO, shapeRcuentas(),
                QStringLiteral("unpaid insurer invoices by insurer (DataReport17)"));
    c << slot(QStringLiteral("rsmultiusos"), OPT,
              QStringLiteral("general slot of the result screens, as its name says"));
    c << shaped(QStringLiteral("rsrcpagadas"), RO, shapeRcpagadas(),
                QStringLiteral("paid insurer invoices by insurer (DataReport18)"));
    c << query(QStringLiteral("rsRepremitidos"), RO,
               QStringLiteral("SELECT FacturaDetalle.factura, Factura.fecha, "
                              "FacturaDetalle.cod_descripcionexamen, Examenes.examen, "
                              "Factura.anulada FROM FacturaDetalle, Factura, Examenes "
                              "WHERE FacturaDetalle.factura = Factura.factura "
                              "AND FacturaDetalle.cod_descripcionexamen = "
                              "Examenes.cod_descripcionexamen "
                              "AND (Examenes.examen LIKE 'r.%')"),
               QStringLiteral("referred exams (DataReport21), picked by the name prefix \"r.\""));
    c << slot(QStringLiteral("rsrepcambios"), OPT,
              QStringLiteral("change log report (DataReport22)"));
    c << slot(QStringLiteral("rsencabezado"), OPT,
              QStringLiteral("slot for datos in the result screens; heading source of reports"));
    c << shaped(QStringLiteral("rsrepventastarjeta_Grouping"), RO, shapeRepventastarjeta(),
                QStringLiteral("card sales by date (ReporVentasTarjeta)"));
    // As it was saved, the reason is compared with true: a text column read
    // against true picks the reasons written as "1", and is spelled so that
    // both engines pick the same rows.
    c << query(QStringLiteral("rsfactanuladas"), RO,
               QStringLiteral("SELECT factura, fecha, total, anulada, motivo_anulacion, "
                              "fecha_anulacion FROM Factura WHERE (motivo_anulacion = '1')"),
               QStringLiteral("voided invoices (DataReport23)"));
    c << query(QStringLiteral("rsCommand6"), RO,
               QStringLiteral(
                   "SELECT Factura.factura, Factura.anulada, Factura.fecha, "
                   "FacturaDetalle.cod_descripcionexamen, FacturaDetalle.cantidad, "
                   "FacturaDetalle.subtotal, Examenes.cod_descripcionexamen AS EXPR1, "
                   "Examenes.examen FROM Factura, FacturaDetalle, Examenes "
                   "WHERE Factura.factura = FacturaDetalle.factura "
                   "AND FacturaDetalle.cod_descripcionexamen = Examenes.cod_descripcionexamen "
                   "AND (Factura.anulada = FALSE) AND (FacturaDetalle.cod_descripcionexamen = 22) "
                   "AND (Factura.fecha >= '2013-08-20')"),
               QStringLiteral("no caller; a saved query with a fixed exam and date"));
    c << shaped(QStringLiteral("rsrorden"), OPT, shapeRorden(),
                QStringLiteral("order or quotation with its lines (reporOrden)"));
    c << slot(QStringLiteral("rsdoctores"), OPT, QStringLiteral("slot for Doctores"));
    c << shaped(QStringLiteral("rscomision_Grouping"), OPT, shapeComision(),
                QStringLiteral("commissions by doctor and date (ReporComision)"));
    c << slot(QStringLiteral("rsTempora"), OPT,
              QStringLiteral("slot for FacturaDetalle when a result is filled"));
    c << query(QStringLiteral("rsCommand8"), RO,
               QStringLiteral(
                   "SELECT Factura.factura, Factura.fecha, Factura.cod_paciente, "
                   "Pacientes.nombre_paciente, Pacientes.apellido_paciente, "
                   "FacturaDetalle.cod_descripcionexamen, Examenes.examen, "
                   "FacturaDetalle.impreso, FacturaDetalle.num_impresion, "
                   "FacturaDetalle.evaluado FROM Pacientes, Factura, Examenes, FacturaDetalle "
                   "WHERE Pacientes.cod_paciente = Factura.cod_paciente "
                   "AND Factura.factura = FacturaDetalle.factura "
                   "AND Examenes.cod_descripcionexamen = FacturaDetalle.cod_descripcionexamen "
                   "AND (FacturaDetalle.evaluado = TRUE) AND (Factura.cod_paciente = 121)"),
               QStringLiteral("no caller; a saved query with a fixed patient"));
    c << shaped(QStringLiteral("rscuentascliente_Grouping"), RO, shapeCuentascliente(),
                QStringLiteral("open invoices by insurer and patient (DataReport24)"));
    return c;
}

}  // namespace

const QList<CommandDef>& commandCatalogue()
{
    static const QList<CommandDef> catalogue = build();
    return catalogue;
}

}  // namespace tq::detail
