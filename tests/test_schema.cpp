// The store's tables and columns, the first-start rows, how yes/no, money and
// counters behave, the demo laboratory and the indexes. Runs on a plain
// connection of its own, not on amb1.
#include "testsupport.h"

#include "foundation/demo.h"
#include "foundation/errors.h"
#include "foundation/schema.h"
#include "foundation/values.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTemporaryDir>

namespace {

const QString kConn = QStringLiteral("test_schema");

// Every table the program names, with every column, as the laboratory's
// procedures spell them.
const QList<QPair<QString, QStringList>> kExpected = {
    {"Empleados", {"cod_empleado", "nombre_empleado", "apellido_empleado", "direccion_empleado",
                   "tel_empleado", "cel_empleado", "fecha_nacimiento", "rol", "usuario", "Password"}},
    {"usuariosmodulos", {"cod_empleado", "cod_modulo"}},
    {"Pacientes", {"cod_paciente", "nombre_paciente", "apellido_paciente", "sexo",
                   "fecha_nacimiento", "tel_paciente", "cel_paciente", "direccion_paciente",
                   "correo", "fax_cliente", "asegurado", "eadulto", "Cod_seguro"}},
    {"seguros", {"Cod_Seguro", "Empresa", "Contacto", "Tel", "Banco", "Cuenta"}},
    {"RelSeguroPrecios", {"cod_seguro", "Cod_descripcionexamen", "precio"}},
    {"Doctores", {"Cod_doctor", "Nombre_doctor", "Apellido_doctor", "dir_doctor", "tel_doctor",
                  "correo_doctor", "porsentaje"}},
    {"TipoExamen", {"cod_tipo_examen", "tipo_examen"}},
    {"Examenes", {"cod_descripcionexamen", "examen", "cod_tipo_examen", "precio", "precioo",
                  "valor", "tiempo_entrega", "llenaresultado"}},
    {"datos", {"nombre_lab", "eslogan_lab", "rtn_lab", "direccion_lab", "telefono_lab", "fax_lab",
               "correo_lab", "ticketera", "pidecontrasena", "terceraedadauto"}},
    {"IST", {"IST"}},
    {"DTE", {"DTE"}},
    {"tarjeta", {"tarjeta"}},
    {"respaldos", {"id", "fecha_res", "usuario"}},
    {"Factura", {"factura", "fecha", "cod_paciente", "faturado", "sub_total", "adicional",
                 "valadicional", "total", "efectivo", "tarjeta", "cheque", "Abono", "pagada",
                 "credito", "edad_paciente", "Cod_doctor", "pagada_doc", "comision_pagada",
                 "fecha_pag_doc", "anulada", "motivo_anulacion", "fecha_anulacion", "evaluada",
                 "tipo_factura"}},
    {"FacturaDetalle", {"factura", "cod_descripcionexamen", "cantidad", "subtotal", "evaluado",
                        "impreso", "num_impresion", "tecnico", "fecha_llenado",
                        "iduniversalformato"}},
    {"EvaluadoTemporal", {"factura", "correlativo", "cod_descripcionexamen", "examen",
                          "decrementado"}},
    {"cxc", {"factura", "Cod_paciente", "estado", "fecha_pago", "referencia"}},
    {"creditos", {"factura", "numero", "fecha", "abono"}},
    {"Datostarjeta", {"factura", "num_autorizacion", "num_tarjeta", "num_identidad"}},
    {"orden", {"orden", "fecha", "cod_paciente", "cod_doctor", "faturado", "sub_total", "total",
               "adicional", "valadicional", "anulada", "anulacion", "quien_anulo"}},
    {"ordenDetalle", {"orden", "cod_descripcionexamen", "cantidad", "precio", "subtotal"}},
    {"parametros", {"cod_parametro", "parametro", "unidad"}},
    {"valparametros", {"cod_parametro", "cod_sexo", "valor_normal"}},
    {"Plantilla", {"Cod_Plantilla", "Plantilla"}},
    {"PlantillaParametro", {"Cod_Plantilla", "cod_Parametro", "version", "orden"}},
    {"resultados", {"num_factura", "diferenciador", "NumFormato", "Cod_Plantilla", "celda",
                    "valor", "version", "iduniversalformato"}},
    {"submenusformatoblanco", {"codigo_formatoblanco", "submenu", "valorsubmenu"}},
    {"formatoblanco", {"codigo_formatoblanco", "encabezado"}},
    {"historialcambios", {"Factura", "plantilla", "usuario", "fecha", "descripcion"}},
    {"Tempo", {"nombre", "edad", "sexo", "fecha"}},
    {"Insumos", {"Cod_Item", "nombre_Item", "descripcion_Item", "precio_Item", "unidad",
                 "cminima", "stock"}},
    {"Relacion", {"Cod_Descripcionexamen", "Cod_Item", "Cantidad"}},
    {"proveedor", {"prvcod", "prvnom", "prvref", "prvdir", "prvtel", "prvcor"}},
    {"proveedoresinsumos", {"prvcod", "cod_item"}},
    {"compra", {"numcompra", "fecha", "prvcod", "total"}},
    {"compradetalle", {"numcompra", "cod_item", "cantidad", "preciodecompra", "subtotal"}},
    {"decremento", {"factura", "fecha"}},
    {"decrementodetalle", {"factura", "cod_item", "cantidad"}},
    {"descargar", {"cod_item", "descargo", "motivo", "fechades"}},
};

}  // namespace

