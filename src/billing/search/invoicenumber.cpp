#include "billing/search/invoicenumber.h"

#include "foundation/base/apperror.h"
#include "foundation/base/values.h"

#include <cmath>

namespace tq {

std::optional<std::int32_t> typedInvoiceNumber(const QString& typed)
{
    const double value = Val(typed);
    if (value > 2147483647.0 || value < -2147483648.0)
        throw AppError(QStringLiteral("El número de factura %1 es demasiado grande: los números de "
                                      "factura llegan hasta 2147483647.")
                           .arg(typed.trimmed()));
    if (value != std::floor(value))
        return std::nullopt;
    return toInt32(value);
}

}  // namespace tq
