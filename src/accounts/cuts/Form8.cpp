#include "accounts/cuts/Form8.h"

#include "ui_Form8.h"

#include "foundation/ui/registry.h"

TQ_REGISTER_SCREEN(Form8)

Form8::Form8(QWidget* parent) : PeriodScreen(parent)
{
    Ui::Form8 ui;
    ui.setupUi(this);
    setUpPeriod(ui.DT1, ui.DT2, ui.Command1, ui.Command2,
                {QStringLiteral("rsrcorte_Grouping"),
                 QStringLiteral("DataReport2"),
                 QStringLiteral("anulada =0 and "),
                 2,
                 QStringLiteral("Laprimera fecha no puede ser mayor que la segunda")});
}
