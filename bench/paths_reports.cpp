// Reports: the day's cash cut on screen (its first page) and as a PDF, a
// month's cut as a PDF, and one invoice as a PDF. The layouts timed here are
// the bench's own, shaped as the cut and the invoice print-out are (a group
// per date with its totals; an invoice with its lines), so that the engine is
// timed whatever the program's layouts look like.
#include "bare.h"
#include "bench.h"

#include "foundation/data/amb1.h"
#include "foundation/reports/ReportPreview.h"
#include "foundation/reports/engine.h"
#include "foundation/reports/layout.h"
#include "foundation/reports/report.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>

using tq::report::Align;
using tq::report::Band;
using tq::report::Format;
using tq::report::Item;
using tq::report::Layout;
using tq::report::Level;

namespace {

Item text(const QString& name, const QString& t, double x, double w, bool bold = false)
{
    return Item{.kind = Item::Kind::Caption, .name = name, .text = t, .box = {x, 0, w, 5}, .bold = bold};
}
Item field(const QString& column, double x, double w, Format f = Format::Text)
{
    return Item{.kind = Item::Kind::Field, .text = column, .box = {x, 0, w, 5},
                .align = f == Format::Money ? Align::Right : Align::Left, .format = f};
}
Item sum(const QString& column, double x)
{
    return Item{.kind = Item::Kind::Total, .text = column, .box = {x, 0, 22, 5},
                .align = Align::Right, .format = Format::Money};
}
Band heading()
{
    Band b;
    b.height = 22;
    b.items << Item{.kind = Item::Kind::Picture, .name = "logo", .text = "logo", .box = {0, 0, 20, 20}}
            << Item{.kind = Item::Kind::Caption, .name = "laboratorio", .text = "LABORATORIO",
                    .box = {25, 0, 150, 7}, .pt = 12, .bold = true}
            << Item{.kind = Item::Kind::Caption, .name = "direccion", .text = "DIRECCION",
                    .box = {25, 8, 150, 5}}
            << Item{.kind = Item::Kind::Caption, .name = "rtn", .text = "RTN", .box = {25, 14, 80, 5}};
    return b;
}

}  // namespace

TQ_DECLARE_REPORT(BancoCorte)
{
    Layout l;
    l.title = "Corte de Ventas Diarias";
    l.command = "rsrcorte_Grouping";
    l.encabezado = heading();
    Level day;
    day.header.height = 12;
    day.header.items << field("fecha", 0, 30, Format::Date);
    for (Item it : {text("", "Factura", 0, 15, true), text("", "Nombre Paciente:", 17, 60, true),
                    text("", "Faturado por", 79, 25, true), text("", "Total", 106, 20, true),
                    text("", "Efectivo", 128, 20, true), text("", "Tarjeta", 150, 20, true),
                    text("", "cheque", 172, 20, true)}) {
        it.box.y = 6;
        day.header.items << it;
    }
    day.footer.height = 7;
    day.footer.items << text("", "TOTALES", 17, 40, true) << sum("total", 104) << sum("efectivo", 126)
                     << sum("tarjeta", 148) << sum("cheque", 170);
    Level row;
    row.rows = "rcorte";
    row.header.height = 5;
    row.header.items << field("factura", 0, 15, Format::Whole) << field("nombre", 17, 60)
                     << field("faturado", 79, 25) << field("total", 104, 22, Format::Money)
                     << field("efectivo", 126, 22, Format::Money) << field("tarjeta", 148, 22, Format::Money)
                     << field("cheque", 170, 22, Format::Money);
    l.levels << day << row;
    l.reportFooter.height = 8;
    l.reportFooter.items << text("", "TOTAL GENERAL:", 17, 40, true) << sum("total", 104);
    return l;
}

TQ_DECLARE_REPORT(BancoFactura)
{
    Layout l;
    l.title = "Factura";
    l.command = "rsrfact1";
    l.encabezado = heading();
    Level invoice;
    invoice.pageBreakBefore = true;
    invoice.header.height = 24;
    auto at = [](Item it, double y) {
        it.box.y = y;
        return it;
    };
    invoice.header.items << text("", "Factura N°", 0, 25) << field("factura", 26, 20, Format::Whole)
                         << field("fecha", 120, 30, Format::Date)
                         << at(text("", "Nombre Paciente", 0, 35), 7) << at(field("nombre", 36, 90), 7)
                         << at(text("", "Direccion Paciente", 0, 35), 14)
                         << at(field("direccion_paciente", 36, 120), 14);
    invoice.footer.height = 20;
    invoice.footer.items << text("Etiqueta14", "Otros", 0, 30) << field("valadicional", 31, 22, Format::Money)
                         << text("", "Total", 120, 20) << field("sub_total", 150, 22, Format::Money);
    invoice.footer.items << at(text("", "ACEPTADAS TODAS LAS CONDICIONES Y PRECIOS DE ESTA FACTURA, NO "
                                        "SE ACEPTAN CAMBIOS NI DEVOLUCIONES", 0, 190), 8);
    Level lines;
    lines.rows = "Command1";
    lines.header.height = 5;
    lines.header.items << field("cod_descripcionexamen", 0, 15, Format::Whole) << field("examen", 17, 100)
                       << field("cantidad", 120, 15, Format::Whole) << field("subtotal", 150, 22, Format::Money);
    l.levels << invoice << lines;
    return l;
}

