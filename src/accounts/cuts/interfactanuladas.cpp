#include "accounts/cuts/interfactanuladas.h"

#include "ui_interfactanuladas.h"

#include "foundation/ui/registry.h"

TQ_REGISTER_SCREEN(interfactanuladas)

interfactanuladas::interfactanuladas(QWidget* parent) : PeriodScreen(parent)
{
    Ui::interfactanuladas ui;
    ui.setupUi(this);
    setUpPeriod(ui.DT1, ui.DT2, ui.Command1, ui.Command2,
                {QStringLiteral("rsfactanuladas"),
                 QStringLiteral("DataReport23"),
                 QStringLiteral("anulada =1 and "),
                 24,
                 QStringLiteral("Laprimera fecha no puede ser mayor que la segunda")});
}
