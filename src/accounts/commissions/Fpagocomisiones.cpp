#include "accounts/commissions/Fpagocomisiones.h"

#include "ui_Fpagocomisiones.h"

#include "accounts/commissions/commissionpay.h"
#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/flexgrid.h"
#include "foundation/ui/mover.h"
#include "foundation/ui/prompt.h"
#include "foundation/ui/registry.h"
#include "foundation/ui/widgets.h"
#include "registers/doctors/doctorlist.h"

#include <QSet>
#include <QShortcut>
#include <QStyledItemDelegate>

TQ_REGISTER_SCREEN(Fpagocomisiones)

using namespace tq;

namespace {

enum Col { Numero, Fecha, Total, Comision };

// Amounts read from the right, as money is read down a column.
class RightAligned : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override
    {
        QStyledItemDelegate::initStyleOption(option, index);
        option->displayAlignment = Qt::AlignRight | Qt::AlignVCenter;
    }
};

void alignAmounts(FlexGrid* g)
{
    auto* right = new RightAligned(g);
    g->setItemDelegateForColumn(Total, right);
    g->setItemDelegateForColumn(Comision, right);
    g->setRows(1);
}

}  // namespace

Fpagocomisiones::Fpagocomisiones(QWidget* parent)
    : QWidget(parent, Qt::Window), ui(std::make_unique<Ui::Fpagocomisiones>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("Fpagocomisiones"));
    setAttribute(Qt::WA_DeleteOnClose);
    new QShortcut(QKeySequence(Qt::Key_Escape), this, this, &QWidget::close);
    makeListOnly(ui->Combo1);

    ui->Grid1->setColumns({{"NUMERO", 1000},
                           {"FECHA           ", 1400},
                           {"TOTAL           ", 1600},
                           {"COMISION      ", 1500}});
    ui->Grid2->setColumns({{"FACTURA", 1000},
                           {"FECHA          ", 1400},
                           {"TOTAL FAC       ", 1600},
                           {"COMISION      ", 1500}});
    alignAmounts(ui->Grid1);
    alignAmounts(ui->Grid2);
    ui->DT1->setDisplayFormat(QStringLiteral("dd/MM/yy"));
    ui->DT1->setCalendarPopup(true);
    ui->DT1->setDate(QDate::currentDate());

    // No ">>": each commission is paid on purpose, one by one.
    m_mover = new TwoListMover({ui->Grid1, ui->Grid2, ui->Command1, ui->Command2, nullptr,
                                ui->txttotal},
                               this);
    m_mover->setKeyColumns(Numero, Numero);
    m_mover->clearRight();

    connect(ui->Combo1, &QComboBox::activated, this, [this] {
        guarded(QStringLiteral("cargar las facturas del doctor"), [this] { chooseDoctor(); });
    });
    onClick(ui->Command3, QStringLiteral("pagar las comisiones"), [this] { pay(); });
    onClick(ui->Command4, QStringLiteral("limpiar la pantalla"), [this] { clearScreen(); });
    connect(ui->Command5, &QPushButton::clicked, this, &QWidget::close);

    clearScreen();
    guarded(QStringLiteral("cargar la lista de doctores"), [this] { loadDoctors(); });
}

Fpagocomisiones::~Fpagocomisiones() = default;

void Fpagocomisiones::loadDoctors()
{
    if (fillDoctors(ui->Combo1) == 0)
        prompts().message(QStringLiteral("no hay familias creadas"));
}

void Fpagocomisiones::chooseDoctor()
{
    m_mover->clearRight();
    ui->Grid1->setRows(1);
    if (ui->Combo1->currentIndex() < 0)
        return;
    m_doctor = toInt32(ui->Combo1->currentData());
    m_hasDoctor = true;
    if (!listPending()) {
        prompts().message(QStringLiteral("No hay facturas pendientes"));
        ui->txttotal->clear();
    }
}

bool Fpagocomisiones::listPending()
{
    const PendingCommissions p = pendingCommissions(m_doctor);
    ui->Label7->setText(QString::number(p.rate) + QLatin1Char('%'));
    FlexGrid* g = ui->Grid1;
    g->setRows(1);
    const int n = int(p.numeros.size());
    if (n == 0) {
        ui->Text1->clear();
        ui->Text2->clear();
        return false;
    }
    g->setRows(n + 1);
    g->setColumnTexts(Numero, p.numeros);
    g->setColumnTexts(Fecha, p.fechas);
    g->setColumnTexts(Total, p.totales);
    g->setColumnTexts(Comision, p.comisiones);
    ui->Text1->setText(currencyText(p.sumaTotales));
    ui->Text2->setText(currencyText(p.sumaComisiones));
    return true;
}

// Every invoice of the right list is paid in one save: all of them or none.
void Fpagocomisiones::pay()
{
    const FlexGrid* g = ui->Grid2;
    if (g->rows() < 2) {
        prompts().message(QStringLiteral("No hay facturas para pagar: pase primero a la lista de "
                                         "la derecha las facturas cuya comisión desea pagar."),
                          Icon::Exclamation);
        return;
    }
    if (prompts().message(QStringLiteral("Confirma el pago de las facturas"), Icon::Question,
                          QString::fromLatin1(kAppTitle), Buttons::YesNo)
        != Answer::Yes)
        return;
    QList<CommissionPayment> payments;
    for (int row = 1; row < g->rows(); ++row)
        payments << CommissionPayment{toInt32(g->textMatrix(row, Numero)),
                                      currencyValue(g->textMatrix(row, Comision))};
    try {
        payCommissions(payments, ui->DT1->date());
    } catch (const CommissionsAlreadyPaid& e) {
        // Nothing was paid; the user is told which ones went and pays the rest again.
        dropPaid(e.facturas());
        throw;
    }
    prompts().message(QStringLiteral("Las facturas se pagaron exitosamente"), Icon::Information);
    clearScreen();
}

void Fpagocomisiones::dropPaid(const QList<std::int32_t>& facturas)
{
    QSet<QString> paid;
    for (const std::int32_t n : facturas)
        paid.insert(QString::number(n));
    const FlexGrid* g = ui->Grid2;
    QList<QStringList> rest;
    for (int row = 1; row < g->rows(); ++row) {
        if (paid.contains(g->textMatrix(row, Numero)))
            continue;
        QStringList cells;
        for (int col = 0; col < g->cols(); ++col)
            cells << g->textMatrix(row, col);
        rest << cells;
    }
    if (m_hasDoctor)
        listPending();
    m_mover->clearRight();
    for (const QStringList& cells : rest)
        m_mover->appendRight(cells, true);
}

void Fpagocomisiones::clearScreen()
{
    m_mover->clearRight();
    ui->Grid1->setRows(1);
    ui->Text1->clear();
    ui->Text2->clear();
    ui->txttotal->clear();
    ui->Label7->setText(QStringLiteral("0%"));
    ui->Combo1->setCurrentIndex(-1);
    m_doctor = 0;
    m_hasDoctor = false;
}
