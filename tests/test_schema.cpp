// The store's tables and columns, the first-start rows, how yes/no, money and
// counters behave, the demo laboratory and the indexes. Runs on a plain
// connection of its own, not on amb1.
#include "testsupport.h"

#include "foundation/base/passwords.h"
#include "foundation/data/demo.h"
#include "foundation/ui/errors.h"
#include "foundation/data/schema.h"
#include "foundation/base/values.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTemporaryDir>

namespace {

const QString kConn = QStringLiteral("test_schema");

// Every table the program names, with every column, as the laboratory's
// procedures spell them: "Table: column column ...; Table: ...".
const char* const kExpected =
    "Empleados: cod_empleado nombre_empleado apellido_empleado direccion_empleado tel_empleado "
    "cel_empleado fecha_nacimiento rol usuario Password; usuariosmodulos: cod_empleado "
    "cod_modulo; Pacientes: cod_paciente nombre_paciente apellido_paciente sexo fecha_nacimiento "
    "tel_paciente cel_paciente direccion_paciente correo fax_cliente asegurado eadulto "
    "Cod_seguro; seguros: Cod_Seguro Empresa Contacto Tel Banco Cuenta; RelSeguroPrecios: "
    "cod_seguro Cod_descripcionexamen precio; Doctores: Cod_doctor Nombre_doctor Apellido_doctor "
    "dir_doctor tel_doctor correo_doctor porsentaje; TipoExamen: cod_tipo_examen tipo_examen; "
    "Examenes: cod_descripcionexamen examen cod_tipo_examen precio precioo valor tiempo_entrega "
    "llenaresultado; datos: nombre_lab eslogan_lab rtn_lab direccion_lab telefono_lab fax_lab "
    "correo_lab ticketera pidecontrasena terceraedadauto; IST: IST; DTE: DTE; tarjeta: tarjeta; "
    "respaldos: id fecha_res usuario; Factura: factura fecha cod_paciente faturado sub_total "
    "adicional valadicional total efectivo tarjeta cheque Abono pagada credito edad_paciente "
    "Cod_doctor pagada_doc comision_pagada fecha_pag_doc anulada motivo_anulacion "
    "fecha_anulacion evaluada tipo_factura; FacturaDetalle: factura cod_descripcionexamen "
    "cantidad subtotal evaluado impreso num_impresion tecnico fecha_llenado iduniversalformato; "
    "EvaluadoTemporal: factura correlativo cod_descripcionexamen examen decrementado; cxc: "
    "factura Cod_paciente estado fecha_pago referencia; creditos: factura numero fecha abono; "
    "Datostarjeta: factura num_autorizacion num_tarjeta num_identidad; orden: orden fecha "
    "cod_paciente cod_doctor faturado sub_total total adicional valadicional anulada anulacion "
    "quien_anulo; ordenDetalle: orden cod_descripcionexamen cantidad precio subtotal; "
    "parametros: cod_parametro parametro unidad; valparametros: cod_parametro cod_sexo "
    "valor_normal; Plantilla: Cod_Plantilla Plantilla; PlantillaParametro: Cod_Plantilla "
    "cod_Parametro version orden; resultados: num_factura diferenciador NumFormato Cod_Plantilla "
    "celda valor version iduniversalformato; submenusformatoblanco: codigo_formatoblanco submenu "
    "valorsubmenu; formatoblanco: codigo_formatoblanco encabezado; historialcambios: Factura "
    "plantilla usuario fecha descripcion; Tempo: nombre edad sexo fecha; Insumos: Cod_Item "
    "nombre_Item descripcion_Item precio_Item unidad cminima stock; Relacion: "
    "Cod_Descripcionexamen Cod_Item Cantidad; proveedor: prvcod prvnom prvref prvdir prvtel "
    "prvcor; proveedoresinsumos: prvcod cod_item; compra: numcompra fecha prvcod total; "
    "compradetalle: numcompra cod_item cantidad preciodecompra subtotal; decremento: factura "
    "fecha; decrementodetalle: factura cod_item cantidad; descargar: cod_item descargo motivo "
    "fechades";

}  // namespace

