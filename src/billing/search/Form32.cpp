#include "billing/search/Form32.h"

#include "ui_Form32.h"

#include "billing/search/Form31.h"
#include "billing/search/invoicenumber.h"
#include "foundation/data/amb1.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/prompt.h"
#include "foundation/ui/registry.h"
#include "foundation/ui/widgets.h"

TQ_REGISTER_SCREEN(Form32)

using namespace tq;

Form32::Form32(QWidget* parent) : QWidget(parent, Qt::Window), ui(std::make_unique<Ui::Form32>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("Form32"));
    setAttribute(Qt::WA_DeleteOnClose);
    makeAmountBox(ui->Text1);
    connect(ui->Text1, &QLineEdit::returnPressed, ui->Command1, &QPushButton::click);
    onClick(ui->Command1, QStringLiteral("mostrar la factura"), [this] { mostrar(); });
    connect(ui->Command2, &QPushButton::clicked, this, &QWidget::close);
}

Form32::~Form32() = default;

void Form32::mostrar()
{
    if (ui->Text1->text().trimmed().isEmpty()) {
        prompts().message(QStringLiteral("Ingrese el numero de factura"));
        ui->Text1->setFocus();
        return;
    }
    const std::optional<std::int32_t> numero = typedInvoiceNumber(ui->Text1->text());
    if (!numero) {
        ui->Text1->setFocus();
        return;
    }
    Recordset& rs = amb1().rs(QStringLiteral("rsrfact1"));
    if (rs.isOpen())
        rs.close();
    rs.open();
    rs.setFilter(QStringLiteral("factura=") + QString::number(*numero));
    if (rs.recordCount() == 0) {
        prompts().message(QStringLiteral("El numero de Factura no existe"));
        ui->Text1->setFocus();
        return;
    }
    rs.moveFirst();
    const bool anulada = rs.field(QStringLiteral("anulada")).toBool();
    Form31::showInvoice(*numero, anulada, true);
    close();
}
