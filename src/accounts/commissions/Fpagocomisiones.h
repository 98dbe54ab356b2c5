#pragma once
// "Pago de comisiones": the invoices a doctor referred whose commission is
// unpaid (left), the ones to pay now (right) with the two-list mover, and
// "Cancelar", which pays every invoice of the right list at once on the date
// chosen.
#include <QWidget>
#include <cstdint>
#include <memory>

namespace Ui {
class Fpagocomisiones;
}

namespace tq {
class TwoListMover;
}

class Fpagocomisiones : public QWidget {
    Q_OBJECT
public:
    explicit Fpagocomisiones(QWidget* parent = nullptr);
    ~Fpagocomisiones() override;

private:
    void loadDoctors();
    void chooseDoctor();
    // The doctor's unpaid invoices into Grid1 with their totals; false when
    // there are none.
    bool listPending();
    void pay();
    // Takes the invoices paid elsewhere off both lists, the rest stay chosen.
    void dropPaid(const QList<std::int32_t>& facturas);
    void clearScreen();   // "&Limpiar"

    std::unique_ptr<Ui::Fpagocomisiones> ui;
    tq::TwoListMover* m_mover = nullptr;
    std::int32_t m_doctor = 0;
    bool m_hasDoctor = false;
};
