#pragma once
// The invoice screen: one patient, an optional referring doctor, the exams
// with their quantities at the price in force for the patient, and the
// totals. The document lives only in the screen until it is saved. It may
// start from an order (a quotation) instead, whose prices it keeps.
#include "billing/invoice/invoicesave.h"
#include "billing/invoice/payment.h"

#include <QWidget>
#include <cstdint>
#include <memory>

namespace Ui {
class factura3;
}

namespace tq {
class DocumentComposer;
}

class factura3 : public QWidget, public tq::PaymentTarget {
    Q_OBJECT
public:
    explicit factura3(QWidget* parent = nullptr);
    ~factura3() override;

    // The payment screen's view of this invoice.
    QString totalText() const override;
    void savePaid(const tq::Payment& payment, bool credit) override;

    // Fills the invoice from a saved order: its patient, doctor, lines and
    // amounts as they were, nothing recomputed, ready to save. An order that
    // can't be read fills nothing.
    void importar(std::int32_t orden);
    // The order brought into this invoice, 0 for none.
    std::int32_t importedOrder() const { return m_orden; }

protected:
    void closeEvent(QCloseEvent* event) override;
    // Form load: the number proposed and the doctor list.
    void load();
    // "Imprimir": the print box for this invoice.
    void imprimir();

    std::int32_t m_numero = 0;   // the invoice number proposed at load

private:
    void showPaymentKind();
    void showNumber();
    void importaOrden();
    void guardarfact();
    void chargeOrCollect();
    // guardarfactura, guardarfactura_credito or pagopacienteasegurado.
    void save(tq::Settlement settlement, const tq::Payment& payment);
    void quitarorden();

    std::unique_ptr<Ui::factura3> ui;
    tq::DocumentComposer* m_doc = nullptr;
    std::int32_t m_orden = 0;    // the order imported into this invoice, 0 for none
};
