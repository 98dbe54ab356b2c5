#pragma once
// "Impresion de Resultados": the results filled and not yet printed, of every
// patient or of one found by the search, each row green and bold. Choosing a
// row opens its sheet to be printed; when the sheet closes the list starts
// over for every patient, so that what was printed has left it.
#include <QWidget>
#include <cstdint>
#include <memory>

namespace Ui {
class FImpresionResult;
}

class FImpresionResult : public QWidget {
    Q_OBJECT
public:
    explicit FImpresionResult(QWidget* parent = nullptr);
    ~FImpresionResult() override;

    // The list's query; with one patient it takes his code bound.
    static QString sql(bool onePatient);
    // The patient of a chosen row, by his code bound.
    static QString patientSql();

private:
    void configurargrid();
    void limpia();
    void consultar();
    void porPaciente();
    void todos();
    void buscarPaciente();
    void buscar();
    void elegir(int row);
    bool showPatient(std::int32_t code);

    std::unique_ptr<Ui::FImpresionResult> ui;
    std::int32_t m_codPaciente = 0;   // the patient found by the search
    std::int32_t m_factura = 0;       // the invoice of the row chosen
};
