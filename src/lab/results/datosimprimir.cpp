#include "lab/results/datosimprimir.h"

#include "ui_datosimprimir.h"

#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/reports/report.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/prompt.h"
#include "foundation/ui/registry.h"
#include "foundation/ui/widgets.h"

#include <QShortcut>

TQ_REGISTER_SCREEN(datosimprimir)

using namespace tq;

datosimprimir::datosimprimir(QWidget* parent)
    : QWidget(parent, Qt::Window), ui(std::make_unique<Ui::datosimprimir>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("datosimprimir"));
    new QShortcut(QKeySequence(Qt::Key_Escape), this, this, &QWidget::close);
    // The sex is picked from the list; typing in it is thrown away.
    makeListOnly(ui->Combo1);
    ui->Combo1->setCurrentIndex(-1);
    ui->DTP->setDate(QDate::currentDate());

    onClick(ui->Command1, QStringLiteral("imprimir el formato de hematología"),
            [this] { imprimir(); });
    connect(ui->Command2, &QPushButton::clicked, this, [this] { cancelar(); });
    connect(ui->Command3, &QPushButton::clicked, this, &QWidget::close);
}

datosimprimir::~datosimprimir() = default;

QString datosimprimir::nombre() const { return ui->Text1->text(); }

void datosimprimir::setNombre(const QString& nombre) { ui->Text1->setText(nombre); }

// Nothing is checked: a form may go out with any field left blank.
void datosimprimir::imprimir()
{
    {
        // The table holds the one heading being printed.
        Transaction t;
        amb1().execute(QStringLiteral("DELETE FROM Tempo"));
        amb1().insert(QStringLiteral("Tempo"),
                      {QStringLiteral("nombre"), QStringLiteral("edad"), QStringLiteral("sexo"),
                       QStringLiteral("fecha")},
                      {ui->Text1->text(), ui->Text2->text(), ui->Combo1->currentText(),
                       dateLong(ui->DTP->date())});
        t.commit();
    }
    prompts().message(QStringLiteral("Imprimiendo Formato"), Icon::Information);
    ReportRun run;
    run.report = QStringLiteral("DataReport16");
    run.command = QStringLiteral("rstempo");
    run.show = ReportRun::Show::Modal;
    runReport(run, this);
    close();
}

void datosimprimir::cancelar()
{
    ui->Text1->clear();
    ui->Text2->clear();
    ui->Combo1->setCurrentIndex(-1);
    ui->Text1->setFocus();
}
