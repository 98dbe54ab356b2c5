#include "registers/patients/Form30.h"

#include "ui_Form30.h"

#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/reports/report.h"
#include "foundation/ui/datagrid.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/prompt.h"
#include "foundation/ui/registry.h"

#include <QShortcut>

TQ_REGISTER_SCREEN(Form30)

using namespace tq;

namespace {

Recordset& patients() { return amb1().rs(QStringLiteral("rsPacientes")); }

// Typed text inside a quoted filter text: an apostrophe is doubled.
QString quotedInFilter(QString typed)
{
    return typed.replace(QLatin1Char('\''), QStringLiteral("''"));
}

}  // namespace

Form30::Form30(QWidget* parent) : QWidget(parent, Qt::Window), ui(std::make_unique<Ui::Form30>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("Form30"));
    new QShortcut(QKeySequence(Qt::Key_Escape), this, this, &QWidget::close);

    connect(ui->Text1, &QLineEdit::textChanged, this,
            [this] { guarded(QStringLiteral("buscar los pacientes"), [this] { narrow(); }); });
    connect(ui->Grid1, &DataGrid::rowChosen, this, [this](int row) {
        guarded(QStringLiteral("mostrar el reporte del paciente"), [this, row] { choose(row); });
    });

    guarded(QStringLiteral("cargar la lista de pacientes"), [this] {
        Recordset& rs = patients();
        if (rs.isOpen())
            rs.close();
        rs.open(QStringLiteral("SELECT cod_paciente AS CODIGO, nombre_paciente AS NOMBRE, "
                               "apellido_paciente AS APELLIDO FROM Pacientes "
                               "ORDER BY nombre_paciente"));
        ui->Grid1->bind(rs);
    });
}

Form30::~Form30() = default;

void Form30::narrow()
{
    Recordset& rs = patients();
    if (!rs.isOpen())
        return;
    const QString column = ui->Option1->isChecked() ? QStringLiteral("NOMBRE")
                                                    : QStringLiteral("APELLIDO");
    rs.setFilter(column + QStringLiteral(" like '*") + quotedInFilter(ui->Text1->text())
                 + QStringLiteral("*'"));
    ui->Grid1->bind(rs);
}

void Form30::choose(int row)
{
    const QString name = ui->Grid1->text(row, QStringLiteral("NOMBRE")) + QLatin1Char(' ')
                         + ui->Grid1->text(row, QStringLiteral("APELLIDO"));
    const std::int32_t code = toInt32(ui->Grid1->value(row, QStringLiteral("CODIGO")));
    if (prompts().message(QStringLiteral("Quiere mostrar el reporte del cliente ") + name
                              + QStringLiteral(" ?"),
                          Icon::Question, QString::fromLatin1(kAppTitle), Buttons::YesNo)
        != Answer::Yes)
        return;
    ReportRun run;
    run.report = QStringLiteral("DataReport11");
    run.command = QStringLiteral("rsRepClienteexamen_Grouping");
    run.filter = QStringLiteral("Cod_Paciente =") + QString::number(code);
    run.heading = 11;
    run.show = ReportRun::Show::Modal;
    runReport(run, this);
}
