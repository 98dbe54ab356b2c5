#include "billing/search/voiding.h"

#include "billing/search/Form31.h"
#include "foundation/data/amb1.h"

namespace tq {

QWidget* showVoidingBox(std::int32_t numero, bool anulada, bool canVoid)
{
    return Form31::showInvoice(numero, anulada, canVoid);
}

bool openInvoiceCopy(std::int32_t numero)
{
    Recordset& rs = amb1().rs(QStringLiteral("rsrfact1"));
    if (rs.isOpen())
        rs.close();
    rs.open();
    rs.setFilter(QStringLiteral("factura =") + QString::number(numero));
    bool anulada = false;
    for (rs.moveFirst(); !rs.eof(); rs.moveNext())
        if (rs.field(QStringLiteral("anulada")).toBool())
            anulada = true;
    return anulada;
}

}  // namespace tq
