#include "foundation/ui/flexgrid.h"

#include "foundation/base/apperror.h"
#include "foundation/ui/placement.h"
#include "foundation/ui/widgets.h"

#include <QBrush>
#include <QFont>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QMetaMethod>
#include <QKeyEvent>
#include <algorithm>

namespace tq {

// ---------------------------------------------------------------- model

FlexGridModel::FlexGridModel(QObject* parent) : QAbstractTableModel(parent) {}

int FlexGridModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_dataRows;
}

int FlexGridModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : cols();
}

void FlexGridModel::check(int row, int col) const
{
    if (row < 0 || row >= rows() || col < 0 || col >= cols())
        throw AppError(QStringLiteral("La celda (%1, %2) no está en la cuadrícula de %3 filas y %4 columnas.")
                           .arg(row).arg(col).arg(rows()).arg(cols()));
}

QVariant FlexGridModel::roleOf(int row, int col, int role) const
{
    switch (role) {
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole:
        return text(row, col);
    case Qt::BackgroundRole:
        if (const auto it = m_back.constFind(key(row, col)); it != m_back.cend())
            return QBrush(*it);
        return {};
    case Qt::FontRole:
        if (bold(row, col)) {
            QFont f;
            f.setBold(true);
            return f;
        }
        return {};
    case Qt::ToolTipRole:
    case Qt::AccessibleDescriptionRole:
        if (const auto it = m_notes.constFind(key(row, col)); it != m_notes.cend())
            return *it;
        return {};
    default:
        return {};
    }
}

QVariant FlexGridModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= m_dataRows || index.column() >= cols())
        return {};
    return roleOf(index.row() + 1, index.column(), role);
}

QVariant FlexGridModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Vertical)
        return role == Qt::DisplayRole ? QVariant(section + 1) : QVariant();
    if (section < 0 || section >= cols())
        return {};
    return roleOf(0, section, role);
}

Qt::ItemFlags FlexGridModel::flags(const QModelIndex& index) const
{
    return index.isValid() ? Qt::ItemIsEnabled | Qt::ItemIsSelectable : Qt::NoItemFlags;
}

void FlexGridModel::setRows(int n)
{
    const int wanted = std::max(n, 1) - 1;
    if (wanted == m_dataRows)
        return;
    if (wanted > m_dataRows)
        beginInsertRows({}, m_dataRows, wanted - 1);
    else
        beginRemoveRows({}, wanted, m_dataRows - 1);
    const bool growing = wanted > m_dataRows;
    for (QStringList& column : m_columns)
        column.resize(wanted);
    m_dataRows = wanted;
    dropOutside();
    growing ? endInsertRows() : endRemoveRows();
}

void FlexGridModel::setCols(int n)
{
    const int wanted = std::max(n, 1);
    const int had = cols();
    if (wanted == had)
        return;
    if (wanted > had)
        beginInsertColumns({}, had, wanted - 1);
    else
        beginRemoveColumns({}, wanted, had - 1);
    m_header.resize(wanted);
    m_columns.resize(wanted);
    for (int c = had; c < wanted; ++c)
        m_columns[c].resize(m_dataRows);
    dropOutside();
    wanted > had ? endInsertColumns() : endRemoveColumns();
}

// Colours, bold and notes of cells no longer in the grid go with them.
void FlexGridModel::dropOutside()
{
    const auto outside = [this](quint64 k) {
        return int(k >> 32) >= rows() || int(quint32(k)) >= cols();
    };
    m_back.removeIf([&](const auto& it) { return outside(it.key()); });
    m_bold.removeIf([&](const auto& it) { return outside(it.key()); });
    m_notes.removeIf([&](const auto& it) { return outside(it.key()); });
}

QString FlexGridModel::text(int row, int col) const
{
    check(row, col);
    return row == 0 ? m_header[col] : m_columns[col][row - 1];
}

void FlexGridModel::cellChanged(int row, int col)
{
    if (row == 0) {
        emit headerDataChanged(Qt::Horizontal, col, col);
    } else {
        const QModelIndex i = index(row - 1, col);
        emit dataChanged(i, i);
    }
}

void FlexGridModel::setText(int row, int col, const QString& text)
{
    check(row, col);
    (row == 0 ? m_header[col] : m_columns[col][row - 1]) = text;
    cellChanged(row, col);
}

void FlexGridModel::setColumnTexts(int col, QStringList texts, int firstRow)
{
    check(firstRow, col);
    if (firstRow == 0)
        throw AppError(QStringLiteral("Una columna se llena desde la fila 1."));
    const int count = std::min(int(texts.size()), rows() - firstRow);
    if (count <= 0)
        return;
    QStringList& column = m_columns[col];
    if (firstRow == 1 && count == m_dataRows) {
        texts.resize(count);
        column = std::move(texts);
    } else {
        std::move(texts.begin(), texts.begin() + count, column.begin() + (firstRow - 1));
    }
    emit dataChanged(index(firstRow - 1, col), index(firstRow - 2 + count, col));
}

// A cell's mark (colour or bold) is kept only while it is on.
template <typename T>
void FlexGridModel::mark(QHash<quint64, T>& marks, int row, int col, bool on, const T& value)
{
    check(row, col);
    if (on)
        marks.insert(key(row, col), value);
    else
        marks.remove(key(row, col));
    cellChanged(row, col);
}

