#include "accounts/receivables/Form35.h"

#include "ui_Form35.h"

#include "accounts/receivables/insurerreport.h"
#include "foundation/reports/report.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/registry.h"
#include "foundation/ui/widgets.h"

#include <QShortcut>

TQ_REGISTER_SCREEN(Form35)

using namespace tq;

Form35::Form35(QWidget* parent) : QWidget(parent, Qt::Window)
{
    Ui::Form35 ui;
    ui.setupUi(this);
    setAttribute(Qt::WA_DeleteOnClose);
    new QShortcut(QKeySequence(Qt::Key_Escape), this, this, &QWidget::close);
    makeListOnly(ui.Combo1);

    QComboBox* combo = ui.Combo1;
    onClick(ui.Command1, QStringLiteral("mostrar el reporte"), [this, combo] {
        ReportRun run;
        run.report = QStringLiteral("DataReport18");
        run.command = QStringLiteral("rsrcpagadas");
        run.heading = 18;
        if (runInsurerReport(combo, run, this))
            close();
    });
    connect(ui.Command2, &QPushButton::clicked, this, &QWidget::close);

    guarded(QStringLiteral("cargar la lista de seguros"), [combo] { fillInsurerCombo(combo); });
}
