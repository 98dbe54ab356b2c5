#pragma once
// "Modificacion de Formatos de Resultados": the parameter list of a grid
// template, edited and saved as a new version.
#include <QWidget>
#include <memory>

namespace Ui {
class relplapar;
}

class relplapar : public QWidget {
    Q_OBJECT
public:
    explicit relplapar(QWidget* parent = nullptr);
    ~relplapar() override;

private:
    void loadLists();
    void chooseTemplate();
    void addParameter();
    void removeParameter();
    void move(int step);
    void cancel();
    void save();
    void preview();
    std::int32_t templateCode() const;   // 0 on the prompt

    std::unique_ptr<Ui::relplapar> ui;
};
