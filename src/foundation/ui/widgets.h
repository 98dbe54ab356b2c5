#pragma once
// Small behaviours that many screens share.
class QComboBox;
class QLineEdit;

namespace tq {

// A list-only combo: the choice comes from its list; typed keys are
// cancelled (arrows, Tab, the space bar and the drop-down still work). The
// combo may still show a text that is not one of its entries when the screen
// sets it.
void makeListOnly(QComboBox* combo);

// An amount typed as the laboratory always typed amounts: Enter, Backspace
// and the characters with codes 46 to 57 (the point, the slash and the
// digits, so that "12/5" still reads 12); any other character is dropped.
// Keys without a character (arrows, Delete, Tab) and Ctrl shortcuts pass.
void makeAmountBox(QLineEdit* box);

// Positions and sizes the laboratory's screens were laid out in are twips
// (1440 to the inch): pixels at the screen's logical resolution (15 twips to a
// pixel at 96 dpi).
int twips(int value);

}  // namespace tq
