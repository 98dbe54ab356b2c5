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

    // The grid's columns in twips; the correction screen of the family lays
    // its grid out the same.
    static inline const QList<int> kWidths = {150, 3700, 1900, 2800, 1800};

private:
    std::unique_ptr<Ui::Form21> ui;
};
