#include "billing/search/Form12.h"

#include "ui_Form12.h"

#include "foundation/data/amb1.h"
#include "foundation/ui/datagrid.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/registry.h"

#include <QShortcut>

TQ_REGISTER_SCREEN(Form12)

using namespace tq;

namespace {

Recordset& lines() { return amb1().rs(QStringLiteral("rsDetallefact")); }

}  // namespace

Form12::Form12(QWidget* parent) : QWidget(parent, Qt::Window), ui(std::make_unique<Ui::Form12>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("Form12"));
    setAttribute(Qt::WA_DeleteOnClose);
    new QShortcut(QKeySequence(Qt::Key_Escape), this, this, &QWidget::close);
    guarded(QStringLiteral("mostrar los exámenes de la factura"), [this] {
        // Opened on its own, with no invoice chosen, it shows none.
        if (lines().isOpen() && !lines().filter().isEmpty())
            ui->DataGrid1->bind(lines());
    });
}

Form12::~Form12()
{
    guarded(QStringLiteral("quitar el filtro de los detalles de factura"),
            [] { lines().setFilter(QString()); });
}
