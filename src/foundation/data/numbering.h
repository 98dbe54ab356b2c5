#pragma once
// Numbers of new records taken as "last plus one": invoices, orders, codes
// of the registers. A number proposed on a screen is only a proposal; the
// save asks again inside its transaction, which holds the store for writing,
// so that two workstations never write the same number.
#include <QString>
#include <cstdint>

namespace tq {

// The highest `column` of `table` plus 1, or 1 on an empty table. A number
// past the 32-bit range is an AppError, never a wrap.
std::int32_t nextNumber(const QString& table, const QString& column);

// Whether a row of `table` holds `number` in `column`.
bool numberTaken(const QString& table, const QString& column, std::int32_t number);

// `proposed` when it is still free, else the next number (another station
// took it meanwhile). Call it inside the save's transaction.
std::int32_t freeNumber(std::int32_t proposed, const QString& table, const QString& column);

}  // namespace tq
