#include "foundation/base/apperror.h"

#include <cstdio>

namespace tq {

AppError::AppError(const QString& message)
    : std::runtime_error(message.toStdString()), m_message(message)
{
}

DbError::DbError(const QString& message, const QString& detail, const QString& sql)
    : AppError(message), m_detail(detail), m_sql(sql)
{
    // For whoever runs the tests: TQ_TRAZA_SQL shows every store failure as it happens.
    static const bool trace = qEnvironmentVariableIsSet("TQ_TRAZA_SQL");
    if (trace)
        std::fprintf(stderr, "DbError: %s | %s | %s\n", qPrintable(message), qPrintable(detail),
                     qPrintable(sql));
}

}  // namespace tq
