// DataReport13: the copy of an invoice shown when it is looked up by number.
// Its footer has always read "Faturado por:".
#include "reports/parts.h"

using namespace tq::report;
using namespace tq::report::parts;

TQ_DECLARE_REPORT(DataReport13)
{
    Layout l = halfLetterInvoice(QStringLiteral("Faturado por:"));
    l.title = QStringLiteral("Copia de Factura");
    return l;
}
