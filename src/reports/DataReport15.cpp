// DataReport15: the copy of a voided invoice, under the banner "FACTURA ANULADA".
#include "reports/parts.h"

using namespace tq::report;
using namespace tq::report::parts;

TQ_DECLARE_REPORT(DataReport15)
{
    Layout l = halfLetterInvoice(QStringLiteral("Facturado por:"), QString(),
                                 QStringLiteral("FACTURA ANULADA"));
    l.title = QStringLiteral("Factura Anulada");
    return l;
}
