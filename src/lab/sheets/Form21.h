#pragma once
// "UROANALISIS": the physical and microscopic findings above, the chemical
// screen and the rest below the second header; each unit proposed as the result.
#include "lab/sheets/gridsheet.h"

#include <memory>

namespace Ui {
class Form21;
}

class Form21 : public tq::sheets::GridSheet {
    Q_OBJECT
public:
    explicit Form21(QWidget* parent = nullptr);
    ~Form21() override;

private:
    std::unique_ptr<Ui::Form21> ui;
};
