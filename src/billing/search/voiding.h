#pragma once
// The voiding box beside an invoice's copy, and the copy itself, for the
// screens that print or show an invoice the way the voiding screen does.
#include <cstdint>

class QWidget;

namespace tq {

// Opens the voiding box at the top left for invoice `numero` and beside it
// its copy (the voided one when `anulada`); `canVoid` false disables the
// void button. Returns the box.
QWidget* showVoidingBox(std::int32_t numero, bool anulada, bool canVoid);

// The shared copy of an invoice (`rsrfact1`) opened afresh and narrowed to
// invoice `numero`, as the print-outs read it; true when it is voided.
bool openInvoiceCopy(std::int32_t numero);

}  // namespace tq
