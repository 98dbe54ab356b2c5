#include "foundation/startup/storeopening.h"

#include "foundation/data/amb1.h"
#include "foundation/data/datafolder.h"
#include "foundation/ui/errors.h"
#include "foundation/startup/accesos.h"

#include <QCoreApplication>
#include <QList>
#include <QPointer>
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

}  // namespace

void beginOpeningStore(const QString& folderProblem)
{
    Opening& o = opening();
    awaitStore();
    if (!folderProblem.isEmpty()) {
        setStoreProblem(folderProblem);
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

void awaitStore()
{
    Opening& o = opening();
    if (!o.thread.joinable())
        return;
    o.thread.join();
    if (!o.problem.isEmpty())
        setStoreProblem(o.problem);
    const QList<Waiting> waiting = std::exchange(o.waiting, {});
    for (const Waiting& w : waiting)
        if (w.context)
            w.ready();
}

void whenStoreReady(QObject* context, std::function<void()> ready)
{
    Opening& o = opening();
    if (o.thread.joinable())
        o.waiting.append({context, std::move(ready)});
    else
        ready();
}

}  // namespace tq
