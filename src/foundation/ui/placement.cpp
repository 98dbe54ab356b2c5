#include "foundation/ui/placement.h"

#include "foundation/ui/datagrid.h"
#include "foundation/ui/flexgrid.h"
#include "foundation/ui/widgets.h"

#include <QApplication>
#include <QEvent>
#include <QHeaderView>
#include <QLayout>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPointer>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QSettings>
#include <QTreeView>
#include <algorithm>

namespace tq {

namespace {

QPointer<QWidget> g_centre;

// The size a screen was laid out at, kept when it is created (the sub-window
// that takes it in resizes it before it shows).
constexpr const char* kDesigned = "tqTamanoDisenado";
// The place and size given when it opened, to tell whether the user changed them.
constexpr const char* kPlaced = "tqLugarDado";

// The header's sections side by side.
int sectionsWidth(const QHeaderView* header)
{
    int sum = 0;
    for (int i = 0; i < header->count(); ++i)
        if (!header->isSectionHidden(i))
            sum += header->sectionSize(i);
    return sum;
}

// The grid's columns side by side: as given (`scaled` false) or as drawn.
int columnsWidth(const QAbstractScrollArea* area, bool scaled)
{
    int inner = 0;
    const QHeaderView* rowHeader = nullptr;
    if (const auto* flex = qobject_cast<const FlexGrid*>(area)) {
        for (int c = 0; c < flex->cols(); ++c) {
            if (flex->isColumnHidden(c))
                continue;
            const int given = flex->colWidth(c);
            inner += given > 0 && !scaled ? twips(given) : flex->columnWidth(c);
        }
        rowHeader = flex->verticalHeader();
    } else if (const auto* data = qobject_cast<const DataGrid*>(area)) {
        // Counted from the widths its texts need: the last column stretches.
        const double scale = scaled ? data->columnScale() : 1.0;
        for (int c = 0; c < data->model()->columnCount(); ++c)
            if (!data->isColumnHidden(c))
                inner += scaledWidth(std::max(0, data->naturalWidth(c)), scale);
        rowHeader = data->verticalHeader();
    } else if (const auto* table = qobject_cast<const QTableView*>(area)) {
        inner = sectionsWidth(table->horizontalHeader());
        rowHeader = table->verticalHeader();
    } else if (const auto* tree = qobject_cast<const QTreeView*>(area)) {
        if (!tree->isHeaderHidden())
            inner = sectionsWidth(tree->header());
    } else if (const auto* scroll = qobject_cast<const QScrollArea*>(area)) {
        if (scroll->widgetResizable() && scroll->widget())
            inner = scroll->widget()->minimumSizeHint().expandedTo(scroll->widget()->minimumSize())
                        .width();
    }
    if (inner <= 0)
        return -1;
    if (rowHeader && !rowHeader->isHidden())
        inner += rowHeader->sizeHint().width();
    return inner + area->verticalScrollBar()->sizeHint().width() + 2 * area->frameWidth();
}

// Grids and pages of `screen` that show their contents side by side, leaving
// out those inside another one (a grid on a page is the page's business).
QList<QAbstractScrollArea*> wideAreas(QWidget* screen)
{
    QList<QAbstractScrollArea*> out;
    for (QAbstractScrollArea* a : screen->findChildren<QAbstractScrollArea*>()) {
        if (!a->isVisibleTo(screen) || widthToShowAll(a) <= 0)
            continue;
        bool inside = false;
        for (QWidget* up = a->parentWidget(); up && up != screen && !inside;
             up = up->parentWidget())
            inside = qobject_cast<QAbstractScrollArea*>(up) != nullptr;
        if (!inside)
            out << a;
    }
    return out;
}

// Size hints are kept by the layouts until they next run: after a grid's
// columns change, every hint between it and the screen is asked again.
void refreshHints(QWidget* screen, const QList<QAbstractScrollArea*>& changed)
{
    for (QAbstractScrollArea* a : changed)
        for (QWidget* w = a; w && w != screen; w = w->parentWidget())
            w->updateGeometry();
    for (QLayout* l : screen->findChildren<QLayout*>())
        l->invalidate();
    if (screen->layout())
        screen->layout()->invalidate();
}

void setScale(QAbstractScrollArea* area, double scale)
{
    if (auto* flex = qobject_cast<FlexGrid*>(area))
        flex->setColumnScale(scale);
    else if (auto* data = qobject_cast<DataGrid*>(area))
        data->setColumnScale(scale);
}

QSize designedSize(const QWidget* screen)
{
    const QVariant v = screen->property(kDesigned);
    return v.isValid() ? v.toSize() : QSize();
}

// The size of the contents of `screen` within `room`: what they need, and
// where the grids need more width than there is, their columns scaled down
// together until the layout's wish fits.
QSize fitInto(QWidget* screen, const QSize& room)
{
    QList<QAbstractScrollArea*> grids;
    QList<QScrollArea*> pages;
    for (QAbstractScrollArea* a : wideAreas(screen)) {
        if (auto* page = qobject_cast<QScrollArea*>(a))
            pages << page;
        else if (qobject_cast<FlexGrid*>(a) || qobject_cast<DataGrid*>(a))
            grids << a;
    }
    for (QAbstractScrollArea* g : std::as_const(grids))
        setScale(g, 1.0);
    // A page is shown at its whole width whenever the room allows it.
    for (QScrollArea* page : std::as_const(pages)) {
        const int whole = widthToShowAll(page);
        if (whole <= room.width() && whole > page->minimumWidth())
            page->setMinimumWidth(whole);
    }
    refreshHints(screen, grids);
    const QSize need = neededSize(screen);
    if (need.width() > room.width() && !grids.isEmpty()) {
        auto wish = [&](double scale) {
            for (QAbstractScrollArea* g : std::as_const(grids))
                setScale(g, scale);
            refreshHints(screen, grids);
            return screen->sizeHint().width();
        };
        double fits = 0.25;
        double tooWide = 1.0;
        for (int i = 0; i < 12; ++i) {
            const double mid = (fits + tooWide) / 2;
            (wish(mid) <= room.width() ? fits : tooWide) = mid;
        }
        wish(fits);
    }
    return need.boundedTo(room);
}

QWidget* contentsOf(QWidget* window)
{
    if (auto* sw = qobject_cast<QMdiSubWindow*>(window))
        return sw->widget();
    return window;
}

QRect clampInto(QRect r, const QRect& space)
{
    r.setWidth(std::min(r.width(), space.width()));
    r.setHeight(std::min(r.height(), space.height()));
    if (r.right() > space.right())
        r.moveRight(space.right());
    if (r.bottom() > space.bottom())
        r.moveBottom(space.bottom());
    if (r.left() < space.left())
        r.moveLeft(space.left());
    if (r.top() < space.top())
        r.moveTop(space.top());
    return r;
}

// The place and size a window is given, as kept: its frame's top-left (a
// sub-window's place in the working area) and the size of what it holds.
QRect placeOf(const QWidget* window) { return QRect(window->pos(), window->size()); }

void remember(QWidget* window)
{
    const QWidget* screen = contentsOf(window);
    if (!screen || screen->objectName().isEmpty() || window->isMaximized()
        || window->isMinimized() || window->isFullScreen())
        return;
    const QRect now = placeOf(window);
    if (window->property(kPlaced).toRect() == now)
        return;
    QSettings settings;
    settings.setValue(placementKey(screen->objectName()), now);
    window->setProperty(kPlaced, now);
}

// Watches a screen: placed when it first shows, remembered when it hides.
class Placer : public QObject {
public:
    using QObject::QObject;
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        const QEvent::Type type = event->type();
        if (type != QEvent::Show && type != QEvent::Hide)
            return false;
        auto* screen = static_cast<QWidget*>(watched);
        QWidget* window = screen->isWindow() ? screen : qobject_cast<QMdiSubWindow*>(screen->parentWidget());
        if (!window)
            return false;
        if (type == QEvent::Show)
            placeWindow(window);
        else
            remember(window);
        return false;
    }
};

Placer* placer()
{
    static QPointer<Placer> p;
    if (!p)
        p = new Placer(QCoreApplication::instance());
    return p;
}

}  // namespace

