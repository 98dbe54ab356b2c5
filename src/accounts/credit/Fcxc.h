#pragma once
// "Factura x Seguros": the invoices the insurers still owe, for one insurer
// ("Por seguro") or dated within a period ("Por Fechas").
#include <QWidget>
#include <memory>

namespace Ui {
class Fcxc;
}

class Fcxc : public QWidget {
    Q_OBJECT
public:
    explicit Fcxc(QWidget* parent = nullptr);
    ~Fcxc() override;

private:
    void follow();   // the option chosen enables its own controls
    void fillInsurers();
    void imprimir();

    std::unique_ptr<Ui::Fcxc> ui;
};
