#include "billing/orders/FbuscarOrden.h"

#include "ui_FbuscarOrden.h"

#include "billing/orders/orderlist.h"
#include "billing/orders/orderpicker.h"
#include "foundation/base/appstate.h"
#include "foundation/base/values.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/flexgrid.h"
#include "foundation/ui/prompt.h"
#include "foundation/ui/registry.h"

#include <QShortcut>

TQ_REGISTER_SCREEN(FbuscarOrden)

using namespace tq;

namespace {

// The headers differ between the opening list and the two searches, blanks included.
const QStringList kLoadHeaders = {QStringLiteral("ORDEN   "), QStringLiteral("          FECHA"),
                                  QStringLiteral("     CLIENTE")};
const QStringList kNumberHeaders = {QStringLiteral("ORDEN   "), QStringLiteral("  FECHA"),
                                    QStringLiteral("  CLIENTE")};
const QStringList kDateHeaders = {QStringLiteral("COTIZACION"), QStringLiteral("  FECHA"),
                                  QStringLiteral("  CLIENTE")};

// The selector value of the invoice screen.
constexpr std::int16_t kServingInvoice = 1;

}  // namespace

namespace tq {

std::optional<std::int32_t> chooseOrder()
{
    // The selector is the invoice's while the search is open, and back after.
    struct Selector {
        std::int16_t before = state().clientPicker;
        ~Selector() { state().clientPicker = before; }
    } selector;
    state().clientPicker = kServingInvoice;

    std::optional<std::int32_t> chosen;
    openModal(QStringLiteral("FbuscarOrden"), [&chosen](QWidget* w) {
        if (auto* search = qobject_cast<FbuscarOrden*>(w))
            search->serve([&chosen](std::int32_t n) { chosen = n; });
    });
    return chosen;
}

}  // namespace tq

FbuscarOrden::FbuscarOrden(QWidget* parent)
    : QWidget(parent, Qt::Window), ui(std::make_unique<Ui::FbuscarOrden>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("FbuscarOrden"));
    setAttribute(Qt::WA_DeleteOnClose);
    new QShortcut(QKeySequence(Qt::Key_Escape), this, this, &QWidget::close);

    ui->Grid1->setColumns({{"ORDEN   ", 1300}, {"          FECHA", 1600}, {"     CLIENTE", 4600}});
    const QDate today = QDate::currentDate();
    ui->DT1->setDate(today);
    ui->DT2->setDate(today);

    connect(ui->Option1, &QRadioButton::toggled, this, [this] { elegirModo(); });
    connect(ui->Option2, &QRadioButton::toggled, this, [this] { elegirModo(); });
    connect(ui->Textb, &QLineEdit::textChanged, this,
            [this] { guarded(QStringLiteral("buscar las ordenes"), [this] { porNumero(); }); });
    onClick(ui->Command1, QStringLiteral("buscar las ordenes"), [this] { porFecha(); });

    const QList<std::pair<QRadioButton*, OrderColumn>> sorts = {
        {ui->Option3, OrderNumber}, {ui->Option4, OrderClient}, {ui->Option5, OrderDate}};
    // A click sorts again even when the option was already on: a search may
    // have brought the rows back in number order meanwhile.
    for (const auto& [option, column] : sorts)
        connect(option, &QRadioButton::clicked, this,
                [this, column = column] { sortOrders(ui->Grid1, column); });

    connect(ui->Grid1, &FlexGrid::rowChosen, this, [this](int row) {
        guarded(QStringLiteral("elegir la orden"), [this, row] { elegir(row); });
    });

    elegirModo();
    guarded(QStringLiteral("cargar las ordenes pendientes"), [this] { cargar(); });
}

FbuscarOrden::~FbuscarOrden() = default;

void FbuscarOrden::serve(std::function<void(std::int32_t)> chosen) { m_chosen = std::move(chosen); }

void FbuscarOrden::cargar()
{
    const OrderRows rows = pendingOrders();
    showOrders(ui->Grid1, rows, kLoadHeaders);
    if (rows.size() == 0)
        prompts().message(QStringLiteral("No hay ordenes pendientes"));
}

// Each key typed narrows the list; the number searched is the start of the
// order's number.
void FbuscarOrden::porNumero()
{
    showOrders(ui->Grid1, pendingOrdersNumbered(ui->Textb->text()), kNumberHeaders);
}

void FbuscarOrden::porFecha()
{
    const QDate from = ui->DT1->date();
    const QDate to = ui->DT2->date();
    if (from > to) {
        prompts().message(QStringLiteral("Laprimera fecha no puede ser mayor que la segunda"));
        ui->DT1->setFocus();
        return;
    }
    const OrderRows rows = pendingOrdersBetween(from, to);
    showOrders(ui->Grid1, rows, kDateHeaders);
    if (rows.size() == 0)
        prompts().message(QStringLiteral("no hay ordenes para esa fecha"));
}

// The way of searching chosen opens its own fields and closes the other's.
void FbuscarOrden::elegirModo()
{
    const bool byNumber = ui->Option1->isChecked();
    ui->Textb->setEnabled(byNumber);
    ui->DT1->setEnabled(!byNumber);
    ui->DT2->setEnabled(!byNumber);
    ui->Command1->setEnabled(!byNumber);
}

void FbuscarOrden::elegir(int row)
{
    if (!m_chosen || state().clientPicker != kServingInvoice)
        return;
    if (row < 1 || row >= ui->Grid1->rows())
        return;
    const QString numero = ui->Grid1->textMatrix(row, OrderNumber);
    if (numero.isEmpty())
        return;
    m_chosen(toInt32(numero));
    close();
}
