// DataReport17: the invoices each insurer still owes.
#include "reports/parts.h"

using namespace tq::report;
using namespace tq::report::parts;

TQ_DECLARE_REPORT(DataReport17)
{
    return insurerInvoices(QStringLiteral("rsrcuentas"), QStringLiteral("rcuentasdetalle"));
}
