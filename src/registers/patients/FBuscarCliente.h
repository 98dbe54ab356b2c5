#pragma once
// "Busqueda de Paciente": the patient picker of the invoice, the order, the
// result printing and the receivables. All patients at opening; a search
// shows the first 50 whose surname or name starts with the text typed.
#include "registers/pickers.h"

#include <QWidget>
#include <functional>
#include <memory>

namespace Ui {
class FBuscarCliente;
}

class FBuscarCliente : public QWidget {
    Q_OBJECT
public:
    explicit FBuscarCliente(QWidget* parent = nullptr);
    ~FBuscarCliente() override;

    // Who is served, and where the choice goes; opened without a caller the
    // picker just closes on a choice.
    void serve(tq::PatientCaller caller, std::function<void(const tq::ChosenPatient&)> chosen);

private:
    void loadAll();
    void search();
    void choose(int row);

    std::unique_ptr<Ui::FBuscarCliente> ui;
    tq::PatientCaller m_caller = tq::PatientCaller::Invoice;
    std::function<void(const tq::ChosenPatient&)> m_chosen;
};
