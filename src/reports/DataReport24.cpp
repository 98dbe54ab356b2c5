// DataReport24: the open receivables of insured patients, by insurer and patient.
#include "reports/parts.h"

using namespace tq::report;
using namespace tq::report::parts;

TQ_DECLARE_REPORT(DataReport24)
{
    Layout l = layoutOn(Paper::Letter, QStringLiteral("rscuentascliente_Grouping"),
                        QStringLiteral("Cuentas por Cobrar por Paciente"));
    const double w = bandWidth(l);
    stampPrintDate(l, QStringLiteral("Fecha de Impresion:"), 38);
    const Table invoices({{QStringLiteral("FACTURA"), QStringLiteral("factura"), 30, Format::Whole},
                          {QStringLiteral("PACIENTE"), QStringLiteral("Cod_paciente"), 30,
                           Format::Whole},
                          {QStringLiteral("FECHA"), QStringLiteral("fecha"), w - 100,
                           Format::Date},
                          {QStringLiteral("TOTAL"), QStringLiteral("total"), 40, Format::Money}});
    Level patient;
    patient.header = band(pair(QStringLiteral("SEGURO"), QStringLiteral("Empresa"), 0, 1, 22,
                               w - 22)
                              + pair(QStringLiteral("NOMBRE"), QStringLiteral("nombre"), 0, 7, 22,
                                     w - 22)
                              + invoices.captions(14),
                          1);
    patient.footer = band(invoices.totals(QStringLiteral("TOTAL PACIENTE"),
                                          {QStringLiteral("total")}),
                          4);
    l.levels = {patient, rowsOf(QStringLiteral("cuentascliente"), invoices)};
    // Above the patients: the whole of what the insurers owe.
    l.reportFooter = band(invoices.totals(QStringLiteral("TOTAL SEGURO"),
                                          {QStringLiteral("total")}));
    return l;
}
