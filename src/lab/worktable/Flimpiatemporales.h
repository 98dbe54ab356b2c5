#pragma once
// "Limpieza de mesa de trabajo": empties the work table, for exams billed
// before their result templates were ready.
#include <QWidget>
#include <memory>

namespace Ui {
class Flimpiatemporales;
}

class Flimpiatemporales : public QWidget {
    Q_OBJECT
public:
    explicit Flimpiatemporales(QWidget* parent = nullptr);
    ~Flimpiatemporales() override;

private:
    void limpiar();
    std::unique_ptr<Ui::Flimpiatemporales> ui;
};
