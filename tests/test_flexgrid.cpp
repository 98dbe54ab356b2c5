// The flex grid: classic numbering with the header as row 0, the cursor, bulk
// filling, hidden columns, cell formatting, a click choosing a row, a screen
// typing into a cell through the key hook, and what a screen reader is given.
#include "foundation/base/apperror.h"
#include "foundation/ui/flexgrid.h"

#include <QAccessible>
#include <QBrush>
#include <QFont>
#include <QKeyEvent>
#include <QSignalSpy>
#include <QtTest>

using namespace tq;

class TestFlexGrid : public QObject {
    Q_OBJECT

private slots:
    void numberingFormattingAndShape()
    {
        FlexGrid g;
        QCOMPARE(g.rows(), 2);
        QCOMPARE(g.row(), 1);
        g.setRows(4);
        g.setCols(3);
        QCOMPARE(g.model()->rowCount(), 3);
        g.setTextMatrix(0, 1, QStringLiteral("Examen"));
        g.setTextMatrix(3, 2, QStringLiteral("12.50"));
        QCOMPARE(g.model()->headerData(1, Qt::Horizontal).toString(), QStringLiteral("Examen"));
        g.setRow(3);
        g.setCol(2);
        QCOMPARE(g.currentIndex(), g.model()->index(2, 2));
        QCOMPARE(g.text(), QStringLiteral("12.50"));

        // Colour and bold come back through the model, header included, and go again.
        g.setCellBackColor(2, 1, QColor(Qt::yellow));
        g.setCellFontBold(2, 1, true);
        g.setCellFontBold(0, 1, true);
        const QModelIndex cell = g.model()->index(1, 1);
        QCOMPARE(cell.data(Qt::BackgroundRole).value<QBrush>().color(), QColor(Qt::yellow));
        QVERIFY(cell.data(Qt::FontRole).value<QFont>().bold());
        QVERIFY(g.model()->headerData(1, Qt::Horizontal, Qt::FontRole).value<QFont>().bold());
        g.setCellFontBold(2, 1, false);
        g.setCellBackColor(2, 1, QColor());
        QVERIFY(!cell.data(Qt::FontRole).isValid());
        QVERIFY(!cell.data(Qt::BackgroundRole).isValid());

        // Shrinking drops the last rows with their texts and colours and moves
        // the cursor up; growing again brings empty rows.
        g.setCellBackColor(3, 2, Qt::red);
        g.setRows(2);
        QCOMPARE(g.row(), 1);
        QVERIFY_THROWS_EXCEPTION(AppError, g.textMatrix(3, 2));
        g.setRows(4);
        QCOMPARE(g.textMatrix(3, 2), QString());
        QVERIFY(!g.cellBackColor(3, 2).isValid());

        // Clear empties texts and formatting, header included; the shape stays.
        g.clear();
        QCOMPARE(g.rows(), 4);
        QCOMPARE(g.textMatrix(0, 1), QString());
        QVERIFY(!g.cellFontBold(0, 1));

        g.setCols(1);
        QCOMPARE(g.col(), 0);
        QVERIFY_THROWS_EXCEPTION(AppError, g.setTextMatrix(1, 1, QStringLiteral("x")));
        QVERIFY_THROWS_EXCEPTION(AppError, g.setRow(4));
        g.setRows(0);
        QCOMPARE(g.rows(), 1);
        QCOMPARE(g.row(), 0);
    }

