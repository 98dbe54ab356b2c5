#include "lab/results/menucambio.h"

#include "ui_menucambio.h"

#include "foundation/ui/registry.h"
#include "foundation/ui/widgets.h"

TQ_REGISTER_SCREEN(menucambio)

using namespace tq;

menucambio::menucambio(QWidget* parent)
    : QWidget(parent, Qt::Window), ui(std::make_unique<Ui::menucambio>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("menucambio"));
    setAttribute(Qt::WA_DeleteOnClose);
    makeListOnly(ui->Combo1);
    ui->Combo1->setCurrentIndex(-1);   // the prompt shows until a reason is chosen
    connect(ui->Combo1, &QComboBox::currentIndexChanged, this, &menucambio::chosen);
}

menucambio::~menucambio() = default;

void menucambio::takeFocus()
{
    raise();
    activateWindow();
    ui->Combo1->setFocus();
}

QString menucambio::descripcion() const { return ui->Text1->toPlainText(); }

void menucambio::chosen(int index)
{
    if (index < 0)
        return;
    ui->Text1->setPlainText(QStringLiteral("El usuario modifico el formato de resultado por ")
                            + ui->Combo1->itemText(index));
}
