#pragma once
// How an invoice is paid: what the payment screen Fcobrar takes and hands to
// the invoice it serves, and what the card box FdatosTarjeta keeps for the save.
#include <QString>
#include <cstdint>

namespace tq {

// The amounts of one payment, each read from its box as "#.00" (blank is 0).
struct Payment {
    double efectivo = 0;
    double tarjeta = 0;
    double cheque = 0;
    // The amount paid now: the sum of the three when the rest stays on credit.
    double pagado = 0;
};

// The card box's values, readable after it closes. `entered` is true only
// when the box was accepted by its own button with every field given; the
// save that writes them puts it back to false.
struct CardDetails {
    bool entered = false;
    std::int32_t cargo = 0;    // "# de Cargo:"
    QString nombre;            // "Nombre:", the card-holder's name
    QString identidad;         // "# de Identidad:", the masked text as shown
};
CardDetails& cardDetails();

// The invoice that the payment screen serves.
class PaymentTarget {
public:
    virtual ~PaymentTarget() = default;
    // The invoice's total as the invoice screen shows it ("#.00").
    virtual QString totalText() const = 0;
    // Saves the invoice paid as given: in full (credit false) or with the rest
    // on credit (credit true). The invoice tells the user what came of it.
    virtual void savePaid(const Payment& payment, bool credit) = 0;
};

}  // namespace tq
