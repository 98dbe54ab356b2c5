#pragma once
// "Seleccione el Paciente a consultar": picks the patient whose exams the
// report of exams by patient lists.
#include <QWidget>
#include <memory>

namespace Ui {
class Form30;
}

class Form30 : public QWidget {
    Q_OBJECT
public:
    explicit Form30(QWidget* parent = nullptr);
    ~Form30() override;

private:
    void narrow();
    void choose(int row);

    std::unique_ptr<Ui::Form30> ui;
};
