// Several workstations on one store: saving at once, killed mid-save, backed
// up mid-save, settling one insurer's invoices at once. Every invoice stands
// whole under a number of its own, and is settled once.
#include "testsupport.h"

#include "billing/invoice/invoicesave.h"
#include "foundation/data/amb1.h"
#include "maintenance/backup.h"

#include <QDir>
#include <QElapsedTimer>
#include <QHash>
#include <QProcess>
#include <QRandomGenerator>
#include <QSet>

using namespace tq;
using namespace tq::test;

namespace {

// Invoices lacking part of their save: two lines, three waiting exams, an
// instalment on credit or to the insurer, a receivable to the insurer.
const char* const kBroken =
    "SELECT COUNT(*) FROM Factura f WHERE "
    "(SELECT COUNT(*) FROM FacturaDetalle d WHERE d.factura = f.factura) <> 2 "
    "OR (SELECT COUNT(*) FROM EvaluadoTemporal e WHERE e.factura = f.factura) <> 3 "
    "OR (SELECT COUNT(*) FROM creditos c WHERE c.factura = f.factura) "
    "   <> CASE WHEN f.credito = TRUE THEN 1 ELSE 0 END "
    "OR (SELECT COUNT(*) FROM cxc x WHERE x.factura = f.factura) "
    "   <> CASE WHEN f.abono = 0 AND f.credito = TRUE THEN 1 ELSE 0 END";
// Rows of those tables whose invoice is missing.
const QString kOrphans = [] {
    QStringList each;
    for (const char* table : {"FacturaDetalle", "EvaluadoTemporal", "creditos", "cxc"})
        each << QStringLiteral("(SELECT COUNT(*) FROM %1 t WHERE NOT EXISTS "
                               "(SELECT 1 FROM Factura f WHERE f.factura = t.factura))").arg(table);
    return "SELECT " + each.join(" + ");
}();

// A patient and the two exams the saver bills (codes 1, and 1 and 2).
void prepareCatalogue()
{
    const int type = amb1().insert("TipoExamen", {"tipo_examen"}, {"Química"}).toInt();
    amb1().insert("Pacientes", {"nombre_paciente", "apellido_paciente"}, {"Ana", "Paz"});
    for (const char* exam : {"Urea", "Glucosa"})
        amb1().insert("Examenes", {"cod_tipo_examen", "examen", "precio"}, {type, exam, 10});
}

// A saving station on `store`, its store open once it has written a line.
QProcess* startSaver(QObject* owner, const TempStore& store, int invoices, const QString& name = "caja")
{
    auto* p = new QProcess(owner);
    p->start(QStringLiteral(TQ_SAVER), {store.where(), QString::number(invoices), name});
    return p;
}

}  // namespace

class TestConcurrency : public QObject {
    Q_OBJECT

private slots:
    void fourStationsSaveAtOnce()
    {
        TempStore store;
        if (!onServer())   // readers and a writer don't wait for each other
            QCOMPARE(value("PRAGMA journal_mode").toString(), QString("wal"));
        prepareCatalogue();

        constexpr int kStations = 4, kEach = 250;
        QElapsedTimer clock;
        clock.start();
        QList<QProcess*> stations;
        for (int i = 1; i <= kStations; ++i)
            stations << startSaver(this, store, kEach, QStringLiteral("estacion %1").arg(i));
        QSet<int> numbers;
        for (QProcess* p : stations) {
            QVERIFY(p->waitForFinished(300000));
            QVERIFY2(p->exitStatus() == QProcess::NormalExit && p->exitCode() == 0,
                     p->readAllStandardError().constData());
            const QList<QByteArray> lines = p->readAllStandardOutput().trimmed().split('\n');
            QCOMPARE(lines.size(), kEach + 1);
            for (const QByteArray& line : lines.mid(1)) {
                const QList<QByteArray> f = line.split(' ');
                const int proposed = f.at(0).toInt(), saved = f.at(1).toInt();
                // A number that moved was told; one that didn't, wasn't.
                QCOMPARE(f.at(2) == "1", saved != proposed);
                numbers.insert(saved);
            }
        }
        const int total = kStations * kEach;
        qInfo("%d invoices saved by %d stations at once in %.1f s", total, kStations,
              clock.nsecsElapsed() / 1e9);

        QCOMPARE(numbers.size(), total);   // no number given twice
        QCOMPARE(rowsIn("Factura"), total);
        QCOMPARE(count("SELECT COUNT(DISTINCT factura) FROM Factura"), total);
        QCOMPARE(value("SELECT MAX(factura) FROM Factura").toInt(), total);   // none skipped
        QCOMPARE(count("SELECT COUNT(*) FROM (SELECT faturado FROM Factura GROUP BY faturado "
                       "HAVING COUNT(*) = ?) AS g", {kEach}),
                 kStations);
        QCOMPARE(count(kBroken), 0);
        QCOMPARE(count(kOrphans), 0);
        QCOMPARE(rowsIn("FacturaDetalle"), 2 * total);
        QCOMPARE(rowsIn("EvaluadoTemporal"), 3 * total);
    }

