// DataReport2: the cash cut, by day, from the amounts entered at the desk.
#include "reports/parts.h"

using namespace tq::report;
using namespace tq::report::parts;

TQ_DECLARE_REPORT(DataReport2)
{
    Layout l = layoutOn(Paper::Letter, QStringLiteral("rsrcorte_Grouping"),
                        QStringLiteral("Corte de Ventas Diarias"));
    const double w = bandWidth(l);
    const Table sales({{QStringLiteral("Factura"), QStringLiteral("factura"), 18, Format::Whole},
                       {QStringLiteral("Nombre Paciente:"), QStringLiteral("nombre"), w - 136},
                       {QStringLiteral("Faturado por"), QStringLiteral("faturado"), 30},
                       {QStringLiteral("Total"), QStringLiteral("total"), 22, Format::Money},
                       {QStringLiteral("Efectivo"), QStringLiteral("efectivo"), 22, Format::Money},
                       {QStringLiteral("Tarjeta"), QStringLiteral("tarjeta"), 22, Format::Money},
                       {QStringLiteral("cheque"), QStringLiteral("cheque"), 22, Format::Money}});
    const QStringList amounts{QStringLiteral("total"), QStringLiteral("efectivo"),
                              QStringLiteral("tarjeta"), QStringLiteral("cheque")};

    Level day;
    day.header = band(QList<Item>{field(QStringLiteral("fecha"), Box{0, 1, 40, 5}, Format::Date)}
                          + sales.captions(7),
                      1);
    day.footer = band(sales.totals(QStringLiteral("TOTALES"), amounts), 4);
    l.levels = {day, rowsOf(QStringLiteral("rcorte"), sales)};
    l.reportFooter =
        band(sales.totals(QStringLiteral("TOTAL GENERAL:"), {QStringLiteral("total")}));
    return l;
}
