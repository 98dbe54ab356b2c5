// Tarvenquil 4.0: the laboratory's program. Splash, sign-on and main
// window, with the store of the data folder opened beside the first window.
#include "billing/invoice/demoinvoices.h"
#include "foundation/base/memory.h"
#include "foundation/data/amb1.h"
#include "foundation/data/datafolder.h"
#include "foundation/data/demo.h"
#include "lab/demoresults.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/placement.h"
#include "frame/Form7.h"
#include "frame/accesos.h"
#include "frame/frmSplash.h"
#include "frame/storeopening.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QTextStream>
#include <QTimer>
#include <QWindow>
#include <cstdio>
#include <cstring>

namespace {

bool hasOption(int argc, char** argv, const char* option)
{
    for (int i = 1; i < argc; ++i)
        if (std::strcmp(argv[i], option) == 0)
            return true;
    return false;
}

void naming()
{
    QCoreApplication::setOrganizationName(QStringLiteral("Tarvenquil"));
    QCoreApplication::setApplicationName(QStringLiteral("Tarvenquil"));
    QCoreApplication::setApplicationVersion(QStringLiteral("%1.%2.%3")
                                                .arg(TARVENQUIL_VERSION_MAJOR)
                                                .arg(TARVENQUIL_VERSION_MINOR)
                                                .arg(TARVENQUIL_VERSION_PATCH));
}

// Chooses the data folder and makes it. Returns the reason when it can't be made.
QString chooseDataFolder(const QStringList& args)
{
    const QString folder = tq::resolveDataFolder(args);
    if (!QDir().mkpath(folder))
        return QStringLiteral("No se pudo crear la carpeta de datos %1.")
            .arg(QDir::toNativeSeparators(folder));
    tq::setDataFolder(folder);
    return {};
}

// --demo: fills an empty store with a small laboratory to try the program.
int fillDemo(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    naming();
    QTextStream out(stdout);
    QTextStream err(stderr);
    QString problem = chooseDataFolder(app.arguments());
    if (problem.isEmpty()) {
        tq::beginOpeningStore(problem);
        tq::awaitStore();
        problem = tq::storeProblem();
    }
    if (!problem.isEmpty()) {
        err << "No se puede abrir la base de datos del laboratorio: " << problem << Qt::endl;
        return 1;
    }
    try {
        tq::fillDemo(tq::amb1().connection());
        tq::addDemoInvoices();
        tq::addDemoResults();
    } catch (const tq::AppError& e) {
        err << "No se cargaron los datos de demostración: " << e.message() << Qt::endl;
        return 1;
    } catch (const std::exception& e) {
        err << "No se cargaron los datos de demostración: " << e.what() << Qt::endl;
        return 1;
    }
    out << "Datos de demostración cargados en " << QDir::toNativeSeparators(tq::amb1().storeFile())
        << Qt::endl;
    tq::amb1().closeStore();
    return 0;
}

}  // namespace

int main(int argc, char** argv)
{
    QElapsedTimer sinceStart;
    sinceStart.start();
    tq::keepHeapHeadroom();

    if (hasOption(argc, argv, "--demo"))
        return fillDemo(argc, argv);

    QApplication app(argc, argv);
    naming();
    const QString folderProblem = chooseDataFolder(app.arguments());

    // --tiempo-inicio: milliseconds from start to the sign-on screen on
    // screen (without the splash), then quit. --tiempo-listo: to the store
    // opened and the laboratory's name on that screen.
    const bool untilWindow = app.arguments().contains(QStringLiteral("--tiempo-inicio"));
    const bool untilReady = app.arguments().contains(QStringLiteral("--tiempo-listo"));
    int code = 0;
    if (untilWindow || untilReady) {
        tq::beginOpeningStoreOncePainted(folderProblem);
        QWidget* signOn = tq::showSignOn();
        const auto report = [&sinceStart] {
            std::printf("%lld\n", static_cast<long long>(sinceStart.elapsed()));
            std::fflush(stdout);
            QCoreApplication::exit(0);
        };
        if (untilReady) {
            tq::whenStoreReady(signOn, report);
        } else {
            auto* poll = new QTimer(&app);
            QObject::connect(poll, &QTimer::timeout, &app, [signOn, poll, report] {
                if (!signOn->windowHandle() || !signOn->windowHandle()->isExposed())
                    return;
                poll->stop();
                report();
            });
            poll->start(1);
        }
        code = app.exec();
    } else {
        tq::beginOpeningStoreOncePainted(folderProblem);
        auto* splash = new frmSplash();
        tq::placeWindow(splash);
        splash->show();
        code = app.exec();
    }
    tq::awaitStore();   // an opening still under way ends before the program
    return code;
}
