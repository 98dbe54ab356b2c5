#pragma once
// The exams of one invoice, as the invoice search left them in the shared
// invoice lines (rsDetallefact). Closing it clears that narrowing.
#include <QWidget>
#include <memory>

namespace Ui {
class Form12;
}

class Form12 : public QWidget {
    Q_OBJECT
public:
    explicit Form12(QWidget* parent = nullptr);
    ~Form12() override;

private:
    std::unique_ptr<Ui::Form12> ui;
};
