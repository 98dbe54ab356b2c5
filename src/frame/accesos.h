#pragma once
// Sign-on of the laboratory's staff: the checks behind "Ingresar" of Form7
// and the routine that lets a user in, plus the few steps of the program's
// life that several screens share (the sign-on screen, the end).
#include "foundation/ui/prompt.h"

#include <QString>

class QWidget;

namespace tq {

// What the sign-on found, in the order the checks are made.
enum class SignOnOutcome {
    StoreClosed,    // the store could not be opened at start
    NoRights,       // unknown name, or a name without the right to module 1
    NoLabData,      // the laboratory's `datos` row is missing
    WrongPassword,  // the name has the right, but no row has that name and password
    Granted,
};

struct SignOnCheck {
    SignOnOutcome outcome = SignOnOutcome::NoRights;
    int matches = 0;       // rows of Empleados with that name and that password
    bool limited = false;  // one of those rows has rol 2
    int stockOuts = 0;     // supplies at or below their minimum (read at sign-on, not shown)
};

// The checks against the store, without any window: rights of the last
// employee with that name, the laboratory's row, then name and password
// against every employee. Throws DbError when the store fails.
SignOnCheck checkSignOn(const QString& usuario, const QString& password);

// The message of a refused sign-on and its icon (empty text when granted).
QString signOnMessage(SignOnOutcome outcome);
Icon signOnIcon(SignOnOutcome outcome);

// The whole sign-on: the checks; a refusal shows its message; a success
// makes `usuario` the current user and shows the main window, limited for
// rol 2. Form7 decides what happens to itself afterwards.
SignOnOutcome signOn(const QString& usuario, const QString& password);

// Why the store could not be opened at start (empty when it opened).
void setStoreProblem(const QString& detail);
QString storeProblem();
// The text the sign-on screen shows while the store is not open.
QString storeClosedMessage();

// A fresh sign-on screen, shown.
QWidget* showSignOn();

// Ends the program through the prompt service, once even when several
// windows closing at the same time ask for it.
void endProgram();

}  // namespace tq
