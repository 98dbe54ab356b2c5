#include "lab/sheets/opensheet.h"

#include "foundation/base/apperror.h"
#include "foundation/ui/prompt.h"
#include "foundation/ui/registry.h"
#include "lab/sheets/gridsheet.h"

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

QString storedScreenName(int codPlantilla, Route route)
{
    if (route == Route::Correction) {
        switch (codPlantilla) {
        case kHematologia: return QStringLiteral("mdihematologia");
        case kUroanalisis: return QStringLiteral("mdiuroanalisis");
        case kQuimica: return QStringLiteral("mdiquimica");
        default: break;
        }
    }
    if (codPlantilla == kBlankTemplate2)
        return QStringLiteral("Form36");
    return entryScreenName(codPlantilla);
}

namespace {

// The screen of a stored sheet, made but not shown; null (having said so)
// when it isn't built.
SheetScreen* makeStoredScreen(const StoredSheet& sheet, Route route)
{
    const QString name = storedScreenName(sheet.codPlantilla, route);
    if (sheet.isEmpty() || name.isEmpty())
        return nullptr;
    QWidget* screen = ScreenRegistry::instance().create(name, nullptr);
    if (!screen) {
        notBuiltNotice(name);
        return nullptr;
    }
    auto* sheetScreen = dynamic_cast<SheetScreen*>(screen);
    if (!sheetScreen) {
        delete screen;
        throw AppError(QStringLiteral("La hoja %1 no puede mostrar un resultado guardado.")
                           .arg(name));
    }
    return sheetScreen;
}

}  // namespace

void showStoredSheet(const StoredSheet& sheet, const StoredHeading& heading)
{
    SheetScreen* screen = makeStoredScreen(sheet, Route::Reprint);
    if (!screen)
        return;
    try {
        screen->showStored(sheet, heading);
    } catch (...) {
        delete screen;
        throw;
    }
    prompts().showModal(screen);
}

std::optional<corrections::Saved> correctStoredSheet(
    const StoredSheet& sheet, const StoredHeading& heading, const corrections::Target& target,
    std::function<QString()> reason, const std::function<void(QWidget*)>& opened)
{
    SheetScreen* screen = makeStoredScreen(sheet, Route::Correction);
    if (!screen)
        return std::nullopt;
    std::optional<corrections::Saved> saved;
    try {
        screen->startCorrection(sheet, heading, target, std::move(reason),
                                [&saved](const corrections::Saved& s) { saved = s; });
    } catch (...) {
        delete screen;
        throw;
    }
    if (opened)
        opened(screen);
    prompts().showModal(screen);
    return saved;
}

}  // namespace tq::sheets
