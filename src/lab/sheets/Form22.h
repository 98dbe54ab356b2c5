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

private:
    std::unique_ptr<Ui::Form22> ui;
};
