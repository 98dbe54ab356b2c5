#include "lab/sheets/Form20.h"

#include "ui_Form20.h"

#include "foundation/ui/registry.h"

TQ_REGISTER_SCREEN(Form20)

Form20::Form20(QWidget* parent)
    : GridSheet(tq::kHematologia, parent), ui(std::make_unique<Ui::Form20>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("Form20"));
    attachGrid(ui->pagina, ui->Grid1, ui->Text1, kWidths,
               {ui->guardar, ui->imprimir, ui->pdf, ui->pdfArchivo, ui->salir});
}

Form20::~Form20() = default;
