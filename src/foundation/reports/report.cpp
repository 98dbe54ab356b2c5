#include "foundation/reports/report.h"

#include "foundation/data/amb1.h"
#include "foundation/reports/ReportPreview.h"
#include "foundation/reports/engine.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/placement.h"
#include "foundation/ui/prompt.h"
#include "foundation/ui/registry.h"

#include <QApplication>
#include <QVariant>
#include <QWidget>

namespace tq {

namespace {

ReportRun& last()
{
    static ReportRun r;
    return r;
}

// The rows of the report as its command's recordset holds them now.
std::shared_ptr<report::Document> readReport(const report::Layout& layout, const QString& command)
{
    return std::make_shared<report::Document>(
        layout, report::reportRows(command.isEmpty() ? layout.command : command));
}

void putHeading(report::Document& doc, int heading, const QHash<QString, QString>& captions)
{
    const report::Heading h = report::ponerencabezado(heading);
    QHash<QString, QString> all = h.captions;
    for (auto it = captions.cbegin(); it != captions.cend(); ++it)
        all.insert(it.key(), it.value());
    doc.setCaptions(all);
    doc.setLogo(h.logo);
}

// What the run asked for, kept on the window too.
void prepare(QWidget* w, const ReportRun& run)
{
    w->setProperty("encabezado", run.heading);
    for (auto it = run.captions.cbegin(); it != run.captions.cend(); ++it)
        w->setProperty(qPrintable(QStringLiteral("caption_") + it.key()), it.value());
}

}  // namespace

const ReportRun& lastReportRun() { return last(); }

QWidget* runReport(const ReportRun& run, QWidget* owner)
{
    last() = run;
    const report::Layout* layout = report::findLayout(run.report);
    const QString command = run.command.isEmpty() && layout ? layout->command : run.command;
    // The slot may hold whatever its last user opened in it: the report's
    // source is always opened afresh. A slot is a report's source only as
    // its caller opened it, with its own text: it is filtered as it stands.
    Recordset& rs = amb1().rs(command);
    const CommandDef* def = rs.command();
    if (!def || def->kind != CommandKind::Slot) {
        if (rs.isOpen())
            rs.close();
        rs.open();
    }
    rs.setFilter(QString());
    if (!run.filter.isEmpty())
        rs.setFilter(run.filter);

    // The rows are read now: a later filter on the shared recordset does not
    // change what this run shows.
    std::shared_ptr<report::Document> doc;
    if (layout)
        doc = readReport(*layout, command);

    if (run.show == ReportRun::Show::Printer) {
        if (!doc) {
            notBuiltNotice(run.report);
            return nullptr;
        }
        putHeading(*doc, run.heading, run.captions);
        const QString title = layout->title.isEmpty() ? layout->name : layout->title;
        prompts().print([doc](QPagedPaintDevice& device) { doc->print(device); }, title);
        return nullptr;
    }
    // A preview of this report already open shows the new rows.
    if (run.show == ReportRun::Show::Modeless && doc) {
        if (ReportPreview* open = ReportPreview::find(run.report)) {
            open->setDocument(doc);
            open->setRun(run.heading, run.captions);
            prepare(open, run);
            open->showNormal();
            open->raise();
            open->activateWindow();
            return open;
        }
    }
    QWidget* w = makeReportScreen(run.report, doc);
    if (!w) {
        notBuiltNotice(run.report);
        return nullptr;
    }
    if (auto* preview = qobject_cast<ReportPreview*>(w))
        preview->setRun(run.heading, run.captions);
    prepare(w, run);
    if (run.show == ReportRun::Show::Modal) {
        prompts().showModal(w);
        return nullptr;
    }
    // Its own window, going with the window it was asked from.
    if (!owner)
        owner = QApplication::activeWindow();
    // A preview does not own another: the new one goes with the first one's owner.
    while (owner && qobject_cast<ReportPreview*>(owner->window()))
        owner = owner->window()->parentWidget();
    if (owner)
        w->setParent(owner->window(), w->windowFlags() | Qt::Window);
    w->setAttribute(Qt::WA_DeleteOnClose);
    placeWindow(w);
    w->show();
    w->raise();
    return w;
}

bool reportToPdf(const QString& report, int heading, const QHash<QString, QString>& captions,
                 const QString& file, ReportPages* seen)
{
    const report::Layout* layout = report::findLayout(report);
    if (!layout)
        return false;
    std::shared_ptr<report::Document> doc = readReport(*layout, QString());
    putHeading(*doc, heading, captions);
    if (seen)
        *seen = {doc->pageCount(), doc->detailRows()};
    return writePdf(*doc, file).isEmpty();
}

QImage reportFirstPage(const QString& report, int heading,
                       const QHash<QString, QString>& captions, int widthPx, ReportPages* seen)
{
    const report::Layout* layout = report::findLayout(report);
    if (!layout)
        return {};
    std::shared_ptr<report::Document> doc = readReport(*layout, QString());
    putHeading(*doc, heading, captions);
    if (seen)
        *seen = {doc->pageCount(), doc->detailRows()};
    return doc->pageImage(0, widthPx);
}

}  // namespace tq
