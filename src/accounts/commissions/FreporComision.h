#pragma once
// "Comisiones X Fecha": the doctors' commissions of a period, pending or
// paid, of one doctor or of all of them, as the report ReporComision.
#include "foundation/reports/daterange.h"

#include <memory>

namespace Ui {
class FreporComision;
}

class FreporComision : public tq::PeriodScreen {
    Q_OBJECT
public:
    explicit FreporComision(QWidget* parent = nullptr);
    ~FreporComision() override;

protected:
    // The period's filter led by the option (pending or paid) and the
    // doctor, when one is chosen.
    tq::ReportRun runFor(const QDate& from, const QDate& to) const override;

private:
    void loadDoctors();

    std::unique_ptr<Ui::FreporComision> ui;
};
