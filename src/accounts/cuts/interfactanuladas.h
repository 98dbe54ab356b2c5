#pragma once
// "Reporte de facturas anuladas": the invoices voided in a period. Both menu
// entries for voided invoices open it.
#include "foundation/reports/daterange.h"

class interfactanuladas : public tq::PeriodScreen {
public:
    explicit interfactanuladas(QWidget* parent = nullptr);
};
