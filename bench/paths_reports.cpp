// Reports: the day's cash cut (DataReport2) on screen (its first page) and as
// a PDF, a month's cut as a PDF, and one invoice (DataReport1) as a PDF.
#include "bare.h"
#include "bench.h"

#include "foundation/data/amb1.h"
#include "foundation/reports/ReportPreview.h"
#include "foundation/reports/engine.h"
#include "foundation/reports/report.h"

#include <QDir>
#include <QTemporaryDir>

namespace bench {

namespace {

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
                                          QStringLiteral("Factura.anulada = FALSE AND Factura.fecha = ?"));
    const QString monthSql = narrowedSource(
        QStringLiteral("rsrcorte_Grouping"), QString(),
        QStringLiteral("Factura.anulada = FALSE AND Factura.fecha >= ? AND Factura.fecha <= ?"));
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
                   tq::reportFirstPage(QStringLiteral("DataReport2"), 2, {}, 800, &seen);
                   return qint64(seen.rows);
               },
               .floor = [c, daySql] { return Stmt(c.bare, daySql).readAll(c.cutDay); },
               .target = within(300),
               .note = note});
    bench.add({.name = QStringLiteral("report: day's cut, preview window shown"),
               .run = [c] {
                   tq::ReportRun run;
                   run.report = QStringLiteral("DataReport2");
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
                   tq::reportToPdf(QStringLiteral("DataReport2"), 2, {}, pdf, &seen);
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
                   tq::reportToPdf(QStringLiteral("DataReport2"), 2, {}, pdf, &seen);
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
                   tq::reportToPdf(QStringLiteral("DataReport1"), 1, {}, pdf, &seen);
                   return qint64(seen.rows);
               },
               .floor = [c, invoiceSql] { return Stmt(c.bare, invoiceSql).readAll(c.invoice); },
               .target = within(100)});
}

}  // namespace bench
