#pragma once
// Saving an invoice: the document of the invoice screen becomes its rows,
// all of them in one transaction, with the exams fed to the laboratory's
// work table.
#include "billing/invoice/payment.h"

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

struct InvoiceLine {
    std::int32_t cantidad = 0;
    std::int32_t codigo = 0;
    QString subtotal;   // "#.00"
};

struct InvoiceDocument {
    std::int32_t numero = 0;   // as proposed when the screen opened
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
    QList<InvoiceLine> lines;
};

struct SaveOutcome {
    std::int32_t numero = 0;   // the number the invoice was saved under
    bool renumbered = false;   // the proposed number had been taken meanwhile
};

// Writes the invoice row, one line row per line, the account receivable
// (`withCxc`), the first instalment (credit and insurer), the card details
// (when `card` is given and entered) and the work-table rows, all or none.
// The proposed number is checked inside the transaction: when another
// workstation saved it first, the next free number is taken. Throws DbError
// or AppError, having written nothing.
SaveOutcome saveInvoice(const InvoiceDocument& doc, Settlement settlement, const Payment& payment,
                        bool withCxc, const CardDetails* card);

// One work-table row per unit of each exam of the invoice, unless the invoice
// already fed it. Runs inside the caller's transaction.
void feedWorkTable(std::int32_t factura);

}  // namespace tq
