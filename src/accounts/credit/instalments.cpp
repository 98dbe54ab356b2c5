#include "accounts/credit/instalments.h"

#include "foundation/base/values.h"
#include "foundation/data/amb1.h"

#include <cmath>

namespace tq {

namespace {

QString moneyOfCents(long long cents) { return money(double(cents) / 100.0); }

// The stored amount as its "#.00" text reads it; null reads 0.
long long storedCents(const QVariant& v) { return centsOf(Val(money(v))); }

}  // namespace

long long centsOf(double amount) { return std::llround(amount * 100.0); }

CreditStanding creditStanding(std::int32_t factura)
{
    const QVariant total =
        amb1().scalar(QStringLiteral("SELECT total FROM Factura WHERE factura = ?"), {factura});
    if (!total.isValid())
        throw AppError(QStringLiteral("La factura %1 ya no existe.").arg(factura));
    Recordset rs;
    rs.open(QStringLiteral("SELECT SUM(abono) AS suma, COUNT(numero) AS cuota FROM creditos "
                           "WHERE factura = ?"),
            {factura});
    CreditStanding s;
    s.total = storedCents(total);
    if (!rs.eof()) {
        s.paid = storedCents(rs.field(QStringLiteral("suma")));
        s.count = toInt32(rs.field(QStringLiteral("cuota")));
    }
    return s;
}

InstalmentTooLarge::InstalmentTooLarge()
    : AppError(QStringLiteral("la cuota no puede ser mayor que el saldo"))
{
}

InstalmentSaved saveInstalment(std::int32_t factura, const QDate& fecha, double amount)
{
    const long long cents = centsOf(amount);
    if (!std::isfinite(amount) || cents <= 0)
        throw AppError(QStringLiteral("El abono debe ser mayor que cero."));

    Transaction t;
    // Read again under the write lock: what another station paid meanwhile
    // is in the balance and the count now.
    const CreditStanding now = creditStanding(factura);
    if (cents > now.balance())
        throw InstalmentTooLarge();

    InstalmentSaved out;
    out.numero = now.count + 1;
    out.closed = cents == now.balance();
    amb1().insert(QStringLiteral("creditos"),
                  {QStringLiteral("factura"), QStringLiteral("fecha"), QStringLiteral("numero"),
                   QStringLiteral("abono")},
                  {factura, fecha, out.numero, moneyOfCents(cents)});
    const long long before = storedCents(
        amb1().scalar(QStringLiteral("SELECT Abono FROM Factura WHERE factura = ?"), {factura}));
    amb1().execute(QStringLiteral("UPDATE Factura SET Abono = ? WHERE factura = ?"),
                   {moneyOfCents(before + cents), factura});
    if (out.closed)
        amb1().execute(QStringLiteral("UPDATE Factura SET pagada = TRUE WHERE factura = ?"),
                       {factura});
    t.commit();
    return out;
}

}  // namespace tq
