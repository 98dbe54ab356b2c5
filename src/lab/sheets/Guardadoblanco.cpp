#include "lab/sheets/Guardadoblanco.h"

#include "ui_Guardadoblanco.h"

#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/prompt.h"
#include "foundation/ui/registry.h"
#include "foundation/ui/widgets.h"
#include "lab/sheets/Form19.h"

TQ_REGISTER_SCREEN(Guardadoblanco)

using namespace tq;

Guardadoblanco::Guardadoblanco(QWidget* parent)
    : QWidget(parent), ui(std::make_unique<Ui::Guardadoblanco>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("Guardadoblanco"));
    setAttribute(Qt::WA_DeleteOnClose);
    makeListOnly(ui->Combo1);
    onClick(ui->Command1, QStringLiteral("guardar la plantilla"), [this] { save(); });
    connect(ui->Command2, &QPushButton::clicked, this, &QWidget::close);
    guarded(QStringLiteral("cargar los menús de formatos"), [this] { loadMenus(); });
}

Guardadoblanco::~Guardadoblanco() = default;

void Guardadoblanco::setSheet(Form19* sheet) { m_sheet = sheet; }

// "code  title", the code read back from the front of the entry.
void Guardadoblanco::loadMenus()
{
    ui->Combo1->clear();
    Recordset rs;
    rs.open(QStringLiteral("SELECT codigo_formatoblanco, encabezado FROM formatoblanco "
                           "ORDER BY codigo_formatoblanco"));
    for (rs.moveFirst(); !rs.eof(); rs.moveNext())
        ui->Combo1->addItem(rs.text(QStringLiteral("codigo_formatoblanco")) + QStringLiteral("  ")
                            + rs.text(QStringLiteral("encabezado")));
    ui->Combo1->setCurrentIndex(-1);
}

// A name stands once over all the menus, whatever menu it is in. The check
// and the new row go in one save, so two stations can't both take a name.
// Neither field is checked: a page kept with no menu chosen goes under code
// 0, which no menu shows (the delete screen still lists it).
void Guardadoblanco::save()
{
    const QString name = ui->Text1->text();
    const std::int32_t menu = toInt32(Val(ui->Combo1->currentText()));
    const QString page = m_sheet ? m_sheet->pageText() : QString();
    bool taken = false;
    {
        Transaction t;
        taken = amb1()
                    .scalar(QStringLiteral("SELECT 1 FROM submenusformatoblanco WHERE submenu = ? "
                                           "LIMIT 1"),
                            {name})
                    .isValid();
        if (!taken) {
            amb1().insert(QStringLiteral("submenusformatoblanco"),
                          {QStringLiteral("codigo_formatoblanco"), QStringLiteral("submenu"),
                           QStringLiteral("valorsubmenu")},
                          {menu, name, page});
            t.commit();
        }
    }
    if (taken) {
        prompts().message(QStringLiteral("El nombre del formato ya existe por favor modifiquelo y "
                                         "pruebe nuevamente"),
                          Icon::Exclamation, QStringLiteral("Tarvenquil"));
        return;
    }
    if (m_sheet)
        m_sheet->addStoredEntry(menu, name);
    prompts().message(QStringLiteral("Los datos se han almacenado satisfactoriamente"),
                      Icon::Information, QStringLiteral("Tarvenquil"));
}
