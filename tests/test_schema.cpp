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
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTemporaryDir>

static const QString kConn = QStringLiteral("test_schema");

class TestSchema : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_dir;

    QSqlDatabase db() const { return QSqlDatabase::database(kConn); }

    // Runs a statement with its bound values; a refusal throws DbError.
    QSqlQuery run(const QString& sql, const QVariantList& binds = {})
    {
        return tq::schema::run(db(), sql, binds, QStringLiteral("prueba"));
    }
    QVariant scalar(const QString& sql, const QVariantList& binds = {})
    {
        QSqlQuery q = run(sql, binds);
        return q.next() ? q.value(0) : QVariant();
    }
    int count(const QString& sql, const QVariantList& binds = {}) { return scalar(sql, binds).toInt(); }
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
        const QStringList tables = tq::schema::tableNames();
        QVERIFY(tables.size() > 35);
        for (const QString& table : tables) {
            // As created in the store, with the same spelling.
            const QSqlRecord rec = db().record(table);
            QStringList stored;
            for (int i = 0; i < rec.count(); ++i)
                stored << rec.fieldName(i);
            QCOMPARE(stored, tq::schema::columnNames(table));
        }
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
        for (const char* t : {"IST", "DTE", "tarjeta"})
            QCOMPARE(count(QStringLiteral("SELECT COUNT(*) FROM %1").arg(QLatin1String(t))), 1);
        QCOMPARE(column("SELECT Cod_Plantilla FROM Plantilla ORDER BY Cod_Plantilla"),
                 (QStringList{"1", "2", "3", "4", "5", "6"}));
        // The administrator admin/admin, the password kept hashed, with modules 1 to 3.
        QVERIFY(tq::verifyPassword(
            scalar("SELECT Password FROM Empleados WHERE usuario = 'admin'").toString(), "admin"));
        QCOMPARE(count("SELECT COUNT(*) FROM usuariosmodulos, Empleados WHERE usuario = 'admin' "
                       "AND usuariosmodulos.cod_empleado = Empleados.cod_empleado "
                       "AND cod_modulo IN (1, 2, 3)"), 3);

        // A store that holds only the templates: the seed fails at them, and
        // the rows written before are gone too.
        for (const char* t : {"seguros", "datos", "IST", "DTE", "tarjeta", "formatoblanco",
                              "Empleados", "usuariosmodulos"})
            run(QStringLiteral("DELETE FROM %1").arg(QLatin1String(t)));
        QVERIFY_THROWS_EXCEPTION(tq::DbError, tq::schema::seedFirstStart(db()));
        QCOMPARE(count("SELECT COUNT(*) FROM seguros"), 0);
    }

    void yesNoMoneyAndCounters()
    {
        // Yes/no: TRUE/FALSE written, =0/=1/true/false read, and bool when read back.
        run("INSERT INTO Pacientes (nombre_paciente, asegurado, eadulto, Cod_seguro) "
            "VALUES ('Uno', TRUE, FALSE, 0)");
        run("INSERT INTO Pacientes (nombre_paciente, asegurado, eadulto, Cod_seguro) "
            "VALUES (?, ?, ?, ?)", {"Dos", false, true, 0});
        run("INSERT INTO Pacientes (nombre_paciente) VALUES ('Tres')");   // defaults
        for (const char* where : {"asegurado = false", "asegurado =0", "eadulto = 0",
                                  "eadulto = false"})
            QVERIFY2(count(QStringLiteral("SELECT COUNT(*) FROM Pacientes WHERE %1")
                               .arg(QLatin1String(where))) == 2, where);
        QCOMPARE(count("SELECT COUNT(*) FROM Pacientes WHERE asegurado = ?", {true}), 1);
        QVERIFY(scalar("SELECT eadulto FROM Pacientes WHERE nombre_paciente = 'Dos'").toBool());
        // An empty yes/no would match neither "= 0" nor "= 1" and drop out of
        // every list: the store refuses it.
        QVERIFY_THROWS_EXCEPTION(tq::DbError, run("UPDATE Pacientes SET eadulto = ? WHERE "
                                                  "nombre_paciente = 'Tres'", {QVariant()}));
        // A new invoice line is neither evaluated nor printed until someone says so.
        run("INSERT INTO FacturaDetalle (factura, cod_descripcionexamen, cantidad) VALUES (1, 1, 1)");
        QCOMPARE(count("SELECT COUNT(*) FROM FacturaDetalle WHERE evaluado = 0 AND impreso = false "
                       "AND num_impresion = 0"), 1);

        // ".50" reads 0.5, and amounts stored as "#.00" text sort and add up as numbers.
        run("INSERT INTO Examenes (examen, precio) VALUES ('Glucosa', ?), ('Cultivo', ?), ('Perfil', ?)",
            {".50", tq::money(95.0), tq::money(120.0)});
        QCOMPARE(column("SELECT examen FROM Examenes ORDER BY precio DESC"),
                 (QStringList{"Perfil", "Cultivo", "Glucosa"}));
        QCOMPARE(scalar("SELECT SUM(precio) FROM Examenes").toDouble(), 215.5);
        // The work table's row identity is never handed out twice, even after
        // the last row was closed.
        const char* work = "INSERT INTO EvaluadoTemporal (factura, cod_descripcionexamen) "
                           "VALUES (1, ?)";
        run(work, {1});
        run(work, {2});
        const int last = count("SELECT MAX(correlativo) FROM EvaluadoTemporal");
        run("DELETE FROM EvaluadoTemporal WHERE correlativo = ?", {last});
        run(work, {3});
        QCOMPARE(count("SELECT MAX(correlativo) FROM EvaluadoTemporal"), last + 1);

        // A taken invoice number is refused.
        const char* invoice = "INSERT INTO Factura (factura, fecha, cod_paciente) VALUES (?, ?, 1)";
        run(invoice, {1, QDate(2026, 11, 22)});
        QVERIFY_THROWS_EXCEPTION(tq::DbError, run(invoice, {1, QDate(2026, 11, 23)}));
    }

    void demoLaboratory()
    {
        tq::fillDemo(db());
        const int patients = count("SELECT COUNT(*) FROM Pacientes");
        QVERIFY(patients >= 15 && count("SELECT COUNT(*) FROM Examenes") >= 20);
        // Every patient shows in the patient screen's inner join.
        QCOMPARE(count("SELECT COUNT(*) FROM Pacientes, seguros WHERE Pacientes.Cod_Seguro = "
                       "seguros.Cod_Seguro AND sexo IN ('Masculino', 'Femenino')"), patients);
        // Its front-desk users sign on with their name, kept hashed.
        const QStringList users = column("SELECT usuario FROM Empleados WHERE rol = 2");
        QVERIFY(!users.isEmpty());
        QVERIFY(tq::verifyPassword(scalar("SELECT Password FROM Empleados WHERE usuario = ?",
                                          {users.first()}).toString(), users.first()));
        // Each of the six menus of the blank sheet holds a stored text.
        QCOMPARE(count("SELECT COUNT(DISTINCT codigo_formatoblanco) FROM submenusformatoblanco"),
                 6);
        // A second run is refused and adds nothing.
        QVERIFY_THROWS_EXCEPTION(tq::AppError, tq::fillDemo(db()));
        QCOMPARE(count("SELECT COUNT(*) FROM Pacientes"), patients);
    }

    void indexesForTheMainJoins()
    {
        // The invoice lines of an invoice, the line of one exam in it (closing
        // an exam of the work table), and the results waiting to be printed,
        // are found through an index.
        const QList<QPair<QString, QString>> cases = {
            {"SELECT * FROM FacturaDetalle WHERE factura = 1", "INDEX ix_FacturaDetalle_factura"},
            {"SELECT MIN(rowid) FROM FacturaDetalle WHERE factura = 1 AND cod_descripcionexamen = 2",
             "ix_FacturaDetalle_factura_cod_descripcionexamen (factura=? AND"},
            {"SELECT Factura.factura FROM Factura, FacturaDetalle WHERE Factura.Factura = "
             "FacturaDetalle.Factura AND (FacturaDetalle.num_impresion = 0) and "
             "(FacturaDetalle.evaluado = 1)", "ix_FacturaDetalle_por_imprimir"},
        };
        for (const auto& [sql, index] : cases) {
            QString plan;
            for (QSqlQuery q = run("EXPLAIN QUERY PLAN " + sql); q.next();)
                plan += q.value(3).toString() + '\n';
            QVERIFY2(plan.contains(index), qPrintable(plan));
        }

        // A store made before an index existed gets it the next time it is opened.
        run("DROP INDEX ix_Pacientes_nombre_paciente_apellido_paciente");
        tq::schema::upgrade(db(), column("SELECT name FROM sqlite_master"));
        QCOMPARE(count("SELECT COUNT(*) FROM sqlite_master WHERE name = "
                       "'ix_Pacientes_nombre_paciente_apellido_paciente'"), 1);

        // A store from before corrections kept their earlier cells: the log
        // gains its new columns with its lines whole, and the table of
        // earlier cells is made.
        run("DROP TABLE historialcambios");
        run("DROP TABLE celdasanteriores");
        run("CREATE TABLE historialcambios (Factura INTEGER, plantilla VARCHAR(60), "
            "usuario VARCHAR(50), fecha DATE, descripcion VARCHAR(255))");
        run("INSERT INTO historialcambios VALUES (7, 'Hematologia', 'admin', '2025-01-02', 'x')");
        tq::schema::upgrade(db(), column("SELECT name FROM sqlite_master"));
        const QSqlRecord log = db().record("historialcambios");
        for (const QString& name : tq::schema::columnNames("historialcambios"))
            QVERIFY2(log.indexOf(name) >= 0, qPrintable(name));
        QCOMPARE(count("SELECT COUNT(*) FROM historialcambios WHERE Factura = 7 "
                       "AND cod_cambio IS NULL"), 1);
        QCOMPARE(count("SELECT COUNT(*) FROM celdasanteriores"), 0);
    }
};

QTEST_MAIN(TestSchema)
#include "test_schema.moc"
