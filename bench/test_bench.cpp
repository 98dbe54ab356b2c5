// The benchmark's own parts: the store it fills must be a laboratory the
// program could have written (else the times are of the wrong work), its copy
// on the server must be that same laboratory, and a floor must read what the
// program reads, on the engine it runs on.
#include "bare.h"
#include "bench.h"
#include "server_store.h"
#include "store_fill.h"

#include "foundation/base/passwords.h"
#include "foundation/data/amb1.h"
#include "foundation/data/schema.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace bench;

namespace {

qint64 count(Connection* db, const QString& sql)
{
    return qint64(scalarBare(db, sql.toUtf8().constData()));
}

// The first row of `sql` in a form both engines agree on: numbers in cents
// (the server writes "12.50" where the file says 12.5), other values as text.
QStringList firstRow(Connection* db, const char* sql)
{
    Stmt s(db, sql);
    QStringList row;
    if (s.next()) {
        for (int c = 0; c < s.columnCount(); ++c) {
            const QString text = s.columnText(c);
            bool number = false;
            const double value = text.toDouble(&number);
            row << (s.columnIsNull(c) ? QStringLiteral("NULL")
                    : number          ? QString::number(qRound64(value * 100))
                                      : text);
        }
        while (s.next()) {
        }
    }
    return row;
}

}  // namespace

