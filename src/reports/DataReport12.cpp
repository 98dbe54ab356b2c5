// DataReport12: the supplies at or below their minimum stock, each once.
// Its rows are those of the stock-out query the caller opens on RepAgotado.
#include "reports/parts.h"

using namespace tq::report;
using namespace tq::report::parts;

TQ_DECLARE_REPORT(DataReport12)
{
    Layout l = layoutOn(Paper::Letter, QStringLiteral("rsRepAgotado"),
                        QStringLiteral("Insumos por Agotarse"));
    const double w = bandWidth(l);
    const Table supplies({{QStringLiteral("CODIGO"), QStringLiteral("Cod_Item"), 20, Format::Whole},
                          {QStringLiteral("NOMBRE"), QStringLiteral("nombre_Item"), 50},
                          {QStringLiteral("DESCRIPCION"), QStringLiteral("descripcion_Item"),
                           w - 146},
                          {QStringLiteral("UNIDAD"), QStringLiteral("unidad"), 26},
                          {QStringLiteral("MINIMO"), QStringLiteral("cminima"), 25},
                          {QStringLiteral("EXISTENCIA"), QStringLiteral("stock"), 25}});
    listOf(l, supplies);
    return l;
}
