#pragma once
// What must hold in the store whatever the users did (checked after every robustness run).
#include <QStringList>

namespace tq::test {

// The store's own integrity check and every invariant on the open store: one
// line for each that fails (empty when all hold).
QStringList brokenInvariants();

}  // namespace tq::test
