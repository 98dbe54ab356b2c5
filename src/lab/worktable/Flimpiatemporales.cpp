#include "lab/worktable/Flimpiatemporales.h"

#include "ui_Flimpiatemporales.h"

#include "foundation/data/amb1.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/prompt.h"
#include "foundation/ui/registry.h"

TQ_REGISTER_SCREEN(Flimpiatemporales)

using namespace tq;

Flimpiatemporales::Flimpiatemporales(QWidget* parent)
    : QWidget(parent), ui(std::make_unique<Ui::Flimpiatemporales>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("Flimpiatemporales"));
    setAttribute(Qt::WA_DeleteOnClose);
    onClick(ui->Command1, QStringLiteral("limpiar la mesa de trabajo"), [this] { limpiar(); });
}

Flimpiatemporales::~Flimpiatemporales() = default;

// Every waiting exam goes, whatever its invoice; the invoice lines stay as
// they are (not evaluated), and can't come back to the table.
void Flimpiatemporales::limpiar()
{
    if (prompts().message(QStringLiteral("esta seguro de hacer esto"), Icon::Question,
                          QStringLiteral("Tarvenquil"), Buttons::YesNo)
        != Answer::Yes)
        return;
    int removed = 0;
    {
        Transaction t;
        removed = amb1().execute(QStringLiteral("DELETE FROM EvaluadoTemporal"));
        t.commit();
    }
    if (removed > 0)
        prompts().message(QStringLiteral("la mesa de trabajo se limpio exitosamente"),
                          Icon::Information, QStringLiteral("Tarvenquil"));
}
