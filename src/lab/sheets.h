#pragma once
// The result sheets of the grid templates (hematology, urinalysis, clinical
// chemistry) and of the fixed and free-text families: where each parameter of
// a template stands on its sheet, which cells are saved under which letter,
// and the saves of a filled sheet. One description per family, used by the
// entry screens, the template editor's preview, the reprint and the
// corrections alike.
#include "lab/normalvalue.h"
#include "lab/templates.h"

#include <QDate>
#include <QList>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <functional>
#include <optional>

namespace tq::sheets {

// A header cell of a grid family: row 0 is the grid's header; urinalysis has
// a second header row (8) in the same colours.
struct HeaderCell {
    int row = 0;
    int col = 0;
    QString text;
};

// The grid of a family (codes 2, 3, 4).
struct GridShape {
    int cols = 0;
    int rows = 0;                    // counting the header row
    QList<HeaderCell> headers;       // row 0 and the second header row
    int secondHeaderRow = -1;        // urinalysis: 8
    QList<int> editableCols;         // where a click lets the user type
    int clearedOnClickCol = -1;      // hematology: a click on column 2 empties it
    QList<int> savedCols;            // the value columns, in save order
    int lastSavedRow = 0;            // rows 1..this are saved (the second header never)
};
const GridShape& gridShape(int codPlantilla);
bool isGridTemplate(int codPlantilla);

// Where the parameter at `counter` (0-based, in the template's order) stands:
// nothing when it lies past the family's room (it is stored, never shown).
struct Place {
    int row = 0;
    int nameCol = 0;
    int valueCol = 0;
    int normalCol = -1;   // -1: the family has no normal column
};
std::optional<Place> placeOf(int codPlantilla, int counter);

// The letter a value column is saved under ("B" 2, "E" 5 ...), and the
// column a stored letter goes back to (which, for chemistry, includes the
// normal columns "C" 3 and "F" 6). -1 / a null char when there is none.
QChar letterOfColumn(int codPlantilla, int col);
int columnOfLetter(int codPlantilla, QChar letter);

// The name of a template as its screen and messages say it.
QString sheetTitle(int codPlantilla);   // "HEMATOLOGIA", "UROANALISIS"...

// Enters that a rich text page takes before every further key is discarded:
// the counter counts Enters from 0, and above this number no key goes in.
inline constexpr int kBlankPageEnters = 12;    // Form19
inline constexpr int kBlankPage6Enters = 36;   // Form36

// The ten fields of parasitology, in cell order 1..10.
const QStringList& parasitologyCaptions();

// What the grid shows of a laid-out template: one text per cell.
struct Cell {
    int row = 0;
    int col = 0;
    QString text;
};

// How normal values are chosen while laying out.
enum class Normals {
    None,      // the editor's preview: names (and urinalysis units) only
    Entry,     // a new sheet: the patient's class, urinalysis units proposed
    Reprint,   // a stored sheet shown again: the two marks left unset
};

// Lays out a list of parameter names (in sheet order) by the family's table:
// names (the line break leaves its name cell empty), normal values, and on a
// new sheet or preview of urinalysis the unit as the proposed value. Each name
// is found as the first parameter of that name. Throws DbError.
QList<Cell> layOut(int codPlantilla, const QStringList& names, Normals normals,
                   PatientClass who = {});
// The same for a stored version of the template.
QList<Cell> layOutVersion(int codPlantilla, std::int32_t version, Normals normals,
                          PatientClass who = {});

// --- A stored sheet read back ---------------------------------------------

// One row of `resultados`: the cell's name (letter and row, "W" for the
// comment, 1..10 on parasitology, 1 on the free-text pages) and its text.
struct StoredCell {
    QString celda;
    QString valor;
};

// The rows of one saved sheet, in the order they were written.
struct StoredSheet {
    int codPlantilla = 0;          // of the first row
    std::int32_t version = 0;      // of the first row; 0 when it has none
    std::int32_t factura = 0;
    std::int32_t numFormato = 0;
    std::int32_t formatId = 0;     // 0 for a corrected sheet, which has none
    QList<StoredCell> cells;
    bool isEmpty() const { return cells.isEmpty(); }
};

// The sheet stored under a format id (the pending list, the history).
// Throws DbError.
StoredSheet readSheetById(std::int32_t formatId);
// The sheet `numFormato` of template `codPlantilla` on an invoice (the
// reprint and correction lists). Throws DbError.
StoredSheet readSheet(std::int32_t factura, std::int32_t numFormato, int codPlantilla);

// A grid sheet laid out again from its rows, in the template's version it
// was saved with: first the names and normal values (the marks unset, as
// every reprint has them), then each cell at its letter's column and its
// row. The comment ("W") goes to the box under the grid; on hematology and
// urinalysis it is also written over the header cell of the column the row
// before it went to (that header gives way to the comment, even an empty
// one); chemistry keeps its header. Throws DbError.
struct RebuiltGrid {
    QList<Cell> cells;
    QString comment;
};
RebuiltGrid rebuildGrid(const StoredSheet& sheet);
// The ten fields of parasitology: cell "1".."10" into field 1..10.
QStringList parasitologyFields(const StoredSheet& sheet);
// The page of a free-text sheet: the first row's text.
QString pageTextOf(const StoredSheet& sheet);

// --- Saving a sheet from the work table -----------------------------------

// One exam picked on the work table.
struct PickedExam {
    QString examen;
    QString paciente;
    QString edad;
    std::int32_t correlativo = 0;
    std::int32_t factura = 0;
};

// What the work table hands the sheet it opens.
struct SheetContext {
    QList<PickedExam> picks;
    QList<std::int32_t> invoices;      // the invoices picked, as the work table listed them
    std::int32_t factura = 0;          // the invoice of the exam shown last
    std::int32_t proposedFormatId = 0; // proposed when "Llenar Resultado" was pressed
    QString tecnico;                   // the signed-on user
    QDate today = QDate::currentDate();
};

// A saved sheet.
struct SavedSheet {
    std::int32_t formatId = 0;
    bool formatIdMoved = false;   // the proposed id was taken by another bench meanwhile
    QList<std::int32_t> numFormatos;   // per row written for an invoice, in order
    int closed = 0;               // exams taken off the work table
};

// A grid sheet: `cells` are (celda, valor) in save order, empty values left
// out by the caller; the comment row "W" is always written. Codes 2, 3, 4.
// One transaction: cells, comment and the closing of every picked exam.
// Throws DbError having written nothing.
SavedSheet saveGridSheet(int codPlantilla, const QList<std::pair<QString, QString>>& cells,
                         const QString& comment, const SheetContext& context);
// Parasitology: the ten fields, empty ones left out, no comment row.
SavedSheet saveParasitology(const QStringList& fields, const SheetContext& context);
// The blank page: one row per listed invoice, each closing its own exams.
// Form36's page is stored the same way under its own code (6).
SavedSheet saveBlankSheet(const QString& text, const SheetContext& context,
                          int codPlantilla = kBlankTemplate);

// The cells of a grid as the save writes them: per value column, rows 1 down,
// the non-empty ones, named letter + row.
template <typename TextAt>
QList<std::pair<QString, QString>> gridCells(int codPlantilla, int rows, TextAt textAt)
{
    QList<std::pair<QString, QString>> cells;
    for (int col : gridShape(codPlantilla).savedCols)
        for (int r = 1; r < rows && r <= gridShape(codPlantilla).lastSavedRow; ++r) {
            if (r == gridShape(codPlantilla).secondHeaderRow)
                continue;
            const QString v = textAt(r, col);
            if (!v.isEmpty())
                cells.append({QString(letterOfColumn(codPlantilla, col)) + QString::number(r), v});
        }
    return cells;
}

}  // namespace tq::sheets
