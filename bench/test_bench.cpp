// The benchmark's own parts: the store it fills must be a laboratory the
// program could have written (else the times are of the wrong work), a
// floor must read what the program reads, and the targets must be the rule.
#include "bare.h"
#include "bench.h"
#include "store_fill.h"

#include "foundation/base/passwords.h"
#include "foundation/data/amb1.h"

#include <QCryptographicHash>
#include <QTemporaryDir>
#include <QtTest>

using namespace bench;

namespace {

// A small store, made as the benchmark makes the large one.
QString makeStore(const QTemporaryDir& dir, const QString& name)
{
    const QString path = dir.filePath(name);
    tq::amb1().openStore(path);
    tq::amb1().closeStore();
    fillStore(path, Sizes::small());
    return path;
}

qint64 count(sqlite3* db, const QString& sql)
{
    return qint64(scalarBare(db, sql.toUtf8().constData()));
}

// Every value of every table but the salted password hashes.
QByteArray digest(const QString& path)
{
    sqlite3* db = openBare(path, true);
    QCryptographicHash hash(QCryptographicHash::Sha1);
    Stmt tables(db, "SELECT name FROM sqlite_master WHERE type = 'table' ORDER BY name");
    while (tables.next()) {
        const QString table = tables.columnText(0);
        const QString sql
            = table == QLatin1String("Empleados")
                  ? QStringLiteral("SELECT cod_empleado, nombre_empleado, usuario FROM Empleados")
                  : QStringLiteral("SELECT * FROM \"%1\" ORDER BY rowid").arg(table);
        sqlite3_stmt* rows = nullptr;
        sqlite3_prepare_v2(db, sql.toUtf8().constData(), -1, &rows, nullptr);
        while (sqlite3_step(rows) == SQLITE_ROW)
            for (int c = 0; c < sqlite3_column_count(rows); ++c) {
                const auto* text = sqlite3_column_text(rows, c);
                hash.addData(QByteArray(text ? reinterpret_cast<const char*>(text) : "\x01"));
            }
        sqlite3_finalize(rows);
    }
    closeBare(db);
    return hash.result();
}

}  // namespace

