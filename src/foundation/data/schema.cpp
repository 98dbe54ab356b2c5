#include "foundation/data/schema.h"

#include "foundation/base/apperror.h"
#include "foundation/base/passwords.h"

#include <QDate>
#include <QHash>
#include <QList>
#include <QPair>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariant>
#include <vector>

namespace tq::schema {

namespace {

// Column types. SQLite and PostgreSQL both read these the same way, except
// the store's own counters, which each engine spells its own way.
constexpr const char* kCounter = "@COUNTER@";
constexpr const char* kKey = "INTEGER PRIMARY KEY";       // typed or worked out by a screen
constexpr const char* kInt = "INTEGER";                   // codes and numbers, format ids too
constexpr const char* kMoney = "NUMERIC(12,2) DEFAULT 0"; // written through "#.00"
constexpr const char* kNumber = "NUMERIC";                // rates, quantities, stock
constexpr const char* kYesNo = "BOOLEAN NOT NULL DEFAULT FALSE";
constexpr const char* kDate = "DATE";
constexpr const char* kMemo = "TEXT";

// Widths that hold what the screens accept.
constexpr const char* kName = "VARCHAR(60)";
constexpr const char* kAddress = "VARCHAR(150)";
constexpr const char* kPhone = "VARCHAR(30)";
constexpr const char* kMail = "VARCHAR(80)";
constexpr const char* kUser = "VARCHAR(50)";   // sign-on names
constexpr const char* kPasswordHash = "VARCHAR(128)";   // Argon2id hashes, never the password
constexpr const char* kShort = "VARCHAR(20)";
constexpr const char* kTitle = "VARCHAR(100)"; // exam, company, parameter names
constexpr const char* kReason = "VARCHAR(255)";

struct Column {
    const char* name;
    const char* type;
};

struct Table {
    const char* name;
    std::vector<Column> columns;
};

struct Index {
    const char* table;
    std::vector<const char*> columns;
    const char* name = nullptr;    // for a partial index
    const char* where = nullptr;   // rows it covers; null for all
};

const std::vector<Table>& tables()
{
    static const std::vector<Table> t = {
        // Registers
        {"Empleados",
         {{"cod_empleado", kCounter},
          {"nombre_empleado", kName},
          {"apellido_empleado", kName},
          {"direccion_empleado", kAddress},
          {"tel_empleado", kPhone},
          {"cel_empleado", kPhone},
          {"fecha_nacimiento", kDate},   // the hiring date, as the screen captions it
          {"rol", kInt},
          {"usuario", kUser},
          {"Password", kPasswordHash}}},
        {"usuariosmodulos", {{"cod_empleado", kInt}, {"cod_modulo", kInt}}},
        {"Pacientes",
         {{"cod_paciente", kCounter},
          {"nombre_paciente", kName},
          {"apellido_paciente", kName},
          {"sexo", kShort},
          {"fecha_nacimiento", kDate},
          {"tel_paciente", kPhone},
          {"cel_paciente", kPhone},
          {"direccion_paciente", kAddress},
          {"correo", kMail},
          {"fax_cliente", kPhone},
          {"asegurado", kYesNo},
          {"eadulto", kYesNo},
          {"Cod_seguro", "INTEGER DEFAULT 0"}}},
        {"seguros",
         {{"Cod_Seguro", kKey},
          {"Empresa", kTitle},
          {"Contacto", kName},
          {"Tel", kPhone},
          {"Banco", kName},
          {"Cuenta", "VARCHAR(40)"}}},
        {"RelSeguroPrecios",
         {{"cod_seguro", kInt}, {"Cod_descripcionexamen", kInt}, {"precio", kMoney}}},
        {"Doctores",
         {{"Cod_doctor", kCounter},
          {"Nombre_doctor", kName},
          {"Apellido_doctor", kName},
          {"dir_doctor", kAddress},
          {"tel_doctor", kPhone},
          {"correo_doctor", kMail},
          {"porsentaje", "NUMERIC DEFAULT 0"}}},
        {"TipoExamen", {{"cod_tipo_examen", kCounter}, {"tipo_examen", kName}}},
        {"Examenes",
         {{"cod_descripcionexamen", kCounter},
          {"examen", kTitle},
          {"cod_tipo_examen", kInt},
          {"precio", kMoney},
          {"precioo", kMoney},
          {"valor", kMoney},
          {"tiempo_entrega", "VARCHAR(50)"},
          {"llenaresultado", kYesNo}}},

        // Settings
        {"datos",
         {{"nombre_lab", kTitle},
          {"eslogan_lab", kAddress},
          {"rtn_lab", kPhone},
          {"direccion_lab", kAddress},
          {"telefono_lab", kName},
          {"fax_lab", kPhone},
          {"correo_lab", kMail},
          {"ticketera", kYesNo},
          {"pidecontrasena", kYesNo},
          {"terceraedadauto", kYesNo}}},
        {"IST", {{"IST", "NUMERIC DEFAULT 0"}}},
        {"DTE", {{"DTE", "NUMERIC DEFAULT 0"}}},
        {"tarjeta", {{"tarjeta", "INTEGER DEFAULT 0"}}},
        {"respaldos", {{"id", kCounter}, {"fecha_res", kDate}, {"usuario", kUser}}},

        // Invoices
        {"Factura",
         {{"factura", kKey},
          {"fecha", kDate},
          {"cod_paciente", kInt},
          {"faturado", kUser},
          {"sub_total", kMoney},
          {"adicional", kShort},
          {"valadicional", kMoney},
          {"total", kMoney},
          {"efectivo", kMoney},
          {"tarjeta", kMoney},
          {"cheque", kMoney},
          {"Abono", kMoney},
          {"pagada", kYesNo},
          {"credito", kYesNo},
          {"edad_paciente", "VARCHAR(40)"},
          {"Cod_doctor", kInt},   // empty when no doctor referred the patient
          {"pagada_doc", kYesNo},
          {"comision_pagada", kMoney},
          {"fecha_pag_doc", kDate},
          {"anulada", kYesNo},
          {"motivo_anulacion", kReason},
          {"fecha_anulacion", kDate},
          {"evaluada", kYesNo},
          {"tipo_factura", "VARCHAR(30)"}}},
        {"FacturaDetalle",
         {{"factura", kInt},
          {"cod_descripcionexamen", kInt},
          {"cantidad", kInt},
          {"subtotal", kMoney},
          {"evaluado", kYesNo},
          {"impreso", kYesNo},
          {"num_impresion", "INTEGER DEFAULT 0"},
          {"tecnico", kUser},
          {"fecha_llenado", kDate},
          {"iduniversalformato", kInt}}},
        {"EvaluadoTemporal",
         {{"factura", kInt},
          {"correlativo", kCounter},
          {"cod_descripcionexamen", kInt},
          {"examen", kTitle},
          {"decrementado", kYesNo}}},
        {"cxc",
         {{"factura", kInt},
          {"Cod_paciente", kInt},
          {"estado", kYesNo},
          {"fecha_pago", kDate},
          {"referencia", kTitle}}},
        {"creditos",
         {{"factura", kInt}, {"numero", kInt}, {"fecha", kDate}, {"abono", kMoney}}},
        {"Datostarjeta",
         {{"factura", kInt},
          {"num_autorizacion", kNumber},
          {"num_tarjeta", kTitle},   // holds the card-holder's name
          {"num_identidad", kPhone}}},
        {"orden",
         {{"orden", kKey},
          {"fecha", kDate},
          {"cod_paciente", kInt},
          {"cod_doctor", kInt},
          {"faturado", kUser},
          {"sub_total", kMoney},
          {"total", kMoney},
          {"adicional", kShort},
          {"valadicional", kMoney},
          {"anulada", kYesNo},
          {"anulacion", kDate},
          {"quien_anulo", kUser},
          {"factura", kInt}}},   // the invoice that billed the order
        {"ordenDetalle",
         {{"orden", kInt},
          {"cod_descripcionexamen", kInt},
          {"cantidad", kInt},
          {"precio", kMoney},
          {"subtotal", kMoney}}},

        // Results
        {"parametros", {{"cod_parametro", kKey}, {"parametro", kTitle}, {"unidad", kPhone}}},
        {"valparametros",
         {{"cod_parametro", kInt}, {"cod_sexo", kInt}, {"valor_normal", kTitle}}},
        {"Plantilla", {{"Cod_Plantilla", kKey}, {"Plantilla", kName}}},
        {"PlantillaParametro",
         {{"Cod_Plantilla", kInt}, {"cod_Parametro", kInt}, {"version", kInt}, {"orden", kInt}}},
        {"resultados",
         {{"num_factura", kInt},
          {"diferenciador", kCounter},
          {"NumFormato", kInt},
          {"Cod_Plantilla", kInt},
          {"celda", kShort},
          {"valor", kMemo},
          {"version", kInt},
          {"iduniversalformato", kInt}}},
        {"submenusformatoblanco",
         {{"codigo_formatoblanco", kInt}, {"submenu", kTitle}, {"valorsubmenu", kMemo}}},
        {"formatoblanco", {{"codigo_formatoblanco", kInt}, {"encabezado", kName}}},
        {"historialcambios",
         {{"Factura", kInt},
          {"plantilla", kName},
          {"usuario", kUser},   // the administrator who authorised the change
          {"fecha", kDate},
          {"descripcion", kReason},
          // The audit of a correction: its number, which cells it took away
          // (celdasanteriores), who typed it and when, which sheet it was.
          {"cod_cambio", kInt},
          {"tecnico", kUser},
          {"momento", "TIMESTAMP"},
          {"NumFormato", kInt},
          {"Cod_Plantilla", kInt}}},
        // The cells of a sheet as they stood before a correction replaced them.
        {"celdasanteriores",
         {{"cod_cambio", kInt},
          {"Cod_Plantilla", kInt},
          {"NumFormato", kInt},
          {"celda", kShort},
          {"valor", kMemo},
          {"version", kInt},
          {"iduniversalformato", kInt}}},
        {"Tempo",
         {{"nombre", kAddress}, {"edad", "VARCHAR(40)"}, {"sexo", kShort}, {"fecha", kShort}}},

        // Inventory
        {"Insumos",
         {{"Cod_Item", kKey},
          {"nombre_Item", kTitle},
          {"descripcion_Item", kReason},
          {"precio_Item", kMoney},
          {"unidad", kPhone},
          {"cminima", "NUMERIC DEFAULT 0"},
          {"stock", "NUMERIC DEFAULT 0"}}},
        {"Relacion",
         {{"Cod_Descripcionexamen", kInt}, {"Cod_Item", kInt}, {"Cantidad", kNumber}}},
        {"proveedor",
         {{"prvcod", kKey},
          {"prvnom", kTitle},
          {"prvref", kTitle},
          {"prvdir", kAddress},
          {"prvtel", kPhone},
          {"prvcor", kMail}}},
        {"proveedoresinsumos", {{"prvcod", kInt}, {"cod_item", kInt}}},
        {"compra",
         {{"numcompra", kKey}, {"fecha", kDate}, {"prvcod", kInt}, {"total", kMoney}}},
        {"compradetalle",
         {{"numcompra", kInt},
          {"cod_item", kInt},
          {"cantidad", kNumber},
          {"preciodecompra", kMoney},
          {"subtotal", kMoney}}},
        {"decremento", {{"factura", kInt}, {"fecha", kDate}}},
        {"decrementodetalle", {{"factura", kInt}, {"cod_item", kInt}, {"cantidad", kNumber}}},
        {"descargar",
         {{"cod_item", kInt}, {"descargo", kNumber}, {"motivo", kReason}, {"fechades", kDate}}},
    };
    return t;
}

// Every join and look-up the screens and the report sources run, so that long
// lists of patients and invoice lines stay instant.
const std::vector<Index>& indexes()
{
    static const std::vector<Index> ix = {
        {"Empleados", {"usuario"}},
        {"usuariosmodulos", {"cod_empleado"}},
        {"Pacientes", {"apellido_paciente", "nombre_paciente"}},
        // Both names in each: the lists by name and by surname read the index alone.
        {"Pacientes", {"nombre_paciente", "apellido_paciente"}},
        {"Pacientes", {"Cod_seguro"}},
        {"RelSeguroPrecios", {"cod_seguro", "Cod_descripcionexamen"}},
        {"RelSeguroPrecios", {"Cod_descripcionexamen"}},
        {"Examenes", {"cod_tipo_examen"}},
        {"Examenes", {"examen"}},
        {"Factura", {"cod_paciente"}},
        {"Factura", {"fecha"}},
        {"Factura", {"Cod_doctor"}},
        {"FacturaDetalle", {"factura"}},
        // The line of one exam in an invoice (closing an exam of the work
        // table stamps that line).
        {"FacturaDetalle", {"factura", "cod_descripcionexamen"}},
        {"FacturaDetalle", {"cod_descripcionexamen"}},
        {"FacturaDetalle", {"iduniversalformato"}},
        // The results waiting to be printed are a handful among a million
        // lines; a partial index keeps that list instant whatever the
        // planner's statistics say.
        {"FacturaDetalle", {"factura"}, "ix_FacturaDetalle_por_imprimir", "num_impresion = 0"},
        {"EvaluadoTemporal", {"factura"}},
        {"cxc", {"factura"}},
        {"cxc", {"Cod_paciente"}},
        {"creditos", {"factura"}},
        {"Datostarjeta", {"factura"}},
        {"orden", {"cod_paciente"}},
        {"orden", {"fecha"}},
        {"orden", {"factura"}},
        {"ordenDetalle", {"orden"}},
        {"valparametros", {"cod_parametro"}},
        {"PlantillaParametro", {"Cod_Plantilla", "version"}},
        {"PlantillaParametro", {"cod_Parametro"}},
        {"resultados", {"num_factura", "NumFormato"}},
        {"resultados", {"iduniversalformato"}},
        {"submenusformatoblanco", {"codigo_formatoblanco"}},
        {"historialcambios", {"Factura"}},
        {"historialcambios", {"fecha"}},
        {"historialcambios", {"cod_cambio"}},
        {"celdasanteriores", {"cod_cambio"}},
        {"Relacion", {"Cod_Descripcionexamen"}},
        {"Relacion", {"Cod_Item"}},
        {"proveedoresinsumos", {"prvcod"}},
        {"proveedoresinsumos", {"cod_item"}},
        {"compra", {"prvcod"}},
        {"compradetalle", {"numcompra"}},
        {"compradetalle", {"cod_item"}},
        {"decremento", {"factura"}},
        {"decrementodetalle", {"factura"}},
        {"descargar", {"cod_item"}},
    };
    return ix;
}

QString counterType(const QSqlDatabase& db)
{
    if (db.driverName().startsWith(QLatin1String("QPSQL")))
        return QStringLiteral("INTEGER GENERATED BY DEFAULT AS IDENTITY PRIMARY KEY");
    return QStringLiteral("INTEGER PRIMARY KEY AUTOINCREMENT");
}

QString createTableSql(const Table& t, const QSqlDatabase& db)
{
    QStringList cols;
    for (const Column& c : t.columns) {
        const QString type = QLatin1String(c.type) == QLatin1String(kCounter)
                                 ? counterType(db)
                                 : QString::fromLatin1(c.type);
        cols << QStringLiteral("%1 %2").arg(QLatin1String(c.name), type);
    }
    return QStringLiteral("CREATE TABLE IF NOT EXISTS %1 (%2)")
        .arg(QLatin1String(t.name), cols.join(QStringLiteral(", ")));
}

QStringList indexColumns(const Index& ix)
{
    QStringList cols;
    for (const char* c : ix.columns)
        cols << QString::fromLatin1(c);
    return cols;
}

QString indexName(const Index& ix)
{
    return ix.name ? QString::fromLatin1(ix.name)
                   : QStringLiteral("ix_%1_%2").arg(QLatin1String(ix.table),
                                                    indexColumns(ix).join(QLatin1Char('_')));
}

QString createIndexSql(const Index& ix)
{
    const QStringList cols = indexColumns(ix);
    const QString name = indexName(ix);
    QString sql = QStringLiteral("CREATE INDEX IF NOT EXISTS %1 ON %2 (%3)")
                      .arg(name, QLatin1String(ix.table), cols.join(QStringLiteral(", ")));
    if (ix.where)
        sql += QStringLiteral(" WHERE ") + QLatin1String(ix.where);
    return sql;
}

QVariant insertedKey(const QSqlDatabase& db, const QString& table, const QString& column,
                     const QVariant& fromDriver)
{
    if (fromDriver.isValid() && !fromDriver.isNull())
        return fromDriver;
    QSqlQuery q(db);
    const QString sql = QStringLiteral("SELECT MAX(%1) FROM %2").arg(column, table);
    if (!q.exec(sql) || !q.next())
        throw DbError(QStringLiteral("No se pudo leer el código asignado en %1.").arg(table),
                      q.lastError().text(), sql);
    return q.value(0);
}

// While it lives, what the embedded store deletes or overwrites is zeroed in
// the file instead of left in its free pages, whatever the library's default
// (Debian's already zeroes); then the connection's own setting comes back.
// Another engine's files are its administrator's care.
class SecureDelete {
public:
    explicit SecureDelete(const QSqlDatabase& db) : m_db(db)
    {
        if (m_db.driverName() != QLatin1String("QSQLITE"))
            return;
        QSqlQuery q(m_db);
        if (!q.exec(QStringLiteral("PRAGMA secure_delete")) || !q.next())
            return;
        m_restore = q.value(0).toInt() == 0;
        q.finish();
        QSqlQuery(m_db).exec(QStringLiteral("PRAGMA secure_delete = 1"));
    }
    ~SecureDelete()
    {
        if (m_restore)
            QSqlQuery(m_db).exec(QStringLiteral("PRAGMA secure_delete = 0"));
    }
    SecureDelete(const SecureDelete&) = delete;
    SecureDelete& operator=(const SecureDelete&) = delete;

private:
    QSqlDatabase m_db;
    bool m_restore = false;
};

}  // namespace

QSqlQuery run(const QSqlDatabase& db, const QString& sql, const QVariantList& binds,
              const QString& failure)
{
    QSqlQuery q(db);
    // Without values the statement runs as it stands: the server's driver
    // prepares only queries, not the statements that make tables.
    if (binds.isEmpty()) {
        if (!q.exec(sql))
            throw DbError(failure, q.lastError().text(), sql);
        return q;
    }
    if (!q.prepare(sql))
        throw DbError(failure, q.lastError().text(), sql);
    for (int i = 0; i < binds.size(); ++i)
        q.bindValue(i, binds.at(i));
    if (!q.exec())
        throw DbError(failure, q.lastError().text(), sql);
    return q;
}

QVariant insertedByDriver(const QSqlQuery& q)
{
    const QSqlDriver* driver = q.driver();
    if (driver && driver->dbmsType() == QSqlDriver::PostgreSQL)
        return {};
    return q.lastInsertId();
}

void inTransaction(const QSqlDatabase& conn, const QString& failure,
                   const std::function<void()>& work)
{
    QSqlDatabase db = conn;
    if (!db.isOpen())
        throw DbError(failure, QStringLiteral("la conexión no está abierta"));
    // When the caller already holds a transaction begun here, it covers the
    // work (the embedded store's driver would refuse a second one, and the
    // server's would warn and go on inside the first).
    static QHash<QString, int> open;   // connection -> levels begun here
    int& depth = open[db.connectionName()];
    const bool own = depth == 0 && db.transaction();
    ++depth;
    try {
        work();
    } catch (...) {
        --depth;
        if (own)
            db.rollback();
        throw;
    }
    --depth;
    if (own && !db.commit()) {
        const QString detail = db.lastError().text();
        db.rollback();
        throw DbError(failure, detail);
    }
}


QStringList tableNames()
{
    QStringList out;
    for (const Table& t : tables())
        out << QString::fromLatin1(t.name);
    return out;
}

QStringList columnNames(const QString& table)
{
    QStringList out;
    for (const Table& t : tables()) {
        if (table.compare(QLatin1String(t.name), Qt::CaseInsensitive) != 0)
            continue;
        for (const Column& c : t.columns)
            out << QString::fromLatin1(c.name);
        break;
    }
    return out;
}

QString counterColumn(const QString& table)
{
    for (const Table& t : tables()) {
        if (table.compare(QLatin1String(t.name), Qt::CaseInsensitive) != 0)
            continue;
        for (const Column& c : t.columns)
            if (QLatin1String(c.type) == QLatin1String(kCounter))
                return QString::fromLatin1(c.name);
        break;
    }
    return {};
}

void syncCounter(const QSqlDatabase& db, const QString& table)
{
    if (!db.driverName().startsWith(QLatin1String("QPSQL")))
        return;   // the embedded store's counters follow the highest key themselves
    const QString column = counterColumn(table).toLower();
    if (column.isEmpty())
        return;
    const QString name = table.toLower();
    // The sequence behind the counter; the server names it after both.
    QSqlQuery named = run(db, QStringLiteral("SELECT pg_get_serial_sequence('%1', '%2')")
                                  .arg(name, column),
                          {}, QStringLiteral("No se encontró el contador de %1.").arg(table));
    const QString sequence = named.next() ? named.value(0).toString() : QString();
    if (sequence.isEmpty())
        return;
    // Never backwards, as the embedded store's counters: a key once given is
    // not given again, even when its row was deleted.
    run(db, QStringLiteral("SELECT setval('%3', GREATEST(COALESCE((SELECT MAX(%2) FROM %1), 0), "
                           "(SELECT CASE WHEN is_called THEN last_value ELSE last_value - 1 END "
                           "FROM %3)) + 1, false)")
                .arg(name, column, sequence),
        {}, QStringLiteral("No se pudo poner al día el contador de %1.").arg(table));
}

void syncCounters(const QSqlDatabase& db)
{
    if (!db.driverName().startsWith(QLatin1String("QPSQL")))
        return;
    // Every counter in two round trips, as a store opens: the sequences
    // behind them, then each moved past its table's highest key.
    QStringList tablesWith, columns, named;
    for (const Table& t : tables()) {
        const QString column = counterColumn(QString::fromLatin1(t.name)).toLower();
        if (column.isEmpty())
            continue;
        tablesWith << QString::fromLatin1(t.name).toLower();
        columns << column;
        named << QStringLiteral("pg_get_serial_sequence('%1', '%2')")
                     .arg(tablesWith.last(), column);
    }
    if (named.isEmpty())
        return;
    const QString failure = QStringLiteral("No se pudieron poner al día los contadores.");
    QSqlQuery sequences = run(db, QStringLiteral("SELECT ") + named.join(QStringLiteral(", ")), {},
                              failure);
    if (!sequences.next())
        return;
    QStringList moves;
    for (int i = 0; i < tablesWith.size(); ++i) {
        const QString sequence = sequences.value(i).toString();
        if (sequence.isEmpty())
            continue;
        // Never backwards, as the embedded store's counters.
        moves << QStringLiteral("setval('%3', GREATEST(COALESCE((SELECT MAX(%2) FROM %1), 0), "
                                "(SELECT CASE WHEN is_called THEN last_value ELSE last_value - 1 "
                                "END FROM %3)) + 1, false)")
                     .arg(tablesWith.at(i), columns.at(i), sequence);
    }
    sequences.finish();
    if (!moves.isEmpty())
        run(db, QStringLiteral("SELECT ") + moves.join(QStringLiteral(", ")), {}, failure);
}

bool isEmpty(const QSqlDatabase& db)
{
    return isEmpty(db.tables(QSql::Tables));
}

bool isEmpty(const QStringList& present)
{
    for (const QString& name : tableNames())
        if (present.contains(name, Qt::CaseInsensitive))
            return false;
    return true;
}

void create(const QSqlDatabase& db)
{
    inTransaction(db, QStringLiteral("No se pudo crear la base de datos del laboratorio."), [&] {
        for (const Table& t : tables())
            run(db, createTableSql(t, db), {},
                 QStringLiteral("No se pudo crear la tabla %1 de la base de datos.")
                     .arg(QLatin1String(t.name)));
        for (const Index& ix : indexes())
            run(db, createIndexSql(ix), {},
                 QStringLiteral("No se pudo crear un índice de la tabla %1.")
                     .arg(QLatin1String(ix.table)));
    });
}

void seedFirstStart(const QSqlDatabase& db)
{
    const QString failure =
        QStringLiteral("No se pudieron escribir los datos iniciales de la base de datos.");
    inTransaction(db, failure, [&] {
        // Every patient has an insurer row; 0 stands for none.
        run(db, QStringLiteral("INSERT INTO seguros (Cod_Seguro, Empresa, Contacto, Tel, Banco, "
                                "Cuenta) VALUES (?, ?, ?, ?, ?, ?)"),
             {0, QStringLiteral("Sin Seguro"), QString(), QString(), QString(), QString()},
             failure);

        // The laboratory's own data: sign-on shows the name, reports print it.
        run(db, QStringLiteral("INSERT INTO datos (nombre_lab, eslogan_lab, rtn_lab, "
                                "direccion_lab, telefono_lab, fax_lab, correo_lab, ticketera, "
                                "pidecontrasena, terceraedadauto) "
                                "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"),
             {QStringLiteral("Laboratorio Clinico (configure sus datos)"), QString(), QString(),
              QString(), QString(), QString(), QString(), false, false, false},
             failure);

        // Card charge, third-age discount and the older card percentage all
        // start at zero: each is the laboratory's own decision, and a made-up
        // rate would silently change totals and the card sales report until
        // someone noticed. They are set on their settings screens.
        run(db, QStringLiteral("INSERT INTO IST (IST) VALUES (?)"), {0}, failure);
        run(db, QStringLiteral("INSERT INTO DTE (DTE) VALUES (?)"), {0}, failure);
        run(db, QStringLiteral("INSERT INTO tarjeta (tarjeta) VALUES (?)"), {0}, failure);

        // The result templates; their codes are fixed by the fill-in screens.
        const QStringList templates = {
            QStringLiteral("Formato en Blanco"), QStringLiteral("Hematologia"),
            QStringLiteral("Uroanalisis"),       QStringLiteral("Quimica - Clinica"),
            QStringLiteral("Parasitologia"),     QStringLiteral("Formato en Blanco 2"),
        };
        for (int i = 0; i < templates.size(); ++i)
            run(db, QStringLiteral("INSERT INTO Plantilla (Cod_Plantilla, Plantilla) VALUES (?, ?)"),
                 {i + 1, templates.at(i)}, failure);

        // The six menus of stored texts of the blank result sheet.
        const QStringList menus = {
            QStringLiteral("Parasitologia"), QStringLiteral("Serologia"),
            QStringLiteral("Quimicas"),      QStringLiteral("Inmunologia"),
            QStringLiteral("Hematologia"),   QStringLiteral("Varios"),
        };
        for (int i = 0; i < menus.size(); ++i)
            run(db, QStringLiteral("INSERT INTO formatoblanco (codigo_formatoblanco, encabezado) "
                                    "VALUES (?, ?)"),
                 {i + 1, menus.at(i)}, failure);

        // A first administrator, so that someone can sign on and add the staff.
        const QString insertAdmin = QStringLiteral(
            "INSERT INTO Empleados (nombre_empleado, apellido_empleado, direccion_empleado, "
            "tel_empleado, cel_empleado, fecha_nacimiento, rol, usuario, Password) "
            "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)");
        const QSqlQuery q =
            run(db, insertAdmin,
                {QStringLiteral("Administrador"), QStringLiteral("del Sistema"), QString(),
                 QString(), QString(), QDate::currentDate(), 1, QStringLiteral("admin"),
                 hashPassword(QStringLiteral("admin"))},
                failure);
        const QVariant code =
            insertedKey(db, QStringLiteral("Empleados"), QStringLiteral("cod_empleado"),
                        insertedByDriver(q));
        for (int modulo = 1; modulo <= 3; ++modulo)
            run(db, QStringLiteral("INSERT INTO usuariosmodulos (cod_empleado, cod_modulo) "
                                    "VALUES (?, ?)"),
                 {code, modulo}, failure);
    });
}

void searchIndexes(const QSqlDatabase& db, const QStringList& present)
{
    // A name searched anywhere in it ("*mart*") can't use an ordinary index:
    // the server keeps the names' trigrams, and finds the few patients who
    // bear it among a hundred thousand without reading every name. Without
    // the extension the search still works, reading them all.
    const QString name = QStringLiteral("ix_Pacientes_nombre_trigramas");
    if (db.driverName() != QLatin1String("QPSQL") || present.contains(name, Qt::CaseInsensitive))
        return;
    QSqlQuery q(db);
    if (q.exec(QStringLiteral("CREATE EXTENSION IF NOT EXISTS pg_trgm")))
        q.exec(QStringLiteral("CREATE INDEX IF NOT EXISTS %1 ON Pacientes "
                              "USING gin (nombre_paciente gin_trgm_ops)")
                   .arg(name));
}

void upgrade(const QSqlDatabase& db, const QStringList& present)
{
    // Tables, columns and indexes that came with later versions. A table
    // that gained columns gained an index with them, so a store with every
    // index costs no look at its columns.
    QList<const Table*> newTables;
    for (const Table& t : tables())
        if (!present.contains(QLatin1String(t.name), Qt::CaseInsensitive))
            newTables << &t;
    QList<const Index*> missing;
    QStringList grown;
    for (const Index& ix : indexes())
        if (!present.contains(indexName(ix), Qt::CaseInsensitive)) {
            missing << &ix;
            if (!grown.contains(QLatin1String(ix.table)))
                grown << QLatin1String(ix.table);
        }
    if (!missing.isEmpty() || !newTables.isEmpty())
        inTransaction(db, QStringLiteral("No se pudo poner al día la base de datos."), [&] {
            for (const Table* t : newTables)
                run(db, createTableSql(*t, db), {},
                    QStringLiteral("No se pudo crear la tabla %1 de la base de datos.")
                        .arg(QLatin1String(t->name)));
            for (const Table& t : tables()) {
                if (!grown.contains(QLatin1String(t.name)) || newTables.contains(&t))
                    continue;
                const QSqlRecord have = db.record(QLatin1String(t.name));
                for (const Column& c : t.columns) {
                    bool there = false;
                    for (int i = 0; i < have.count() && !there; ++i)
                        there = have.fieldName(i).compare(QLatin1String(c.name),
                                                          Qt::CaseInsensitive) == 0;
                    if (!there && have.count() > 0)
                        run(db, QStringLiteral("ALTER TABLE %1 ADD COLUMN %2 %3")
                                    .arg(QLatin1String(t.name), QLatin1String(c.name),
                                         QLatin1String(c.type)),
                            {},
                            QStringLiteral("No se pudo agregar la columna %1 a la tabla %2.")
                                .arg(QLatin1String(c.name), QLatin1String(t.name)));
                }
            }
            for (const Index* ix : missing)
                run(db, createIndexSql(*ix), {},
                    QStringLiteral("No se pudo crear un índice de la tabla %1.")
                        .arg(QLatin1String(ix->table)));
        });

    // Earlier versions kept passwords as typed. A current store answers this
    // with no row, so opening it costs one small query.
    const QString plainPasswords = QStringLiteral(
        "SELECT cod_empleado, Password FROM Empleados "
        "WHERE Password IS NOT NULL AND substr(Password, 1, 10) <> '$argon2id$'");
    const QString failure =
        QStringLiteral("No se pudieron proteger las contraseñas de los empleados.");
    if (!run(db, plainPasswords, {}, failure).next())
        return;

    // The replaced text is zeroed in the file, not left in its free space.
    const SecureDelete wipe(db);
    inTransaction(db, failure, [&] {
        QList<QPair<QVariant, QString>> plain;
        for (QSqlQuery q = run(db, plainPasswords, {}, failure); q.next();)
            plain.append({q.value(0), q.value(1).toString()});
        for (const auto& [code, typed] : plain)
            // Bound to the old text as well: a password changed meanwhile at
            // another desk stays as that desk wrote it.
            run(db, QStringLiteral("UPDATE Empleados SET Password = ? "
                                   "WHERE cod_empleado = ? AND Password = ?"),
                {hashPassword(typed), code, typed}, failure);
    });
}

}  // namespace tq::schema
