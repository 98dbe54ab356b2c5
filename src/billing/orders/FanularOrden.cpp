#include "billing/orders/FanularOrden.h"

#include "ui_FanularOrden.h"

#include "billing/orders/orderlist.h"
#include "billing/orders/ordersave.h"
#include "foundation/base/appstate.h"
#include "foundation/base/values.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/flexgrid.h"
#include "foundation/ui/mover.h"
#include "foundation/ui/prompt.h"
#include "foundation/ui/registry.h"

#include <QShortcut>

TQ_REGISTER_SCREEN(FanularOrden)

using namespace tq;

namespace {

const QStringList kHeaders = {QStringLiteral("NUMERO"), QStringLiteral("FECHA        "),
                              QStringLiteral("              CLIENTE                ")};

void setUpGrid(FlexGrid* g)
{
    g->setColumns({{"NUMERO", 900}, {"FECHA        ", 1300}, {"              CLIENTE                ", 3400}});
    g->setRows(1);
}

}  // namespace

FanularOrden::FanularOrden(QWidget* parent)
    : QWidget(parent, Qt::Window), ui(std::make_unique<Ui::FanularOrden>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("FanularOrden"));
    setAttribute(Qt::WA_DeleteOnClose);
    new QShortcut(QKeySequence(Qt::Key_Escape), this, this, &QWidget::close);
    setUpGrid(ui->Grid1);
    setUpGrid(ui->Grid2);

    // No ">>": every order is moved on purpose, one by one.
    m_mover = new TwoListMover({ui->Grid1, ui->Grid2, ui->Command1, ui->Command2, nullptr,
                                ui->txttotal},
                               this);
    m_mover->setKeyColumns(OrderNumber, OrderNumber);
    m_mover->clearRight();

    const QList<std::pair<QRadioButton*, OrderColumn>> sorts = {
        {ui->Option1, OrderNumber}, {ui->Option2, OrderClient}, {ui->Option3, OrderDate}};
    for (const auto& [option, column] : sorts)
        connect(option, &QRadioButton::clicked, this,
                [this, column = column] { sortOrders(ui->Grid1, column); });

    onClick(ui->Command3, QStringLiteral("cancelar las ordenes"), [this] { cancelar(); });
    connect(ui->Command4, &QPushButton::clicked, this, [this] { m_mover->clearRight(); });
    connect(ui->Command5, &QPushButton::clicked, this, &QWidget::close);

    guarded(QStringLiteral("cargar las ordenes pendientes"), [this] {
        if (!cargar())
            prompts().message(QStringLiteral("No hay Ordenes pendientes"));
    });
}

FanularOrden::~FanularOrden() = default;

bool FanularOrden::cargar()
{
    const OrderRows rows = pendingOrders();
    showOrders(ui->Grid1, rows, kHeaders);
    return rows.size() > 0;
}

// Every order of the right list is cancelled in one save: all of them or,
// when the store fails, none.
void FanularOrden::cancelar()
{
    const FlexGrid* g = ui->Grid2;
    if (g->rows() < 2) {
        prompts().message(QStringLiteral("No hay ordenes para cancelar: pase primero a la lista "
                                         "de la derecha las ordenes que desea cancelar."),
                          Icon::Exclamation);
        return;
    }
    if (prompts().message(QStringLiteral("Confirma la cancelacion de las Ordenes"), Icon::Question,
                          QString::fromLatin1(kAppTitle), Buttons::YesNo)
        != Answer::Yes)
        return;
    QList<std::int32_t> numeros;
    for (int row = 1; row < g->rows(); ++row)
        numeros << toInt32(g->textMatrix(row, OrderNumber));
    const int closed = closeOrders(numeros, state().currentUser);

    QString done = QStringLiteral("Las Ordenes se cancelaron exitosamente");
    // Another station may have cancelled or billed some of them meanwhile.
    const qsizetype left = numeros.size() - closed;
    if (left == 1)
        done += QStringLiteral(". Una de ellas ya no estaba pendiente y quedó como estaba.");
    else if (left > 1)
        done += QStringLiteral(". %1 de ellas ya no estaban pendientes y quedaron como estaban.")
                    .arg(left);
    prompts().message(done, Icon::Information);
    m_mover->clearRight();
    cargar();
}
