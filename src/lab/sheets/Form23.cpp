#include "lab/sheets/Form23.h"

#include "ui_Form23.h"

#include "foundation/ui/registry.h"

#include <QLabel>
#include <QLineEdit>

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
    QStringList texts;
    for (const QLineEdit* box : textBoxes())
        texts << box->text();
    return texts;
}

void Form23::fillStored(const StoredSheet& sheet)
{
    const QStringList values = parasitologyFields(sheet);
    const QList<QLineEdit*> boxes = textBoxes();
    for (int i = 0; i < boxes.size(); ++i)
        boxes.at(i)->setText(values.value(i));
}

void Form23::lockStored()
{
    SheetScreen::lockStored();
    for (QLineEdit* box : textBoxes())
        box->setReadOnly(true);
}

tq::corrections::Saved Form23::storeCorrection(const tq::corrections::Target& target,
                                               const QString& descripcion)
{
    return tq::corrections::saveParasitology(target, descripcion, fields());
}

QList<QLineEdit*> Form23::textBoxes() const
{
    return {ui->Text1, ui->Text2, ui->Text3, ui->Text4, ui->Text5,
            ui->Text6, ui->Text7, ui->Text8, ui->Text9, ui->Text10};
}

SavedSheet Form23::store(const SheetContext& context)
{
    return saveParasitology(fields(), context);
}
