#include "billing/payment/Form13.h"

#include "ui_Form13.h"

#include "foundation/base/appstate.h"
#include "frame/frame.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/registry.h"

TQ_REGISTER_SCREEN(Form13)

using namespace tq;

Form13::Form13(QWidget* parent) : QWidget(parent, Qt::Window), ui(std::make_unique<Ui::Form13>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("Form13"));
    setAttribute(Qt::WA_DeleteOnClose);
    const QString what = QStringLiteral("abrir la factura");
    onClick(ui->Command1, what, [this] { choose(QStringLiteral("efectivo")); });
    onClick(ui->Command2, what, [this] { choose(QStringLiteral("Credito")); });
    onClick(ui->Command3, what, [this] { choose(QStringLiteral("Cheque")); });
}

Form13::~Form13() = default;

void Form13::choose(const QString& kind)
{
    // The invoice reads the kind when it loads, to colour its caption.
    state().tipoPago = kind;
    if (!openInvoiceOnPanel(false)) {
        if (QWidget* invoice = ScreenRegistry::instance().create(QStringLiteral("factura3"))) {
            invoice->setAttribute(Qt::WA_DeleteOnClose);
            invoice->show();
        } else {
            notBuiltNotice(QStringLiteral("factura3"));
        }
    }
    close();
}
