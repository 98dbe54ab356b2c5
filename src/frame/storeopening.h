#pragma once
// The store of the data folder, opened on a second thread at start-up. The
// first window (splash or sign-on) goes on screen at once; the store opens
// beside it once it is painted, which on a server may take a while, and the
// screens that need it are told when it is ready.
#include <QString>
#include <functional>

class QObject;

namespace tq {

// Starts opening the store of the chosen data folder. `folderProblem` is the
// reason the data folder could not be made (empty when it was): the store is
// then not opened and the problem is what the sign-on screen tells.
void beginOpeningStore(const QString& folderProblem);

// As beginOpeningStore, once the first window has been painted: it comes up
// sooner alone. Until then the opening counts as under way: whenStoreReady
// waits for it, and awaitStore begins it at once.
void beginOpeningStoreOncePainted(const QString& folderProblem);

// Waits until the store is open or has failed, then runs what was waiting
// for it. Does nothing when no opening is under way. Program thread only.
void awaitStore();

// Runs `ready` on the program's thread once the store is open or has failed
// (at once when nothing is opening), unless `context` is gone by then.
void whenStoreReady(QObject* context, std::function<void()> ready);

}  // namespace tq
