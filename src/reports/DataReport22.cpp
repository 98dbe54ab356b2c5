// DataReport22: the log of result corrections between two dates, as the
// listing screen opens it on repcambios.
#include "reports/parts.h"

using namespace tq::report;
using namespace tq::report::parts;

TQ_DECLARE_REPORT(DataReport22)
{
    Layout l = layoutOn(Paper::LetterLandscape, QStringLiteral("rsrepcambios"),
                        QStringLiteral("Historial de Cambios"));
    const double w = bandWidth(l);
    // The invoice stands at the left of its column, clear of the template's name.
    const Table changes({{QStringLiteral("FACTURA:"), QStringLiteral("Factura"), 22},
                         {QStringLiteral("PLANTILLA:"), QStringLiteral("plantilla"), 45},
                         {QStringLiteral("USUARIO:"), QStringLiteral("usuario"), 35},
                         {QStringLiteral("FECHA:"), QStringLiteral("fecha"), 25, Format::Date},
                         {QStringLiteral("DESCRIPCION:"), QStringLiteral("descripcion"),
                          w - 127}});
    listOf(l, changes);
    return l;
}
