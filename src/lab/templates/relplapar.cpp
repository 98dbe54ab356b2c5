#include "lab/templates/relplapar.h"

#include "ui_relplapar.h"

#include "foundation/data/amb1.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/prompt.h"
#include "foundation/ui/registry.h"
#include "lab/sheets.h"
#include "lab/sheets/gridsheet.h"
#include "lab/templates.h"

TQ_REGISTER_SCREEN(relplapar)

using namespace tq;

namespace {

const QString kPrompt = QStringLiteral(">>> Seleccione un valor <<<");

// The three grid templates as the list names them, and as the saved message does.
struct GridTemplate {
    const char* listed;
    const char* said;
    std::int32_t code;
    const char* sheet;   // its fill-in screen
};
constexpr GridTemplate kGrids[] = {
    {"Hematologia", "Hematologia", kHematologia, "Form20"},
    {"Uroanalisis", "Uroanalisis", kUroanalisis, "Form21"},
    {"Quimica - Clinica", "Quimica Clinica", kQuimica, "Form22"},
};

const GridTemplate* gridNamed(const QString& name)
{
    for (const GridTemplate& g : kGrids)
        if (name == QLatin1String(g.listed))
            return &g;
    return nullptr;
}

}  // namespace

relplapar::relplapar(QWidget* parent) : QWidget(parent), ui(std::make_unique<Ui::relplapar>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("relplapar"));
    setAttribute(Qt::WA_DeleteOnClose);
    ui->Command8->setEnabled(false);
    connect(ui->Combo1, &QComboBox::activated, this,
            [this] { guarded(QStringLiteral("mostrar el formato"), [this] { chooseTemplate(); }); });
    onClick(ui->Command4, QStringLiteral("agregar el parámetro"), [this] { addParameter(); });
    onClick(ui->Command5, QStringLiteral("quitar el parámetro"), [this] { removeParameter(); });
    onClick(ui->Command1, QStringLiteral("subir el parámetro"), [this] { move(-1); });
    onClick(ui->Command2, QStringLiteral("bajar el parámetro"), [this] { move(+1); });
    onClick(ui->Command6, QStringLiteral("cancelar"), [this] { cancel(); });
    onClick(ui->Command8, QStringLiteral("guardar el formato"), [this] { save(); });
    onClick(ui->Command7, QStringLiteral("mostrar la vista previa"), [this] { preview(); });
    connect(ui->Command3, &QPushButton::clicked, this, &QWidget::close);
    guarded(QStringLiteral("cargar los formatos y los parámetros"), [this] { loadLists(); });
}

relplapar::~relplapar() = default;

void relplapar::loadLists()
{
    ui->Combo1->clear();
    ui->Combo1->addItem(kPrompt);
    Recordset templates;
    templates.open(QStringLiteral("SELECT * FROM plantilla"));
    for (templates.moveFirst(); !templates.eof(); templates.moveNext()) {
        const QString name = templates.text(QStringLiteral("plantilla"));
        if (gridNamed(name))
            ui->Combo1->addItem(name);
    }
    ui->List1->clear();
    Recordset params;
    params.open(QStringLiteral("SELECT * FROM parametros ORDER BY Parametro"));
    for (params.moveFirst(); !params.eof(); params.moveNext())
        ui->List1->addItem(params.text(QStringLiteral("parametro")));
}

std::int32_t relplapar::templateCode() const
{
    const GridTemplate* g = gridNamed(ui->Combo1->currentText());
    return g ? g->code : 0;
}

void relplapar::chooseTemplate()
{
    ui->Command8->setEnabled(false);
    ui->List2->clear();
    const std::int32_t code = templateCode();
    if (!code)
        return;
    for (const TemplateParameter& p : templateParameters(code, latestVersion(code)))
        ui->List2->addItem(p.parametro);
}

void relplapar::addParameter()
{
    if (!templateCode()) {
        prompts().message(QStringLiteral("Seleccione un formato antes de agregar parametros"),
                          Icon::Exclamation, QStringLiteral("Tarvenquil"));
        return;
    }
    ui->Command8->setEnabled(true);
    const QListWidgetItem* chosen = ui->List1->currentItem();
    if (!chosen)
        return;
    const QString name = chosen->text();
    if (name != kLineBreakParameter && !ui->List2->findItems(name, Qt::MatchExactly).isEmpty())
        return;   // already there: nothing said
    const int at = ui->List2->currentRow();
    const int place = at >= 0 ? at + 1 : ui->List2->count();
    ui->List2->insertItem(place, name);
    ui->List2->setCurrentRow(place);
}

void relplapar::removeParameter()
{
    ui->Command8->setEnabled(true);
    const int at = ui->List2->currentRow();
    if (at < 0)
        return;
    delete ui->List2->takeItem(at);
    if (ui->List2->count() > 0)
        ui->List2->setCurrentRow(std::min(at, ui->List2->count() - 1));
}

void relplapar::move(int step)
{
    ui->Command8->setEnabled(true);
    const int at = ui->List2->currentRow();
    const int to = at + step;
    if (at < 0 || to < 0 || to >= ui->List2->count())
        return;
    QListWidgetItem* item = ui->List2->takeItem(at);
    ui->List2->insertItem(to, item);
    ui->List2->setCurrentRow(to);
}

void relplapar::cancel()
{
    ui->Command8->setEnabled(false);
    ui->Combo1->setCurrentIndex(0);
    ui->List2->clear();
}

void relplapar::save()
{
    const GridTemplate* g = gridNamed(ui->Combo1->currentText());
    if (!ui->Command8->isEnabled() || !g) {
        prompts().message(QStringLiteral("Seleccione un formato antes de Guardar"),
                          Icon::Exclamation, QStringLiteral("Tarvenquil"));
        return;
    }
    const QString question =
        QStringLiteral("                      Modificacion Critica del Sistema\n\n"
                       "Usted esta a punto de modificar su formato de resultados\n"
                       "                   ¿Esta seguro que desea continuar?");
    if (prompts().message(question, Icon::Question, QStringLiteral("Tarvenquil"), Buttons::YesNo)
        != Answer::Yes)
        return;
    QStringList names;
    for (int i = 0; i < ui->List2->count(); ++i)
        names << ui->List2->item(i)->text();
    const std::int32_t version = saveTemplateVersion(g->code, names);
    prompts().message(QStringLiteral("El formato de %1 se ha guardado con la version %2")
                          .arg(QLatin1String(g->said))
                          .arg(version),
                      Icon::Information, QStringLiteral("Tarvenquil"));
    ui->Command8->setEnabled(false);
}

// The list laid out on the template's own sheet, as a new sheet is, without
// patient or normal values (urinalysis shows its units).
void relplapar::preview()
{
    const GridTemplate* g = gridNamed(ui->Combo1->currentText());
    if (!g)
        return;
    QStringList names;
    for (int i = 0; i < ui->List2->count(); ++i)
        names << ui->List2->item(i)->text();
    const QList<sheets::Cell> cells = sheets::layOut(g->code, names, sheets::Normals::None);
    openModal(QLatin1String(g->sheet), [&cells](QWidget* screen) {
        if (auto* sheet = qobject_cast<sheets::GridSheet*>(screen))
            sheet->showLayout(cells);
    });
}
