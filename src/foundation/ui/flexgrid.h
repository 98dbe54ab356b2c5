#pragma once
// The flex grid: the grid with the classic numbering the laboratory's
// procedures are written in. Row 0 is the fixed header (shown as the view's
// header) and rows() counts it; data rows are 1..rows()-1, columns 0..cols()-1.
// row()/col() are a cursor kept in step with the view's current cell. Texts
// live in one flat vector per column, so a grid of 100,000 rows fills at once;
// colours and bold are kept only for the cells that carry them.
//
// The grid is never edited through Qt's editors: a screen types into a cell by
// its own rules through cellKeyPressed. A row or column outside the grid is a
// fault of the caller and raises AppError.
#include <QAbstractTableModel>
#include <QColor>
#include <QHash>
#include <QStringList>
#include <QTableView>
#include <QVector>

class QKeyEvent;

namespace tq {

class FlexGridModel : public QAbstractTableModel {
    Q_OBJECT
public:
    explicit FlexGridModel(QObject* parent = nullptr);

    // Model rows are the grid's data rows: model row r is grid row r + 1.
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    // In the grid's numbering (row 0 the header).
    int rows() const { return m_dataRows + 1; }
    int cols() const { return int(m_header.size()); }
    void setRows(int n);
    void setCols(int n);
    QString text(int row, int col) const;
    void setText(int row, int col, const QString& text);
    void setColumnTexts(int col, QStringList texts, int firstRow);
    void setBackColor(int row, int col, const QColor& color);
    QColor backColor(int row, int col) const;
    void setBold(int row, int col, bool bold);
    bool bold(int row, int col) const;
    void setNote(int row, int col, const QString& note);
    void clearAll();

private:
    static quint64 key(int row, int col) { return (quint64(quint32(row)) << 32) | quint32(col); }
    void check(int row, int col) const;
    void dropOutside();
    void cellChanged(int row, int col);
    template <typename T>
    void mark(QHash<quint64, T>& marks, int row, int col, bool on, const T& value);
    QVariant roleOf(int row, int col, int role) const;

    int m_dataRows = 0;
    QStringList m_header;
    QVector<QStringList> m_columns;   // one per column, m_dataRows texts each
    QHash<quint64, QColor> m_back;
    QHash<quint64, bool> m_bold;
    QHash<quint64, QString> m_notes;
};

class FlexGrid : public QTableView {
    Q_OBJECT
public:
    // A new grid has 2 rows (the header and one data row) and 2 columns, the
    // cursor on row 1, column 0.
    explicit FlexGrid(QWidget* parent = nullptr);

    int rows() const { return m_model->rows(); }
    // Counts the header row: growing adds empty rows, shrinking drops the last
    // ones with their texts and colours. Never fewer than 1.
    void setRows(int n);
    int cols() const { return m_model->cols(); }
    void setCols(int n);

    // Row 0 reads and writes the header texts.
    QString textMatrix(int row, int col) const { return m_model->text(row, col); }
    void setTextMatrix(int row, int col, const QString& text) { m_model->setText(row, col, text); }
    // Fills a column from `firstRow` down with one change notice; texts past
    // the last row are left out.
    void setColumnTexts(int col, QStringList texts, int firstRow = 1);

    // The cursor.
    int row() const { return m_row; }
    void setRow(int row);
    int col() const { return m_col; }
    void setCol(int col);
    // The text of the cursor cell.
    QString text() const { return textMatrix(m_row, m_col); }
    void setText(const QString& text) { setTextMatrix(m_row, m_col, text); }

    // Cell formatting by row and column; an invalid colour takes the colour off.
    void setCellBackColor(int row, int col, const QColor& color) { m_model->setBackColor(row, col, color); }
    QColor cellBackColor(int row, int col) const { return m_model->backColor(row, col); }
    void setCellFontBold(int row, int col, bool bold) { m_model->setBold(row, col, bold); }
    bool cellFontBold(int row, int col) const { return m_model->bold(row, col); }
    // What a colour or bold means, in words: read by a screen reader and shown
    // as the cell's tip. Empty takes it off.
    void setCellNote(int row, int col, const QString& note) { m_model->setNote(row, col, note); }

    // Width in twips; 0 hides the column, whose texts stay readable.
    void setColWidth(int col, int twipsWidth);
    // A list's columns at once: as many as given, each its header and width
    // in twips.
    struct Column {
        const char* header;
        int twips;
    };
    void setColumns(std::initializer_list<Column> columns);
    // The width last given in twips, or -1 when never given.
    int colWidth(int col) const;
    // Every column drawn at this share of its width (1 by default): a grid
    // given more width than its window has keeps its columns' proportions.
    void setColumnScale(double scale);
    double columnScale() const { return m_scale; }
    // The width in pixels that shows every text of a column whole.
    int contentWidth(int col) const { return sizeHintForColumn(col); }

    // Empties every cell, header included, and takes off colours and bold.
    // Rows, columns and the cursor stay.
    void clear();

    FlexGridModel* flexModel() const { return m_model; }

    // As wide as its columns, its row header and the scroll bar's room.
    QSize sizeHint() const override;

signals:
    // The user clicked a data row (grid numbering); the cursor is already on it.
    void rowClicked(int row);
    // A data row chosen: clicked, or Enter pressed on it (when no handler of
    // cellKeyPressed took the key).
    void rowChosen(int row);
    // A key pressed on the cursor cell, before the grid moves on it. The event
    // arrives ignored: a handler that uses the key accepts it, and the grid then
    // does nothing more with it; keys left ignored move the cursor as usual.
    void cellKeyPressed(int row, int col, QKeyEvent* event);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    // Typing never jumps to a row that starts with the letters typed.
    void keyboardSearch(const QString&) override {}

private:
    void showCursor();
    void currentMoved(const QModelIndex& current);

    FlexGridModel* m_model;
    QVector<int> m_widths;
    double m_scale = 1.0;
    int m_row = 1;
    int m_col = 0;
};

}  // namespace tq
