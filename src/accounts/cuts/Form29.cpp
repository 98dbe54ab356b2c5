#include "accounts/cuts/Form29.h"

#include "ui_Form29.h"

#include "foundation/ui/registry.h"

TQ_REGISTER_SCREEN(Form29)

Form29::Form29(QWidget* parent) : PeriodScreen(parent)
{
    Ui::Form29 ui;
    ui.setupUi(this);
    setUpPeriod(ui.DT1, ui.DT2, ui.Command1, ui.Command2,
                {QStringLiteral("rsRepFacgan"),
                 QStringLiteral("DataReport10"),
                 QStringLiteral("anulada=0 and "),
                 10,
                 QStringLiteral("La primera fecha no puede ser mayor que la segunda")});
}
