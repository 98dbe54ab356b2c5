#include "billing/printing/FImpresion.h"

#include "ui_FImpresion.h"

#include "billing/search/invoicenumber.h"
#include "billing/search/voiding.h"
#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/reports/report.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/prompt.h"
#include "foundation/ui/registry.h"
#include "foundation/ui/widgets.h"

TQ_REGISTER_SCREEN(FImpresion)

using namespace tq;

FImpresion::FImpresion(QWidget* parent)
    : QWidget(parent, Qt::Window), ui(std::make_unique<Ui::FImpresion>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("FImpresion"));
    setAttribute(Qt::WA_DeleteOnClose);
    makeAmountBox(ui->Text1);
    connect(ui->Text1, &QLineEdit::returnPressed, ui->Command1, &QPushButton::click);
    onClick(ui->Command1, QStringLiteral("imprimir la factura"), [this] { aceptar(); });
    connect(ui->Command2, &QPushButton::clicked, this, [this] {
        ui->Text1->clear();
        ui->Text1->setFocus();
    });
    connect(ui->Command3, &QPushButton::clicked, this, &QWidget::close);
}

FImpresion::~FImpresion() = default;

void FImpresion::aceptar()
{
    const QString typed = ui->Text1->text().trimmed();
    if (typed.isEmpty()) {
        prompts().message(QStringLiteral("Ingrese el numero de factura"));
        ui->Text1->setFocus();
        return;
    }
    const std::optional<std::int32_t> typedNumber = typedInvoiceNumber(typed);
    const std::int32_t numero = typedNumber.value_or(0);

    Recordset& factura = amb1().rs(QStringLiteral("rsFactura"));
    if (factura.isOpen())
        factura.close();
    factura.open(QStringLiteral("SELECT * FROM factura WHERE factura = ?"), {numero});
    if (!typedNumber || factura.recordCount() == 0) {
        prompts().message(QStringLiteral("el numero de factura no existe verifique el dato"));
        ui->Text1->setFocus();
        return;
    }
    // The footer line names the extra: "Descuento", "Recargo", or "Otros" without one.
    QString caption = factura.text(QStringLiteral("adicional")).trimmed();
    if (caption.isEmpty())
        caption = QStringLiteral("Otros");
    factura.close();

    const QString filter = QStringLiteral("factura =") + QString::number(numero);
    if (!openInvoiceCopy(numero)) {
        ReportRun run;
        run.command = QStringLiteral("rsrfact1");
        run.filter = filter;
        run.show = ReportRun::Show::Printer;
        if (ui->Option1->isChecked()) {
            run.report = QStringLiteral("DataReport20");
            run.heading = 20;
            run.captions.insert(QStringLiteral("Etiqueta3"), caption);
        } else {
            run.report = QStringLiteral("DataReport1");
            run.heading = 1;
            run.captions.insert(QStringLiteral("Etiqueta14"), caption);
        }
        runReport(run, this);
    } else {
        // A voided invoice can be looked at, not printed, and not voided again from here.
        showVoidingBox(numero, true, false);
    }
    close();
}
