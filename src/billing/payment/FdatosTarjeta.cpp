#include "billing/payment/FdatosTarjeta.h"

#include "ui_FdatosTarjeta.h"

#include "billing/invoice/payment.h"
#include "foundation/base/values.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/prompt.h"
#include "foundation/ui/registry.h"
#include "foundation/ui/widgets.h"

TQ_REGISTER_SCREEN(FdatosTarjeta)

using namespace tq;

FdatosTarjeta::FdatosTarjeta(QWidget* parent)
    : QWidget(parent, Qt::Window), ui(std::make_unique<Ui::FdatosTarjeta>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("FdatosTarjeta"));
    setAttribute(Qt::WA_DeleteOnClose);
    makeAmountBox(ui->Text1);
    // Nothing counts as entered until "ok" accepts the box; closing it any
    // other way leaves the invoice without card details.
    cardDetails().entered = false;
    onClick(ui->Command1, QStringLiteral("aceptar los datos de la tarjeta"), [this] { ok(); });
}

FdatosTarjeta::~FdatosTarjeta() = default;

QString FdatosTarjeta::emptyIdentity() { return QStringLiteral("____-____-_____"); }

void FdatosTarjeta::ok()
{
    const auto refuse = [](const QString& text, QWidget* field) {
        prompts().message(text, Icon::Exclamation);
        field->setFocus();
    };
    if (ui->Text1->text().trimmed().isEmpty())
        return refuse(QStringLiteral("Debe ingresar el numero de Cargo"), ui->Text1);
    if (ui->Text2->text().trimmed().isEmpty())
        return refuse(QStringLiteral("Debe ingresar el Nombre de la persona"), ui->Text2);
    // Only the wholly empty mask is refused; a partly filled one passes.
    if (ui->MasK1->displayText() == emptyIdentity())
        return refuse(QStringLiteral("Debe ingresar el numero de Identidad"), ui->MasK1);

    // Read before anything is kept, so that a number out of range keeps nothing.
    const std::int32_t cargo = toInt32(ui->Text1->text());
    CardDetails& d = cardDetails();
    d.cargo = cargo;
    d.nombre = ui->Text2->text();
    d.identidad = ui->MasK1->displayText();
    d.entered = true;
    close();
}
