#include "foundation/base/apperror.h"

namespace tq {

AppError::AppError(const QString& message)
    : std::runtime_error(message.toStdString()), m_message(message)
{
}

DbError::DbError(const QString& message, const QString& detail, const QString& sql)
    : AppError(message), m_detail(detail), m_sql(sql)
{
}

}  // namespace tq
