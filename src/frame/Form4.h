#pragma once
// The start panel at the top of the main window: today's date, the clock,
// who is signed on, and five shortcuts (patients, exams, employees,
// billing, results), each a picture with its caption.
#include <QHash>
#include <QWidget>
#include <memory>

class QLabel;
class QTimer;
class QToolButton;

namespace Ui {
class Form4;
}

class Form4 : public QWidget {
    Q_OBJECT
public:
    explicit Form4(QWidget* parent = nullptr);
    ~Form4() override;

    // Exams and employees are closed to a limited user: their pictures stop
    // answering and their captions go.
    void applyLimitedRole();
    QTimer* timer() const { return m_timer; }

signals:
    void pacientes();
    void examenes();
    void empleados();
    void facturacion();
    void resultados();
    // The user confirmed leaving the system.
    void salirSistema();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void showTime();
    void wire(QToolButton* picture, QLabel* caption, void (Form4::*signal)());

    std::unique_ptr<Ui::Form4> ui;
    QTimer* m_timer = nullptr;   // Timer1
    QHash<QObject*, QToolButton*> m_captionOf;   // caption -> its picture
};
