#include "accounts/commissions/FreporComision.h"

#include "ui_FreporComision.h"

#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/registry.h"
#include "foundation/ui/widgets.h"
#include "registers/doctors/doctorlist.h"

TQ_REGISTER_SCREEN(FreporComision)

using namespace tq;

FreporComision::FreporComision(QWidget* parent)
    : PeriodScreen(parent), ui(std::make_unique<Ui::FreporComision>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("FreporComision"));
    makeListOnly(ui->Combo1);
    ui->Option1->setChecked(true);
    setUpPeriod(ui->DT1, ui->DT2, ui->Command1, ui->Command2,
                {QStringLiteral("rscomision_Grouping"),
                 QStringLiteral("ReporComision"),
                 QString(),
                 26,
                 QStringLiteral("La primera fecha no puede ser mayor que la segunda")});
    guarded(QStringLiteral("cargar la lista de doctores"), [this] { loadDoctors(); });
}

FreporComision::~FreporComision() = default;

void FreporComision::loadDoctors()
{
    // The blank entry first: without a doctor the report takes all of them.
    fillDoctors(ui->Combo1, true);
    ui->Combo1->setCurrentIndex(0);
}

ReportRun FreporComision::runFor(const QDate& from, const QDate& to) const
{
    QString head = ui->Option2->isChecked() ? QStringLiteral("pagada_doc = 1 and ")
                                            : QStringLiteral("pagada_doc = 0 and ");
    const QVariant doctor = ui->Combo1->currentData();
    if (doctor.isValid())
        head += QStringLiteral("cod_doctor = ") + QString::number(toInt32(doctor))
                + QStringLiteral(" and ");
    else
        head += QLatin1Char(' ');
    ReportRun run = PeriodScreen::runFor(from, to);
    run.filter = periodFilter(head, from, to);
    return run;
}
