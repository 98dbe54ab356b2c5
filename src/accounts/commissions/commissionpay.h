#pragma once
// Doctors' commissions: the invoices of a doctor whose commission is still
// to pay, at his present rate, and the payment of a list of them.
//
// A commission is always worked out when it is shown, from the invoice's
// total and the doctor's rate of today; only a payment stores it, as the
// amount the user saw.
#include "foundation/base/apperror.h"

#include <QDate>
#include <QList>
#include <QLocale>
#include <QString>
#include <QStringList>
#include <cstdint>

namespace tq {

// An amount in the currency format of the workstation's locale, with two
// decimals ("L 1,234.50", "1.234,50 €", ...).
QString currencyText(double amount, const QLocale& locale = QLocale());
// The number a text of currencyText() stands for: the locale's symbol and
// group separators are left out. A text that holds no number reads 0.
double currencyValue(const QString& text, const QLocale& locale = QLocale());

// The invoices naming a doctor whose commission is unpaid, by date and then
// by number, as the commissions screen lists them. Voided invoices and
// invoices still owed on credit stand among them.
struct PendingCommissions {
    double rate = 0;           // the doctor's porsentaje today
    QStringList numeros;       // factura
    QStringList fechas;        // "DD/MM/YYYY"
    QStringList totales;       // the invoice's total, in currency format
    QStringList comisiones;    // total * rate / 100, in currency format
    double sumaTotales = 0;    // sums of the amounts as shown
    double sumaComisiones = 0;
};
PendingCommissions pendingCommissions(std::int32_t doctor, const QLocale& locale = QLocale());

struct CommissionPayment {
    std::int32_t factura = 0;
    double comision = 0;   // the amount shown for it, as a number
};

// Some invoices of a payment had their commission paid meanwhile (at another
// workstation). Nothing of the payment was written.
class CommissionsAlreadyPaid : public AppError {
public:
    explicit CommissionsAlreadyPaid(const QList<std::int32_t>& facturas);
    const QList<std::int32_t>& facturas() const { return m_facturas; }

private:
    QList<std::int32_t> m_facturas;
};

// Marks the commission of every invoice paid on `fecha`, with its amount, in
// one save. Each invoice is checked again under the store's write lock: when
// any of them was paid meanwhile nothing is written and CommissionsAlreadyPaid
// names them. Throws DbError when the store fails, having written nothing.
void payCommissions(const QList<CommissionPayment>& payments, const QDate& fecha);

}  // namespace tq
