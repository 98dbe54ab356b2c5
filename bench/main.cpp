// tarvenquil_bench: makes (or reuses) the large store, then times every path
// a user waits on against its floor and prints one row per path. Exits 1
// when a path misses its target, 2 when the benchmark itself can't run.
//
//   tarvenquil_bench [--rebuild] [--only TEXT]
#include "bare.h"
#include "bench.h"
#include "store_fill.h"

#include "foundation/base/apperror.h"
#include "foundation/data/amb1.h"
#include "foundation/data/datafolder.h"
#include "foundation/ui/prompt.h"

#include <QApplication>
#include <QTextStream>
#include <QWidget>
#include <sodium.h>

namespace {

// Nobody answers during a benchmark: whatever a screen says is kept, and
// the path that made it speak fails.
class SilentPrompts : public tq::PromptService {
public:
    tq::Answer message(const QString& text, tq::Icon, const QString&, tq::Buttons) override
    {
        bench::Bench::promptsSeen() << text;
        return tq::Answer::Ok;
    }
    std::optional<QString> input(const QString& prompt, const QString&, const QString&) override
    {
        bench::Bench::promptsSeen() << prompt;
        return std::nullopt;
    }
    QString openFile(const QString& caption, const QString&, const QString&) override
    {
        bench::Bench::promptsSeen() << caption;
        return {};
    }
    QString saveFile(const QString& caption, const QString&, const QString&) override
    {
        bench::Bench::promptsSeen() << caption;
        return {};
    }
    void showModal(QWidget* screen) override
    {
        bench::Bench::promptsSeen() << screen->objectName();
        screen->deleteLater();
    }
    void endProgram() override {}
};

}  // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QTextStream out(stdout);
    const QStringList args = app.arguments();
    const int onlyAt = args.indexOf(QStringLiteral("--only"));
    const QString only = onlyAt > 0 && onlyAt + 1 < args.size() ? args.at(onlyAt + 1) : QString();

    if (sodium_init() < 0) {
        out << "The benchmark could not run: libsodium did not start" << Qt::endl;
        return 2;
    }
    SilentPrompts silent;
    tq::installPrompts(&silent);
    try {
        const bench::LargeStore store = bench::largeStore(
            QStringLiteral(TQ_BENCH_DIR), args.contains(QStringLiteral("--rebuild")));
        tq::setDataFolder(store.folder);
        tq::amb1().openStore(store.path);
        sqlite3* bare = bench::openBare(store.path, true);

        const bench::Sizes sizes;
        bench::Context c;
        c.storePath = store.path;
        c.dataFolder = store.folder;
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

        bench::Bench b;
        bench::addFoundationPaths(b, c);
        bench::addExamPaths(b, c);
        bench::addPatientPaths(b, c);
        bench::addBillingPaths(b, c);
        bench::addReportPaths(b, c);
        bench::addCutPaths(b, c);
        bench::addSearchPaths(b, c);
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
