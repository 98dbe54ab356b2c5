#pragma once
// Small behaviours that many screens share.
class QComboBox;

namespace tq {

// A list-only combo: the choice comes from its list; typed keys are
// cancelled (arrows, Tab, the space bar and the drop-down still work). The
// combo may still show a text that is not one of its entries when the screen
// sets it.
void makeListOnly(QComboBox* combo);

// Positions and sizes the laboratory's screens were laid out in are twips
// (1440 to the inch): pixels at the screen's logical resolution (15 twips to a
// pixel at 96 dpi).
int twips(int value);

}  // namespace tq
