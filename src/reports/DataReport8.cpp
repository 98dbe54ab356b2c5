// DataReport8: the supplies in stock and the money they stand for.
// Shown from the inventory window without the laboratory's heading.
#include "reports/parts.h"

using namespace tq::report;
using namespace tq::report::parts;

TQ_DECLARE_REPORT(DataReport8)
{
    Layout l = layoutOn(Paper::Letter, QStringLiteral("rsRepInsumos"),
                        QStringLiteral("Reporte de Insumos Existentes"));
    const double w = bandWidth(l);
    const Table supplies({{QStringLiteral("Codigo"), QStringLiteral("Cod_Item"), 18, Format::Whole},
                          {QStringLiteral("Nombre Item"), QStringLiteral("nombre_Item"), w - 146},
                          {QStringLiteral("Precio"), QStringLiteral("precio_Item"), 24,
                           Format::Money},
                          {QStringLiteral("Unidad"), QStringLiteral("unidad"), 22},
                          {QStringLiteral("Existencia"), QStringLiteral("stock"), 22},
                          {QStringLiteral("Cantidad Minima"), QStringLiteral("cminima"), 30},
                          // The money in stock, under the caption it has always had.
                          {QStringLiteral("Existencia"), QStringLiteral("Invertido"), 30,
                           Format::Money}});
    listOf(l, supplies);
    l.reportFooter = band(supplies.totals(QStringLiteral("Total Invertido"),
                                          {QStringLiteral("Invertido")}));
    return l;
}
