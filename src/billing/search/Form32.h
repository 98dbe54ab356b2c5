#pragma once
// The number box of the voiding: the invoice typed here is shown in the
// voiding box with its copy beside it.
#include <QWidget>
#include <memory>

namespace Ui {
class Form32;
}

class Form32 : public QWidget {
    Q_OBJECT
public:
    explicit Form32(QWidget* parent = nullptr);
    ~Form32() override;

private:
    void mostrar();

    std::unique_ptr<Ui::Form32> ui;
};
