#include "lab/results/storedsheetopen.h"

#include "foundation/base/appstate.h"
#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/ui/flexgrid.h"
#include "foundation/ui/prompt.h"
#include "lab/sheets.h"
#include "lab/sheets/gridsheet.h"
#include "lab/sheets/opensheet.h"

namespace tq::results {

QColor unprintedColour()
{
    constexpr int vb = 2027687;
    return QColor(vb & 0xff, (vb >> 8) & 0xff, (vb >> 16) & 0xff);
}

std::optional<ChosenLine> lineAt(const FlexGrid* grid, int row, int idCol)
{
    if (row < 1 || row >= grid->rows() || grid->textMatrix(row, 0).isEmpty())
        return std::nullopt;
    ChosenLine line;
    line.factura = toInt32(grid->textMatrix(row, 0));
    line.fecha = grid->textMatrix(row, 1);
    line.formatId = toInt32(grid->textMatrix(row, idCol));
    return line;
}

std::optional<QString> ageUnlessDeclined(std::int32_t factura, const QString& question)
{
    // Whether it is paid and the age recorded on it, in one read.
    Recordset invoice;
    invoice.open(QStringLiteral("SELECT pagada, edad_paciente FROM Factura WHERE factura = ?"),
                 {factura});
    if (invoice.recordCount() == 0)
        return QString();
    const QVariant pagada = invoice.valueAt(0, 0);
    if (!pagada.isNull() && pagada.toInt() == 0 && !prompts().ask(question))
        return std::nullopt;
    return invoice.valueAt(0, 1).toString();
}

bool openStoredLine(const ChosenLine& line)
{
    state().idFormatoActual = line.formatId;
    const std::optional<QString> edad = ageUnlessDeclined(line.factura, kUnpaidQuestion);
    if (!edad)
        return false;
    const sheets::StoredSheet sheet = sheets::readSheetById(line.formatId);
    sheets::showStoredSheet(sheet, {line.paciente, line.fecha, *edad});
    return true;
}

}  // namespace tq::results
