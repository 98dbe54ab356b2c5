#include "accounts/receivables/settlement.h"

#include "foundation/base/values.h"
#include "foundation/data/amb1.h"

#include <QSet>
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>

namespace tq {

namespace {

// Invoices go to the store a few hundred at a time, one bound value each.
constexpr qsizetype kChunk = 400;

QString placeholders(qsizetype n)
{
    QStringList marks;
    marks.fill(QStringLiteral("?"), n);
    return marks.join(QStringLiteral(", "));
}

QVariantList bound(const QList<std::int32_t>& numbers)
{
    QVariantList out;
    out.reserve(numbers.size());
    for (const std::int32_t n : numbers)
        out << n;
    return out;
}

// Runs `sql` (its last "%1" the list of numbers) over every chunk of the
// numbers, `before` bound ahead of them.
void overChunks(const QString& sql, const QVariantList& before, const QList<std::int32_t>& numbers,
                const std::function<void(const QString&, const QVariantList&)>& run)
{
    for (qsizetype from = 0; from < numbers.size(); from += kChunk) {
        const QList<std::int32_t> part = numbers.mid(from, kChunk);
        run(sql.arg(placeholders(part.size())), before + bound(part));
    }
}


}  // namespace

OpenInvoices openInsurerInvoices(std::int32_t insurer)
{
    Recordset rs;
    rs.open(QStringLiteral(
                "SELECT cxc.factura, Factura.fecha, Factura.total, "
                "Pacientes.nombre_paciente, Pacientes.apellido_paciente "
                "FROM cxc INNER JOIN Pacientes ON Pacientes.cod_paciente = cxc.Cod_paciente "
                "INNER JOIN seguros ON seguros.Cod_Seguro = Pacientes.Cod_seguro "
                "INNER JOIN Factura ON Factura.factura = cxc.factura "
                "AND Factura.cod_paciente = Pacientes.cod_paciente "
                "WHERE seguros.Cod_Seguro = ? AND cxc.estado = ? "
                "ORDER BY cxc.factura"),
            {insurer, false});
    OpenInvoices out;
    const int n = rs.recordCount();
    out.factura.reserve(n);
    out.paciente.reserve(n);
    out.valor.reserve(n);
    out.fecha.reserve(n);
    for (int r = 0; r < n; ++r) {
        out.factura << QString::number(toInt32(rs.valueAt(r, 0)));
        out.fecha << dateLong(storedDate(rs.valueAt(r, 1)));
        out.valor << money(rs.valueAt(r, 2));
        out.paciente << rs.valueAt(r, 3).toString() + QLatin1Char(' ') + rs.valueAt(r, 4).toString();
    }
    return out;
}

void settleInsurerInvoices(const QList<std::int32_t>& invoices, const QDate& fechaPago,
                           const QString& referencia)
{
    QList<std::int32_t> numbers;
    QSet<std::int32_t> seen;
    for (const std::int32_t n : invoices)
        if (!seen.contains(n)) {
            seen.insert(n);
            numbers << n;
        }
    if (numbers.isEmpty())
        return;

    Transaction t;
    // Another station may have settled some of them since this one listed
    // them; the write lock is held from here to the commit.
    QList<std::int32_t> settled;
    overChunks(QStringLiteral("SELECT DISTINCT factura FROM cxc WHERE estado = ? AND factura IN (%1)"),
               {true}, numbers, [&settled](const QString& sql, const QVariantList& binds) {
                   Recordset rs;
                   rs.open(sql, binds);
                   for (int r = 0; r < rs.recordCount(); ++r)
                       settled << toInt32(rs.valueAt(r, 0));
               });
    if (!settled.isEmpty()) {
        std::sort(settled.begin(), settled.end());
        throw InvoicesAlreadySettled(settled);
    }

    const auto write = [](const QString& sql, const QVariantList& binds) { amb1().execute(sql, binds); };
    overChunks(QStringLiteral("UPDATE cxc SET estado = ?, fecha_pago = ?, referencia = ? "
                              "WHERE factura IN (%1)"),
               {true, fechaPago, referencia}, numbers, write);
    overChunks(QStringLiteral("UPDATE Factura SET pagada = ? WHERE factura IN (%1)"), {true}, numbers,
               write);
    t.commit();
}

InvoicesAlreadySettled::InvoicesAlreadySettled(QList<std::int32_t> invoices)
    : AppError(invoices.size() == 1
                   ? QStringLiteral("La factura %1 ya fue cancelada en otra estación. No se registró "
                                    "ningún pago.")
                         .arg(spokenNumbers(invoices))
                   : QStringLiteral("Las facturas %1 ya fueron canceladas en otra estación. No se "
                                    "registró ningún pago.")
                         .arg(spokenNumbers(invoices))),
      m_invoices(std::move(invoices))
{
}

QString wholeWithThousands(double amount)
{
    // Halves round away from zero; nothing is shown as "-00".
    const long long whole = std::llround(amount);
    QString digits = QString::number(std::llabs(whole)).rightJustified(2, QLatin1Char('0'));
    for (qsizetype at = digits.size() - 3; at > 0; at -= 3)
        digits.insert(at, QLatin1Char(','));
    return whole < 0 ? QLatin1Char('-') + digits : digits;
}

}  // namespace tq
