#include "accounts/commissions/commissionpay.h"

#include "foundation/base/values.h"
#include "foundation/data/amb1.h"

namespace tq {

namespace {


QString alreadyPaidSentence(const QList<std::int32_t>& facturas)
{
    const QString rest = QStringLiteral(", por eso no se pagó ninguna de las facturas. "
                                        "Las demás siguen en la lista: vuelva a pagarlas.");
    if (facturas.size() == 1)
        return QStringLiteral("La comisión de la factura ") + spokenNumbers(facturas)
               + QStringLiteral(" ya se pagó en otra estación") + rest;
    return QStringLiteral("Las comisiones de las facturas ") + spokenNumbers(facturas)
           + QStringLiteral(" ya se pagaron en otra estación") + rest;
}

}  // namespace

QString currencyText(double amount, const QLocale& locale)
{
    return locale.toCurrencyString(amount, locale.currencySymbol(), 2);
}

double currencyValue(const QString& text, const QLocale& locale)
{
    // The symbol goes first: some carry a point of their own ("S/.").
    QString bare = text;
    const QString symbol = locale.currencySymbol();
    if (!symbol.isEmpty())
        bare.remove(symbol);
    const QString point = locale.decimalPoint();
    const QString minus = locale.negativeSign();
    // Some locales write a negative amount between brackets: "($12.25)".
    const bool negative = bare.contains(QLatin1Char('-')) || (!minus.isEmpty() && bare.contains(minus))
                          || (bare.contains(QLatin1Char('(')) && bare.contains(QLatin1Char(')')));
    QString number;
    for (qsizetype i = 0; i < bare.size(); ++i) {
        const QChar c = bare.at(i);
        if (c.isDigit())
            number += QChar(u'0' + c.digitValue());
        else if (QStringView(bare).sliced(i).startsWith(point))
            number += QLatin1Char('.');
    }
    if (negative)
        number.prepend(QLatin1Char('-'));
    return Val(number);
}

PendingCommissions pendingCommissions(std::int32_t doctor, const QLocale& locale)
{
    PendingCommissions p;
    p.rate = amb1()
                 .scalar(QStringLiteral("SELECT porsentaje FROM Doctores WHERE Cod_doctor = ?"),
                         {doctor})
                 .toDouble();
    Recordset rs;
    rs.open(QStringLiteral("SELECT factura, fecha, total FROM Factura "
                           "WHERE Cod_doctor = ? AND pagada_doc = FALSE ORDER BY fecha, factura"),
            {doctor});
    const int n = rs.recordCount();
    for (int r = 0; r < n; ++r) {
        const double total = rs.valueAt(r, 2).toDouble();
        const QString totalText = currencyText(total, locale);
        const QString commissionText = currencyText(total * (p.rate / 100.0), locale);
        p.numeros << QString::number(toInt32(rs.valueAt(r, 0)));
        p.fechas << dateLong(storedDate(rs.valueAt(r, 1)));
        p.totales << totalText;
        p.comisiones << commissionText;
        p.sumaTotales += currencyValue(totalText, locale);
        p.sumaComisiones += currencyValue(commissionText, locale);
    }
    return p;
}

CommissionsAlreadyPaid::CommissionsAlreadyPaid(const QList<std::int32_t>& facturas)
    : AppError(alreadyPaidSentence(facturas)), m_facturas(facturas)
{
}

void payCommissions(const QList<CommissionPayment>& payments, const QDate& fecha)
{
    Transaction t;
    QList<std::int32_t> paidMeanwhile;
    for (const CommissionPayment& p : payments) {
        // Only an unpaid commission is paid: under the write lock, an invoice
        // paid at another station since it was listed updates no row.
        const int updated = amb1().execute(
            QStringLiteral("UPDATE Factura SET pagada_doc = TRUE, fecha_pag_doc = ?, "
                           "comision_pagada = ? WHERE factura = ? AND pagada_doc = FALSE"),
            {fecha, Val(money(p.comision)), p.factura});
        if (updated == 0)
            paidMeanwhile << p.factura;
    }
    if (!paidMeanwhile.isEmpty())
        throw CommissionsAlreadyPaid(paidMeanwhile);
    t.commit();
}

}  // namespace tq
