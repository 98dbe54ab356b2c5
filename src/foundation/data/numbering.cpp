#include "foundation/data/numbering.h"

#include "foundation/base/values.h"
#include "foundation/data/amb1.h"

namespace tq {

std::int32_t nextNumber(const QString& table, const QString& column)
{
    const QVariant last = amb1().scalar(QStringLiteral("SELECT MAX(%1) FROM %2").arg(column, table));
    if (!last.isValid() || last.isNull())
        return 1;
    return toInt32(double(toInt32(last)) + 1);
}

bool numberTaken(const QString& table, const QString& column, std::int32_t number)
{
    return amb1()
        .scalar(QStringLiteral("SELECT 1 FROM %2 WHERE %1 = ? LIMIT 1").arg(column, table), {number})
        .isValid();
}

std::int32_t freeNumber(std::int32_t proposed, const QString& table, const QString& column)
{
    return numberTaken(table, column, proposed) ? nextNumber(table, column) : proposed;
}

}  // namespace tq
