#pragma once
// The second free-text result page (template 6). The work table never offers
// it; the printing screens open it to show a stored page.
#include "lab/sheets/blankpage.h"

#include <memory>

namespace Ui {
class Form36;
}

class Form36 : public tq::sheets::BlankPage {
    Q_OBJECT
public:
    explicit Form36(QWidget* parent = nullptr);
    ~Form36() override;

protected:
    // A stored page shown again keeps its box open to typing and "Guardar"
    // enabled, unlike the blank page of the work table.
    void lockStored() override {}

private:
    std::unique_ptr<Ui::Form36> ui;
};
