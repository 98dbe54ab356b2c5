#pragma once
// "Registro de pagos de Clientes": an insurer's open invoices (left) go to the
// list to settle (right) with the two-list mover; "&Agregar" settles every
// invoice of the right list at once, with one date and one reference.
#include <QWidget>
#include <cstdint>
#include <memory>

namespace Ui {
class Fpagarfacturas;
}

namespace tq {
class TwoListMover;
}

class Fpagarfacturas : public QWidget {
    Q_OBJECT
public:
    explicit Fpagarfacturas(QWidget* parent = nullptr);
    ~Fpagarfacturas() override;

private:
    void loadInsurers();
    void loadInvoices();
    void addOne();
    void removeOne();
    void agregar();
    // Empties both lists, the count, the insurer and the total.
    void cancela();
    // The sum of the right list's values.
    double chosenTotal() const;
    // The invoices another station settled meanwhile leave both lists.
    void dropSettled(const QList<std::int32_t>& invoices);

    std::unique_ptr<Ui::Fpagarfacturas> ui;
    tq::TwoListMover* m_mover = nullptr;
    // A row of the right list was clicked since it last changed.
    bool m_rightPicked = false;
};