    void bulkFillAndHiddenColumns()
    {
        FlexGrid g;
        g.setCols(3);
        g.setRows(100001);
        QStringList names;
        for (int i = 1; i <= 100000; ++i)
            names << QStringLiteral("Paciente %1").arg(i);
        g.setColumnTexts(1, names);
        QCOMPARE(g.textMatrix(100000, 1), QStringLiteral("Paciente 100000"));

        // A fill from the middle lands there and stops at the last row.
        g.setColumnTexts(0, {QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")}, 99999);
        QCOMPARE(g.textMatrix(99999, 0), QStringLiteral("a"));
        QCOMPARE(g.textMatrix(100000, 0), QStringLiteral("b"));
        QVERIFY_THROWS_EXCEPTION(AppError, g.setColumnTexts(2, {QStringLiteral("x")}, 0));

        // A column of width 0 is hidden but still carries its data.
        g.setColWidth(0, 0);
        QVERIFY(g.isColumnHidden(0));
        QCOMPARE(g.textMatrix(99999, 0), QStringLiteral("a"));
        g.setColWidth(0, 1440);
        QVERIFY(!g.isColumnHidden(0));
    }

    void clickAndKeysFromTheUser()
    {
        FlexGrid g;
        g.setRows(6);
        g.setCols(2);
        g.setTextMatrix(0, 1, QStringLiteral("Análisis"));
        g.setTextMatrix(2, 1, QStringLiteral("Hemograma"));
        g.resize(400, 300);
        g.show();
        QVERIFY(QTest::qWaitForWindowExposed(&g));

        QSignalSpy clicked(&g, &FlexGrid::rowClicked);
        g.setRow(2);   // moving the cursor from code is not a click
        QCOMPARE(clicked.count(), 0);
        QTest::mouseClick(g.viewport(), Qt::LeftButton, {},
                          g.visualRect(g.model()->index(3, 1)).center());
        QCOMPARE(clicked.count(), 1);
        QCOMPARE(clicked.first().first().toInt(), 4);
        QCOMPARE(g.col(), 1);

        // The screen's rules: digits add, Backspace takes the last one off,
        // Enter goes down a row; anything else is left to the grid.
        connect(&g, &FlexGrid::cellKeyPressed, &g, [&](int row, int col, QKeyEvent* e) {
            QString t = g.textMatrix(row, col);
            if (e->key() >= Qt::Key_0 && e->key() <= Qt::Key_9)
                g.setTextMatrix(row, col, t + e->text());
            else if (e->key() == Qt::Key_Backspace)
                g.setTextMatrix(row, col, t.left(t.size() - 1));
            else if (e->key() == Qt::Key_Return)
                g.setRow(std::min(row + 1, g.rows() - 1));
            else
                return;
            e->accept();
        });
        g.setFocus();
        QTest::keyClicks(&g, QStringLiteral("12"));
        QTest::keyClick(&g, Qt::Key_Backspace);
        QTest::keyClick(&g, Qt::Key_5);
        QTest::keyClick(&g, Qt::Key_Return);
        QCOMPARE(g.textMatrix(4, 1), QStringLiteral("15"));
        QCOMPARE(g.row(), 5);
        // A letter the screen leaves alone neither types nor jumps to a row
        // starting with it; arrows still move the cursor.
        g.setRow(1);
        QTest::keyClick(&g, Qt::Key_H);
        QCOMPARE(g.row(), 1);
        QCOMPARE(g.textMatrix(1, 1), QString());
        QTest::keyClick(&g, Qt::Key_Down);
        QCOMPARE(g.row(), 2);

        // A screen reader hears the cell with its column's header.
        QAccessibleInterface* grid = QAccessible::queryAccessibleInterface(&g);
        QVERIFY(grid && grid->tableInterface());
        QCOMPARE(grid->text(QAccessible::Name), QStringLiteral("Cuadrícula"));
        QAccessibleInterface* cell = grid->tableInterface()->cellAt(1, 1);
        QVERIFY(cell);
        QCOMPARE(cell->text(QAccessible::Name), QStringLiteral("Hemograma"));
        const auto headers = cell->tableCellInterface()->columnHeaderCells();
        QCOMPARE(headers.size(), 1);
        QCOMPARE(headers.first()->text(QAccessible::Name), QStringLiteral("Análisis"));
    }
};

QTEST_MAIN(TestFlexGrid)
#include "test_flexgrid.moc"
