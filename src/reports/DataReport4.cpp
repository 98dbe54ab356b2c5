// DataReport4: a blank invoice to fill by hand. The command's ten exams only
// give it ten empty lines.
#include "reports/parts.h"

using namespace tq::report;
using namespace tq::report::parts;

TQ_DECLARE_REPORT(DataReport4)
{
    Layout l = layoutOn(Paper::Letter, QStringLiteral("rsCommand5"), QStringLiteral("Factura"));
    const double w = bandWidth(l);
    const Table lines({{QStringLiteral("Codigo"), QString(), 25},
                       {QStringLiteral("Examen"), QString(), w - 85},
                       {QStringLiteral("Cantidad"), QString(), 25},
                       {QStringLiteral("Precio"), QString(), 35}});
    // A caption with a line after it to write on.
    auto blank = [](const QString& text, double x, double y, double cw, double lw) {
        return QList<Item>{caption(text, Box{x, y, cw, 5}, Align::Left, true),
                           rule(x + cw, y + 4.5, lw)};
    };
    l.pageHeader = band(blank(QStringLiteral("Factura N°"), 0, 0, 24, 40)
                            + blank(QStringLiteral("Fecha:"), w - 60, 0, 14, 46)
                            + blank(QStringLiteral("Codigo Paciente"), 0, 7, 36, 40)
                            + blank(QStringLiteral("Nombre Paciente"), 0, 14, 36, w - 36)
                            + blank(QStringLiteral("Direccion Paciente"), 0, 21, 36, w - 36)
                            + blank(QStringLiteral("Tipo Factura"), 0, 28, 36, 60)
                            + lines.captions(37),
                        2);
    Level line;
    line.header = band(lines.cells(), 3);
    l.levels = {line};
    l.reportFooter = band(blank(QStringLiteral("Facturado por:"), 0, 2, 30, 60)
                              + blank(QStringLiteral("Total"), w - 60, 2, 20, 40)
                              + QList<Item>{caption(
                                  QStringLiteral("ACEPTADAS TODAS LAS CONDICIONES Y PRECIOS DE "
                                                 "ESTA FACTURA, NO SE ACEPTAN CAMBIOS NI "
                                                 "DEVOLUCIONES"),
                                  Box{0, 12, w, 5}, Align::Center, false, 8)});
    return l;
}
