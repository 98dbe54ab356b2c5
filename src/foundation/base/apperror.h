#pragma once
// The failures an action can raise: a message meant for the user, in Spanish,
// and a failure of the store that also keeps the driver's text for the log.
// The error boundary (foundation/ui/errors.h) catches them at the action's edge.
#include <QString>
#include <stdexcept>

namespace tq {

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

}  // namespace tq
