#pragma once
// Running a report, as every screen and menu entry runs one: the command's
// shared recordset is opened afresh, its filter cleared and set to the
// caller's text, the laboratory's heading put on the report when the caller
// asks for it, and the report shown in its preview window (or sent straight
// to the printer). The filter stays on the shared recordset afterwards; the
// next caller clears it.
#include <QHash>
#include <QImage>
#include <QString>

class QWidget;

namespace tq {

struct ReportRun {
    enum class Show {
        Modeless,   // the preview in a window of its own; the caller goes on
        Modal,      // the preview, and the caller waits until it closes
        Printer,    // no preview: the printer dialog, then the pages
    };

    QString report;    // the layout: "DataReport2", "ReporVentasTarjeta", ...
    QString command;   // its recordset in amb1: "rsrcorte_Grouping"
    QString filter;    // the classic filter text; empty shows every row
    int heading = 0;   // the number for the heading routine; 0 keeps the design's texts
    // Captions the caller sets on named labels of the layout before it is
    // shown ("Etiqueta3" -> "Descuento").
    QHash<QString, QString> captions;
    Show show = Show::Modeless;
};

// Runs the report. A modeless preview is a window of its own that goes with
// `owner` (by default the active window). Returns the preview window shown
// (Modeless), or nullptr (Modal and Printer, or when the report could not be
// shown: the user has been told why). Throws AppError/DbError when the command can't be opened
// or the filter can't be read; screens run it inside their error boundary.
QWidget* runReport(const ReportRun& run, QWidget* owner = nullptr);

// The last run asked for, as it was asked: what a screen decided to show.
const ReportRun& lastReportRun();

// What a report came to: its pages and the rows of its last level.
struct ReportPages {
    int pages = 0;
    int rows = 0;
};

// Writes the report, as it would be shown now (the rows its command's
// recordset holds, a closed one opened first), with the heading of number
// `heading` and the captions set by name, to a PDF file; the file takes its
// name only when whole. False when the report is not declared or the file
// could not be written (the reason goes to the log).
bool reportToPdf(const QString& report, int heading, const QHash<QString, QString>& captions,
                 const QString& file, ReportPages* seen = nullptr);

// The first page of the report as its preview shows it, `widthPx` wide: the
// rows read, laid out on pages, and one page painted. A null picture when the
// report is not declared.
QImage reportFirstPage(const QString& report, int heading,
                       const QHash<QString, QString>& captions, int widthPx = 800,
                       ReportPages* seen = nullptr);

}  // namespace tq
