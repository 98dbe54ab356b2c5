#include "lab/sheets/Form21.h"

#include "ui_Form21.h"

#include "foundation/ui/registry.h"

TQ_REGISTER_SCREEN(Form21)

Form21::Form21(QWidget* parent)
    : GridSheet(tq::kUroanalisis, parent), ui(std::make_unique<Ui::Form21>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("Form21"));
    attachGrid(ui->pagina, ui->Grid1, ui->Text1, kWidths,
               {ui->guardar, ui->imprimir, ui->pdf, ui->pdfArchivo, ui->salir});
}

Form21::~Form21() = default;
