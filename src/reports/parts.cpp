#include "reports/parts.h"

#include <QSizeF>
#include <algorithm>

namespace tq::report::parts {

namespace {

constexpr double kLine = 5;   // one line of 9 pt text

bool standsRight(Format f) { return f == Format::Money || f == Format::Whole; }

double pageWidth(const Layout& l)
{
    const QSizeF size = l.page.size(QPageSize::Millimeter);
    return l.orientation == QPageLayout::Landscape ? size.height() : size.width();
}

}  // namespace

QPageSize halfLetter()
{
    return QPageSize(QSizeF(139.7, 215.9), QPageSize::Millimeter, QStringLiteral("Media carta"),
                     QPageSize::ExactMatch);
}

QPageSize ticket()
{
    return QPageSize(QSizeF(80, 200), QPageSize::Millimeter, QStringLiteral("Tiquete 80 mm"),
                     QPageSize::ExactMatch);
}

Layout layoutOn(Paper paper, const QString& command, const QString& title)
{
    Layout l;
    l.command = command;
    l.title = title;
    switch (paper) {
    case Paper::Letter:
        break;
    case Paper::LetterLandscape:
        l.orientation = QPageLayout::Landscape;
        break;
    case Paper::HalfLetter:
        l.page = halfLetter();
        l.marginMm = 8;
        break;
    case Paper::Ticket:
        l.page = ticket();
        l.marginMm = 3;
        l.pageNumbers = false;   // one continuous strip of paper
        break;
    }
    l.encabezado = heading(bandWidth(l), title);
    return l;
}

double bandWidth(const Layout& layout) { return pageWidth(layout) - 2 * layout.marginMm; }

Band heading(double width, const QString& title, bool withRtn)
{
    QList<Item> items;
    auto named = [&items](const QString& name, const QString& text, Box box, double pt, bool bold) {
        Item i = caption(text, box, Align::Center, bold, pt);
        i.name = name;
        items << i;
    };
    Item logo;
    logo.kind = Item::Kind::Picture;
    logo.name = QStringLiteral("logo");
    logo.text = QStringLiteral("logo");
    double y = 0;
    if (width >= 100) {
        // Logo on the left, the laboratory's lines centred beside it.
        logo.box = Box{0, 0, 28, 22};
        const Box beside{30, 0, width - 60, 8};
        named(QStringLiteral("laboratorio"), QStringLiteral("Nombre del laboratorio"), beside, 14,
              true);
        // Room for an address of two lines: the line with the phone and fax is long.
        named(QStringLiteral("direccion"), QStringLiteral("Direccion del laboratorio"),
              Box{beside.x, 8.5, beside.w, 2 * kLine}, 9, false);
        if (withRtn)
            named(QStringLiteral("rtn"), QStringLiteral("RTN del laboratorio"),
                  Box{beside.x, 8.5 + 2 * kLine + 0.5, beside.w, kLine}, 9, false);
        y = 24;
    } else {
        // A ticket: everything stacked and centred.
        logo.box = Box{(width - 20) / 2, 0, 20, 15};
        named(QStringLiteral("laboratorio"), QStringLiteral("Nombre del laboratorio"),
              Box{0, 16, width, 6}, 11, true);
        named(QStringLiteral("direccion"), QStringLiteral("Direccion del laboratorio"),
              Box{0, 22, width, 8}, 7, false);
        if (withRtn)
            named(QStringLiteral("rtn"), QStringLiteral("RTN del laboratorio"),
                  Box{0, 30, width, 4}, 7, false);
        y = 35;
    }
    items.prepend(logo);
    if (!title.isEmpty())
        items << caption(title, Box{0, y, width, 7}, Align::Center, true, width >= 100 ? 12 : 9);
    return band(items, 2);
}

Item caption(const QString& text, Box box, Align align, bool bold, double pt)
{
    Item i;
    i.kind = Item::Kind::Caption;
    i.text = text;
    i.box = box;
    i.align = align;
    i.bold = bold;
    i.pt = pt;
    return i;
}

Item label(const QString& name, const QString& text, Box box, Align align)
{
    Item i = caption(text, box, align);
    i.name = name;
    return i;
}

Item field(const QString& column, Box box, Format format)
{
    Item i;
    i.kind = Item::Kind::Field;
    i.text = column;
    i.box = box;
    i.format = format;
    i.align = standsRight(format) ? Align::Right : Align::Left;
    return i;
}

Item total(const QString& column, Box box, std::optional<QString> level)
{
    Item i;
    i.kind = Item::Kind::Total;
    i.text = column;
    i.box = box;
    i.level = std::move(level);
    i.format = Format::Money;
    i.align = Align::Right;
    i.bold = true;
    return i;
}

Item rule(double x, double y, double width)
{
    Item i;
    i.kind = Item::Kind::Line;
    i.box = Box{x, y, width, 0.5};
    return i;
}

QList<Item> pair(const QString& text, const QString& column, double x, double y,
                 double captionWidth, double fieldWidth, Format format)
{
    Item f = field(column, Box{x + captionWidth, y, fieldWidth, kLine}, format);
    f.align = Align::Left;   // read right after its caption
    return {caption(text, Box{x, y, captionWidth, kLine}, Align::Left, true), f};
}

QList<Item> captionedTotal(const QString& text, const QString& column, double x, double y,
                           double captionWidth, double totalWidth, std::optional<QString> level)
{
    return {caption(text, Box{x, y, captionWidth, kLine}, Align::Right, true),
            total(column, Box{x + captionWidth, y, totalWidth, kLine}, std::move(level))};
}

Band band(const QList<Item>& items, double air)
{
    Band b;
    b.items = items;
    double bottom = 0;
    for (const Item& i : items)
        bottom = std::max(bottom, i.box.y + i.box.h);
    b.height = bottom + air;
    return b;
}

Table::Table(QList<Column> columns, double x) : m_columns(std::move(columns)), m_x(x) {}

int Table::indexOf(const QString& column) const
{
    for (int i = 0; i < m_columns.size(); ++i)
        if (m_columns.at(i).column == column)
            return i;
    return -1;
}

double Table::left(int index) const
{
    double x = m_x;
    for (int i = 0; i < index; ++i)
        x += m_columns.at(i).width;
    return x;
}

double Table::width() const { return left(int(m_columns.size())) - m_x; }

QList<Item> Table::captions(double y) const
{
    QList<Item> items;
    for (int i = 0; i < m_columns.size(); ++i) {
        const Column& c = m_columns.at(i);
        items << caption(c.caption, Box{left(i), y, c.width - 1, kLine},
                         standsRight(c.format) ? Align::Right : Align::Left, true);
    }
    items << rule(m_x, y + kLine + 0.5, width());
    return items;
}

QList<Item> Table::cells(double y) const
{
    QList<Item> items;
    for (int i = 0; i < m_columns.size(); ++i) {
        const Column& c = m_columns.at(i);
        if (c.column.isEmpty())
            items << rule(left(i) + 2, y + kLine - 0.5, c.width - 4);
        else
            items << field(c.column, Box{left(i), y, c.width - 1, kLine}, c.format);
    }
    return items;
}

QList<Item> Table::totals(const QString& text, const QStringList& columns, double y,
                          std::optional<QString> level) const
{
    QList<Item> items;
    int first = int(m_columns.size());
    for (const QString& name : columns) {
        const int i = indexOf(name);
        if (i < 0)
            continue;
        first = std::min(first, i);
        items << total(name, Box{left(i), y + 1, m_columns.at(i).width - 1, kLine}, level);
        items << rule(left(i), y + 0.5, m_columns.at(i).width - 1);
    }
    // The caption fills the room in front of the first total, or stands at
    // the left when the first total is in the first column.
    const double room = left(first) - m_x;
    items << caption(text, Box{m_x, y + 1, room > 20 ? room - 2 : 40, kLine},
                     room > 20 ? Align::Right : Align::Left, true);
    return items;
}

Level rowsOf(const QString& rows, const Table& table)
{
    Level l;
    l.rows = rows;
    l.header = band(table.cells(), 0.5);
    return l;
}

void listOf(Layout& layout, const Table& table)
{
    layout.pageHeader = band(table.captions(), 1);
    layout.levels = {rowsOf(QString(), table)};
}

namespace {

// The date and time of printing, named so that a caller could set it too.
Item printedAt(Box box)
{
    Item i = label(QStringLiteral("fechaimpresion"), QString(), box);
    i.kind = Item::Kind::PrintDate;
    return i;
}

}  // namespace

void stampPrintDate(Layout& layout, const QString& text, double captionWidth)
{
    const double y = layout.encabezado.height;
    layout.encabezado = band(layout.encabezado.items
                                 + QList<Item>{caption(text, Box{0, y, captionWidth, kLine},
                                                       Align::Left, true),
                                               printedAt(Box{captionWidth, y, 60, kLine})},
                             2);
}

Layout halfLetterInvoice(const QString& billedBy, const QString& extraLabel,
                         const QString& banner)
{
    Layout l = layoutOn(Paper::HalfLetter, QStringLiteral("rsrfact1"), QString());
    const double w = bandWidth(l);
    const Table lines({{QStringLiteral("Codigo"), QStringLiteral("cod_descripcionexamen"), 18},
                       {QStringLiteral("Examen"), QStringLiteral("examen"), w - 62},
                       {QStringLiteral("Cantidad"), QStringLiteral("cantidad"), 18, Format::Whole},
                       {QStringLiteral("Precio"), QStringLiteral("subtotal"), 26, Format::Money}});

    QList<Item> head;
    double y = 0;
    if (!banner.isEmpty()) {
        head << caption(banner, Box{0, 0, w, 9}, Align::Center, true, 16);
        y = 10;
    }
    head << pair(QStringLiteral("Factura N°"), QStringLiteral("factura"), 0, y, 22, 30,
                 Format::Whole)
         << pair(QStringLiteral("Fecha:"), QStringLiteral("fecha"), w - 50, y, 14, 36, Format::Date)
         << pair(QStringLiteral("Codigo Paciente"), QStringLiteral("cod_paciente"), 0, y + 6, 36,
                 30, Format::Whole)
         << pair(QStringLiteral("Nombre Paciente"), QStringLiteral("nombre"), 0, y + 12, 36, w - 36)
         << pair(QStringLiteral("Direccion Paciente"), QStringLiteral("direccion_paciente"), 0,
                 y + 18, 36, w - 36)
         << pair(QStringLiteral("Tipo Factura"), QStringLiteral("tipo_factura"), 0, y + 24, 36,
                 w - 36)
         << lines.captions(y + 32);

    QList<Item> foot;
    foot << rule(0, 0.5, w)
         << pair(billedBy, QStringLiteral("faturado"), 0, 2, 30, 30);
    double ty = 2;
    if (!extraLabel.isEmpty()) {
        foot << label(extraLabel, QStringLiteral("Otros"), Box{w - 62, ty, 34, kLine}, Align::Right)
             << field(QStringLiteral("valadicional"), Box{w - 26, ty, 25, kLine}, Format::Money);
        ty += 6;
    }
    foot << caption(QStringLiteral("Total"), Box{w - 62, ty, 34, kLine}, Align::Right, true)
         << field(QStringLiteral("sub_total"), Box{w - 26, ty, 25, kLine}, Format::Money)
         << caption(QStringLiteral("ACEPTADAS TODAS LAS CONDICIONES Y PRECIOS DE ESTA FACTURA, "
                                   "NO SE ACEPTAN CAMBIOS NI DEVOLUCIONES"),
                    Box{0, ty + 9, w, 8}, Align::Center, false, 7);

    Level invoice;
    invoice.header = band(head, 2);
    invoice.footer = band(foot, 2);
    invoice.pageBreakBefore = true;
    l.levels = {invoice, rowsOf(QStringLiteral("Command1"), lines)};
    return l;
}

Layout insurerInvoices(const QString& command, const QString& invoices)
{
    Layout l = layoutOn(Paper::Letter, command, QStringLiteral("DETALLE DE FACTURAS PENDIENTES"));
    const double w = bandWidth(l);
    const Table rows({{QStringLiteral("Factura"), QStringLiteral("factura"), 25, Format::Whole},
                      {QStringLiteral("Fecha"), QStringLiteral("fecha"), 30, Format::Date},
                      {QStringLiteral("Total"), QStringLiteral("total"), 30, Format::Money},
                      {QStringLiteral("Paciente"), QStringLiteral("NOMBRE"), w - 85}});
    const double half = w / 2;
    Level insurer;
    insurer.header = band(pair(QStringLiteral("EMPRESA"), QStringLiteral("Empresa"), 0, 0, 24,
                               w - 24)
                          + pair(QStringLiteral("CONTACTO"), QStringLiteral("Contacto"), 0, 6, 24,
                                 half - 24)
                          + pair(QStringLiteral("TELEFONO"), QStringLiteral("Tel"), half, 6, 24,
                                 half - 24)
                          + pair(QStringLiteral("BANCO"), QStringLiteral("Banco"), 0, 12, 24,
                                 half - 24)
                          + pair(QStringLiteral("CUENTA"), QStringLiteral("Cuenta"), half, 12, 24,
                                 half - 24)
                          + rows.captions(19),
                          2);
    insurer.footer = band(rows.totals(QStringLiteral("TOTAL ADEUDADO"), {QStringLiteral("total")}),
                          4);
    l.levels = {insurer, rowsOf(invoices, rows)};
    return l;
}

Layout examList(const QString& tickColumn)
{
    Layout l = layoutOn(Paper::Letter, QStringLiteral("rsrexamenes"),
                        QStringLiteral("Listado de Examenes y Tipos de Examenes"));
    const double w = bandWidth(l);
    QList<Column> columns{{QStringLiteral("Codigo"), QStringLiteral("cod_descripcionexamen"), 20,
                           Format::Whole},
                          {QStringLiteral("Examen"), QStringLiteral("examen"), 0},
                          {QStringLiteral("Precio"), QStringLiteral("precio"), 26, Format::Money},
                          {QStringLiteral("Tiempo de Entrega"), QStringLiteral("tiempo_entrega"),
                           40}};
    if (!tickColumn.isEmpty())
        columns << Column{tickColumn, QString(), 32};
    double rest = w;
    for (const Column& c : columns)
        rest -= c.width;
    columns[1].width = rest;   // the exam's name takes what the others leave
    const Table exams(columns);

    Level type;
    type.header = band(pair(QStringLiteral("Tipo de Examen:"), QStringLiteral("tipo_examen"), 0, 1,
                            32, w - 32)
                           + exams.captions(7),
                       1);
    Level detail = rowsOf(QStringLiteral("rlistaexamenes"), exams);
    if (!tickColumn.isEmpty())
        detail.header.height += 1.5;   // room to tick
    l.levels = {type, detail};
    return l;
}

}  // namespace tq::report::parts
