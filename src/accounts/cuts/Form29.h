#pragma once
// "Reporte de Ganancias por Facturas": list price against cost of each line billed in a period.
#include "foundation/reports/daterange.h"

class Form29 : public tq::PeriodScreen {
public:
    explicit Form29(QWidget* parent = nullptr);
};
