#pragma once
// An order printed: the shared `rsrorden` narrowed to its number and shown
// as "Cotizacion / Orden" (reporOrden) with the laboratory's heading.
#include <cstdint>

class QWidget;

namespace tq {

// Shows the order's report; the caller waits until its preview closes.
// Throws AppError/DbError when the command can't be read.
void showOrderReport(std::int32_t numero, QWidget* owner);

}  // namespace tq
