#include "lab/sheets/mdihematologia.h"

#include "ui_mdihematologia.h"

#include "foundation/ui/registry.h"
#include "lab/sheets/Form20.h"
#include "lab/templates.h"

#include <QAction>
#include <QPushButton>

TQ_REGISTER_SCREEN(mdihematologia)

namespace tq::sheets {

QAction* CorrectionGrid::actionOf(QPushButton* button)
{
    auto* action = new QAction(button->text(), this);
    action->setToolTip(button->toolTip());
    connect(button, &QPushButton::clicked, action, &QAction::trigger);
    connect(action, &QAction::changed, button,
            [button, action] { button->setEnabled(action->isEnabled()); });
    return action;
}

QString CorrectionGrid::notStartedMessage() const
{
    return QStringLiteral("Esta hoja no se abrió desde la lista de boletas a modificar, así que "
                          "no se guardó ningún cambio.");
}

}  // namespace tq::sheets

mdihematologia::mdihematologia(QWidget* parent)
    : CorrectionGrid(tq::kHematologia, parent), ui(std::make_unique<Ui::mdihematologia>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("mdihematologia"));
    attachCorrection(*ui, Form20::kWidths);
}

mdihematologia::~mdihematologia() = default;
