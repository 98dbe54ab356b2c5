#pragma once
// The discount box: a percentage of the subtotal taken off ("Descuento") or
// added ("Cargo Adicional") on the document that opened it. The invoice is
// served with selector 1 and the order with 2 (state().discountBoxFor); the
// document registers itself as the box's target before opening it.
#include <QString>
#include <QWidget>
#include <cstdint>
#include <memory>

namespace Ui {
class Form10;
}

namespace tq {

// A document the box can apply its extra to.
class ExtraTarget {
public:
    virtual ~ExtraTarget() = default;
    // The subtotal as the document shows it ("" before its totals exist).
    virtual QString subtotalText() const = 0;
    // `caption` is "Descuento:" or "Recargo:"; both amounts are already "#.00".
    virtual void applyExtra(const QString& caption, const QString& extra, const QString& total) = 0;
};

// The document served for a selector; nullptr clears it. A target that goes
// away clears itself.
void setExtraTarget(std::int16_t selector, ExtraTarget* target);
ExtraTarget* extraTarget(std::int16_t selector);

}  // namespace tq

class Form10 : public QWidget {
    Q_OBJECT
public:
    explicit Form10(QWidget* parent = nullptr);
    ~Form10() override;

private:
    void aplicar();

    std::unique_ptr<Ui::Form10> ui;
};
