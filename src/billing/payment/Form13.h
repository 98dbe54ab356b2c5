#pragma once
// The chooser of the kind of payment: "Efectivo", "Tarjeta" or "Cheque" is
// recorded for the invoice's caption and the invoice screen opens. The kind
// has no say in the save; the amounts alone tell how an invoice is paid.
#include <QWidget>
#include <memory>

namespace Ui {
class Form13;
}

class Form13 : public QWidget {
    Q_OBJECT
public:
    explicit Form13(QWidget* parent = nullptr);
    ~Form13() override;

private:
    void choose(const QString& kind);

    std::unique_ptr<Ui::Form13> ui;
};
