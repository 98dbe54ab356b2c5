// Several workstations on one store: four programs save invoices at the same
// time, each proposing numbers as the invoice screen does. Every invoice
// stands whole, under a number of its own.
#include "testsupport.h"

#include "foundation/data/amb1.h"

#include <QProcess>
#include <QTest>

using namespace tq;
using namespace tq::test;

class TestConcurrency : public QObject {
    Q_OBJECT

private slots:
    void fourStationsSaveAtOnce()
    {
        TempStore store;
        // Readers and a writer don't wait for each other.
        QCOMPARE(value("PRAGMA journal_mode").toString(), QString("wal"));
        const int patient = amb1().insert("Pacientes", {"nombre_paciente", "apellido_paciente"},
                                          {"Ana", "Paz"}).toInt();
        const int type = amb1().insert("TipoExamen", {"tipo_examen"}, {"Química"}).toInt();
        for (const char* exam : {"Urea", "Glucosa"})
            amb1().insert("Examenes", {"cod_tipo_examen", "examen", "precio"}, {type, exam, 10});
        QCOMPARE(patient, 1);
        QCOMPARE(value("SELECT MAX(cod_descripcionexamen) FROM Examenes").toInt(), 2);

        constexpr int kStations = 4, kEach = 60;
        QList<QProcess*> stations;
        for (int i = 1; i <= kStations; ++i) {
            auto* p = new QProcess(this);
            p->start(QStringLiteral(TQ_SAVER),
                     {store.dbPath(), QString::number(kEach), QStringLiteral("estacion %1").arg(i)});
            stations << p;
        }
        int renumbered = 0;
        for (QProcess* p : stations) {
            QVERIFY(p->waitForFinished(120000));
            QVERIFY2(p->exitStatus() == QProcess::NormalExit && p->exitCode() == 0,
                     p->readAllStandardError().constData());
            renumbered += p->readAllStandardOutput().trimmed().split('\n').last().toInt();
        }
        qInfo("%d invoices saved by %d stations at once, %d of them under the next free number",
              kStations * kEach, kStations, renumbered);

        const int total = kStations * kEach;
        QCOMPARE(rowsIn("Factura"), total);
        QCOMPARE(count("SELECT COUNT(DISTINCT factura) FROM Factura"), total);
        QCOMPARE(value("SELECT MAX(factura) FROM Factura").toInt(), total);   // no number skipped
        QCOMPARE(count("SELECT COUNT(*) FROM (SELECT faturado FROM Factura GROUP BY faturado "
                       "HAVING COUNT(*) = ?)", {kEach}),
                 kStations);
        // Each whole: its two lines and its three waiting exams.
        QCOMPARE(count("SELECT COUNT(*) FROM Factura f WHERE (SELECT COUNT(*) FROM FacturaDetalle d "
                       "WHERE d.factura = f.factura) <> 2 OR (SELECT COUNT(*) FROM EvaluadoTemporal e "
                       "WHERE e.factura = f.factura) <> 3"),
                 0);
        QCOMPARE(rowsIn("FacturaDetalle"), 2 * total);
        QCOMPARE(rowsIn("EvaluadoTemporal"), 3 * total);
    }

    // A station killed in the middle of its saves (kill -9: no clean-up of
    // any kind) leaves a store that opens, with every invoice whole.
    void killedInTheMiddleOfSaving()
    {
        TempStore store;
        const int type = amb1().insert("TipoExamen", {"tipo_examen"}, {"Química"}).toInt();
        amb1().insert("Pacientes", {"nombre_paciente", "apellido_paciente"}, {"Ana", "Paz"});
        for (const char* exam : {"Urea", "Glucosa"})
            amb1().insert("Examenes", {"cod_tipo_examen", "examen", "precio"}, {type, exam, 10});
        const QString path = store.dbPath();
        amb1().closeStore();

        constexpr int kKills = 10;
        for (int k = 0; k < kKills; ++k) {
            QProcess p;
            p.start(QStringLiteral(TQ_SAVER), {path, QStringLiteral("100000"), QStringLiteral("caja")});
            QVERIFY(p.waitForReadyRead(30000));   // the store is open
            QTest::qWait(5 + 17 * k);            // somewhere in the middle of a save
            p.kill();                   // SIGKILL
            QVERIFY(p.waitForFinished());
        }
        amb1().openStore(path);
        const int saved = rowsIn("Factura");
        qInfo("%d kills survived; %d invoices stand", kKills, saved);
        QVERIFY(saved > 0);
        QCOMPARE(value("PRAGMA integrity_check").toString(), QString("ok"));
        QCOMPARE(count("SELECT COUNT(*) FROM Factura f WHERE (SELECT COUNT(*) FROM FacturaDetalle d "
                       "WHERE d.factura = f.factura) <> 2 OR (SELECT COUNT(*) FROM EvaluadoTemporal e "
                       "WHERE e.factura = f.factura) <> 3"),
                 0);
        for (const char* table : {"FacturaDetalle", "EvaluadoTemporal"})
            QCOMPARE(count(QStringLiteral("SELECT COUNT(*) FROM %1 t WHERE NOT EXISTS (SELECT 1 FROM "
                                          "Factura f WHERE f.factura = t.factura)")
                               .arg(QLatin1String(table))),
                     0);
    }
};

QTEST_MAIN(TestConcurrency)
#include "test_concurrency.moc"
