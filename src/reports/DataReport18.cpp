// DataReport18: the invoices each insurer has paid. It keeps the title and the
// footer of the pending list on purpose: the laboratory knows it so.
#include "reports/parts.h"

using namespace tq::report;
using namespace tq::report::parts;

TQ_DECLARE_REPORT(DataReport18)
{
    return insurerInvoices(QStringLiteral("rsrcpagadas"), QStringLiteral("rcuentaspagadas"));
}
