#pragma once
// "Reporte de ventas con tarjeta": the card sales of a period, with what the
// card company keeps.
#include "foundation/reports/daterange.h"

class Fcorteventastarjeta : public tq::PeriodScreen {
public:
    explicit Fcorteventastarjeta(QWidget* parent = nullptr);
};
