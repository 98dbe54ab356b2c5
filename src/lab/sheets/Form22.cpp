#include "lab/sheets/Form22.h"

#include "ui_Form22.h"

#include "foundation/ui/registry.h"

TQ_REGISTER_SCREEN(Form22)

Form22::Form22(QWidget* parent)
    : GridSheet(tq::kQuimica, parent), ui(std::make_unique<Ui::Form22>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("Form22"));
    attachGrid(ui->pagina, ui->Grid1, ui->Text1, kWidths,
               {ui->guardar, ui->imprimir, ui->pdf, ui->pdfArchivo, ui->salir});
}

Form22::~Form22() = default;
