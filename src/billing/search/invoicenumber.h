#pragma once
// An invoice number typed by the user, read the classic way (Val) and held
// in 32 bits.
#include <QString>
#include <cstdint>
#include <optional>

namespace tq {

// The invoice that `typed` names, or nullopt when it names none (a number
// with decimals: no invoice carries one, and rounding it would pick another
// invoice). Throws AppError, in the user's words, for a number that a 32-bit
// number can't hold.
std::optional<std::int32_t> typedInvoiceNumber(const QString& typed);

}  // namespace tq
