#pragma once
// "Cancelar Ordenes": pending orders (left) go to the list to cancel (right)
// with the two-list mover; "Elimiar" cancels every order of the right list
// at once, in one save, with today's date and the signed-on user.
#include <QWidget>
#include <memory>

namespace Ui {
class FanularOrden;
}

namespace tq {
class TwoListMover;
}

class FanularOrden : public QWidget {
    Q_OBJECT
public:
    explicit FanularOrden(QWidget* parent = nullptr);
    ~FanularOrden() override;

private:
    // The pending orders into Grid1; true when there are any.
    bool cargar();
    void cancelar();

    std::unique_ptr<Ui::FanularOrden> ui;
    tq::TwoListMover* m_mover = nullptr;
};
