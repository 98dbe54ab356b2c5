#include "lab/results/historial.h"

#include "ui_historial.h"

#include "foundation/data/amb1.h"
#include "foundation/ui/registry.h"

TQ_REGISTER_SCREEN(historial)

namespace {
const QString kCommand = QStringLiteral("rsrepcambios");
}

historial::historial(QWidget* parent) : PeriodScreen(parent)
{
    Ui::historial ui;
    ui.setupUi(this);
    setUpPeriod(ui.DT1, ui.DT2, ui.Command1, ui.Command2,
                {kCommand,
                 QStringLiteral("DataReport22"),
                 QString(),
                 22,
                 QStringLiteral("Laprimera fecha no puede ser mayor que la segunda")});
}

tq::ReportRun historial::runFor(const QDate& from, const QDate& to) const
{
    // The log keeps bare days, so a period from one day to another takes
    // the corrections of both.
    tq::amb1().rs(kCommand).open(
        QStringLiteral("SELECT * FROM historialcambios WHERE fecha >= ? AND fecha <= ? "
                       "ORDER BY fecha"),
        {from, to});
    tq::ReportRun run = PeriodScreen::runFor(from, to);
    run.filter.clear();
    return run;
}
