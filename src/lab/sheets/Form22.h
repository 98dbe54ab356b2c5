#pragma once
// "QUIMICA - CLINICA": two columns of seventeen tests, each with its result
// and normal value.
#include "lab/sheets/gridsheet.h"

#include <memory>

namespace Ui {
class Form22;
}

class Form22 : public tq::sheets::GridSheet {
    Q_OBJECT
public:
    explicit Form22(QWidget* parent = nullptr);
    ~Form22() override;

    // The grid's columns in twips; the correction screen of the family lays
    // its grid out the same.
    static inline const QList<int> kWidths = {150, 2300, 1300, 1550, 2300, 1300, 1500};

private:
    std::unique_ptr<Ui::Form22> ui;
};
