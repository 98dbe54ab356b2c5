#include "billing/invoice/payment.h"

namespace tq {

CardDetails& cardDetails()
{
    static CardDetails d;
    return d;
}

}  // namespace tq
