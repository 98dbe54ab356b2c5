#include "accounts/cuts/Fcorteventastarjeta.h"

#include "ui_Fcorteventastarjeta.h"

#include "foundation/ui/registry.h"

TQ_REGISTER_SCREEN(Fcorteventastarjeta)

Fcorteventastarjeta::Fcorteventastarjeta(QWidget* parent) : PeriodScreen(parent)
{
    Ui::Fcorteventastarjeta ui;
    ui.setupUi(this);
    setUpPeriod(ui.DT1, ui.DT2, ui.Command1, ui.Command2,
                {QStringLiteral("rsrepventastarjeta_Grouping"),
                 QStringLiteral("ReporVentasTarjeta"),
                 QString(),
                 23,
                 QStringLiteral("La primera fecha no puede ser mayor que la segunda")});
}
