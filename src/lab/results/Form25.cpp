#include "lab/results/Form25.h"

#include "ui_Form25.h"

#include "foundation/data/amb1.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/prompt.h"
#include "foundation/ui/registry.h"
#include "lab/results/storedsheetopen.h"
#include "lab/sheets.h"
#include "lab/sheets/opensheet.h"

TQ_REGISTER_SCREEN(Form25)

using namespace tq;
using namespace tq::results;

namespace {

// Spelled so on this screen alone.
const QString kUnpaid =
    QStringLiteral("La factura aun no ha sido cancelada en su totalidad. decea continuar");

}  // namespace

Form25::Form25(QWidget* parent) : InvoiceSheetList(parent), ui(std::make_unique<Ui::Form25>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("Form25"));
    attachList(ui->Text1, ui->Grid1, ui->Command4);
    // The invoice search only shows the invoices; the number is typed here.
    onClick(ui->Command2, QStringLiteral("abrir la búsqueda de facturas"),
            [] { openModal(QStringLiteral("Form9")); });
}

Form25::~Form25() = default;

void Form25::open(const ListedSheet& listed)
{
    std::optional<QString> edad = QString();
    if (!facturaBox()->text().isEmpty())
        edad = ageUnlessDeclined(listed.factura, kUnpaid);
    if (!edad)
        return;
    sheets::StoredHeading heading = headingOf(listed.factura);
    heading.edad = *edad;
    const sheets::StoredSheet sheet =
        sheets::readSheet(listed.factura, listed.numFormato, listed.codPlantilla);
    sheets::showStoredSheet(sheet, heading);
}
