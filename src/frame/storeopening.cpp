#include "frame/storeopening.h"

#include "foundation/data/amb1.h"
#include "foundation/data/datafolder.h"
#include "foundation/ui/errors.h"
#include "frame/accesos.h"

#include <QCoreApplication>
#include <QEvent>
#include <QList>
#include <QPointer>
#include <QTimer>
#include <exception>
#include <thread>
#include <utility>

namespace tq {

namespace {

struct Waiting {
    QPointer<QObject> context;
    std::function<void()> ready;
};

struct Opening {
    std::thread thread;
    QString problem;            // written by the thread, read after the join
    QList<Waiting> waiting;
    bool pending = false;       // to begin once the first window is painted
    QString pendingFolderProblem;
};

Opening& opening()
{
    static Opening o;
    return o;
}

// Opens the store; returns the reason when it can't be opened.
QString openDataStore()
{
    try {
        const QString server = serverConnectionText();
        if (server.isEmpty())
            amb1().openStore(storePath());
        else
            amb1().openServer(server);
    } catch (const DbError& e) {
        logLine(QStringLiteral("No se pudo abrir la base de datos: %1 | %2")
                    .arg(e.message(), e.detail()));
        return e.message();
    } catch (const AppError& e) {
        logLine(QStringLiteral("No se pudo abrir la base de datos: %1").arg(e.message()));
        return e.message();
    } catch (const std::exception& e) {
        return QString::fromLocal8Bit(e.what());
    } catch (...) {
        return QStringLiteral("No se pudo abrir la base de datos por un error inesperado.");
    }
    return {};
}

// Begins an opening that waited for the first window; nothing when none waits.
void beginPendingOpening()
{
    Opening& o = opening();
    if (!o.pending)
        return;
    o.pending = false;
    beginOpeningStore(std::exchange(o.pendingFolderProblem, {}));
}

// Watches the program for its first paint, then lets the pending opening begin.
class FirstPaintWatcher : public QObject {
public:
    explicit FirstPaintWatcher(QObject* parent) : QObject(parent) {}

    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::Paint) {
            parent()->removeEventFilter(this);
            QTimer::singleShot(0, QCoreApplication::instance(), [] { beginPendingOpening(); });
            deleteLater();
        }
        return false;
    }
};

}  // namespace

void beginOpeningStore(const QString& folderProblem)
{
    Opening& o = opening();
    if (o.thread.joinable())
        awaitStore();   // an earlier opening ends first
    if (!folderProblem.isEmpty()) {
        setStoreProblem(folderProblem);
        awaitStore();   // nothing to open: what waited for the store is told now
        return;
    }
    o.problem.clear();
    o.thread = std::thread([&o] {
        o.problem = openDataStore();
        // Tell the program's thread; it joins and runs what was waiting.
        if (QCoreApplication* app = QCoreApplication::instance())
            QMetaObject::invokeMethod(app, [] { awaitStore(); }, Qt::QueuedConnection);
    });
}

void beginOpeningStoreOncePainted(const QString& folderProblem)
{
    Opening& o = opening();
    awaitStore();
    o.pending = true;
    o.pendingFolderProblem = folderProblem;
    // Painting the first window loads the fonts and their configuration,
    // which costs the program's thread more while another thread runs
    // beside it: the opening begins on the turn of the event loop after the
    // first paint, or after a quarter of a second at the latest.
    QCoreApplication* app = QCoreApplication::instance();
    app->installEventFilter(new FirstPaintWatcher(app));
    QTimer::singleShot(250, app, [] { beginPendingOpening(); });
}

void awaitStore()
{
    Opening& o = opening();
    beginPendingOpening();
    if (o.thread.joinable()) {
        o.thread.join();
        if (!o.problem.isEmpty())
            setStoreProblem(o.problem);
    }
    const QList<Waiting> waiting = std::exchange(o.waiting, {});
    for (const Waiting& w : waiting)
        if (w.context)
            w.ready();
}

void whenStoreReady(QObject* context, std::function<void()> ready)
{
    Opening& o = opening();
    if (o.pending || o.thread.joinable())
        o.waiting.append({context, std::move(ready)});
    else
        ready();
}

}  // namespace tq
