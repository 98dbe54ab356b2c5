// tarvenquil_bench: makes (or reuses) the large store, then times every path
// a user waits on against its floor and prints one row per path. Exits 1
// when a path misses its target, 2 when the benchmark itself can't run.
//
//   tarvenquil_bench [--motor sqlite|postgresql] [--rebuild] [--only TEXT]
//
// On PostgreSQL the store file is copied once to a server of the bench's own
// (build/bench/servidor-*), started for the run and stopped after it; the
// program and the floors then both run on that server.
#include "bare.h"
#include "bench.h"
#include "server_store.h"
#include "store_fill.h"

#include "foundation/base/apperror.h"
#include "foundation/base/memory.h"
#include "foundation/data/amb1.h"
#include "foundation/data/datafolder.h"
#include "foundation/ui/prompt.h"

#include <QApplication>
#include <QTextStream>
#include <QWidget>
#include <optional>
#include <sodium.h>
#include <sqlite3.h>

int main(int argc, char** argv)
{
    tq::keepHeapHeadroom();   // as the program does
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QTextStream out(stdout);
    const QStringList args = app.arguments();
    auto option = [&args](const char* name) {
        const int at = args.indexOf(QLatin1String(name));
        return at > 0 && at + 1 < args.size() ? args.at(at + 1) : QString();
    };
    const QString only = option("--only");
    const QString motor = option("--motor").toLower();
    if (!motor.isEmpty() && motor != QLatin1String("sqlite") && motor != QLatin1String("postgresql")) {
        out << "The benchmark could not run: --motor takes sqlite or postgresql" << Qt::endl;
        return 2;
    }
    const bool onServer = motor == QLatin1String("postgresql");
    const bool rebuild = args.contains(QStringLiteral("--rebuild"));

    if (sodium_init() < 0) {
        out << "The benchmark could not run: libsodium did not start" << Qt::endl;
        return 2;
    }
    bench::SilentPrompts silent;
    tq::installPrompts(&silent);
    try {
        const bench::LargeStore store = bench::largeStore(QStringLiteral(TQ_BENCH_DIR), rebuild);
        std::optional<bench::LargeServerStore> server;
        bench::Context c;
        if (onServer) {
            server.emplace(QStringLiteral(TQ_BENCH_DIR), store, rebuild);
            c.store = bench::StoreAt::server(server->connection);
            c.dataFolder = server->dataFolder;
            tq::setDataFolder(server->dataFolder);
            tq::amb1().openServer(server->connection);
        } else {
            c.store = bench::StoreAt::file(store.path);
            c.dataFolder = store.folder;
            tq::setDataFolder(store.folder);
            tq::amb1().openStore(store.path);
        }
        bench::Connection* bare = bench::openBare(c.store, true);

        const bench::Sizes sizes;
        c.bare = bare;
        c.invoice = bench::probeInvoice(sizes);
        c.cutDay = bench::invoiceDay(bare, c.invoice);
        c.user = bench::kSignOnUser;
        c.password = bench::kSignOnPassword;
        c.program = QStringLiteral(TQ_BENCH_PROGRAM);
        c.bareWindow = QStringLiteral(TQ_BENCH_BARE_WINDOW);

        out << QStringLiteral("Large store %1: %2 MB, %3")
                   .arg(store.path)
                   .arg(store.bytes / 1048576.0, 0, 'f', 1)
                   .arg(store.fillSeconds < 0
                            ? QStringLiteral("made by an earlier run")
                            : QStringLiteral("filled in %1 s").arg(store.fillSeconds, 0, 'f', 1))
            << Qt::endl;
        if (server)
            out << QStringLiteral("Copied to PostgreSQL %1 (server in %2, database laboratorio): %3")
                       .arg(server->version, server->folder,
                            server->copySeconds < 0
                                ? QStringLiteral("made by an earlier run")
                                : QStringLiteral("copied in %1 s").arg(server->copySeconds, 0, 'f', 1))
                << Qt::endl;
        out << QStringLiteral("  %1 patients, %2 invoices, %3 invoice lines, %4 waiting exams, "
                              "%5 result sheets (%6 cells); invoice %7, day %8")
                   .arg(qint64(bench::scalarBare(bare, "SELECT count(*) FROM Pacientes")))
                   .arg(qint64(bench::scalarBare(bare, "SELECT count(*) FROM Factura")))
                   .arg(qint64(bench::scalarBare(bare, "SELECT count(*) FROM FacturaDetalle")))
                   .arg(qint64(bench::scalarBare(bare, "SELECT count(*) FROM EvaluadoTemporal")))
                   .arg(qint64(bench::scalarBare(
                       bare, "SELECT count(DISTINCT iduniversalformato) FROM resultados")))
                   .arg(qint64(bench::scalarBare(bare, "SELECT count(*) FROM resultados")))
                   .arg(c.invoice)
                   .arg(c.cutDay.toString(QStringLiteral("dd/MM/yyyy")))
            << Qt::endl
            << Qt::endl;
        out << (server ? QStringLiteral("Engine: PostgreSQL %1; the program through Qt's QPSQL "
                                        "driver, each floor bare through libpq")
                             .arg(server->version)
                       : QStringLiteral("Engine: SQLite %1; the program through Qt's QSQLITE "
                                        "driver, each floor bare through SQLite's C API")
                             .arg(QLatin1String(sqlite3_libversion())))
            << Qt::endl;

        bench::Bench b;
        bench::addFoundationPaths(b, c);
        bench::addExamPaths(b, c);
        bench::addPatientPaths(b, c);
        bench::addBillingPaths(b, c);
        bench::addReportPaths(b, c);
        bench::addCutPaths(b, c);
        bench::addLabPaths(b, c);
        bench::addSheetPaths(b, c);
        bench::addSearchPaths(b, c);
        bench::addResultPaths(b, c);
        bench::addOrderPaths(b, c);
        const bool met = b.print(out, b.run(only));
        bench::closeBare(bare);
        tq::amb1().closeStore();
        return met ? 0 : 1;
    } catch (const tq::AppError& e) {
        out << "The benchmark could not run: " << e.message() << Qt::endl;
    } catch (const std::exception& e) {
        out << "The benchmark could not run: " << e.what() << Qt::endl;
    }
    return 2;
}
