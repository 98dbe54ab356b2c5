#pragma once
// "HEMATOLOGIA": the blood count, two panels of eleven parameters side by side
// (Hematimetría, Leucograma), each with its result and normal value.
#include "lab/sheets/gridsheet.h"

#include <memory>

namespace Ui {
class Form20;
}

class Form20 : public tq::sheets::GridSheet {
    Q_OBJECT
public:
    explicit Form20(QWidget* parent = nullptr);
    ~Form20() override;

    // The grid's columns in twips; the correction screen of the family lays
    // its grid out the same.
    static inline const QList<int> kWidths = {150, 2300, 1300, 1550, 2300, 1300, 1500};

private:
    std::unique_ptr<Ui::Form20> ui;
};
