// DataReport21: the exams sent out to another laboratory, those whose name
// begins with "r.".
#include "reports/parts.h"

using namespace tq::report;
using namespace tq::report::parts;

TQ_DECLARE_REPORT(DataReport21)
{
    Layout l = layoutOn(Paper::Letter, QStringLiteral("rsRepremitidos"),
                        QStringLiteral("Examenes Remitidos"));
    const double w = bandWidth(l);
    const Table exams({{QStringLiteral("Factura"), QStringLiteral("factura"), 25, Format::Whole},
                       {QStringLiteral("Fecha"), QStringLiteral("fecha"), 30, Format::Date},
                       {QStringLiteral("Descipcion de Examen"), QStringLiteral("examen"), w - 55}});
    listOf(l, exams);
    Item count = total(QStringLiteral("examen"), Box{62, 1, 20, 5});
    count.countRows = true;
    count.format = Format::Whole;
    l.reportFooter = band({rule(0, 0.5, w),
                           caption(QStringLiteral("Total de Examenes Remitidos"),
                                   Box{0, 1, 60, 5}, Align::Left, true),
                           count});
    return l;
}
