#pragma once
// Corrections of a saved result sheet, and what the laboratory keeps of
// them. A correction replaces the stored cells of a sheet (an invoice's
// sheet number) with the ones typed on the correction screen and leaves a
// line in the change log (`historialcambios`: who authorised it, the
// template, the reason, the day). The sheet comes back as sheet 1 of its
// invoice, in the latest version of its template, without a format id.
//
// Beyond the bare log, a correction never loses a result: the cells as
// they stood before are kept in `celdasanteriores`, under the number of the
// log line (`historialcambios.cod_cambio`), with who typed the change and
// when. The delete, the new cells, the old ones and the log line are one
// transaction.
#include "lab/sheets.h"

#include <QDateTime>
#include <QList>
#include <QString>
#include <cstdint>

namespace tq::corrections {

// The one message of a correction without a reason.
inline const QString kNoReason = QStringLiteral("Debe agregar una descripcion del cambio");
// What a saved correction says.
inline const QString kCorrected = QStringLiteral("El proceso se Realizo con Exito!!!");

// The sheet being corrected, as the correction list chose it.
struct Target {
    std::int32_t factura = 0;
    std::int32_t numFormato = 0;
    int codPlantilla = 0;
    QString plantilla;     // the template's name as the list showed it
    QString autorizo;      // the administrator signed on at the gate
    QString tecnico;       // the user who typed the change
};

struct Saved {
    std::int32_t codCambio = 0;   // the log line
    std::int32_t numFormato = 0;  // always 1
    std::int32_t version = 0;     // 0 for the families without versions
    int earlierCells = 0;         // rows kept from before
};

// Replaces a grid sheet (codes 2, 3, 4). `cells` as `sheets::gridCells`
// gives them; the comment row "W" is always written. The version goes on
// the rows the family has always written it on: hematology "B" and "W",
// urinalysis every row, chemistry "B" only.
// Throws AppError(kNoReason) when `descripcion` is empty, DbError when the
// store fails; either way nothing changed.
Saved saveGrid(const Target& target, const QString& descripcion,
               const QList<std::pair<QString, QString>>& cells, const QString& comment);
// Parasitology: the ten fields, empty ones left out.
Saved saveParasitology(const Target& target, const QString& descripcion,
                       const QStringList& fields);
// The free-text pages (codes 1 and 6): one row, cell "1".
Saved saveBlank(const Target& target, const QString& descripcion, const QString& text);

// --- What an auditor reads ------------------------------------------------

// One saved correction with the cells the sheet held before it.
struct Change {
    std::int32_t codCambio = 0;
    std::int32_t factura = 0;
    std::int32_t numFormatoAnterior = 0;
    int codPlantilla = 0;
    QString plantilla;
    QString autorizo;
    QString tecnico;
    QString descripcion;
    QDateTime momento;
    QList<sheets::StoredCell> before;   // every row the correction took away
    QList<int> beforePlantillas;        // the template of each of those rows
};

// The corrections of an invoice, oldest first. Throws DbError.
QList<Change> changesOfInvoice(std::int32_t factura);

// A sheet's versions side by side: the cells before each correction and as
// they stand now, one column per version, one row per cell name (in the
// order the names first appear). Cells that differ from the version on
// their left are marked.
struct Versions {
    QStringList titles;                // "Antes del cambio 1 (dd/MM/yyyy hh:mm)" ... "Actual"
    QList<Change> changes;             // one per column but the last
    QStringList celdas;                // the rows
    QList<QStringList> values;         // values[row][column]
    QList<QList<bool>> changed;        // changed[row][column]
};
// The versions of template `codPlantilla` on invoice `factura`: the cells
// before every correction of that template there, oldest first, then its
// rows now under sheet 1, where every correction puts it. Throws DbError.
Versions versionsOf(std::int32_t factura, int codPlantilla);

}  // namespace tq::corrections
