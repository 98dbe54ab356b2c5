// Tarvenquil 4.0: the laboratory's program. Opens the store in the data
// folder, then splash, sign-on and main window.
#include "foundation/data/amb1.h"
#include "foundation/data/datafolder.h"
#include "foundation/data/demo.h"
#include "foundation/ui/errors.h"
#include "foundation/startup/Form7.h"
#include "foundation/startup/accesos.h"
#include "foundation/startup/frmSplash.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QTextStream>
#include <QTimer>
#include <QWindow>
#include <cstdio>
#include <cstring>
#include <exception>
#include <thread>

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

// Opens the store of the data folder. Returns the reason when it can't be opened.
QString openStore()
{
    try {
        tq::amb1().openStore(tq::storePath());
    } catch (const tq::DbError& e) {
        tq::logLine(QStringLiteral("No se pudo abrir la base de datos: %1 | %2")
                        .arg(e.message(), e.detail()));
        return e.message();
    } catch (const tq::AppError& e) {
        tq::logLine(QStringLiteral("No se pudo abrir la base de datos: %1").arg(e.message()));
        return e.message();
    } catch (const std::exception& e) {
        return QString::fromLocal8Bit(e.what());
    } catch (...) {
        return QStringLiteral("No se pudo abrir la base de datos por un error inesperado.");
    }
    return {};
}

// Opens the store on a second thread while the first window is being built,
// so that the two costs of a start overlap. The window waits for the store
// (wait()) before it reads anything from it or is shown.
class StoreOpening {
public:
    explicit StoreOpening(const QStringList& args) : m_problem(chooseDataFolder(args))
    {
        if (m_problem.isEmpty())
            m_thread = std::thread([this] { m_problem = openStore(); });
    }
    ~StoreOpening() { wait(); }
    void wait()
    {
        if (m_thread.joinable())
            m_thread.join();
        if (!m_problem.isEmpty() && !m_told) {
            m_told = true;
            tq::setStoreProblem(m_problem);
        }
    }

private:
    QString m_problem;
    std::thread m_thread;
    bool m_told = false;
};

// --demo: fills an empty store with a small laboratory to try the program.
int fillDemo(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    naming();
    QTextStream out(stdout);
    QTextStream err(stderr);
    QString problem = chooseDataFolder(app.arguments());
    if (problem.isEmpty())
        problem = openStore();
    if (!problem.isEmpty()) {
        err << "No se puede abrir la base de datos del laboratorio (" << tq::storePath()
            << "): " << problem << Qt::endl;
        return 1;
    }
    try {
        tq::fillDemo(tq::amb1().connection());
    } catch (const tq::AppError& e) {
        err << "No se cargaron los datos de demostración: " << e.message() << Qt::endl;
        return 1;
    } catch (const std::exception& e) {
        err << "No se cargaron los datos de demostración: " << e.what() << Qt::endl;
        return 1;
    }
    out << "Datos de demostración cargados en " << QDir::toNativeSeparators(tq::storePath())
        << Qt::endl;
    tq::amb1().closeStore();
    return 0;
}

}  // namespace

int main(int argc, char** argv)
{
    QElapsedTimer sinceStart;
    sinceStart.start();

    if (hasOption(argc, argv, "--demo"))
        return fillDemo(argc, argv);

    QApplication app(argc, argv);
    naming();

    StoreOpening store(app.arguments());

    // --tiempo-inicio: milliseconds from start to the sign-on screen on
    // screen (without the splash), then quit.
    if (app.arguments().contains(QStringLiteral("--tiempo-inicio"))) {
        QWidget* signOn = tq::showSignOn([&store] { store.wait(); });
        auto* poll = new QTimer(&app);
        QObject::connect(poll, &QTimer::timeout, &app, [&sinceStart, signOn, poll] {
            if (!signOn->windowHandle() || !signOn->windowHandle()->isExposed())
                return;
            poll->stop();
            std::printf("%lld\n", static_cast<long long>(sinceStart.elapsed()));
            std::fflush(stdout);
            QCoreApplication::exit(0);
        });
        poll->start(1);
        return app.exec();
    }

    auto* splash = new frmSplash();
    store.wait();
    tq::centreWindow(splash);
    splash->show();
    return app.exec();
}
