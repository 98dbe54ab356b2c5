#pragma once
// The door from the work table to the fill-in screens: the screen of a
// template opened modally for the exams picked, with the patient's heading,
// laid out (grid templates) from the template's latest version and the
// patient's normal values.
#include "lab/corrections.h"
#include "lab/sheets.h"

#include <functional>

class QWidget;
#include <optional>

namespace tq::sheets {

// What every fill-in screen (Form19 to Form23) offers the work table.
class EntrySheet {
public:
    virtual ~EntrySheet() = default;
    // Prepares the screen for the exams picked: the heading with the patient
    // (and, on the blank page, the age) and today's date; the grid templates
    // lay out their latest version with the patient's normal values. From
    // then on "Guardar" saves onto the work table and calls `onSaved` once the
    // sheet is stored. Throws DbError.
    virtual void startEntry(const SheetContext& context,
                            std::function<void(const SavedSheet&)> onSaved) = 0;
};

// The registered screen of a template: "Form19" for 1 ... "Form23" for 5.
QString entryScreenName(int codPlantilla);

// Opens the fill-in screen of `codPlantilla` (1 blank page, 2 hematology,
// 3 urinalysis, 4 chemistry, 5 parasitology) for the picked exams and waits
// for it to close. True when the sheet was saved (the work table then starts
// over). Throws DbError when the sheet can't be laid out.
bool openForWorkTable(int codPlantilla, const SheetContext& context);

// --- Stored sheets ---------------------------------------------------------

struct StoredHeading;

// The screen a stored sheet of `codPlantilla` is shown on: for printing the
// fill-in screens and "Form36"; for a correction "mdihematologia",
// "mdiuroanalisis" and "mdiquimica" for the grids, the others as for
// printing. Empty for a code without a screen.
enum class Route { Reprint, Correction };
QString storedScreenName(int codPlantilla, Route route);

// Shows a stored sheet on its family's screen, read-only (but for the
// second free-text page), modally, and returns when it is closed. A sheet
// with no rows, or of no known family, opens nothing. Throws DbError.
void showStoredSheet(const StoredSheet& sheet, const StoredHeading& heading);

// Opens a stored sheet on its correction screen, modally. `reason` gives
// the reason chosen at the moment of the save; `opened` is handed the
// screen before it shows (a window of the caller's that must stay usable
// beside a modal screen has to stand on it). The correction saved, if one
// was. Throws DbError.
std::optional<corrections::Saved> correctStoredSheet(
    const StoredSheet& sheet, const StoredHeading& heading, const corrections::Target& target,
    std::function<QString()> reason, const std::function<void(QWidget*)>& opened = {});

}  // namespace tq::sheets
