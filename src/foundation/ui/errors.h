#pragma once
// The error boundary: any failure inside a user's action is caught here, the
// action's transaction is rolled back, the user gets a clear Spanish message
// and the failure is written to the log in the data folder.
#include "foundation/base/apperror.h"

#include <QString>
#include <functional>

class QAbstractButton;
class QAction;
class QObject;

namespace tq {

// Runs `fn` as one user action. `what` names the action for the message
// ("guardar el empleado"), which reads "No se pudo guardar el empleado." (or
// "No se pudieron ..." when the action's object is plural: "leer los
// respaldos"). Returns false when the action failed.
bool guarded(const QString& what, const std::function<void()>& fn);

// The same, for an action whose failure the pattern above would misstate:
// `sentence` is the whole sentence the user reads ("Los datos del doctor se
// guardaron, pero no se pudo volver a mostrar la lista de doctores.").
bool guardedSaying(const QString& sentence, const std::function<void()>& fn);

// The sentence the user reads when the action `what` fails.
QString failureSentence(const QString& what);

// Connects a button's click to an action run through guarded().
void onClick(QAbstractButton* button, const QString& what, std::function<void()> fn);

// Connects a menu entry's action to an action run through guarded().
void onTriggered(QAction* action, const QString& what, std::function<void()> fn);

// Why the system refused to read or write a file, in the user's words;
// `errnum` is the system's error number (errno). The system's own text is
// English and belongs in the log.
QString systemProblem(int errnum);

// Appends a line to the log of the data folder (tarvenquil.log).
void logLine(const QString& line);

// What the boundary has shown, so that a run over the screens can tell the
// failures that went through it from those that did not.
struct BoundaryRecord {
    int shown = 0;            // failures shown since the program started
    QString lastMessage;      // the whole text of the last one
};
const BoundaryRecord& boundaryRecord();

}  // namespace tq
