#include "accounts/credit/Fcxc.h"

#include "ui_Fcxc.h"

#include "accounts/receivables/insurerreport.h"
#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/reports/daterange.h"
#include "foundation/reports/report.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/prompt.h"
#include "foundation/ui/registry.h"
#include "foundation/ui/widgets.h"

#include <QShortcut>

TQ_REGISTER_SCREEN(Fcxc)

using namespace tq;

namespace {

const QString kCommand = QStringLiteral("rsrcuentas");
const QString kDetail = QStringLiteral("rcuentasdetalle");
// The slot the report of a period is read from: the insurers with, below
// each, only its open invoices dated within the period.
const QString kPeriodSlot = QStringLiteral("rsmultiusos");

ReportRun receivables()
{
    ReportRun run;
    run.report = QStringLiteral("DataReport17");
    run.command = kCommand;
    run.heading = 17;
    return run;
}

// The open accounts by insurer, their invoices narrowed to the period. The
// dates belong to the invoices, not to the insurers above them, so the
// period narrows the rows below each insurer.
void openPeriod(Recordset& rs, const QDate& from, const QDate& to)
{
    const CommandDef* def = amb1().rs(kCommand).command();
    if (!def || !def->shape)
        throw AppError(QStringLiteral("El origen del reporte de facturas pendientes no está "
                                      "definido."));
    Shape shape = *def->shape;
    for (Shape::Relation& rel : shape.relations) {
        if (rel.name.compare(kDetail, Qt::CaseInsensitive) != 0 || !rel.child)
            continue;
        auto child = std::make_shared<Shape>(*rel.child);
        child->sql = QStringLiteral("SELECT * FROM (") + child->sql
                     + QStringLiteral(") AS pendientes WHERE pendientes.fecha >= ? "
                                      "AND pendientes.fecha <= ?");
        rel.child = child;
    }
    if (rs.isOpen())
        rs.close();
    rs.openShape(shape, {from, to});
}

}  // namespace

Fcxc::Fcxc(QWidget* parent) : QWidget(parent, Qt::Window), ui(std::make_unique<Ui::Fcxc>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("Fcxc"));
    setAttribute(Qt::WA_DeleteOnClose);
    new QShortcut(QKeySequence(Qt::Key_Escape), this, this, &QWidget::close);
    makeListOnly(ui->Combo1);
    const QDate today = QDate::currentDate();
    for (QDateEdit* dt : {ui->DT1, ui->DT2}) {
        dt->setDisplayFormat(QStringLiteral("dd/MM/yy"));
        dt->setCalendarPopup(true);
        dt->setDate(today);
    }

    connect(ui->Option1, &QRadioButton::toggled, this, [this] { follow(); });
    onClick(ui->Command2, QStringLiteral("mostrar el reporte"), [this] { imprimir(); });
    connect(ui->Command1, &QPushButton::clicked, this, &QWidget::close);

    guarded(QStringLiteral("cargar la lista de seguros"), [this] { fillInsurers(); });
    follow();
}

Fcxc::~Fcxc() = default;

void Fcxc::follow()
{
    const bool byInsurer = ui->Option1->isChecked();
    ui->Combo1->setEnabled(byInsurer);
    ui->DT1->setEnabled(!byInsurer);
    ui->DT2->setEnabled(!byInsurer);
}

void Fcxc::fillInsurers()
{
    QComboBox* combo = ui->Combo1;
    combo->clear();
    combo->addItem(QStringLiteral(">>>Seleccione una<<<"));
    Recordset rs;
    rs.open(QStringLiteral("SELECT Cod_Seguro, Empresa FROM seguros ORDER BY Cod_Seguro"));
    if (rs.recordCount() == 0)
        prompts().message(QStringLiteral("no existen seguros creados"), Icon::Information);
    // Each entry keeps its code: a company whose name begins with a digit
    // is still read by its own code.
    for (rs.moveFirst(); !rs.eof(); rs.moveNext()) {
        const std::int32_t code = toInt32(rs.field(QStringLiteral("Cod_Seguro")));
        combo->addItem(QString::number(code) + QLatin1Char(' ') + rs.text(QStringLiteral("Empresa")),
                       code);
    }
    combo->setCurrentIndex(0);
}

void Fcxc::imprimir()
{
    if (ui->Option1->isChecked()) {
        if (runInsurerReport(ui->Combo1, receivables(), this))
            close();
        return;
    }
    if (!ui->Option2->isChecked())
        return;
    // The last report's filter goes first, even when the period is refused.
    Recordset& last = amb1().rs(kCommand);
    if (last.isOpen())
        last.setFilter(QString());
    const QDate from = ui->DT1->date();
    const QDate to = ui->DT2->date();
    if (from > to) {
        prompts().message(QStringLiteral("Laprimera fecha no puede ser mayor que la segunda"),
                          Icon::Exclamation);
        return;
    }
    openPeriod(amb1().rs(kPeriodSlot), from, to);
    ReportRun run = receivables();
    run.command = kPeriodSlot;
    runReport(run, reportOwner(this));
    close();
}
