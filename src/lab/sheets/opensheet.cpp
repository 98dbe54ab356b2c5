#include "lab/sheets/opensheet.h"

#include "foundation/base/apperror.h"
#include "foundation/ui/prompt.h"
#include "foundation/ui/registry.h"

#include <QWidget>
#include <memory>

namespace tq::sheets {

QString entryScreenName(int codPlantilla)
{
    if (codPlantilla < kBlankTemplate || codPlantilla > kParasitologia)
        return {};
    return QStringLiteral("Form%1").arg(18 + codPlantilla);
}

bool openForWorkTable(int codPlantilla, const SheetContext& context)
{
    const QString name = entryScreenName(codPlantilla);
    if (name.isEmpty())
        return false;
    QWidget* screen = ScreenRegistry::instance().create(name, nullptr);
    if (!screen) {
        notBuiltNotice(name);
        return false;
    }
    auto* sheet = dynamic_cast<EntrySheet*>(screen);
    if (!sheet) {
        delete screen;
        throw AppError(QStringLiteral("La hoja %1 no se puede llenar desde la mesa de trabajo.")
                           .arg(name));
    }
    bool saved = false;
    try {
        sheet->startEntry(context, [&saved](const SavedSheet&) { saved = true; });
    } catch (...) {
        delete screen;
        throw;
    }
    prompts().showModal(screen);
    return saved;
}

}  // namespace tq::sheets