namespace bench {

namespace {

tq::Recordset& openFiltered(const QString& command, const QString& filter)
{
    tq::Recordset& rs = tq::amb1().rs(command);
    if (rs.isOpen())
        rs.close();
    rs.open();
    rs.setFilter(filter);
    return rs;
}

QString dmy(const QDate& d) { return d.toString(QStringLiteral("dd/MM/yyyy")); }

Target within(double ms)
{
    Target t;
    t.ceilingMs = ms;
    t.ratio = 1e9;   // painting is not in the floor: only the ceiling counts
    return t;
}

}  // namespace

void addReportPaths(Bench& bench, const Context& c)
{
    static QTemporaryDir folder;
    const QString pdf = QDir(folder.path()).filePath(QStringLiteral("informe.pdf"));
    const QString daySql = narrowedSource(QStringLiteral("rsrcorte_Grouping"), QString(),
                                          QStringLiteral("Factura.anulada = 0 AND Factura.fecha = ?"));
    const QString monthSql = narrowedSource(
        QStringLiteral("rsrcorte_Grouping"), QString(),
        QStringLiteral("Factura.anulada = 0 AND Factura.fecha >= ? AND Factura.fecha <= ?"));
    const QString invoiceSql = narrowedSource(QStringLiteral("rsrfact1"), QStringLiteral("Command1"),
                                              QStringLiteral("FacturaDetalle.factura = ?"));
    const QString note = QStringLiteral(
        "the report run as the menu runs it (the recordset opened and filtered, the rows read, the "
        "pages laid out, the heading read) and painted; the floor is the SQL alone, so only the "
        "ceiling is a target; both count the rows of the last level");

    bench.add({.name = QStringLiteral("report: day's cut, first page on screen"),
               .run = [c] {
                   openFiltered(QStringLiteral("rsrcorte_Grouping"),
                                QStringLiteral("anulada =0 and fecha =") + dmy(c.cutDay));
                   tq::ReportPages seen;
                   tq::reportFirstPage(QStringLiteral("BancoCorte"), 2, {}, 800, &seen);
                   return qint64(seen.rows);
               },
               .floor = [c, daySql] { return Stmt(c.bare, daySql).readAll(c.cutDay); },
               .target = within(300),
               .note = note});
    bench.add({.name = QStringLiteral("report: day's cut, preview window shown"),
               .run = [c] {
                   tq::ReportRun run;
                   run.report = QStringLiteral("BancoCorte");
                   run.command = QStringLiteral("rsrcorte_Grouping");
                   run.filter = QStringLiteral("anulada =0 and fecha =") + dmy(c.cutDay);
                   run.heading = 2;
                   QWidget* w = tq::runReport(run, nullptr);
                   const auto* preview = qobject_cast<tq::ReportPreview*>(w);
                   const qint64 rows = preview ? preview->document().detailRows() : -1;
                   delete w;   // the next run makes its window again
                   return rows;
               },
               .floor = [c, daySql] { return Stmt(c.bare, daySql).readAll(c.cutDay); },
               .target = within(300),
               .note = QStringLiteral("runReport as the menu calls it: the window made, its first "
                                      "page painted and shown")});
    bench.add({.name = QStringLiteral("report: day's cut to PDF"),
               .run = [c, pdf] {
                   openFiltered(QStringLiteral("rsrcorte_Grouping"),
                                QStringLiteral("anulada =0 and fecha =") + dmy(c.cutDay));
                   tq::ReportPages seen;
                   tq::reportToPdf(QStringLiteral("BancoCorte"), 2, {}, pdf, &seen);
                   return qint64(seen.rows);
               },
               .floor = [c, daySql] { return Stmt(c.bare, daySql).readAll(c.cutDay); },
               .target = within(1000)});
    bench.add({.name = QStringLiteral("report: 30-day cut to PDF"),
               .run = [c, pdf] {
                   openFiltered(QStringLiteral("rsrcorte_Grouping"),
                                QStringLiteral("anulada =0 and fecha >= '%1' and fecha <= '%2'")
                                    .arg(dmy(c.cutDay.addDays(-29)), dmy(c.cutDay)));
                   tq::ReportPages seen;
                   tq::reportToPdf(QStringLiteral("BancoCorte"), 2, {}, pdf, &seen);
                   return qint64(seen.rows);
               },
               .floor = [c, monthSql] {
                   return Stmt(c.bare, monthSql).readAll(c.cutDay.addDays(-29), c.cutDay);
               },
               .target = within(5000)});
    bench.add({.name = QStringLiteral("report: one invoice to PDF"),
               .run = [c, pdf] {
                   openFiltered(QStringLiteral("rsrfact1"), QStringLiteral("factura = %1").arg(c.invoice));
                   tq::ReportPages seen;
                   tq::reportToPdf(QStringLiteral("BancoFactura"), 1, {}, pdf, &seen);
                   return qint64(seen.rows);
               },
               .floor = [c, invoiceSql] { return Stmt(c.bare, invoiceSql).readAll(c.invoice); },
               .target = within(100)});
}

}  // namespace bench
