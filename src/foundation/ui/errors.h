#pragma once
// The error boundary: any failure inside a user's action is caught here, the
// action's transaction is rolled back, the user gets a clear Spanish message
// and the failure is written to the log in the data folder.
#include "foundation/base/apperror.h"

#include <QString>
#include <functional>

class QAbstractButton;
class QObject;

namespace tq {

// Runs `fn` as one user action. `what` names the action for the message
// ("guardar el empleado"). Returns false when the action failed.
bool guarded(const QString& what, const std::function<void()>& fn);

// Connects a button's click to an action run through guarded().
void onClick(QAbstractButton* button, const QString& what, std::function<void()> fn);

// Appends a line to the log of the data folder (tarvenquil.log).
void logLine(const QString& line);

}  // namespace tq
