// DataReport10: the profit of each invoice line, the catalogue price against
// the exam's cost as it stands today.
#include "reports/parts.h"

using namespace tq::report;
using namespace tq::report::parts;

TQ_DECLARE_REPORT(DataReport10)
{
    Layout l = layoutOn(Paper::Letter, QStringLiteral("rsRepFacgan"),
                        QStringLiteral("Reporte de Ganancias por Facturas"));
    const double w = bandWidth(l);
    const Table lines({{QStringLiteral("Factura"), QStringLiteral("factura"), 18, Format::Whole},
                       {QStringLiteral("Fecha"), QStringLiteral("fecha"), 22, Format::Date},
                       {QStringLiteral("Examen"), QStringLiteral("examen"), w - 136},
                       {QStringLiteral("Cantidad"), QStringLiteral("cantidad"), 18, Format::Whole},
                       {QStringLiteral("Precio"), QStringLiteral("Expr1"), 26, Format::Money},
                       {QStringLiteral("Valor"), QStringLiteral("Expr2"), 26, Format::Money},
                       {QStringLiteral("Ganancia"), QStringLiteral("Expr3"), 26, Format::Money}});
    listOf(l, lines);
    l.reportFooter =
        band(lines.totals(QStringLiteral("Ganancia Total"), {QStringLiteral("Expr3")}));
    return l;
}
