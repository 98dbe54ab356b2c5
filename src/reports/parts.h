#pragma once
// What the laboratory's report layouts are made of: the paper, the heading
// band with the laboratory's logo, name, address and rtn, makers for
// captions, bound fields and totals, and tables of columns whose captions,
// cells and totals stand under one another. Each layout file then says only
// what is its own. The documents that several layouts print (the half-letter
// invoice, the insurer's pending invoices, the exam list) are here too.
#include "foundation/reports/layout.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <optional>

namespace tq::report::parts {

enum class Paper {
    Letter,            // 215.9 x 279.4 mm, upright
    LetterLandscape,   // the same, on its side, for wide tables
    HalfLetter,        // 139.7 x 215.9 mm: the invoice
    Ticket,            // 80 mm wide: the ticket printer's roll
};

QPageSize halfLetter();
QPageSize ticket();

// A layout on that paper, reading `command`, with the heading band and the
// title under it (none when `title` is empty).
Layout layoutOn(Paper paper, const QString& command, const QString& title);
// The width the bands of the layout have to fill, in millimetres.
double bandWidth(const Layout& layout);

// The report's heading "Encabezado": the picture `logo` and the labels
// `laboratorio`, `direccion` and `rtn`, whose design texts are placeholders
// that the heading routine replaces with the laboratory's data; the title
// below them. The letterhead goes without `rtn`.
Band heading(double width, const QString& title, bool withRtn = true);

// Fixed text.
Item caption(const QString& text, Box box, Align align = Align::Left, bool bold = false,
             double pt = 9);
// A fixed text that callers may replace by its name ("Etiqueta3").
Item label(const QString& name, const QString& text, Box box, Align align = Align::Left);
// A column of the band's level. Amounts and whole numbers stand to the right.
Item field(const QString& column, Box box, Format format = Format::Text);
// The sum of an amount column: by default over the detail rows the band closes;
// `level` names the level whose rows are added ("" for the command's own rows).
Item total(const QString& column, Box box, std::optional<QString> level = {});
// A horizontal rule.
Item rule(double x, double y, double width);

// A caption and, after it on the same line, the field it names.
QList<Item> pair(const QString& text, const QString& column, double x, double y,
                 double captionWidth, double fieldWidth, Format format = Format::Text);
// A caption and, after it, the total of a column.
QList<Item> captionedTotal(const QString& text, const QString& column, double x, double y,
                           double captionWidth, double totalWidth,
                           std::optional<QString> level = {});

// A band holding `items`, as high as its lowest item plus a little air.
Band band(const QList<Item>& items, double air = 1);

struct Column {
    QString caption;
    QString column;   // empty: a column left blank, to be filled by hand
    double width;
    Format format = Format::Text;
};

// Columns laid side by side from `x`.
class Table {
public:
    explicit Table(QList<Column> columns, double x = 0);
    // The captions, bold, with a rule under them.
    QList<Item> captions(double y = 0) const;
    // The bound fields of one row; a blank column gets a rule to write on.
    QList<Item> cells(double y = 0) const;
    // The totals of the named columns, each under its column, after a rule,
    // with `text` in front of the first of them.
    QList<Item> totals(const QString& text, const QStringList& columns, double y = 0,
                       std::optional<QString> level = {}) const;
    double width() const;

private:
    int indexOf(const QString& column) const;
    double left(int index) const;
    QList<Column> m_columns;
    double m_x;
};

// A level whose band is one row of the table's cells for each of `rows`
// ("" for the command's own rows).
Level rowsOf(const QString& rows, const Table& table);
// A plain list: the table's captions on every page, a row of cells per record.
void listOf(Layout& layout, const Table& table);
// The date and time of printing after `text`, under the heading's other lines.
void stampPrintDate(Layout& layout, const QString& text, double captionWidth);

// The invoice on half-letter paper, from rsrfact1: one invoice a page, its
// patient, its lines, who billed it and its total. `billedBy` is the caption
// in front of the biller; `extraLabel` names the label in front of the extra
// amount (none: no extra line); `banner` a text across the top ("FACTURA ANULADA").
Layout halfLetterInvoice(const QString& billedBy, const QString& extraLabel = {},
                         const QString& banner = {});

// An insurer's invoices by insurer, from rsrcuentas or rsrcpagadas.
Layout insurerInvoices(const QString& command, const QString& invoices);

// The exam catalogue by exam type, from rsrexamenes; `tickColumn` adds a blank
// column with that caption to tick by hand.
Layout examList(const QString& tickColumn = {});

}  // namespace tq::report::parts
