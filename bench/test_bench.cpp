// The benchmark's own parts: the store it fills must be a laboratory the
// program could have written (else the times are of the wrong work), and a
// floor must read what the program reads.
#include "bare.h"
#include "bench.h"
#include "store_fill.h"

#include "foundation/base/passwords.h"
#include "foundation/data/amb1.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace bench;

class TestBench : public QObject {
    Q_OBJECT

    qint64 count(const QString& sql) { return qint64(scalarBare(m_db, sql.toUtf8().constData())); }

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        m_path = m_dir.filePath(QStringLiteral("lab.db"));
        tq::amb1().openStore(m_path);
        tq::amb1().closeStore();
        fillStore(m_path, Sizes::small());
        m_db = openBare(m_path, true);
    }
    void cleanupTestCase() { closeBare(m_db); }

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
            QVERIFY2(count(sql) == 0, qPrintable(sql));
        QVERIFY(count("SELECT count(*) FROM cxc") > 0);
        QVERIFY(count("SELECT count(*) FROM EvaluadoTemporal") >= s.waiting);

        // The benchmark signs on as an employee whose password the program accepts.
        Stmt pass(m_db, "SELECT Password FROM Empleados WHERE usuario = ?");
        pass.bind(1, kSignOnUser);
        QVERIFY(pass.next());
        QVERIFY(tq::verifyPassword(pass.columnText(0), kSignOnPassword));
        while (pass.next()) {
        }
    }

    // The floors narrow the stored sources; they must read the rows that the
    // program's recordsets hold after the same filter.
    void floorsReadWhatTheProgramReads()
    {
        tq::amb1().openStore(m_path);
        const int invoice = probeInvoice(Sizes::small());
        tq::Recordset& fact = tq::amb1().rs(QStringLiteral("rsrfact1"));
        fact.open();
        fact.setFilter(QStringLiteral("factura = %1").arg(invoice));
        QCOMPARE(fact.recordCount(), 1);
        const tq::Recordset lines = fact.child(QStringLiteral("Command1"));
        QCOMPARE(Stmt(m_db, narrowedSource(QStringLiteral("rsrfact1"), QStringLiteral("Command1"),
                                           QStringLiteral("FacturaDetalle.factura = ?")))
                     .readAll(invoice),
                 qint64(lines.recordCount()));

        const QDate date = invoiceDay(m_db, invoice);
        tq::Recordset& cut = tq::amb1().rs(QStringLiteral("rsrcorte_Grouping"));
        cut.open();
        cut.setFilter(QStringLiteral("fecha = ") + date.toString(QStringLiteral("dd/MM/yyyy")));
        qint64 rows = 0;
        for (cut.moveFirst(); !cut.eof(); cut.moveNext())
            rows += cut.child(QStringLiteral("rcorte")).recordCount();
        QVERIFY(rows > 0);
        QCOMPARE(Stmt(m_db, narrowedSource(QStringLiteral("rsrcorte_Grouping"), QString(),
                                           QStringLiteral("Factura.fecha = ?")))
                     .readAll(date),
                 rows);
        tq::amb1().closeStore();
    }

private:
    QTemporaryDir m_dir;
    QString m_path;
    sqlite3* m_db = nullptr;
};

QTEST_MAIN(TestBench)
#include "test_bench.moc"
