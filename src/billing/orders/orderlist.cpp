#include "billing/orders/orderlist.h"

#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/ui/flexgrid.h"

#include <QVector>
#include <algorithm>
#include <limits>
#include <numeric>

namespace tq {

namespace {

// The patient's name comes in the same query: a list of thousands of orders
// must not read its patients one by one. An order whose patient row is gone
// still stands, without a name.
const QString kSelect = QStringLiteral(
    "SELECT orden.orden, orden.fecha, Pacientes.nombre_paciente, Pacientes.apellido_paciente "
    "FROM orden LEFT JOIN Pacientes ON Pacientes.cod_paciente = orden.cod_paciente "
    "WHERE orden.anulada = ? ");

OrderRows read(const QString& where, const QString& orderBy, QVariantList binds)
{
    binds.prepend(false);
    Recordset rs;
    rs.open(kSelect + where + QStringLiteral(" ORDER BY ") + orderBy, binds);
    const int n = rs.recordCount();
    OrderRows out;
    out.numero.reserve(n);
    out.fecha.reserve(n);
    out.cliente.reserve(n);
    for (int r = 0; r < n; ++r) {
        out.numero << QString::number(toInt32(rs.valueAt(r, 0)));
        out.fecha << dateLong(storedDate(rs.valueAt(r, 1)));
        const QString nombre = rs.valueAt(r, 2).toString();
        const QString apellido = rs.valueAt(r, 3).toString();
        out.cliente << (nombre.isEmpty() && apellido.isEmpty()
                            ? QString()
                            : nombre + QLatin1Char(' ') + apellido);
    }
    return out;
}

bool allDigits(const QString& text)
{
    return std::all_of(text.cbegin(), text.cend(), [](QChar c) {
        return c >= QLatin1Char('0') && c <= QLatin1Char('9');
    });
}

}  // namespace

OrderRows pendingOrders()
{
    // Undated orders first on both engines (they disagree on where NULL sorts).
    return read({}, QStringLiteral("CASE WHEN orden.fecha IS NULL THEN 0 ELSE 1 END, orden.fecha, "
                                   "orden.orden"),
                {});
}

OrderRows pendingOrdersNumbered(const QString& typed)
{
    const QString digits = typed.trimmed();
    if (digits.isEmpty())
        return read({}, QStringLiteral("orden.orden"), {});
    // Only digits reach the pattern: "%" or "_" typed would match anything.
    if (!allDigits(digits))
        return {};
    return read(QStringLiteral("AND CAST(orden.orden AS TEXT) LIKE ?"), QStringLiteral("orden.orden"),
                {digits + QLatin1Char('%')});
}

OrderRows pendingOrdersBetween(const QDate& from, const QDate& to)
{
    return read(QStringLiteral("AND orden.fecha >= ? AND orden.fecha <= ?"),
                QStringLiteral("orden.orden"), {from, to});
}

void showOrders(FlexGrid* grid, const OrderRows& rows, const QStringList& headers)
{
    grid->setRows(1);
    for (int c = 0; c < headers.size() && c < grid->cols(); ++c)
        grid->setTextMatrix(0, c, headers[c]);
    const int n = rows.size();
    if (n == 0)
        return;
    grid->setRows(n + 1);
    grid->setColumnTexts(OrderNumber, rows.numero);
    grid->setColumnTexts(OrderDate, rows.fecha);
    grid->setColumnTexts(OrderClient, rows.cliente);
    grid->setRow(1);
}

void sortOrders(FlexGrid* grid, OrderColumn by)
{
    const int n = grid->rows() - 1;
    if (n < 2)
        return;
    const int cols = grid->cols();
    QVector<QStringList> rows(n);
    for (int r = 0; r < n; ++r)
        for (int c = 0; c < cols; ++c)
            rows[r] << grid->textMatrix(r + 1, c);

    QVector<int> at(n);
    std::iota(at.begin(), at.end(), 0);
    if (by == OrderClient) {
        std::stable_sort(at.begin(), at.end(), [&](int a, int b) {
            return QString::compare(rows[a][OrderClient], rows[b][OrderClient], Qt::CaseInsensitive)
                   < 0;
        });
    } else {
        // A date is compared as a day, never as its "dd/mm" text; a cell
        // without one sorts first.
        QVector<qint64> key(n);
        for (int r = 0; r < n; ++r) {
            if (by == OrderNumber) {
                key[r] = qint64(Val(rows[r][OrderNumber]));
            } else {
                const QDate d = parseDate(rows[r][OrderDate]);
                key[r] = d.isValid() ? d.toJulianDay() : std::numeric_limits<qint64>::min();
            }
        }
        std::stable_sort(at.begin(), at.end(), [&](int a, int b) { return key[a] < key[b]; });
    }
    for (int c = 0; c < cols; ++c) {
        QStringList texts;
        texts.reserve(n);
        for (int r = 0; r < n; ++r)
            texts << rows[at[r]][c];
        grid->setColumnTexts(c, texts);
    }
}

}  // namespace tq
