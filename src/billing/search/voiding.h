#pragma once
// The voiding box beside an invoice's copy, for the screens of other rooms
// that show an invoice the way the voiding screen does.
#include <cstdint>

class QWidget;

namespace tq {

// Opens the voiding box at the top left for invoice `numero` and beside it
// its copy (the voided one when `anulada`); `canVoid` false disables the
// void button. Returns the box.
QWidget* showVoidingBox(std::int32_t numero, bool anulada, bool canVoid);

}  // namespace tq
