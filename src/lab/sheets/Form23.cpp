#include "lab/sheets/Form23.h"

#include "ui_Form23.h"

#include "foundation/ui/registry.h"

#include <QLabel>

TQ_REGISTER_SCREEN(Form23)

using namespace tq::sheets;

Form23::Form23(QWidget* parent)
    : SheetScreen(tq::kParasitologia, parent), ui(std::make_unique<Ui::Form23>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("Form23"));
    // The captions are those the stored cells are known by elsewhere.
    const QStringList& captions = parasitologyCaptions();
    for (int i = 0; i < captions.size(); ++i)
        if (auto* caption = findChild<QLabel*>(QStringLiteral("Label%1").arg(i + 4)))
            caption->setText(captions.at(i));
    attach(ui->pagina, {ui->guardar, ui->imprimir, ui->pdf, ui->pdfArchivo, ui->salir});
}

Form23::~Form23() = default;

QStringList Form23::fields() const
{
    return {ui->Text1->text(), ui->Text2->text(), ui->Text3->text(), ui->Text4->text(),
            ui->Text5->text(), ui->Text6->text(), ui->Text7->text(), ui->Text8->text(),
            ui->Text9->text(), ui->Text10->text()};
}

SavedSheet Form23::store(const SheetContext& context)
{
    return saveParasitology(fields(), context);
}
