#pragma once
// A report's layout, declared once per report: the command it reads, and its
// bands in the order they print (the heading "Encabezado", the page header,
// a header and a footer around each level of a grouped or related command,
// the detail, the page footer, the report footer), each band with its
// captions, bound fields and totals. A layout holds no logic; one renderer
// lays any of them out on pages.
#include <QList>
#include <QPageLayout>
#include <QPageSize>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>

namespace tq::report {

// Where an item stands within its band, in millimetres from the band's top-left corner.
struct Box {
    double x = 0;
    double y = 0;
    double w = 30;
    double h = 5;
};

enum class Align { Left, Center, Right };

// How a bound value is written.
enum class Format {
    Text,    // as it comes; a null value prints nothing
    Money,   // "#.00", through the one money helper
    Date,    // "dd/MM/yyyy"
    Whole,   // a whole number
};

struct Item {
    enum class Kind {
        Caption,   // fixed text
        Field,     // a column of a row
        Total,     // the sum of a column over the rows the band closes
        Picture,   // a picture, by name ("logo": the laboratory's logo)
        Line,      // a horizontal rule across the box
        PageNumber,// the page: `text` with %1 the page and %2 the pages ("Página %1 de %2" when empty)
        PrintDate, // when the report was run: `text` is the date form ("dd/MM/yyyy hh:mm" when empty)
    };
    Kind kind = Kind::Caption;
    // The control's name, by which the heading routine and the callers set
    // captions ("laboratorio", "direccion", "rtn", "Etiqueta3"). May be empty.
    QString name;
    // Caption: its text. Field, Total: the column. Picture: the picture's name.
    QString text;
    // Field: the level whose current row it reads; Total: the level whose
    // rows it adds up (by the level's `rows`; "" is the command's own rows).
    // Unset (the default) means the band's own level for a field and the
    // detail level for a total.
    std::optional<QString> level;
    Box box;
    Align align = Align::Left;
    Format format = Format::Text;
    double pt = 9;
    bool bold = false;
    // Total: the number of rows instead of the sum of the column.
    bool countRows = false;
};

struct Band {
    double height = 0;   // millimetres; a band of height 0 prints nothing
    QList<Item> items;
};

// One level of the command's rows, outermost first. The rows of the first
// level are the command's own; those of each next level are the child
// (relation or grouping) named `rows` of the current row above it.
struct Level {
    QString rows;
    Band header;   // before each row's children: the group header; for the last level, the detail
    Band footer;   // after each row's children: the group footer
    // A new page before each row of this level (a document per row).
    bool pageBreakBefore = false;
};

struct Layout {
    QString name;      // "DataReport2"
    QString title;     // the preview window's title
    QString command;   // its recordset in amb1: "rsrcorte_Grouping"
    QPageSize page = QPageSize(QPageSize::Letter);
    QPageLayout::Orientation orientation = QPageLayout::Portrait;
    double marginMm = 10;
    Band encabezado;   // the report's heading, on its first page: logo, laboratorio, direccion, rtn
    Band pageHeader;   // on every page
    QList<Level> levels;   // outermost first; the last is the detail; none prints no rows
    Band pageFooter;   // on every page
    Band reportFooter; // after the last row: the report's totals
    // "Página n de m" at the foot of every page, below the page footer, unless
    // a PageNumber item stands in a band.
    bool pageNumbers = true;
};

// The layouts of the program, each declared in a file of its own with
// TQ_DECLARE_REPORT. Null when no layout has that name.
const Layout* findLayout(const QString& name);
QStringList layoutNames();
bool declareLayout(const QString& name, std::function<Layout()> declaration);

}  // namespace tq::report

// In the report's own .cpp: TQ_DECLARE_REPORT(DataReport2) { Layout l; ...; return l; }
#define TQ_DECLARE_REPORT(Name)                                                               \
    static ::tq::report::Layout tq_layout_##Name();                                           \
    namespace {                                                                               \
    const bool tq_declared_##Name =                                                           \
        ::tq::report::declareLayout(QStringLiteral(#Name), &tq_layout_##Name);                \
    }                                                                                         \
    static ::tq::report::Layout tq_layout_##Name()
