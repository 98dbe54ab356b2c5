#include "foundation/ui/datagrid.h"

#include "foundation/data/amb1.h"
#include "foundation/base/values.h"
#include "foundation/ui/placement.h"

#include <algorithm>
#include <QDateTime>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QMouseEvent>

namespace tq {

// ---------------------------------------------------------------- model

RecordsetModel::RecordsetModel(QObject* parent) : QAbstractTableModel(parent) {}

static bool listed(const QStringList& names, const QString& name)
{
    for (const QString& n : names)
        if (n.compare(name, Qt::CaseInsensitive) == 0)
            return true;
    return false;
}

void RecordsetModel::load(const Recordset& rs, const QStringList& excluded)
{
    beginResetModel();
    m_columns.clear();
    m_rows.clear();
    if (rs.isOpen()) {
        const QStringList all = rs.fieldNames();
        QVector<int> keep;
        for (int c = 0; c < all.size(); ++c) {
            if (listed(excluded, all[c]))
                continue;
            keep << c;
            m_columns << all[c];
        }
        const int n = rs.recordCount();
        m_rows.reserve(n);
        for (int r = 0; r < n; ++r) {
            QVector<QVariant> row;
            row.reserve(keep.size());
            for (int c : keep)
                row << rs.valueAt(r, c);
            m_rows << row;
        }
    }
    endResetModel();
}

void RecordsetModel::clear()
{
    beginResetModel();
    m_columns.clear();
    m_rows.clear();
    endResetModel();
}

int RecordsetModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

int RecordsetModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_columns.size());
}

QString RecordsetModel::displayText(const QVariant& v)
{
    if (!v.isValid() || v.isNull())
        return {};
    switch (v.typeId()) {
    case QMetaType::QDate:
        return dateLong(v.toDate());
    case QMetaType::QDateTime: {
        const QDateTime dt = v.toDateTime();
        if (dt.time() == QTime(0, 0))
            return dateLong(dt.date());
        return dateLong(dt.date()) + QLatin1Char(' ') + dt.time().toString(QStringLiteral("HH:mm:ss"));
    }
    case QMetaType::Bool:
        return v.toBool() ? QStringLiteral("True") : QStringLiteral("False");
    case QMetaType::Double:
    case QMetaType::Float:
        return QString::number(v.toDouble(), 'g', 15);
    default:
        break;
    }
    const QString t = v.toString();
    // The embedded store hands dates back as ISO text; show them as dates.
    if (const QDate d = storedDate(t); d.isValid()) {
        const QString time = t.mid(11, 8);
        if (time.isEmpty() || time.startsWith(QLatin1String("00:00:00"))
            || time == QLatin1String("00:00"))
            return dateLong(d);
        return dateLong(d) + QLatin1Char(' ') + time;
    }
    return t;
}

QVariant RecordsetModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= m_rows.size() || index.column() >= m_columns.size())
        return {};
    if (role == Qt::DisplayRole || role == Qt::AccessibleTextRole || role == Qt::ToolTipRole)
        return displayText(m_rows[index.row()][index.column()]);
    return {};
}

QVariant RecordsetModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole && role != Qt::AccessibleTextRole)
        return {};
    if (orientation == Qt::Horizontal)
        return section >= 0 && section < m_columns.size() ? QVariant(m_columns[section]) : QVariant();
    return section + 1;
}

Qt::ItemFlags RecordsetModel::flags(const QModelIndex& index) const
{
    return index.isValid() ? Qt::ItemIsEnabled | Qt::ItemIsSelectable : Qt::NoItemFlags;
}

int RecordsetModel::columnIndex(const QString& name) const
{
    for (int c = 0; c < m_columns.size(); ++c)
        if (m_columns[c].compare(name, Qt::CaseInsensitive) == 0)
            return c;
    return -1;
}

QVariant RecordsetModel::value(int row, int column) const
{
    if (row < 0 || row >= m_rows.size() || column < 0 || column >= m_columns.size())
        return {};
    return m_rows[row][column];
}

// ---------------------------------------------------------------- grid

