#include "billing/payment/Fcobrar.h"

#include "ui_Fcobrar.h"

#include "foundation/base/values.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/prompt.h"
#include "foundation/ui/registry.h"
#include "foundation/ui/widgets.h"

#include <QEvent>
#include <cmath>

TQ_REGISTER_SCREEN(Fcobrar)

using namespace tq;

namespace {

// The most an amount box takes, in cents (999,999,999.99): the store keeps
// twelve digits with two decimals.
constexpr long long kMaxCents = 99999999999LL;

bool blank(const QLineEdit* box) { return box->text().trimmed().isEmpty(); }

// Whole cents of an amount already read from its "#.00" text: the sums and
// comparisons of "Guardar" are then exact, with no binary remainder
// ("0.10" + "0.20" is "0.30").
long long cents(double amount) { return std::llround(amount * 100.0); }

bool withinRange(double amount)
{
    return std::isfinite(amount) && std::fabs(amount) <= double(kMaxCents) / 100.0;
}

}  // namespace

Fcobrar::Fcobrar(QWidget* parent) : QWidget(parent, Qt::Window), ui(std::make_unique<Ui::Fcobrar>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("Fcobrar"));
    setAttribute(Qt::WA_DeleteOnClose);
    for (QLineEdit* box : {ui->Text2, ui->Text3, ui->Text4}) {
        makeAmountBox(box);
        box->installEventFilter(this);
    }
    onClick(ui->guardar, QStringLiteral("cobrar la factura"), [this] { guardar(); });
    onClick(ui->cancelar, QStringLiteral("limpiar los montos"), [this] { cancelar(); });
    onClick(ui->Command3, QStringLiteral("cerrar el cobro"), [this] { close(); });
}

Fcobrar::~Fcobrar() = default;

void Fcobrar::setTarget(PaymentTarget* target)
{
    m_target = target;
    m_total = 0;
    ui->Text1->clear();
    if (!target)
        return;
    // The total as the invoice shows it, and that text read back is the one
    // every comparison uses.
    const double total = Val(target->totalText());
    if (withinRange(total))
        ui->Text1->setText(money(total));
    m_total = Val(ui->Text1->text());
}

bool Fcobrar::eventFilter(QObject* watched, QEvent* event)
{
    // Leaving an amount box shows it as money; a blank box stays blank, and
    // a text no amount can be stays as typed for "Guardar" to refuse.
    if (event->type() == QEvent::FocusOut && ui
        && (watched == ui->Text2 || watched == ui->Text3 || watched == ui->Text4)) {
        auto* box = static_cast<QLineEdit*>(watched);
        if (blank(box))
            box->clear();
        else if (const double amount = Val(box->text()); withinRange(amount))
            box->setText(money(amount));
    }
    return QWidget::eventFilter(watched, event);
}

void Fcobrar::guardar()
{
    if (!m_target) {
        prompts().message(QStringLiteral("No hay ninguna factura que cobrar: el cobro se hace "
                                         "desde la factura, al guardarla."),
                          Icon::Exclamation);
        close();
        return;
    }

    // Each box as "#.00", blank as 0.
    struct Box {
        QLineEdit* box;
        const char* name;
        double amount = 0;
    };
    Box boxes[] = {{ui->Text2, "efectivo"}, {ui->Text3, "tarjeta"}, {ui->Text4, "cheque"}};
    for (Box& b : boxes) {
        if (blank(b.box)) {
            b.box->clear();
            continue;
        }
        const double amount = Val(b.box->text());
        QString refusal;
        if (!withinRange(amount))
            refusal = QStringLiteral("El monto en %1 es demasiado grande: no puede pasar de "
                                     "999999999.99.");
        else if (amount < 0)
            refusal = QStringLiteral("El monto en %1 no puede ser negativo.");
        if (!refusal.isEmpty()) {
            prompts().message(refusal.arg(QLatin1String(b.name)), Icon::Exclamation);
            b.box->setFocus();
            return;
        }
        b.box->setText(money(amount));
        b.amount = Val(b.box->text());
    }
    const double efectivo = boxes[0].amount, tarjeta = boxes[1].amount, cheque = boxes[2].amount;
    const long long sum = cents(cheque) + cents(efectivo) + cents(tarjeta);
    const long long total = cents(m_total);
    const bool cuotas = ui->Check1->isChecked();

    // Paid in full: exactly the total, no change is ever given. In
    // instalments: something always stays owing; nothing paid today is allowed.
    if (!cuotas && sum != total) {
        prompts().message(QStringLiteral("no coinciden los datos"), Icon::Exclamation);
        return;
    }
    if (cuotas && sum >= total) {
        prompts().message(QStringLiteral("el total no puede ser mayor"), Icon::Exclamation);
        return;
    }
    if (prompts().message(QStringLiteral("esta seguro de los datos "), Icon::Question,
                          QString::fromLatin1(kAppTitle), Buttons::YesNo)
        != Answer::Yes)
        return;

    Payment payment;
    payment.efectivo = efectivo;
    payment.tarjeta = tarjeta;
    payment.cheque = cheque;
    payment.pagado = cuotas ? double(sum) / 100.0 : 0;
    m_payment = payment;

    // Card details filled for an earlier press that did not end in a save
    // must not reach this one.
    cardDetails().entered = false;
    if (!blank(ui->Text3))
        openModal(QStringLiteral("FdatosTarjeta"));

    m_target->savePaid(payment, cuotas);
    close();
}

void Fcobrar::cancelar()
{
    ui->Text2->clear();
    ui->Text3->clear();
    ui->Text4->clear();
}
