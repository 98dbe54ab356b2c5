#pragma once
// "Historial de Examenes x Paciente de Resultados": every exam of one patient
// with a saved result, printed or not; the rows never printed are green and
// bold. Opened by the patient screen, which sets the property cod_paciente
// and the labels Label9 (the name the sheets print), Label3, Label5, Label7
// before showing it; the list is read when the screen is first shown.
// Choosing a row opens its sheet to be printed; the list is not read again.
#include <QWidget>
#include <cstdint>
#include <memory>

namespace Ui {
class FHistorial;
}

class FHistorial : public QWidget {
    Q_OBJECT
public:
    explicit FHistorial(QWidget* parent = nullptr);
    ~FHistorial() override;

    // The list's query, the patient's code bound.
    static QString sql();

protected:
    void showEvent(QShowEvent* event) override;

private:
    void configurargrid();
    void cargar();
    // Sorts the rows in place, by the grid's texts; nothing is read again.
    enum class Order { Factura, Fecha, Examen };
    void ordenar(Order order);
    void elegir(int row);

    std::unique_ptr<Ui::FHistorial> ui;
    std::int32_t m_codPaciente = 0;
    bool m_loaded = false;
};