void setPlacementCentre(QWidget* mainWindow) { g_centre = mainWindow; }

QString placementKey(const QString& name) { return QStringLiteral("pantallas/") + name; }

int widthToShowAll(const QAbstractScrollArea* area) { return columnsWidth(area, false); }

int widthToShowColumns(const QAbstractScrollArea* grid) { return columnsWidth(grid, true); }

int scaledWidth(int width, double scale) { return std::max(1, int(width * scale + 0.5)); }

QSize gridSizeHint(const QAbstractScrollArea* grid, const QSize& base)
{
    return {std::max(base.width(), widthToShowColumns(grid)), base.height()};
}

QMargins windowFrameRoom() { return {4, 30, 4, 4}; }

QSize neededSize(QWidget* screen)
{
    return designedSize(screen).expandedTo(screen->sizeHint()).expandedTo(screen->minimumSizeHint());
}

QRect spaceFor(const QWidget* window)
{
    if (const auto* sw = qobject_cast<const QMdiSubWindow*>(window); sw && sw->mdiArea())
        return sw->mdiArea()->viewport()->rect();
    QScreen* screen = g_centre && g_centre->isVisible() ? g_centre->screen() : window->screen();
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    return screen ? screen->availableGeometry() : QRect(0, 0, kSmallestScreenWidth, kSmallestScreenHeight);
}

