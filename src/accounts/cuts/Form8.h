#pragma once
// "Corte por Intervalo de Fechas": the cash cut of a period, voided invoices left out.
#include "foundation/reports/daterange.h"

class Form8 : public tq::PeriodScreen {
public:
    explicit Form8(QWidget* parent = nullptr);
};
