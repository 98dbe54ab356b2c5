// reporOrden: an order or quotation with its exams, one a page.
#include "reports/parts.h"

using namespace tq::report;
using namespace tq::report::parts;

TQ_DECLARE_REPORT(reporOrden)
{
    Layout l = layoutOn(Paper::Letter, QStringLiteral("rsrorden"),
                        QStringLiteral("Cotizacion / Orden"));
    const double w = bandWidth(l);
    const Table lines({{QStringLiteral("Codigo"), QStringLiteral("cod_descripcionexamen"), 22,
                        Format::Whole},
                       {QStringLiteral("Examen"), QStringLiteral("examen"), w - 82},
                       {QStringLiteral("Cantidad"), QStringLiteral("cantidad"), 22, Format::Whole},
                       {QStringLiteral("Precio"), QStringLiteral("subtotal"), 38, Format::Money}});
    Level order;
    order.pageBreakBefore = true;
    order.header = band(pair(QStringLiteral("Numero:"), QStringLiteral("orden"), 0, 0, 20, 30,
                             Format::Whole)
                            + pair(QStringLiteral("Fecha:"), QStringLiteral("fecha"), w - 60, 0,
                                   14, 46, Format::Date)
                            + pair(QStringLiteral("Codigo Paciente"),
                                   QStringLiteral("cod_paciente"), 0, 6, 36, 30, Format::Whole)
                            + pair(QStringLiteral("Nombre Paciente"), QStringLiteral("nombre"), 0,
                                   12, 36, w - 36)
                            + pair(QStringLiteral("Direccion Paciente"),
                                   QStringLiteral("direccion_paciente"), 0, 18, 36, w - 36)
                            + lines.captions(26),
                        2);
    // The extra's kind ("Descuento", "Recargo") was saved with the order.
    const double cw = w - 40;
    Item kind = field(QStringLiteral("adicional"), Box{cw - 40, 8, 40, 5});
    kind.align = Align::Right;
    order.footer = band({rule(0, 0.5, w),
                         caption(QStringLiteral("Elaborado por:"), Box{0, 2, 30, 5}, Align::Left,
                                 true),
                         field(QStringLiteral("faturado"), Box{30, 2, 50, 5}),
                         caption(QStringLiteral("Sub Total"), Box{cw - 40, 2, 40, 5}, Align::Right,
                                 true),
                         field(QStringLiteral("sub_total"), Box{cw + 1, 2, 38, 5}, Format::Money),
                         kind,
                         field(QStringLiteral("valadicional"), Box{cw + 1, 8, 38, 5},
                               Format::Money),
                         caption(QStringLiteral("Total"), Box{cw - 40, 14, 40, 5}, Align::Right,
                                 true),
                         field(QStringLiteral("total"), Box{cw + 1, 14, 38, 5}, Format::Money)},
                        2);
    l.levels = {order, rowsOf(QStringLiteral("Command7"), lines)};
    return l;
}
