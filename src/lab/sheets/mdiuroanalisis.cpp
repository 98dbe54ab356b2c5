#include "lab/sheets/mdiuroanalisis.h"

#include "ui_mdiuroanalisis.h"

#include "foundation/ui/registry.h"
#include "lab/sheets/Form21.h"
#include "lab/templates.h"

TQ_REGISTER_SCREEN(mdiuroanalisis)

mdiuroanalisis::mdiuroanalisis(QWidget* parent)
    : CorrectionGrid(tq::kUroanalisis, parent), ui(std::make_unique<Ui::mdiuroanalisis>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("mdiuroanalisis"));
    attachCorrection(*ui, Form21::kWidths);
}

mdiuroanalisis::~mdiuroanalisis() = default;