class TestSchema : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_dir;

    QSqlDatabase db() const { return QSqlDatabase::database(kConn); }

    // Runs a statement with its bound values; a refusal is logged unless expected.
    QSqlQuery run(const QString& sql, const QVariantList& binds = {}, bool refusal = false)
    {
        QSqlQuery q(db());
        q.prepare(sql);
        for (int i = 0; i < binds.size(); ++i)
            q.bindValue(i, binds.at(i));
        if (!q.exec() && !refusal)
            qWarning() << sql << q.lastError().text();
        return q;
    }
    bool exec(const QString& sql, const QVariantList& binds = {}, bool refusal = false)
    {
        return run(sql, binds, refusal).isActive();
    }
    QVariant scalar(const QString& sql, const QVariantList& binds = {})
    {
        QSqlQuery q = run(sql, binds);
        return q.next() ? q.value(0) : QVariant();
    }
    int count(const QString& sql, const QVariantList& binds = {})
    {
        return scalar(sql, binds).toInt();
    }
    QStringList column(const QString& sql)
    {
        QStringList out;
        for (QSqlQuery q = run(sql); q.next();)
            out << q.value(0).toString();
        return out;
    }

private slots:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        QSqlDatabase d = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), kConn);
        d.setDatabaseName(m_dir->filePath(QStringLiteral("lab.db")));
        QVERIFY(d.open());
        QVERIFY(tq::schema::isEmpty(d));
        tq::schema::create(d);
        QVERIFY(!tq::schema::isEmpty(d));
        tq::schema::seedFirstStart(d);
    }

    void cleanup()
    {
        { QSqlDatabase d = QSqlDatabase::database(kConn); d.close(); }
        QSqlDatabase::removeDatabase(kConn);
        m_dir.reset();
    }

    void everyTableHasEveryColumn()
    {
        QStringList tables;
        for (const QString& entry : QString::fromLatin1(kExpected).split(u';')) {
            QStringList columns = entry.split(u' ', Qt::SkipEmptyParts);
            const QString table = columns.takeFirst().chopped(1);
            tables << table;
            QCOMPARE(tq::schema::columnNames(table), columns);
            // As created in the store, with the same spelling.
            const QSqlRecord rec = db().record(table);
            QStringList stored;
            for (int i = 0; i < rec.count(); ++i)
                stored << rec.fieldName(i);
            QCOMPARE(stored, columns);
        }
        QCOMPARE(tq::schema::tableNames(), tables);
        // A second create on a full store changes nothing and doesn't fail.
        tq::schema::create(db());
        QCOMPARE(count("SELECT COUNT(*) FROM seguros"), 1);
    }

    void firstStartRows()
    {
        QCOMPARE(scalar("SELECT Empresa FROM seguros WHERE Cod_Seguro = 0").toString(),
                 "Sin Seguro");
        QCOMPARE(count("SELECT COUNT(*) FROM datos WHERE nombre_lab <> '' AND ticketera = FALSE "
                       "AND pidecontrasena = FALSE AND terceraedadauto = FALSE"), 1);
        for (const char* t : {"datos", "IST", "DTE", "tarjeta"})
            QCOMPARE(count(QStringLiteral("SELECT COUNT(*) FROM %1").arg(QLatin1String(t))), 1);
        // The six templates numbered 1 to 6, and the six free-format menus.
        QCOMPARE(column("SELECT Cod_Plantilla FROM Plantilla ORDER BY Cod_Plantilla"),
                 (QStringList{"1", "2", "3", "4", "5", "6"}));
        QCOMPARE(count("SELECT COUNT(*) FROM formatoblanco"), 6);
        // The administrator admin/admin, the password kept hashed, with modules 1 to 3.
        QCOMPARE(column("SELECT rol FROM Empleados WHERE usuario = 'admin'"), QStringList{"1"});
        QVERIFY(tq::verifyPassword(
            scalar("SELECT Password FROM Empleados WHERE usuario = 'admin'").toString(), "admin"));
        QCOMPARE(count("SELECT COUNT(*) FROM usuariosmodulos, Empleados WHERE usuario = 'admin' "
                       "AND usuariosmodulos.cod_empleado = Empleados.cod_empleado "
                       "AND cod_modulo IN (1, 2, 3)"), 3);

        // A store that holds only the templates: the seed fails at them, and
        // the rows written before are gone too.
        for (const char* t : {"seguros", "datos", "IST", "DTE", "tarjeta", "formatoblanco",
                              "Empleados", "usuariosmodulos"})
            QVERIFY(exec(QStringLiteral("DELETE FROM %1").arg(QLatin1String(t))));
        QVERIFY_THROWS_EXCEPTION(tq::DbError, tq::schema::seedFirstStart(db()));
        QCOMPARE(count("SELECT COUNT(*) FROM seguros"), 0);
        QCOMPARE(count("SELECT COUNT(*) FROM datos"), 0);
    }

    void yesNoMoneyDatesAndCounters()
    {
        // Yes/no: TRUE/FALSE written, =0/=1/true/false read, and bool when read back.
        QVERIFY(exec("INSERT INTO Pacientes (nombre_paciente, asegurado, eadulto, Cod_seguro) "
                     "VALUES ('Uno', TRUE, FALSE, 0)"));
        QVERIFY(exec("INSERT INTO Pacientes (nombre_paciente, asegurado, eadulto, Cod_seguro) "
                     "VALUES (?, ?, ?, ?)", {"Dos", false, true, 0}));
        QVERIFY(exec("INSERT INTO Pacientes (nombre_paciente) VALUES ('Tres')"));   // defaults
        QVERIFY(exec("UPDATE Pacientes SET asegurado = ? WHERE nombre_paciente = 'Tres'", {true}));
        for (const char* where : {"asegurado = true", "asegurado =1", "eadulto = 0",
                                  "eadulto = false"})
            QVERIFY2(count(QStringLiteral("SELECT COUNT(*) FROM Pacientes WHERE %1")
                               .arg(QLatin1String(where))) == 2, where);
        QCOMPARE(count("SELECT COUNT(*) FROM Pacientes WHERE asegurado = ?", {false}), 1);
        QList<bool> read;
        for (QSqlQuery q = run("SELECT asegurado, eadulto FROM Pacientes ORDER BY cod_paciente");
             q.next();)
            read << q.value(0).toBool() << q.value(1).toBool();
        QCOMPARE(read, (QList<bool>{true, false, false, true, true, false}));
        // An empty yes/no would match neither "= 0" nor "= 1" and drop out of
        // every list: the store refuses it.
        QVERIFY(!exec("UPDATE Pacientes SET eadulto = ? WHERE nombre_paciente = 'Tres'",
                      {QVariant()}, true));
        // A new invoice line is neither evaluated nor printed until someone says so.
        QVERIFY(exec("INSERT INTO FacturaDetalle (factura, cod_descripcionexamen, cantidad) "
                     "VALUES (1, 1, 1)"));
        QCOMPARE(count("SELECT COUNT(*) FROM FacturaDetalle WHERE evaluado = 0 AND impreso = false "
                       "AND num_impresion = 0"), 1);

        // ".50" reads 0.5, and amounts stored as "#.00" text sort and add up as numbers.
        const QStringList exams = {"Glucosa", "Cultivo", "Perfil"};
        const QStringList prices = {".50", tq::money(95.0), tq::money(120.0)};
        for (int i = 0; i < exams.size(); ++i)
            QVERIFY(exec("INSERT INTO Examenes (examen, precio) VALUES (?, ?)",
                         {exams.at(i), prices.at(i)}));
        QCOMPARE(scalar("SELECT precio FROM Examenes WHERE examen = 'Glucosa'").toDouble(), 0.5);
        QCOMPARE(column("SELECT examen FROM Examenes ORDER BY precio DESC"),
                 (QStringList{"Perfil", "Cultivo", "Glucosa"}));
        QCOMPARE(count("SELECT COUNT(*) FROM Examenes WHERE precio > ?", {tq::money(9.0)}), 2);
        QCOMPARE(scalar("SELECT SUM(precio) FROM Examenes").toDouble(), 215.5);
        // Codes are the store's, in the order the rows came.
        QCOMPARE(column("SELECT examen FROM Examenes ORDER BY cod_descripcionexamen"), exams);
        // The work table's row identity is never handed out twice, even after
        // the last row was closed.
        const char* work = "INSERT INTO EvaluadoTemporal (factura, cod_descripcionexamen) "
                           "VALUES (1, ?)";
        QVERIFY(exec(work, {1}) && exec(work, {2}));
        const int last = count("SELECT MAX(correlativo) FROM EvaluadoTemporal");
        QVERIFY(exec("DELETE FROM EvaluadoTemporal WHERE correlativo = ?", {last}));
        QVERIFY(exec(work, {3}));
        QCOMPARE(count("SELECT MAX(correlativo) FROM EvaluadoTemporal"), last + 1);

        // Dates bound and compared as dates; a taken invoice number is refused.
        const QDate day(2026, 11, 22);
        const char* invoice = "INSERT INTO Factura (factura, fecha, cod_paciente) VALUES (?, ?, 1)";
        QVERIFY(exec(invoice, {1, day}) && exec(invoice, {2, day.addDays(1)}));
        QCOMPARE(count("SELECT COUNT(*) FROM Factura WHERE fecha >= ? AND fecha <= ?",
                       {day.addDays(1), day.addDays(5)}), 1);
        QCOMPARE(scalar("SELECT fecha FROM Factura WHERE factura = 1").toDate(), day);
        QVERIFY(!exec(invoice, {1, day}, true));
    }

    void demoLaboratory()
    {
        tq::fillDemo(db());
        const int patients = count("SELECT COUNT(*) FROM Pacientes");
        const int exams = count("SELECT COUNT(*) FROM Examenes");
        QVERIFY(patients >= 15 && exams >= 20);
        const QList<QPair<QString, QVariantList>> atLeastThree = {
            {"sexo = 'Masculino'", {}},
            {"sexo = 'Femenino'", {}},
            {"fecha_nacimiento BETWEEN ? AND ?", {QDate(2016, 1, 1), QDate(2022, 12, 31)}},
            {"fecha_nacimiento <= ?", {QDate(2000, 12, 31)}},
            {"asegurado = TRUE AND Cod_seguro > 0", {}},
            {"asegurado = FALSE AND Cod_seguro = 0", {}},
        };
        for (const auto& [where, binds] : atLeastThree)
            QVERIFY2(count("SELECT COUNT(*) FROM Pacientes WHERE " + where, binds) >= 3,
                     qPrintable(where));
        // Every patient shows in the patient screen's inner join.
        QCOMPARE(count("SELECT COUNT(*) FROM Pacientes, seguros WHERE Pacientes.Cod_Seguro = "
                       "seguros.Cod_Seguro AND sexo IN ('Masculino', 'Femenino')"), patients);
        QCOMPARE(count("SELECT COUNT(*) FROM Examenes WHERE examen LIKE 'r.%'"), 3);
        // Each insurer prices most exams, but not all.
        const QStringList priced =
            column("SELECT COUNT(*) FROM RelSeguroPrecios GROUP BY cod_seguro");
        QVERIFY(priced.size() >= 3);
        for (const QString& n : priced)
            QVERIFY(n.toInt() > exams / 2 && n.toInt() < exams);

        // Its front-desk users sign on with their name, kept hashed.
        const QStringList users = column("SELECT usuario FROM Empleados WHERE rol = 2");
        QVERIFY(users.size() >= 2);
        for (const QString& u : users)
            QVERIFY2(tq::verifyPassword(
                         scalar("SELECT Password FROM Empleados WHERE usuario = ?", {u}).toString(),
                         u),
                     qPrintable(u));

        // A second run is refused and adds nothing.
        QVERIFY_THROWS_EXCEPTION(tq::AppError, tq::fillDemo(db()));
        QCOMPARE(count("SELECT COUNT(*) FROM Pacientes"), patients);
        QCOMPARE(count("SELECT COUNT(*) FROM Examenes"), exams);
    }

    void indexesForTheMainJoins()
    {
        // Leading column of every index, per table.
        QSet<QString> leading;
        const QStringList indexes =
            column("SELECT tbl_name || ' ' || name FROM sqlite_master WHERE type = 'index' "
                   "AND sql IS NOT NULL");
        for (const QString& ti : indexes)
            for (QSqlQuery q = run("PRAGMA index_info(" + ti.section(' ', 1) + ")"); q.next();)
                if (q.value(0).toInt() == 0)
                    leading.insert((ti.section(' ', 0, 0) + '.' + q.value(2).toString()).toLower());
        const QString needed = QStringLiteral(
            "Factura.cod_paciente Factura.fecha Factura.Cod_doctor FacturaDetalle.factura "
            "FacturaDetalle.cod_descripcionexamen FacturaDetalle.iduniversalformato "
            "EvaluadoTemporal.factura cxc.factura creditos.factura Datostarjeta.factura "
            "ordenDetalle.orden Examenes.cod_tipo_examen Examenes.examen "
            "RelSeguroPrecios.cod_seguro Relacion.Cod_Descripcionexamen Relacion.Cod_Item "
            "PlantillaParametro.Cod_Plantilla valparametros.cod_parametro resultados.num_factura "
            "resultados.iduniversalformato Pacientes.apellido_paciente Pacientes.nombre_paciente "
            "Pacientes.Cod_seguro usuariosmodulos.cod_empleado Empleados.usuario "
            "compradetalle.numcompra proveedoresinsumos.prvcod decrementodetalle.factura "
            "historialcambios.Factura submenusformatoblanco.codigo_formatoblanco");
        for (const QString& n : needed.split(u' '))
            QVERIFY2(leading.contains(n.toLower()), qPrintable(n));

        // The store really uses the one for the results waiting to be printed.
        QString plan;
        for (QSqlQuery q = run("EXPLAIN QUERY PLAN SELECT Factura.factura FROM Factura, "
                               "FacturaDetalle WHERE Factura.Factura = FacturaDetalle.Factura "
                               "AND (FacturaDetalle.num_impresion = 0) and "
                               "(FacturaDetalle.evaluado = 1)");
             q.next();)
            plan += q.value(3).toString() + '\n';
        QVERIFY2(plan.contains("ix_FacturaDetalle_por_imprimir"), qPrintable(plan));
    }
};

QTEST_MAIN(TestSchema)
#include "test_schema.moc"