class TestBench : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        m_path = makeStore(m_dir, QStringLiteral("lab.db"));
        m_db = openBare(m_path, true);
    }
    void cleanupTestCase()
    {
        closeBare(m_db);
        tq::amb1().closeStore();
    }

    void registersAndInvoicesAsAsked()
    {
        const Sizes s = Sizes::small();
        QCOMPARE(count(m_db, "SELECT count(*) FROM Pacientes"), s.patients);
        QCOMPARE(count(m_db, "SELECT count(*) FROM Factura"), s.invoices);
        QCOMPARE(count(m_db, "SELECT count(*) FROM FacturaDetalle"), s.lines);
        QVERIFY(count(m_db, "SELECT count(*) FROM Examenes") > 300);
        QVERIFY(count(m_db, "SELECT count(*) FROM Pacientes WHERE sexo = 'Femenino'")
                > s.patients / 3);
        QVERIFY(count(m_db, "SELECT count(*) FROM Pacientes WHERE sexo = 'Masculino'")
                > s.patients / 3);
        // Billed only on open days within the two years, each patient after birth.
        QCOMPARE(
            count(m_db, QStringLiteral("SELECT count(*) FROM Factura WHERE fecha < '%1' OR "
                                       "fecha > '%2' OR strftime('%w', fecha) = '0'")
                            .arg(kFirstDay.toString(Qt::ISODate), kLastDay.toString(Qt::ISODate))),
            0);
        QCOMPARE(count(m_db,
                       "SELECT count(*) FROM Factura f JOIN Pacientes p "
                       "ON p.cod_paciente = f.cod_paciente WHERE p.fecha_nacimiento > f.fecha"),
                 0);
        // Money written through "#.00" is stored as a number of two decimals at most.
        QCOMPARE(count(m_db, "SELECT count(*) FROM FacturaDetalle WHERE typeof(subtotal) NOT IN "
                             "('integer', 'real') OR round(subtotal, 2) <> subtotal"),
                 0);
    }

    void amountsAddUp()
    {
        QCOMPARE(count(m_db,
                       "SELECT count(*) FROM Factura f WHERE abs(sub_total - (SELECT "
                       "sum(subtotal) FROM FacturaDetalle d WHERE d.factura = f.factura)) > 0.005"),
                 0);
        QCOMPARE(count(m_db, "SELECT count(*) FROM Factura WHERE abs(total - sub_total - CASE "
                             "adicional WHEN 'Recargo' THEN valadicional WHEN 'Descuento' THEN "
                             "-valadicional ELSE 0 END) > 0.005"),
                 0);
        // Paid at once: the whole total at the desk.
        QCOMPARE(
            count(
                m_db,
                "SELECT count(*) FROM Factura WHERE credito = 0 AND (pagada = 0 OR "
                "abs(Abono - total) > 0.005 OR abs(efectivo + tarjeta + cheque - total) > 0.005)"),
            0);
        // On credit: instalment 1 on the invoice's day, Abono their sum, paid
        // when they reach the total (or when the insurer settled).
        QCOMPARE(count(m_db,
                       "SELECT count(*) FROM Factura f WHERE credito = 1 AND NOT EXISTS "
                       "(SELECT 1 FROM creditos c WHERE c.factura = f.factura AND c.numero = 1 "
                       "AND c.fecha = f.fecha)"),
                 0);
        QCOMPARE(count(m_db,
                       "SELECT count(*) FROM Factura f WHERE credito = 1 AND abs(Abono - "
                       "(SELECT sum(abono) FROM creditos c WHERE c.factura = f.factura)) > 0.005"),
                 0);
        QCOMPARE(count(m_db, "SELECT count(*) FROM Factura f WHERE credito = 1 AND NOT EXISTS "
                             "(SELECT 1 FROM cxc WHERE cxc.factura = f.factura) AND "
                             "pagada <> (abs(Abono - total) <= 0.005)"),
                 0);
        // Charged to the insurer: nothing paid now; settled ones are paid.
        QVERIFY(count(m_db, "SELECT count(*) FROM cxc") > 0);
        QCOMPARE(
            count(m_db,
                  "SELECT count(*) FROM Factura f JOIN cxc ON cxc.factura = f.factura "
                  "WHERE f.credito = 0 OR f.efectivo + f.tarjeta + f.cheque + f.Abono <> 0 "
                  "OR f.pagada <> cxc.estado OR (cxc.estado = 1) <> (cxc.fecha_pago IS NOT NULL)"),
            0);
        QCOMPARE(count(m_db, "SELECT count(*) FROM Factura f WHERE (tarjeta > 0) <> EXISTS "
                             "(SELECT 1 FROM Datostarjeta t WHERE t.factura = f.factura)"),
                 0);
        QVERIFY(count(m_db, "SELECT count(*) FROM Factura WHERE anulada = 1") > 0);
    }

    void workTableAndSheetsFollowTheExams()
    {
        const Sizes s = Sizes::small();
        // The newest exams wait, one row per unit, none of them closed.
        const qint64 waiting = count(m_db, "SELECT count(*) FROM EvaluadoTemporal");
        QVERIFY(waiting >= s.waiting && waiting < s.waiting + 24);
        QCOMPARE(count(m_db, "SELECT sum(cantidad) FROM FacturaDetalle WHERE factura IN "
                             "(SELECT factura FROM EvaluadoTemporal)"),
                 waiting);
        QCOMPARE(count(m_db,
                       "SELECT count(*) FROM FacturaDetalle WHERE evaluado = 1 AND factura IN "
                       "(SELECT factura FROM EvaluadoTemporal)"),
                 0);
        QVERIFY(count(m_db, "SELECT min(factura) FROM EvaluadoTemporal")
                > count(m_db, "SELECT max(num_factura) FROM resultados"));

        // Each sheet's id ties its cells to the lines it closed, in the same invoice.
        const qint64 sheets
            = count(m_db, "SELECT count(DISTINCT iduniversalformato) FROM resultados");
        QVERIFY(sheets <= s.sheets && sheets > s.sheets * 9 / 10);
        QCOMPARE(count(m_db, "SELECT count(DISTINCT iduniversalformato) FROM FacturaDetalle"),
                 sheets);
        QCOMPARE(
            count(m_db,
                  "SELECT count(*) FROM FacturaDetalle d WHERE iduniversalformato IS NOT "
                  "NULL AND (evaluado = 0 OR NOT EXISTS (SELECT 1 FROM resultados r WHERE "
                  "r.iduniversalformato = d.iduniversalformato AND r.num_factura = d.factura))"),
            0);
        QCOMPARE(count(m_db, "SELECT count(*) FROM (SELECT num_factura FROM resultados GROUP BY "
                             "num_factura HAVING count(DISTINCT NumFormato) <> max(NumFormato))"),
                 0);
        // Grid sheets always keep their comment row.
        QCOMPARE(count(m_db, "SELECT count(DISTINCT iduniversalformato) FROM resultados WHERE "
                             "Cod_Plantilla IN (2, 3, 4) AND celda = 'W'"),
                 count(m_db, "SELECT count(DISTINCT iduniversalformato) FROM resultados WHERE "
                             "Cod_Plantilla IN (2, 3, 4)"));
        // Only the newest sheets are still to print.
        QVERIFY(
            count(m_db,
                  "SELECT count(*) FROM FacturaDetalle WHERE evaluado = 1 AND num_impresion = 0")
            > 0);
        QVERIFY(
            count(m_db,
                  "SELECT count(*) FROM FacturaDetalle WHERE evaluado = 1 AND num_impresion = 0")
            < count(m_db, "SELECT count(*) FROM FacturaDetalle WHERE evaluado = 1") / 20);
    }

    void theSignOnEmployeeCanEnter()
    {
        Stmt pass(m_db, "SELECT Password FROM Empleados WHERE usuario = ?");
        pass.bind(1, kSignOnUser);
        QVERIFY(pass.next());
        QVERIFY(tq::verifyPassword(pass.columnText(0), kSignOnPassword));
        QVERIFY(!tq::verifyPassword(pass.columnText(0), kSignOnPassword + QLatin1Char('x')));
        while (pass.next()) {
        }
        QCOMPARE(
            count(m_db, QStringLiteral("SELECT count(*) FROM usuariosmodulos m JOIN Empleados e "
                                       "ON e.cod_empleado = m.cod_empleado WHERE e.usuario = '%1' "
                                       "AND m.cod_modulo = 1")
                            .arg(kSignOnUser)),
            1);
        QCOMPARE(count(m_db, "SELECT count(*) FROM Empleados WHERE usuario <> 'admin' AND "
                             "Password NOT LIKE '$argon2id$%'"),
                 0);
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
        QVERIFY(date.isValid());
        tq::Recordset& cut = tq::amb1().rs(QStringLiteral("rsrcorte_Grouping"));
        cut.open();
        cut.setFilter(QStringLiteral("fecha = ") + date.toString(QStringLiteral("dd/MM/yyyy")));
        qint64 rows = 0;
        for (cut.moveFirst(); !cut.eof(); cut.moveNext())
            rows += cut.child(QStringLiteral("rcorte")).recordCount();
        QVERIFY(rows > 0);
        const QString sql = narrowedSource(QStringLiteral("rsrcorte_Grouping"), QString(),
                                           QStringLiteral("Factura.fecha = ?"));
        QVERIFY(sql.endsWith(QLatin1String("ORDER BY Factura.fecha, Factura.tipo_factura")));
        QCOMPARE(Stmt(m_db, sql).readAll(date), rows);
        tq::amb1().closeStore();
    }

    void sameSeedSameStore()
    {
        QCOMPARE(digest(makeStore(m_dir, QStringLiteral("again.db"))), digest(m_path));
    }

    void targetsAreTheHouseRule()
    {
        const Target t = Target::withinFloor();
        QVERIFY(t.met(2.9, 0.4));     // a floor under 1 ms still allows 3 ms
        QVERIFY(!t.met(3.1, 0.4));
        QVERIFY(t.met(29.0, 10.0));
        QVERIFY(!t.met(31.0, 10.0));
        QVERIFY(!t.met(101.0, 50.0));   // 100 ms whatever the floor
        const Target s = Target::startUp();
        QVERIFY(s.met(119.0, 100.0));
        QVERIFY(!s.met(121.0, 100.0));
    }

private:
    QTemporaryDir m_dir;
    QString m_path;
    sqlite3* m_db = nullptr;
};

QTEST_MAIN(TestBench)
#include "test_bench.moc"
