// DataReport5: the invoices listed under each invoice total, with their lines.
// It is kept in the program although no screen shows it.
#include "reports/parts.h"

using namespace tq::report;
using namespace tq::report::parts;

TQ_DECLARE_REPORT(DataReport5)
{
    Layout l = layoutOn(Paper::Letter, QStringLiteral("rsCommand2"),
                        QStringLiteral("Facturas por Total"));
    const double w = bandWidth(l);
    const Table invoices({{QStringLiteral("Factura"), QStringLiteral("factura"), 20, Format::Whole},
                          {QStringLiteral("Fecha"), QStringLiteral("fecha"), 24, Format::Date},
                          {QStringLiteral("Nombre"), QStringLiteral("nombre_paciente"), 40},
                          {QStringLiteral("Apellido"), QStringLiteral("apellido_paciente"), 40},
                          {QStringLiteral("Facturado por"), QStringLiteral("faturado"), 30},
                          {QStringLiteral("Tipo"), QStringLiteral("tipo_factura"), w - 154}});
    const Table lines({{QStringLiteral("Codigo"), QStringLiteral("cod_descripcionexamen"), 20,
                        Format::Whole},
                       {QStringLiteral("Examen"), QStringLiteral("examen"), w - 90},
                       {QStringLiteral("Cantidad"), QStringLiteral("cantidad"), 20, Format::Whole},
                       {QStringLiteral("Sub Total"), QStringLiteral("subtotal"), 30,
                        Format::Money}},
                      20);

    Level byTotal;
    byTotal.header = band(pair(QStringLiteral("Total:"), QStringLiteral("total"), 0, 1, 16, 30,
                               Format::Money)
                              + invoices.captions(7),
                          1);
    l.levels = {byTotal, rowsOf(QStringLiteral("Command3"), invoices),
                rowsOf(QStringLiteral("Command4"), lines)};
    return l;
}
