#pragma once
// Saving an invoice: the document of the invoice screen becomes its rows,
// all of them in one transaction, with the exams fed to the laboratory's
// work table.
#include "billing/invoice/payment.h"
#include "foundation/base/apperror.h"

#include <QDate>
#include <QList>
#include <QString>
#include <cstdint>
#include <optional>

namespace tq {

// How the invoice is settled when it is saved.
enum class Settlement {
    Paid,      // paid in full now
    Credit,    // part paid now, the rest in instalments
    Insurer,   // charged to the patient's insurer, nothing paid now
};

// A priced document as the invoice and the order screens compose it.
struct PricedLine {
    std::int32_t cantidad = 0;
    std::int32_t codigo = 0;
    QString subtotal;   // "#.00"
    QString precio;     // "#.00", the unit price: kept by orders, not by invoices
};

struct PricedDocument {
    std::int32_t numero = 0;   // as proposed (the invoice at its opening, the order at its save)
    QDate fecha;
    QString faturado;          // who billed it: the signed-on user
    std::int32_t codPaciente = 0;
    QString subtotal;          // "#.00"
    QString total;             // "#.00"
    QString edad;              // the patient's age text; empty stores nothing
    std::optional<std::int32_t> codDoctor;
    // Both empty when the invoice carries no discount or surcharge.
    QString valAdicional;      // "#.00"
    QString adicional;         // "Descuento" or "Recargo"
    QList<PricedLine> lines;
    std::int32_t orden = 0;    // the order an invoice was imported from; 0 for none
};

struct SaveOutcome {
    std::int32_t numero = 0;   // the number the invoice was saved under
    bool renumbered = false;   // the proposed number had been taken meanwhile
};

// Writes the invoice row, one line row per line, the account receivable
// (`withCxc`), the first instalment (credit and insurer), the card details
// (when `card` is given and entered) and the work-table rows, all or none.
// The proposed number is checked inside the transaction: when another
// workstation saved it first, the next free number is taken. An invoice
// imported from an order marks the order as billed by it; an order billed
// already (another station imported it too) refuses the save with
// OrderAlreadyBilled. Throws DbError or AppError, having written nothing.
SaveOutcome saveInvoice(const PricedDocument& doc, Settlement settlement, const Payment& payment,
                        bool withCxc, const CardDetails* card);

// The order an invoice was imported from was billed already, by `factura`.
class OrderAlreadyBilled : public AppError {
public:
    OrderAlreadyBilled(std::int32_t orden, std::int32_t factura);
};

// Marks the order as billed by the invoice and closes it by `user`, inside
// the invoice's save; OrderAlreadyBilled when an invoice billed it already.
void markOrderBilled(std::int32_t orden, std::int32_t factura, const QString& user);

// One work-table row per unit of each exam of the invoice, unless the invoice
// already fed it. Runs inside the caller's transaction.
void feedWorkTable(std::int32_t factura);

}  // namespace tq
