// ReporVentasTarjeta: the card sales of each day, what the card company keeps
// at the rate in IST, and the net.
#include "reports/parts.h"

using namespace tq::report;
using namespace tq::report::parts;

namespace {

// The three sums, one under the other, each after its caption.
QList<Item> cardTotals(double w)
{
    return QList<Item>{rule(0, 0.5, w)}
           + captionedTotal(QStringLiteral("Sub Total:"), QStringLiteral("tarjeta"), 0, 1, 44, 30)
           + captionedTotal(QStringLiteral("Porcentaje:"), QStringLiteral("SUB"), 0, 6, 44, 30)
           + captionedTotal(QStringLiteral("Total:"), QStringLiteral("VALTOTAL"), 0, 11, 44, 30);
}

}  // namespace

TQ_DECLARE_REPORT(ReporVentasTarjeta)
{
    Layout l = layoutOn(Paper::LetterLandscape, QStringLiteral("rsrepventastarjeta_Grouping"),
                        QStringLiteral("Ventas con Tarjeta"));
    const double w = bandWidth(l);
    const Table sales({{QStringLiteral("Factura"), QStringLiteral("factura"), 20, Format::Whole},
                       {QStringLiteral("Autorizacion"), QStringLiteral("num_autorizacion"), 30},
                       {QStringLiteral("Monto"), QStringLiteral("tarjeta"), 26, Format::Money},
                       {QStringLiteral("Cargo"), QStringLiteral("SUB"), 26, Format::Money},
                       {QStringLiteral("Total"), QStringLiteral("VALTOTAL"), 26, Format::Money},
                       // The card box keeps the card-holder's name in num_tarjeta.
                       {QStringLiteral("Nombre"), QStringLiteral("num_tarjeta"), w - 168},
                       {QStringLiteral("Identidad:"), QStringLiteral("num_identidad"), 40}});
    Level day;
    day.header = band(pair(QStringLiteral("Fecha:"), QStringLiteral("fecha"), 0, 1, 16, 30,
                           Format::Date)
                          + sales.captions(7),
                      1);
    day.footer = band(cardTotals(w), 3);
    l.levels = {day, rowsOf(QStringLiteral("repventastarjeta"), sales)};
    l.reportFooter = band(cardTotals(w));
    return l;
}
