#pragma once
// The plain list of every patient by name: "code<TAB>nombre, apellido".
// A double click or Enter chooses: the patient goes to the caller waiting
// for one, or, when the list was opened on its own, to a new blank
// hematology format ("datosimprimir", its property "nombre").
#include "registers/pickers.h"

#include <QWidget>
#include <functional>
#include <memory>

namespace Ui {
class listaclientes;
}

class listaclientes : public QWidget {
    Q_OBJECT
public:
    explicit listaclientes(QWidget* parent = nullptr);
    ~listaclientes() override;

    void onChosen(std::function<void(const tq::ChosenPatient&)> chosen);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void choose();

    std::unique_ptr<Ui::listaclientes> ui;
    std::function<void(const tq::ChosenPatient&)> m_chosen;
};
