#pragma once
// Set-up the laboratory's tests share: waiting exams, results, rows as text, menu entries.
#include "testsupport.h"

#include <QListWidget>
#include <QStringList>
#include <QVariantList>
#include <cstdint>

namespace tq::test {

// What a sheet's save reports, and first when the proposed format id was taken meanwhile.
inline const QString kSheetSaved = QStringLiteral("El resultado ha sido guardado exitosamente");
inline QString formatIdMoved(std::int32_t proposed, std::int32_t taken)
{
    return QString("El número de formato %1 ya fue usado en otra estación; la hoja se guardó con el "
                   "número de formato %2.").arg(proposed).arg(taken);
}

// Bills `exam` once more on `factura`, one unit on the work table; returns its correlativo.
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

// The texts of a list's items, in order.
QStringList texts(QListWidget* list);

}  // namespace tq::test
