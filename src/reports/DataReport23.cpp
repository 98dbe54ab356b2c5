// DataReport23: the voided invoices of a period, with why and when.
#include "reports/parts.h"

using namespace tq::report;
using namespace tq::report::parts;

TQ_DECLARE_REPORT(DataReport23)
{
    Layout l = layoutOn(Paper::Letter, QStringLiteral("rsfactanuladas"),
                        QStringLiteral("Reporte de Facturas Anuladas"));
    const double w = bandWidth(l);
    const Table invoices({{QStringLiteral("Factura"), QStringLiteral("factura"), 20, Format::Whole},
                          {QStringLiteral("Fecha"), QStringLiteral("fecha"), 24, Format::Date},
                          {QStringLiteral("Total"), QStringLiteral("total"), 26, Format::Money},
                          {QStringLiteral("Motivo de Anulacion"),
                           QStringLiteral("motivo_anulacion"), w - 106},
                          {QStringLiteral("Anulada el"), QStringLiteral("fecha_anulacion"), 36,
                           Format::Date}});
    listOf(l, invoices);
    return l;
}
