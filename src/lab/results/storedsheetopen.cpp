#include "lab/results/storedsheetopen.h"

#include "foundation/base/appstate.h"
#include "foundation/data/amb1.h"
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

bool openStoredLine(const ChosenLine& line)
{
    state().idFormatoActual = line.formatId;

    // Whether it is paid and the age recorded on it, in one read.
    Recordset invoice;
    invoice.open(QStringLiteral("SELECT pagada, edad_paciente FROM Factura WHERE factura = ?"),
                 {line.factura});
    QString edad;
    if (invoice.recordCount() > 0) {
        const QVariant pagada = invoice.valueAt(0, 0);
        if (!pagada.isNull() && pagada.toInt() == 0 && !prompts().ask(kUnpaidQuestion))
            return false;
        edad = invoice.valueAt(0, 1).toString();
    }

    const sheets::StoredSheet sheet = sheets::readSheetById(line.formatId);
    sheets::showStoredSheet(sheet, {line.paciente, line.fecha, edad});
    return true;
}

}  // namespace tq::results
