#pragma once
// Set-up the laboratory's tests share: exams waiting on the work table, result
// rows, the store read back as text, menu entries run as a user would.
#include "testsupport.h"

#include <QStringList>
#include <QVariantList>
#include <cstdint>

namespace tq::test {

// What a sheet's save reports once its rows are stored, and first when the
// proposed format id had been taken at another bench meanwhile.
inline const QString kSheetSaved = QStringLiteral("El resultado ha sido guardado exitosamente");
QString formatIdMoved(std::int32_t proposed, std::int32_t taken);

// Bills `exam` once more on `factura` and puts one unit of it on the work
// table; returns the waiting exam's correlativo.
int addWaiting(std::int32_t factura, int exam, const QString& examen = QStringLiteral("Examen"));

// A result cell stored under sheet `formatId`, as another bench saves one.
void addResult(std::int32_t factura, std::int32_t numFormato, int plantilla, std::int32_t formatId,
               const QString& celda, const QString& valor);

// Every row `sql` gives, its columns joined by `separator`.
QStringList rowsOf(const QString& sql, const QVariantList& binds = {},
                   const QString& separator = QStringLiteral("="));

// Runs a menu entry of `w`: the messages it showed ("<name disabled>" when it
// can't run). File and printer answers already queued stay for it.
QStringList trigger(QWidget* w, const QString& action, ScriptedPrompts& sp);

}  // namespace tq::test
