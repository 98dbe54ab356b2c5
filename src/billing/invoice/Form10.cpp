#include "billing/invoice/Form10.h"

#include "ui_Form10.h"

#include "foundation/base/appstate.h"
#include "foundation/base/values.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/widgets.h"
#include "foundation/ui/prompt.h"
#include "foundation/ui/registry.h"

#include <map>

TQ_REGISTER_SCREEN(Form10)

using namespace tq;

namespace {

std::map<std::int16_t, ExtraTarget*>& targets()
{
    static std::map<std::int16_t, ExtraTarget*> t;
    return t;
}

// The highest percentage the box accepts; 99 itself is allowed.
constexpr double kMaxPercentage = 99;

}  // namespace

void tq::setExtraTarget(std::int16_t selector, ExtraTarget* target)
{
    if (target)
        targets()[selector] = target;
    else
        targets().erase(selector);
}

ExtraTarget* tq::extraTarget(std::int16_t selector)
{
    const auto it = targets().find(selector);
    return it == targets().end() ? nullptr : it->second;
}

Form10::Form10(QWidget* parent) : QWidget(parent, Qt::Window), ui(std::make_unique<Ui::Form10>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("Form10"));
    setAttribute(Qt::WA_DeleteOnClose);
    makeAmountBox(ui->Text1);
    // Enter in the box applies it.
    connect(ui->Text1, &QLineEdit::returnPressed, ui->Command1, &QPushButton::click);
    onClick(ui->Command1, QStringLiteral("aplicar el descuento o recargo"), [this] { aplicar(); });
}

Form10::~Form10() = default;

void Form10::aplicar()
{
    const double percentage = Val(ui->Text1->text());
    if (percentage > kMaxPercentage) {
        prompts().message(QStringLiteral("El descuento o recargo no puede ser mayor que le 99%"),
                          Icon::Exclamation, QStringLiteral("Descuento/Recargo"));
        ui->Text1->setFocus();
        return;
    }
    // A box opened for nobody, or for a document with no totals yet, only closes.
    ExtraTarget* target = nullptr;
    const std::int16_t selector = state().discountBoxFor;
    if (selector == 1 || selector == 2)
        target = extraTarget(selector);
    if (target && !target->subtotalText().trimmed().isEmpty()) {
        // Worked from the amounts as shown, so that the total is the sum of
        // what the user reads.
        const QString subtotal = money(Val(target->subtotalText()));
        const QString extra = money(Val(subtotal) * percentage / 100.0);
        const bool discount = ui->Option1->isChecked();
        const double total = discount ? Val(subtotal) - Val(extra) : Val(subtotal) + Val(extra);
        target->applyExtra(discount ? QStringLiteral("Descuento:") : QStringLiteral("Recargo:"),
                           extra, money(total));
    }
    close();
}
