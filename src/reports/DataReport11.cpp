// DataReport11: the exams billed to each patient, invoices not voided.
#include "reports/parts.h"

using namespace tq::report;
using namespace tq::report::parts;

TQ_DECLARE_REPORT(DataReport11)
{
    Layout l = layoutOn(Paper::Letter, QStringLiteral("rsRepClienteexamen_Grouping"),
                        QStringLiteral("Examenes por Paciente"));
    const double w = bandWidth(l);
    const Table exams({{QStringLiteral("Fecha"), QStringLiteral("fecha"), 26, Format::Date},
                       {QStringLiteral("Factura"), QStringLiteral("factura"), 22, Format::Whole},
                       {QStringLiteral("Codigo"), QStringLiteral("cod_descripcionexamen"), 22,
                        Format::Whole},
                       {QStringLiteral("Examen"), QStringLiteral("examen"), w - 70}});
    const double half = (w - 37) / 2;
    Level patient;
    patient.header = band(pair(QStringLiteral("Paciente:"), QStringLiteral("cod_paciente"), 0, 1,
                               20, 15, Format::Whole)
                              + QList<Item>{field(QStringLiteral("nombre_paciente"),
                                                  Box{37, 1, half, 5}),
                                            field(QStringLiteral("apellido_paciente"),
                                                  Box{37 + half, 1, half, 5})}
                              + exams.captions(7),
                          1);
    l.levels = {patient, rowsOf(QStringLiteral("RepClienteexamen"), exams)};
    return l;
}
