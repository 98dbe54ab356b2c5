#pragma once
// The invoice screen: one patient, an optional referring doctor, the exams
// with their quantities at the price in force for the patient, and the
// totals. The document lives only in the screen until it is saved.
#include "billing/invoice/Form10.h"
#include "billing/invoice/invoicesave.h"
#include "billing/invoice/payment.h"

#include <QDate>
#include <QWidget>
#include <cstdint>
#include <memory>

class QKeyEvent;

namespace Ui {
class factura3;
}

class factura3 : public QWidget, public tq::ExtraTarget, public tq::PaymentTarget {
    Q_OBJECT
public:
    explicit factura3(QWidget* parent = nullptr);
    ~factura3() override;

    // The discount box's view of this invoice.
    QString subtotalText() const override;
    void applyExtra(const QString& caption, const QString& extra, const QString& total) override;
    // The payment screen's view of this invoice.
    QString totalText() const override;
    void savePaid(const tq::Payment& payment, bool credit) override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

    // The steps of the screen, each as a button or key runs it.
    void load();
    void showPaymentKind();
    void showNumber();
    void setUpGrid(bool firstLoad);
    void choosePatient();
    void gridKey(int row, int col, QKeyEvent* event);
    void chooseExam(int row);
    void acceptLine(int row);
    void removeRow(int row);
    void eliminar();
    void agregar();
    void generar();
    void descuentoRecargo();
    void guardarfact();
    void chargeOrCollect();
    // The document as it stands; refuses a quantity out of bounds. Throws AppError.
    tq::InvoiceDocument document() const;
    // guardarfactura, guardarfactura_credito or pagopacienteasegurado.
    void save(tq::Settlement settlement, const tq::Payment& payment);
    void showSaved();
    void quitarorden();
    void imprimir();
    void cancelar();
    void limpiar();
    void otraFactura();
    bool nothingToTotal() const;
    int lastLine() const;


    std::int32_t m_numero = 0;        // the invoice number proposed at load
    std::int32_t m_codPaciente = 0;
    std::int32_t m_codSeguro = 0;     // 0: the patient pays normal prices
    QDate m_fechaNacimiento;
    int m_clickedRow = 0;             // the row "-" removes; 0 after a removal
    int m_saved = 0;                  // 1 once the invoice is saved
    std::int32_t m_orden = 0;         // the order imported into this invoice, 0 for none

private:
    std::unique_ptr<Ui::factura3> ui;
};
