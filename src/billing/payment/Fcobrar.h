#pragma once
// The payment screen: how much of the invoice's total is paid now in cash,
// by card and by cheque, and whether the rest stays on credit. The invoice
// opens it modally and gives itself as the target; "Guardar" hands the
// payment to the invoice, which saves it.
#include "billing/invoice/payment.h"

#include <QWidget>
#include <memory>

class QLineEdit;

namespace Ui {
class Fcobrar;
}

class Fcobrar : public QWidget {
    Q_OBJECT
public:
    explicit Fcobrar(QWidget* parent = nullptr);
    ~Fcobrar() override;

    // The invoice being paid; its total is shown at once. Not owned.
    void setTarget(tq::PaymentTarget* target);

    // The amounts as read by the last "Guardar" that passed its checks.
    double efectivo() const { return m_payment.efectivo; }
    double tarjeta() const { return m_payment.tarjeta; }
    double cheque() const { return m_payment.cheque; }
    double pagado() const { return m_payment.pagado; }
    // The total every comparison uses, read back from "Valor:".
    double total() const { return m_total; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void guardar();
    void cancelar();

    std::unique_ptr<Ui::Fcobrar> ui;
    tq::PaymentTarget* m_target = nullptr;
    double m_total = 0;
    tq::Payment m_payment;
};
