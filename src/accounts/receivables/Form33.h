#pragma once
// "Reporte de Facturas por Cobrar": what the insurers owe, by insurer
// ("Por Seguro") or for one insured patient ("Por paciente").
#include <QWidget>
#include <cstdint>
#include <memory>

namespace Ui {
class Form33;
}

class Form33 : public QWidget {
    Q_OBJECT
public:
    explicit Form33(QWidget* parent = nullptr);
    ~Form33() override;

private:
    void follow();   // the option chosen enables its own controls
    void searchPatient();
    void showReport();
    void cancel();

    std::unique_ptr<Ui::Form33> ui;
    std::int32_t m_patient = 0;   // code of the patient whose name is in Text1
};