void FlexGridModel::setBackColor(int row, int col, const QColor& color)
{
    mark(m_back, row, col, color.isValid(), color);
}

QColor FlexGridModel::backColor(int row, int col) const
{
    check(row, col);
    return m_back.value(key(row, col));
}

void FlexGridModel::setBold(int row, int col, bool bold)
{
    mark(m_bold, row, col, bold, true);
}

void FlexGridModel::setNote(int row, int col, const QString& note)
{
    mark(m_notes, row, col, !note.isEmpty(), note);
}

bool FlexGridModel::bold(int row, int col) const
{
    check(row, col);
    return m_bold.contains(key(row, col));
}

void FlexGridModel::clearAll()
{
    beginResetModel();
    for (QString& h : m_header)
        h.clear();
    for (QStringList& column : m_columns)
        std::fill(column.begin(), column.end(), QString());
    m_back.clear();
    m_bold.clear();
    m_notes.clear();
    endResetModel();
}

// ---------------------------------------------------------------- grid

FlexGrid::FlexGrid(QWidget* parent) : QTableView(parent), m_model(new FlexGridModel(this))
{
    m_model->setCols(2);
    m_model->setRows(2);
    m_widths.fill(-1, 2);
    setModel(m_model);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setTabKeyNavigation(false);
    setAccessibleName(QStringLiteral("Cuadrícula"));
    verticalHeader()->setVisible(false);
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setSectionsClickable(false);
    connect(selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex& current, const QModelIndex&) { currentMoved(current); });
    connect(this, &QAbstractItemView::clicked, this, [this](const QModelIndex& i) {
        if (i.isValid()) {
            emit rowClicked(i.row() + 1);
            emit rowChosen(i.row() + 1);
        }
    });
    showCursor();
}

void FlexGrid::setRows(int n)
{
    m_model->setRows(n);
    m_row = std::min(m_row, rows() - 1);
    showCursor();
}

void FlexGrid::setCols(int n)
{
    m_model->setCols(n);
    m_widths.resize(cols(), -1);
    m_col = std::min(m_col, cols() - 1);
    showCursor();
}

void FlexGrid::setColumnTexts(int col, QStringList texts, int firstRow)
{
    m_model->setColumnTexts(col, std::move(texts), firstRow);
}

void FlexGrid::setRow(int row)
{
    if (row < 0 || row >= rows())
        throw AppError(QStringLiteral("La fila %1 no está en la cuadrícula de %2 filas.").arg(row).arg(rows()));
    m_row = row;
    showCursor();
}

void FlexGrid::setCol(int col)
{
    if (col < 0 || col >= cols())
        throw AppError(QStringLiteral("La columna %1 no está en la cuadrícula de %2 columnas.").arg(col).arg(cols()));
    m_col = col;
    showCursor();
}

// The view's current cell follows the cursor; on the header row it has none.
void FlexGrid::showCursor()
{
    const int row = m_row, col = m_col;
    if (row >= 1) {
        const QModelIndex i = m_model->index(row - 1, col);
        if (i != currentIndex())
            selectionModel()->setCurrentIndex(i, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    } else if (currentIndex().isValid()) {
        selectionModel()->clearCurrentIndex();
        clearSelection();
    }
    m_row = row;
    m_col = col;
}

void FlexGrid::currentMoved(const QModelIndex& current)
{
    if (!current.isValid())
        return;
    m_row = current.row() + 1;
    m_col = current.column();
}

void FlexGrid::setColWidth(int col, int twipsWidth)
{
    m_model->text(0, col);   // raises when the column is not in the grid
    m_widths[col] = twipsWidth;
    setColumnHidden(col, twipsWidth <= 0);
    if (twipsWidth > 0)
        setColumnWidth(col, scaledWidth(twips(twipsWidth), m_scale));
    updateGeometry();
}

void FlexGrid::setColumns(std::initializer_list<Column> columns)
{
    setCols(int(columns.size()));
    int c = 0;
    for (const Column& column : columns) {
        setTextMatrix(0, c, QString::fromUtf8(column.header));
        setColWidth(c++, column.twips);
    }
}

QSize FlexGrid::sizeHint() const { return gridSizeHint(this, QTableView::sizeHint()); }

void FlexGrid::setColumnScale(double scale)
{
    scale = scale > 0 ? scale : 1.0;
    if (scale == m_scale)
        return;
    m_scale = scale;
    for (int c = 0; c < int(m_widths.size()); ++c)
        if (m_widths[c] > 0)
            setColumnWidth(c, scaledWidth(twips(m_widths[c]), m_scale));
    updateGeometry();
}

int FlexGrid::colWidth(int col) const
{
    m_model->text(0, col);
    return m_widths[col];
}

void FlexGrid::clear()
{
    m_model->clearAll();
    showCursor();
}

void FlexGrid::keyPressEvent(QKeyEvent* event)
{
    event->ignore();
    emit cellKeyPressed(m_row, m_col, event);
    if (event->isAccepted())
        return;
    // Enter chooses the row where a screen listens for it; elsewhere it goes
    // on as before (to the window's default button).
    static const QMetaMethod chosen = QMetaMethod::fromSignal(&FlexGrid::rowChosen);
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && m_row >= 1
        && m_row < rows() && isSignalConnected(chosen)) {
        event->accept();
        emit rowChosen(m_row);
        return;
    }
    QTableView::keyPressEvent(event);
}

}  // namespace tq
