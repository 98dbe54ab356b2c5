// DataReport20: the invoice on the ticket printer, with what was paid and
// what is still owed. The caller names the extra through Etiqueta3.
#include "reports/parts.h"

using namespace tq::report;
using namespace tq::report::parts;

TQ_DECLARE_REPORT(DataReport20)
{
    Layout l = layoutOn(Paper::Ticket, QStringLiteral("rsrfact1"), QString());
    l.title = QStringLiteral("Factura");
    const double w = bandWidth(l);
    const Table lines({{QStringLiteral("Cant."), QStringLiteral("cantidad"), 10, Format::Whole},
                       {QStringLiteral("Examen"), QStringLiteral("examen"), w - 32},
                       {QStringLiteral("Precio"), QStringLiteral("subtotal"), 22, Format::Money}});

    Level invoice;
    invoice.pageBreakBefore = true;
    invoice.header = band(pair(QStringLiteral("Factura N°"), QStringLiteral("factura"), 0, 0, 20,
                               w - 20, Format::Whole)
                              + QList<Item>{field(QStringLiteral("fecha"), Box{0, 6, w, 5},
                                                  Format::Date)}
                              + QList<Item>{caption(QStringLiteral("Nombre del Paciente:"),
                                                    Box{0, 12, w, 5}, Align::Left, true),
                                            field(QStringLiteral("nombre"), Box{0, 17, w, 5})}
                              + lines.captions(24),
                          1);

    // The amounts stand one under the other at the right.
    const double cw = w - 26;
    auto amount = [&](const QString& text, const QString& column, double y) {
        return QList<Item>{caption(text, Box{0, y, cw, 5}, Align::Right, true),
                           field(column, Box{cw + 1, y, 25, 5}, Format::Money)};
    };
    QList<Item> foot;
    foot << rule(0, 0.5, w) << amount(QStringLiteral("Sub Total"), QStringLiteral("sub_total"), 2)
         << caption(QStringLiteral("Impuesto"), Box{0, 8, cw, 5}, Align::Right, true)
         << caption(QStringLiteral("0.00"), Box{cw + 1, 8, 25, 5}, Align::Right)
         << amount(QStringLiteral("Total"), QStringLiteral("total"), 14)
         << label(QStringLiteral("Etiqueta3"), QStringLiteral("Otros"), Box{0, 20, cw, 5},
                  Align::Right)
         << field(QStringLiteral("valadicional"), Box{cw + 1, 20, 25, 5}, Format::Money)
         << amount(QStringLiteral("Pago"), QStringLiteral("abono"), 26)
         << amount(QStringLiteral("Saldo"), QStringLiteral("deuda"), 32)
         << caption(QStringLiteral("La factura es beneficio de todos EXIJALA!!!"),
                    Box{0, 40, w, 5}, Align::Center, true, 8);
    invoice.footer = band(foot, 4);

    l.levels = {invoice, rowsOf(QStringLiteral("Command1"), lines)};
    return l;
}
