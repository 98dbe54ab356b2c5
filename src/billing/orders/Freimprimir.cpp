#include "billing/orders/Freimprimir.h"

#include "ui_Freimprimir.h"

#include "billing/orders/orderreport.h"
#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/prompt.h"
#include "foundation/ui/registry.h"
#include "foundation/ui/widgets.h"

#include <QDynamicPropertyChangeEvent>
#include <QShortcut>
#include <cmath>

TQ_REGISTER_SCREEN(Freimprimir)

using namespace tq;

Freimprimir::Freimprimir(QWidget* parent)
    : QWidget(parent, Qt::Window), ui(std::make_unique<Ui::Freimprimir>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("Freimprimir"));
    setAttribute(Qt::WA_DeleteOnClose);
    makeAmountBox(ui->Text1);
    new QShortcut(QKeySequence(Qt::Key_Escape), this, this, &QWidget::close);
    connect(ui->Text1, &QLineEdit::returnPressed, ui->Command1, &QPushButton::click);
    onClick(ui->Command1, QStringLiteral("mostrar la orden"), [this] { aceptar(); });
    connect(ui->Command2, &QPushButton::clicked, this, &QWidget::close);
}

Freimprimir::~Freimprimir() = default;

bool Freimprimir::event(QEvent* e)
{
    if (e->type() == QEvent::DynamicPropertyChange
        && static_cast<QDynamicPropertyChangeEvent*>(e)->propertyName() == "reimprimir")
        setWindowTitle(property("reimprimir").toBool() ? QStringLiteral("Reimprimir Orden/Cotizacion")
                                                       : QStringLiteral("Imprimir Orden/Cotizacion"));
    return QWidget::event(e);
}

void Freimprimir::aceptar()
{
    const QString typed = ui->Text1->text().trimmed();
    auto refuse = [this](const QString& text) {
        prompts().message(text, Icon::Exclamation);
        ui->Text1->setFocus();
        ui->Text1->selectAll();
    };
    if (typed.isEmpty()) {
        refuse(QStringLiteral("Ingrese el numero de Orden/Cotizacion."));
        return;
    }
    // Read as typed numbers are ("12/5" is 12), held in 32 bits. A number with
    // decimals names no order: rounding it would show another one.
    const double value = Val(typed);
    if (std::fabs(value) > 2147483647.0) {
        refuse(QStringLiteral("El número de orden %1 es demasiado grande: los números de orden "
                              "llegan hasta 2147483647.")
                   .arg(typed));
        return;
    }
    const bool whole = value == std::floor(value);
    const std::int32_t numero = whole ? toInt32(value) : 0;
    if (!whole
        || !amb1().scalar(QStringLiteral("SELECT orden FROM orden WHERE orden = ?"), {numero}).isValid()) {
        refuse(QStringLiteral("No existe la Orden/Cotizacion número %1.").arg(typed));
        return;
    }
    showOrderReport(numero, this);
}
