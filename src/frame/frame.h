#pragma once
// What the rest of the program may ask of the frame: the main window, the
// invoice opened on its start panel, and the pause. Screens of other rooms
// include this, never the frame's screens.
class QWidget;

namespace tq {

// The open main window, or nullptr (a screen opened on its own, a test).
QWidget* mainWindow();

// Opens the invoice on the start panel, as the panel's picture does; false
// when no main window is open.
bool openInvoiceOnPanel(bool restart);

// Shows the pause modally and returns when it has gone.
void pausa();

}  // namespace tq
