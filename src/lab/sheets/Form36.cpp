#include "lab/sheets/Form36.h"

#include "ui_Form36.h"

#include "foundation/ui/registry.h"

TQ_REGISTER_SCREEN(Form36)

using namespace tq;

// Printing this page leaves its sheet on the pending list: only the blank
// page of the work table marks its lines printed.
Form36::Form36(QWidget* parent)
    : BlankPage({kBlankTemplate2, sheets::kBlankPage6Enters, false, false}, parent),
      ui(std::make_unique<Ui::Form36>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("Form36"));
    setUp(*ui);
}

Form36::~Form36() = default;
