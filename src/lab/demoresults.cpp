#include "lab/demoresults.h"

#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "lab/sheets.h"
#include "lab/templates.h"
#include "lab/worktable.h"

namespace tq {

namespace {

// The waiting exam `examen` of the `nth` invoice (1 the oldest), as the work
// table would pick it; the context of a sheet saved for it by `tecnico`.
std::optional<sheets::SheetContext> picked(int nth, const QString& examen)
{
    Recordset rs;
    rs.open(QStringLiteral("SELECT e.factura, e.correlativo, e.examen, p.nombre_paciente, "
                           "p.apellido_paciente, f.edad_paciente FROM EvaluadoTemporal e "
                           "JOIN Factura f ON f.factura = e.factura "
                           "JOIN Pacientes p ON p.cod_paciente = f.cod_paciente "
                           "WHERE e.examen = ? AND e.factura = (SELECT factura FROM Factura "
                           "ORDER BY factura LIMIT 1 OFFSET ?)"),
            {examen, nth - 1});
    if (rs.eof())
        return std::nullopt;
    sheets::SheetContext c;
    c.factura = toInt32(rs.field(QStringLiteral("factura")));
    c.picks << sheets::PickedExam{rs.text(QStringLiteral("examen")),
                                  rs.text(QStringLiteral("nombre_paciente")) + QLatin1Char(' ')
                                      + rs.text(QStringLiteral("apellido_paciente")),
                                  rs.text(QStringLiteral("edad_paciente")),
                                  toInt32(rs.field(QStringLiteral("correlativo"))), c.factura};
    c.invoices = {c.factura};
    c.proposedFormatId = proposeFormatId();
    c.tecnico = QStringLiteral("admin");
    return c;
}

}  // namespace

void addDemoResults()
{
    if (amb1().scalar(QStringLiteral("SELECT COUNT(*) FROM resultados")).toInt() > 0)
        return;
    if (const auto hemo = picked(1, QStringLiteral("Hemograma Completo"))) {
        const sheets::SavedSheet saved = sheets::saveGridSheet(
            kHematologia,
            {{QStringLiteral("B1"), QStringLiteral("4.8")}, {QStringLiteral("B2"), QStringLiteral("14.2")},
             {QStringLiteral("B3"), QStringLiteral("43")}, {QStringLiteral("E1"), QStringLiteral("7500")},
             {QStringLiteral("E2"), QStringLiteral("62")}},
            QStringLiteral("Muestra sin hemolisis"), *hemo);
        marcarImpresion(saved.formatId);
    }
    if (const auto glucose = picked(2, QStringLiteral("Glucosa en Ayunas")))
        sheets::saveGridSheet(kQuimica, {{QStringLiteral("B1"), QStringLiteral("92")}}, QString(),
                              *glucose);
}

}  // namespace tq