    // A station killed (-9) at random moments mid-save leaves a store that
    // opens, every invoice whole and no row without its invoice.
    void killedInTheMiddleOfSaving()
    {
        TempStore store;
        prepareCatalogue();
        amb1().closeStore();

        constexpr int kKills = 20;
        const quint32 seed = QRandomGenerator::global()->generate();
        QRandomGenerator random(seed);
        for (int k = 0; k < kKills; ++k) {
            std::unique_ptr<QProcess> p(startSaver(nullptr, store, 100000));
            QVERIFY(p->waitForReadyRead(30000));
            QTest::qWait(random.bounded(5, 400));
            p->kill();
            QVERIFY(p->waitForFinished());
            QVERIFY2(p->exitStatus() == QProcess::CrashExit, "the station ended before its kill");
        }
        store.reopen();
        qInfo("%d kills survived (seed %u); %d invoices stand", kKills, seed, rowsIn("Factura"));
        QVERIFY(rowsIn("Factura") > 0);
        if (!onServer())
            QCOMPARE(value("PRAGMA integrity_check").toString(), QString("ok"));
        QVERIFY2(count(kBroken) + count(kOrphans) == 0, qPrintable(QStringLiteral("seed %1").arg(seed)));
    }

    // A backup taken while another station saves holds each invoice whole.
    void backupWhileAnotherStationSaves()
    {
        TempStore store;
        ScriptedPrompts sp;
        prepareCatalogue();
        QProcess* saver = startSaver(this, store, 100000);
        QVERIFY(saver->waitForReadyRead(30000));
        QTest::qWait(300);
        const QString copy = QDir(store.folder()).filePath("respaldo.db");
        const BackupResult result = backupStore(copy);
        saver->kill();
        saver->waitForFinished();
        QVERIFY2(result.ok, qPrintable(result.error + " | " + result.detail));
        QVERIFY(queryCopy(copy, "SELECT COUNT(*) FROM Factura").toInt() > 0);
        QCOMPARE(queryCopy(copy, kBroken).toInt(), 0);
        QCOMPARE(queryCopy(copy, kOrphans).toInt(), 0);
    }

    // Two stations settle one insurer's invoices at once, each pressing for
    // the head of the list it read: every invoice is settled once, by the
    // station whose reference it carries, and a refused press named only
    // invoices the other station had settled.
    void twoStationsSettleOneInsurer()
    {
        TempStore store;
        prepareCatalogue();
        amb1().execute("INSERT INTO seguros (Cod_Seguro, Empresa) VALUES (4, 'Seguros Atlántida')");
        amb1().execute("UPDATE Pacientes SET Cod_seguro = 4");
        constexpr int kInvoices = 150;
        for (int n = 1; n <= kInvoices; ++n) {
            PricedDocument doc;
            doc.numero = n;
            doc.fecha = QDate::currentDate();
            doc.faturado = "caja";
            doc.codPaciente = 1;
            doc.subtotal = doc.total = "10.00";
            doc.lines = {{1, 1, "10.00"}};
            saveInvoice(doc, Settlement::Insurer, {}, true, nullptr);
        }

        const QStringList names = {"estacion 1", "estacion 2"};
        QList<QProcess*> stations;
        for (const QString& name : names) {
            auto* p = new QProcess(this);
            p->start(QStringLiteral(TQ_SAVER), {store.where(), "liquidar", "4", name});
            stations << p;
        }
        QHash<int, QString> settledBy;
        QList<QPair<QString, int>> refused;
        for (int i = 0; i < stations.size(); ++i) {
            QProcess* p = stations.at(i);
            QVERIFY(p->waitForFinished(300000));
            QVERIFY2(p->exitStatus() == QProcess::NormalExit && p->exitCode() == 0,
                     p->readAllStandardError().constData());
            const QList<QByteArray> lines = p->readAllStandardOutput().trimmed().split('\n');
            for (const QByteArray& line : lines.mid(1)) {
                QList<QByteArray> f = line.split(' ');
                const QByteArray what = f.takeFirst();
                QVERIFY(!f.isEmpty());
                for (const QByteArray& n : f) {
                    if (what == "pagadas") {
                        QVERIFY2(!settledBy.contains(n.toInt()), n.constData());   // paid twice
                        settledBy.insert(n.toInt(), names.at(i));
                    } else {
                        QCOMPARE(what, QByteArray("rechazadas"));
                        refused.append({names.at(i), n.toInt()});
                    }
                }
            }
        }
        qInfo("%d invoices settled by two stations at once; %lld refused as settled meanwhile", kInvoices,
              qlonglong(refused.size()));
        QCOMPARE(settledBy.size(), kInvoices);
        for (const auto& [station, n] : refused)
            QVERIFY2(settledBy.value(n) != station, qPrintable(QString::number(n)));
        for (auto it = settledBy.cbegin(); it != settledBy.cend(); ++it)
            QCOMPARE(value("SELECT referencia FROM cxc WHERE factura = ?", {it.key()}).toString(), it.value());
        QCOMPARE(count("SELECT COUNT(*) FROM cxc WHERE estado = ?", {true}), kInvoices);
        QCOMPARE(count("SELECT COUNT(*) FROM Factura WHERE pagada = ?", {true}), kInvoices);
    }
};

QTEST_MAIN(TestConcurrency)
#include "test_concurrency.moc"
