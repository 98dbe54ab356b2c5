#pragma once
// An insurer's open invoices and their settlement: the insurer pays a list of
// invoices at once, with one date and one reference (a cheque number, say).
// The amount received is not kept; a settled invoice is simply paid.
#include "foundation/base/apperror.h"

#include <QDate>
#include <QList>
#include <QString>
#include <QStringList>
#include <cstdint>

namespace tq {

// The open invoices of an insurer, one list per column as the payment screen
// shows them: number, patient ("name surname"), total ("#.00"), date
// ("DD/MM/YYYY"). An invoice belongs to the insurer its patient has now, not
// the one he had when it was billed. In invoice number order.
struct OpenInvoices {
    QStringList factura, paciente, valor, fecha;
    int size() const { return int(factura.size()); }
};
OpenInvoices openInsurerInvoices(std::int32_t insurer);

// Settles the invoices in one save: each receivable closed with the date and
// the reference, each invoice marked paid. Whether an invoice is still open
// is asked again under the store's write lock: when another station settled
// any of them meanwhile, nothing is written and InvoicesAlreadySettled names
// them. Throws DbError or AppError, having written nothing.
void settleInsurerInvoices(const QList<std::int32_t>& invoices, const QDate& fechaPago,
                           const QString& referencia);

// Some invoices of a settlement had been settled already, at another station.
class InvoicesAlreadySettled : public AppError {
public:
    explicit InvoicesAlreadySettled(QList<std::int32_t> invoices);
    const QList<std::int32_t>& invoices() const { return m_invoices; }

private:
    QList<std::int32_t> m_invoices;
};

// A running total as the payment screen shows it after a removal: rounded to
// whole lempiras, a comma between thousands, at least two digits
// (1234.5 -> "1,235", 5 -> "05", 0 -> "00").
QString wholeWithThousands(double amount);

}  // namespace tq
