// DataReport7: every purchase with its lines, one group per purchase.
// Shown from the inventory window without the laboratory's heading.
#include "reports/parts.h"

using namespace tq::report;
using namespace tq::report::parts;

TQ_DECLARE_REPORT(DataReport7)
{
    Layout l = layoutOn(Paper::Letter, QStringLiteral("rsRepCompras_Grouping"),
                        QStringLiteral("Compras por Proveedor"));
    const double w = bandWidth(l);
    const double half = w / 2;
    const Table lines({{QStringLiteral("Codigo"), QStringLiteral("cod_item"), 20, Format::Whole},
                       {QStringLiteral("Nombre Item"), QStringLiteral("nombre_Item"), w - 110},
                       {QStringLiteral("Cantidad"), QStringLiteral("cantidad"), 25},
                       {QStringLiteral("Precio Compra"), QStringLiteral("preciodecompra"), 32,
                        Format::Money},
                       {QStringLiteral("Sub Total"), QStringLiteral("subtotal"), 33,
                        Format::Money}});
    Level purchase;
    purchase.header = band(pair(QStringLiteral("NUMERO DE COMPRA"), QStringLiteral("numcompra"), 0,
                                1, 40, 20, Format::Whole)
                               + QList<Item>{field(QStringLiteral("fecha"), Box{62, 1, 30, 5},
                                                   Format::Date),
                                             field(QStringLiteral("prvcod"), Box{half, 1, 15, 5},
                                                   Format::Whole)}
                               + pair(QStringLiteral("PROVEEDOR"), QStringLiteral("prvnom"), 0, 7,
                                      40, w - 40)
                               + pair(QStringLiteral("CONTACTO"), QStringLiteral("prvref"), 0, 13,
                                      40, half - 40)
                               + pair(QStringLiteral("TELEFONO"), QStringLiteral("prvtel"), half,
                                      13, 40, half - 40)
                               + pair(QStringLiteral("COREO ELECTRONICO"), QStringLiteral("prvcor"),
                                      0, 19, 40, w - 40)
                               + lines.captions(26),
                           1);
    // The purchase's own total, as it was saved with it.
    purchase.footer = band({rule(w - 33, 0.5, 32),
                            caption(QStringLiteral("TOTAL"), Box{0, 1, w - 34, 5}, Align::Right,
                                    true),
                            field(QStringLiteral("total"), Box{w - 33, 1, 32, 5}, Format::Money)},
                           4);
    l.levels = {purchase, rowsOf(QStringLiteral("RepCompras"), lines)};
    // Each purchase once: its total is added over the purchases, not over their lines.
    l.reportFooter = band(captionedTotal(QStringLiteral("TOTAL GENERAL"),
                                         QStringLiteral("total"), 0, 1, w - 33, 32, QString()));
    return l;
}
