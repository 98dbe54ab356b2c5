#pragma once
// The error boundary: any failure inside a user's action is caught here, the
// action's transaction is rolled back, the user gets a clear Spanish message
// and the failure is written to the log in the data folder.
#include <QString>
#include <functional>
#include <stdexcept>

class QAbstractButton;
class QObject;

namespace tq {

// A failure that carries a message meant for the user, in Spanish.
class AppError : public std::runtime_error {
public:
    explicit AppError(const QString& message);
    QString message() const { return m_message; }

private:
    QString m_message;
};

// A failure of the store; `detail` is the driver's text, kept for the log.
class DbError : public AppError {
public:
    DbError(const QString& message, const QString& detail, const QString& sql = {});
    QString detail() const { return m_detail; }
    QString sql() const { return m_sql; }

private:
    QString m_detail;
    QString m_sql;
};

// Runs `fn` as one user action. `what` names the action for the message
// ("guardar el empleado"). Returns false when the action failed.
bool guarded(const QString& what, const std::function<void()>& fn);

// Connects a button's click to an action run through guarded().
void onClick(QAbstractButton* button, const QString& what, std::function<void()> fn);

// Appends a line to the log of the data folder (tarvenquil.log).
void logLine(const QString& line);

}  // namespace tq
