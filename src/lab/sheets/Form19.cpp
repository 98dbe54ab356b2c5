#include "lab/sheets/Form19.h"

#include "ui_Form19.h"

#include "foundation/data/amb1.h"
#include "foundation/base/values.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/registry.h"
#include "lab/sheets/Guardadoblanco.h"
#include "lab/sheets/borrarformatoblanco.h"

TQ_REGISTER_SCREEN(Form19)

using namespace tq;

Form19::Form19(QWidget* parent)
    : BlankPage({kBlankTemplate, sheets::kBlankPageEnters, true, true}, parent),
      ui(std::make_unique<Ui::Form19>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("Form19"));
    m_menus = {{{ui->parasit, ui->nvparasitologia, {}},
                {ui->serologia, ui->nvserologia, {}},
                {ui->quimicas, ui->nvquimicas, {}},
                {ui->inmunologia, ui->nvinmunologia, {}},
                {ui->hematologia, ui->nvhematologia, {}},
                {ui->varios, ui->nvvarios, {}}}};
    setUp(*ui);
    onTriggered(ui->plantilla, QStringLiteral("guardar el formato como plantilla"),
                [this] { openStoredTextScreen(QStringLiteral("Guardadoblanco")); });
    onTriggered(ui->borrarresult, QStringLiteral("borrar la plantilla"),
                [this] { openStoredTextScreen(QStringLiteral("borrarformatoblanco")); });
    guarded(QStringLiteral("cargar los formatos guardados"), [this] { loadStoredMenus(); });
}

Form19::~Form19() = default;

void Form19::lockStored()
{
    BlankPage::lockStored();
    ui->Rich1->setReadOnly(true);
    for (QMenu* menu : {ui->edit, ui->parasit, ui->serologia, ui->quimicas, ui->inmunologia,
                        ui->hematologia, ui->varios, ui->admonformats})
        menu->menuAction()->setEnabled(false);
}

Form19::StoredMenu* Form19::storedMenu(int menu)
{
    return menu >= 1 && menu <= int(m_menus.size()) ? &m_menus[std::size_t(menu - 1)] : nullptr;
}

const Form19::StoredMenu* Form19::storedMenu(int menu) const
{
    return const_cast<Form19*>(this)->storedMenu(menu);
}

// Every stored text gets its entry, in the order the store keeps them.
void Form19::loadStoredMenus()
{
    Recordset rs;
    rs.open(QStringLiteral("SELECT codigo_formatoblanco, submenu FROM submenusformatoblanco "
                           "ORDER BY %1")
                .arg(dialect::rowIdentity(amb1().engine())));
    for (rs.moveFirst(); !rs.eof(); rs.moveNext())
        addStoredEntry(toInt32(rs.field(QStringLiteral("codigo_formatoblanco"))),
                       rs.text(QStringLiteral("submenu")));
}

void Form19::addStoredEntry(int menu, const QString& caption)
{
    StoredMenu* m = storedMenu(menu);
    if (!m)
        return;
    auto* entry = new QAction(m->menu);
    // An ampersand in a name is part of the name, not a shortcut mark.
    entry->setText(QString(caption).replace(QLatin1Char('&'), QLatin1String("&&")));
    entry->setData(caption);
    entry->setObjectName(m->model->objectName() + QString::number(m->entries.size() + 1));
    m->menu->addAction(entry);
    m->entries.append(entry);
    onTriggered(entry, QStringLiteral("mostrar el formato guardado"),
                [this, menu, caption] { chooseStored(menu, caption); });
}

// The menus are not built again: after a deletion the captions shown may be
// one off until the screen is opened again.
void Form19::removeLastStoredEntry(int menu)
{
    StoredMenu* m = storedMenu(menu);
    if (!m || m->entries.isEmpty())
        return;
    delete m->entries.takeLast();
}

int Form19::storedEntryCount(int menu) const
{
    const StoredMenu* m = storedMenu(menu);
    return m ? int(m->entries.size()) : 0;
}

// The whole page becomes the stored text, without asking; the last of twin
// rows has the word. A name no longer stored changes nothing.
void Form19::chooseStored(int menu, const QString& caption)
{
    Recordset rs;
    rs.open(QStringLiteral("SELECT valorsubmenu FROM submenusformatoblanco "
                           "WHERE codigo_formatoblanco = ? AND submenu = ? ORDER BY %1 DESC")
                .arg(dialect::rowIdentity(amb1().engine())),
            {menu, caption}, 1);
    if (!rs.eof())
        replaceText(rs.text(QStringLiteral("valorsubmenu")));
}

void Form19::openStoredTextScreen(const QString& name)
{
    openModal(name, [this](QWidget* screen) {
        if (auto* save = qobject_cast<Guardadoblanco*>(screen))
            save->setSheet(this);
        else if (auto* remove = qobject_cast<borrarformatoblanco*>(screen))
            remove->setSheet(this);
    });
}
