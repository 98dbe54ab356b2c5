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

// A printed sheet: every invoice line under that sheet is marked printed.
// Nothing for a sheet id of 0 or less. Throws DbError.
void marcarImpresion(std::int32_t idFormato);

}  // namespace tq
