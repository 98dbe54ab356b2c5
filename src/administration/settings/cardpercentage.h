#pragma once
// The older way of setting the card percentage, from before the "% uso de
// Tarjeta" screen. Kept as a plain routine; no menu entry leads to it.

namespace tq {

// Asks for confirmation, then for a whole-number percentage until the answer
// is numeric; stores it in tarjeta.tarjeta and in the program's card
// percentage. Returns true when the percentage was changed.
bool cambiarPorcentajeTarjeta();

}  // namespace tq
