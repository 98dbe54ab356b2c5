#pragma once
// The screens that ask for a period before a report: two date pickers, DT1
// and DT2 ("dd/MM/yy"), a button that shows the report and one that leaves.
// Each screen keeps its own layout and words; this shape does what they all
// do on the button:
//   1. the report's recordset loses the filter the last report left on it;
//   2. a first date later than the second is refused with the screen's own
//      message, and the screen stays open (one day, DT1 = DT2, is a period);
//   3. the report runs with the screen's filter text, the dates written as
//      the filter reader reads them ('dd/MM/yyyy' between single quotes);
//   4. the screen closes.
#include "foundation/reports/report.h"

#include <QDate>
#include <QString>
#include <QWidget>

class QAbstractButton;
class QDateEdit;

namespace tq {

// What a period screen runs.
struct PeriodReport {
    QString command;      // its recordset in amb1: "rsrcorte_Grouping"
    QString report;       // the layout: "DataReport2"
    QString filterHead;   // what the filter says before the dates: "anulada =0 and "
    int heading = 0;      // number for the laboratory's heading; 0 keeps the design's texts
    QString refusal;      // the screen's words when the first date is after the second
    ReportRun::Show show = ReportRun::Show::Modeless;
};

// head + "fecha >= 'dd/MM/yyyy' and fecha <= 'dd/MM/yyyy'".
QString periodFilter(const QString& head, const QDate& from, const QDate& to);

// The window a report shown from `screen` goes with: the screen's own owner,
// else the program's main window. Never the screen itself, which closes as
// the report opens and would take the report with it.
QWidget* reportOwner(QWidget* screen);

class PeriodScreen : public QWidget {
    Q_OBJECT
public:
    QDate firstDate() const;
    QDate secondDate() const;

protected:
    explicit PeriodScreen(QWidget* parent = nullptr);

    // Called by the screen once its layout is set up: the pickers get their
    // format and today's date, the buttons their actions.
    void setUpPeriod(QDateEdit* dt1, QDateEdit* dt2, QAbstractButton* show,
                     QAbstractButton* leave, PeriodReport report);

    // The run for a period already checked. A screen that asks for more than
    // the period builds its own from this one.
    virtual ReportRun runFor(const QDate& from, const QDate& to) const;
    const PeriodReport& periodReport() const { return m_report; }

private:
    void showReport();

    QDateEdit* m_dt1 = nullptr;
    QDateEdit* m_dt2 = nullptr;
    PeriodReport m_report;
};

}  // namespace tq
