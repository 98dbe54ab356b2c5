#include "billing/invoice/Form10.h"

#include "ui_Form10.h"

#include "foundation/base/appstate.h"
#include "foundation/base/values.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/prompt.h"
#include "foundation/ui/registry.h"

#include <QKeyEvent>
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
    ui->Text1->installEventFilter(this);
    onClick(ui->Command1, QStringLiteral("aplicar el descuento o recargo"), [this] { aplicar(); });
}

Form10::~Form10() = default;

bool Form10::eventFilter(QObject* watched, QEvent* event)
{
    if (watched != ui->Text1 || event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    auto* key = static_cast<QKeyEvent*>(event);
    switch (key->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        ui->Command1->click();
        return true;
    case Qt::Key_Backspace:
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Home:
    case Qt::Key_End:
    case Qt::Key_Delete:
        return false;
    default:
        break;
    }
    if (key->modifiers() & Qt::ControlModifier)
        return false;   // select all, copy, paste
    // Digits, the point and "/" pass; any other character is dropped.
    const QString text = key->text();
    if (text.size() == 1
        && (text[0].isDigit() || text[0] == QLatin1Char('.') || text[0] == QLatin1Char('/'))
        && text[0].unicode() < 128)
        return false;
    return true;
}

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