class TestBench : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        m_path = m_dir.filePath(QStringLiteral("lab.db"));
        tq::amb1().openStore(m_path);
        tq::amb1().closeStore();
        fillStore(m_path, Sizes::small());
        m_file = openBare(StoreAt::file(m_path), true);

        const QString server = qEnvironmentVariable("TQ_TEST_SERVER");
        if (server.isEmpty())
            return;
        m_admin = server + QStringLiteral(" dbname=postgres");
        m_database = QStringLiteral("tq_test_bench_%1").arg(QCoreApplication::applicationPid());
        serverCommand(m_admin, QStringLiteral("CREATE DATABASE %1").arg(m_database));
        m_copyAt = server + QStringLiteral(" dbname=") + m_database;
        copyToServer(m_path, m_copyAt);
        m_copy = openBare(StoreAt::server(m_copyAt), true);
    }
    void cleanupTestCase()
    {
        tq::amb1().closeStore();
        closeBare(m_file);
        closeBare(m_copy);
        if (!m_database.isEmpty())
            serverCommand(m_admin, QStringLiteral("DROP DATABASE %1 WITH (FORCE)").arg(m_database));
    }

    void theFillIsACoherentLaboratory()
    {
        const Sizes s = Sizes::small();
        // Each of these is a way the program would never leave its rows.
        const QStringList never = {
            // billed on a closed day, or before the patient was born
            QStringLiteral("SELECT count(*) FROM Factura f JOIN Pacientes p USING (cod_paciente) "
                           "WHERE f.fecha < '%1' OR f.fecha > '%2' OR strftime('%w', f.fecha) = '0' "
                           "OR p.fecha_nacimiento > f.fecha")
                .arg(kFirstDay.toString(Qt::ISODate), kLastDay.toString(Qt::ISODate)),
            // lines that do not add up to the invoice, or totals that ignore the surcharge
            QStringLiteral("SELECT count(*) FROM Factura f WHERE abs(sub_total - (SELECT sum(subtotal) "
                           "FROM FacturaDetalle d WHERE d.factura = f.factura)) > 0.005 OR abs(total - "
                           "sub_total - CASE adicional WHEN 'Recargo' THEN valadicional WHEN "
                           "'Descuento' THEN -valadicional ELSE 0 END) > 0.005"),
            // paid at once but not in full
            QStringLiteral("SELECT count(*) FROM Factura WHERE credito = 0 AND (pagada = 0 OR "
                           "abs(efectivo + tarjeta + cheque - total) > 0.005)"),
            // on credit with instalments that do not make up the amount paid
            QStringLiteral("SELECT count(*) FROM Factura f WHERE credito = 1 AND abs(Abono - "
                           "coalesce((SELECT sum(abono) FROM creditos c WHERE c.factura = f.factura), "
                           "-1)) > 0.005"),
            // charged to the insurer yet paid at the desk, or settled without a date
            QStringLiteral("SELECT count(*) FROM Factura f JOIN cxc USING (factura) WHERE "
                           "f.efectivo + f.tarjeta + f.cheque + f.Abono <> 0 OR f.pagada <> cxc.estado "
                           "OR (cxc.estado = 1) <> (cxc.fecha_pago IS NOT NULL)"),
            // a sheet id on a line that no sheet of that invoice carries
            QStringLiteral("SELECT count(*) FROM FacturaDetalle d WHERE iduniversalformato IS NOT "
                           "NULL AND (evaluado = 0 OR NOT EXISTS (SELECT 1 FROM resultados r WHERE "
                           "r.iduniversalformato = d.iduniversalformato AND r.num_factura = d.factura))"),
            // an exam waiting on the work table that is already closed
            QStringLiteral("SELECT count(*) FROM FacturaDetalle WHERE evaluado = 1 AND factura IN "
                           "(SELECT factura FROM EvaluadoTemporal)"),
        };
        for (const QString& sql : never)
            QVERIFY2(count(m_file, sql) == 0, qPrintable(sql));
        QVERIFY(count(m_file, "SELECT count(*) FROM cxc") > 0);
        QVERIFY(count(m_file, "SELECT count(*) FROM EvaluadoTemporal") >= s.waiting);

        // The benchmark signs on as an employee whose password the program accepts.
        Stmt pass(m_file, "SELECT Password FROM Empleados WHERE usuario = ?");
        pass.bind(1, kSignOnUser);
        QVERIFY(pass.next());
        QVERIFY(tq::verifyPassword(pass.columnText(0), kSignOnPassword));
        while (pass.next()) {
        }
    }

    // The server holds the same laboratory: every table's rows, the money to
    // the cent, the days, the yes/no columns, the missing values and the
    // sheets' texts with their line breaks; and a new row takes the key after
    // the loaded ones.
    void theCopyOnTheServerIsTheSameLaboratory()
    {
        if (!m_copy)
            QSKIP("no server given (TQ_TEST_SERVER)");
        for (const QString& table : tq::schema::tableNames()) {
            const QString sql = QStringLiteral("SELECT count(*) FROM ") + table;
            QCOMPARE(count(m_copy, sql), count(m_file, sql));
        }
        const char* const same[] = {
            "SELECT sum(sub_total), sum(total), sum(efectivo + tarjeta + cheque + Abono), "
            "min(fecha), max(fecha), sum(Cod_doctor) FROM Factura",
            "SELECT count(*), sum(total) FROM Factura WHERE anulada = TRUE AND credito = FALSE",
            "SELECT sum(subtotal), sum(cantidad), count(iduniversalformato), count(fecha_llenado) "
            "FROM FacturaDetalle WHERE evaluado = TRUE",
            "SELECT count(*), sum(length(valor)) FROM resultados WHERE valor LIKE '%Validado%'",
            "SELECT count(*), min(fecha_nacimiento), max(nombre_paciente) FROM Pacientes "
            "WHERE asegurado = TRUE",
            "SELECT sum(stock), sum(precio_Item) FROM Insumos",
        };
        for (const char* sql : same)
            QVERIFY2(firstRow(m_copy, sql) == firstRow(m_file, sql), sql);

        tq::amb1().openServer(m_copyAt);
        tq::Transaction t;   // left uncommitted: the copy stays as loaded
        QCOMPARE(tq::amb1()
                     .insert(QStringLiteral("Pacientes"), {QStringLiteral("nombre_paciente")},
                             {QStringLiteral("Prueba")})
                     .toLongLong(),
                 count(m_file, "SELECT max(cod_paciente) FROM Pacientes") + 1);
    }

    // The floors narrow the stored sources; they must read the rows that the
    // program's recordsets hold after the same filter, on the engine of the run.
    void floorsReadWhatTheProgramReads()
    {
        Connection* db = m_copy ? m_copy : m_file;
        if (m_copy)
            tq::amb1().openServer(m_copyAt);
        else
            tq::amb1().openStore(m_path);
        const int invoice = probeInvoice(Sizes::small());
        tq::Recordset& fact = tq::amb1().rs(QStringLiteral("rsrfact1"));
        fact.open();
        fact.setFilter(QStringLiteral("factura = %1").arg(invoice));
        QCOMPARE(fact.recordCount(), 1);
        const tq::Recordset lines = fact.child(QStringLiteral("Command1"));
        QCOMPARE(Stmt(db, narrowedSource(QStringLiteral("rsrfact1"), QStringLiteral("Command1"),
                                         QStringLiteral("FacturaDetalle.factura = ?")))
                     .readAll(invoice),
                 qint64(lines.recordCount()));

        const QDate date = invoiceDay(db, invoice);
        tq::Recordset& cut = tq::amb1().rs(QStringLiteral("rsrcorte_Grouping"));
        cut.open();
        cut.setFilter(QStringLiteral("fecha = ") + date.toString(QStringLiteral("dd/MM/yyyy")));
        qint64 rows = 0;
        for (cut.moveFirst(); !cut.eof(); cut.moveNext())
            rows += cut.child(QStringLiteral("rcorte")).recordCount();
        QVERIFY(rows > 0);
        QCOMPARE(Stmt(db, narrowedSource(QStringLiteral("rsrcorte_Grouping"), QString(),
                                         QStringLiteral("Factura.fecha = ?")))
                     .readAll(date),
                 rows);
        tq::amb1().closeStore();
    }

private:
    QTemporaryDir m_dir;
    QString m_path;
    Connection* m_file = nullptr;
    QString m_admin;      // the server's own database, for making and dropping the copy
    QString m_database;   // the copy's name
    QString m_copyAt;     // its connection text
    Connection* m_copy = nullptr;
};

QTEST_MAIN(TestBench)
#include "test_bench.moc"
