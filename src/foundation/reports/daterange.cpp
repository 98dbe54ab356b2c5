#include "foundation/reports/daterange.h"

#include "foundation/base/values.h"
#include "foundation/data/amb1.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/prompt.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDateEdit>
#include <QKeySequence>
#include <QMainWindow>
#include <QShortcut>

namespace tq {

QString periodFilter(const QString& head, const QDate& from, const QDate& to)
{
    return head + QStringLiteral("fecha >= '") + dateLong(from)
           + QStringLiteral("' and fecha <= '") + dateLong(to) + QLatin1Char('\'');
}

QWidget* reportOwner(QWidget* screen)
{
    if (screen && screen->parentWidget())
        return screen->parentWidget()->window();
    for (QWidget* w : QApplication::topLevelWidgets())
        if (w != screen && qobject_cast<QMainWindow*>(w) && w->isVisible())
            return w;
    return nullptr;
}

PeriodScreen::PeriodScreen(QWidget* parent) : QWidget(parent, Qt::Window)
{
    setAttribute(Qt::WA_DeleteOnClose);
    new QShortcut(QKeySequence(Qt::Key_Escape), this, this, &QWidget::close);
}

QDate PeriodScreen::firstDate() const { return m_dt1 ? m_dt1->date() : QDate(); }
QDate PeriodScreen::secondDate() const { return m_dt2 ? m_dt2->date() : QDate(); }

void PeriodScreen::setUpPeriod(QDateEdit* dt1, QDateEdit* dt2, QAbstractButton* show,
                               QAbstractButton* leave, PeriodReport report)
{
    m_dt1 = dt1;
    m_dt2 = dt2;
    m_report = std::move(report);
    const QDate today = QDate::currentDate();
    for (QDateEdit* dt : {dt1, dt2}) {
        dt->setDisplayFormat(QStringLiteral("dd/MM/yy"));
        dt->setCalendarPopup(true);
        dt->setDate(today);
    }
    onClick(show, QStringLiteral("mostrar el reporte"), [this] { showReport(); });
    connect(leave, &QAbstractButton::clicked, this, &QWidget::close);
}

ReportRun PeriodScreen::runFor(const QDate& from, const QDate& to) const
{
    ReportRun run;
    run.report = m_report.report;
    run.command = m_report.command;
    run.filter = periodFilter(m_report.filterHead, from, to);
    run.heading = m_report.heading;
    run.show = m_report.show;
    return run;
}

void PeriodScreen::showReport()
{
    // The last report's filter goes first, even when the period is refused.
    Recordset& rs = amb1().rs(m_report.command);
    if (rs.isOpen())
        rs.setFilter(QString());

    const QDate from = firstDate();
    const QDate to = secondDate();
    if (from > to) {
        prompts().message(m_report.refusal, Icon::Exclamation);
        return;
    }
    runReport(runFor(from, to), reportOwner(this));
    close();
}

}  // namespace tq