class TestSchema : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_dir;

    QSqlDatabase db() const { return QSqlDatabase::database(kConn); }

    QVariant scalar(const QString& sql, const QVariantList& binds = {})
    {
        QSqlQuery q(db());
        q.prepare(sql);
        for (int i = 0; i < binds.size(); ++i)
            q.bindValue(i, binds.at(i));
        if (!q.exec()) {
            qWarning() << sql << q.lastError().text();
            return {};
        }
        return q.next() ? q.value(0) : QVariant();
    }
    int count(const QString& sql, const QVariantList& binds = {})
    {
        return scalar(sql, binds).toInt();
    }
    bool exec(const QString& sql, const QVariantList& binds = {}, bool refusalExpected = false)
    {
        QSqlQuery q(db());
        q.prepare(sql);
        for (int i = 0; i < binds.size(); ++i)
            q.bindValue(i, binds.at(i));
        const bool ok = q.exec();
        if (!ok && !refusalExpected)
            qWarning() << sql << q.lastError().text();
        return ok;
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
        QStringList declared = tq::schema::tableNames();
        QCOMPARE(declared.size(), kExpected.size());
        const QStringList present = db().tables();
        for (const auto& [table, columns] : kExpected) {
            QVERIFY2(declared.contains(table), qPrintable(table));
            QVERIFY2(present.contains(table), qPrintable(table));
            QCOMPARE(tq::schema::columnNames(table), columns);
            // As created in the store, with the same spelling.
            const QSqlRecord rec = db().record(table);
            QStringList stored;
            for (int i = 0; i < rec.count(); ++i)
                stored << rec.fieldName(i);
            QCOMPARE(stored, columns);
        }
        QVERIFY(tq::schema::columnNames(QStringLiteral("NoExiste")).isEmpty());
        // A second create on a full store changes nothing and doesn't fail.
        tq::schema::create(db());
        QCOMPARE(count("SELECT COUNT(*) FROM seguros"), 1);
    }

    void firstStartRows()
    {
        QCOMPARE(scalar("SELECT Empresa FROM seguros WHERE Cod_Seguro = 0").toString(),
                 QStringLiteral("Sin Seguro"));
        QCOMPARE(count("SELECT COUNT(*) FROM datos"), 1);
        QVERIFY(!scalar("SELECT nombre_lab FROM datos").toString().isEmpty());
        QCOMPARE(count("SELECT COUNT(*) FROM datos WHERE ticketera = FALSE AND "
                       "pidecontrasena = FALSE AND terceraedadauto = FALSE"), 1);
        for (const char* t : {"IST", "DTE", "tarjeta"})
            QCOMPARE(count(QStringLiteral("SELECT COUNT(*) FROM %1").arg(QLatin1String(t))), 1);

        QSqlQuery q(db());
        QVERIFY(q.exec("SELECT Cod_Plantilla, Plantilla FROM Plantilla ORDER BY Cod_Plantilla"));
        QStringList templates;
        int expectedCode = 1;
        while (q.next()) {
            QCOMPARE(q.value(0).toInt(), expectedCode++);
            templates << q.value(1).toString();
        }
        QCOMPARE(templates.size(), 6);
        QCOMPARE(templates.mid(1, 3), (QStringList{"Hematologia", "Uroanalisis", "Quimica - Clinica"}));

        QVERIFY(q.exec("SELECT encabezado FROM formatoblanco ORDER BY codigo_formatoblanco"));
        QStringList menus;
        while (q.next())
            menus << q.value(0).toString();
        QCOMPARE(menus, (QStringList{"Parasitologia", "Serologia", "Quimicas", "Inmunologia",
                                     "Hematologia", "Varios"}));

        QVERIFY(q.exec("SELECT cod_empleado, rol, Password FROM Empleados WHERE usuario = 'admin'"));
        QVERIFY(q.next());
        const int admin = q.value(0).toInt();
        QCOMPARE(q.value(1).toInt(), 1);
        QCOMPARE(q.value(2).toString(), QStringLiteral("admin"));
        QVERIFY(!q.next());
        QCOMPARE(count("SELECT COUNT(*) FROM usuariosmodulos WHERE cod_empleado = ? "
                       "AND cod_modulo IN (1, 2, 3)", {admin}), 3);
    }

    void firstStartIsAllOrNothing()
    {
        // A store that holds only the templates: the seed fails at them, and
        // the rows written before are gone too.
        for (const char* t : {"seguros", "datos", "IST", "DTE", "tarjeta", "formatoblanco",
                              "Empleados", "usuariosmodulos"})
            QVERIFY(exec(QStringLiteral("DELETE FROM %1").arg(QLatin1String(t))));
        try {
            tq::schema::seedFirstStart(db());
            QFAIL("se esperaba un error de la base de datos");
        } catch (const tq::DbError& e) {
            QVERIFY(!e.message().isEmpty());
            QVERIFY(!e.detail().isEmpty());
        }
        QCOMPARE(count("SELECT COUNT(*) FROM seguros"), 0);
        QCOMPARE(count("SELECT COUNT(*) FROM datos"), 0);
        QCOMPARE(count("SELECT COUNT(*) FROM IST"), 0);
        QCOMPARE(count("SELECT COUNT(*) FROM Plantilla"), 6);
    }

    void yesNoColumnsReadEveryWay()
    {
        QVERIFY(exec("INSERT INTO Pacientes (nombre_paciente, asegurado, eadulto, Cod_seguro) "
                     "VALUES ('Uno', TRUE, FALSE, 0)"));
        QVERIFY(exec("INSERT INTO Pacientes (nombre_paciente, asegurado, eadulto, Cod_seguro) "
                     "VALUES (?, ?, ?, ?)", {"Dos", false, true, 0}));
        QVERIFY(exec("INSERT INTO Pacientes (nombre_paciente) VALUES ('Tres')"));   // defaults
        QVERIFY(exec("UPDATE Pacientes SET asegurado = ? WHERE nombre_paciente = 'Tres'", {true}));

        QCOMPARE(count("SELECT COUNT(*) FROM Pacientes WHERE asegurado = true"), 2);
        QCOMPARE(count("SELECT COUNT(*) FROM Pacientes WHERE asegurado = 1"), 2);
        QCOMPARE(count("SELECT COUNT(*) FROM Pacientes WHERE asegurado =1"), 2);
        QCOMPARE(count("SELECT COUNT(*) FROM Pacientes WHERE asegurado = 0"), 1);
        QCOMPARE(count("SELECT COUNT(*) FROM Pacientes WHERE asegurado = false"), 1);
        QCOMPARE(count("SELECT COUNT(*) FROM Pacientes WHERE eadulto = ?", {false}), 2);
        QVERIFY(scalar("SELECT asegurado FROM Pacientes WHERE nombre_paciente = 'Uno'").toBool());
        QVERIFY(!scalar("SELECT eadulto FROM Pacientes WHERE nombre_paciente = 'Uno'").toBool());
        QVERIFY(scalar("SELECT eadulto FROM Pacientes WHERE nombre_paciente = 'Dos'").toBool());
        QVERIFY(!scalar("SELECT eadulto FROM Pacientes WHERE nombre_paciente = 'Tres'").toBool());
        // An empty yes/no would match neither "= 0" nor "= 1" and drop out of
        // every list: the store refuses it.
        QVERIFY(!exec("UPDATE Pacientes SET eadulto = ? WHERE nombre_paciente = 'Tres'",
                      {QVariant()}, true));

        // A new invoice line is neither evaluated nor printed until someone says so.
        QVERIFY(exec("INSERT INTO FacturaDetalle (factura, cod_descripcionexamen, cantidad) "
                     "VALUES (1, 1, 1)"));
        QCOMPARE(count("SELECT COUNT(*) FROM FacturaDetalle WHERE evaluado = 0 AND impreso = false "
                       "AND num_impresion = 0"), 1);
    }

    void moneyDatesAndCounters()
    {
        QVERIFY(exec("INSERT INTO Examenes (examen, precio, precioo) VALUES (?, ?, ?)",
                     {"Glucosa", ".50", tq::money(1234.5)}));
        QVERIFY(exec("INSERT INTO Examenes (examen) VALUES ('Orina')"));
        QCOMPARE(scalar("SELECT precio FROM Examenes WHERE examen = 'Glucosa'").toDouble(), 0.5);
        QCOMPARE(tq::money(scalar("SELECT precioo FROM Examenes WHERE examen = 'Glucosa'")),
                 QStringLiteral("1234.50"));
        QCOMPARE(scalar("SELECT precio FROM Examenes WHERE examen = 'Glucosa'").toDouble()
                     + scalar("SELECT precioo FROM Examenes WHERE examen = 'Glucosa'").toDouble(),
                 1235.0);
        // Amounts stored as text by "#.00" still sort and compare as numbers.
        QVERIFY(exec("INSERT INTO Examenes (examen, precio) VALUES (?, ?)", {"Cultivo", tq::money(95.0)}));
        QVERIFY(exec("INSERT INTO Examenes (examen, precio) VALUES (?, ?)", {"Perfil", tq::money(120.0)}));
        QCOMPARE(scalar("SELECT examen FROM Examenes ORDER BY precio DESC").toString(),
                 QStringLiteral("Perfil"));
        QCOMPARE(count("SELECT COUNT(*) FROM Examenes WHERE precio > ?", {tq::money(9.0)}), 2);
        QCOMPARE(scalar("SELECT SUM(precio) FROM Examenes").toDouble(), 215.5);
        const int first = scalar("SELECT cod_descripcionexamen FROM Examenes WHERE examen = 'Glucosa'").toInt();
        const int second = scalar("SELECT cod_descripcionexamen FROM Examenes WHERE examen = 'Orina'").toInt();
        QVERIFY(first > 0);
        QCOMPARE(second, first + 1);

        // The work table's row identity is never handed out twice, even after
        // the last row was closed.
        QVERIFY(exec("INSERT INTO EvaluadoTemporal (factura, cod_descripcionexamen) VALUES (1, 1)"));
        QVERIFY(exec("INSERT INTO EvaluadoTemporal (factura, cod_descripcionexamen) VALUES (1, 2)"));
        const int last = count("SELECT MAX(correlativo) FROM EvaluadoTemporal");
        QVERIFY(exec("DELETE FROM EvaluadoTemporal WHERE correlativo = ?", {last}));
        QVERIFY(exec("INSERT INTO EvaluadoTemporal (factura, cod_descripcionexamen) VALUES (2, 1)"));
        QCOMPARE(count("SELECT MAX(correlativo) FROM EvaluadoTemporal"), last + 1);

        // An invoice without a doctor, and dates bound and compared as dates.
        const QDate day(2026, 11, 22);
        QVERIFY(exec("INSERT INTO Factura (factura, fecha, cod_paciente, total) VALUES (?, ?, ?, ?)",
                     {1, day, 1, tq::money(150.0)}));
        QVERIFY(exec("INSERT INTO Factura (factura, fecha, cod_paciente, Cod_doctor) VALUES (?, ?, ?, ?)",
                     {2, day.addDays(1), 1, 3}));
        QCOMPARE(count("SELECT COUNT(*) FROM Factura WHERE cod_doctor IS NOT NULL"), 1);
        QCOMPARE(count("SELECT COUNT(*) FROM Factura WHERE fecha = ?", {day}), 1);
        QCOMPARE(count("SELECT COUNT(*) FROM Factura WHERE fecha >= ? AND fecha <= ?",
                       {day, day.addDays(1)}), 2);
        QCOMPARE(scalar("SELECT fecha FROM Factura WHERE factura = 1").toDate(), day);
        // Invoice numbers are the screen's: a taken one is refused.
        QVERIFY(!exec("INSERT INTO Factura (factura, cod_paciente) VALUES (1, 1)", {}, true));
    }

    void demoLaboratory()
    {
        tq::fillDemo(db());
        const int year = QDate::currentDate().year();
        QVERIFY(count("SELECT COUNT(*) FROM Pacientes") >= 15);
        QVERIFY(count("SELECT COUNT(*) FROM Pacientes WHERE sexo = 'Masculino'") > 3);
        QVERIFY(count("SELECT COUNT(*) FROM Pacientes WHERE sexo = 'Femenino'") > 3);
        QCOMPARE(count("SELECT COUNT(*) FROM Pacientes WHERE sexo NOT IN ('Masculino', 'Femenino')"), 0);
        QVERIFY(count("SELECT COUNT(*) FROM Pacientes WHERE fecha_nacimiento >= '2016-01-01' "
                      "AND fecha_nacimiento <= '2022-12-31'") >= 3);
        QVERIFY(count("SELECT COUNT(*) FROM Pacientes WHERE fecha_nacimiento <= ?",
                      {QDate(year - 61, 1, 1)}) >= 2);
        QVERIFY(count("SELECT COUNT(*) FROM Pacientes WHERE asegurado = TRUE AND Cod_seguro > 0") >= 3);
        QVERIFY(count("SELECT COUNT(*) FROM Pacientes WHERE asegurado = FALSE AND Cod_seguro = 0") >= 10);
        // Every patient shows in the patient screen's inner join.
        QCOMPARE(count("SELECT COUNT(*) FROM Pacientes, seguros WHERE Pacientes.Cod_Seguro = "
                       "seguros.Cod_Seguro"),
                 count("SELECT COUNT(*) FROM Pacientes"));

        QVERIFY(count("SELECT COUNT(*) FROM Examenes") >= 20);
        QCOMPARE(count("SELECT COUNT(*) FROM Examenes WHERE examen LIKE 'r.%'"), 3);
        QCOMPARE(count("SELECT COUNT(*) FROM Examenes WHERE cod_tipo_examen NOT IN "
                       "(SELECT cod_tipo_examen FROM TipoExamen)"), 0);
        QVERIFY(count("SELECT COUNT(*) FROM Examenes WHERE llenaresultado = 1") > 10);
        QCOMPARE(count("SELECT COUNT(*) FROM Examenes WHERE precio <= 0"), 0);

        // Each insurer prices most exams, at amounts of two decimals at most.
        QSqlQuery q(db());
        QVERIFY(q.exec("SELECT Cod_Seguro FROM seguros WHERE Cod_Seguro > 0"));
        int insurers = 0;
        const int exams = count("SELECT COUNT(*) FROM Examenes");
        while (q.next()) {
            ++insurers;
            const int priced = count("SELECT COUNT(*) FROM RelSeguroPrecios WHERE cod_seguro = ?",
                                     {q.value(0)});
            QVERIFY(priced > exams / 2);
            QVERIFY(priced < exams);
        }
        QVERIFY(insurers >= 3);
        QVERIFY(count("SELECT COUNT(*) FROM Doctores WHERE porsentaje > 0") >= 4);

        // Limited users sign on with their name as password and have modules 1 to 3.
        QVERIFY(q.exec("SELECT cod_empleado FROM Empleados WHERE rol = 2 AND Password = usuario"));
        int limited = 0;
        while (q.next()) {
            ++limited;
            QCOMPARE(count("SELECT COUNT(*) FROM usuariosmodulos WHERE cod_empleado = ?",
                           {q.value(0)}), 3);
        }
        QVERIFY(limited >= 2);

        // Grid templates have a first version whose parameters all exist.
        for (int plantilla : {2, 3, 4}) {
            QVERIFY(count("SELECT COUNT(*) FROM PlantillaParametro WHERE Cod_Plantilla = ? "
                          "AND version = 1", {plantilla}) > 5);
            QCOMPARE(count("SELECT COUNT(*) FROM PlantillaParametro WHERE Cod_Plantilla = ? AND "
                           "cod_Parametro NOT IN (SELECT cod_parametro FROM parametros)",
                           {plantilla}), 0);
        }
        QCOMPARE(count("SELECT COUNT(*) FROM parametros WHERE parametro = '_____SALTO DE LINEA_____'"), 1);
        QVERIFY(scalar("SELECT valor_normal FROM valparametros, parametros WHERE "
                       "valparametros.cod_parametro = parametros.cod_parametro AND "
                       "parametro = 'Hemoglobina' AND cod_sexo = 1").toString().endsWith(" g/dL"));
        QVERIFY(!scalar("SELECT nombre_lab FROM datos").toString().contains("configure"));

        // A second run is refused and adds nothing.
        const int patients = count("SELECT COUNT(*) FROM Pacientes");
        QVERIFY_THROWS_EXCEPTION(tq::AppError, tq::fillDemo(db()));
        QCOMPARE(count("SELECT COUNT(*) FROM Pacientes"), patients);
        QCOMPARE(count("SELECT COUNT(*) FROM Examenes"), exams);
    }

    void indexesForTheMainJoins()
    {
        // Leading column of every index, per table.
        QSet<QString> leading;
        QSqlQuery q(db());
        QVERIFY(q.exec("SELECT tbl_name, name FROM sqlite_master WHERE type = 'index' "
                       "AND sql IS NOT NULL"));
        QList<QPair<QString, QString>> found;
        while (q.next())
            found.append({q.value(0).toString(), q.value(1).toString()});
        for (const auto& [table, index] : found) {
            QSqlQuery info(db());
            QVERIFY(info.exec(QStringLiteral("PRAGMA index_info(%1)").arg(index)));
            while (info.next())
                if (info.value(0).toInt() == 0)
                    leading.insert((table + '.' + info.value(2).toString()).toLower());
        }
        const QStringList needed = {
            "Factura.cod_paciente", "Factura.fecha", "Factura.Cod_doctor", "FacturaDetalle.factura",
            "FacturaDetalle.cod_descripcionexamen", "FacturaDetalle.iduniversalformato",
            "EvaluadoTemporal.factura", "cxc.factura", "creditos.factura", "Datostarjeta.factura",
            "ordenDetalle.orden", "Examenes.cod_tipo_examen", "Examenes.examen",
            "RelSeguroPrecios.cod_seguro", "Relacion.Cod_Descripcionexamen", "Relacion.Cod_Item",
            "PlantillaParametro.Cod_Plantilla", "valparametros.cod_parametro",
            "resultados.num_factura", "resultados.iduniversalformato",
            "Pacientes.apellido_paciente", "Pacientes.nombre_paciente", "Pacientes.Cod_seguro",
            "usuariosmodulos.cod_empleado", "Empleados.usuario", "compradetalle.numcompra",
            "proveedoresinsumos.prvcod", "decrementodetalle.factura", "historialcambios.Factura",
            "submenusformatoblanco.codigo_formatoblanco"};
        for (const QString& n : needed)
            QVERIFY2(leading.contains(n.toLower()), qPrintable(n));

        // The store really uses them for an invoice's lines.
        QVERIFY(q.exec("EXPLAIN QUERY PLAN SELECT * FROM FacturaDetalle, Examenes WHERE "
                       "FacturaDetalle.cod_descripcionexamen = Examenes.cod_descripcionexamen "
                       "AND FacturaDetalle.factura = 12"));
        QString plan;
        while (q.next())
            plan += q.value(3).toString() + '\n';
        QVERIFY2(plan.contains("ix_FacturaDetalle_factura"), qPrintable(plan));
        // ... and for the results waiting to be printed.
        QVERIFY(q.exec("EXPLAIN QUERY PLAN SELECT Factura.factura FROM Factura, FacturaDetalle "
                       "WHERE Factura.Factura = FacturaDetalle.Factura AND "
                       "(FacturaDetalle.num_impresion = 0) and (FacturaDetalle.evaluado = 1)"));
        plan.clear();
        while (q.next())
            plan += q.value(3).toString() + '\n';
        QVERIFY2(plan.contains("ix_FacturaDetalle_por_imprimir"), qPrintable(plan));
    }
};

QTEST_MAIN(TestSchema)
#include "test_schema.moc"
