// DataReport1: the invoice on half-letter paper, printed from the print box.
// The caller names the extra in front of valadicional through Etiqueta14
// ("Descuento", "Recargo" or "Otros").
#include "reports/parts.h"

using namespace tq::report;
using namespace tq::report::parts;

TQ_DECLARE_REPORT(DataReport1)
{
    Layout l = halfLetterInvoice(QStringLiteral("Facturado por:"), QStringLiteral("Etiqueta14"));
    l.title = QStringLiteral("Factura");
    return l;
}