void placeWhenShown(QWidget* screen)
{
    if (!screen || !QCoreApplication::instance())
        return;
    if (screen->testAttribute(Qt::WA_Resized) && !screen->property(kDesigned).isValid())
        screen->setProperty(kDesigned, screen->size());
    screen->installEventFilter(placer());
}

void placeWindow(QWidget* window)
{
    if (!window || window->property(kPlaced).isValid())
        return;
    QWidget* screen = contentsOf(window);
    if (!screen)
        return;
    if (!screen->property(kDesigned).isValid() && screen->testAttribute(Qt::WA_Resized))
        screen->setProperty(kDesigned, screen->size());
    const auto* sub = qobject_cast<QMdiSubWindow*>(window);
    const QRect space = spaceFor(window);
    // What the window adds round its contents: a sub-window's title and
    // borders, a window manager's frame.
    const QSize around = sub ? sub->sizeHint() - screen->sizeHint()
                             : QSize(0, 0).grownBy(windowFrameRoom());
    const QString name = screen->objectName();
    const QRect kept = name.isEmpty() ? QRect() : QSettings().value(placementKey(name)).toRect();
    QSize room = space.size() - around;
    if (kept.isValid())
        room = room.boundedTo(sub ? kept.size() - around : kept.size());
    // A kept size is taken whole, within the space; the grids fit it either way.
    const QSize fitted = fitInto(screen, room);
    const QSize contents = kept.isValid() ? room : fitted;
    window->resize(sub ? contents + around : contents);

    QRect frame(window->pos(), sub ? window->size() : window->size().grownBy(windowFrameRoom()));
    if (kept.isValid())
        frame.moveTopLeft(kept.topLeft());
    else if (!sub)
        frame.moveCenter((g_centre && g_centre->isVisible() && g_centre != window
                              ? g_centre->frameGeometry()
                              : space)
                             .center());
    frame = clampInto(frame, space);
    window->move(frame.topLeft());
    window->setProperty(kPlaced, placeOf(window));
}

}  // namespace tq
