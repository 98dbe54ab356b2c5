#include "billing/orders/orderreport.h"

#include "foundation/reports/report.h"

#include <QString>

namespace tq {

void showOrderReport(std::int32_t numero, QWidget* owner)
{
    ReportRun run;
    run.report = QStringLiteral("reporOrden");
    run.command = QStringLiteral("rsrorden");
    run.filter = QStringLiteral("Orden =") + QString::number(numero);
    run.heading = 25;
    run.show = ReportRun::Show::Modal;
    runReport(run, owner);
}

}  // namespace tq
