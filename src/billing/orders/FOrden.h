#pragma once
// "Ordenes/Cotizaciones": a priced document for a patient, composed as an
// invoice is, saved without money, payment or work table, and printed as a
// quotation. An invoice may import it later.
#include <QWidget>
#include <cstdint>
#include <memory>

namespace Ui {
class FOrden;
}

namespace tq {
class DocumentComposer;
}

class FOrden : public QWidget {
    Q_OBJECT
public:
    explicit FOrden(QWidget* parent = nullptr);
    ~FOrden() override;

    // The number the order was saved under; 0 before the save.
    std::int32_t number() const { return m_numero; }

private:
    void showNumber();
    void guardarfact();
    void imprimir();

    std::unique_ptr<Ui::FOrden> ui;
    tq::DocumentComposer* m_doc = nullptr;
    std::int32_t m_numero = 0;
};
