#include "lab/sheets/mdiquimica.h"

#include "ui_mdiquimica.h"

#include "foundation/ui/registry.h"
#include "lab/sheets/Form22.h"
#include "lab/templates.h"

TQ_REGISTER_SCREEN(mdiquimica)

mdiquimica::mdiquimica(QWidget* parent)
    : CorrectionGrid(tq::kQuimica, parent), ui(std::make_unique<Ui::mdiquimica>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("mdiquimica"));
    attachCorrection(*ui, Form22::kWidths);
}

mdiquimica::~mdiquimica() = default;
