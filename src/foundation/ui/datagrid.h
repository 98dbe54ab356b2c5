#pragma once
// A bound data grid: a read-only table over the rows of a recordset, columns
// in the query's order with the column names as headers. Choosing a row is a
// single click (or moving to it with the keyboard). The grid keeps its own
// copy of the rows, so a screen can read the chosen row even after another
// screen has reopened the same slot of amb1.
#include <QAbstractTableModel>
#include <QStringList>
#include <QTableView>
#include <QVariant>
#include <QVector>

namespace tq {

class Recordset;

class RecordsetModel : public QAbstractTableModel {
    Q_OBJECT
public:
    explicit RecordsetModel(QObject* parent = nullptr);

    // Reads every row of the recordset (those that pass its filter), leaving
    // out the columns named in `excluded` (compared without regard to case).
    void load(const Recordset& rs, const QStringList& excluded = {});
    void clear();

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    QStringList columnNames() const { return m_columns; }
    // Index of a column by name, without regard to case; -1 when absent.
    int columnIndex(const QString& name) const;
    QVariant value(int row, int column) const;

    // How a stored value reads in a grid cell: dates as "DD/MM/YYYY", null as "".
    static QString displayText(const QVariant& v);

private:
    QStringList m_columns;
    QVector<QVector<QVariant>> m_rows;
};

class DataGrid : public QTableView {
    Q_OBJECT
public:
    explicit DataGrid(QWidget* parent = nullptr);

    // Shows the rows of `rs`. No row is current afterwards and rowChosen is
    // not emitted: binding is not a choice of the user.
    void bind(const Recordset& rs);
    void clear();

    // Columns that never enter the grid (a password, for one). Kept across binds.
    void setExcludedColumns(const QStringList& names);
    // Columns read but not shown. Kept across binds.
    void setHiddenColumns(const QStringList& names);

    int rows() const;
    int columns() const;
    QStringList columnNames() const;
    int columnIndex(const QString& name) const;

    // The current row, or -1.
    int currentRow() const;
    // Moves the cursor to a row (-1 clears it) without emitting rowChosen.
    void setCurrentRow(int row);
    // First row whose column equals `value` (compared as text), or -1.
    int findRow(const QString& column, const QVariant& value) const;

    QVariant value(int row, const QString& column) const;
    QVariant value(int row, int column) const;
    // The cell as the grid shows it.
    QString text(int row, const QString& column) const;
    QString text(int row, int column) const;

    RecordsetModel* recordsetModel() const { return m_model; }

    // Every column drawn at this share of the width its texts need (1 by
    // default): a grid given more width than its window has keeps its
    // columns' proportions.
    void setColumnScale(double scale);
    double columnScale() const { return m_scale; }

    // The width that shows a column's texts and title whole, as of the last
    // bind, before any scaling; -1 for a column not bound.
    int naturalWidth(int col) const { return col >= 0 && col < m_natural.size() ? m_natural[col] : -1; }
    // As wide as its columns and the scroll bar's room.
    QSize sizeHint() const override;

signals:
    // The user chose a row.
    void rowChosen(int row);

protected:
    void mousePressEvent(QMouseEvent* event) override;

private:
    void applyHidden();
    void fitColumns();
    void applyScale();
    void currentMoved(const QModelIndex& current);
    void cellClicked(const QModelIndex& index);

    RecordsetModel* m_model;
    QStringList m_excluded;
    QStringList m_hidden;
    bool m_quiet = false;
    double m_scale = 1.0;
    QVector<int> m_natural;
    int m_pressEmitted = -1;
};

}  // namespace tq
