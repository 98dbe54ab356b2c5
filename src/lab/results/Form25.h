#pragma once
// "Re-impresion de Resultados": the sheets saved on an invoice, any of them
// shown again to be printed, printed before or not. The list never sets the
// current format id, so a print from here marks the lines of the sheet last
// opened through the pending list, the history or the work table (none since
// start: nothing is marked). The list is not refreshed after the sheet closes.
#include "lab/results/sheetlist.h"

#include <memory>

namespace Ui {
class Form25;
}

class Form25 : public tq::results::InvoiceSheetList {
    Q_OBJECT
public:
    explicit Form25(QWidget* parent = nullptr);
    ~Form25() override;

protected:
    void open(const tq::results::ListedSheet& sheet) override;

private:
    std::unique_ptr<Ui::Form25> ui;
};
