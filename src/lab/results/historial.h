#pragma once
// "Historial de Cambios": the corrections of result sheets logged between
// two dates, both days included, as a report.
#include "foundation/reports/daterange.h"

class historial : public tq::PeriodScreen {
public:
    explicit historial(QWidget* parent = nullptr);

protected:
    // The log is read by its own query between the two days; the report
    // then shows the rows as they stand.
    tq::ReportRun runFor(const QDate& from, const QDate& to) const override;
};
