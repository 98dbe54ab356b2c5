#pragma once
// Instalments on an invoice saved on credit: where the invoice stands, and
// the save of the next payment against it.
#include "foundation/base/apperror.h"

#include <QDate>
#include <cstdint>

namespace tq {

// Amounts in whole cents, as read from their "#.00" texts, so that a payment
// and a balance compare exactly.
long long centsOf(double amount);

// What a credit invoice stands at now.
struct CreditStanding {
    long long total = 0;   // the invoice's total, in cents
    long long paid = 0;    // the sum of its instalments, in cents
    int count = 0;         // the instalments so far
    long long balance() const { return total - paid; }
};

// Reads the invoice's total and the sum and count of its instalments.
// Throws AppError when the invoice is no longer there.
CreditStanding creditStanding(std::int32_t factura);

// The payment is more than what the invoice still owes.
class InstalmentTooLarge : public AppError {
public:
    InstalmentTooLarge();
};

struct InstalmentSaved {
    int numero = 0;       // the number the instalment was given
    bool closed = false;  // it paid the balance off: the invoice is paid
};

// Saves one payment of `amount` on `factura`, dated `fecha`, in one
// transaction: the `creditos` row numbered after the last one, the invoice's
// `abono` grown by the amount, and `pagada` when the amount equals the
// balance. The balance and the count are read again inside the transaction,
// under the store's write lock: a payment another station saved meanwhile
// counts, and an amount above what is left throws InstalmentTooLarge with
// nothing written. Throws AppError for an amount that is not above zero.
InstalmentSaved saveInstalment(std::int32_t factura, const QDate& fecha, double amount);

}  // namespace tq
