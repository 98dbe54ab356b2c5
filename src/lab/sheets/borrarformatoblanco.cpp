#include "lab/sheets/borrarformatoblanco.h"

#include "ui_borrarformatoblanco.h"

#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/prompt.h"
#include "foundation/ui/registry.h"
#include "lab/sheets/Form19.h"

TQ_REGISTER_SCREEN(borrarformatoblanco)

using namespace tq;

borrarformatoblanco::borrarformatoblanco(QWidget* parent)
    : QWidget(parent), ui(std::make_unique<Ui::borrarformatoblanco>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("borrarformatoblanco"));
    setAttribute(Qt::WA_DeleteOnClose);
    onClick(ui->Command1, QStringLiteral("borrar la plantilla"), [this] { remove(); });
    connect(ui->Command2, &QPushButton::clicked, this, &QWidget::close);
    guarded(QStringLiteral("cargar los formatos de resultados"), [this] { loadList(); });
}

borrarformatoblanco::~borrarformatoblanco() = default;

void borrarformatoblanco::setSheet(Form19* sheet) { m_sheet = sheet; }

void borrarformatoblanco::loadList()
{
    ui->List1->clear();
    Recordset rs;
    rs.open(QStringLiteral("SELECT submenu FROM submenusformatoblanco ORDER BY %1")
                .arg(dialect::rowIdentity(amb1().engine())));
    for (rs.moveFirst(); !rs.eof(); rs.moveNext())
        ui->List1->addItem(rs.text(QStringLiteral("submenu")));
}

// The name chosen is matched as the end of a name ("%name", its "%" and "_"
// wildcards too), and the first row that matches goes: with names that end
// alike it may be another than the one chosen. The open sheet's menu of that
// row loses its last entry, whichever that is.
void borrarformatoblanco::remove()
{
    const QListWidgetItem* chosen = ui->List1->currentItem();
    if (!chosen) {
        prompts().message(QStringLiteral("Seleccione en la lista el formato de resultado que "
                                         "desea borrar."),
                          Icon::Exclamation, QStringLiteral("Tarvenquil"));
        return;
    }
    if (prompts().message(QStringLiteral("Esta seguro que quiere eliminar este formato de "
                                         "resultado"),
                          Icon::Question, QStringLiteral("Tarvenquil"), Buttons::YesNo)
        != Answer::Yes)
        return;
    // "!" escapes itself only, so that both stores read the pattern alike
    // (the server would otherwise take a backslash as an escape).
    QString pattern = chosen->text();
    pattern = QStringLiteral("%") + pattern.replace(QLatin1Char('!'), QLatin1String("!!"));
    const QString row = dialect::rowIdentity(amb1().engine());
    const QString firstMatch = QStringLiteral("(SELECT MIN(%1) FROM submenusformatoblanco "
                                              "WHERE submenu LIKE ? ESCAPE '!')")
                                   .arg(row);
    bool found = false;
    std::int32_t menu = 0;
    {
        Transaction t;
        const QVariant code = amb1().scalar(
            QStringLiteral("SELECT codigo_formatoblanco FROM submenusformatoblanco WHERE %1 = %2")
                .arg(row, firstMatch),
            {pattern});
        found = code.isValid();
        if (found) {
            menu = toInt32(code);
            amb1().execute(QStringLiteral("DELETE FROM submenusformatoblanco WHERE %1 = %2")
                               .arg(row, firstMatch),
                           {pattern});
            t.commit();
        }
    }
    if (!found) {
        prompts().message(QStringLiteral("Ese formato de resultado ya no existe; la lista se ha "
                                         "vuelto a cargar."),
                          Icon::Exclamation, QStringLiteral("Tarvenquil"));
        loadList();
        return;
    }
    prompts().message(QStringLiteral("El formato de resultado ha sido borrado"), Icon::Information,
                      QStringLiteral("Tarvenquil"));
    loadList();
    if (m_sheet)
        m_sheet->removeLastStoredEntry(menu);
}
