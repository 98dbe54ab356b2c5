#include "billing/search/voiding.h"

#include "billing/search/Form31.h"

namespace tq {

QWidget* showVoidingBox(std::int32_t numero, bool anulada, bool canVoid)
{
    return Form31::showInvoice(numero, anulada, canVoid);
}

}  // namespace tq
