#include "accounts/receivables/insurerreport.h"

#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/reports/report.h"
#include "foundation/reports/daterange.h"
#include "foundation/ui/prompt.h"

#include <QComboBox>

namespace tq {

void fillInsurerCombo(QComboBox* combo)
{
    combo->clear();
    combo->addItem(QStringLiteral(">>>Seleccione una<<<"));
    Recordset rs;
    rs.open(QStringLiteral("SELECT Cod_Seguro, Empresa FROM seguros ORDER BY Cod_Seguro"));
    for (rs.moveFirst(); !rs.eof(); rs.moveNext()) {
        const std::int32_t code = toInt32(rs.field(QStringLiteral("Cod_Seguro")));
        combo->addItem(QString::number(code) + QStringLiteral("   ")
                           + rs.text(QStringLiteral("Empresa")),
                       code);
    }
    combo->setCurrentIndex(0);
}

bool runInsurerReport(QComboBox* combo, ReportRun run, QWidget* screen)
{
    const QVariant code = combo->currentData();
    if (combo->currentIndex() <= 0 || !code.isValid()) {
        if (!prompts().ask(
                QStringLiteral("No ha seleccionado empresa, desea ver el reporte en general?")))
            return false;
        run.filter.clear();
    } else {
        run.filter = QStringLiteral("Cod_Seguro =") + QString::number(toInt32(code));
    }
    runReport(run, reportOwner(screen));
    return true;
}

}  // namespace tq
