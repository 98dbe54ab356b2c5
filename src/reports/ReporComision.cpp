// ReporComision: the commissions of each doctor, a group per doctor and day,
// over the invoices not voided.
#include "reports/parts.h"

using namespace tq::report;
using namespace tq::report::parts;

TQ_DECLARE_REPORT(ReporComision)
{
    Layout l = layoutOn(Paper::Letter, QStringLiteral("rscomision_Grouping"),
                        QStringLiteral("Reporte de Comisiones"));
    const double w = bandWidth(l);
    stampPrintDate(l, QStringLiteral("Fecha Impresion"), 32);
    const Table invoices({{QStringLiteral("No. Factura"), QStringLiteral("factura"), 24,
                           Format::Whole},
                          {QStringLiteral("Fecha Factura"), QStringLiteral("fecha"), 28,
                           Format::Date},
                          {QStringLiteral("Total factura"), QStringLiteral("total"), 30,
                           Format::Money},
                          {QStringLiteral("Comision"), QStringLiteral("comi"), 30, Format::Money},
                          {QStringLiteral("Nombre Paciente"), QStringLiteral("nombrepac"),
                           w - 112}});
    Level doctorDay;
    doctorDay.header = band(pair(QStringLiteral("Codigo:"), QStringLiteral("cod_doctor"), 0, 1, 16,
                                 20, Format::Whole)
                                + pair(QStringLiteral("Doctor:"), QStringLiteral("nombre"), 40, 1,
                                       16, w - 56)
                                + invoices.captions(7),
                            1);
    doctorDay.footer = band(invoices.totals(QStringLiteral("TOTAL COMISION:"),
                                            {QStringLiteral("comi")}),
                            4);
    l.levels = {doctorDay, rowsOf(QStringLiteral("comision"), invoices)};
    l.reportFooter = band(invoices.totals(QStringLiteral("TOTAL GENERAL:"),
                                          {QStringLiteral("comi")}));
    return l;
}
