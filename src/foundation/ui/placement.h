#pragma once
// Where a screen opens and how large. The first time a screen shows it takes
// the size and place the user last left it at on this workstation, brought
// back inside the space there is if the display has since become smaller;
// otherwise the size its contents need: its fields and buttons at their
// sizes, every grid wide enough for the columns it shows side by side (the
// columns, the row header and the room of the vertical scroll bar) and every
// page in a scroll area at its whole width, all within the space there is.
// Where a grid's columns cannot fit that space they keep their proportions
// and share the width there is. A window of its own opens centred on the main
// window; a screen inside the main window opens where its caller put it,
// moved up or left when it would run past the edge.
//
// The registry places every screen it creates; a window shown by other means
// is placed with placeWindow before it shows.
#include <QMargins>
#include <QRect>
#include <QSize>
#include <QString>

class QAbstractScrollArea;
class QWidget;

namespace tq {

// The smallest screen the laboratory uses; every screen is made to open whole
// on it.
inline constexpr int kSmallestScreenWidth = 1366;
inline constexpr int kSmallestScreenHeight = 768;

// The main window, over which windows of their own open centred (the frame
// sets it).
void setPlacementCentre(QWidget* mainWindow);

// Places `screen` when it first shows (as a window of its own, or inside a
// sub-window of the main window) and remembers from then on the size and
// place the user gives it.
void placeWhenShown(QWidget* screen);

// Places a window now, once: a window of its own, or the sub-window of the
// main window that holds a screen.
void placeWindow(QWidget* window);

// The width `area` needs to show all it is meant to show side by side: a
// grid's columns (at the widths given, before any scaling), its row header
// when shown, the vertical scroll bar's room and the frame; a page held in a
// scroll area at its least width, with the same room. -1 for anything else.
int widthToShowAll(const QAbstractScrollArea* area);
// The same for a grid with its columns as drawn now (scaled): the width the
// grids give as their size hint, so that a layout with room for its hints
// shows every column.
int widthToShowColumns(const QAbstractScrollArea* grid);

// The size the contents of `screen` need: the larger of the size it was laid
// out at and what its layout asks with every grid and page at
// widthToShowAll.
QSize neededSize(QWidget* screen);

// The space `window` may take: the main window's working area for a
// sub-window, else the free part of the display the main window is on.
QRect spaceFor(const QWidget* window);

// A column of `width` pixels drawn at `scale`, never narrower than a pixel.
int scaledWidth(int width, double scale);
// A grid's size hint: as high as Qt's `base`, as wide as its columns
// (widthToShowColumns) when that is wider.
QSize gridSizeHint(const QAbstractScrollArea* grid, const QSize& base);

// Room for the frame a window manager draws round a window of its own,
// before the window has one to measure.
QMargins windowFrameRoom();

// Where the size and place of screen `name` are kept among the user's
// settings.
QString placementKey(const QString& name);

}  // namespace tq
