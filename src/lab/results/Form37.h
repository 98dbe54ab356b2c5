#pragma once
// "Modificar Boletas de Resultados": the sheets saved on an invoice, opened
// after an administrator signed on at the gate (Form342) to be corrected.
// Choosing one keeps it in the program's values, shows the reason window
// beside the sheet and opens the sheet on its correction screen; once that
// screen closes, saved or left, the reason window, this list and the gate
// close, and the user is back at the main window.
#include "lab/results/sheetlist.h"

#include <memory>

namespace Ui {
class Form37;
}

class Form37 : public tq::results::InvoiceSheetList {
    Q_OBJECT
public:
    explicit Form37(QWidget* parent = nullptr);
    ~Form37() override;

protected:
    void open(const tq::results::ListedSheet& sheet) override;

private:
    std::unique_ptr<Ui::Form37> ui;
};
