#pragma once
// The work table: the exams billed and still waiting for a result, one row
// of EvaluadoTemporal per unit. What closes a waiting exam and what marks a
// sheet printed.
#include <QDate>
#include <QString>
#include <cstdint>

namespace tq {

// Closes one waiting exam: its row leaves the table, and the invoice line of
// that exam (the first, when the invoice holds the exam twice) is stamped
// evaluated, by whom, under which sheet and when. Runs inside the caller's
// transaction (the save of a sheet). Returns false when the exam was no
// longer waiting (another bench closed it, or the table was cleaned).
// Throws DbError.
bool cerrarExamen(std::int32_t factura, std::int32_t correlativo, std::int32_t idFormato,
                  const QString& tecnico, const QDate& today = QDate::currentDate());

// The numbers of a result sheet. The format id ties a sheet's rows in
// `resultados` to the invoice lines it closed; it is proposed when the sheet
// is opened ("Llenar Resultado": the highest stored plus 1) and checked again
// inside the sheet's save, which holds the store for writing: when another
// bench saved a sheet under it meanwhile, the save takes the next free one
// and the screen says so. The sheet's number inside its invoice (numformato)
// is taken inside the save only. Both throw DbError.
std::int32_t proposeFormatId();
struct TakenFormatId {
    std::int32_t id = 0;
    bool moved = false;   // the proposed id had been taken meanwhile
};
TakenFormatId takeFormatId(std::int32_t proposed);
std::int32_t nextNumFormato(std::int32_t factura);

// A printed sheet: every invoice line under that sheet is marked printed.
// Nothing for a sheet id of 0 or less. Throws DbError.
void marcarImpresion(std::int32_t idFormato);

}  // namespace tq
