// DataReport9: the purchases of each supplier, or of the one chosen.
// Shown from the inventory window without the laboratory's heading.
#include "reports/parts.h"

using namespace tq::report;
using namespace tq::report::parts;

TQ_DECLARE_REPORT(DataReport9)
{
    Layout l = layoutOn(Paper::Letter, QStringLiteral("rsRepcomp_Grouping"),
                        QStringLiteral("Resumen de Compras por Proveedor"));
    const double w = bandWidth(l);
    const Table purchases({{QStringLiteral("Numero de Compra"), QStringLiteral("numcompra"), 40,
                            Format::Whole},
                           {QStringLiteral("Fecha"), QStringLiteral("fecha"), w - 80, Format::Date},
                           {QStringLiteral("Total"), QStringLiteral("total"), 40, Format::Money}});
    Level supplier;
    supplier.header = band(pair(QStringLiteral("Proveedor:"), QStringLiteral("prvcod"), 0, 1, 22,
                                15, Format::Whole)
                               + QList<Item>{field(QStringLiteral("prvnom"),
                                                   Box{37, 1, w - 37, 5})}
                               + purchases.captions(7),
                           1);
    supplier.footer = band(purchases.totals(QStringLiteral("Total del Proveedor:"),
                                            {QStringLiteral("total")}),
                           4);
    l.levels = {supplier, rowsOf(QStringLiteral("Repcomp"), purchases)};
    l.reportFooter = band(purchases.totals(QStringLiteral("Total General:"),
                                           {QStringLiteral("total")}));
    return l;
}
