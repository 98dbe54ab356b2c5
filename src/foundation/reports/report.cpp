#include "foundation/reports/report.h"

#include "foundation/data/amb1.h"
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

}  // namespace

const ReportRun& lastReportRun() { return last(); }

QWidget* runReport(const ReportRun& run, QWidget* owner)
{
    last() = run;
    // The slot may hold whatever its last user opened in it: the report's
    // source is always opened afresh.
    Recordset& rs = amb1().rs(run.command);
    if (rs.isOpen())
        rs.close();
    rs.open();
    rs.setFilter(QString());
    if (!run.filter.isEmpty())
        rs.setFilter(run.filter);

    auto prepare = [&run](QWidget* w) {
        w->setProperty("encabezado", run.heading);
        for (auto it = run.captions.cbegin(); it != run.captions.cend(); ++it)
            w->setProperty(qPrintable(QStringLiteral("caption_") + it.key()), it.value());
    };
    if (run.show != ReportRun::Show::Modeless) {
        openModal(run.report, prepare);
        return nullptr;
    }
    QWidget* w = ScreenRegistry::instance().create(run.report, nullptr);
    if (!w) {
        notBuiltNotice(run.report);
        return nullptr;
    }
    prepare(w);
    // Its own window, going with the window it was asked from.
    if (!owner)
        owner = QApplication::activeWindow();
    if (owner)
        w->setParent(owner, w->windowFlags() | Qt::Window);
    w->setAttribute(Qt::WA_DeleteOnClose);
    w->show();
    w->raise();
    return w;
}

}  // namespace tq
