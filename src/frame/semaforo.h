#pragma once
// A short modal pause (about 600 ms) with a blinking lamp and a progress bar.
#include <QWidget>
#include <memory>

class QTimer;

namespace Ui {
class semaforo;
}

class semaforo : public QWidget {
    Q_OBJECT
public:
    explicit semaforo(QWidget* parent = nullptr);
    ~semaforo() override;

    QTimer* timer() const { return m_timer; }

private:
    void tick();

    std::unique_ptr<Ui::semaforo> ui;
    QTimer* m_timer = nullptr;   // Timer1
};
