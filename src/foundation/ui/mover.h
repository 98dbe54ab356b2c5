#pragma once
// The two-list mover: rows of a left list (what can be chosen) go to a right
// list (what was chosen) with ">" (the left list's current row), ">>" (every
// row of the left list, in silence) and come off the right list with "<".
// A row can't be in the right list twice: its key column is compared, and
// ">" refuses with "No puede agregar dos veces el mismo Item".
//
// Rows added since the screen filled the right list are new: the user sees
// them on a green background, and a save asks isNew(row), never the colour.
// The count box shows how many rows the right list holds, or only the new
// ones, as the screen chooses.
//
// The mover is a controller: the screen keeps its own widgets (laid out in
// its .ui, named its own way) and hands them over. Each button runs through
// the error boundary.
//
//     tq::TwoListMover mover({ui->Grid1, ui->Grid2, ui->Command1, ui->Command2,
//                             ui->Command7, ui->txttotal}, this);
//     mover.setKeyColumns(0, 0);
//     mover.setBeforeAddAll([this] { ... return true; });   // the screen's own rule
#include <QColor>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVector>
#include <functional>

class QAbstractButton;
class QWidget;

namespace tq {

class FlexGrid;

struct MoverWidgets {
    FlexGrid* left = nullptr;
    FlexGrid* right = nullptr;
    QAbstractButton* addOne = nullptr;      // ">"
    QAbstractButton* removeOne = nullptr;   // "<"
    QAbstractButton* addAll = nullptr;      // ">>" (optional)
    QWidget* count = nullptr;               // a QLineEdit or QLabel (optional)
};

class TwoListMover : public QObject {
    Q_OBJECT
public:
    // Pure green, 65280 as the laboratory's colour values read.
    static QColor newRowColour() { return QColor(0, 255, 0); }

    enum class Count { AllRows, NewRows };

    TwoListMover(const MoverWidgets& widgets, QObject* parent = nullptr);

    // Column of the key in each list (compared as text). Both 0 by default.
    void setKeyColumns(int left, int right);
    // How a row of the left list reads in the right list; by default its
    // cells in the same columns.
    void setRowMapping(std::function<QStringList(int leftRow)> map);
    // The screen's own rules before ">" and ">>": false refuses (the rule has
    // told the user why).
    void setBeforeAdd(std::function<bool()> rule) { m_beforeAdd = std::move(rule); }
    void setBeforeAddAll(std::function<bool()> rule) { m_beforeAddAll = std::move(rule); }
    void setCounting(Count c);
    void setDuplicateMessage(const QString& text) { m_duplicate = text; }

    // The right list emptied (its header stays), nothing new, the count shown.
    void clearRight();
    // The screen has filled the right list itself: every row it holds now is
    // an old one, without a mark.
    void takeRightAsFilled();
    // A row appended to the right list, marked new or not.
    void appendRight(const QStringList& cells, bool isNew);

    // True when the right list holds `key` in its key column.
    bool contains(const QString& key) const;
    // Whether a row of the right list (grid numbering, 1..rows-1) was added
    // since the list was filled.
    bool isNew(int row) const;
    int newRows() const;
    // The number the count box shows.
    int count() const;

    // The buttons' actions, also for the screen's own keys.
    // ">": false when nothing was added (no row, no key, a duplicate, a rule).
    bool addCurrent();
    // ">>": how many rows were added.
    int addAll();
    // "<": false when the right list has no current row.
    bool removeCurrent();

signals:
    void rightChanged();

private:
    QStringList rowFor(int leftRow) const;
    void appendRows(const QVector<QStringList>& rows, bool isNew);
    void showCount();

    MoverWidgets m_w;
    int m_leftKey = 0;
    int m_rightKey = 0;
    Count m_counting = Count::AllRows;
    QString m_duplicate = QStringLiteral("No puede agregar dos veces el mismo Item");
    std::function<QStringList(int)> m_map;
    std::function<bool()> m_beforeAdd;
    std::function<bool()> m_beforeAddAll;
    QVector<bool> m_new;   // one per data row of the right list
};

}  // namespace tq
