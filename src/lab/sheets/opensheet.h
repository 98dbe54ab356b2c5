#pragma once
// The door from the work table to the fill-in screens: the screen of a
// template opened modally for the exams picked, with the patient's heading,
// laid out (grid templates) from the template's latest version and the
// patient's normal values.
#include "lab/sheets.h"

#include <functional>

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

}  // namespace tq::sheets
