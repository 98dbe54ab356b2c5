#pragma once
// The print box of one invoice: the ticket form or the half-letter form,
// chosen per print. A voided invoice is shown with its voided copy instead
// of being printed.
#include <QWidget>
#include <cstdint>
#include <memory>

namespace Ui {
class FImpresion;
}

class FImpresion : public QWidget {
    Q_OBJECT
public:
    explicit FImpresion(QWidget* parent = nullptr);
    ~FImpresion() override;

private:
    void aceptar();

    std::unique_ptr<Ui::FImpresion> ui;
};
