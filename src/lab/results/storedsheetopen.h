#pragma once
// What the pending list and the patient's history do alike when a row is
// chosen: the unpaid question, the age recorded on the invoice, the sheet
// read back by its format id and shown on its family's screen to be printed.
#include <QColor>
#include <QString>
#include <cstdint>
#include <optional>

namespace tq {
class FlexGrid;
}

namespace tq::results {

// The question of an invoice not yet wholly paid.
inline const QString kUnpaidQuestion =
    QStringLiteral("La factura aun no ha sido cancelada en su totalidad. desea continuar");
// Both lists say this when there is nothing to show.
inline const QString kNoLines = QStringLiteral("No existen Examenes pendientes creados");

// Light green, 2027687 as the laboratory's colour values read (blue, green,
// red from the high byte down): a result never printed.
QColor unprintedColour();

// The row a list hands over.
struct ChosenLine {
    std::int32_t factura = 0;
    std::int32_t formatId = 0;
    QString fecha;       // the invoice's date as the list shows it: the sheet prints it
    QString paciente;    // the name the sheet prints
};

// The line of a list's data row: the invoice in column 0, its date in
// column 1, the format id in `idCol`; nothing for a row outside the list
// or an empty one.
std::optional<ChosenLine> lineAt(const FlexGrid* grid, int row, int idCol);

// The age recorded on an invoice, once the user has agreed to go on with an
// invoice not wholly paid (`question`, in the screen's own spelling);
// nothing when the answer is No. An invoice not found asks nothing and has
// no age. Throws DbError.
std::optional<QString> ageUnlessDeclined(std::int32_t factura, const QString& question);

// The current format id becomes the row's, so that "imprimir" on the sheet
// marks its lines. Then, for an unpaid invoice, the question (No: false,
// nothing opened); then the sheet, shown modally until it is closed (true).
// A sheet with no rows opens nothing, and is still true. Throws DbError.
bool openStoredLine(const ChosenLine& line);

}  // namespace tq::results
