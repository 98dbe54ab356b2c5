#pragma once
// The program's own modules: libraries of ours loaded the first time they are
// needed, so that start-up does not load the libraries they link.
#include <QFunctionPointer>
#include <QString>

namespace tq {

// Resolves `entry` of the module file `file` (beside the program once
// installed, in the build folder for the tests); nullptr when neither place
// has a module that offers it.
QFunctionPointer moduleEntry(const QString& file, const char* entry);

}  // namespace tq