DataGrid::DataGrid(QWidget* parent) : QTableView(parent), m_model(new RecordsetModel(this))
{
    setModel(m_model);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setAlternatingRowColors(true);
    setTabKeyNavigation(false);
    verticalHeader()->setVisible(false);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
    horizontalHeader()->setStretchLastSection(true);
    horizontalHeader()->setHighlightSections(false);
    connect(selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this](const QModelIndex& current, const QModelIndex&) { currentMoved(current); });
    connect(this, &QAbstractItemView::clicked, this, &DataGrid::cellClicked);
}

void DataGrid::bind(const Recordset& rs)
{
    m_quiet = true;
    m_model->load(rs, m_excluded);
    selectionModel()->clearCurrentIndex();
    clearSelection();
    m_quiet = false;
    applyHidden();
    fitColumns();
}

void DataGrid::fitColumns()
{
    // What the texts and titles need is measured once a bind; a new scale
    // only draws the same widths again.
    const int columns = m_model->columnCount();
    m_natural.resize(columns);
    for (int c = 0; c < columns; ++c)
        m_natural[c] = std::max(sizeHintForColumn(c), horizontalHeader()->sectionSizeHint(c));
    applyScale();
}

void DataGrid::applyScale()
{
    for (int c = 0; c < int(m_natural.size()) && c < m_model->columnCount(); ++c)
        if (!isColumnHidden(c))
            setColumnWidth(c, scaledWidth(m_natural[c], m_scale));
    updateGeometry();
}

QSize DataGrid::sizeHint() const { return gridSizeHint(this, QTableView::sizeHint()); }

void DataGrid::setColumnScale(double scale)
{
    scale = scale > 0 ? scale : 1.0;
    if (scale == m_scale)
        return;
    m_scale = scale;
    applyScale();
}

void DataGrid::clear()
{
    m_quiet = true;
    m_model->clear();
    m_quiet = false;
}

void DataGrid::setExcludedColumns(const QStringList& names) { m_excluded = names; }

void DataGrid::setHiddenColumns(const QStringList& names)
{
    m_hidden = names;
    applyHidden();
}

void DataGrid::applyHidden()
{
    for (int c = 0; c < m_model->columnCount(); ++c)
        setColumnHidden(c, listed(m_hidden, m_model->columnNames().at(c)));
}

int DataGrid::rows() const { return m_model->rowCount(); }
int DataGrid::columns() const { return m_model->columnCount(); }
QStringList DataGrid::columnNames() const { return m_model->columnNames(); }
int DataGrid::columnIndex(const QString& name) const { return m_model->columnIndex(name); }

int DataGrid::currentRow() const
{
    const QModelIndex i = currentIndex();
    return i.isValid() ? i.row() : -1;
}

void DataGrid::setCurrentRow(int row)
{
    m_quiet = true;
    if (row < 0 || row >= rows()) {
        selectionModel()->clearCurrentIndex();
        clearSelection();
    } else {
        int col = 0;
        while (col < columns() - 1 && isColumnHidden(col))
            ++col;
        const QModelIndex i = m_model->index(row, col);
        selectionModel()->setCurrentIndex(
            i, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
        scrollTo(i);
    }
    m_quiet = false;
}

int DataGrid::findRow(const QString& column, const QVariant& value) const
{
    const int c = columnIndex(column);
    if (c < 0)
        return -1;
    const QString wanted = value.toString();
    for (int r = 0; r < rows(); ++r)
        if (m_model->value(r, c).toString() == wanted)
            return r;
    return -1;
}

QVariant DataGrid::value(int row, const QString& column) const
{
    return m_model->value(row, columnIndex(column));
}

QVariant DataGrid::value(int row, int column) const { return m_model->value(row, column); }

QString DataGrid::text(int row, const QString& column) const
{
    return RecordsetModel::displayText(value(row, column));
}

QString DataGrid::text(int row, int column) const
{
    return RecordsetModel::displayText(value(row, column));
}

void DataGrid::mousePressEvent(QMouseEvent* event)
{
    m_pressEmitted = -1;
    QTableView::mousePressEvent(event);
}

void DataGrid::currentMoved(const QModelIndex& current)
{
    if (m_quiet || !current.isValid())
        return;
    m_pressEmitted = current.row();
    emit rowChosen(current.row());
}

void DataGrid::cellClicked(const QModelIndex& index)
{
    // A click on the row that is already current is a choice too; a click that
    // just moved the cursor was announced by currentMoved.
    if (!index.isValid() || index.row() == m_pressEmitted)
        return;
    emit rowChosen(index.row());
}

}  // namespace tq
