#pragma once
// "Abonos / Facturas al credito": the invoices saved on credit and not yet
// paid off, and the payments taken against them one at a time until the
// balance is nil. Voided and insured invoices stand in the list as well.
#include <QWidget>
#include <cstdint>
#include <memory>

namespace Ui {
class Mabonos;
}

class Mabonos : public QWidget {
    Q_OBJECT
public:
    explicit Mabonos(QWidget* parent = nullptr);
    ~Mabonos() override;

private:
    void loadPending();      // Grid1, by patient's name, then invoice number
    void choose(int row);    // the invoice of a row of Grid1
    void showStanding();     // sum, balance, count and payments of the invoice chosen
    void abonar();
    void imprimir();
    void cancelar();
    // Focus back on the amount after a refusal.
    void refuse(const QString& message);

    std::unique_ptr<Ui::Mabonos> ui;
    std::int32_t m_factura = 0;   // the invoice chosen; 0 when none
};
