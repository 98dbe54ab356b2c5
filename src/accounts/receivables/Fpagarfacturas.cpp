#include "accounts/receivables/Fpagarfacturas.h"

#include "ui_Fpagarfacturas.h"

#include "accounts/receivables/settlement.h"
#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/flexgrid.h"
#include "foundation/ui/mover.h"
#include "foundation/ui/prompt.h"
#include "foundation/ui/registry.h"
#include "foundation/ui/widgets.h"

#include <QSet>
#include <QShortcut>

TQ_REGISTER_SCREEN(Fpagarfacturas)

using namespace tq;

namespace {

enum Col { Factura, Paciente, Valor, Fecha };

// The payment's own messages go out under the laboratory's short title.
const QString kTitle = QStringLiteral("LAB");

void setUpGrid(FlexGrid* g)
{
    g->setColumns({{"FACTURA", 1000},
                   {"PACIENTE                ", 3200},
                   {"VALOR    ", 1100},
                   {"FECHA       ", 1200}});
    g->setRows(1);
}

}  // namespace

Fpagarfacturas::Fpagarfacturas(QWidget* parent)
    : QWidget(parent, Qt::Window), ui(std::make_unique<Ui::Fpagarfacturas>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("Fpagarfacturas"));
    setAttribute(Qt::WA_DeleteOnClose);
    new QShortcut(QKeySequence(Qt::Key_Escape), this, this, &QWidget::close);
    makeListOnly(ui->Combo1);
    setUpGrid(ui->Grid1);
    setUpGrid(ui->Grid2);
    ui->DT->setDisplayFormat(QStringLiteral("dd/MM/yy"));
    ui->DT->setCalendarPopup(true);
    ui->DT->setDate(QDate::currentDate());

    // ">" and "<" are the screen's own: each moves the running total too.
    m_mover = new TwoListMover({ui->Grid1, ui->Grid2, nullptr, nullptr, nullptr, ui->txttotal}, this);
    m_mover->setKeyColumns(Factura, Factura);
    m_mover->clearRight();
    connect(m_mover, &TwoListMover::rightChanged, this, [this] { m_rightPicked = false; });
    connect(ui->Grid2, &FlexGrid::rowChosen, this, [this] { m_rightPicked = true; });

    connect(ui->Combo1, &QComboBox::activated, this, [this] {
        guarded(QStringLiteral("cargar las facturas del seguro"), [this] { loadInvoices(); });
    });
    onClick(ui->Command1, QStringLiteral("agregar la factura a la lista"), [this] { addOne(); });
    onClick(ui->Command2, QStringLiteral("quitar la factura de la lista"), [this] { removeOne(); });
    onClick(ui->Command3, QStringLiteral("registrar el pago de las facturas"), [this] { agregar(); });
    onClick(ui->Command4, QStringLiteral("limpiar la pantalla"), [this] { cancela(); });
    connect(ui->Command5, &QPushButton::clicked, this, &QWidget::close);

    guarded(QStringLiteral("cargar la lista de seguros"), [this] { loadInsurers(); });
}

Fpagarfacturas::~Fpagarfacturas() = default;

void Fpagarfacturas::loadInsurers()
{
    Recordset rs;
    rs.open(QStringLiteral("SELECT Cod_Seguro, Empresa FROM seguros ORDER BY Cod_Seguro"));
    ui->Combo1->clear();
    for (rs.moveFirst(); !rs.eof(); rs.moveNext()) {
        const std::int32_t code = toInt32(rs.field(QStringLiteral("Cod_Seguro")));
        ui->Combo1->addItem(QString::number(code) + QStringLiteral(" / ") + rs.text(QStringLiteral("Empresa")),
                            code);
    }
    ui->Combo1->setCurrentIndex(-1);
}

void Fpagarfacturas::loadInvoices()
{
    if (ui->Combo1->currentIndex() < 0)
        return;
    const OpenInvoices open = openInsurerInvoices(toInt32(ui->Combo1->currentData()));
    FlexGrid* g = ui->Grid1;
    g->setRows(1);
    if (open.size() == 0)
        return;
    g->setRows(open.size() + 1);
    g->setColumnTexts(Factura, open.factura);
    g->setColumnTexts(Paciente, open.paciente);
    g->setColumnTexts(Valor, open.valor);
    g->setColumnTexts(Fecha, open.fecha);
}

double Fpagarfacturas::chosenTotal() const
{
    const FlexGrid* g = ui->Grid2;
    double sum = 0;
    for (int row = 1; row < g->rows(); ++row)
        sum += Val(g->textMatrix(row, Valor));
    return sum;
}

void Fpagarfacturas::addOne()
{
    if (m_mover->addCurrent())
        ui->Text1->setText(money(chosenTotal()));
}

// The total after a removal has always read in whole lempiras with a
// thousands comma, unlike every other amount of the system.
void Fpagarfacturas::removeOne()
{
    if (!m_rightPicked || !m_mover->removeCurrent()) {
        prompts().message(QStringLiteral("debe seleccionar la factura a eliminar"), Icon::Exclamation);
        return;
    }
    ui->Text1->setText(wholeWithThousands(chosenTotal()));
}

void Fpagarfacturas::agregar()
{
    if (ui->Combo1->currentText().isEmpty()) {
        prompts().message(QStringLiteral("Debe ingresar un proveedor"), Icon::Exclamation, kTitle);
        ui->Combo1->setFocus();
        return;
    }
    const FlexGrid* g = ui->Grid2;
    if (Val(ui->txttotal->text()) == 0 || g->rows() < 2) {
        prompts().message(QStringLiteral("Debe asignar al menos un item al proveedor"), Icon::Exclamation,
                          kTitle);
        return;
    }
    QList<std::int32_t> invoices;
    for (int row = 1; row < g->rows(); ++row)
        invoices << toInt32(g->textMatrix(row, Factura));
    try {
        settleInsurerInvoices(invoices, ui->DT->date(), ui->Text2->text());
    } catch (const InvoicesAlreadySettled& e) {
        dropSettled(e.invoices());
        QString text = e.message();
        if (g->rows() > 1)
            text += e.invoices().size() == 1
                        ? QStringLiteral(" Se quitó de la lista: registre de nuevo el pago de las demás.")
                        : QStringLiteral(" Se quitaron de la lista: registre de nuevo el pago de las demás.");
        prompts().message(text, Icon::Exclamation, kTitle);
        return;
    }
    prompts().message(QStringLiteral("Las facturas se cancelaron exitosamente"), Icon::Information, kTitle);
    cancela();
}

void Fpagarfacturas::dropSettled(const QList<std::int32_t>& invoices)
{
    QSet<QString> gone;
    for (const std::int32_t n : invoices)
        gone.insert(QString::number(n));
    const FlexGrid* g = ui->Grid2;
    QList<QPair<QStringList, bool>> kept;
    for (int row = 1; row < g->rows(); ++row) {
        if (gone.contains(g->textMatrix(row, Factura)))
            continue;
        QStringList cells;
        for (int c = 0; c < g->cols(); ++c)
            cells << g->textMatrix(row, c);
        kept.append({cells, m_mover->isNew(row)});
    }
    m_mover->clearRight();
    for (const auto& [cells, isNew] : kept)
        m_mover->appendRight(cells, isNew);
    ui->Text1->setText(money(chosenTotal()));
    loadInvoices();
}

void Fpagarfacturas::cancela()
{
    ui->Grid1->setRows(1);
    m_mover->clearRight();
    ui->txttotal->clear();
    ui->Combo1->setCurrentIndex(-1);
    ui->Text1->clear();
}
