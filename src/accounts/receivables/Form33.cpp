#include "accounts/receivables/Form33.h"

#include "ui_Form33.h"

#include "accounts/receivables/insurerreport.h"
#include "foundation/reports/report.h"
#include "foundation/reports/daterange.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/registry.h"
#include "foundation/ui/widgets.h"
#include "registers/pickers.h"

#include <QShortcut>

TQ_REGISTER_SCREEN(Form33)

using namespace tq;

Form33::Form33(QWidget* parent) : QWidget(parent, Qt::Window), ui(std::make_unique<Ui::Form33>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("Form33"));
    setAttribute(Qt::WA_DeleteOnClose);
    new QShortcut(QKeySequence(Qt::Key_Escape), this, this, &QWidget::close);
    makeListOnly(ui->Combo1);

    connect(ui->Option1, &QRadioButton::toggled, this, [this] { follow(); });
    onClick(ui->Command2, QStringLiteral("buscar el paciente"), [this] { searchPatient(); });
    onClick(ui->Command1, QStringLiteral("mostrar el reporte"), [this] { showReport(); });
    onClick(ui->Command3, QStringLiteral("limpiar la pantalla"), [this] { cancel(); });
    connect(ui->Command4, &QPushButton::clicked, this, &QWidget::close);

    guarded(QStringLiteral("cargar la lista de seguros"), [this] { fillInsurerCombo(ui->Combo1); });
    follow();
}

Form33::~Form33() = default;

void Form33::follow()
{
    const bool byInsurer = ui->Option1->isChecked();
    ui->Combo1->setEnabled(byInsurer);
    ui->Text1->setEnabled(!byInsurer);
    ui->Command2->setEnabled(!byInsurer);
}

void Form33::searchPatient()
{
    if (const auto p = choosePatient(PatientCaller::Receivables)) {
        ui->Text1->setText(p->name);
        m_patient = p->code;
    }
}

void Form33::showReport()
{
    if (ui->Option1->isChecked()) {
        ReportRun run;
        run.report = QStringLiteral("DataReport17");
        run.command = QStringLiteral("rsrcuentas");
        run.heading = 17;
        if (runInsurerReport(ui->Combo1, run, this))
            close();
        return;
    }
    if (!ui->Option2->isChecked())
        return;
    // Without a patient the report lists every insured patient.
    ReportRun run;
    run.report = QStringLiteral("DataReport24");
    run.command = QStringLiteral("rscuentascliente_Grouping");
    run.heading = 27;
    if (!ui->Text1->text().trimmed().isEmpty())
        run.filter = QStringLiteral("Cod_paciente =") + QString::number(m_patient);
    runReport(run, reportOwner(this));
    close();
}

void Form33::cancel()
{
    ui->Text1->clear();
    m_patient = 0;
    ui->Combo1->setCurrentIndex(0);
}
