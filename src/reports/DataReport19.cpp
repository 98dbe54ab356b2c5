// DataReport19: the laboratory's letterhead. Only its heading prints: the
// logo, the name and the address, without the rtn.
#include "reports/parts.h"

using namespace tq::report;
using namespace tq::report::parts;

TQ_DECLARE_REPORT(DataReport19)
{
    Layout l = layoutOn(Paper::Letter, QStringLiteral("rstipoexamen"), QString());
    l.title = QStringLiteral("Membrete");
    l.encabezado = heading(bandWidth(l), QString(), false);
    return l;
}
